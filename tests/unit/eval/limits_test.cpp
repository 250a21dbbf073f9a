// The limits of the evaluator's stacks, and texts far beyond them.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/capture.h"
#include "unit/eval/evaluation.h"

namespace {

using evaluation::bits_of;
using evaluation::outcome_of;
using evaluation::repeated;
using evaluation::value_of;

// A text that nests `levels` times: all openings, the core, all closings.
struct Nesting {
    const char* name;
    const char* opening;
    const char* core;
    const char* closing;
    int states_per_level;
    int deepest;  // number of levels that fit

    std::string text(int levels) const {
        return repeated(opening, levels) + core + repeated(closing, levels);
    }
};

const std::vector<Nesting> NESTINGS = {
    {"parentheses", "(", "1", ")", 1, 127},
    {"negations", "-", "1", "", 1, 127},
    {"unary plus", "+", "1", "", 1, 127},
    {"logical nots", "!", "1", "", 1, 127},
    {"powers", "1**", "1", "", 1, 127},
    {"signed powers", "1**-", "1", "", 2, 63},
    {"assignments", "a=", "1", "", 1, 127},
    {"compound assignments", "a+=", "1", "", 1, 127},
    {"second operands", "1?", "1", ":2", 1, 126},
    {"third operands", "0?1:", "1", "", 2, 63},
    {"calls", "fabs(", "1", ")", 2, 63},
    {"second arguments", "fmod(1,", "1", ")", 2, 63},
    {"sums in parentheses", "1+(", "1", ")", 2, 63},
    {"products in sums in parentheses", "1+2*(", "1", ")", 3, 42},
    {"right sides in parentheses", "(a=", "1", ")", 2, 63},
    {"calls in powers", "2**fabs(", "1", ")", 3, 42},
    {"negated calls", "-fabs(", "1", ")", 3, 42},
};

TEST(Evaluator_limits, EveryKindOfNestingTakesAtMostThreeStates) {
    for (const Nesting& nesting : NESTINGS) {
        SCOPED_TRACE(nesting.name);
        EXPECT_GE(nesting.deepest, 126 / nesting.states_per_level);
        EXPECT_LE(nesting.states_per_level, 3);
        EXPECT_EQ(outcome_of(nesting.text(nesting.deepest)), "ok");
    }
}

TEST(Evaluator_limits, TheLastStateCanBeUsed) {
    EXPECT_EQ(outcome_of("r = (" + repeated("fabs(", 62) + "1" + repeated(")", 63)), "ok");
    EXPECT_EQ(outcome_of("(" + repeated("fabs(", 63) + "1" + repeated(")", 64)), "ok");
    EXPECT_EQ(outcome_of("(" + repeated("fabs(", 62) + "(-1)" + repeated(")", 63)), "ok");
}

TEST(Evaluator_limits, OneLevelMoreOverflowsTheParser) {
    for (const Nesting& nesting : NESTINGS) {
        SCOPED_TRACE(nesting.name);
        const std::string text = nesting.text(nesting.deepest + 1);
        const std::string printed =
            support::capture(0, [&] { EXPECT_EQ(outcome_of(text), "overflow"); }).err;
        EXPECT_EQ(printed, "\nParser stack overflow, line " + std::to_string(evalKernel_pcb.line) +
                               ", column " + std::to_string(evalKernel_pcb.column) + "\n");
        EXPECT_EQ(outcome_of("1"), "ok");
    }
}

TEST(Evaluator_limits, AnOverflowNamesThePlaceOfWhatDidNotFit) {
    ASSERT_EQ(outcome_of("#"), "1:1 Unexpected '#'");
    const std::string text = "\n  " + std::string(128, '(');
    const support::Captured printed =
        support::capture(0xFFFFFFFF, [&] { EXPECT_EQ(evaluation::evaluate(text), 1); });
    EXPECT_EQ(printed.err, "\nParser stack overflow, line 2, column 130\n");
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_stack_overflow);
    EXPECT_EQ(evaluation::last_error(), "1:1 Unexpected '#'");
}

TEST(Evaluator_limits, OverflowsKeepWhatWasAssigned) {
    support::capture(
        0, [] { EXPECT_EQ(outcome_of("a = 3; b = 4; b = " + std::string(200, '(')), "overflow"); });
    EXPECT_EQ(value_of("a"), 3.0);
    EXPECT_EQ(value_of("b"), 4.0);
}

