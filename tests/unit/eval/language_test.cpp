// The expression language by examples: what each source leaves in a variable.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "unit/eval/evaluation.h"

namespace {

using evaluation::bits_of;
using evaluation::evaluate;
using evaluation::outcome_of;
using evaluation::value_of;

constexpr double INF = std::numeric_limits<double>::infinity();

// `r` is -777 and `t` is 5 before each case; `r` is compared bit for bit behind it.
struct Value_case {
    const char* source;
    double value;
};

void expect_values(const std::vector<Value_case>& cases) {
    for (const Value_case& one : cases) {
        SCOPED_TRACE(one.source);
        ASSERT_EQ(outcome_of("r = -777; t = 5"), "ok");
        EXPECT_EQ(outcome_of(one.source), "ok");
        const double value = value_of("r").value();
        EXPECT_EQ(bits_of(value), bits_of(one.value)) << value << " instead of " << one.value;
    }
}

TEST(Evaluator_language, AnEmptyInputSucceedsAndChangesNothing) {
    expect_values({
        {"", -777},
        {" ", -777},
        {" \t\v\f\r\n", -777},
        {"\n\n\n", -777},
        {"// only a comment\n", -777},
        {"//\n", -777},
        {" // one\n // two\n", -777},
        {"/* only a comment */", -777},
        {"/**/", -777},
        {"/***/", -777},
        {"/* a * b / c **/", -777},
        {"/* // */", -777},
        {"// /*\n", -777},
        {"/* /* */", -777},
        {"/*/ */", -777},
        {"/* one */ /* two */", -777},
        {";", -777},
        {",", -777},
        {";;,;,", -777},
        {" ; // x\n ; ", -777},
    });
}

TEST(Evaluator_language, ExpressionsAreSeparatedByCommasAndSemicolons) {
    expect_values({
        {"r=1;", 1},
        {"r=1,", 1},
        {";r=1", 1},
        {",,r=1;;", 1},
        {"r=1;r=2", 2},
        {"r=1,r=2", 2},
        {"r=1,;r=r+2", 3},
        {"v=3;\nv=v/2;\nr=v", 1.5},
        {"r=1;3;4", 1},
        {"1", -777},
        {"t;r=t", 5},
    });
}

TEST(Evaluator_language, WhiteSpaceAndCommentsStandBetweenAnyTokens) {
    expect_values({
        {"  r  =  1  +  2  ", 3},
        {"r\n=\n1\n+\n2\n", 3},
        {"r\t=\v1\f+\r2", 3},
        {"r/**/=/**/1/**/+/**/2/**/", 3},
        {"r//a\n=//b\n1//c\n+//d\n2//e\n", 3},
        {"/*a*/r=1", 1},
        {"r = fabs /* x */ ( /* y */ -2 /* z */ )", 2},
        {"r = fabs // x\n ( // y\n -2 // z\n )", 2},
        {"r = ( 1 )", 1},
        {"r = 4 /* * */ / 2", 2},
        {"r = 4 //* 9\n / 2", 2},
        {"r = 3 */* x */ 2", 6},
        {"r = 8 // /* \n + 1", 9},
        {"r = - /*x*/ 2", -2},
        {"r = ! /*x*/ 2", 0},
        {"r = 2 /**/ ** /**/ 3", 8},
        {"r = 1 ? 2 /*a*/ : /*b*/ 3", 2},
        {"r /*\xC3\xA4\x01\x7F#$@*/ = 1", 1},
        {"r // \xFF\\^`\n = 1", 1},
    });
}

TEST(Evaluator_language, NumbersHaveAnOptionalFractionAndExponent) {
    expect_values({
        {"r=0", 0},
        {"r=7", 7},
        {"r=007", 7},
        {"r=42", 42},
        {"r=3.", 3},
        {"r=3.;", 3},
        {"r=3. + 1", 4},
        {"r=.5", 0.5},
        {"r=.5e1", 5},
        {"r=.5E1", 5},
        {"r=0.25", 0.25},
        {"r=1.5", 1.5},
        {"r=00.50", 0.5},
        {"r=1e2", 100},
        {"r=1E2", 100},
        {"r=1e+2", 100},
        {"r=2e-1", 2 * std::pow(10.0, -1)},
        {"r=1e02", 100},
        {"r=1e0", 1},
        {"r=1e-0", 1},
        {"r=3.e1", 30},
        {"r=1.25e2", 125},
        {"r=1.25e-2", 1.25 * std::pow(10.0, -2)},
        {"r=1e-2-1", 1 * std::pow(10.0, -2) - 1},
        {"r=1e2 - 1e1", 90},
        {"r=-1.5", -1.5},
        {"r=2147483648", 2147483648.0},
        {"r=9007199254740993", 9007199254740992.0},
        {"r=123456789012345", 123456789012345.0},
        {"r=1234567890123456", 1234567890123456.0},
    });
}

TEST(Evaluator_language, IntegerPartsAreAddedUpFromLeftToRight) {
    for (const std::string digits :
         {"12345678901234567", "98765432109876543210", "99999999999999999999999999999999",
          "3141592653589793238462643383279502884197"}) {
        SCOPED_TRACE(digits);
        double expected = 0.0;
        for (const char digit : digits)
            expected = expected * 10.0 + (digit - '0');
        ASSERT_EQ(outcome_of("r = " + digits), "ok");
        EXPECT_EQ(bits_of(value_of("r").value()), bits_of(expected));
    }
}

// A fold from left to right gives other bits for many of these: callers compare displayed numbers.
TEST(Evaluator_language, FractionsAreFoldedFromRightToLeft) {
    for (const std::string digits :
         {"1", "25", "1234567", "999", "000001", "3141592653589793238462643383279", "70",
          "0123456789012345678901234567890123456789"}) {
        SCOPED_TRACE(digits);
        double expected = 0.0;
        for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
            expected = ((*digit - '0') + expected) / 10.0;
        }
        ASSERT_EQ(outcome_of("r = ." + digits), "ok");
        EXPECT_EQ(bits_of(value_of("r").value()), bits_of(expected));
        ASSERT_EQ(outcome_of("r = 17." + digits + "e3"), "ok");
        EXPECT_EQ(bits_of(value_of("r").value()), bits_of((17.0 + expected) * std::pow(10.0, 3)));
    }
}

