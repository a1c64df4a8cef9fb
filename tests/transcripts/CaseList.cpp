#include "tests/transcripts/CaseList.h"

#include <algorithm>
#include <utility>

namespace vantric_test {

namespace {

struct Invocation {
    const char* name;
    Arguments arguments;
};

const std::vector<Invocation>& invocations() {
    static const std::vector<Invocation> table = {
        {"status", {"--status"}},
        {"enablewifi", {"--enablewifi"}},
        {"disablewifi", {"--disablewifi"}},
        {"switchtowifi", {"--switchtowifi"}},
        {"switchtocarrier", {"--switchtocarrier"}},
        {"setwifi", {"--setwifi", "office"}},
        {"setConfig", {"--setConfig", "site-b.cfg"}},
        {"setConfigKeepWifi", {"--setConfigKeepWifi", "site-b.cfg"}},
        {"availablewifi", {"--availablewifi"}},
        {"forgetwifi", {"--forgetwifi"}},
        {"statuscapi", {"--statuscapi"}}};
    return table;
}

// Two cycles of the monitor, unless they are long.
constexpr seconds monitorPatience(13);

seconds longestMonitoring(const Circumstances& circumstances) {
    return circumstances.patience == Circumstances().patience ? monitorPatience
                                                              : circumstances.patience;
}

}  // namespace

Circumstances server(const char* scenario) {
    Circumstances result;
    result.scenario = scenario;
    return result;
}

Circumstances until(seconds patience, Circumstances circumstances) {
    circumstances.patience = patience;
    return circumstances;
}

Circumstances hindered(Hindrance (*hindrance)(), const char* scenario) {
    Circumstances result = server(scenario);
    result.hindrance = hindrance;
    return result;
}

Circumstances logging(const char* level, Circumstances circumstances) {
    circumstances.logLevel = level;
    return circumstances;
}

Circumstances writingTo(ClientOutput output) {
    Circumstances result = server("default.json");
    result.output = output;
    return result;
}

void CaseList::add(const char* situation, const Circumstances& circumstances, const Names& names) {
    for (const Invocation& invocation : invocations()) {
        if (std::count(names.begin(), names.end(), invocation.name) != 0) {
            add(situation, invocation.name, invocation.arguments, circumstances);
        }
    }
}

void CaseList::add(const char* situation, const char* name, const Arguments& arguments,
                   Circumstances circumstances) {
    const bool endsItself = std::count(arguments.begin(), arguments.end(), "--status") == 0;
    if (!endsItself) {
        circumstances.patience = std::min(circumstances.patience, longestMonitoring(circumstances));
    }
    TranscriptCase row;
    row.situation = situation;
    row.name = name;
    row.arguments = arguments;
    row.circumstances = circumstances;
    cases.push_back(std::move(row));
}

}  // namespace vantric_test
