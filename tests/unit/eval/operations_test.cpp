// The evaluator's operations and tables as a caller sees them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <string>
#include <type_traits>

#include "unit/eval/evaluation.h"

namespace {

using evaluation::last_error;
using evaluation::outcome_of;
using evaluation::value_of;

void push_name(const std::string& name) {
    for (const char c : name)
        pushChar(c);
}

class Evaluator_operations : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(outcome_of("1"), "ok"); }
};

TEST_F(Evaluator_operations, InitialisingMakesTheControlBlockReady) {
    unsigned char text[] = "1 +";
    evalKernel_pcb.pointer = text;
    evalKernel();
    ASSERT_EQ(evalKernel_pcb.exit_flag, evalKernel_syntax_error);
    init_evalKernel();
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_running);
    EXPECT_EQ(evalKernel_pcb.line, 1);
    EXPECT_EQ(evalKernel_pcb.column, 1);
    EXPECT_EQ(evalKernel_pcb.ssx, 0);
    EXPECT_EQ(evalKernel_pcb.la_ptr, text);
}

TEST_F(Evaluator_operations, TheParserCanBeRunByItself) {
    unsigned char text[] = "run_alone = 6 * 7";
    evalKernel_pcb.pointer = text;
    evalKernel();
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_success);
    EXPECT_EQ(value_of("run_alone"), 42.0);
}

TEST_F(Evaluator_operations, DiagnosingRecordsTheMessageAndItsPlace) {
    init_evalKernel();
    evalKernel_pcb.line = 7;
    evalKernel_pcb.column = 9;
    char message[] = "Something Else";
    EXPECT_EQ(diagnoseError(message), message);
    EXPECT_EQ(errorRecord.message, message);
    EXPECT_EQ(last_error(), "7:9 Something Else");
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_semantic_error);
    ASSERT_EQ(outcome_of("1/0"), "1:4 Divide by Zero");
}

TEST_F(Evaluator_operations, AnEarlierErrorKeepsItsExitFlag) {
    char message[] = "Later";
    for (const char flag :
         {evalKernel_success, evalKernel_syntax_error, evalKernel_stack_overflow}) {
        evalKernel_pcb.exit_flag = flag;
        diagnoseError(message);
        EXPECT_EQ(evalKernel_pcb.exit_flag, flag);
        EXPECT_STREQ(errorRecord.message, "Later");
    }
    ASSERT_EQ(outcome_of("1/0"), "1:4 Divide by Zero");
}

TEST_F(Evaluator_operations, CheckingForZeroReplacesOnlyZero) {
    init_evalKernel();
    EXPECT_EQ(checkZero(2.5), 2.5);
    EXPECT_EQ(checkZero(-1e-300), -1e-300);
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_running);
    EXPECT_EQ(checkZero(-0.0), 1.0);
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_semantic_error);
    EXPECT_STREQ(errorRecord.message, "Divide by Zero");
    EXPECT_EQ(checkZero(0.0), 1.0);
}

TEST_F(Evaluator_operations, NamesArePoppedFromTheCharacterStack) {
    push_name("outer");
    push_name("located");
    *locateVariable(7) = 8.0;
    EXPECT_EQ(charStackTop, charStack + 5);
    EXPECT_EQ(value_of("located"), 8.0);
    push_name("located");
    EXPECT_EQ(*locateVariable(7), 8.0);
    *locateVariable(5) = 9.0;
    EXPECT_EQ(charStackTop, charStack);
    EXPECT_EQ(value_of("outer"), 9.0);
}

TEST_F(Evaluator_operations, ACallTakesItsNameAndArguments) {
    pushArg(100.0);
    push_name("fmod");
    pushArg(17.0);
    pushArg(5.0);
    EXPECT_EQ(callFunction(4, 2), 2.0);
    EXPECT_EQ(charStackTop, charStack);
    EXPECT_EQ(argStackTop, argStack + 1);
    EXPECT_EQ(argStack[0], 100.0);
}

TEST_F(Evaluator_operations, AnUnknownFunctionYieldsZeroAndTakesItsArguments) {
    init_evalKernel();
    push_name("nope");
    pushArg(1.0);
    EXPECT_EQ(callFunction(4, 1), 0.0);
    EXPECT_EQ(argStackTop, argStack);
    EXPECT_STREQ(errorRecord.message, "Unknown Function");
}

TEST_F(Evaluator_operations, EachFunctionIsCalledByItsName) {
    for (const FunctionDescriptor& function : functionTable) {
        const std::string name = function.name;
        const int count = name == "atan2" || name == "fmod" ? 2 : 1;
        double arguments[] = {0.75, 2.5};
        push_name(function.name);
        pushArg(arguments[0]);
        if (count == 2) pushArg(arguments[1]);
        EXPECT_EQ(callFunction(static_cast<int>(name.size()), count),
                  function.function(count, arguments))
            << name;
    }
}

