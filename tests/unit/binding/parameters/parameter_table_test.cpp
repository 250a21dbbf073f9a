#include <frontpanel_binding/parameter_table.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "support/indexes.h"

using namespace frontpanel;
using support::index_of;
using support::key_of;

namespace {

class Parameter_table_test : public testing::Test {
protected:
    Parameter_table table;
};

TEST_F(Parameter_table_test, ADeclarationKeepsTypeBoundsAndLength) {
    table.declare({INTEGER, 100, index_of({2}), -5, 80});
    table.declare({STRING, 101, index_of({}), 0, 0, 16});
    const Parameter* const number = table.find(100, index_of({2}));
    ASSERT_NE(number, nullptr);
    EXPECT_EQ(number->type, INTEGER);
    EXPECT_EQ(number->min, -5);
    EXPECT_EQ(number->max, 80);
    const Parameter* const text = table.find(101, index_of({}));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->type, STRING);
    EXPECT_EQ(text->length, 16U);
}

TEST_F(Parameter_table_test, AParameterWithoutBoundsHoldsWhatItsTypeHolds) {
    table.declare({INTEGER, 100, {}});
    const Parameter* const parameter = table.find(100, {});
    ASSERT_NE(parameter, nullptr);
    EXPECT_EQ(parameter->min, std::numeric_limits<int32_t>::min());
    EXPECT_EQ(parameter->max, std::numeric_limits<int32_t>::max());
    EXPECT_EQ(parameter->length, static_cast<std::size_t>(MAX_STRING_LENGTH));
}

TEST_F(Parameter_table_test, LevelsThatAreLeftOutAreZero) {
    table.declare({INTEGER, 100, index_of({0})});
    const Parameter* const parameter = table.find(100, index_of({}));
    ASSERT_NE(parameter, nullptr);
    EXPECT_EQ(table.find(100, index_of({0, 0})), parameter);
    EXPECT_EQ(table.find(100, index_of({0, 1})), nullptr);
    EXPECT_EQ(table.find(100, index_of({1})), nullptr);
}

// A device takes both for one variable, but only one of them is declared.
TEST_F(Parameter_table_test, LevelsThatShareAVariableIndexAreDifferentParameters) {
    table.declare({INTEGER, 100, index_of({0, 1})});
    EXPECT_EQ(table.find(100, index_of({256})), nullptr);
}

TEST_F(Parameter_table_test, ASecondDeclarationReplacesTheFirstAndKeepsItsNames) {
    ASSERT_TRUE(table.declare("gain", {INTEGER, 100, {}, 0, 10}));
    const Parameter* const before = table.find("gain");
    table.declare({INTEGER, 100, {}, 0, 20});
    EXPECT_EQ(table.find("gain"), before);
    EXPECT_EQ(before->max, 20);
}

TEST_F(Parameter_table_test, AParameterMayHaveSeveralNames) {
    ASSERT_TRUE(table.declare("gain", {INTEGER, 100, {}}));
    ASSERT_TRUE(table.declare("level", {INTEGER, 100, {}}));
    EXPECT_EQ(table.find("gain"), table.find("level"));
}

TEST_F(Parameter_table_test, ANameIsTakenByItsFirstKey) {
    ASSERT_TRUE(table.declare("gain", {INTEGER, 100, {}}));
    EXPECT_TRUE(table.declare("gain", {INTEGER, 100, {}, 0, 10}));
    EXPECT_FALSE(table.declare("gain", {STRING, 100, {}}));
    EXPECT_FALSE(table.declare("gain", {INTEGER, 101, {}}));
    EXPECT_FALSE(table.declare("gain", {INTEGER, 100, index_of({0})}));
    EXPECT_EQ(table.find("gain")->key().rt, INTEGER);
    EXPECT_EQ(table.find(101, {}), nullptr);
}

TEST_F(Parameter_table_test, ANameCanStandInBrackets) {
    for (const char* const name : {"", "a[", "a]", "a\n", "a\x7f", "100", "1.2", "100@s"}) {
        EXPECT_FALSE(table.declare(name, {INTEGER, 100, {}})) << name;
    }
    EXPECT_EQ(table.find(100, {}), nullptr);
    for (const char* const name : {"a", "gain of A", "1st", "\xc3\xa4"}) {
        EXPECT_TRUE(table.declare(name, {INTEGER, 100, {}})) << name;
    }
}

TEST_F(Parameter_table_test, AReferenceIsANameOrAnAddress) {
    ASSERT_TRUE(table.declare("gain", {INTEGER, 100, index_of({3, 1})}));
    const Parameter* const gain = table.find("gain");
    EXPECT_EQ(table.find_reference("gain"), gain);
    EXPECT_EQ(table.find_reference("100.3.1"), gain);
    for (const char* const text :
         {"", "volume", "100", "100.3", "100.3.", "100.3.1.0", "100.3.1@i", "100.259"}) {
        EXPECT_EQ(table.find_reference(text), nullptr) << text;
    }
}

TEST_F(Parameter_table_test, AVariableThatIsNotDeclaredHasNoType) {
    table.declare({STRING, 100, {}});
    EXPECT_EQ(table.type_of(key_of(INTEGER, 100, index_of({0}))), STRING);
    EXPECT_EQ(table.type_of(key_of(INTEGER, 101, {})), INVALID_TYPE);
}

TEST_F(Parameter_table_test, TheClosestNameDiffersInTwoLettersAtMost) {
    ASSERT_TRUE(table.declare("gain", {INTEGER, 100, {}}));
    ASSERT_TRUE(table.declare("limit", {INTEGER, 101, {}}));
    EXPECT_EQ(table.closest("gian"), "gain");
    EXPECT_EQ(table.closest("limits"), "limit");
    EXPECT_EQ(table.closest("lit"), "limit");
    EXPECT_EQ(table.closest("volume"), "");
    EXPECT_EQ(table.closest("x"), "");
}

TEST_F(Parameter_table_test, ThousandsOfMistakesInALargeTableGetNoProposals) {
    const std::string start(50, 'n');
    for (std::uint32_t i = 10000; i < 12000; ++i) {
        table.declare(start + std::to_string(i), {INTEGER, i, {}});
    }
    // Each search takes 2,000 names of 55 x 56 pairs of letters, of 20,000,000 in all.
    for (int search = 0; search < 3; ++search) {
        EXPECT_EQ(table.closest(start + "11999x"), start + "11999") << search;
    }
    EXPECT_EQ(table.closest(start + "11999x"), "");
}

TEST_F(Parameter_table_test, HundredsOfMistakesInAUsualTableGetProposals) {
    for (std::uint32_t i = 0; i < 100; ++i) {
        table.declare("output level " + std::to_string(100 + i), {INTEGER, i, {}});
        table.declare("limit " + std::to_string(100 + i), {INTEGER, 1000 + i, {}});
    }
    for (int search = 0; search < 700; ++search) {
        ASSERT_EQ(table.closest("output leevl 150"), "output level 150") << search;
    }
}

}  // namespace
