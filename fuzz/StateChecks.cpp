#include <algorithm>
#include <cstring>

#include "fuzz/RecordLayout.h"
#include "fuzz/StateCalls.h"
#include "fuzz/Target.h"

namespace vantric_fuzz {

namespace {

Bytes bytesOf(const void* record, std::size_t size) {
    const auto* begin = static_cast<const unsigned char*>(record);
    return Bytes(begin, begin + size);
}

}  // namespace

// Records of equal levels may stand in any order, so the levels are compared in order and the
// records as a set.
void requireNetworks(const std::vector<Bytes>& expected, const WifiInfo* found, std::size_t count) {
    std::vector<Bytes> left = expected;
    for (std::size_t index = 0; index < count; ++index) {
        const Bytes record = bytesOf(&found[index], info::size);
        require(
            integerAt(record, info::signalLevel) == integerAt(expected[index], info::signalLevel),
            "networks are sorted by level");
        const auto entry = std::find(left.begin(), left.end(), record);
        require(entry != left.end(), "each network is one of those published");
        left.erase(entry);
        require(std::memchr(found[index].ssid, 0, sizeof(WifiInfo::ssid)) != nullptr,
                "a network's name is terminated");
        require(std::memchr(found[index].encryptionName, 0, sizeof(WifiInfo::encryptionName)) !=
                    nullptr,
                "an encryption's name is terminated");
    }
}

ModemStatus untouchedStatus() {
    ModemStatus status;
    std::memset(&status, 0xEE, sizeof(status));
    return status;
}

void requireStatus(const std::optional<Bytes>& expected, bool isSuccess,
                   const ModemStatus& status) {
    const ModemStatus untouched = untouchedStatus();
    require(isSuccess == expected.has_value(), "the status query tells whether it succeeded");
    require(bytesOf(&status, sizeof(status)) ==
                expected.value_or(bytesOf(&untouched, sizeof(untouched))),
            "the status is what was published");
    require(!isSuccess || std::memchr(status.wifiEncryptionName, 0,
                                      sizeof(status.wifiEncryptionName)) != nullptr,
            "an encryption's name is terminated");
}

}  // namespace vantric_fuzz
