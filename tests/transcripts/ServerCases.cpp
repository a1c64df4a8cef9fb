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
    list.add("vanishing", "switchtowifi_for_long", {"--switchtowifi"},
             server("vanishes_for_long.json"));
}

}  // namespace

void addServers(CaseList& list) {
    addHealthyServers(list);
    addServersThatDoNotAnswer(list);
}

}  // namespace vantric_test
