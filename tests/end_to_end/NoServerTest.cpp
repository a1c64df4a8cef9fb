// What commands leave behind while no server has ever run.
#include <gtest/gtest.h>

#include "tests/end_to_end/Bench.h"
#include "tests/support/PublishedServer.h"

namespace {

using vantric_test::attachCount;
using vantric_test::probe;
using vantric_test::transcript;

// Commands disconnect at their end, which leaves everything attached.
TEST(WithoutServer, everyCommandStaysAttached) {
    transcript(probe({"--availablewifi", "--forgetwifi", "--statuscapi"}));
    for (const char* name :
         {"ModemStateShm", "ModemStateEx", "ModemWifiList", "ModemCommandsShm"}) {
        EXPECT_EQ(attachCount(name), 3U) << name;
    }
    EXPECT_EQ(vantric_test::attachedProducers(), 3U);
}

}  // namespace
