#include "sim/RecordReader.h"

#include <limits>

namespace vantric_sim {

namespace {

constexpr std::size_t mostNetworks = com_qel::Orvane::Vantric::WifiInfosList::maximumCount;

FieldChange readFieldChange(const JsonValue& value, const RecordField& field) {
    if (field.kind == RecordField::Kind::Text) {
        return {&field, value.text(field.size - 1)};
    }
    using Limits = std::numeric_limits<int32_t>;
    return {&field, static_cast<int32_t>(value.integer(Limits::min(), Limits::max()))};
}

}  // namespace

std::vector<FieldChange> readFieldChanges(const JsonValue& object, const RecordFields& table) {
    std::vector<std::string> keys;
    for (const RecordField& field : table) {
        keys.emplace_back(field.key);
    }
    object.expectKeys(keys);

    std::vector<FieldChange> changes;
    for (const RecordField& field : table) {
        if (const auto value = object.find(field.key)) {
            changes.push_back(readFieldChange(*value, field));
        }
    }
    return changes;
}

std::vector<WifiListEntry> readNetworks(const JsonValue& array) {
    std::vector<WifiListEntry> networks;
    for (const JsonValue& element : array.elements(mostNetworks)) {
        WifiListEntry entry = {};
        applyChanges(&entry, readFieldChanges(element, networkFields()));
        element.member("ssid", "the network's name");
        networks.push_back(entry);
    }
    return networks;
}

}  // namespace vantric_sim
