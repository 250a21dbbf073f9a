// Errors of the expression language: message, line and column, and what stays in effect.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/capture.h"
#include "unit/eval/evaluation.h"

namespace {

using evaluation::last_error;
using evaluation::outcome_of;
using evaluation::value_of;

struct Error_case {
    const char* source;
    const char* error;  // "LINE:COLUMN MESSAGE"
};

void expect_errors(const std::vector<Error_case>& cases, int exit_flag) {
    for (const Error_case& one : cases) {
        SCOPED_TRACE(one.source);
        EXPECT_EQ(outcome_of(one.source), one.error);
        EXPECT_EQ(evalKernel_pcb.exit_flag, exit_flag);
    }
}

TEST(Evaluator_errors, AMissingClosingTokenIsNamed) {
    expect_errors(
        {
            {"(1", "1:3 Missing ')'"},
            {"(1;", "1:3 Missing ')'"},
            {"(1, 2)", "1:3 Missing ')'"},
            {"(1 : 2)", "1:4 Missing ')'"},
            {"((1)", "1:5 Missing ')'"},
            {"(1 + 2 * 3", "1:11 Missing ')'"},
            {"x = (2 ** 3", "1:12 Missing ')'"},
            {"x = (y = 3", "1:11 Missing ')'"},
            {"x = (1 ? 2 : 3", "1:15 Missing ')'"},
            {"fabs((1, 2))", "1:8 Missing ')'"},
            {"(fabs(1)", "1:9 Missing ')'"},
            {"(1\n", "2:1 Missing ')'"},
            {"1 ? 2", "1:6 Missing ':'"},
            {"1 ? 2)", "1:6 Missing ':'"},
            {"1 ? 2;", "1:6 Missing ':'"},
            {"1 ? 2, 3", "1:6 Missing ':'"},
            {"1 ? 2 ? 3 : 4", "1:14 Missing ':'"},
            {"(1 ? 2)", "1:7 Missing ':'"},
            {"fabs(1 ? 2)", "1:11 Missing ':'"},
            {"1 ? x = 2", "1:10 Missing ':'"},
            {".", "1:2 Missing digit"},
            {"x = .;", "1:6 Missing digit"},
            {". 5", "1:2 Missing digit"},
            {".e1", "1:2 Missing digit"},
            {"1e+", "1:4 Missing digit"},
            {"1e-x", "1:4 Missing digit"},
            {"1e+ 5", "1:4 Missing digit"},
            {"1e+=5", "1:4 Missing digit"},
            {"/*", "1:3 Missing \"*/\""},
            {"/*/", "1:4 Missing \"*/\""},
            {"/* x\n* /", "2:4 Missing \"*/\""},
            {"x = 1 /* y", "1:11 Missing \"*/\""},
            {"x = fabs(1) /*", "1:15 Missing \"*/\""},
            {"//", "1:3 Missing '\\n'"},
            {"// x", "1:5 Missing '\\n'"},
            {"x = 1 // x", "1:11 Missing '\\n'"},
            {"// \r", "1:4 Missing '\\n'"},
        },
        evalKernel_syntax_error);
}

TEST(Evaluator_errors, AnUnexpectedTokenIsNamed) {
    expect_errors(
        {
            {"y = !-1", "1:6 Unexpected '-'"},
            {"y = !+1", "1:6 Unexpected '+'"},
            {"y = !!-1", "1:7 Unexpected '-'"},
            {"x = 1 +", "1:8 Unexpected eof"},
            {"x =", "1:4 Unexpected eof"},
            {"x +=", "1:5 Unexpected eof"},
            {"-", "1:2 Unexpected eof"},
            {"!", "1:2 Unexpected eof"},
            {"(", "1:2 Unexpected eof"},
            {"2 **", "1:5 Unexpected eof"},
            {"1 ?", "1:4 Unexpected eof"},
            {"1 ? 2 :", "1:8 Unexpected eof"},
            {"fabs(", "1:6 Unexpected eof"},
            {"fabs(1", "1:7 Unexpected eof"},
            {"fabs(1,", "1:8 Unexpected eof"},
            {"1e", "1:3 Unexpected eof"},
            {"1 2", "1:3 Unexpected digit"},
            {"x 2", "1:3 Unexpected digit"},
            {"(1 2)", "1:4 Unexpected digit"},
            {"(1) 2", "1:5 Unexpected digit"},
            {"1 x", "1:3 Unexpected letter"},
            {"1x", "1:2 Unexpected letter"},
            {"0x10", "1:2 Unexpected letter"},
            {"1_000", "1:2 Unexpected letter"},
            {"x y", "1:3 Unexpected letter"},
            {"1 e5", "1:3 Unexpected letter"},
            {"1e5e5", "1:4 Unexpected letter"},
            {"1ee5", "1:3 Unexpected letter"},
            {"1e 5", "1:3 Unexpected white space"},
            {"1e\n", "1:3 Unexpected white space"},
            {"1e/**/5", "1:3 Unexpected \"/*\""},
            {"1e//\n5", "1:3 Unexpected \"//\""},
            {"1e*5", "1:3 Unexpected '*'"},
            {"1 = 2", "1:3 Unexpected '='"},
            {"(x) = 2", "1:5 Unexpected '='"},
            {"-x = 2", "1:4 Unexpected '='"},
            {"!x = 2", "1:4 Unexpected '='"},
            {"1 + x = 3", "1:7 Unexpected '='"},
            {"2 ** x = 3", "1:8 Unexpected '='"},
            {"x == y = 3", "1:8 Unexpected '='"},
            {"1 ? 2 : x = 3", "1:11 Unexpected '='"},
            {"x = 1 ? 2 : 3 = 4", "1:15 Unexpected '='"},
            {"fabs(1) = 2", "1:9 Unexpected '='"},
            {"1 += 2", "1:3 Unexpected \"+=\""},
            {"1 -= 2", "1:3 Unexpected \"-=\""},
            {"1 *= 2", "1:3 Unexpected \"*=\""},
            {"1 /= 2", "1:3 Unexpected \"/=\""},
            {"1 + x /= 2", "1:7 Unexpected \"/=\""},
            {"x = += 2", "1:5 Unexpected \"+=\""},
            {"x = == 2", "1:5 Unexpected \"==\""},
            {"x === 2", "1:5 Unexpected '='"},
            {"x = != 2", "1:5 Unexpected \"!=\""},
            {"x ! = 2", "1:3 Unexpected '!'"},
            {"x !y", "1:3 Unexpected '!'"},
            {"1 +* 2", "1:4 Unexpected '*'"},
            {"1 * / 2", "1:5 Unexpected '/'"},
            {"1 ** * 2", "1:6 Unexpected '*'"},
            {"1 *** 2", "1:5 Unexpected '*'"},
            {"1 **** 2", "1:5 Unexpected \"**\""},
            {"* 2", "1:1 Unexpected '*'"},
            {"** 2", "1:1 Unexpected \"**\""},
            {"|| 2", "1:1 Unexpected \"||\""},
            {"1 || || 2", "1:6 Unexpected \"||\""},
            {"1 && && 2", "1:6 Unexpected \"&&\""},
            {"1 < < 2", "1:5 Unexpected '<'"},
            {"1 > > 2", "1:5 Unexpected '>'"},
            {"1 <= <= 2", "1:6 Unexpected \"<=\""},
            {"1 >= >= 2", "1:6 Unexpected \">=\""},
            {"? 1", "1:1 Unexpected '?'"},
            {": 1", "1:1 Unexpected ':'"},
            {"1 : 2", "1:3 Unexpected ':'"},
            {"1 ? 2 : 3 : 4", "1:11 Unexpected ':'"},
            {"1)", "1:2 Unexpected ')'"},
            {")", "1:1 Unexpected ')'"},
            {"()", "1:2 Unexpected ')'"},
            {"(,)", "1:2 Unexpected ','"},
            {"(;)", "1:2 Unexpected ';'"},
            {"x = ;", "1:5 Unexpected ';'"},
            {"x = ,", "1:5 Unexpected ','"},
            {"fabs(,1)", "1:6 Unexpected ','"},
            {"fabs(1,)", "1:8 Unexpected ')'"},
            {"fabs(1,,2)", "1:8 Unexpected ','"},
            {"fabs(1;2)", "1:7 Unexpected ';'"},
            {"fabs(;)", "1:6 Unexpected ';'"},
            {"fabs(1:2)", "1:7 Unexpected ':'"},
            {"fabs(-)", "1:7 Unexpected ')'"},
            {"2(3)", "1:2 Unexpected '('"},
            {"(fabs)(3)", "1:7 Unexpected '('"},
            {"fabs(1)(2)", "1:8 Unexpected '('"},
            {"1..2", "1:3 Unexpected '.'"},
            {"1.2.3", "1:4 Unexpected '.'"},
            {"1 .5", "1:3 Unexpected '.'"},
            {"x.y", "1:2 Unexpected '.'"},
            {"1e5.5", "1:4 Unexpected '.'"},
            {"1 */ 2", "1:4 Unexpected '/'"},
            {"x ? = 1 : 2", "1:5 Unexpected '='"},
        },
        evalKernel_syntax_error);
}

TEST(Evaluator_errors, AStrayCharacterIsShownIfItIsPrintable) {
    expect_errors(
        {
            {"\"", "1:1 Unexpected '\"'"},      {"#", "1:1 Unexpected '#'"},
            {"$", "1:1 Unexpected '$'"},        {"%", "1:1 Unexpected '%'"},
            {"&", "1:1 Unexpected '&'"},        {"'", "1:1 Unexpected '''"},
            {"@", "1:1 Unexpected '@'"},        {"[", "1:1 Unexpected '['"},
            {"\\", "1:1 Unexpected input"},     {"]", "1:1 Unexpected ']'"},
            {"^", "1:1 Unexpected '^'"},        {"`", "1:1 Unexpected '`'"},
            {"{", "1:1 Unexpected '{'"},        {"|", "1:1 Unexpected '|'"},
            {"}", "1:1 Unexpected '}'"},        {"~", "1:1 Unexpected '~'"},
            {"1 & 2", "1:3 Unexpected '&'"},    {"1 | 2", "1:3 Unexpected '|'"},
            {"1 &&& 2", "1:5 Unexpected '&'"},  {"1 ||| 2", "1:5 Unexpected '|'"},
            {"1 &= 2", "1:3 Unexpected '&'"},   {"x $", "1:3 Unexpected '$'"},
            {"(1 $", "1:4 Unexpected '$'"},     {"1e$", "1:3 Unexpected '$'"},
            {"1 \x7F", "1:3 Unexpected input"}, {"1 \x01", "1:3 Unexpected input"},
            {"\xE4", "1:1 Unexpected input"},   {"x\xC3\xA4", "1:2 Unexpected input"},
            {"1 \\ 2", "1:3 Unexpected input"},
        },
        evalKernel_syntax_error);
}

TEST(Evaluator_errors, EveryByteThatBeginsNoTokenIsAnError) {
    const std::string accepted =
        " \t\v\f\r\n0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz=?:<>+-*/()!,;.";
    for (int byte = 1; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        if (accepted.find(c) != std::string::npos) continue;
        SCOPED_TRACE(byte);
        const bool is_shown = byte > ' ' && byte < 0x7F && c != '\\';
        const std::string what = is_shown ? std::string("'") + c + "'" : "input";
        EXPECT_EQ(outcome_of(std::string("  ") + c), "1:3 Unexpected " + what);
        EXPECT_EQ(outcome_of(std::string("r = 1 ") + c + " 2"), "1:7 Unexpected " + what);
        EXPECT_EQ(outcome_of(std::string("/*") + c + "*/ r = 1 //" + c + "\n"), "ok");
    }
}

TEST(Evaluator_errors, EvaluationErrorsAreNamed) {
    expect_errors(
        {
            {"q = 1/0", "1:8 Divide by Zero"},
            {"q = 1/0;", "1:8 Divide by Zero"},
            {"q = 1/0 ;", "1:9 Divide by Zero"},
            {"q = 1/-0", "1:9 Divide by Zero"},
            {"q = 1/0*2", "1:8 Divide by Zero"},
            {"q = 1/(2-2)", "1:12 Divide by Zero"},
            {"q = 1/0**1", "1:11 Divide by Zero"},
            {"q = (1/0", "1:9 Divide by Zero"},
            {"q = 0/0", "1:8 Divide by Zero"},
            {"q = 1 ? 2 : 3/0", "1:16 Divide by Zero"},
            {"q = 0 && 3/0", "1:13 Divide by Zero"},
            {"s = sin(1, 2)", "1:14 Wrong Number of Arguments"},
            {"s = sin()", "1:10 Wrong Number of Arguments"},
            {"s = atan2(1)", "1:13 Wrong Number of Arguments"},
            {"s = atan2(1, 2, 3)", "1:19 Wrong Number of Arguments"},
            {"s = fmod()", "1:11 Wrong Number of Arguments"},
            {"s = foo(1)", "1:11 Unknown Function"},
            {"s = foo()", "1:10 Unknown Function"},
            {"s = SIN(1)", "1:11 Unknown Function"},
            {"s = Sin(1)", "1:11 Unknown Function"},
            {"s = si(1)", "1:10 Unknown Function"},
            {"s = sinn(1)", "1:12 Unknown Function"},
            {"s = _(1)", "1:9 Unknown Function"},
            {"s = zzz(1)", "1:11 Unknown Function"},
            {"s = r(1)", "1:9 Unknown Function"},
            {"s = foo(1) $", "1:12 Unknown Function"},
            {"s = foo(1)\n", "2:1 Unknown Function"},
        },
        evalKernel_semantic_error);
}

TEST(Evaluator_errors, EveryFunctionChecksItsNumberOfArguments) {
    const std::string names[] = {"acos", "asin", "atan",  "atan2", "cos",  "cosh", "exp", "fabs",
                                 "fmod", "log",  "log10", "sin",   "sinh", "sqrt", "tan", "tanh"};
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        const bool takes_two = name == "atan2" || name == "fmod";
        const auto error_with = [&](const std::string& arguments) {
            const std::string outcome = outcome_of(name + "(" + arguments + ")");
            return outcome == "ok" ? outcome : outcome.substr(outcome.find(' ') + 1);
        };
        EXPECT_EQ(error_with(""), "Wrong Number of Arguments");
        EXPECT_EQ(error_with("0.5"), takes_two ? "Wrong Number of Arguments" : "ok");
        EXPECT_EQ(error_with("0.5, 2"), takes_two ? "ok" : "Wrong Number of Arguments");
        EXPECT_EQ(error_with("0.5, 2, 3"), "Wrong Number of Arguments");
    }
}

