#include "tests/transcripts/CaseList.h"

#include <algorithm>
#include <map>
#include <utility>

namespace vantric_test {

namespace {

// The monitor never ends by itself: two cycles of it are seen in this time, unless they are long.
constexpr seconds monitorPatience(13);

Arguments argumentsOf(const std::string& command) {
    static const std::map<std::string, std::string> values = {
        {"setwifi", "office"}, {"setConfig", "site-b.cfg"}, {"setConfigKeepWifi", "site-b.cfg"}};
    Arguments result = {"--" + command};
    if (const auto value = values.find(command); value != values.end()) {
        result.push_back(value->second);
    }
    return result;
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

void CaseList::add(const char* situation, const Circumstances& circumstances,
                   const std::vector<std::string>& commands) {
    for (const std::string& command : commands) {
        add(situation, command, argumentsOf(command), circumstances);
    }
}

void CaseList::add(const char* situation, const std::string& name, const Arguments& arguments,
                   Circumstances circumstances) {
    const bool isEndless = std::count(arguments.begin(), arguments.end(), "--status") != 0;
    if (isEndless && circumstances.patience == Circumstances().patience) {
        circumstances.patience = monitorPatience;
    }
    TranscriptCase row;
    row.situation = situation;
    row.name = name;
    row.arguments = arguments;
    row.circumstances = circumstances;
    cases.push_back(std::move(row));
}

std::vector<TranscriptCase> transcriptCases() {
    CaseList list;
    addServers(list);
    addStates(list);
    addTimes(list);
    addCommandLines(list);
    addHindrances(list);
    addCtl(list);
    return list.cases;
}

}  // namespace vantric_test
