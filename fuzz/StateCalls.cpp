#include "fuzz/StateCalls.h"

#include <algorithm>
#include <string>

#include "fuzz/RecordLayout.h"
#include "fuzz/Target.h"

namespace vantric_fuzz {

namespace {

constexpr const char* untouchedText = "untouched";
constexpr int32_t untouchedNumber = 0x5AFE;

void requireText(const std::optional<std::string>& expected, bool isSuccess,
                 const std::string& text) {
    require(isSuccess == expected.has_value(), "a text query tells whether it succeeded");
    require(text == expected.value_or(untouchedText), "a text is what was published");
}

}  // namespace

void getConnectivityType(Session& session, unsigned int) {
    int32_t type = untouchedNumber;
    const bool isSuccess = Clients::instance().client.getConnectivityType(type);
    const auto expected = session.plain.connectivityType();
    require(isSuccess == expected.has_value(), "the type query tells whether it succeeded");
    require(type == expected.value_or(untouchedNumber), "the type is what was published");
}

void getWifiSsid(Session& session, unsigned int) {
    std::string text = untouchedText;
    const bool isSuccess = Clients::instance().client.getWifiSSID(text);
    requireText(session.plain.text(state::wifiSsid, state::wifiSsidSize), isSuccess, text);
}

void getHostname(Session& session, unsigned int) {
    std::string text = untouchedText;
    const bool isSuccess = Clients::instance().client.getHostname(text);
    requireText(session.plain.text(state::hostname, state::textSize), isSuccess, text);
}

void getConnectionState(Session& session, unsigned int) {
    std::string text = untouchedText;
    const bool isSuccess = Clients::instance().client.getWifiConnectionState(text);
    requireText(session.plain.text(state::wifiConnectionState, state::textSize), isSuccess, text);
}

void getPassword(Session& session, unsigned int) {
    int32_t type = untouchedNumber;
    std::string password = untouchedText;
    const bool isSuccess =
        Clients::instance().client.getWifiPasswordAndEncryptionType(type, password);
    const auto expected = session.plain.encryption();
    require(isSuccess == expected.has_value(), "the password query tells whether it succeeded");
    require(type == (expected ? expected->type : untouchedNumber), "the type is as published");
    require(password == (expected ? expected->password : untouchedText),
            "the password is as published");
}

void getList(Session& session, unsigned int argument) {
    const uint32_t timeout = argument % 3;
    std::vector<WifiInfo> found(1);
    found[0].signalLevel = untouchedNumber;
    const bool isSuccess = Clients::instance().client.getWifiAvailableListBlocking(found, timeout);
    const auto expected = session.plain.networks(timeout);
    require(isSuccess == expected.has_value(), "the list query tells whether it succeeded");
    if (!expected) {
        require(found.size() == 1 && found[0].signalLevel == untouchedNumber,
                "a failed list query leaves the list alone");
        return;
    }
    require(found.size() == expected->size(), "the list has as many networks as were published");
    requireNetworks(*expected, found.data(), found.size());
}

void getStatus(Session& session, unsigned int argument) {
    ModemStatus status = untouchedStatus();
    const bool isSuccess = Clients::instance().client.getModemStatusBlocking(status, argument % 3);
    requireStatus(session.plain.status(argument % 3), isSuccess, status);
}

}  // namespace vantric_fuzz