TEST(Evaluator_errors, LinesAndColumnsFollowNewlinesTabsAndCarriageReturns) {
    expect_errors(
        {
            {"\n#", "2:1 Unexpected '#'"},
            {"\n\n  #", "3:3 Unexpected '#'"},
            {"\t#", "1:9 Unexpected '#'"},
            {"\t\t#", "1:17 Unexpected '#'"},
            {" \t#", "1:9 Unexpected '#'"},
            {"       \t#", "1:9 Unexpected '#'"},
            {"        \t#", "1:17 Unexpected '#'"},
            {"x=1;;;\t#", "1:9 Unexpected '#'"},
            {"x=1;;;;\t#", "1:9 Unexpected '#'"},
            {"x=1;;;;;\t#", "1:17 Unexpected '#'"},
            {"\r#", "1:1 Unexpected '#'"},
            {" \r\f #", "1:3 Unexpected '#'"},
            {"\v#", "1:2 Unexpected '#'"},
            {"\r\n#", "2:1 Unexpected '#'"},
            {"\n\t#", "2:9 Unexpected '#'"},
            {"\t\r\t#", "1:17 Unexpected '#'"},
            {"/*\n\n*/#", "3:3 Unexpected '#'"},
            {"/*\t*/#", "1:11 Unexpected '#'"},
            {"// \n#", "2:1 Unexpected '#'"},
            {"//\t\n #", "2:2 Unexpected '#'"},
            {"x = 1;\ny = 2;\n  z = 3 #", "3:9 Unexpected '#'"},
        },
        evalKernel_syntax_error);
    EXPECT_EQ(outcome_of("a = 1;\nb = 1 /\n0\n;"), "4:1 Divide by Zero");
}

