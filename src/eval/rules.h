// The rules of the parser: its states, how tightly they bind, and what each token does.
#ifndef FRONTPANEL_DATA_SRC_EVAL_RULES_H
#define FRONTPANEL_DATA_SRC_EVAL_RULES_H

#include "eval/tokens.h"

namespace eval {

// What is pending. Up to ARGUMENTS a state holds a whole expression.
enum State : int {
    START,      // the list of expressions
    GROUP,      // "("
    CHOICE,     // condition "?"
    ARGUMENTS,  // "(" of a call, with the number of arguments so far
    CALL,       // name of a call, below its ARGUMENTS
    ASSIGN,     // name "="
    ADD_ASSIGN,
    SUBTRACT_ASSIGN,
    MULTIPLY_ASSIGN,
    DIVIDE_ASSIGN,
    ALTERNATIVE,  // second operand ":", above its CHOICE
    OR,
    AND,
    EQUAL,
    NOT_EQUAL,
    LESS,
    LESS_OR_EQUAL,
    GREATER,
    GREATER_OR_EQUAL,
    ADD,
    SUBTRACT,
    MULTIPLY,
    DIVIDE,
    NEGATE,
    KEEP,  // unary "+"
    POWER,
    NOT
};

// How tightly states and the tokens behind an operand bind. A token reduces the states that bind at least as
// tightly as itself: "?" spares the assignments and alternatives below it, "**" everything.
enum Level : unsigned char {
    NONE,      // a state that only its closing token ends; a token that cannot follow an operand
    CLOSING,   // assignments and alternatives; tokens that end an expression
    CHOOSING,  // "||" and "?"
    ANDING,
    EQUATING,
    RELATING,
    ADDING,
    MULTIPLYING,
    UNARY,
    RAISING
};

struct State_rule {
    Level level;
    Token symbol;  // what the state becomes a part of
};

inline constexpr State_rule STATE_RULES[] = {
    {NONE, evalKernel_expressions_token},                       // START
    {NONE, evalKernel_primary_token},                           // GROUP
    {NONE, evalKernel_conditional_expression_token},            // CHOICE
    {NONE, evalKernel_arguments_token},                         // ARGUMENTS
    {NONE, evalKernel_primary_token},                           // CALL
    {CLOSING, evalKernel_expression_token},                     // ASSIGN
    {CLOSING, evalKernel_expression_token},                     // ADD_ASSIGN
    {CLOSING, evalKernel_expression_token},                     // SUBTRACT_ASSIGN
    {CLOSING, evalKernel_expression_token},                     // MULTIPLY_ASSIGN
    {CLOSING, evalKernel_expression_token},                     // DIVIDE_ASSIGN
    {CLOSING, evalKernel_conditional_expression_token},         // ALTERNATIVE
    {CHOOSING, evalKernel_logical_or_expression_token},         // OR
    {ANDING, evalKernel_logical_and_expression_token},          // AND
    {EQUATING, evalKernel_equality_expression_token},           // EQUAL
    {EQUATING, evalKernel_equality_expression_token},           // NOT_EQUAL
    {RELATING, evalKernel_relational_expression_token},         // LESS
    {RELATING, evalKernel_relational_expression_token},         // LESS_OR_EQUAL
    {RELATING, evalKernel_relational_expression_token},         // GREATER
    {RELATING, evalKernel_relational_expression_token},         // GREATER_OR_EQUAL
    {ADDING, evalKernel_additive_expression_token},             // ADD
    {ADDING, evalKernel_additive_expression_token},             // SUBTRACT
    {MULTIPLYING, evalKernel_multiplicative_expression_token},  // MULTIPLY
    {MULTIPLYING, evalKernel_multiplicative_expression_token},  // DIVIDE
    {UNARY, evalKernel_unary_expression_token},                 // NEGATE
    {UNARY, evalKernel_unary_expression_token},                 // KEEP
    {UNARY, evalKernel_factor_token},                           // POWER
    {NONE, evalKernel_primary_token},                           // NOT
};

// What a token behind an operand does: it reduces down to `level`, then pushes `state`.
struct Token_rule {
    Level level = NONE;
    State state = START;
    unsigned char length = 1;  // in characters
};

struct Token_rules {
    Token_rule of[101];
};

constexpr Token_rules make_token_rules() {
    Token_rules rules{};
    rules.of[evalKernel_eof_token] = {CLOSING, START, 0};
    rules.of[evalKernel_comma_token] = {CLOSING, START, 1};
    rules.of[evalKernel_semicolon_token] = {CLOSING, START, 1};
    rules.of[evalKernel_colon_token] = {CLOSING, START, 1};
    rules.of[evalKernel_right_parenthesis_token] = {CLOSING, START, 1};
    rules.of[evalKernel_question_mark_token] = {CHOOSING, CHOICE, 1};
    rules.of[evalKernel_or_token] = {CHOOSING, OR, 2};
    rules.of[evalKernel_and_token] = {ANDING, AND, 2};
    rules.of[evalKernel_equal_token] = {EQUATING, EQUAL, 2};
    rules.of[evalKernel_not_equal_token] = {EQUATING, NOT_EQUAL, 2};
    rules.of[evalKernel_less_token] = {RELATING, LESS, 1};
    rules.of[evalKernel_less_or_equal_token] = {RELATING, LESS_OR_EQUAL, 2};
    rules.of[evalKernel_greater_token] = {RELATING, GREATER, 1};
    rules.of[evalKernel_greater_or_equal_token] = {RELATING, GREATER_OR_EQUAL, 2};
    rules.of[evalKernel_plus_token] = {ADDING, ADD, 1};
    rules.of[evalKernel_minus_token] = {ADDING, SUBTRACT, 1};
    rules.of[evalKernel_times_token] = {MULTIPLYING, MULTIPLY, 1};
    rules.of[evalKernel_divide_token] = {MULTIPLYING, DIVIDE, 1};
    rules.of[evalKernel_power_token] = {RAISING, POWER, 2};
    // These follow a plain name only, so that the level stays NONE.
    rules.of[evalKernel_assign_token] = {NONE, ASSIGN, 1};
    rules.of[evalKernel_add_assign_token] = {NONE, ADD_ASSIGN, 2};
    rules.of[evalKernel_subtract_assign_token] = {NONE, SUBTRACT_ASSIGN, 2};
    rules.of[evalKernel_multiply_assign_token] = {NONE, MULTIPLY_ASSIGN, 2};
    rules.of[evalKernel_divide_assign_token] = {NONE, DIVIDE_ASSIGN, 2};
    return rules;
}

inline constexpr Token_rules TOKEN_RULES = make_token_rules();

constexpr bool is_assignment(State state) {
    return state >= ASSIGN && state <= DIVIDE_ASSIGN;
}

// An assignment stands where a whole expression may stand.
constexpr bool takes_assignment(State state) {
    return state <= ARGUMENTS || is_assignment(state);
}

}  // namespace eval

#endif