TEST(Evaluator_limits, FractionsTakeNoStates) {
    const std::string digits = repeated("1234567890", 10);
    double fraction = 0.0;
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
        fraction = ((*digit - '0') + fraction) / 10.0;
    }
    ASSERT_EQ(outcome_of("r = " + repeated("(", 126) + "." + digits + repeated(")", 126)), "ok");
    EXPECT_EQ(bits_of(value_of("r").value()), bits_of(fraction));
}

TEST(Evaluator_limits, AThousandCharactersOfNamesMayBePending) {
    const std::string name(1000, 'n');
    EXPECT_EQ(outcome_of(name + " = 5"), "ok");
    EXPECT_EQ(value_of(name), 5.0);
    EXPECT_EQ(outcome_of(name + "n = 5"), "1:1002 Character Stack Overflow");
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_semantic_error);
    EXPECT_EQ(outcome_of("a = " + name), "1:1005 Character Stack Overflow");
    EXPECT_EQ(outcome_of(std::string(600, 'p') + " = " + std::string(400, 'q') + " = 1"), "ok");
    EXPECT_EQ(outcome_of(std::string(600, 'p') + "=" + std::string(401, 'q') + "=1"),
              "1:1003 Character Stack Overflow");
    EXPECT_EQ(outcome_of(repeated("a+", 3000) + "a"), "ok");
}

TEST(Evaluator_limits, TwoHundredArgumentsMayBePending) {
    const std::string fits = "fabs(" + repeated("1,", 199) + "1)";
    EXPECT_EQ(outcome_of(fits), "1:406 Wrong Number of Arguments");
    const std::string exceeds = "fabs(" + repeated("1,", 200) + "1)";
    EXPECT_EQ(outcome_of(exceeds), "1:407 Argument Stack Full");
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_semantic_error);
    EXPECT_EQ(outcome_of("fabs(" + repeated("1,", 5000)), "1:407 Argument Stack Full");
    EXPECT_EQ(outcome_of("sin(" + repeated("1,", 199) + "fmod(1, 2))"),
              "1:412 Argument Stack Full");
    EXPECT_EQ(outcome_of(repeated("fmod(1, 2) +", 1000) + "1"), "ok");
}

// Beyond what a parser on the machine's stack would survive.
TEST(Evaluator_limits, MegabytesOfInputEndInOrder) {
    constexpr std::size_t SIZE = 4 << 20;
    EXPECT_EQ(outcome_of("r = 1" + std::string(SIZE, ';') + "r = 2"), "ok");
    EXPECT_EQ(value_of("r"), 2.0);
    EXPECT_EQ(outcome_of(std::string(SIZE, ' ') + "#"), "1:4194305 Unexpected '#'");
    EXPECT_EQ(outcome_of(std::string(SIZE, '\n') + "#"), "4194305:1 Unexpected '#'");
    EXPECT_EQ(outcome_of("/*" + std::string(SIZE, '*') + "/ r = 3"), "ok");
    EXPECT_EQ(outcome_of("/*" + std::string(SIZE, '/')), "1:4194307 Missing \"*/\"");
    EXPECT_EQ(outcome_of("//" + std::string(SIZE, '/') + "\n"), "ok");
    EXPECT_EQ(outcome_of("r = " + std::string(SIZE, '9')), "ok");
    EXPECT_EQ(value_of("r"), HUGE_VAL);
    EXPECT_EQ(outcome_of("r = 0." + std::string(SIZE, '5')), "ok");
    EXPECT_EQ(outcome_of("r = 1e" + std::string(SIZE, '9')), "ok");
    EXPECT_EQ(outcome_of(std::string(SIZE, 'n')), "1:1002 Character Stack Overflow");
    EXPECT_EQ(outcome_of("r = 0" + repeated("+1", SIZE / 8)), "ok");
    EXPECT_EQ(value_of("r"), SIZE / 8);
    EXPECT_EQ(outcome_of(std::string(SIZE, '#')), "1:1 Unexpected '#'");
}

TEST(Evaluator_limits, MegabytesOfNestingOverflowInOrder) {
    constexpr int LEVELS = 1 << 20;
    for (const Nesting& nesting : NESTINGS) {
        SCOPED_TRACE(nesting.name);
        support::capture(
            0, [&] { EXPECT_EQ(outcome_of(repeated(nesting.opening, LEVELS)), "overflow"); });
    }
}

}  // namespace
