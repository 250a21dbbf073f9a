// The expression evaluator: a small calculator language over doubles, for display and toggle expressions.
//
// Source text assigns variables of one table; callers evaluate and read their result back from it. Names,
// arguments and parser states lie in fixed global stacks, and only a new variable allocates (its name).
// Not reentrant: one thread at a time calls anything declared here.
#ifndef FRONTPANEL_DATA_EVALUATOR_H
#define FRONTPANEL_DATA_EVALUATOR_H

#include <frontpanel_data/export.h>

// One variable. `name` is zero-terminated and lives as long as the process.
struct VariableDescriptor {
    char* name;
    double value;
};

// The last error. `line` and `column` count from 1 and name the first character that was not consumed when
// the error was detected. `message` is null before the first error; it is a constant text or, for a syntax
// error, the parser's buffer, which the next syntax error overwrites.
struct ErrorRecord {
    char* message;
    int line;
    int column;
};

// A function of the language. `args` are `argCount` values, first argument first. With a count that it does
// not take it raises "Wrong Number of Arguments" and returns 0.0.
struct FunctionDescriptor {
    const char* name;
    double (*function)(int argCount, double* args);
};

// Grammar symbols. The names of the table `evalKernel_token_names` are those of error messages.
enum evalKernel_token_type {
    evalKernel_white_space_token = 1,
    evalKernel_input_string_token = 4,
    evalKernel_expressions_token = 5,
    evalKernel_eof_token = 6,
    evalKernel_expression_token = 7,
    evalKernel_comma_token = 8,
    evalKernel_semicolon_token = 9,
    evalKernel_conditional_expression_token = 10,
    evalKernel_assign_token = 11,
    evalKernel_add_assign_token = 12,
    evalKernel_subtract_assign_token = 13,
    evalKernel_multiply_assign_token = 14,
    evalKernel_divide_assign_token = 15,
    evalKernel_logical_or_expression_token = 16,
    evalKernel_question_mark_token = 17,
    evalKernel_colon_token = 18,
    evalKernel_logical_and_expression_token = 19,
    evalKernel_or_token = 20,
    evalKernel_equality_expression_token = 21,
    evalKernel_and_token = 22,
    evalKernel_relational_expression_token = 23,
    evalKernel_equal_token = 24,
    evalKernel_not_equal_token = 25,
    evalKernel_additive_expression_token = 26,
    evalKernel_less_token = 27,
    evalKernel_less_or_equal_token = 28,
    evalKernel_greater_token = 29,
    evalKernel_greater_or_equal_token = 30,
    evalKernel_multiplicative_expression_token = 31,
    evalKernel_plus_token = 32,
    evalKernel_minus_token = 33,
    evalKernel_unary_expression_token = 34,
    evalKernel_times_token = 35,
    evalKernel_divide_token = 36,
    evalKernel_factor_token = 37,
    evalKernel_primary_token = 38,
    evalKernel_power_token = 39,
    evalKernel_not_token = 40,
    evalKernel_left_parenthesis_token = 41,
    evalKernel_right_parenthesis_token = 42,
    evalKernel_arguments_token = 43,
    evalKernel_argument_list_token = 44,
    evalKernel_block_comment_token = 45,
    evalKernel_block_comment_end_token = 46,
    evalKernel_line_comment_token = 47,
    evalKernel_newline_token = 48,
    evalKernel_simple_real_token = 57,
    evalKernel_exponent_token = 60,
    evalKernel_integer_part_token = 61,
    evalKernel_point_token = 62,
    evalKernel_fraction_part_token = 63,
    evalKernel_digit_token = 65,
    evalKernel_letter_token = 66,
    evalKernel_name_token = 75,
    evalKernel_real_token = 95
};

// How an evaluation ended, in `exit_flag` of the control block.
enum evalKernel_exit_type {
    evalKernel_running = 0,
    evalKernel_success = 1,
    evalKernel_syntax_error = 2,
    evalKernel_stack_overflow = 4,
    evalKernel_semantic_error = 5  // raised through `diagnoseError`
};

// The value that belongs to a pending state: a left operand, or the length of a name, or a count.
union evalKernel_vs_type {
    double real;
    int count;
};