TEST_F(Evaluator_operations, NamesThatOnlyResembleAFunctionAreUnknown) {
    for (const char* const name : {"", "s", "si", "sinn", "cOs", "Sin", "atan3", "atan22", "log1",
                                   "log100", "tanhh", "fabz", "\xe9xp", "xyz"}) {
        init_evalKernel();
        errorRecord = {nullptr, 0, 0};
        push_name(name);
        EXPECT_EQ(callFunction(static_cast<int>(std::strlen(name)), 0), 0.0);
        EXPECT_STREQ(errorRecord.message, "Unknown Function") << name;
    }
}

TEST_F(Evaluator_operations, AFunctionIsFoundByItsNameUpToAZeroCharacter) {
    for (const char c : {'c', 'o', 's', '\0', 'x', 'y'})
        pushChar(c);
    pushArg(0.0);
    EXPECT_EQ(callFunction(6, 1), 1.0);
    EXPECT_EQ(charStackTop, charStack);
}

TEST_F(Evaluator_operations, FullStacksKeepWhatTheyHold) {
    init_evalKernel();
    for (int i = 0; i < 1000; ++i)
        pushChar('c');
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_running);
    pushChar('d');
    EXPECT_STREQ(errorRecord.message, "Character Stack Overflow");
    EXPECT_EQ(charStackTop, charStack + 1000);
    EXPECT_EQ(charStack[999], 'c');

    init_evalKernel();
    for (int i = 0; i < 200; ++i)
        pushArg(i);
    EXPECT_EQ(evalKernel_pcb.exit_flag, evalKernel_running);
    pushArg(-1.0);
    EXPECT_STREQ(errorRecord.message, "Argument Stack Full");
    EXPECT_EQ(argStackTop, argStack + 200);
    EXPECT_EQ(argStack[199], 199.0);
}

TEST_F(Evaluator_operations, TheFunctionsAreSortedAndCallable) {
    const char* const names[] = {"acos", "asin", "atan",  "atan2", "cos",  "cosh", "exp", "fabs",
                                 "fmod", "log",  "log10", "sin",   "sinh", "sqrt", "tan", "tanh"};
    for (int i = 0; i < 16; ++i)
        EXPECT_STREQ(functionTable[i].name, names[i]);
    double arguments[] = {-3.0, 2.0};
    EXPECT_EQ(functionTable[7].function(1, arguments), 3.0);
    EXPECT_EQ(functionTable[8].function(2, arguments), -1.0);
    init_evalKernel();
    EXPECT_EQ(functionTable[8].function(1, arguments), 0.0);
    EXPECT_STREQ(errorRecord.message, "Wrong Number of Arguments");
}

TEST_F(Evaluator_operations, SymbolsHaveTheirCodesAndNames) {
    struct {
        evalKernel_token_type token;
        int code;
        const char* name;
    } const symbols[] = {
        {evalKernel_white_space_token, 1, "white space"},
        {evalKernel_input_string_token, 4, "input string"},
        {evalKernel_expressions_token, 5, "expressions"},
        {evalKernel_eof_token, 6, "eof"},
        {evalKernel_expression_token, 7, "expression"},
        {evalKernel_conditional_expression_token, 10, "conditional expression"},
        {evalKernel_logical_or_expression_token, 16, "logical or expression"},
        {evalKernel_logical_and_expression_token, 19, "logical and expression"},
        {evalKernel_equality_expression_token, 21, "equality expression"},
        {evalKernel_relational_expression_token, 23, "relational expression"},
        {evalKernel_additive_expression_token, 26, "additive expression"},
        {evalKernel_multiplicative_expression_token, 31, "multiplicative expression"},
        {evalKernel_unary_expression_token, 34, "unary expression"},
        {evalKernel_factor_token, 37, "factor"},
        {evalKernel_primary_token, 38, "primary"},
        {evalKernel_arguments_token, 43, "arguments"},
        {evalKernel_argument_list_token, 44, "argument list"},
        {evalKernel_simple_real_token, 57, "simple real"},
        {evalKernel_exponent_token, 60, "exponent"},
        {evalKernel_integer_part_token, 61, "integer part"},
        {evalKernel_fraction_part_token, 63, "fraction part"},
        {evalKernel_digit_token, 65, "digit"},
        {evalKernel_letter_token, 66, "letter"},
        {evalKernel_name_token, 75, "name"},
        {evalKernel_real_token, 95, "real"},
    };
    for (const auto& symbol : symbols) {
        EXPECT_EQ(symbol.token, symbol.code);
        EXPECT_STREQ(evalKernel_token_names[symbol.code], symbol.name);
    }
    EXPECT_STREQ(evalKernel_token_names[evalKernel_right_parenthesis_token], "')'");
    EXPECT_STREQ(evalKernel_token_names[evalKernel_assign_token], "'='");
    EXPECT_STREQ(evalKernel_token_names[evalKernel_add_assign_token], "\"+=\"");
    EXPECT_STREQ(evalKernel_token_names[evalKernel_power_token], "\"**\"");
    EXPECT_STREQ(evalKernel_token_names[evalKernel_comma_token], "','");
    EXPECT_STREQ(evalKernel_token_names[evalKernel_newline_token], "'\\n'");
    for (const char* name : evalKernel_token_names)
        EXPECT_NE(name, nullptr);
}