TEST(Evaluator_errors, ValuesWrittenBeforeAnErrorStay) {
    EXPECT_EQ(outcome_of("a = 1; b = 2"), "ok");
    EXPECT_EQ(outcome_of("a = 5; b = 1/0; a = 6"), "1:15 Divide by Zero");
    EXPECT_EQ(value_of("a"), 5.0);
    EXPECT_EQ(value_of("b"), 2.0);
    EXPECT_EQ(outcome_of("a = 7; #"), "1:8 Unexpected '#'");
    EXPECT_EQ(value_of("a"), 7.0);
    EXPECT_EQ(outcome_of("a = (b = 8) / 0"), "1:16 Divide by Zero");
    EXPECT_EQ(value_of("a"), 7.0);
    EXPECT_EQ(value_of("b"), 8.0);
}

TEST(Evaluator_errors, TheAssignmentAroundAnErrorDoesNotCreateItsVariable) {
    EXPECT_EQ(outcome_of("unborn_a = 1/0"), "1:15 Divide by Zero");
    EXPECT_EQ(outcome_of("unborn_b = foo(1)"), "1:18 Unknown Function");
    EXPECT_EQ(outcome_of("unborn_c = sin()"), "1:17 Wrong Number of Arguments");
    EXPECT_EQ(outcome_of("unborn_d = 1 $"), "1:14 Unexpected '$'");
    EXPECT_EQ(outcome_of("unborn_e $"), "1:10 Unexpected '$'");
    EXPECT_EQ(outcome_of("unborn_f += 1/0"), "1:16 Divide by Zero");
    EXPECT_EQ(outcome_of("1 + unborn_g = 2"), "1:14 Unexpected '='");
    EXPECT_EQ(outcome_of("unborn_h(1)"), "1:12 Unknown Function");
    for (const char* name : {"unborn_a", "unborn_b", "unborn_c", "unborn_d", "unborn_e", "unborn_f",
                             "unborn_g", "unborn_h"}) {
        EXPECT_FALSE(value_of(name).has_value()) << name;
    }
}

