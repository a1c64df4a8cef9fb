// Reports, and how they are written to standard output, as text or as JSON. Everything else goes to
// standard error.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "Vantric/RecordFields.h"

namespace vantricctl {

// The bytes for a terminal: UTF-8 as it stands, a backslash doubled, and as \xNN every byte that is
// not UTF-8 or belongs to a character that controls a terminal or the direction of writing.
std::string shown(std::string_view bytes);

// Two lower-case digits for each byte.
std::string hexadecimal(std::string_view bytes);

enum class Secrets { Omitted, Hidden, Shown };

// A value, or others by their names (in a list, without names) in the order in which they were
// added. Texts are bytes as they stand; writing makes them safe.
struct Report {
    enum class Kind { Group, List, Text, ExactText, Number };

    // Adds a member and returns it.
    Report& add(const std::string& name = {}, Kind itsKind = Kind::Group,
                const std::string& itsValue = {});

    void add(const std::string& name, const std::string& text) { add(name, Kind::Text, text); }
    void add(const std::string& name, const char* text) { add(name, Kind::Text, text); }
    void add(const std::string& name, bool flag) {
        add(name, Kind::Number, flag ? "true" : "false");
    }
    void add(const std::string& name, double number);
    template <class Integer, class = std::enable_if_t<std::is_integral_v<Integer>>>
    void add(const std::string& name, Integer number) {
        add(name, Kind::Number, std::to_string(number));
    }

    // Adds what another process wrote: `name`, and `name`Hex with the exact bytes.
    void addText(const std::string& name, std::string_view bytes);

    // Adds the fields of the record at `record`. An encryption or connectivity type is followed by
    // its display name. A hidden password is null.
    void addFields(const void* record, const com_qel::Orvane::Vantric::RecordFields& fields,
                   Secrets secrets = Secrets::Omitted);

    Kind kind = Kind::Group;
    std::string value;  // a text's bytes, or a number as JSON has it
    std::vector<std::pair<std::string, Report>> members;
};

// Writes all of `text` to standard output at once. Throws Failure, without a sentence when the
// reader is gone.
void writeOutput(const std::string& text);

// Writes the report after `prefix`: as one line of JSON in ASCII, or as "name  value" lines,
// indented by the level in the report, with one line for each element of a list and without exact
// bytes.
void writeReport(const Report& report, bool asJson, const char* prefix = "");

}  // namespace vantricctl
