#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

#include "client/Output.h"
#include "tests/support/Roles.h"

namespace {

using namespace std::string_view_literals;
using namespace vantric_test;

const RoleRegistration numbers("numbers", [](const Arguments&) {
    vantricprobe::writeLine(INT64_MIN, " ", int64_t{0}, " ", int64_t{-7}, " ", INT64_MAX);
    return 0;
});

const RoleRegistration rawBytes("rawBytes", [](const Arguments&) {
    vantricprobe::writeLine("a\0b\x01\x1b[31m\xff %d %s"sv);
    return 0;
});

// Ends without flushing what is still buffered.
const RoleRegistration openLine("openLine", [](const Arguments&) {
    vantricprobe::writeLine("closed");
    vantricprobe::write("\nopen");
    std::_Exit(0);
    return 0;
});

TEST(Output, writesNumbersInPlainDecimal) {
    EXPECT_EQ(run(roleCommand("numbers")).output,
              "-9223372036854775808 0 -7 9223372036854775807\n");
}

TEST(Output, writesTextsAsTheyAre) {
    EXPECT_EQ(run(roleCommand("rawBytes")).output, "a\0b\x01\x1b[31m\xff %d %s\n"sv);
}

TEST(Output, flushesOnlyWhereALineEnds) {
    EXPECT_EQ(run(roleCommand("openLine")).output, "closed\n");
}

}  // namespace