TEST(Evaluator_language, ExponentsSaturate) {
    expect_values({
        {"r=1e308", 1 * std::pow(10.0, 308)},
        {"r=1e309", INF},
        {"r=1e-400", 0},
        {"r=1e2147483647", INF},
        {"r=1e2147483648", INF},
        {"r=1e4294967297", INF},
        {"r=1e99999999999999999999999999", INF},
        {"r=1e-99999999999999999999999999", 0},
        {"r=1e00000000000000000000000000002", 100},
        {"r=0e308", 0},
    });
    EXPECT_EQ(outcome_of("r = 0e309"), "ok");
    EXPECT_TRUE(std::isnan(value_of("r").value()));
}

TEST(Evaluator_language, NamesHoldLettersDigitsAndUnderscores) {
    expect_values({
        {"_=4;r=_", 4},
        {"_a1=4;r=_a1", 4},
        {"A=1;a=2;r=A*10+a", 12},
        {"e=3;r=e", 3},
        {"E1=3;r=E1", 3},
        {"e5=3;r=2*e5", 6},
        {"sin=3;r=sin", 3},
        {"sin=3;r=sin(0)+sin", 3},
        {"ab=1;abc=2;abcd=3;r=ab*100+abc*10+abcd", 123},
        {"r9Z_=1,r=r9Z_", 1},
    });
}

