#include "assertion.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace {

void check(const void* buffer) {
    FRONTPANEL_ASSERT(buffer != nullptr, "buffer");
}

TEST(Assertion, ThatHoldsDoesNothing) {
    int evaluations = 0;
    FRONTPANEL_ASSERT(++evaluations == 1, "evaluations");
    EXPECT_EQ(evaluations, 1);
    check(&evaluations);
}

TEST(AssertionDeathTest, ThatFailsNamesItsPlaceAndTextAndAborts) {
    EXPECT_EXIT(check(nullptr), testing::KilledBySignal(SIGABRT),
                "^assertion_test\\.cpp:[0-9]+: check: Assertion `buffer' failed\\.\n$");
}

TEST(AssertionDeathTest, ThatFailsLosesNoOutput) {
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            std::printf("printed before; ");
            check(nullptr);
        },
        testing::KilledBySignal(SIGABRT), "printed before; assertion_test");
}

TEST(DebugAssertionDeathTest, IsTestedOnlyInDebugBuilds) {
    int evaluations = 0;
    FRONTPANEL_DEBUG_ASSERT(++evaluations == 1, "evaluations");
#ifdef NDEBUG
    EXPECT_EQ(evaluations, 0);
    FRONTPANEL_DEBUG_ASSERT(evaluations == 1, "evaluations");
#else
    EXPECT_EQ(evaluations, 1);
    EXPECT_DEATH(FRONTPANEL_DEBUG_ASSERT(evaluations == 2, "evaluations"), "`evaluations' failed");
#endif
}

}  // namespace
