// Servers that answer, that do not, and that go away; and when they do it.
#include "tests/transcripts/CaseList.h"

namespace vantric_test {

namespace {

void addHealthyServers(CaseList& list) {
    list.add("served", server("default.json"),
             {"status", "enablewifi", "switchtowifi", "setwifi", "setConfig", "setConfigKeepWifi",
              "availablewifi", "forgetwifi", "statuscapi"});
    list.add("served", server("on_wifi.json"), {"disablewifi", "switchtocarrier"});
    list.add("served", "switchtowifi_slow", {"--switchtowifi"}, server("slow_switch.json"));
    list.add("served", "setConfigKeepWifi_other_settings", {"--setConfigKeepWifi", "factory.cfg"},
             server("factory_settings.json"));
    list.add("served", "status_changing", {"--status"}, server("changing_state.json"));

    list.add("already_there", server("on_wifi.json"), {"enablewifi", "switchtowifi"});
    list.add("already_there", "setwifi", {"--setwifi", "home"}, server("default.json"));
    list.add("already_there", server("no_wifi_configured.json"), {"forgetwifi"});
}

void addServersThatDoNotAnswer(CaseList& list) {
    list.add("no_server", until(seconds(75), {}), {"status"});
    list.add("no_server", {}, {"switchtowifi", "availablewifi", "statuscapi"});
    list.add("no_server", "setwifi_empty", {"--setwifi", ""}, {});

    list.add("stuck", server("stuck_switch.json"), {"switchtowifi"});
    list.add("stuck", server("on_wifi_stuck.json"), {"switchtocarrier"});
    list.add("stuck", until(seconds(75), server("requests_ignored.json")), {"status"});
    list.add("stuck", server("requests_ignored.json"),
             {"availablewifi", "forgetwifi", "statuscapi"});
    list.add("stuck", "setwifi_other_case", {"--setwifi", "Home"}, server("requests_ignored.json"));
    list.add("stuck", "availablewifi_first_only", {"--availablewifi", "--availablewifi"},
             server("ignored_scan.json"));

    list.add("vanishing", server("vanishes_in_mid_wait.json"), {"switchtowifi", "availablewifi"});
    list.add("vanishing", until(seconds(45), server("vanishes_in_mid_wait.json")), {"status"});
    // Polls of the state while the server is away, and what is sent in that time.
    list.add("vanishing_unreadable", hindered(heldCommandChannel, "away_while_unreadable.json"),
             {"setConfigKeepWifi"});
    list.add("vanishing_invalid", "setConfig", {"--setConfig", "site-b.cfg", "--statuscapi"},
             hindered(heldCommandChannel, "away_while_invalid.json"));
}

// The shipped scenarios that tell of faults.
void addShippedFaults(CaseList& list) {
    list.add("full_ring", until(seconds(75), server("full_ring.json")), {"status"});
    list.add("full_ring", server("full_ring.json"), {"statuscapi"});
    // Four of these long frames fit; the next one does not, and shorter ones after it do. The last
    // command lasts until the frames are taken out.
    Arguments fillingTheRing;
    for (const char letter : {'a', 'b', 'c', 'd', 'e'}) {
        fillingTheRing.insert(fillingTheRing.end(), {"--setConfig", std::string(1000, letter)});
    }
    fillingTheRing.insert(fillingTheRing.end(), {"--enablewifi", "--forgetwifi"});
    list.add("full_ring", "several", fillingTheRing, server("full_ring.json"));

    list.add("invalid_header", until(seconds(20), server("invalid_header.json")), {"status"});

    // Another command's connection frees the lock.
    list.add("dies_holding_the_lock", "several", {"--setwifi", "home", "--status"},
             until(seconds(40), server("dies_holding_the_lock.json")));

    list.add("vanishes_and_comes_back", until(seconds(30), server("vanishes_and_comes_back.json")),
             {"status"});
    // The first command ends while the server is away, and the second one begins then.
    list.add("vanishes_and_comes_back", "setConfigKeepWifi",
             {"--switchtowifi", "--setConfigKeepWifi", "site-b.cfg", "--statuscapi"},
             server("vanishes_and_comes_back.json"));
}

}  // namespace

void addServers(CaseList& list) {
    addHealthyServers(list);
    addServersThatDoNotAnswer(list);
    addShippedFaults(list);
}

void addTimes(CaseList& list) {
    // The limit of a change: a poll exactly five minutes after the first one is the last.
    list.add("just_in_time", server("changes_just_in_time.json"), {"switchtowifi", "setwifi"});
    list.add("just_too_late", server("changes_just_too_late.json"), {"switchtowifi"});
    list.add("readable_just_in_time", hindered(heldCommandChannel, "readable_just_in_time.json"),
             {"setConfig"});
    list.add("readable_just_too_late", hindered(heldCommandChannel, "readable_just_too_late.json"),
             {"setConfig"});

    // The limit of an answer: the time is taken before the sleep after which the answer is seen.
    list.add("answer_just_in_time", until(seconds(33), server("answers_just_in_time.json")),
             {"status", "availablewifi"});
    list.add("answer_just_in_time", server("answers_just_in_time.json"), {"statuscapi"});
    list.add("answer_just_too_late", until(seconds(33), server("answers_just_too_late.json")),
             {"status"});

    list.add("slow_locks", hindered(slowLocks, "default.json"),
             {"status", "switchtowifi", "setConfigKeepWifi", "availablewifi", "forgetwifi",
              "statuscapi"});
    // Polls every 3.3 seconds: the first one after the limit comes 300 milliseconds after it.
    list.add("slow_locks_stuck", hindered(slowLocks, "stuck_switch.json"), {"switchtowifi"});
    list.add("slow_locks_stuck", hindered(slowLocks, "requests_ignored.json"),
             {"availablewifi", "statuscapi"});

    // Changes are timed by the wall clock, answers limited by the monotonic one.
    list.add("clock_forwards", hindered(wallClockSetForwards, "slow_reactions.json"),
             {"status", "switchtowifi", "availablewifi", "statuscapi"});
    list.add("clock_backwards", hindered(wallClockSetBackwards, "slow_reactions.json"),
             {"setConfig"});
    list.add("clock_backwards", "switchtowifi_stuck", {"--switchtowifi"},
             hindered(wallClockSetBackwards, "stuck_switch.json"));
}

}  // namespace vantric_test
