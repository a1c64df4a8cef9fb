// What the client finds in the segments, and when it cannot read them.
#include <utility>

#include "tests/transcripts/CaseList.h"

namespace vantric_test {

namespace {

void addStatesThatCannotBeRead(CaseList& list) {
    list.add("stale", until(seconds(10), server("stale_state.json")),
             {"status", "enablewifi", "disablewifi", "switchtowifi", "switchtocarrier", "setwifi",
              "setConfig", "setConfigKeepWifi"});
    list.add("stale", server("stale_state.json"), {"availablewifi", "forgetwifi", "statuscapi"});
    list.add("stale_at_first", server("stale_for_a_while.json"), readingFirst);
    list.add("stale_at_first", server("stale_for_a_while.json"), {"forgetwifi"});
    list.add("stale_for_long", server("stale_for_long.json"), readingFirst);
    list.add("stale_in_mid_wait", server("stale_in_mid_wait.json"),
             {"switchtowifi", "setwifi", "forgetwifi", "status"});
    list.add("as_old_as_allowed", server("as_old_as_allowed.json"),
             {"enablewifi", "status", "setwifi", "setConfigKeepWifi", "forgetwifi"});
    list.add("from_the_future", server("from_the_future.json"),
             {"enablewifi", "status", "setwifi", "setConfigKeepWifi", "forgetwifi"});

    list.add("invalid", until(seconds(75), server("headers_invalid.json")), {"status"});
    list.add("invalid", server("headers_invalid.json"), Names(all.begin() + 1, all.end()));
    list.add("invalid_at_first", server("headers_invalid_at_first.json"), all);
    list.add("invalid_in_mid_wait", until(seconds(45), server("headers_invalid_in_mid_wait.json")),
             {"switchtowifi", "setwifi", "availablewifi", "forgetwifi", "statuscapi", "status"});
    list.add("wrong_version", until(seconds(75), server("wrong_version.json")), {"status"});
    list.add("wrong_version", server("wrong_version.json"), Names(all.begin() + 1, all.end()));

    list.add("unreadable_at_first_look",
             hindered(heldCommandChannel, "unreadable_at_first_look.json"), readingFirst);
    list.add("never_readable_again", hindered(heldCommandChannel, "never_readable_again.json"),
             waiting);
    list.add("invalid_at_first_look", hindered(heldCommandChannel, "invalid_at_first_look.json"),
             waiting);
}

// What is saved before a configuration is loaded may be lost on the way, or stem from several
// states.
void addSettingsThatChange(CaseList& list) {
    const std::pair<const char*, const char*> scenarios[] = {
        {"stale", "settings_stale.json"},
        {"stale_behind_name", "settings_stale_behind_name.json"},
        {"stale_behind_password", "settings_stale_behind_password.json"},
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
    add("second_failing", "second_cycle_fails.json", seconds(45));
    add("state_invalid_twice", "state_invalid_twice.json", seconds(30));
    add("list_invalid_twice", "list_invalid_twice.json", seconds(60));
}

void addContents(CaseList& list) {
    list.add("networks", "none", {"--availablewifi"}, server("empty_list.json"));
    list.add("networks", "hundred", {"--availablewifi"}, server("hundred_networks.json"));
    Circumstances equalLevels = server("equal_levels.json");
    equalLevels.networksAreSorted = true;
    list.add("networks", "equal_levels", {"--availablewifi"}, equalLevels);

    for (const char* scenario : {"awkward_names", "control_bytes"}) {
        list.add(scenario, server((std::string(scenario) + ".json").c_str()),
                 {"status", "setConfigKeepWifi", "availablewifi", "statuscapi"});
    }
    const std::pair<const char*, const char*> names[] = {
        {"commas", "a,b,, c"},
        {"blanks", " two  blanks "},
        {"empty", ""},
        {"non_ascii", "caf\xc3\xa9 \xe6\x9d\xb1"},
        {"no_utf8", "\xff\xfe\x80"},
        {"control_bytes", "\x01\x1b[31m\t\n\r\x7f"},
        {"quotes", "\"quoted\" \\x41"},
        {"percent", "%s%n%d"},
        {"longest", "exactly thirty-two bytes of name"}};
    for (const auto& [file, name] : names) {
        list.add("setwifi_names", file, {"--setwifi", name}, server("default.json"));
    }
    list.add("setwifi_names", "too_long", {"--setwifi", "more than the thirty-two bytes of a name"},
             server("default.json"));
    list.add("setConfig_names", "awkward", {"--setConfig", "/etc/a, b\n\xc3\xa9.cfg"},
             server("default.json"));
    list.add("setConfig_names", "empty", {"--setConfig", ""}, server("default.json"));

    list.add("unknown_values", server("unknown_values.json"),
             {"status", "enablewifi", "availablewifi", "statuscapi", "setConfigKeepWifi"});
    list.add("no_connectivity", server("no_connectivity.json"),
             {"status", "disablewifi", "statuscapi"});
}

}  // namespace

void addStates(CaseList& list) {
    addStatesThatCannotBeRead(list);
    addSettingsThatChange(list);
    addCycles(list);
    addContents(list);
}

}  // namespace vantric_test