TEST(Evaluator_language, AssignmentsYieldTheNewValueAndAssociateToTheRight) {
    expect_values({
        {"r=a=3;", 3},
        {"r=a=b=4;r=r+a+b", 12},
        {"r=(a=3)+a", 6},
        {"r=1;r+=2", 3},
        {"r=1;r-=2", -1},
        {"r=3;r*=2", 6},
        {"r=3;r/=2", 1.5},
        {"r=t+=2", 7},
        {"r=t-=2", 3},
        {"r=t*=2", 10},
        {"r=t/=2", 2.5},
        {"a=1;b=2;r=a+=b*=3", 7},
        {"r = 10; r -= r -= 3", 0},
        {"r+=1", -776},
        {"r = 1 ? a = 3 : 4", 3},
        {"r = 1 == 1", 1},
        {"r = (r = 3)", 3},
        {"r = 4, r = r = r", 4},
        {"r = fmod(a = 7, b = 4) + a + b", 14},
    });
}

// Intended: a menu's compound assignment sees what its own right side did.
TEST(Evaluator_language, ACompoundAssignmentReadsItsVariableBehindItsRightSide) {
    expect_values({
        {"r = 1; r += (r = 5)", 10},
        {"r = 1; r *= (r = 5) + 1", 30},
        {"r = 1; r -= (r = 5)", 0},
        {"r = 1; r = r + (r = 5)", 6},
        {"r = 2; r = (r = 5) * r", 25},
    });
}

TEST(Evaluator_language, AnUnknownVariableIsZeroAndIsCreated) {
    evaluation::forget_variables();
    expect_values({{"r = never_seen", 0}, {"r = never_seen_2 += 3", 3}});
    EXPECT_EQ(value_of("never_seen"), 0.0);
    EXPECT_EQ(value_of("never_seen_2"), 3.0);
    expect_values({{"never_seen_3 /= 2; r = never_seen_3", 0}});
}

// Intended: "/" checks for zero, "/=" does not; expressions in use rely on the infinity.
TEST(Evaluator_language, ADividingAssignmentByZeroIsNoError) {
    expect_values({{"r = 1; r /= 0", INF}, {"r = -1; r /= 0", -INF}, {"r = 1; r /= -0", -INF}});
    EXPECT_EQ(outcome_of("new_quotient /= 0"), "ok");
    EXPECT_TRUE(std::isnan(value_of("new_quotient").value()));
}

TEST(Evaluator_language, ConditionalsAssociateToTheRight) {
    expect_values({
        {"r = 1 ? 2 : 3", 2},
        {"r = 0 ? 2 : 3", 3},
        {"r = -0 ? 2 : 3", 3},
        {"r = 0.1 ? 2 : 3", 2},
        {"r = -1 ? 2 : 3", 2},
        {"r = 1 ? 2 : 3 ? 4 : 5", 2},
        {"r = 0 ? 2 : 3 ? 4 : 5", 4},
        {"r = 0 ? 2 : 0 ? 4 : 5", 5},
        {"r = 1 ? 0 ? 6 : 7 : 5", 7},
        {"r = 1 ? 1 ? 6 : 7 : 5", 6},
        {"r = 0 ? 1 ? 6 : 7 : 5", 5},
        {"r = (1 ? 0 : 2) ? 3 : 4", 4},
        {"r = 1 || 0 ? 2 : 3", 2},
        {"r = 0 ? 1 : 0 || 2", 1},
        {"r = 0 ? 1 : 2 + 3", 5},
        {"r = 1 ? 2 + 3 : 4", 5},
        {"r = t > 3 ? t * 2 : t / 2", 10},
        {"r = t < 3 ? t * 2 : t / 2", 2.5},
        {"r = (0/1e-1) ? 2 : 3", 3},
    });
}

// Intended: values are computed while the text is read, so nothing is left out.
TEST(Evaluator_language, EveryOperandTakesEffect) {
    expect_values({
        {"y = 0 && (z = 7); r = z * 10 + y", 70},
        {"z = 1; y = 1 || (z = 7); r = z * 10 + y", 71},
        {"z = 1; 1 ? 2 : (z = 9); r = z", 9},
        {"z = 1; 0 ? z = 9 : 2; r = z", 9},
        {"a = 0; 1 ? (a += 1) : (a += 10); r = a", 11},
        {"a = 1; r = a + (a = 2) + a", 5},
        {"a = 1; r = a * 100 + (a += 1) * 10 + (a += 1)", 123},
    });
}

