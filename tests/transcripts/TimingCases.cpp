// Limits of time, and what counts into a duration.
#include <utility>

#include "tests/transcripts/CaseList.h"

namespace vantric_test {

void addTimes(CaseList& list) {
    // The limit of a change: a look exactly five minutes behind the first one is the last.
    list.add("just_in_time", server("changes_just_in_time.json"), {"switchtowifi", "setwifi"});
    list.add("just_too_late", server("changes_just_too_late.json"), {"switchtowifi", "setwifi"});
    list.add("readable_just_in_time", hindered(heldCommandChannel, "readable_just_in_time.json"),
             waiting);
    list.add("readable_just_too_late", hindered(heldCommandChannel, "readable_just_too_late.json"),
             waiting);

    // The limit of an answer: the time is taken before the sleep behind which the answer is seen.
    list.add("answer_just_in_time", until(seconds(33), server("answers_just_in_time.json")),
             {"status", "availablewifi"});
    list.add("answer_just_in_time", server("answers_just_in_time.json"),
             {"forgetwifi", "statuscapi"});
    list.add("answer_just_too_late", until(seconds(33), server("answers_just_too_late.json")),
             {"status", "availablewifi"});
    list.add("answer_just_too_late", server("answers_just_too_late.json"),
             {"forgetwifi", "statuscapi"});

    list.add("slow_locks", hindered(slowLocks, "default.json"), all);
    list.add("slow_locks_stuck", hindered(slowLocks, "requests_ignored.json"),
             {"availablewifi", "forgetwifi", "statuscapi"});

    // Changes are timed by the wall clock, answers limited by the monotonic one.
    const std::pair<const char*, Hindrance (*)()> settings[] = {
        {"clock_forwards", wallClockSetForwards}, {"clock_backwards", wallClockSetBackwards}};
    for (const auto& [situation, hindrance] : settings) {
        list.add(situation, hindered(hindrance, "slow_reactions.json"),
                 {"status", "switchtowifi", "switchtocarrier", "setwifi", "setConfig",
                  "setConfigKeepWifi", "availablewifi", "forgetwifi", "statuscapi"});
    }
    list.add("clock_backwards", "switchtowifi_stuck", {"--switchtowifi"},
             hindered(wallClockSetBackwards, "stuck_switch.json"));
}

}  // namespace vantric_test
