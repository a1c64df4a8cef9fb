#include "tests/docs/Layouts.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <stdexcept>
#include <type_traits>

#include "Vantric/ClientServer/SharedMemoryCircularBuffer.h"
#include "Vantric/ClientServer/SharedMemoryModemState.h"
#include "Vantric/ModemState.h"

namespace vantric_test {

namespace {

using namespace com_qel::Orvane::Vantric;
using StateSegment = ClientServer::SharedMemoryModemState::Layout;
using Ring = ClientServer::SharedMemoryCircularBuffer<unsigned char, 4096>::Memory;

constexpr std::size_t attachCountSize = sizeof(uint32_t);

template <class T>
std::string typeName() {
    if constexpr (std::is_array_v<T>) {
        return typeName<std::remove_extent_t<T>>() + "[" + std::to_string(std::extent_v<T>) + "]";
    } else if constexpr (std::is_same_v<T, char>) {
        return "char";
    } else if constexpr (std::is_same_v<T, WifiListEntry>) {
        return "WifiListEntry";
    } else {
        static_assert(std::is_integral_v<T>);
        return (std::is_signed_v<T> ? "int" : "uint") + std::to_string(8 * sizeof(T));
    }
}

// Only the preprocessor can turn a member into its name and its offset.
#define FIELD(Record, name)                                                                       \
    Field {                                                                                       \
#name, offsetof(Record, name), sizeof(Record::name), typeName < decltype(Record::name)>() \
    }

// Of an object that begins with the attach count.
Layout behindAttachCount(const Layout& layout) {
    Layout result = {{"attachCount", 0, attachCountSize, typeName<uint32_t>()}};
    for (Field field : layout) {
        field.offset += attachCountSize;
        result.push_back(field);
    }
    return result;
}

Layout ringLayout() {
    constexpr std::size_t end = offsetof(Ring, data) + sizeof(Ring::data);
    return behindAttachCount(
        {FIELD(Ring, initialized), FIELD(Ring, producers), FIELD(Ring, consumers),
         FIELD(Ring, readIndex), FIELD(Ring, writeIndex), FIELD(Ring, capacity), FIELD(Ring, full),
         FIELD(Ring, empty), FIELD(Ring, data),
         Field{"padding", end, sizeof(Ring) - end, typeName<uint8_t[sizeof(Ring) - end]>()}});
}

const std::map<std::string, Layout>& layouts() {
    static const std::map<std::string, Layout> all = {
        {"StateSegment",
         behindAttachCount({FIELD(StateSegment, version), FIELD(StateSegment, valid),
                            FIELD(StateSegment, reserved)})},
        {"Ring", ringLayout()},
        {"ModemState",
         {FIELD(ModemState, timestamp), FIELD(ModemState, connectivityType),
          FIELD(ModemState, wifiSsid), FIELD(ModemState, wifiPassword),
          FIELD(ModemState, wifiEncryptionType), FIELD(ModemState, hostname),
          FIELD(ModemState, wifiConnectionState)}},
        {"ModemStateExtended",
         {FIELD(ModemStateExtended, serverWord), FIELD(ModemStateExtended, carrierSignalLevel),
          FIELD(ModemStateExtended, wifiSsid), FIELD(ModemStateExtended, wifiEncryptionType),
          FIELD(ModemStateExtended, wifiEncryptionName), FIELD(ModemStateExtended, wifiSignalLevel),
          FIELD(ModemStateExtended, ipv4Address), FIELD(ModemStateExtended, macAddress),
          FIELD(ModemStateExtended, updateCounter)}},
        {"WifiInfosList",
         {FIELD(WifiInfosList, entries), FIELD(WifiInfosList, count),
          FIELD(WifiInfosList, updateCounter)}},
        {"WifiListEntry",
         {FIELD(WifiListEntry, ssid), FIELD(WifiListEntry, encryptionType),
          FIELD(WifiListEntry, signalLevel)}}};
    return all;
}

#undef FIELD

int64_t numberOf(const std::string& text) {
    int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) {
        throw std::runtime_error("no number: " + text);
    }
    return number;
}

}  // namespace

const Layout& layoutOf(const std::string& name) {
    return layouts().at(name);
}

const std::vector<std::string>& layoutNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> result;
        for (const auto& entry : layouts()) {
            result.push_back(entry.first);
        }
        return result;
    }();
    return names;
}

const Field& fieldOf(const Layout& layout, const std::string& name) {
    const auto found = std::find_if(layout.begin(), layout.end(),
                                    [&](const Field& field) { return field.name == name; });
    if (found == layout.end()) {
        throw std::runtime_error("no field " + name);
    }
    return *found;
}

Bytes encoded(const std::string& value, std::size_t size) {
    const bool isText = value.size() >= 2 && value.front() == '"' && value.back() == '"';
    if (isText) {
        Bytes bytes(value.begin() + 1, value.end() - 1);
        if (bytes.size() >= size) {
            throw std::runtime_error("too long: " + value);
        }
        bytes.resize(size);
        return bytes;
    }
    const int64_t number = numberOf(value);
    if (size != sizeof(uint32_t) && size != sizeof(uint8_t)) {
        throw std::runtime_error("a text is needed, not " + value);
    }
    const int64_t limit = size == sizeof(uint8_t) ? UINT8_MAX : UINT32_MAX;
    if (number > limit || number < INT32_MIN) {
        throw std::runtime_error("too large: " + value);
    }
    Bytes bytes;
    appendWord(bytes, static_cast<uint32_t>(number));
    bytes.resize(size);
    return bytes;
}

}  // namespace vantric_test