TEST(Evaluator_language, LogicYieldsOneOrZero) {
    expect_values({
        {"r = 0 || 0", 0},         {"r = 0 || 5", 1},      {"r = 5 || 0", 1},
        {"r = -1 || 2", 1},        {"r = 0 && 0", 0},      {"r = 0 && 5", 0},
        {"r = 5 && 0", 0},         {"r = -1 && 2", 1},     {"r = 1 || 0 && 0", 1},
        {"r = (1 || 0) && 0", 0},  {"r = 0 && 0 || 1", 1}, {"r = 0 || 0 || 3", 1},
        {"r = 1 && 2 && 3", 1},    {"r = 1 && 2 && 0", 0}, {"r = 0.5 && 0.5", 1},
        {"r = -0 || -0", 0},       {"r = 1&&1||0&&0", 1},  {"r = 1 == 1 && 2 == 2", 1},
        {"r = 1 < 2 || 2 < 1", 1}, {"r = !0", 1},          {"r = !1", 0},
        {"r = !0.5", 0},           {"r = !!7", 1},         {"r = !!0", 0},
        {"r = !!!7", 0},           {"r = !(1 - 1)", 1},    {"r = !t", 0},
        {"r = !fabs(0)", 1},       {"r = !0 + 1", 2},      {"r = !1 + 1", 1},
        {"r = -!0", -1},           {"r = !0 ** 2", 1},     {"r = 2 ** !0", 2},
        {"r = !2 ** 0", 1},        {"r = ! ! t", 1},       {"r = !undefined_flag", 1},
        {"r = !(t = 0) * 3", 3},
    });
}

TEST(Evaluator_language, ComparisonsAreExactAndAssociateToTheLeft) {
    expect_values({
        {"r = 1 == 1", 1},      {"r = 1 == 2", 0},     {"r = 1 != 1", 0},
        {"r = 1 != 2", 1},      {"r = 1 < 2", 1},      {"r = 2 < 1", 0},
        {"r = 1 < 1", 0},       {"r = 1 <= 2", 1},     {"r = 2 <= 1", 0},
        {"r = 1 <= 1", 1},      {"r = 1 > 2", 0},      {"r = 2 > 1", 1},
        {"r = 1 > 1", 0},       {"r = 1 >= 2", 0},     {"r = 2 >= 1", 1},
        {"r = 1 >= 1", 1},      {"r = 0 == -0", 1},    {"r = 0.1 + 0.2 == 0.3", 0},
        {"r = 0.5 == .5", 1},   {"r = 3 > 2 > 1", 0},  {"r = 3 == 3 == 1", 1},
        {"r = 2 == 2 != 0", 1}, {"r = 1 < 2 == 1", 1}, {"r = 1 == 1 < 2", 1},
        {"r = 5 == 2 < 3", 0},  {"r = 1 + 1 == 2", 1}, {"r = 1 < 1 + 1", 1},
        {"r=1<=-1", 0},         {"r=1==-1", 0},        {"r=3==3==1", 1},
        {"r=1<-1", 0},          {"r = 1 == !0", 1},    {"r=1!=!0", 0},
    });
    EXPECT_EQ(outcome_of("n = 0; n /= 0; r = n == n"), "ok");
    EXPECT_EQ(value_of("r"), 0.0);
    EXPECT_EQ(outcome_of("r = (n != n) + 2 * (n < 1) + 4 * (n >= 1) + 8 * !n + (n ? 16 : 0)"),
              "ok");
    EXPECT_EQ(value_of("r"), 17.0);
    EXPECT_EQ(outcome_of("r = (n || 0) + (n && 1)"), "ok");
    EXPECT_EQ(value_of("r"), 2.0);
}

