// Errors and warnings of a file, in order, once each, and as many as a person reads.
#include <frontpanel_base/problems.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace frontpanel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const Source FIRST{"a.json", 0};
const Source SECOND{"b.json", 1};

Place at(uint32_t line, const Source& source = FIRST) {
    return {&source, line, 1, nullptr};
}

TEST(Problems, AreLinesWithTheirPlace) {
    const std::string copy = "n = 3";
    EXPECT_EQ(line_of({&FIRST, 3, 17, nullptr}, "expected a text"), "a.json:3:17: expected a text");
    EXPECT_EQ(line_of({&FIRST, 3, 17, &copy}, "expected a text"),
              "a.json:3:17: expected a text (n = 3)");
}

TEST(Problems, WarningsAreNoErrors) {
    Problems problems;
    problems.warn(at(1), "unused");
    EXPECT_THAT(problems.errors(), IsEmpty());
    EXPECT_EQ(problems.error_count(), 0U);
    EXPECT_THAT(problems.warnings(), ElementsAre("a.json:1:1: warning: unused"));
}

TEST(Problems, ComeOnceEachInTheOrderOfTheFiles) {
    Problems problems;
    problems.report(at(1, SECOND), "x");
    problems.report(at(3), "y");
    problems.report(at(2), "z");
    problems.report(at(3), "y");
    EXPECT_EQ(problems.errors(),
              (std::vector<std::string>{"a.json:2:1: z", "a.json:3:1: y", "b.json:1:1: x"}));
    EXPECT_EQ(problems.error_count(), 4U);
}

TEST(Problems, MoreLinesThanAPersonReadsAreCounted) {
    Problems problems;
    for (uint32_t i = 0; i < 3; ++i) {
        for (uint32_t line = 1; line <= 250; ++line) {
            problems.warn(at(line), "w");
        }
    }
    const std::vector<std::string> lines = problems.warnings();
    ASSERT_EQ(lines.size(), 201U);
    EXPECT_EQ(lines[199], "a.json:200:1: warning: w");
    EXPECT_EQ(lines[200], "a.json: 50 more like these");
}

TEST(Problems, AnAttemptReportsWhatItThrowsAndGoesOn) {
    Problems problems;
    EXPECT_TRUE(problems.attempt([] {}));
    EXPECT_FALSE(problems.attempt([] { throw Placed_error(at(1), "x"); }));
    EXPECT_FALSE(problems.attempt([] { throw Told_already(); }));
    EXPECT_EQ(problems.value_or([]() -> int { throw Placed_error(at(2), "y"); }, 7), 7);
    EXPECT_EQ(problems.errors(), (std::vector<std::string>{"a.json:1:1: x", "a.json:2:1: y"}));
}

TEST(Problems, AnEndLeavesAllAttemptsButTheOutermost) {
    Problems problems;
    bool is_inner_left = false;
    bool is_outer_left = false;
    problems.report(at(9), "before");
    const bool is_whole = problems.attempt([&] {
        problems.attempt([&] {
            problems.attempt([&] { problems.end(at(1), "enough"); });
            is_inner_left = true;
        });
        is_outer_left = true;
    });
    EXPECT_FALSE(is_whole);
    EXPECT_FALSE(is_inner_left);
    EXPECT_FALSE(is_outer_left);
    EXPECT_EQ(problems.errors(),
              (std::vector<std::string>{"a.json:1:1: enough", "a.json:9:1: before"}));
    EXPECT_TRUE(problems.attempt([] {}));
}

TEST(Problems, ErrorsWithoutEndEndTheOutermostAttempt) {
    for (const bool is_thrown : {false, true}) {
        Problems problems;
        size_t done = 0;
        const bool is_whole = problems.attempt([&] {
            for (uint32_t line = 1; line <= 1000000; ++line) {
                ++done;
                problems.attempt([&] {
                    if (is_thrown) {
                        throw Placed_error(at(line), "x");
                    }
                    problems.report(at(line), "x");
                });
            }
        });
        EXPECT_FALSE(is_whole);
        EXPECT_EQ(done, Problems::MOST_ERRORS + 1);
        EXPECT_EQ(problems.errors().size(), Problems::MOST_LINES + 1);
    }
}

TEST(Problems, ErrorsOutsideOfAnAttemptAreCounted) {
    Problems problems;
    for (size_t i = 0; i < Problems::MOST_ERRORS + 5; ++i) {
        problems.report(at(1), "x");
    }
    EXPECT_EQ(problems.error_count(), Problems::MOST_ERRORS + 5);
    EXPECT_EQ(problems.errors(), std::vector<std::string>{"a.json:1:1: x"});
}

TEST(InputErrors, HaveTheFirstLineAsTheirText) {
    const Input_errors errors({"menu.json:1:1: a", "menu.json:2:1: b"});
    EXPECT_STREQ(errors.what(), "menu.json:1:1: a");
    EXPECT_THAT(errors.lines(), ElementsAre("menu.json:1:1: a", "menu.json:2:1: b"));
}

}  // namespace
}  // namespace frontpanel
