#include "sim/RecordFields.h"

#include <algorithm>
#include <cstring>

#include "Vantric/ModemState.h"

namespace vantric_sim {

namespace {

using com_qel::Orvane::Vantric::ModemState;
using com_qel::Orvane::Vantric::ModemStateExtended;
using com_qel::Orvane::Vantric::WifiListEntry;

constexpr RecordField::Kind integer = RecordField::Kind::Integer;
constexpr RecordField::Kind text = RecordField::Kind::Text;

}  // namespace

// The time stamp is not among them: publishing sets it.
const RecordFields& stateFields() {
    using Record = ModemState;
    static const RecordFields fields = {
        {"connectivityType", integer, offsetof(Record, connectivityType), sizeof(int32_t)},
        {"wifiSsid", text, offsetof(Record, wifiSsid), sizeof(Record::wifiSsid)},
        {"wifiPassword", text, offsetof(Record, wifiPassword), sizeof(Record::wifiPassword)},
        {"wifiEncryptionType", integer, offsetof(Record, wifiEncryptionType), sizeof(int32_t)},
        {"hostname", text, offsetof(Record, hostname), sizeof(Record::hostname)},
        {"wifiConnectionState", text, offsetof(Record, wifiConnectionState),
         sizeof(Record::wifiConnectionState)},
    };
    return fields;
}

const RecordFields& extendedFields() {
    using Record = ModemStateExtended;
    static const RecordFields fields = {
        {"serverWord", integer, offsetof(Record, serverWord), sizeof(int32_t)},
        {"carrierSignalLevel", integer, offsetof(Record, carrierSignalLevel), sizeof(int32_t)},
        {"wifiSsid", text, offsetof(Record, wifiSsid), sizeof(Record::wifiSsid)},
        {"wifiEncryptionType", integer, offsetof(Record, wifiEncryptionType), sizeof(int32_t)},
        {"wifiEncryptionName", text, offsetof(Record, wifiEncryptionName),
         sizeof(Record::wifiEncryptionName)},
        {"wifiSignalLevel", integer, offsetof(Record, wifiSignalLevel), sizeof(int32_t)},
        {"ipv4Address", text, offsetof(Record, ipv4Address), sizeof(Record::ipv4Address)},
        {"macAddress", text, offsetof(Record, macAddress), sizeof(Record::macAddress)},
        {"updateCounter", integer, offsetof(Record, updateCounter), sizeof(int32_t)},
    };
    return fields;
}

const RecordFields& networkFields() {
    using Record = WifiListEntry;
    static const RecordFields fields = {
        {"ssid", text, offsetof(Record, ssid), sizeof(Record::ssid)},
        {"encryptionType", integer, offsetof(Record, encryptionType), sizeof(int32_t)},
        {"signalLevel", integer, offsetof(Record, signalLevel), sizeof(int32_t)},
    };
    return fields;
}

void applyChanges(void* record, const std::vector<FieldChange>& changes) {
    for (const FieldChange& change : changes) {
        char* field = static_cast<char*>(record) + change.field->offset;
        if (change.field->kind == integer) {
            std::memcpy(field, &std::get<int32_t>(change.value), sizeof(int32_t));
        } else {
            writeText(field, change.field->size, std::get<std::string>(change.value));
        }
    }
}

void writeText(char* field, std::size_t size, const std::string& value) {
    const std::size_t length = std::min(value.size(), size - 1);
    std::copy_n(value.begin(), length, field);
    std::fill_n(field + length, size - length, '\0');
}

}  // namespace vantric_sim
