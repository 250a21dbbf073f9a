// The language of binding rules: what expressions yield, and how mistakes are reported.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "unit/binding/language/language_fixture.h"

using namespace frontpanel;

namespace {

using support::Language;

struct Case {
    std::string source;
    std::string expected;
};

void expect_outcomes(const std::vector<Case>& cases) {
    Language language;
    for (const Case& each : cases) {
        SCOPED_TRACE(each.source);
        EXPECT_EQ(language.outcome(each.source), each.expected);
    }
}

const std::string GREATEST = "9223372036854775807";
const std::string LEAST = "-9223372036854775808";

// ---- values

TEST(Binding_language, NumbersAreExactIn64Bits) {
    expect_outcomes({
        {"0", "0"},
        {"007", "7"},
        {"2147483647", "2147483647"},
        {"2147483648", "2147483648"},
        {"-2147483648", "-2147483648"},
        {"-2147483649", "-2147483649"},
        {"9007199254740993", "9007199254740993"},
        {GREATEST, GREATEST},
        {LEAST, LEAST},
        {"- 9223372036854775808", LEAST},
        {"0x0", "0"},
        {"0x1F", "31"},
        {"0XaBcDeF", "11259375"},
        {"0x7FFFFFFFFFFFFFFF", GREATEST},
        {"-0x8000000000000000", LEAST},
        {"-0", "0"},
        {"--3", "3"},
        {"- - -3", "-3"},
    });
}

TEST(Binding_language, ParametersAreReadByNameAndAddress) {
    expect_outcomes({
        {"[gain]", "5"},
        {"[input 1 gain]", "7"},
        {"[100.2]", "102"},
        {"[300]", "30"},
        {"[300.1]", "31"},
        {"[300.1.2]", "32"},
        {"[300@i]", "33"},
        {"[406@s]", "\"text of 406\""},
        {"[title]", "\"Studio\""},
        {"[200]", "\"Studio by address\""},
        {"[nothing]", "\"\""},
        {"[broken]", "fault: a parameter cannot be read"},
        {"[999]", "fault: a parameter cannot be read"},
        {"value", "12"},
        {"[longest]", '"' + std::string(256, 'x') + '"'},
    });
}

TEST(Binding_language, TheOwnValueHasTheTypeOfItsEntry) {
    Language language;
    language.own_type = STRING;
    EXPECT_EQ(language.outcome("value"), "\"own\"");
    EXPECT_EQ(language.outcome("length(value) + 1"), "4");
    language.own_type = INVALID_TYPE;
    EXPECT_EQ(language.outcome("1 + value"),
              "line 1, column 16: this entry has no value of its own");
}

// ---- arithmetic

TEST(Binding_language, OperatorsBindAsInArithmetic) {
    expect_outcomes({
        {"1 + 2", "3"},
        {"1+2*3", "7"},
        {"(1 + 2) * 3", "9"},
        {"10 - 4 - 3", "3"},
        {"10 - (4 - 3)", "9"},
        {"100 / 10 / 2", "5"},
        {"100 / (10 / 2)", "20"},
        {"2 * 3 % 4", "2"},
        {"2 * (3 % 4)", "6"},
        {"-2 * 3", "-6"},
        {"2 * -3", "-6"},
        {"2 - -3", "5"},
        {"2--3", "5"},
        {"-(2 + 3)", "-5"},
        {"-[gain]", "-5"},
        {"-[delta]", "3"},
        {"[gain]*[limit]-1", "199"},
        {"((((7))))", "7"},
        {"1 + 2 == 3", "1"},
        {"3 == 1 + 2", "1"},
        {"not 1 + 1", "0"},
        {"-1 + 1", "0"},
    });
}

// gain 5, mode 1
TEST(Binding_language, SignsStandForTheWordsOfConditions) {
    expect_outcomes({
        {"[mode] == 1 && [gain] == 5", "1"},
        {"[mode] == 1&&[gain] == 4", "0"},
        {"[mode] == 0 || [gain] == 5", "1"},
        {"[mode] == 0||[gain] == 4", "0"},
        {"1 || 0 && 0", "1"},
        {"1 or 0 && 0", "1"},
        {"(1 || 0) && 0", "0"},
        {"0 && 1 / 0", "0"},
        {"1 || 1 / 0", "1"},
        {"7 && 5", "1"},
        {"!0", "1"},
        {"![gain]", "0"},
        {"!!7", "1"},
        {"-!0", "-1"},
        {"!-1", "0"},
        {"!([gain] == 5)", "0"},
        {"!0 && !0", "1"},
        {"1 != 2", "1"},
    });
}

// As in the languages that have it; "not" denies the whole comparison.
TEST(Binding_language, AnExclamationMarkBindsAsASignDoes) {
    expect_outcomes({
        {"![gain] == 1", "0"},
        {"not [gain] == 1", "1"},
        {"![gain] + 1", "1"},
        {"2 * !0", "2"},
    });
}

TEST(Binding_language, DivisionTruncatesTowardsZero) {
    expect_outcomes({
        {"7 / 2", "3"},
        {"-7 / 2", "-3"},
        {"7 / -2", "-3"},
        {"-7 / -2", "3"},
        {"7 % 2", "1"},
        {"-7 % 2", "-1"},
        {"7 % -2", "1"},
        {"-7 % -2", "-1"},
        {"7 / 7", "1"},
        {"0 / 5", "0"},
        {"0 % 5", "0"},
        {"[gain] / 2", "2"},
    });
}

TEST(Binding_language, DivisionByZeroIsAFault) {
    expect_outcomes({
        {"1 / 0", "fault: division by zero"},
        {"1 % 0", "fault: division by zero"},
        {"0 / 0", "fault: division by zero"},
        {"1 / ([gain] - 5)", "fault: division by zero"},
        {"\"{1 / 0}\"", "fault: division by zero"},
        {"[tiny] / 0", "fault: division by zero"},
    });
}

TEST(Binding_language, ResultsBeyondTheLimitsBecomeTheLimits) {
    expect_outcomes({
        {"[huge] + 1", GREATEST},
        {"1 + [huge]", GREATEST},
        {"[huge] + [huge]", GREATEST},
        {"[tiny] + -1", LEAST},
        {"[tiny] + [tiny]", LEAST},
        {"[huge] + [tiny]", "-1"},
        {"[huge] - -1", GREATEST},
        {"[tiny] - 1", LEAST},
        {"[tiny] - [huge]", LEAST},
        {"0 - [tiny]", GREATEST},
        {"-1 - [tiny]", GREATEST},
        {"-2 - [tiny]", "9223372036854775806"},
        {"[huge] - [tiny]", GREATEST},
        {"[huge] * 2", GREATEST},
        {"[huge] * -2", LEAST},
        {"[tiny] * 2", LEAST},
        {"[tiny] * -1", GREATEST},
        {"-1 * [tiny]", GREATEST},
        {"[tiny] * [tiny]", GREATEST},
        {"[huge] * 0", "0"},
        {"-[tiny]", GREATEST},
        {"-[huge]", "-9223372036854775807"},
        {"[tiny] / -1", GREATEST},
        {"[huge] / -1", "-9223372036854775807"},
        {"[tiny] % -1", "0"},
        {"[huge] % -1", "0"},
        {"[tiny] / 1", LEAST},
        {"abs([tiny])", GREATEST},
        {"4294967296 * 4294967296", GREATEST},
        {"3037000500 * 3037000500", GREATEST},
        {"3037000499 * 3037000499", "9223372030926249001"},
    });
}

// ---- comparisons

TEST(Binding_language, ComparisonsYieldOneOrZero) {
    expect_outcomes({
        {"1 == 1", "1"},
        {"1 == 2", "0"},
        {"1 != 2", "1"},
        {"1 != 1", "0"},
        {"1 < 2", "1"},
        {"2 < 2", "0"},
        {"2 <= 2", "1"},
        {"3 <= 2", "0"},
        {"3 > 2", "1"},
        {"2 > 2", "0"},
        {"2 >= 2", "1"},
        {"1 >= 2", "0"},
        {"[tiny] < [huge]", "1"},
        {"-1 < 0", "1"},
        {"1<2", "1"},
        {"(1 < 2) + (2 < 3)", "2"},
        {"(1 == 1) == 1", "1"},
        {"[title] == \"Studio\"", "1"},
        {"\"Studio\" == [title]", "1"},
        {"[title] == \"studio\"", "0"},
        {"[title] == \"Studio \"", "0"},
        {"[title] != \"Stud\"", "1"},
        {"[title] != \"Studio\"", "0"},
        {"[nothing] == \"\"", "1"},
        {"[title] == [title]", "1"},
        {"[longest] == [longest]", "1"},
        {"\"a{1}\" == \"a1\"", "1"},
    });
}

TEST(Binding_language, InTestsRangesAndSets) {
    expect_outcomes({
        {"3 in 1..5", "1"},
        {"1 in 1..5", "1"},
        {"5 in 1..5", "1"},
        {"0 in 1..5", "0"},
        {"6 in 1..5", "0"},
        {"3 in 5..1", "1"},
        {"5 in 5..1", "1"},
        {"6 in 5..1", "0"},
        {"-3 in -5..-1", "1"},
        {"[gain] in [delta]..[limit]", "1"},
        {"[gain] in [gain] + 1..[limit]", "0"},
        {"[tiny] in [tiny]..[huge]", "1"},
        {"3 in {3}", "1"},
        {"3 in {1, 3, 5..9}", "1"},
        {"7 in {1, 3, 5..9}", "1"},
        {"9 in {1, 3, 9..5}", "1"},
        {"4 in {1, 3, 5..9}", "0"},
        {"[gain] in {[mode], [gain]}", "1"},
        {"[gain] in {1 + 3, 2 * 3}", "0"},
        {"[gain] in {1 == 1 ? 5 : 6}", "1"},
        {"[title] in {\"Hall\", \"Studio\"}", "1"},
        {"[title] in {\"Hall\", \"Stud\"}", "0"},
        {"[title] in {\"{[title]}\"}", "1"},
        {"\"\" in {[nothing]}", "1"},
        {"1 + 2 in 3..3", "1"},
        {"not 3 in {1, 2}", "1"},
        {"3 in {1, 2} or 3 in {3}", "1"},
        {"3 in {1, 2} ? 10 : 20", "20"},
        {"(3 in {3}) in {1}", "1"},
        {"2 in {1 in {1}, 1 in {2}, 2}", "1"},
        {"[gain] in 1..[limit] ? 7 : 8", "7"},
    });
}

TEST(Binding_language, ASetIsSearchedFromItsBeginning) {
    expect_outcomes({
        {"3 in {3, 1 / 0}", "1"},
        {"4 in {3, 1 / 0}", "fault: division by zero"},
        {"3 in {1..5, [broken]}", "1"},
        {"3 in {[broken], 3}", "fault: a parameter cannot be read"},
    });
}

// ---- logic

TEST(Binding_language, LogicYieldsOneOrZero) {
    expect_outcomes({
        {"1 and 1", "1"},
        {"1 and 0", "0"},
        {"0 and 1", "0"},
        {"0 or 0", "0"},
        {"0 or 1", "1"},
        {"1 or 0", "1"},
        {"7 and -3", "1"},
        {"0 or -3", "1"},
        {"7 or 0", "1"},
        {"not 0", "1"},
        {"not 1", "0"},
        {"not -7", "0"},
        {"not not 7", "1"},
        {"not not not 7", "0"},
        {"[gain] and [limit]", "1"},
        {"[gain] > 3 and [limit] > 3", "1"},
    });
}

TEST(Binding_language, NotBindsBeforeAndAndAndBeforeOr) {
    expect_outcomes({
        {"1 or 0 and 0", "1"},
        {"(1 or 0) and 0", "0"},
        {"0 and 0 or 1", "1"},
        {"0 and (0 or 1)", "0"},
        {"not 0 and 0", "0"},
        {"not (0 and 0)", "1"},
        {"not 1 or 1", "1"},
        {"not (1 or 1)", "0"},
        {"not 1 == 2", "1"},
        {"(not 1) == 2", "0"},
        {"1 == 2 or 3 < 4", "1"},
        {"0 or 0 or 0 or 1", "1"},
        {"1 and 1 and 1 and 0", "0"},
    });
}

TEST(Binding_language, WhatIsDecidedIsNotEvaluatedFurther) {
    expect_outcomes({
        {"0 and 1 / 0", "0"},
        {"1 or 1 / 0", "1"},
        {"1 and 1 / 0", "fault: division by zero"},
        {"0 or 1 / 0", "fault: division by zero"},
        {"0 and [broken]", "0"},
        {"1 or [broken]", "1"},
        {"1 ? 2 : 1 / 0", "2"},
        {"0 ? 1 / 0 : 3", "3"},
        {"0 and 1 / 0 or 4", "1"},
        {"1 / 0 ? 1 : 2", "fault: division by zero"},
    });
    Language language;
    language.outcome("[gain] == 1 and [mode] == 1 or [limit] == 40 or [delta] == 0");
    EXPECT_EQ(language.values.log, "gain limit ");
}

TEST(Binding_language, TheConditionalOperatorChoosesAValue) {
    expect_outcomes({
        {"1 ? 2 : 3", "2"},
        {"0 ? 2 : 3", "3"},
        {"-5 ? 2 : 3", "2"},
        {"[gain] > 3 ? \"high\" : \"low\"", "\"high\""},
        {"0 ? 1 : 0 ? 2 : 3", "3"},
        {"0 ? 1 : 1 ? 2 : 3", "2"},
        {"1 ? 1 : 1 / 0 ? 2 : 3", "1"},
        {"1 ? 0 ? 4 : 5 : 6", "5"},
        {"1 ? 1 ? 4 : 5 : 6", "4"},
        {"0 ? 0 ? 4 : 5 : 6", "6"},
        {"(1 ? 2 : 3) + 1", "3"},
        {"1 or 0 ? 2 : 3", "2"},
        {"1 ? 2 : 3 + 4", "2"},
        {"0 ? 2 : 3 + 4", "7"},
        {"1 < 2 ? 3 < 4 : 0", "1"},
        {"[mode] == 0 ? \"off\" : [mode] == 1 ? \"on\" : \"auto\"", "\"on\""},
    });
}

// ---- functions

TEST(Binding_language, FunctionsTakeTheirArguments) {
    expect_outcomes({
        {"min(3, 2)", "2"},
        {"max(3, 2)", "3"},
        {"min(3, 2, 1)", "1"},
        {"max(1, 2, 3, 2, 1)", "3"},
        {"min([gain], [limit]) + 1", "6"},
        {"min(-1, [tiny])", LEAST},
        {"abs(-3)", "3"},
        {"abs(3)", "3"},
        {"abs(0)", "0"},
        {"-abs(-3)", "-3"},
        {"length(\"\")", "0"},
        {"length(\"abc\")", "3"},
        {"length(\"\xc3\xa4\")", "2"},
        {"length([title])", "6"},
        {"length([longest])", "256"},
        {"length(\"{[gain]}{[limit]}\")", "3"},
        {"has_option(\"gps\")", "1"},
        {"has_option(\"slot3\")", "0"},
        {"has_option(\"a \\\"b\\\" \\\\ {{c}}\")", "1"},
        {"has_option(\"gps\") and not has_option(\"slot3\")", "1"},
        {"min(1 ? 2 : 3, max(4, 5))", "2"},
        {"abs ( -3 )", "3"},
    });
}

// ---- texts

TEST(Binding_language, TextsHoldValues) {
    expect_outcomes({
        {"\"\"", "\"\""},
        {"\"a b\"", "\"a b\""},
        {"\"a#b;c\"", "\"a#b;c\""},
        {"\"a\\\"b\"", "\"a\"b\""},
        {"\"a\\\\b\"", "\"a\\b\""},
        {"\"{{}}\"", "\"{}\""},
        {"\"{{{[gain]}}}\"", "\"{5}\""},
        {"\"{[gain]}\"", "\"5\""},
        {"\"{ [gain] }\"", "\"5\""},
        {"\"{[title]}\"", "\"Studio\""},
        {"\"Gain {[gain]} of {[limit]} dB\"", "\"Gain 5 of 40 dB\""},
        {"\"{[gain]}{[title]}{[delta]}\"", "\"5Studio-3\""},
        {"\"{[gain] + 1}\"", "\"6\""},
        {"\"{[tiny]}\"", "\"" + LEAST + "\""},
        {"\"{value}\"", "\"12\""},
        {"\"{[gain] in {1, 5}}\"", "\"1\""},
        {"\"{[gain] > 3 ? \"hi\" : \"lo\"}gh\"", "\"high\""},
        {"\"{[mode] ? \"{[gain]}!\" : \"\"}\"", "\"5!\""},
        {"\"a{\"b{\"c{1}\"}\"}d\"", "\"abc1d\""},
        {"\"{[title]} {[title]}\"", "\"Studio Studio\""},
        {"\"\xc3\xa4\"", "\"\xc3\xa4\""},
        {"\"{\"\"}{[nothing]}\"", "\"\""},
        {"(\"a\")", "\"a\""},
    });
}

TEST(Binding_language, ATextBeyondTheLongestIsAFault) {
    const std::string longest(256, 'x');
    expect_outcomes({
        {"\"" + longest + "\"", "\"" + longest + "\""},
        {"\"{[longest]}\"", "\"" + longest + "\""},
        {"\"{[longest]}{[nothing]}\"", "\"" + longest + "\""},
        {"\"{[longest]}.\"", "fault: text longer than 256 bytes"},
        {"\".{[longest]}\"", "fault: text longer than 256 bytes"},
        {"\"{[longest]}{1}\"", "fault: text longer than 256 bytes"},
    });
}

TEST(Binding_language, ATextThatTheDeviceMadeTooLongIsAFault) {
    Language language;
    language.values.texts["title"] = std::string(257, 'x');
    EXPECT_EQ(language.outcome("[title]"), "fault: text longer than 256 bytes");
    EXPECT_EQ(language.outcome("length([title])"), "fault: text longer than 256 bytes");
}

}  // namespace
