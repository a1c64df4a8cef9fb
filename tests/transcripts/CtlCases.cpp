// The commands of vantricctl.
#include "tests/transcripts/CaseList.h"

namespace vantric_test {

void addCtl(CaseList& list) {
    const auto add = [&](const char* name, const Arguments& arguments,
                         const Circumstances& circumstances) {
        list.add("vantricctl", name, arguments, circumstances);
        list.cases.back().commandName = "vantricctl";
        list.cases.back().program = VANTRICCTL_PATH;
    };
    add("status", {"status"}, server("default.json"));
    add("status_stale", {"status"}, server("stale_state.json"));
    add("scan", {"scan"}, server("equal_networks.json"));
    Circumstances terminal = writingTo(ClientOutput::Terminal);
    terminal.scenario = "full_ring.json";
    add("scan_queued", {"scan", "--timeout", "3"}, terminal);
    terminal.scenario = "";
    add("inspect_watch", {"inspect", "--watch", "--timeout", "3"}, terminal);
    add("switch", {"switch", "wifi"}, server("default.json"));
    add("switch_taken", {"switch", "wifi", "--timeout", "3"}, server("stuck_switch.json"));
    add("join", {"join", "office"}, server("default.json"));
    add("forget", {"forget"}, server("default.json"));
    // A file that every machine has; its name becomes the host name.
    const std::string file = "/dev/null";
    add("load_config", {"load-config", file, "--keep-wifi", "--expect-hostname", "null"},
        server("default.json"));
    add("load_config_doubtful", {"load-config", file, "--timeout", "3"},
        server("configuration_ignored.json"));
    add("load_config_other_hostname",
        {"load-config", file, "--expect-hostname", "other", "--timeout", "8"},
        server("default.json"));
    add("watch", {"watch", "--timeout", "16"}, server("vanishes_and_comes_back.json"));
    add("watch_json", {"watch", "--json", "--timeout", "5"}, server("changing_state.json"));
}

}  // namespace vantric_test
