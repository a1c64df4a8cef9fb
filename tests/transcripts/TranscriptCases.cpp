#include <utility>

#include "tests/transcripts/CaseList.h"

namespace vantric_test {

void addCommandLines(CaseList& list) {
    const auto add = [&](const char* name, const Arguments& arguments) {
        list.add("command_line", name, arguments, server("default.json"));
    };
    add("no_arguments", {});
    add("unknown_words", {"frobnicate", "--STATUS", "--enablewif", "-help", "--setwifi=home", ""});
    add("h", {"-h"});
    add("help", {"--help"});
    add("h_first", {"-h", "--enablewifi"});
    add("h_in_the_middle", {"--enablewifi", "-h", "--status"});
    add("several", {"--disablewifi", "nonsense", "--availablewifi", "--statuscapi", "--setwifi",
                    "office", "--forgetwifi", "--enablewifi"});
    add("same_twice", {"--enablewifi", "--enablewifi"});
    add("behind_status", {"--status", "-h", "--enablewifi"});
    add("value_availablewifi", {"--setwifi", "--availablewifi"});
    add("value_status", {"--setwifi", "--status"});
    add("value_h", {"--setConfig", "-h", "--enablewifi"});
    add("value_setConfig", {"--setConfigKeepWifi", "--setConfig", "a.cfg"});
    add("setwifi_without_value", {"--setwifi"});
    add("setConfig_without_value", {"--setConfig"});
    add("setConfigKeepWifi_without_value", {"--setConfigKeepWifi"});
    add("without_value_behind_others", {"--enablewifi", "--statuscapi", "--setConfig"});
    add("without_value_as_value", {"--setwifi", "--setwifi"});
    const auto named = [&](const char* name, const char* commandName, const Arguments& arguments) {
        add(name, arguments);
        list.cases.back().commandName = commandName;
    };
    named("named_help", "--help", {"--enablewifi"});
    named("named_disablewifi", "--disablewifi", {});
    named("named_setwifi", "--setwifi", {"office"});
    named("named_setwifi_without_value", "--setwifi", {});
}

void addConnectionsThatFail(CaseList& list) {
    list.add("foreign_objects", hindered(foreignObjects, "default.json"), all);
    list.add("no_descriptors", hindered(noDescriptors, "default.json"), all);
    list.add("read_only_memory", hindered(readOnlySharedMemory, "default.json"), all);
    list.add("full_memory", until(seconds(75), hindered(fullSharedMemory, "")), {"status"});
    list.add("full_memory", hindered(fullSharedMemory, ""), Names(all.begin() + 1, all.end()));
    list.add("foreign_for_long",
             until(seconds(410), hindered(foreignObjectsForLong, "default.json")), {"status"});
    list.add("foreign_for_long", hindered(foreignObjectsForLong, "default.json"),
             Names(ofTheClass.begin() + 1, ofTheClass.end()));

    // The longest argument that the system passes on needs memory of its own wherever it is copied.
    const std::string longName(131'071, 'n');
    for (const char* option : {"--setwifi", "--setConfig", "--setConfigKeepWifi"}) {
        list.add("no_memory", option + 2, {option, longName, "--enablewifi"},
                 hindered(noMemory, "stale_until_two.json"));
    }

    // What fails once is tried once; what follows is not touched by it.
    const std::pair<const char*, Circumstances> hindrances[] = {
        {"foreign_objects", hindered(foreignObjects, "default.json")},
        {"no_descriptors", hindered(noDescriptors, "default.json")},
        {"read_only_memory", hindered(readOnlySharedMemory, "default.json")},
        {"full_memory", hindered(fullSharedMemory, "")}};
    for (const auto& [situation, circumstances] : hindrances) {
        list.add(situation, "several",
                 {"--statuscapi", "--forgetwifi", "--availablewifi", "--statuscapi", "--forgetwifi",
                  "--setConfig", "site-b.cfg"},
                 circumstances);
    }
}

void addLostOutput(CaseList& list) {
    list.add("output_closed", writingTo(ClientOutput::Closed), all);
    list.add("output_reader_gone", writingTo(ClientOutput::ReaderGone), all);
    list.add("output_reader_gone_unsignalled", writingTo(ClientOutput::ReaderGoneUnsignalled), all);
    list.add("output_full", writingTo(ClientOutput::FullDevice), all);
    list.add("output_full", "several", {"--enablewifi", "--setwifi", "office", "-h"},
             writingTo(ClientOutput::FullDevice));
}

std::vector<TranscriptCase> transcriptCases() {
    CaseList list;
    addServers(list);
    addStates(list);
    addTimes(list);
    addLogs(list);
    addCommandLines(list);
    addConnectionsThatFail(list);
    addLostOutput(list);
    return list.cases;
}

}  // namespace vantric_test
