#include <algorithm>
#include <memory>
#include <string>

#include "fuzz/RecordLayout.h"
#include "fuzz/StateCalls.h"
#include "fuzz/Target.h"

namespace vantric_fuzz {

void getListByC(Session& session, unsigned int argument) {
    const uint32_t timeout = argument % 3;
    const uint32_t capacity = argument / 3 * 2;
    uint32_t count = capacity;
    const auto found = std::make_unique<WifiInfo[]>(capacity);
    const bool isSuccess = modemClientGetWifiAvailableListBlocking(Clients::instance().handle,
                                                                   found.get(), &count, timeout);
    const auto expected = session.viaC.networks(timeout);
    const std::size_t copied =
        expected ? std::min<std::size_t>(capacity, expected->size()) : capacity;
    require(count == copied, "the number of networks copied is told");
    require(isSuccess == (expected && copied != 0), "an empty list counts as a failure in C");
    if (expected) {
        requireNetworks(*expected, found.get(), copied);
    }
}

void getStatusByC(Session& session, unsigned int argument) {
    ModemStatus status = untouchedStatus();
    const bool isSuccess =
        modemClientGetModemStatusBlocking(Clients::instance().handle, &status, argument % 3);
    requireStatus(session.viaC.status(argument % 3), isSuccess, status);
}

void getWifiSsidByC(Session& session, unsigned int argument) {
    constexpr char untouched = '~';
    const uint32_t capacity = argument % 40;
    uint32_t size = capacity;
    const auto buffer = std::make_unique<char[]>(capacity);
    std::fill_n(buffer.get(), capacity, untouched);
    const bool isSuccess = modemClientGetWifiSSID(Clients::instance().handle, buffer.get(), &size);
    const auto name = session.viaC.text(state::wifiSsid, state::wifiSsidSize);
    const bool isExpected = name && name->size() <= capacity;
    std::string expected = isExpected ? *name : "";
    require(isSuccess == isExpected, "a name that does not fit is a failure");
    require(size == (isExpected ? expected.size() : capacity), "the name's length is told");
    expected.resize(capacity, untouched);
    require(std::equal(expected.begin(), expected.end(), buffer.get()),
            "the buffer holds the name and is left alone behind it");
}

void forgetByC(Session& session, unsigned int argument) {
    const bool isSuccess = modemClientForgetWifiBlocking(Clients::instance().handle, argument % 3);
    require(isSuccess == session.viaC.forget(argument % 3), "forgetting ends as the state shows");
}

void connectByC(Session& session, unsigned int argument) {
    const bool isSuccess = modemClientSetWifiConnectionBlocking(Clients::instance().handle, "name",
                                                                2, "password", argument % 3);
    require(isSuccess == session.viaC.setConnection(argument % 3),
            "connecting ends as the state shows");
}

void connectRadiusByC(Session& session, unsigned int argument) {
    const bool isSuccess = modemClientSetWifiConnectionRadiusBlocking(
        Clients::instance().handle, "name", 5, "user", "password", argument % 3);
    require(isSuccess == session.viaC.setConnection(argument % 3),
            "connecting ends as the state shows");
}

}  // namespace vantric_fuzz