// A bracket is asked for its other half only when its contents are complete, and these take effect.
TEST(Evaluator_errors, WhatWasCompleteBeforeAMissingParenthesisTakesEffect) {
    EXPECT_EQ(outcome_of("a = 0"), "ok");
    EXPECT_EQ(outcome_of("(a = 3;"), "1:7 Missing ')'");
    EXPECT_EQ(value_of("a"), 3.0);
}

TEST(Evaluator_errors, TheRecordKeepsTheLastErrorOverSuccesses) {
    EXPECT_EQ(outcome_of("x = 1/0"), "1:8 Divide by Zero");
    EXPECT_EQ(outcome_of("x = 1"), "ok");
    EXPECT_EQ(last_error(), "1:8 Divide by Zero");
}

TEST(Evaluator_errors, AnEvaluationBehindAnErrorStartsAfresh) {
    EXPECT_EQ(outcome_of("a = b = fmod(1, 2, (3 #"), "1:23 Unexpected '#'");
    EXPECT_NE(charStackTop, charStack);
    EXPECT_NE(argStackTop, argStack);
    EXPECT_EQ(outcome_of("a = fmod(9, 4)"), "ok");
    EXPECT_EQ(value_of("a"), 1.0);
    EXPECT_EQ(charStackTop, charStack);
    EXPECT_EQ(argStackTop, argStack);
}