// The parser's control block, up to date when `evalKernel` returns; `line`, `column` and `la_ptr` are so
// whenever the parser raises an error, too. `pointer` and `la_ptr` point into the caller's text, which need not
// outlive the evaluation. The fields marked "not used" stay 0 and hold the layout.
struct evalKernel_pcb_type {
    evalKernel_token_type token_number;     // the token at which the parser stopped
    evalKernel_token_type reduction_token;  // the symbol whose value was being computed last
    evalKernel_token_type
        error_frame_token;        // after a syntax error: the construct that was left open
    int input_code;               // the character at which the parser stopped, 0 to 255
    int input_value;              // the same
    int line;                     // of the first character not consumed, from 1
    int column;                   // likewise
    int ssx;                      // index of the uppermost state; 0 when nothing is pending
    int sn;                       // the uppermost state at the stop
    int error_frame_ssx;          // after a syntax error: where that construct began
    int drt;                      // not used
    int dssx;                     // not used
    int dsn;                      // not used
    int ss[128];                  // pending states, [0] is the start state
    evalKernel_vs_type vs[128];   // the value of each pending state
    int ag_ap;                    // not used
    char* error_message;          // text of the last syntax error of this evaluation, or null
    char read_flag;               // not used
    char exit_flag;               // an `evalKernel_exit_type`
    int bts[128];                 // not used
    int btsx;                     // not used
    unsigned char* pointer;       // the input, zero-terminated
    unsigned char* la_ptr;        // the first character not consumed
    const unsigned char* key_sp;  // not used
    int save_index;               // not used
    int key_state;                // not used
    char ag_msg[82];              // buffer for the text of a syntax error
};

// Characters of the names whose expression is still being parsed: up to 1000, and a terminator.
extern FRONTPANEL_DATA_EXPORT char charStack[1001];
extern FRONTPANEL_DATA_EXPORT char* charStackTop;  // next free character

// Arguments of the calls that are still being parsed.
extern FRONTPANEL_DATA_EXPORT double argStack[200];
extern FRONTPANEL_DATA_EXPORT double* argStackTop;  // next free slot

// The variables, sorted by name (as `strcmp` does). They keep their values from one evaluation to the next
// and are never removed. `variable[0]` is the alphabetically first one ever created.
extern FRONTPANEL_DATA_EXPORT VariableDescriptor variable[100];
extern FRONTPANEL_DATA_EXPORT int nVariables;

// The functions, sorted by name.
extern FRONTPANEL_DATA_EXPORT const FunctionDescriptor functionTable[16];

extern FRONTPANEL_DATA_EXPORT ErrorRecord errorRecord;
extern FRONTPANEL_DATA_EXPORT evalKernel_pcb_type evalKernel_pcb;

// The text of each symbol in error messages, by its code; empty for a code without one.
extern FRONTPANEL_DATA_EXPORT const char* const evalKernel_token_names[101];

// Evaluates a zero-terminated text, which is not changed; null is a programming error (asserted). Returns 0
// on success. Returns 1 on an error, which `errorRecord` describes; assignments that were complete before it
// keep their effect. The exception is a text that nests too deeply (more than 128 parser states): it is
// reported on standard error and in `exit_flag`, and `errorRecord` is untouched.
FRONTPANEL_DATA_EXPORT int evaluateExpression(char* expressionString);

// Makes the control block ready to parse the text that its `pointer` names.
FRONTPANEL_DATA_EXPORT void init_evalKernel();

// Parses the text that `evalKernel_pcb.pointer` names, to its end or the first error. `exit_flag` then holds
// the result. Does not reset the character and argument stacks.
FRONTPANEL_DATA_EXPORT void evalKernel();

// The operations that the parser computes with. Each raises its errors through `diagnoseError`.

// Records `msg` (not copied) with the line and column of the control block, stops the parser, and returns
// `msg`. The exit code of an earlier error is kept.
FRONTPANEL_DATA_EXPORT char* diagnoseError(char* msg);

// Returns `value`, or raises "Divide by Zero" and returns 1.0 if it is 0.0.
FRONTPANEL_DATA_EXPORT double checkZero(double value);

// Adds a character of a name, or raises "Character Stack Overflow" with 1000 of them pending.
FRONTPANEL_DATA_EXPORT void pushChar(int c);

// Adds an argument, or raises "Argument Stack Full" with 200 of them pending.
FRONTPANEL_DATA_EXPORT void pushArg(double x);

// Takes the last `nameLength` characters from the character stack and returns the address of that variable's
// value, valid until a variable is created. An unknown variable is created with 0.0. Raises "Symbol Table
// Full" with 100 variables (or without memory for the name) and returns the address of a scratch value.
FRONTPANEL_DATA_EXPORT double* locateVariable(int nameLength);

// Takes a function's name and its arguments from their stacks and returns the function's value. Raises
// "Unknown Function" and returns 0.0 for a name that is not in the table.
FRONTPANEL_DATA_EXPORT double callFunction(int nameLength, int argCount);

#endif
