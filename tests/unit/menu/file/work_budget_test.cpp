#include "file/work_budget.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace frontpanel {
namespace {

const Source SOURCE{"menu.json", 0};
constexpr Place PLACE{&SOURCE, 3, 7, nullptr};

TEST(WorkBudget, EndsTheAttemptWhenNoStepsAreLeft) {
    Problems problems;
    Work_budget work(problems);
    EXPECT_TRUE(problems.attempt([&] { work.take(PLACE, Work_budget::MOST_STEPS); }));
    bool goes_on = false;
    EXPECT_FALSE(problems.attempt([&] {
        problems.attempt([&] { work.take(PLACE, 1); });
        goes_on = true;
    }));
    EXPECT_FALSE(goes_on);
    EXPECT_EQ(problems.errors(),
              std::vector<std::string>{"menu.json:3:7: rules, product options and slot lists of "
                                       "the menu grow beyond 500000 steps here"});
}

TEST(WorkBudget, ComparisonsThatAreLessThanAStepAddUp) {
    Problems problems;
    Work_budget work(problems);
    problems.attempt([&] { work.take(PLACE, Work_budget::MOST_STEPS); });
    for (size_t i = 1; i < Work_budget::COMPARISONS_IN_STEP; ++i) {
        EXPECT_TRUE(problems.attempt([&] { work.take_comparisons(PLACE, 1); }));
    }
    EXPECT_FALSE(problems.attempt([&] { work.take_comparisons(PLACE, 1); }));
}

}  // namespace
}  // namespace frontpanel
