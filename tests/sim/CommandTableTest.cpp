#include <gtest/gtest.h>

#include "sim/CommandTable.h"

namespace {

using namespace vantric_sim;

TEST(CommandTable, knowsTheNumbersFiveToFifteenInOrder) {
    uint32_t expected = 5;
    for (const CommandDescription& row : commandTable) {
        EXPECT_EQ(static_cast<uint32_t>(row.command), expected);
        EXPECT_EQ(findCommand(expected), &row);
        ++expected;
    }
    EXPECT_EQ(expected, 16U);
}

TEST(CommandTable, knowsNoOtherNumber) {
    for (const uint32_t command : {0U, 4U, 16U, 0xffffffffU}) {
        EXPECT_EQ(findCommand(command), nullptr) << command;
    }
}

}  // namespace
