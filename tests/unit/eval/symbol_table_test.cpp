// The symbol table over the life of a process. It only grows, so each test runs in a process of its own.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "unit/eval/evaluation.h"

namespace {

using evaluation::outcome_of;
using evaluation::value_of;

template <class Body>
void exit_with(Body&& body) {
    body();
    std::fflush(stdout);
    std::_Exit(testing::Test::HasFailure() ? 1 : 0);
}

// A test whose process starts with an empty table.
#define FRESH_TABLE_TEST(suite, name)                                           \
    void suite##_##name();                                                      \
    TEST(suite, name) {                                                         \
        ASSERT_EQ(nVariables, 0);                                               \
        EXPECT_EXIT(exit_with(suite##_##name), testing::ExitedWithCode(0), ""); \
    }                                                                           \
    void suite##_##name()

std::string numbered(int number) {
    return "name_" + std::to_string(number);
}

void fill_table() {
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(outcome_of(numbered(i) + " = " + std::to_string(i)), "ok");
    }
    ASSERT_EQ(nVariables, 100);
}

FRESH_TABLE_TEST(Symbol_table, StartsEmpty) {
    EXPECT_EQ(nVariables, 0);
    EXPECT_EQ(errorRecord.message, nullptr);
    EXPECT_EQ(outcome_of(""), "ok");
    EXPECT_EQ(outcome_of("1 + 2; fabs(3)"), "ok");
    EXPECT_EQ(nVariables, 0);
}

FRESH_TABLE_TEST(Symbol_table, TheFirstEntryIsTheAlphabeticallyFirstVariable) {
    EXPECT_EQ(outcome_of("zz = 1"), "ok");
    EXPECT_STREQ(variable[0].name, "zz");
    EXPECT_EQ(outcome_of("aa = 0"), "ok");
    EXPECT_STREQ(variable[0].name, "aa");
    EXPECT_EQ(variable[0].value, 0.0);
    EXPECT_STREQ(variable[1].name, "zz");
    EXPECT_EQ(variable[1].value, 1.0);
    EXPECT_EQ(nVariables, 2);
}

FRESH_TABLE_TEST(Symbol_table, IsSortedByTheCodesOfCharacters) {
    EXPECT_EQ(outcome_of("b=1;a=2;_=3;B=4;ab=5;a1=6;A=7;aB=8;a_=9"), "ok");
    const char* const sorted[] = {"A", "B", "_", "a", "a1", "aB", "a_", "ab", "b"};
    const double values[] = {7, 4, 3, 2, 6, 8, 9, 5, 1};
    ASSERT_EQ(nVariables, 9);
    for (int i = 0; i < nVariables; ++i) {
        EXPECT_STREQ(variable[i].name, sorted[i]);
        EXPECT_EQ(variable[i].value, values[i]);
    }
}

FRESH_TABLE_TEST(Symbol_table, AssignmentsCreateTheirVariableBehindTheRightSide) {
    EXPECT_EQ(outcome_of("left = right"), "ok");
    EXPECT_EQ(nVariables, 2);
    EXPECT_EQ(outcome_of("a = 1/0"), "1:8 Divide by Zero");
    EXPECT_EQ(nVariables, 2);
}

FRESH_TABLE_TEST(Symbol_table, TheHundredAndFirstVariableIsRefused) {
    fill_table();
    EXPECT_EQ(outcome_of("one_more = 1"), "1:13 Symbol Table Full");
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_semantic_error);
    EXPECT_EQ(outcome_of("name_1 = one_more"), "1:18 Symbol Table Full");
    EXPECT_EQ(outcome_of("one_more += 1;"), "1:14 Symbol Table Full");
    EXPECT_EQ(outcome_of("one_more(1)"), "1:12 Unknown Function");
    EXPECT_EQ(nVariables, 100);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(value_of(numbered(i)), i);
}

FRESH_TABLE_TEST(Symbol_table, AFullTableStillServesItsVariables) {
    fill_table();
    EXPECT_EQ(outcome_of("name_7 = name_99 + fabs(name_1)"), "ok");
    EXPECT_EQ(value_of("name_7"), 100.0);
    EXPECT_EQ(outcome_of("name_7 = 1; one_more = 2; name_7 = 3"), "1:25 Symbol Table Full");
    EXPECT_EQ(value_of("name_7"), 1.0);
}

FRESH_TABLE_TEST(Symbol_table, WhatIsStoredForARefusedVariableGoesNowhere) {
    fill_table();
    charStackTop = charStack;
    for (const char c : std::string("one_more"))
        pushChar(c);
    double* scratch = locateVariable(8);
    ASSERT_NE(scratch, nullptr);
    *scratch = 12345.0;
    for (int i = 0; i < 100; ++i)
        EXPECT_NE(variable[i].value, 12345.0);
    EXPECT_STREQ(errorRecord.message, "Symbol Table Full");
}

FRESH_TABLE_TEST(Symbol_table, NamesAreCopied) {
    std::string text = "name = 1";
    EXPECT_EQ(evaluateExpression(text.data()), 0);
    text.assign(text.size(), '#');
    EXPECT_EQ(outcome_of("x = 2"), "ok");
    EXPECT_STREQ(variable[0].name, "name");
}

}  // namespace
