#include <algorithm>
#include <utility>

#include "tests/transcripts/TranscriptCase.h"

namespace vantric_test {

namespace {

using std::chrono::seconds;
using Arguments = std::vector<std::string>;
using Names = std::vector<std::string>;

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

// The commands of a kind.
const Names all = {"status",          "enablewifi", "disablewifi", "switchtowifi",
                   "switchtocarrier", "setwifi",    "setConfig",   "setConfigKeepWifi",
                   "availablewifi",   "forgetwifi", "statuscapi"};
const Names ofTheClass = {"status",       "enablewifi",        "disablewifi",
                          "switchtowifi", "switchtocarrier",   "setwifi",
                          "setConfig",    "setConfigKeepWifi", "availablewifi"};
const Names readingFirst = {"enablewifi", "disablewifi", "switchtowifi",     "switchtocarrier",
                            "setwifi",    "setConfig",   "setConfigKeepWifi"};
const Names waiting = {"switchtowifi", "switchtocarrier", "setwifi", "setConfig",
                       "setConfigKeepWifi"};

// Two cycles of the monitor, unless they are long.
constexpr seconds monitorPatience(13);

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

Circumstances writingTo(ClientOutput output) {
    Circumstances result = server("default.json");
    result.output = output;
    return result;
}

class CaseList {
  public:
    // One case for each of the named commands.
    void add(const char* situation, const Circumstances& circumstances, const Names& names) {
        for (const Invocation& invocation : invocations()) {
            if (std::count(names.begin(), names.end(), invocation.name) != 0) {
                add(situation, invocation.name, invocation.arguments, circumstances);
            }
        }
    }

    void add(const char* situation, const char* name, const Arguments& arguments,
             Circumstances circumstances) {
        const bool endsItself = std::count(arguments.begin(), arguments.end(), "--status") == 0;
        if (!endsItself) {
            circumstances.patience =
                std::min(circumstances.patience, longestMonitoring(circumstances));
        }
        TranscriptCase row;
        row.situation = situation;
        row.name = name;
        row.arguments = arguments;
        row.circumstances = circumstances;
        cases.push_back(std::move(row));
    }

    std::vector<TranscriptCase> cases;

  private:
    static seconds longestMonitoring(const Circumstances& circumstances) {
        return circumstances.patience == Circumstances().patience ? monitorPatience
                                                                  : circumstances.patience;
    }
};

void addHealthyServers(CaseList& list) {
    list.add("served", server("default.json"),
             {"status", "enablewifi", "switchtowifi", "setwifi", "setConfig", "setConfigKeepWifi",
              "availablewifi", "forgetwifi", "statuscapi"});
    list.add("served", server("on_wifi.json"), {"disablewifi", "switchtocarrier"});
    list.add("served", "switchtowifi_slow", {"--switchtowifi"}, server("slow_switch.json"));
    list.add("served", "switchtowifi_just_in_time", {"--switchtowifi"},
             server("switch_just_in_time.json"));
    list.add("served", "switchtowifi_just_too_late", {"--switchtowifi"},
             server("switch_just_too_late.json"));
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

void addStatesThatCannotBeRead(CaseList& list) {
    list.add("stale", until(seconds(10), server("stale_state.json")),
             {"status", "enablewifi", "disablewifi", "switchtowifi", "switchtocarrier", "setwifi",
              "setConfig", "setConfigKeepWifi"});
    list.add("stale", server("stale_state.json"), {"availablewifi", "forgetwifi", "statuscapi"});
    list.add("stale_at_first", server("stale_for_a_while.json"), readingFirst);
    list.add("stale_at_first", server("stale_for_a_while.json"), {"forgetwifi"});
    list.add("stale_in_mid_wait", server("stale_in_mid_wait.json"),
             {"switchtowifi", "setwifi", "forgetwifi", "status"});
    list.add("as_old_as_allowed", server("as_old_as_allowed.json"), {"enablewifi", "status"});

    list.add("invalid", until(seconds(75), server("headers_invalid.json")), {"status"});
    list.add("invalid", server("headers_invalid.json"), Names(all.begin() + 1, all.end()));
    list.add("invalid_at_first", server("headers_invalid_at_first.json"), all);
    list.add("invalid_in_mid_wait", until(seconds(45), server("headers_invalid_in_mid_wait.json")),
             {"switchtowifi", "setwifi", "availablewifi", "forgetwifi", "statuscapi", "status"});
    list.add("wrong_version", until(seconds(75), server("wrong_version.json")), {"status"});
    list.add("wrong_version", server("wrong_version.json"), Names(all.begin() + 1, all.end()));

    list.add("unreadable_at_first_look",
             hindered(heldCommandChannel, "unreadable_at_first_look.json"), waiting);
    list.add("never_readable_again", hindered(heldCommandChannel, "never_readable_again.json"),
             waiting);
    list.add("invalid_at_first_look", hindered(heldCommandChannel, "invalid_at_first_look.json"),
             waiting);
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
}

void addLostOutput(CaseList& list) {
    list.add("output_closed", writingTo(ClientOutput::Closed), all);
    list.add("output_reader_gone", writingTo(ClientOutput::ReaderGone), all);
    list.add("output_reader_gone_unsignalled", writingTo(ClientOutput::ReaderGoneUnsignalled), all);
    list.add("output_full", writingTo(ClientOutput::FullDevice), all);
    list.add("output_full", "several", {"--enablewifi", "--setwifi", "office", "-h"},
             writingTo(ClientOutput::FullDevice));
}

}  // namespace

std::vector<TranscriptCase> transcriptCases() {
    CaseList list;
    addHealthyServers(list);
    addServersThatDoNotAnswer(list);
    addStatesThatCannotBeRead(list);
    addContents(list);
    addCommandLines(list);
    addConnectionsThatFail(list);
    addLostOutput(list);
    return list.cases;
}

}  // namespace vantric_test