TEST(Evaluator_errors, TheControlBlockTellsWhereASyntaxErrorIs) {
    char text[] = "a = (1 $";
    EXPECT_EQ(evaluateExpression(text), 1);
    EXPECT_STREQ(evalKernel_pcb.ag_msg, "Unexpected '$'");
    EXPECT_EQ(evalKernel_pcb.error_message, evalKernel_pcb.ag_msg);
    EXPECT_EQ(errorRecord.message, evalKernel_pcb.ag_msg);
    EXPECT_EQ(evalKernel_pcb.la_ptr, evalKernel_pcb.pointer + 7);
    EXPECT_EQ(evalKernel_pcb.input_code, '$');
    EXPECT_EQ(evalKernel_pcb.line, 1);
    EXPECT_EQ(evalKernel_pcb.column, 8);
    EXPECT_EQ(evalKernel_pcb.ssx, 2);
    EXPECT_EQ(evalKernel_pcb.error_frame_token, evalKernel_primary_token);
    EXPECT_EQ(evalKernel_pcb.error_frame_ssx, 2);
}

TEST(Evaluator_errors, TheControlBlockTellsWhereAnyEvaluationStopped) {
    const auto stop_of = [](const std::string& source) {
        support::capture(0, [&] { evaluation::evaluate(source); });
        EXPECT_EQ(evalKernel_pcb.input_value, evalKernel_pcb.input_code) << source;
        return std::make_pair(evalKernel_pcb.token_number, evalKernel_pcb.input_code);
    };
    EXPECT_EQ(stop_of("x = \xE4"), std::make_pair(evalKernel_token_type(), 0xE4));
    EXPECT_EQ(stop_of("x = 1"), std::make_pair(evalKernel_eof_token, 0));
    EXPECT_EQ(stop_of("x = 1/0 <= 2"), std::make_pair(evalKernel_less_or_equal_token, int{'<'}));
    EXPECT_EQ(stop_of("x = .)"), std::make_pair(evalKernel_right_parenthesis_token, int{')'}));
    EXPECT_EQ(stop_of(std::string(1000, 'n') + "n7"),
              std::make_pair(evalKernel_digit_token, int{'7'}));
    EXPECT_EQ(stop_of(std::string(126, '(') + "x(1"),
              std::make_pair(evalKernel_left_parenthesis_token, int{'('}));
}

