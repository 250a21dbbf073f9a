#include <frontpanel_base/problems.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace frontpanel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Problems_test : public testing::Test {
protected:
    const Source first{"menu.json", 0};
    const Source second{"part.json", 1};
    Problems problems;
};

TEST_F(Problems_test, AreLinesWithTheirPlace) {
    const std::string copy = "n = 3";
    EXPECT_EQ(line_of({&first, 3, 17, nullptr}, "expected a text"),
              "menu.json:3:17: expected a text");
    EXPECT_EQ(line_of({&first, 3, 17, &copy}, "expected a text"),
              "menu.json:3:17: expected a text (n = 3)");
}

TEST_F(Problems_test, ComeInTheOrderOfFilesAndPlacesEachOnce) {
    problems.report({&second, 1, 1, nullptr}, "d");
    problems.report({&first, 2, 1, nullptr}, "b");
    problems.report({&first, 2, 5, nullptr}, "c");
    problems.report({&first, 1, 9, nullptr}, "a");
    problems.report({&first, 1, 9, nullptr}, "a");
    EXPECT_THAT(problems.errors(), ElementsAre("menu.json:1:9: a", "menu.json:2:1: b",
                                               "menu.json:2:5: c", "part.json:1:1: d"));
    EXPECT_EQ(problems.error_count(), 5U);
}

TEST_F(Problems_test, WarningsAreNoErrors) {
    problems.warn({&first, 1, 1, nullptr}, "unused");
    EXPECT_THAT(problems.errors(), IsEmpty());
    EXPECT_EQ(problems.error_count(), 0U);
    EXPECT_THAT(problems.warnings(), ElementsAre("menu.json:1:1: warning: unused"));
}

TEST_F(Problems_test, WorkThatFailsIsReportedAndTheRestGoesOn) {
    EXPECT_TRUE(problems.attempt([] {}));
    EXPECT_FALSE(problems.attempt([this] {
        throw Placed_error({&first, 1, 2, nullptr}, "wrong");
    }));
    EXPECT_FALSE(problems.attempt([] { throw Told_already(); }));
    EXPECT_EQ(problems.value_or([] { return 1; }, 2), 1);
    EXPECT_EQ(problems.value_or([]() -> int { throw Told_already(); }, 2), 2);
    EXPECT_THAT(problems.errors(), ElementsAre("menu.json:1:2: wrong"));
}

TEST_F(Problems_test, OfManyTheFirstAreListed) {
    for (size_t line = 1; line <= Problems::MOST_LINES + 3; ++line) {
        problems.report({&first, line, 1, nullptr}, "wrong");
    }
    const std::vector<std::string> errors = problems.errors();
    ASSERT_EQ(errors.size(), Problems::MOST_LINES + 1);
    EXPECT_EQ(errors.back(), "menu.json: 3 more like these");
}

TEST(InputErrors, HaveTheFirstLineAsTheirText) {
    const Input_errors errors({"menu.json:1:1: a", "menu.json:2:1: b"});
    EXPECT_STREQ(errors.what(), "menu.json:1:1: a");
    EXPECT_THAT(errors.lines(), ElementsAre("menu.json:1:1: a", "menu.json:2:1: b"));
}

}  // namespace
}  // namespace frontpanel
