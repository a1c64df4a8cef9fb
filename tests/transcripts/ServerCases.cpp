// Servers that answer, that do not, and that go away.
#include <utility>

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
    list.add("served", "forgetwifi_password_left", {"--forgetwifi"}, server("password_left.json"));
    list.add("served", "forgetwifi_encryption_left", {"--forgetwifi"},
             server("encryption_left.json"));
    list.add("served", "status_changing", {"--status"}, server("changing_state.json"));
    list.add("served", "setConfig_slow_load", {"--setConfig", "site-b.cfg"},
             server("long_configuration_load.json"));
    list.add("served", "setConfig_twice", {"--setConfig", "a.cfg", "--setConfig", "/etc/b 2.cfg"},
             server("default.json"));

    list.add("already_there", server("on_wifi.json"), {"enablewifi", "switchtowifi"});
    list.add("already_there", server("default.json"), {"disablewifi", "switchtocarrier"});
    list.add("already_there", "setwifi", {"--setwifi", "home"}, server("default.json"));
    list.add("already_there", server("no_wifi_configured.json"), {"forgetwifi"});
    list.add("already_there", server("keeps_publishing.json"), {"setConfig", "setConfigKeepWifi"});
}

void addServersThatDoNotAnswer(CaseList& list) {
    list.add("no_server", until(seconds(75), {}), {"status"});
    list.add("no_server", {}, Names(all.begin() + 1, all.end()));

    list.add("no_server", "setwifi_empty", {"--setwifi", ""}, {});

    list.add("stuck", server("stuck_switch.json"), {"switchtowifi"});
    list.add("stuck", server("on_wifi_stuck.json"), {"switchtocarrier"});
    list.add("stuck", until(seconds(75), server("requests_ignored.json")), {"status"});
    list.add("stuck", server("requests_ignored.json"),
             {"setwifi", "availablewifi", "forgetwifi", "statuscapi"});
    const std::pair<const char*, const char*> almost[] = {{"other_case", "Home"},
                                                          {"shorter", "hom"},
                                                          {"longer", "homes"},
                                                          {"blank_behind", "home "},
                                                          {"empty", ""}};
    for (const auto& [difference, name] : almost) {
        const std::string file = std::string("setwifi_") + difference;
        list.add("stuck", file.c_str(), {"--setwifi", name}, server("requests_ignored.json"));
    }
    list.add("stuck", "several", {"--forgetwifi", "--statuscapi", "--enablewifi"},
             server("requests_ignored.json"));
    list.add("stuck", "availablewifi_first_only", {"--availablewifi", "--availablewifi"},
             server("ignored_scan.json"));

    list.add("vanishing", server("vanishes_in_mid_wait.json"),
             {"switchtowifi", "setwifi", "setConfig", "setConfigKeepWifi", "availablewifi",
              "forgetwifi", "statuscapi"});
    list.add("vanishing", until(seconds(45), server("vanishes_in_mid_wait.json")), {"status"});
    list.add("vanishing", server("vanishes_on_wifi.json"), {"switchtocarrier"});
    // Looks at the state while the server is away, and what is sent in that time.
    list.add("vanishing_unreadable", hindered(heldCommandChannel, "away_while_unreadable.json"),
             {"setConfig", "setConfigKeepWifi"});
    list.add("vanishing_invalid", "setConfig", {"--setConfig", "site-b.cfg", "--statuscapi"},
             hindered(heldCommandChannel, "away_while_invalid.json"));
    list.add("vanishing_invalid", "setConfigKeepWifi",
             {"--setConfigKeepWifi", "site-b.cfg", "--statuscapi"},
             hindered(heldCommandChannel, "away_while_invalid.json"));
    list.add("vanishing", "switchtowifi_for_long", {"--switchtowifi"},
             server("vanishes_for_long.json"));
}

// The shipped scenarios that tell of faults, for every command that they touch.
void addShippedFaults(CaseList& list) {
    list.add("full_ring", until(seconds(75), server("full_ring.json")), {"status"});
    list.add("full_ring", server("full_ring.json"),
             {"switchtowifi", "switchtocarrier", "setwifi", "forgetwifi", "statuscapi"});
    // The second command lasts until the frames are taken out.
    const std::pair<const char*, Arguments> shortCommands[] = {
        {"enablewifi", {"--enablewifi", "--forgetwifi"}},
        {"disablewifi", {"--disablewifi", "--forgetwifi"}},
        {"setConfig", {"--setConfig", "site-b.cfg", "--forgetwifi"}},
        {"setConfigKeepWifi", {"--setConfigKeepWifi", "site-b.cfg", "--forgetwifi"}},
        {"availablewifi", {"--availablewifi", "--forgetwifi"}}};
    for (const auto& [name, arguments] : shortCommands) {
        list.add("full_ring", name, arguments, server("full_ring.json"));
    }
    // Four of these long frames fit; the next one does not, and shorter ones behind it do.
    Arguments fillingTheRing;
    for (const char letter : {'a', 'b', 'c', 'd', 'e'}) {
        fillingTheRing.insert(fillingTheRing.end(), {"--setConfig", std::string(1000, letter)});
    }
    fillingTheRing.insert(fillingTheRing.end(), {"--enablewifi", "--forgetwifi"});
    list.add("full_ring", "several", fillingTheRing, server("full_ring.json"));

    list.add("invalid_header", server("invalid_header.json"), readingFirst);
    list.add("invalid_header", until(seconds(20), server("invalid_header.json")), {"status"});
    list.add("invalid_header", server("invalid_header.json"), {"forgetwifi"});

    list.add("dies_holding_the_lock", until(seconds(20), server("dies_holding_the_lock.json")),
             {"status", "switchtowifi", "setwifi", "setConfigKeepWifi"});
    // Another command's connection frees the lock.
    list.add("dies_holding_the_lock", "several", {"--setwifi", "home", "--status"},
             until(seconds(40), server("dies_holding_the_lock.json")));

    list.add("vanishes_and_comes_back", until(seconds(30), server("vanishes_and_comes_back.json")),
             {"status"});
    // The first command ends while the server is away, and the others begin then.
    const std::pair<const char*, Arguments> others[] = {
        {"enablewifi", {"--enablewifi", "--statuscapi"}},
        {"disablewifi", {"--disablewifi", "--statuscapi"}},
        {"switchtocarrier", {"--switchtocarrier"}},
        {"setwifi", {"--setwifi", "office"}},
        {"setConfig", {"--setConfig", "site-b.cfg", "--statuscapi"}},
        {"setConfigKeepWifi", {"--setConfigKeepWifi", "site-b.cfg", "--statuscapi"}},
        {"availablewifi", {"--availablewifi"}},
        {"forgetwifi", {"--forgetwifi"}},
        {"statuscapi", {"--statuscapi"}}};
    for (const auto& [name, arguments] : others) {
        Arguments line = {"--switchtowifi"};
        line.insert(line.end(), arguments.begin(), arguments.end());
        list.add("vanishes_and_comes_back", name, line, server("vanishes_and_comes_back.json"));
    }
}

}  // namespace

void addServers(CaseList& list) {
    addHealthyServers(list);
    addServersThatDoNotAnswer(list);
    addShippedFaults(list);
}

}  // namespace vantric_test
