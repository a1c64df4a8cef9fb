// Reports, and how they are written to standard output, as text or as JSON. Everything else goes to
// standard error.
#pragma once

#include <initializer_list>
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
class Report {
  public:
    enum class Kind { Group, List, Text, ExactText, Number };

    Report(Kind itsKind = Kind::Group) : kind(itsKind) {}
    Report(const char* text) : kind(Kind::Text), value(text) {}
    Report(const std::string& text) : kind(Kind::Text), value(text) {}
    Report(bool flag) : kind(Kind::Number), value(flag ? "true" : "false") {}
    Report(double number);
    Report(std::nullptr_t) : kind(Kind::Number), value("null") {}
    template <class Integer, class = std::enable_if_t<std::is_integral_v<Integer>>>
    Report(Integer number) : kind(Kind::Number), value(std::to_string(number)) {}

    Report(std::initializer_list<std::pair<const char*, Report>> group);

    // Returns the new member.
    Report& add(const std::string& name = {}, const Report& member = {});

    // Adds what another process wrote: `name`, and `name`Hex with the exact bytes.
    void addText(const std::string& name, std::string_view bytes);

    // Adds the fields of the record at `record`. An encryption or connectivity type is followed by
    // its display name. A hidden password is null.
    void addFields(const void* record, const com_qel::Orvane::Vantric::RecordFields& fields,
                   Secrets secrets = Secrets::Omitted);

    Kind kind;
    std::string value;  // a text's bytes, or JSON
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
