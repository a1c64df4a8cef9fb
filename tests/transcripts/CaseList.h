// The table of cases, row by row.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "tests/transcripts/TranscriptCase.h"

namespace vantric_test {

using std::chrono::seconds;
using Arguments = std::vector<std::string>;

Circumstances server(const char* scenario);
Circumstances until(seconds patience, Circumstances circumstances);
Circumstances hindered(Hindrance (*hindrance)(), const char* scenario);
Circumstances logging(const char* level, Circumstances circumstances);
Circumstances writingTo(ClientOutput output);

class CaseList {
  public:
    // One case for each of the named commands, with the usual value where one is needed.
    void add(const char* situation, const Circumstances& circumstances,
             const std::vector<std::string>& commands);

    // `name` becomes the name of the file.
    void add(const char* situation, const std::string& name, const Arguments& arguments,
             Circumstances circumstances);

    std::vector<TranscriptCase> cases;
};

// The families.
void addServers(CaseList& list);
void addStates(CaseList& list);
void addTimes(CaseList& list);
void addCommandLines(CaseList& list);
void addHindrances(CaseList& list);
void addCtl(CaseList& list);

}  // namespace vantric_test