TEST(Evaluator_errors, NothingIsLeftOfAnEarlierSyntaxError) {
    ASSERT_EQ(outcome_of("x = ((1 $"), "1:9 Unexpected '$'");
    ASSERT_EQ(evalKernel_pcb.error_frame_ssx, 3);
    EXPECT_EQ(outcome_of("x = 1/0"), "1:8 Divide by Zero");
    EXPECT_EQ(evalKernel_pcb.error_frame_token, evalKernel_token_type());
    EXPECT_EQ(evalKernel_pcb.error_frame_ssx, 0);
    EXPECT_EQ(outcome_of("(1)"), "ok");
    EXPECT_EQ(evalKernel_pcb.reduction_token, evalKernel_input_string_token);
    EXPECT_EQ(outcome_of("#"), "1:1 Unexpected '#'");
    EXPECT_EQ(evalKernel_pcb.reduction_token, evalKernel_token_type());
}

TEST(Evaluator_errors, ASemanticErrorLeavesNoSyntaxMessage) {
    EXPECT_EQ(outcome_of("#"), "1:1 Unexpected '#'");
    EXPECT_EQ(outcome_of("1/0"), "1:4 Divide by Zero");
    EXPECT_EQ(evalKernel_pcb.error_message, nullptr);
    EXPECT_EQ(evalKernel_pcb.reduction_token, evalKernel_multiplicative_expression_token);
}

TEST(Evaluator_errors, AnArgumentThatWasTakenIsTheLastReduction) {
    EXPECT_EQ(outcome_of("x = atan2(1, $"), "1:14 Unexpected '$'");
    EXPECT_EQ(evalKernel_pcb.reduction_token, evalKernel_argument_list_token);
    EXPECT_EQ(evalKernel_pcb.column, 14);
}

TEST(Evaluator_errors, ANullTextIsAProgrammingError) {
    EXPECT_DEATH(
        evaluateExpression(nullptr),
        "evaluator\\.cpp:[0-9]+: evaluateExpression: Assertion `expressionString' failed\\.");
}

}  // namespace
