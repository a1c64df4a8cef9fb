// Reports, and how they are written to standard output, as text or as JSON. Everything else goes to
// standard error.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "Vantric/RecordFields.h"

namespace vantricctl {

// The bytes for a terminal: UTF-8 as it stands, a backslash doubled, and as \xNN every byte that is
// not UTF-8 or belongs to a character that controls a terminal or the direction of writing.
std::string shown(std::string_view bytes);

// Two lower-case digits for each byte.
std::string hexadecimal(std::string_view bytes);

enum class Secrets { Omitted, Hidden, Shown };

// Texts in a report are bytes as they stand; writing makes them safe.
using Report = nlohmann::ordered_json;

// Adds what another process wrote: `name`, and `name`Hex with the exact bytes.
void addText(Report& report, const std::string& name, std::string_view bytes);

// Whether `name` is such a second member.
bool isExactText(const Report& report, const std::string& name);

// Adds the fields of the record at `record`. An encryption or connectivity type is followed by its
// display name. A hidden password is null.
void addFields(Report& report, const void* record,
               const com_qel::Orvane::Vantric::RecordFields& fields,
               Secrets secrets = Secrets::Omitted);

// Writes all of `text` to standard output at once. Throws Failure, without a sentence when the
// reader is gone.
void writeOutput(const std::string& text);

// Writes the report after `prefix`: as one line of JSON in ASCII, or as "name  value" lines,
// indented by the level in the report, with one line for each element of a list and without exact
// bytes.
void writeReport(const Report& report, bool asJson, const char* prefix = "");

}  // namespace vantricctl
