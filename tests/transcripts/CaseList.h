// The table of cases, row by row.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "tests/transcripts/TranscriptCase.h"

namespace vantric_test {

using std::chrono::seconds;
using Arguments = std::vector<std::string>;
using Names = std::vector<std::string>;

// The commands of a kind.
inline const Names all = {"status",          "enablewifi", "disablewifi", "switchtowifi",
                          "switchtocarrier", "setwifi",    "setConfig",   "setConfigKeepWifi",
                          "availablewifi",   "forgetwifi", "statuscapi"};
inline const Names ofTheClass = {"status",       "enablewifi",        "disablewifi",
                                 "switchtowifi", "switchtocarrier",   "setwifi",
                                 "setConfig",    "setConfigKeepWifi", "availablewifi"};
inline const Names readingFirst = {"enablewifi",       "disablewifi", "switchtowifi",
                                   "switchtocarrier",  "setwifi",     "setConfig",
                                   "setConfigKeepWifi"};
inline const Names waiting = {"switchtowifi", "switchtocarrier", "setwifi", "setConfig",
                              "setConfigKeepWifi"};

Circumstances server(const char* scenario);
Circumstances until(seconds patience, Circumstances circumstances);
Circumstances hindered(Hindrance (*hindrance)(), const char* scenario);
Circumstances logging(const char* level, Circumstances circumstances);
Circumstances writingTo(ClientOutput output);

class CaseList {
  public:
    // One case for each of the named commands.
    void add(const char* situation, const Circumstances& circumstances, const Names& names);

    void add(const char* situation, const char* name, const Arguments& arguments,
             Circumstances circumstances);

    std::vector<TranscriptCase> cases;
};

// The families.
void addServers(CaseList& list);
void addStates(CaseList& list);
void addTimes(CaseList& list);
void addLogs(CaseList& list);
void addCommandLines(CaseList& list);
void addConnectionsThatFail(CaseList& list);
void addLostOutput(CaseList& list);

}  // namespace vantric_test
