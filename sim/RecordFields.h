// The fields of the published records by the keys under which scenarios name them.
//
// One table per record; changes are kept as values and applied to a record later, so that a change
// on the timeline is checked when the scenario is read. Pure data, safe from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace vantric_sim {

struct RecordField {
    enum class Kind { Integer, Text };

    const char* key;
    Kind kind;
    std::size_t offset;
    std::size_t size;  // bytes, a text's NUL included
};

using RecordFields = std::vector<RecordField>;

const RecordFields& stateFields();
const RecordFields& extendedFields();
const RecordFields& networkFields();

struct FieldChange {
    const RecordField* field;
    std::variant<int32_t, std::string> value;  // as the field's kind says
};

// Writes the changed fields of `record`, which must be the record that the fields belong to. A text
// is cut to leave a NUL inside its field; bytes behind it become zero.
void applyChanges(void* record, const std::vector<FieldChange>& changes);

// Writes `text` to a field of `size` bytes in the same way.
void writeText(char* field, std::size_t size, const std::string& text);

template <std::size_t size>
void setText(char (&field)[size], const std::string& text) {
    writeText(field, size, text);
}

}  // namespace vantric_sim