TEST_F(Evaluator_operations, OperatorsAreNamedInQuotesAsTheyAreWritten) {
    const char* const operators[] = {"'='",    "\"+=\"", "\"-=\"", "\"*=\"", "\"/=\"", "'?'",
                                     "':'",    "\"||\"", "\"&&\"", "\"==\"", "\"!=\"", "'<'",
                                     "\"<=\"", "'>'",    "\">=\"", "'+'",    "'-'",    "'*'",
                                     "'/'",    "\"**\"", "'!'",    "'('",    "')'",    "','",
                                     "';'",    "'.'",    "\"/*\"", "\"*/\"", "\"//\"", "'\\n'"};
    for (const std::string name : operators) {
        EXPECT_EQ(
            std::count(std::begin(evalKernel_token_names), std::end(evalKernel_token_names), name),
            1)
            << name;
    }
    // The other texts are those of the 25 symbols and the empty ones.
    EXPECT_EQ(std::count(std::begin(evalKernel_token_names), std::end(evalKernel_token_names),
                         std::string()),
              101 - 25 - 30);
}

TEST_F(Evaluator_operations, TheStacksAndTablesHaveTheirSizes) {
    static_assert(sizeof charStack == 1001);
    static_assert(sizeof argStack == 200 * sizeof(double));
    static_assert(sizeof variable == 100 * sizeof(VariableDescriptor));
    static_assert(sizeof functionTable == 16 * sizeof(FunctionDescriptor));
    static_assert(sizeof evalKernel_token_names == 101 * sizeof(char*));
    static_assert(sizeof evalKernel_pcb.ss == 128 * sizeof(int));
    static_assert(sizeof evalKernel_pcb.vs == 128 * sizeof(double));
    static_assert(sizeof evalKernel_pcb.bts == 128 * sizeof(int));
    static_assert(sizeof evalKernel_pcb.ag_msg == 82);
    static_assert(std::is_same_v<decltype(VariableDescriptor::name), char*>);
    static_assert(std::is_same_v<decltype(ErrorRecord::message), char*>);
    static_assert(offsetof(VariableDescriptor, name) < offsetof(VariableDescriptor, value));
    static_assert(offsetof(ErrorRecord, message) < offsetof(ErrorRecord, line));
    static_assert(offsetof(ErrorRecord, line) < offsetof(ErrorRecord, column));
}

TEST_F(Evaluator_operations, TheControlBlockHasItsFieldsInOrder) {
    typedef evalKernel_pcb_type Block;
    const std::size_t offsets[] = {offsetof(Block, token_number),
                                   offsetof(Block, reduction_token),
                                   offsetof(Block, error_frame_token),
                                   offsetof(Block, input_code),
                                   offsetof(Block, input_value),
                                   offsetof(Block, line),
                                   offsetof(Block, column),
                                   offsetof(Block, ssx),
                                   offsetof(Block, sn),
                                   offsetof(Block, error_frame_ssx),
                                   offsetof(Block, drt),
                                   offsetof(Block, dssx),
                                   offsetof(Block, dsn),
                                   offsetof(Block, ss),
                                   offsetof(Block, vs),
                                   offsetof(Block, ag_ap),
                                   offsetof(Block, error_message),
                                   offsetof(Block, read_flag),
                                   offsetof(Block, exit_flag),
                                   offsetof(Block, bts),
                                   offsetof(Block, btsx),
                                   offsetof(Block, pointer),
                                   offsetof(Block, la_ptr),
                                   offsetof(Block, key_sp),
                                   offsetof(Block, save_index),
                                   offsetof(Block, key_state),
                                   offsetof(Block, ag_msg)};
    EXPECT_EQ(offsets[0], 0U);
    for (std::size_t i = 1; i < sizeof offsets / sizeof offsets[0]; ++i) {
        EXPECT_GT(offsets[i], offsets[i - 1]) << "field " << i;
    }
}

}  // namespace
