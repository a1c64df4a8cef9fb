// What the client finds in the segments, and when it cannot read them.
#include <utility>

#include "tests/transcripts/CaseList.h"

namespace vantric_test {

namespace {

void addStatesThatCannotBeRead(CaseList& list) {
    list.add("stale", until(seconds(10), server("stale_state.json")), {"status", "enablewifi"});
    list.add("stale_at_first", server("stale_for_a_while.json"),
             {"setwifi", "setConfigKeepWifi", "forgetwifi"});
    list.add("stale_for_long", server("stale_for_long.json"), {"setConfig"});
    list.add("stale_in_mid_wait", server("stale_in_mid_wait.json"),
             {"switchtowifi", "forgetwifi", "status"});
    list.add("as_old_as_allowed", server("as_old_as_allowed.json"), {"enablewifi"});
    list.add("from_the_future", server("from_the_future.json"), {"setwifi"});

    list.add("invalid", server("headers_invalid.json"), {"setwifi"});
    list.add("invalid_at_first", server("headers_invalid_at_first.json"),
             {"status", "setConfigKeepWifi"});
    list.add("invalid_in_mid_wait", until(seconds(45), server("headers_invalid_in_mid_wait.json")),
             {"switchtowifi", "statuscapi", "status"});
    list.add("wrong_version", until(seconds(75), server("wrong_version.json")), {"status"});
    list.add("wrong_version", server("wrong_version.json"), {"statuscapi"});

    list.add("unreadable_at_first_poll",
             hindered(heldCommandChannel, "unreadable_at_first_poll.json"),
             {"switchtowifi", "setConfigKeepWifi"});
    list.add("never_readable_again", hindered(heldCommandChannel, "never_readable_again.json"),
             {"switchtocarrier", "setwifi"});
    list.add("invalid_at_first_poll", hindered(heldCommandChannel, "invalid_at_first_poll.json"),
             {"setwifi"});
}

// What is saved before a configuration is loaded may be lost on the way, or stem from several
// states.
void addSettingsThatChange(CaseList& list) {
    const std::pair<const char*, const char*> scenarios[] = {
        {"stale", "settings_stale.json"},
        {"stale_after_name", "settings_stale_after_name.json"},
        {"invalid", "settings_invalid.json"},
        {"changing", "settings_changing.json"}};
    for (const auto& [name, scenario] : scenarios) {
        list.add("settings", name, {"--setConfigKeepWifi", "site-b.cfg"},
                 hindered(slowLocks, scenario));
    }
}

void addCycles(CaseList& list) {
    const auto add = [&](const char* name, const char* scenario, seconds patience) {
        list.add("cycles", name, {"--status"}, until(patience, server(scenario)));
    };
    add("all_failing", "nothing_can_be_read.json", seconds(75));
    add("state_invalid_twice", "state_invalid_twice.json", seconds(30));
    add("list_invalid_twice", "list_invalid_twice.json", seconds(60));
}

void addContents(CaseList& list) {
    list.add("networks", "none", {"--availablewifi"}, server("empty_list.json"));
    list.add("networks", "hundred", {"--availablewifi"}, server("hundred_networks.json"));
    Circumstances equalLevels = server("equal_levels.json");
    equalLevels.networksAreSorted = true;
    list.add("networks", "equal_levels", {"--availablewifi"}, equalLevels);

    list.add("awkward_names", server("awkward_names.json"),
             {"status", "setConfigKeepWifi", "availablewifi"});
    list.add("control_bytes", server("control_bytes.json"), {"availablewifi", "statuscapi"});
    const std::pair<const char*, const char*> names[] = {
        {"commas", "a,b,, c"},
        {"bytes", "\x01\x1b[31m\t\n\r\x7f\xff \"\\x41\" %s%n"},
        {"too_long", "more than the thirty-two bytes of a name"}};
    for (const auto& [file, name] : names) {
        list.add("setwifi_names", file, {"--setwifi", name}, server("default.json"));
    }
    list.add("setConfig_names", "awkward", {"--setConfig", "/etc/a, b\n\xc3\xa9.cfg"},
             server("default.json"));

    list.add("unknown_values", server("unknown_values.json"),
             {"status", "availablewifi", "statuscapi"});
    list.add("no_connectivity", server("no_connectivity.json"), {"status", "disablewifi"});
}

}  // namespace

void addStates(CaseList& list) {
    addStatesThatCannotBeRead(list);
    addSettingsThatChange(list);
    addCycles(list);
    addContents(list);
}

}  // namespace vantric_test
