// Log records among the lines of a command.
#include "tests/transcripts/CaseList.h"

namespace vantric_test {

void addLogs(CaseList& list) {
    list.add("logged_connection", logging("error", hindered(foreignObjects, "default.json")), all);
    list.add("logged_stale", logging("error", server("stale_for_a_while.json")),
             {"status", "enablewifi", "switchtowifi", "setwifi", "setConfig", "setConfigKeepWifi"});
    list.add("logged_invalid", logging("error", server("headers_invalid_at_first.json")), all);
    list.add("logged_settings", logging("error", hindered(slowLocks, "settings_stale.json")),
             {"setConfigKeepWifi"});

    list.add("logged_timeout", "forgetwifi_error", {"--forgetwifi"},
             logging("error", server("requests_ignored.json")));
    list.add("logged_timeout", logging("warning", server("requests_ignored.json")),
             {"forgetwifi", "statuscapi", "availablewifi"});
    list.add("logged_timeout", logging("warning", server("stuck_switch.json")), {"switchtowifi"});
    list.add("logged_nothing", logging("trace", server("default.json")),
             {"status", "setConfigKeepWifi", "availablewifi", "forgetwifi", "statuscapi"});
}

}  // namespace vantric_test
