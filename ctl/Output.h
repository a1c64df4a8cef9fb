// Reports, and how they and all else are written. Data goes to standard output, as text or as JSON;
// everything else goes to standard error. Texts in a report are bytes as they stand; writing makes
// them safe.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "Vantric/RecordFields.h"

namespace vantricctl {

using Report = nlohmann::ordered_json;
using com_qel::Orvane::Vantric::RecordFields;

// Adds what another process wrote: `key`, and `key`Hex with the exact bytes.
void addText(Report& report, const std::string& key, std::string_view bytes);

// Adds the fields of the record at `record`. An encryption or connectivity type is followed by its
// display name. The password is null unless secrets are to be shown.
void addFields(Report& report, const void* record, const RecordFields& fields,
               bool showSecrets = false);

// Writes all of `text` to standard output at once. Throws OutputClosed or Failure.
void writeOutput(const std::string& text);

// Writes the report after `prefix`: as one line of JSON in ASCII, or as "key  value" lines,
// indented by the level in the report, with one line for each element of a list and without exact
// bytes.
void writeReport(const Report& report, bool asJson, const char* prefix = "");

// Writes one line to standard error; the failure to do so is ignored.
void writeNotice(const std::string& sentence);

// Tenths of a second as people read them, "2.1 s".
std::string secondsText(double seconds);

}  // namespace vantricctl
