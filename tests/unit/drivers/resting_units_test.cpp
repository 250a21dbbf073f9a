#include "resting_units.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

using namespace std::chrono_literals;

const Resting_units::Time START{};

TEST(RestingUnits, AUnitThatDoesNotAnswerRestsForGrowingPauses) {
    Resting_units units;
    EXPECT_EQ(units.reason(3, START), nullptr);
    Resting_units::Time time = START;
    for (const auto pause : {500ms, 1000ms, 2000ms, 4000ms, 8000ms, 8000ms}) {
        units.silent(3, time, "no answer");
        ASSERT_NE(units.reason(3, time + pause - 1ms), nullptr);
        EXPECT_EQ(*units.reason(3, time + pause - 1ms), "no answer");
        time += pause;
        EXPECT_EQ(units.reason(3, time), nullptr);
        EXPECT_FALSE(units.is_alive(3));
    }
}

TEST(RestingUnits, TheOthersDoNotRest) {
    Resting_units units;
    units.silent(3, START, "no answer");
    EXPECT_EQ(units.reason(4, START), nullptr);
    EXPECT_TRUE(units.is_alive(4));
}

TEST(RestingUnits, AnAnswerEndsTheRest) {
    Resting_units units;
    units.silent(3, START, "no answer");
    units.silent(3, START, "no answer");
    units.answered(3);
    EXPECT_TRUE(units.is_alive(3));
    EXPECT_EQ(units.reason(3, START), nullptr);
    units.silent(3, START, "no answer");
    EXPECT_EQ(units.reason(3, START + 500ms), nullptr);
}

}  // namespace
}  // namespace frontpanel