TEST(Evaluator_language, ArithmeticFollowsPrecedenceAndAssociatesToTheLeft) {
    expect_values({
        {"r = 1 + 2", 3},
        {"r = 1 - 2", -1},
        {"r = 3 * 4", 12},
        {"r = 3 / 4", 0.75},
        {"r = 1 + 2 * 3", 7},
        {"r = (1 + 2) * 3", 9},
        {"r = 10 - 4 - 3", 3},
        {"r = 10 - (4 - 3)", 9},
        {"r = 24 / 4 / 3", 2},
        {"r = 24 / (4 / 2)", 12},
        {"r = 2 * 3 / 4", 1.5},
        {"r = 8 / 2 * 4", 16},
        {"r = 1 - 2 + 3", 2},
        {"r = -1", -1},
        {"r = --1", 1},
        {"r = ---1", -1},
        {"r = +1", 1},
        {"r = ++1", 1},
        {"r = -+-1", 1},
        {"r = - - 1", 1},
        {"r = 1--1", 2},
        {"r = 1++1", 2},
        {"r = 1-+1", 0},
        {"r = 2*-3", -6},
        {"r = -2*3", -6},
        {"r = -2*-3", 6},
        {"r = 6/-3", -2},
        {"r = -0", -0.0},
        {"r = 0", 0.0},
        {"r = +-0", -0.0},
        {"r = -t", -5},
        {"r = -(1+2)", -3},
        {"r = ((((7))))", 7},
        {"r = (1)+(2)", 3},
        {"r=1/3", 1.0 / 3.0},
        {"r=2/3*3", 2.0 / 3.0 * 3.0},
        {"r = 1e308 * 10", INF},
        {"r = 5 - -5", 10},
        {"r = 1+2+3+4+5+6+7+8+9+10", 55},
        {"r = t*t-t/t+t", 29},
        {"r=0/5", 0},
        {"r=-0/5", -0.0},
        {"r=0/-5", -0.0},
    });
}

TEST(Evaluator_language, PowersAssociateToTheRightAndTakeASignedExponent) {
    expect_values({
        {"r = 2 ** 3", 8},
        {"r = 2 ** 3 ** 2", 512},
        {"r = (2 ** 3) ** 2", 64},
        {"r = 2**-1", 0.5},
        {"r = 2 ** - 1", 0.5},
        {"r = 2**+2", 4},
        {"r = 2**--2", 4},
        {"r = -2**2", -4},
        {"r = (-2)**2", 4},
        {"r = 2**-2**2", 0.0625},
        {"r = --2**2", 4},
        {"r = 2*3**2", 18},
        {"r = 3**2*2", 18},
        {"r = 1+2**3", 9},
        {"r = 2**3+1", 9},
        {"r = 4**0.5", 2},
        {"r = 0**0", 1},
        {"r = 2**-1*4", 2},
        {"r = 2**-1+4", 4.5},
        {"r = 2**-1**2", 0.5},
        {"r = 0**-1", INF},
        {"r = t**2", 25},
        {"r = fabs(-3)**2", 9},
        {"r = 10**2/10**1", 10},
        {"r = 1.5**2.5", std::pow(1.5, 2.5)},
        {"r=2**t", 32},
        {"r = 2**-t < 1", 1},
        {"r=!0**0", 1},
    });
    EXPECT_EQ(outcome_of("r = (-8) ** 0.5"), "ok");
    EXPECT_TRUE(std::isnan(value_of("r").value()));
}

TEST(Evaluator_language, PowersHaveTheBitsOfTheMathematicsLibrary) {
    std::vector<double> bases = {4503599627370496.0,
                                 94906265.0,
                                 94906266.0,
                                 94906267.0,
                                 67108864.0,
                                 208063.0,
                                 208064.0,
                                 9741.0,
                                 2097151.0,
                                 1e15,
                                 1e300,
                                 0.0,
                                 0.1};
    for (int half = 1; half < 200; ++half) {
        bases.push_back(half / 2.0);
    }
    evaluate("b = 0; n = 0");
    const auto find = [](const std::string& name) {
        return std::find_if(variable, variable + nVariables,
                            [&](const VariableDescriptor& each) { return name == each.name; });
    };
    for (const double base : bases) {
        for (const double sign : {1.0, -1.0}) {
            for (int half = -8; half <= 130; ++half) {
                find("b")->value = sign * base;
                find("n")->value = half / 2.0;
                ASSERT_EQ(evaluate("r = b ** n"), 0);
                ASSERT_EQ(bits_of(find("r")->value), bits_of(std::pow(sign * base, half / 2.0)))
                    << sign * base << " ** " << half / 2.0;
            }
        }
    }
}

