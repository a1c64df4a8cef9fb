// The fields of the published records as tables: name, kind, place.
//
// Internal to this tree: programs show and change records field by field. The time stamp of the
// basic state is not among the fields, because every publication sets it. Pure data, safe from any
// thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Vantric/ModemState.h"

namespace com_qel::Orvane::Vantric {

struct RecordField {
    enum class Kind { Integer, Text };

    const char* key;
    Kind kind;
    std::size_t offset;
    std::size_t size;  // bytes, a text's NUL included
};

using RecordFields = std::vector<RecordField>;

constexpr RecordField integerField(const char* key, std::size_t offset) {
    return {key, RecordField::Kind::Integer, offset, sizeof(int32_t)};
}

constexpr RecordField textField(const char* key, std::size_t offset, std::size_t size) {
    return {key, RecordField::Kind::Text, offset, size};
}

inline const RecordFields& stateFields() {
    using Record = ModemState;
    static const RecordFields fields = {
        integerField("connectivityType", offsetof(Record, connectivityType)),
        textField("wifiSsid", offsetof(Record, wifiSsid), sizeof(Record::wifiSsid)),
        textField("wifiPassword", offsetof(Record, wifiPassword), sizeof(Record::wifiPassword)),
        integerField("wifiEncryptionType", offsetof(Record, wifiEncryptionType)),
        textField("hostname", offsetof(Record, hostname), sizeof(Record::hostname)),
        textField("wifiConnectionState", offsetof(Record, wifiConnectionState),
                  sizeof(Record::wifiConnectionState)),
    };
    return fields;
}

inline const RecordFields& extendedFields() {
    using Record = ModemStateExtended;
    static const RecordFields fields = {
        integerField("serverWord", offsetof(Record, serverWord)),
        integerField("carrierSignalLevel", offsetof(Record, carrierSignalLevel)),
        textField("wifiSsid", offsetof(Record, wifiSsid), sizeof(Record::wifiSsid)),
        integerField("wifiEncryptionType", offsetof(Record, wifiEncryptionType)),
        textField("wifiEncryptionName", offsetof(Record, wifiEncryptionName),
                  sizeof(Record::wifiEncryptionName)),
        integerField("wifiSignalLevel", offsetof(Record, wifiSignalLevel)),
        textField("ipv4Address", offsetof(Record, ipv4Address), sizeof(Record::ipv4Address)),
        textField("macAddress", offsetof(Record, macAddress), sizeof(Record::macAddress)),
        integerField("updateCounter", offsetof(Record, updateCounter)),
    };
    return fields;
}

inline const RecordFields& networkFields() {
    using Record = WifiListEntry;
    static const RecordFields fields = {
        textField("ssid", offsetof(Record, ssid), sizeof(Record::ssid)),
        integerField("encryptionType", offsetof(Record, encryptionType)),
        integerField("signalLevel", offsetof(Record, signalLevel)),
    };
    return fields;
}

}  // namespace com_qel::Orvane::Vantric
