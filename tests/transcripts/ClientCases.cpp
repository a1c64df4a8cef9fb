// Command lines, and what keeps a client from its server, its output or its memory.
#include "tests/transcripts/CaseList.h"

namespace vantric_test {

void addCommandLines(CaseList& list) {
    const auto add = [&](const char* name, const Arguments& arguments) {
        list.add("command_line", name, arguments, server("default.json"));
    };
    add("unknown_words", {"frobnicate", "--STATUS", "--enablewif", "-help", "--setwifi=home", ""});
    add("help", {"--help"});
    add("h_in_the_middle", {"--enablewifi", "-h", "--status"});
    add("several", {"--disablewifi", "nonsense", "--availablewifi", "--statuscapi", "--setwifi",
                    "office", "--forgetwifi", "--enablewifi"});
    add("value_availablewifi", {"--setwifi", "--availablewifi"});
    add("value_h", {"--setConfig", "-h", "--enablewifi"});
    add("value_setConfig", {"--setConfigKeepWifi", "--setConfig", "a.cfg"});
    add("setConfigKeepWifi_without_value", {"--setConfigKeepWifi"});
    add("without_value_after_others", {"--enablewifi", "--statuscapi", "--setConfig"});
    add("without_value_as_value", {"--setwifi", "--setwifi"});
    add("named_help", {"--enablewifi"});
    list.cases.back().commandName = "--help";
}

void addHindrances(CaseList& list) {
    // A handle that cannot connect gives up at once; what follows is not touched by it.
    const Arguments several = {"--statuscapi", "--forgetwifi", "--availablewifi", "--statuscapi",
                               "--forgetwifi", "--setConfig",  "site-b.cfg"};
    list.add("foreign_objects", hindered(foreignObjects, "default.json"), {"switchtowifi"});
    list.add("foreign_objects", "several", several, hindered(foreignObjects, "default.json"));
    list.add("foreign_for_long", hindered(foreignObjectsForLong, "default.json"), {"setwifi"});
    list.add("no_descriptors", "several", several, hindered(noDescriptors, "default.json"));
    list.add("full_memory", until(seconds(75), hindered(fullSharedMemory, "")), {"status"});
    list.add("full_memory", "several", several, hindered(fullSharedMemory, ""));

    // The longest argument that the system passes on needs memory of its own wherever it is copied.
    list.add("no_memory", "setConfig", {"--setConfig", std::string(131'071, 'n'), "--enablewifi"},
             hindered(noMemory, "stale_until_two.json"));

    list.add("output_closed", writingTo(ClientOutput::Closed), {"switchtowifi", "statuscapi"});
    list.add("output_reader_gone", writingTo(ClientOutput::ReaderGone),
             {"switchtowifi", "forgetwifi"});
    list.add("output_reader_gone_unsignalled", writingTo(ClientOutput::ReaderGoneUnsignalled),
             {"availablewifi"});
    list.add("output_full", "several", {"--enablewifi", "--setwifi", "office", "-h"},
             writingTo(ClientOutput::FullDevice));

    // Log records among the lines of a command.
    list.add("logged_connection", logging("error", hindered(foreignObjects, "default.json")),
             {"statuscapi"});
    list.add("logged_stale", logging("error", server("stale_for_a_while.json")),
             {"status", "setConfigKeepWifi"});
    list.add("logged_invalid", logging("error", server("headers_invalid_at_first.json")),
             {"setConfig"});
    list.add("logged_settings", logging("error", hindered(slowLocks, "settings_stale.json")),
             {"setConfigKeepWifi"});
    list.add("logged_timeout", logging("warning", server("requests_ignored.json")), {"forgetwifi"});
    list.add("logged_nothing", logging("trace", server("default.json")), {"setConfigKeepWifi"});
}

}  // namespace vantric_test