TEST(Evaluator_language, FunctionsComputeWhatTheMathematicsLibraryDoes) {
    expect_values({
        {"r = acos(0.5)", std::acos(0.5)},
        {"r = asin(0.5)", std::asin(0.5)},
        {"r = atan(2)", std::atan(2.0)},
        {"r = atan2(1, -2)", std::atan2(1.0, -2.0)},
        {"r = cos(1)", std::cos(1.0)},
        {"r = cosh(1)", std::cosh(1.0)},
        {"r = exp(1)", std::exp(1.0)},
        {"r = fabs(-2.5)", 2.5},
        {"r = fmod(7, 4)", 3},
        {"r = fmod(-7, 4)", -3},
        {"r = fmod(4, 7)", 4},
        {"r = log(2)", std::log(2.0)},
        {"r = log10(1000)", std::log10(1e3)},
        {"r = sin(1)", std::sin(1.0)},
        {"r = sinh(1)", std::sinh(1.0)},
        {"r = sqrt(2)", std::sqrt(2.0)},
        {"r = tan(1)", std::tan(1.0)},
        {"r = tanh(1)", std::tanh(1.0)},
        {"r = fabs(fmod(-7, sqrt(16)))", 3},
        {"r = log(0)", -INF},
        {"r = fmod(1 ? 7 : 8, 0 || 4)", 0},
        {"r = fmod((7), (4)) + 1", 4},
        {"r = fmod(fmod(17, 10), fmod(14, 5))", 3},
        {"r = sqrt(9) * sqrt(4)", 6},
        {"r = -sqrt(9)", -3},
        {"r = fmod(a = 9, a - 2)", 2},
    });
    for (const char* source : {"r = sqrt(-1)", "r = acos(2)", "r = log(-1)", "r = fmod(1, 0)"}) {
        SCOPED_TRACE(source);
        EXPECT_EQ(outcome_of(source), "ok");
        EXPECT_TRUE(std::isnan(value_of("r").value()));
    }
}

TEST(Evaluator_language, TheDisplayExpressionOfARangeLeavesItsResultInV) {
    ASSERT_EQ(outcome_of("v=-12;\nv=v/10;\n"), "ok");
    EXPECT_EQ(value_of("v"), -1.2);
    ASSERT_EQ(outcome_of("v=-2147483648;\nv=v*2;\n"), "ok");
    EXPECT_EQ(value_of("v"), -4294967296.0);
}

TEST(Evaluator_language, AToggleExpressionComparesItsSubstitutedValue) {
    expect_values({{"r=3==3", 1}, {"r=-1==3", 0}, {"r=3==3&&(0==0||1>2)", 1}});
}

TEST(Evaluator_language, TheInputIsLeftAsItWas) {
    char text[] = "r = name_of_some_length + 1 // x\n";
    const std::string before = text;
    EXPECT_EQ(evaluateExpression(text), 0);
    EXPECT_EQ(text, before);
}

TEST(Evaluator_language, SuccessIsExitFlagOneAndLeavesThePlaceBehindTheInput) {
    char text[] = "r = 1\n;\t";
    EXPECT_EQ(evaluateExpression(text), 0);
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_success);
    EXPECT_EQ(evalKernel_pcb.line, 2);
    EXPECT_EQ(evalKernel_pcb.column, 9);
    EXPECT_EQ(evalKernel_pcb.la_ptr, evalKernel_pcb.pointer + std::strlen(text));
    EXPECT_EQ(evalKernel_pcb.ssx, 0);
    EXPECT_EQ(charStackTop, charStack);
    EXPECT_EQ(argStackTop, argStack);
}

}  // namespace
