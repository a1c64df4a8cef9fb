// Sizes and offsets of the published records, written down a second time: the product's own
// structures must not be what they are checked with.
#pragma once

#include <cstddef>

namespace vantric_fuzz {

namespace state {
constexpr std::size_t size = 141;
constexpr std::size_t timestamp = 0;
constexpr std::size_t connectivityType = 4;
constexpr std::size_t wifiSsid = 8;
constexpr std::size_t wifiSsidSize = 33;
constexpr std::size_t wifiPassword = 41;
constexpr std::size_t wifiEncryptionType = 73;
constexpr std::size_t hostname = 77;
constexpr std::size_t wifiConnectionState = 109;
constexpr std::size_t textSize = 32;  // of the texts other than the name
}  // namespace state

namespace extended {
constexpr std::size_t size = 156;
constexpr std::size_t statusSize = 152;  // what clients are given
constexpr std::size_t wifiEncryptionType = 44;
constexpr std::size_t wifiEncryptionName = 48;
constexpr std::size_t updateCounter = 152;
}  // namespace extended

namespace list {
constexpr std::size_t size = 4108;
constexpr std::size_t entrySize = 41;
constexpr std::size_t ssidSize = 33;
constexpr std::size_t encryptionType = 33;  // in an entry
constexpr std::size_t signalLevel = 37;     // in an entry
constexpr int maximumCount = 100;
constexpr std::size_t count = 4100;
constexpr std::size_t updateCounter = 4104;
}  // namespace list

// The client's record of a network.
namespace info {
constexpr std::size_t size = 108;
constexpr std::size_t encryptionType = 36;
constexpr std::size_t encryptionName = 40;
constexpr std::size_t signalLevel = 104;
}  // namespace info

}  // namespace vantric_fuzz
