// Changes of the published records, by the keys under which scenarios name the fields.
//
// Changes are kept as bytes and applied to a record later, so that a change
// on the timeline is checked when the scenario is read. Safe from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Vantric/ModemState.h"
#include "Vantric/RecordFields.h"
#include "sim/JsonValue.h"

namespace vantric_sim {

using com_qel::Orvane::Vantric::extendedFields;
using com_qel::Orvane::Vantric::RecordField;
using com_qel::Orvane::Vantric::RecordFields;
using com_qel::Orvane::Vantric::stateFields;

struct FieldChange {
    std::size_t offset;
    std::string bytes;
};

using FieldChanges = std::vector<FieldChange>;

// The fields that a scenario's object names, each of which must be in the table. Failures are
// ScenarioErrors.
FieldChanges readChanges(const JsonValue& object, const RecordFields& table);

// An array of networks, in the same way.
std::vector<com_qel::Orvane::Vantric::WifiListEntry> readNetworks(const JsonValue& array);

// Writes the changed fields of `record`, which must be the record that the fields belong to.
void applyChanges(void* record, const FieldChanges& changes);

// Writes `text` to a field of `size` bytes. It is cut to leave a NUL inside the field; the bytes
// after it become zero.
void writeText(char* field, std::size_t size, const std::string& text);

template <std::size_t size>
void setText(char (&field)[size], const std::string& text) {
    writeText(field, size, text);
}

}  // namespace vantric_sim
