#include "mb_assert.h"

#include <csignal>
#include <gtest/gtest.h>

TEST(AssertAt, ReportsUnderTheGivenTextFileAndLineAndAborts) {
    EXPECT_EXIT(MB_ASSERT_AT(1 + 1 == 3, "some==text", "mb_thing", 165), testing::KilledBySignal(SIGABRT),
                "mb_thing:165: .*: Assertion `some==text' failed");
}

TEST(AssertAt, DoesNothingWhereTheExpressionHolds) {
    int evaluated = 0;
    MB_ASSERT_AT(++evaluated == 1, "x", "y", 1);
    EXPECT_EQ(1, evaluated);
}
