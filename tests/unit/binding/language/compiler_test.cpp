// Mistakes in the source texts of binding rules: where they are, what was found, what would have been accepted.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "unit/binding/language/language_fixture.h"

using namespace frontpanel;

namespace {

using support::Language;

struct Case {
    std::string source;
    std::string error;
};

void expect_errors(const std::vector<Case>& cases) {
    Language language;
    for (const Case& each : cases) {
        SCOPED_TRACE(each.source);
        EXPECT_EQ(language.error_of(each.source), each.error);
    }
}

const std::string RULES =
    "expected \"visible\", \"range\", \"keys\", \"set\", \"warn\" or \"access\", found ";
const std::string VALUE =
    "expected a number, a text, a [parameter], \"value\", a function or \"(\", found ";
const std::string INT32 = " is not a number from -2147483648 to 2147483647";
const std::string INT64 = " is not a number from -9223372036854775808 to 9223372036854775807";

TEST(Binding_mistakes, ATextNeedsRules) {
    expect_errors({
        {"", "line 1, column 1: " + RULES + "end of text"},
        {" ;\n# nothing", "line 2, column 10: " + RULES + "end of text"},
        {"visble if 1", "line 1, column 1: " + RULES + "\"visble\""},
        {"Visible if 1", "line 1, column 1: " + RULES + "\"Visible\""},
        {"visible if 1;\n  if 1", "line 2, column 3: " + RULES + "\"if\""},
        {"visible if 1\n\n\"a\"", "line 3, column 1: " + RULES + "a text"},
        {"[gain] > 1", "line 1, column 1: " + RULES + "\"[gain]\""},
        {std::string(1000, 'v'),
         "line 1, column 1: " + RULES + "\"" + std::string(40, 'v') + "...\""},
    });
}

TEST(Binding_mistakes, RulesHaveTheirShape) {
    expect_errors({
        {"visible", "line 1, column 8: expected \"if\", found end of text"},
        {"visible 1", "line 1, column 9: expected \"if\", found \"1\""},
        {"visible if", "line 1, column 11: " + VALUE + "end of text"},
        {"visible if\n1", "line 1, column 11: " + VALUE + "end of line"},
        {"visible if;", "line 1, column 11: " + VALUE + "\";\""},
        {"visible if 1 2", "line 1, column 14: expected an operator or end of rule, found \"2\""},
        {"visible if 1 if 2",
         "line 1, column 14: expected an operator or end of rule, found \"if\""},
        {"range", "line 1, column 6: " + VALUE + "end of text"},
        {"range 5", "line 1, column 8: expected an operator or \"..\", found end of text"},
        {"range 5, 6", "line 1, column 8: expected an operator or \"..\", found \",\""},
        {"range 5..", "line 1, column 10: " + VALUE + "end of text"},
        {"range 5..6,", "line 1, column 12: " + VALUE + "end of text"},
        {"range 5..6 7",
         "line 1, column 12: expected an operator, \",\", \"if\" or end of rule, found \"7\""},
        {"range 5..6..7",
         "line 1, column 11: expected an operator, \",\", \"if\" or end of rule, found \"..\""},
        {"range 5...6",
         "line 1, column 10: unexpected \".\"; addresses are written in brackets, as in [100.0]"},
        {"range if 1", "line 1, column 7: " + VALUE + "\"if\""},
        {"keys", "line 1, column 5: " + VALUE + "end of text"},
        {"keys 1 2",
         "line 1, column 8: expected an operator, \"..\", \",\", \"if\" or end of rule, found \"2\""},
        {"keys 1..2..3",
         "line 1, column 10: expected an operator, \"..\", \",\", \"if\" or end of rule, found "
         "\"..\""},
        {"set", "line 1, column 4: expected a [parameter], found end of text"},
        {"set gain = 3", "line 1, column 5: expected a [parameter], found \"gain\""},
        {"set [gain]", "line 1, column 11: expected \"=\", found end of text"},
        {"set [gain] == 3", "line 1, column 12: expected \"=\", found \"==\""},
        {"set [gain] = ", "line 1, column 14: " + VALUE + "end of text"},
        {"set [gain] = 3 4",
         "line 1, column 16: expected an operator, \"if\" or end of rule, found \"4\""},
        {"set [gain] = [limit] = 4",
         "line 1, column 22: expected an operator, \"if\" or end of rule, found \"=\""},
        {"warn", "line 1, column 5: " + VALUE + "end of text"},
        {"warn \"a\" \"b\"",
         "line 1, column 10: expected an operator, \"if\" or end of rule, found a text"},
        {"access",
         "line 1, column 7: expected \"read-only\", \"read-write\" or \"write-only\", "
         "found end of text"},
        {"access readonly",
         "line 1, column 8: expected \"read-only\", \"read-write\" or \"write-only\", found "
         "\"readonly\""},
        {"access read - only",
         "line 1, column 8: expected \"read-only\", \"read-write\" or \"write-only\", found "
         "\"read\""},
        {"access read-only 1", "line 1, column 18: expected \"if\" or end of rule, found \"1\""},
        {"access read-only if", "line 1, column 20: " + VALUE + "end of text"},
    });
}

TEST(Binding_mistakes, ExpressionsHaveTheirShape) {
    expect_errors({
        {"visible if 1 +", "line 1, column 15: " + VALUE + "end of text"},
        {"visible if * 1", "line 1, column 12: " + VALUE + "\"*\""},
        {"visible if 1 and", "line 1, column 17: " + VALUE + "end of text"},
        {"visible if 1 or or 2", "line 1, column 17: " + VALUE + "\"or\""},
        {"visible if 1 + not 2", "line 1, column 16: " + VALUE + "\"not\""},
        {"visible if (1", "line 1, column 14: expected an operator or \")\", found end of text"},
        {"visible if (1\n)", "line 1, column 14: expected an operator or \")\", found end of line"},
        {"visible if ()", "line 1, column 13: " + VALUE + "\")\""},
        {"visible if 1)", "line 1, column 13: expected an operator or end of rule, found \")\""},
        {"visible if 1 ? 2", "line 1, column 17: expected an operator or \":\", found end of text"},
        {"visible if 1 ? 2 : ", "line 1, column 20: " + VALUE + "end of text"},
        {"visible if 1 : 2", "line 1, column 14: expected an operator or end of rule, found \":\""},
        {"visible if 1 < 2 < 3", "line 1, column 18: comparisons do not chain; \"and\" joins them"},
        {"visible if 1 == 2 in 3..4",
         "line 1, column 19: comparisons do not chain; \"and\" joins them"},
        {"visible if 1 in 2..3 == 1",
         "line 1, column 22: comparisons do not chain; \"and\" joins them"},
        {"visible if 1 in 2",
         "line 1, column 18: expected an operator or \"..\", found end of text"},
        {"visible if 1 in {}", "line 1, column 18: " + VALUE + "\"}\""},
        {"visible if 1 in {1",
         "line 1, column 19: expected an operator, \"..\", \",\" or \"}\", "
         "found end of text"},
        {"visible if 1 in {1,}", "line 1, column 20: " + VALUE + "\"}\""},
        {"visible if 1 in {1 2}",
         "line 1, column 20: expected an operator, \"..\", \",\" or \"}\", found \"2\""},
        {"visible if 1 = 1", "line 1, column 14: expected an operator or end of rule, found \"=\""},
        {"visible if 1 & 1",
         "line 1, column 14: \"&\" is not an operator; \"and\" joins conditions"},
        {"visible if 1 | 1",
         "line 1, column 14: \"|\" is not an operator; \"or\" joins conditions"},
        {"visible if 1 &&& 1",
         "line 1, column 16: \"&\" is not an operator; \"and\" joins conditions"},
        {"visible if 1 &&", "line 1, column 16: " + VALUE + "end of text"},
        {"visible if || 1", "line 1, column 12: " + VALUE + "\"||\""},
        {"visible if 1 ! 1", "line 1, column 14: expected an operator or end of rule, found \"!\""},
        {"visible if !\"a\"", "line 1, column 13: expected an integer, found a text"},
        {"visible if !not 1", "line 1, column 13: " + VALUE + "\"not\""},
        {"visible if min 1", "line 1, column 16: expected \"(\", found \"1\""},
        {"visible if min(1)", "line 1, column 17: expected an operator or \",\", found \")\""},
        {"visible if min(1, 2",
         "line 1, column 20: expected an operator, \",\" or \")\", found end of text"},
        {"visible if max()", "line 1, column 16: " + VALUE + "\")\""},
        {"visible if abs(1, 2)", "line 1, column 17: expected an operator or \")\", found \",\""},
        {"visible if round(1)", "line 1, column 12: " + VALUE + "\"round\""},
        {"visible if True", "line 1, column 12: " + VALUE + "\"True\""},
        {"visible if has_option(gps)",
         "line 1, column 23: expected the name of an option in quotes, found \"gps\""},
        {"visible if has_option(\"\")", "line 1, column 23: the name of an option is empty"},
        {"visible if has_option(\"a{1}\")",
         "line 1, column 23: the name of an option holds no placeholders"},
        {"visible if has_option(\"a\" 1", "line 1, column 27: expected \")\", found \"1\""},
    });
}

TEST(Binding_mistakes, NumbersHaveTheirLimits) {
    expect_errors({
        {"visible if 9223372036854775808", "line 1, column 12: \"9223372036854775808\"" + INT64},
        {"visible if -9223372036854775809", "line 1, column 13: \"9223372036854775809\"" + INT64},
        {"visible if 0 - 9223372036854775808",
         "line 1, column 16: \"9223372036854775808\"" + INT64},
        {"visible if 99999999999999999999999",
         "line 1, column 12: \"99999999999999999999999\"" + INT64},
        {"visible if 0x8000000000000000", "line 1, column 12: \"0x8000000000000000\"" + INT64},
        {"visible if 0x10000000000000000", "line 1, column 12: \"0x10000000000000000\"" + INT64},
        {"visible if 40if", "line 1, column 12: \"40if\" is not a number"},
        {"visible if 1_000", "line 1, column 12: \"1_000\" is not a number"},
        {"visible if 0x", "line 1, column 12: \"0x\" is not a number"},
        {"visible if 0xg", "line 1, column 12: \"0xg\" is not a number"},
        {"visible if 1.5",
         "line 1, column 13: unexpected \".\"; addresses are written in brackets, as in [100.0]"},
        {"visible if 100.0 > 3",
         "line 1, column 15: unexpected \".\"; addresses are written in brackets, as in [100.0]"},
        {"range 0..2147483648", "line 1, column 10: \"2147483648\"" + INT32},
        {"range -2147483649..0", "line 1, column 7: \"-2147483649\"" + INT32},
        {"range -9223372036854775808..0", "line 1, column 7: \"-9223372036854775808\"" + INT32},
        {"range 0..-9999999999 if 1", "line 1, column 10: \"-9999999999\"" + INT32},
        {"keys -1", "line 1, column 6: \"-1\" is not a number from 0 to 2147483647"},
        {"keys 0..2147483648",
         "line 1, column 9: \"2147483648\" is not a number from 0 to 2147483647"},
        {"set [gain] = 2147483648", "line 1, column 14: \"2147483648\"" + INT32},
    });
}

TEST(Binding_mistakes, TypesAgree) {
    expect_errors({
        {"visible if [title]", "line 1, column 12: expected an integer, found a text"},
        {"visible if \"on\"", "line 1, column 12: expected an integer, found a text"},
        {"visible if ([title])", "line 1, column 12: expected an integer, found a text"},
        {"visible if [title] + 1", "line 1, column 12: expected an integer, found a text"},
        {"visible if 1 + [title]", "line 1, column 16: expected an integer, found a text"},
        {"visible if 1 + 2 * [title]", "line 1, column 20: expected an integer, found a text"},
        {"visible if -[title]", "line 1, column 13: expected an integer, found a text"},
        {"visible if not [title]", "line 1, column 16: expected an integer, found a text"},
        {"visible if 1 and [title]", "line 1, column 18: expected an integer, found a text"},
        {"visible if [title] or 1", "line 1, column 12: expected an integer, found a text"},
        {"visible if [title] ? 1 : 2", "line 1, column 12: expected an integer, found a text"},
        {"visible if 1 ? 1 : \"a\"", "line 1, column 20: expected an integer, found a text"},
        {"visible if 1 ? \"a\" : 1", "line 1, column 22: expected a text, found an integer"},
        {"visible if 0 ? 1 : 0 ? \"a\" : 2",
         "line 1, column 24: expected an integer, found a text"},
        {"visible if [gain] == \"on\"", "line 1, column 22: expected an integer, found a text"},
        {"visible if [title] == 1", "line 1, column 23: expected a text, found an integer"},
        {"visible if [title] < \"b\"", "line 1, column 20: a text is compared with == or != only"},
        {"visible if 1 < [title]", "line 1, column 16: expected an integer, found a text"},
        {"visible if [title] in 1..2", "line 1, column 12: expected an integer, found a text"},
        {"visible if 1 in [title]..2", "line 1, column 17: expected an integer, found a text"},
        {"visible if 1 in 1..[title]", "line 1, column 20: expected an integer, found a text"},
        {"visible if 1 in {1, \"a\"}", "line 1, column 21: expected an integer, found a text"},
        {"visible if [title] in {1}", "line 1, column 24: expected a text, found an integer"},
        {"visible if [title] in {\"a\"..\"b\"}",
         "line 1, column 27: expected an operator, \"..\", \",\" or \"}\", found \"..\""},
        {"visible if abs(\"a\")", "line 1, column 16: expected an integer, found a text"},
        {"visible if length(1)", "line 1, column 19: expected a text, found an integer"},
        {"visible if min(1, \"a\")", "line 1, column 19: expected an integer, found a text"},
        {"range \"a\"..2", "line 1, column 7: expected an integer, found a text"},
        {"range 1..[title]", "line 1, column 10: expected an integer, found a text"},
        {"keys \"a\"", "line 1, column 6: expected an integer, found a text"},
        {"set [gain] = \"a\"", "line 1, column 14: expected an integer, found a text"},
        {"set [title] = 1", "line 1, column 15: expected a text, found an integer"},
        {"warn 1", "line 1, column 6: expected a text, found an integer"},
        {"warn [gain] if 1", "line 1, column 6: expected a text, found an integer"},
        {"warn \"a\" if \"b\"", "line 1, column 13: expected an integer, found a text"},
        {"access read-only if [title]", "line 1, column 21: expected an integer, found a text"},
    });
}

TEST(Binding_mistakes, ParametersAreKnown) {
    expect_errors({
        {"visible if [gian]",
         "line 1, column 12: unknown parameter \"[gian]\"; did you mean [gain]?"},
        {"visible if [Gain]",
         "line 1, column 12: unknown parameter \"[Gain]\"; did you mean [gain]?"},
        {"visible if [input 1 gane]",
         "line 1, column 12: unknown parameter \"[input 1 gane]\"; did you mean [input 1 gain]?"},
        {"visible if [volume]", "line 1, column 12: unknown parameter \"[volume]\""},
        {"visible if [ gain]",
         "line 1, column 12: unknown parameter \"[ gain]\"; did you mean [gain]?"},
        {"visible if []", "line 1, column 12: unknown parameter \"[]\""},
        {"set [lmit] = 1", "line 1, column 5: unknown parameter \"[lmit]\"; did you mean [limit]?"},
        {"visible if [0x64]", "line 1, column 12: unknown parameter \"[0x64]\""},
        {"visible if [-1]", "line 1, column 12: unknown parameter \"[-1]\""},
        {"visible if gain > 1",
         "line 1, column 12: " + VALUE + "\"gain\"; parameters are written in brackets: [gain]"},
        {"visible if volume > 1", "line 1, column 12: " + VALUE + "\"volume\""},
        {"visible if [gain", "line 1, column 12: parameter without closing bracket"},
        {"visible if [gain\n]", "line 1, column 12: parameter without closing bracket"},
        {"visible if [4294967295]",
         "line 1, column 13: \"4294967295\" is not a number from 0 to 4294967294"},
        {"visible if [99999999999]",
         "line 1, column 13: \"99999999999\" is not a number from 0 to 4294967294"},
        {"visible if [100.]", "line 1, column 17: \"\" is not a number from 0 to 65535"},
        {"visible if [100..1]", "line 1, column 17: \"\" is not a number from 0 to 65535"},
        {"visible if [100.65536]", "line 1, column 17: \"65536\" is not a number from 0 to 65535"},
        {"visible if [100.1.2.3]", "line 1, column 21: a parameter has at most two index levels"},
        {"visible if [100@]", "line 1, column 16: expected \"@i\" or \"@s\", found \"@\""},
        {"visible if [406@x]", "line 1, column 16: expected \"@i\" or \"@s\", found \"@x\""},
        {"visible if [100@s] == \"\"",
         "line 1, column 12: parameter \"[100@s]\" is declared as an integer"},
        {"visible if [200.0@i]",
         "line 1, column 12: parameter \"[200.0@i]\" is declared as a text"},
    });
}

TEST(Binding_mistakes, TextsAreClosed) {
    expect_errors({
        {"warn \"a", "line 1, column 6: text without closing quote"},
        {"warn \"a\nb\"", "line 1, column 6: text without closing quote"},
        {"warn \"a\\", "line 1, column 8: only \\\" and \\\\ are escapes in a text"},
        {"warn \"a\\n\"", "line 1, column 8: only \\\" and \\\\ are escapes in a text"},
        {"warn \"a}b\"", "line 1, column 8: a brace in a text is written }}"},
        {"warn \"{[gain]}}\"", "line 1, column 15: a brace in a text is written }}"},
        {"warn \"{[gain]", "line 1, column 14: expected an operator or \"}\", found end of text"},
        {"warn \"{[gain]\"", "line 1, column 14: expected an operator or \"}\", found a text"},
        {"warn \"{[gain]} dB", "line 1, column 6: text without closing quote"},
        {"warn \"{}\"", "line 1, column 8: " + VALUE + "\"}\""},
        {"warn \"{\n1}\"", "line 1, column 8: " + VALUE + "end of line"},
        {"warn \"{1; 2}\"", "line 1, column 9: expected an operator or \"}\", found \";\""},
        {"warn \"" + std::string(257, 'x') + "\"", "line 1, column 7: text longer than 256 bytes"},
        {"warn \"{1}" + std::string(257, 'x') + "\"",
         "line 1, column 10: text longer than 256 bytes"},
    });
}

TEST(Binding_mistakes, StrangeBytesAreShown) {
    expect_errors({
        {"\xef\xbb\xbfvisible if 1", "line 1, column 1: unexpected character \"\\xef\\xbb\\xbf\""},
        {"visible if W\u00E4rme", "line 1, column 13: unexpected character \"\u00E4\""},
        {"visible if 1 $ 2", "line 1, column 14: unexpected character \"$\""},
        {std::string("visible\0if", 10), "line 1, column 8: unexpected character \"\\x00\""},
        {std::string("visible if 1 # \0", 16), "line 1, column 16: unexpected character \"\\x00\""},
        {"visible if 1 \x1b 2", "line 1, column 14: unexpected character \"\\x1b\""},
        {"visible if [406@\xf3]", "line 1, column 16: expected \"@i\" or \"@s\", found \"@\\xf3\""},
        {"range -\t9999999999..0", "line 1, column 7: \"-\\x099999999999\"" + INT32},
        {"visible if [a\xff\x1b]", "line 1, column 12: unknown parameter \"[a\\xff\\x1b]\""},
    });
}

TEST(Binding_mistakes, PlacesCountLinesAndBytes) {
    expect_errors({
        {"visible if 1\r\nvisible if 1\r\n  visible",
         "line 3, column 10: expected \"if\", found end "
         "of text"},
        {"visible if \"\xc3\xa4\" == 1", "line 1, column 20: expected a text, found an integer"},
        {"\n\n\tvisible if x", "line 3, column 13: " + VALUE + "\"x\""},
        {"visible if 1 # comment ( \" [\nwarn", "line 2, column 5: " + VALUE + "end of text"},
    });
}

std::string nested(const std::string& open, int levels, const std::string& close) {
    std::string source = "visible if ";
    for (int i = 0; i < levels; ++i) {
        source += open;
    }
    source += "1";
    for (int i = 0; i < levels; ++i) {
        source += close;
    }
    return source;
}

TEST(Binding_mistakes, NestingIsBounded) {
    const std::string too_deep = "nested too deeply";
    expect_errors({
        {nested("(", 64, ")"), "ok"},
        {nested("(", 65, ")"), "line 1, column 76: " + too_deep},
        {nested("not ", 64, ""), "ok"},
        {nested("not ", 65, ""), "line 1, column 272: " + too_deep},
        {nested("- ", 64, ""), "ok"},
        {nested("- ", 65, ""), "line 1, column 142: " + too_deep},
        {nested("abs(", 65, ")"), "line 1, column 271: " + too_deep},
        {nested("length(\"{", 33, "}\")"), "line 1, column 306: " + too_deep},
        {nested("1 ? ", 65, " : 0"), "line 1, column 270: " + too_deep},
        {nested("0 or (", 65, ")"), "line 1, column 401: " + too_deep},
        {nested("1 in {", 65, "}"), "line 1, column 396: " + too_deep},
        {nested("1 + (", 100, ")"), "line 1, column 332: " + too_deep},
        {nested("(", 100000, ")"), "line 1, column 76: " + too_deep},
    });
}

TEST(Binding_mistakes, LengthIsNoNesting) {
    Language language;
    for (const char* const repeated :
         {"1 + ", "1 and ", "0 or ", "0 ? 2 : ", "1 * ", "0 == 1 or ", "1 in {2, 3} or "}) {
        SCOPED_TRACE(repeated);
        EXPECT_EQ(language.error_of(nested(repeated, 20000, "")), "ok");
    }
    std::string set = "visible if 1 in {0";
    for (int i = 0; i < 20000; ++i) {
        set += ", 2";
    }
    EXPECT_EQ(language.error_of(set + "}"), "ok");
}

TEST(Binding_mistakes, TheNumberOfParametersIsBounded) {
    Language language;
    std::string source = "visible if [10000]";
    for (int pid = 10001; pid < 11024; ++pid) {
        source += " or [" + std::to_string(pid) + "]";
    }
    EXPECT_EQ(language.error_of(source), "ok");
    EXPECT_EQ(language.error_of(source + " or [10000]"), "ok");
    EXPECT_EQ(language.error_of(source + " or [11024]"),
              "line 1, column 11276: more than 1024 parameters");
}

TEST(Binding_mistakes, TheLengthOfASourceIsBounded) {
    Language language;
    const std::string comment = "visible if 1 #";
    const std::string longest(std::size_t{1} << 20, 'x');
    EXPECT_EQ(language.error_of(comment + longest.substr(comment.size())), "ok");
    EXPECT_EQ(language.error_of(comment + longest),
              "line 1, column 1: source text longer than 1048576 bytes");
}

// "100 == 1" is right, and so easily written for "[100] == 1".
TEST(Binding_mistakes, ConditionsAndComparisonsThatReadNothingAreWarnedOf) {
    const std::string END =
        " reads nothing, so it never changes; parameters are written in brackets, as in [100]";
    for (const Case& each : {
             Case{"visible if 100 == 1", "line 1, column 12: \"100 == 1\"" + END},
             Case{"visible if [mode]\n  range 0..9 if (3)", "line 2, column 17: \"(3)\"" + END},
             Case{"visible if [mode] == 1 or 100 == 1 and 2 < 3",
                  "line 1, column 27: \"100 == 1\"" + END},
             Case{"visible if not 5 in {1, 2} or [mode]",
                  "line 1, column 16: \"5 in {1, 2}\"" + END},
             Case{"visible if -3 in 1..5 and [mode]", "line 1, column 12: \"-3 in 1..5\"" + END},
             Case{"set [gain] = 100 > 3", "line 1, column 14: \"100 > 3\"" + END},
             Case{"warn \"{7 > 3 ? 1 : 2}\"", "line 1, column 8: \"7 > 3\"" + END},
             Case{"access read-only if \"a\" != \"b\"",
                  "line 1, column 21: \"\"a\" != \"b\"\"" + END},
             Case{"visible if 100 <= [mode] and value in {1, 2} or has_option(\"n\") == 1", ""},
             Case{"range 0..9; keys 1; set [gain] = 1 + 2; warn \"w\"; access read-only", ""},
             Case{"visible if 3 in {1, [mode]} and 5 in 1..[limit]", ""},
         }) {
        SCOPED_TRACE(each.source);
        Language language;
        const Compile_result compiled = language.compile(each.source);
        ASSERT_TRUE(compiled.ok()) << compiled.error->text();
        EXPECT_EQ(compiled.warnings.size(), each.error.empty() ? 0u : 1u);
        EXPECT_EQ(compiled.warnings.empty() ? "" : compiled.warnings[0].text(), each.error);
    }
}

// All errors of a text, line by line.
std::string errors_of(Language& language, const std::string& source) {
    std::string all;
    for (const Compile_error& error : language.compile(source).errors) {
        all += error.text() + "\n";
    }
    return all;
}

TEST(Binding_mistakes, TheMistakesOfAllRulesAreToldInTheirOrder) {
    Language language;
    const std::string source =
        "visible if [mouse] == 1; range 0..99; frobnicate\n"
        "keys 0..;; set [gain] = \"on\"; access read-only\n"
        "!; visible if [gain] == 1; warn 40x";
    EXPECT_EQ(errors_of(language, source),
              "line 1, column 12: unknown parameter \"[mouse]\"; did you mean [mode]?\n"
              "line 1, column 39: " +
                  RULES + "\"frobnicate\"\n" + "line 2, column 9: " + VALUE + "\";\"\n" +
                  "line 2, column 25: expected an integer, found a text\n"
                  "line 3, column 1: " +
                  RULES +
                  "\"!\"\n"
                  "line 3, column 33: \"40x\" is not a number\n");
    EXPECT_EQ(language.error_of(source),
              "line 1, column 12: unknown parameter \"[mouse]\"; did you mean [mode]?");
    EXPECT_EQ(errors_of(language, "visible if [gain]"), "");
}

TEST(Binding_mistakes, ARuleHasOneMistakeAndALastLineEndIsNone) {
    Language language;
    EXPECT_EQ(errors_of(language, "visible if [mouse] + [gone] +\n"),
              "line 1, column 12: unknown parameter \"[mouse]\"; did you mean [mode]?\n");
    EXPECT_EQ(errors_of(language, "\n;\n"), "line 3, column 1: " + RULES + "end of text\n");
    EXPECT_EQ(errors_of(language, std::string("a;b\0;c", 6)),
              "line 1, column 4: unexpected character \"\\x00\"\n");
}

// What stands behind the mistake in its rule is none of another rule.
TEST(Binding_mistakes, TextsBracketsAndCommentsSeparateNothing) {
    Language language;
    for (const char* const wrong : {
             "warn 1 \"a; b\"",
             "warn 1 \"a\\\"; b \\\\\"",
             "warn 1 \"{{; }}; {[gain] > 3 ? \"x; y\" : \"}; {[mode]}\"}; z\"",
             "warn \"{value in {1, 2} or}; \" + \"; {[gain]; 1}\"",
             "visible if 1 [a; b] # ; c",
             "visible if [mode] in {1, 2 # ; c",
             "visible if 1 } } {",
             "warn \"not closed; range 0..",
             "visible if [not closed; range 0..",
             "\"; \" visible if 1",
         }) {
        SCOPED_TRACE(wrong);
        const std::string first = errors_of(language, wrong);
        EXPECT_EQ(std::count(first.begin(), first.end(), '\n'), 1) << first;
        EXPECT_EQ(errors_of(language, wrong + std::string("\nrange 0..")),
                  first.substr(0, first.find("end of text")) +
                      (first.find("end of text") == std::string::npos ? "" : "end of line\n") +
                      "line 2, column 10: " + VALUE + "end of text\n");
    }
}

TEST(Binding_mistakes, ARuleBehindAMistakeIsReadAsIfItStoodAlone) {
    Language language;
    std::string nested = "visible if 1";
    for (int i = 0; i < 60; ++i) {
        nested = "visible if (" + nested.substr(11) + " and 1)";
    }
    ASSERT_EQ(language.error_of(nested), "ok");
    EXPECT_EQ(
        errors_of(language, "range 1..2, 1 + (3; range 0..4000000000\n" +
                                nested.substr(0, nested.size() - 1) + "\n" + nested + "\n keys -1"),
        "line 1, column 19: expected an operator or \")\", found \";\"\n"
        "line 1, column 30: \"4000000000\"" +
            INT32 + "\nline 2, column " + std::to_string(nested.size()) +
            ": expected an operator or \")\", found end of line\n"
            "line 4, column 7: \"-1\" is not a number from 0 to 2147483647\n");
}

TEST(Binding_mistakes, AnUnknownNameIsToldByItself) {
    Language language;
    const Compile_result refused =
        language.compile("range 0..[input 9 gain]; visible; set [gian] = 1");
    ASSERT_EQ(refused.errors.size(), 3U);
    EXPECT_EQ(refused.errors[0].unknown_name, "input 9 gain");
    EXPECT_EQ(refused.errors[1].unknown_name, "");
    EXPECT_EQ(refused.errors[2].unknown_name, "gian");
    EXPECT_EQ(refused.errors[2].message, "unknown parameter \"[gian]\"; did you mean [gain]?");
}

TEST(Binding_mistakes, AnAvalancheOfMistakesEndsAtAHundred) {
    Language language;
    std::string source;
    for (int i = 0; i < 101; ++i) {
        source += "visible\n";
    }
    const Compile_result refused = language.compile(source);
    ASSERT_EQ(refused.errors.size(), 100U);
    EXPECT_EQ(refused.errors.back().text(),
              "line 100, column 8: expected \"if\", found end of line");
}

TEST(Binding_mistakes, NothingIsKeptOfARefusedText) {
    Language language;
    const Compile_result refused = language.compile("range 1..2; range 3..4 if 1; range");
    EXPECT_FALSE(refused.ok());
    EXPECT_TRUE(refused.list.empty());
    EXPECT_TRUE(refused.notes.empty());
    EXPECT_TRUE(refused.parameters.empty());
    EXPECT_TRUE(refused.warnings.empty());
    const BindingListT before = language.compile("range 1..2 if [gain]").list;
    language.compile("set [title] = \"{[limit]}\" if value in {1, (");
    EXPECT_EQ(language.compile("range 1..2 if [gain]").list, before);
}

TEST(Binding_mistakes, AHundredWarningsOfATextAreReported) {
    Language language;
    std::string source;
    for (int i = 0; i < 101; ++i) {
        source += "visible if 1;";
    }
    EXPECT_EQ(language.compile(source).warnings.size(), 100U);
}

}  // namespace
