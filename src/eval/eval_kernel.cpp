// The parser: a shift/reduce machine for operator precedence that computes while it parses.
//
// Every construct that waits for its right-hand part is one state on the state stack (a conditional and a
// call are two), with its left operand on the value stack; the value read last is in `m_value`. So text of
// any length and depth needs the control block and no more.

#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdio>

#include <frontpanel_data/evaluator.h>

#include "assertion.h"
#include "eval/tokens.h"

evalKernel_pcb_type evalKernel_pcb;

namespace {

using eval::NO_TOKEN;
using eval::Token;

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

constexpr State_rule STATE_RULES[] = {
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

constexpr Token_rules TOKEN_RULES = make_token_rules();

constexpr int MAX_STATES = sizeof evalKernel_pcb.ss / sizeof evalKernel_pcb.ss[0];
constexpr int EXACT_DIGITS = 15;  // any integer of so many digits is a double

constexpr double truth(bool condition) {
    return condition ? 1.0 : 0.0;
}

bool is_assignment(State state) {
    return state >= ASSIGN && state <= DIVIDE_ASSIGN;
}

// An assignment stands where a whole expression may stand.
bool takes_assignment(State state) {
    return state <= ARGUMENTS || is_assignment(state);
}

// One step of the machine, by what it expects next.
enum class Next { OPERAND, OPERATOR, STOP };

class Kernel {
public:
    explicit Kernel(evalKernel_pcb_type& pcb)
        : m_pcb(pcb), m_start(pcb.pointer), m_at(pcb.la_ptr), m_line(pcb.line), m_top(pcb.ssx) {}

    void run();

private:
    Next read_operand();
    Next read_operator();
    Next read_number();
    Next read_name();
    Next read_without_operand();
    Next close_bracket();
    Next close_argument();
    Next close_call();

    // The parts of a number.
    double read_integer_part();
    double read_fraction_part();
    bool read_exponent(double& value);

    bool skip_white_space();
    bool skip_comment();
    bool skip_block_comment();
    bool skip_line_comment();
    void track(unsigned char c);

    bool read_name_characters(int& length);
    Next use_name(int length);
    Next shift_call(int length);

    bool has_room(int states);
    void push(State state);
    Next shift(State state, double left, int length);
    Next shift_count(State state, int count, int length);
    Next skip_token(int length);
    Next finish_primary();
    void apply_not();

    bool reduce_to(Level level);
    bool reduce(State state);
    bool assign(State state, int name_length);
    void choose();

    State top() const { return static_cast<State>(m_pcb.ss[m_top]); }
    bool running() const { return m_pcb.exit_flag == evalKernel_running; }
    void publish(Token symbol);
    Next succeed();
    Next overflow();
    Next unexpected();
    Next missing(Token token);
    Next fail(const char* kind, const char* what);

    evalKernel_pcb_type& m_pcb;
    unsigned char* const m_start;
    unsigned char* m_at;  // the first character not consumed
    int m_line;
    std::ptrdiff_t m_bias = -1;  // offset of a character minus its column
    int m_top;                   // as `ssx`
    double m_value = 0.0;        // of the operand read last
    Token m_token = NO_TOKEN;    // the token at `m_at`
};

void Kernel::run() {
    m_pcb.ss[m_top] = START;
    Next next = skip_white_space() ? Next::OPERAND : Next::STOP;
    while (next != Next::STOP)
        next = next == Next::OPERAND ? read_operand() : read_operator();
}

Next Kernel::read_operand() {
    m_token = eval::token_at(m_at);
    switch (m_token) {
        case evalKernel_digit_token:
        case evalKernel_point_token:
            return read_number();
        case evalKernel_letter_token:
            return read_name();
        case evalKernel_left_parenthesis_token:
            return shift(GROUP, 0.0, 1);
        case evalKernel_not_token:
            return shift(NOT, 0.0, 1);
        // "!" takes a primary, which a sign is not a part of.
        case evalKernel_minus_token:
            return top() == NOT ? unexpected() : shift(NEGATE, 0.0, 1);
        case evalKernel_plus_token:
            return top() == NOT ? unexpected() : shift(KEEP, 0.0, 1);
        default:
            return read_without_operand();
    }
}

// Expressions may be empty, and so may the parentheses of a call.
Next Kernel::read_without_operand() {
    if (top() == START) {
        if (m_token == evalKernel_eof_token) return succeed();
        if (m_token == evalKernel_comma_token || m_token == evalKernel_semicolon_token) {
            return skip_token(1);
        }
    }
    const bool is_end_of_call = m_token == evalKernel_right_parenthesis_token &&
                                top() == ARGUMENTS && m_pcb.vs[m_top].count == 0;
    return is_end_of_call ? close_call() : unexpected();
}

Next Kernel::read_operator() {
    const Token_rule& rule = TOKEN_RULES.of[m_token];
    if (rule.level == NONE) return unexpected();
    if (!reduce_to(rule.level)) return Next::STOP;
    return rule.level == CLOSING ? close_bracket() : shift(rule.state, m_value, rule.length);
}

Next Kernel::close_bracket() {
    switch (top()) {
        case GROUP:
            if (m_token != evalKernel_right_parenthesis_token) {
                return missing(evalKernel_right_parenthesis_token);
            }
            --m_top;
            ++m_at;
            return finish_primary();
        case CHOICE:
            if (m_token != evalKernel_colon_token) return missing(evalKernel_colon_token);
            return shift(ALTERNATIVE, m_value, 1);
        case ARGUMENTS:
            return close_argument();
        default:
            return read_without_operand();
    }
}

Next Kernel::close_argument() {
    publish(evalKernel_argument_list_token);
    pushArg(m_value);
    if (!running()) return Next::STOP;
    ++m_pcb.vs[m_top].count;
    if (m_token == evalKernel_comma_token) return skip_token(1);
    return m_token == evalKernel_right_parenthesis_token ? close_call() : unexpected();
}

Next Kernel::close_call() {
    ++m_at;
    if (!skip_white_space()) return Next::STOP;
    const int argument_count = m_pcb.vs[m_top].count;
    const int name_length = m_pcb.vs[m_top - 1].count;
    publish(evalKernel_primary_token);
    m_value = callFunction(name_length, argument_count);
    m_top -= 2;
    if (!running()) return Next::STOP;
    apply_not();
    m_token = eval::token_at(m_at);
    return Next::OPERATOR;
}

Next Kernel::read_number() {
    const bool has_integer_part = eval::is_digit(*m_at);
    double value = has_integer_part ? read_integer_part() : 0.0;
    if (*m_at == '.') {
        ++m_at;
        if (eval::is_digit(*m_at)) {
            const double fraction = read_fraction_part();
            value = has_integer_part ? value + fraction : fraction;
        } else if (!has_integer_part) {
            return missing(evalKernel_digit_token);
        }
    }
    if ((*m_at == 'e' || *m_at == 'E') && !read_exponent(value)) return Next::STOP;
    m_value = value;
    return finish_primary();
}

// The value is that of doubles added up digit by digit; as long as every step is exact, integers give the
// same one sooner.
double Kernel::read_integer_part() {
    const unsigned char* at = m_at;
    unsigned long long exact = 0;
    for (const unsigned char* limit = at + EXACT_DIGITS; at != limit && eval::is_digit(*at); ++at) {
        exact = exact * 10 + (*at - '0');
    }
    double value = static_cast<double>(exact);
    for (; eval::is_digit(*at); ++at)
        value = value * 10.0 + (*at - '0');
    m_at += at - m_at;
    return value;
}

// Folded from the last digit to the first: the last bits of a number differ from those of a fold the other
// way, and display texts show them.
double Kernel::read_fraction_part() {
    unsigned char* const first = m_at;
    while (eval::is_digit(*m_at))
        ++m_at;
    double value = 0.0;
    for (const unsigned char* at = m_at; at != first;) {
        --at;
        value = ((*at - '0') + value) / 10.0;
    }
    return value;
}

bool Kernel::read_exponent(double& value) {
    ++m_at;
    const bool has_sign = *m_at == '+' || *m_at == '-';
    const bool is_negative = *m_at == '-';
    if (has_sign) ++m_at;
    if (!eval::is_digit(*m_at)) {
        m_token = eval::token_at(m_at);
        has_sign ? missing(evalKernel_digit_token) : unexpected();
        return false;
    }
    int exponent = 0;
    for (; eval::is_digit(*m_at); ++m_at) {
        const int digit = *m_at - '0';
        exponent = exponent > (INT_MAX - digit) / 10 ? INT_MAX : exponent * 10 + digit;
    }
    value *= std::pow(10.0, is_negative ? -exponent : exponent);
    return true;
}

Next Kernel::read_name() {
    int length = 0;
    if (!read_name_characters(length) || !skip_white_space()) return Next::STOP;
    m_token = eval::token_at(m_at);
    if (TOKEN_RULES.of[m_token].level != NONE) return use_name(length);
    if (m_token == evalKernel_left_parenthesis_token) return shift_call(length);
    const Token_rule& rule = TOKEN_RULES.of[m_token];
    if (!is_assignment(rule.state) || !takes_assignment(top())) return unexpected();
    return shift_count(rule.state, length, rule.length);
}

bool Kernel::read_name_characters(int& length) {
    unsigned char* at = m_at;
    char* top = charStackTop;
    char* const limit = charStack + sizeof charStack - 1;
    for (; eval::is_name_character(*at) && top != limit; ++at)
        *top++ = static_cast<char>(*at);
    charStackTop = top;
    length = static_cast<int>(at - m_at);
    m_at = at;
    if (!eval::is_name_character(*at)) return true;
    ++m_at;
    publish(evalKernel_name_token);
    pushChar(*at);
    return false;
}

Next Kernel::use_name(int length) {
    publish(evalKernel_primary_token);
    m_value = *locateVariable(length);
    if (!running()) return Next::STOP;
    apply_not();
    return Next::OPERATOR;
}

Next Kernel::shift_call(int length) {
    if (!has_room(2)) return overflow();
    push(CALL);
    m_pcb.vs[m_top].count = length;
    return shift_count(ARGUMENTS, 0, 1);
}

bool Kernel::skip_white_space() {
    for (;;) {
        const unsigned char c = *m_at;
        if (eval::is_white_space(c)) {
            if (c != ' ') track(c);
            ++m_at;
        } else if (c == '/' && (m_at[1] == '*' || m_at[1] == '/')) {
            if (!skip_comment()) return false;
        } else {
            return true;
        }
    }
}

bool Kernel::skip_comment() {
    const bool is_block = m_at[1] == '*';
    m_at += 2;
    return is_block ? skip_block_comment() : skip_line_comment();
}

bool Kernel::skip_block_comment() {
    for (; *m_at != '\0'; ++m_at) {
        if (m_at[0] == '*' && m_at[1] == '/') {
            m_at += 2;
            return true;
        }
        track(*m_at);
    }
    missing(evalKernel_block_comment_end_token);
    return false;
}

bool Kernel::skip_line_comment() {
    for (; *m_at != '\0'; ++m_at) {
        track(*m_at);
        if (*m_at == '\n') {
            ++m_at;
            return true;
        }
    }
    missing(evalKernel_newline_token);
    return false;
}

// Tells the line and column of what follows the character at `m_at`, if it is not one column further.
void Kernel::track(unsigned char c) {
    const std::ptrdiff_t offset = m_at - m_start;
    const std::ptrdiff_t column = offset - m_bias;
    if (c == '\n') {
        ++m_line;
        m_bias = offset;
    } else if (c == '\t') {
        m_bias -= 7 - (column - 1) % 8;
    } else if (c == '\f' || c == '\r') {
        ++m_bias;
    }
}

bool Kernel::has_room(int states) {
    return m_top + states < MAX_STATES;
}

void Kernel::push(State state) {
    m_pcb.ss[++m_top] = state;
}

Next Kernel::shift(State state, double left, int length) {
    if (!has_room(1)) return overflow();
    push(state);
    m_pcb.vs[m_top].real = left;
    return skip_token(length);
}

Next Kernel::shift_count(State state, int count, int length) {
    if (!has_room(1)) return overflow();
    push(state);
    m_pcb.vs[m_top].count = count;
    return skip_token(length);
}

Next Kernel::skip_token(int length) {
    m_at += length;
    return skip_white_space() ? Next::OPERAND : Next::STOP;
}

Next Kernel::finish_primary() {
    if (!skip_white_space()) return Next::STOP;
    apply_not();
    m_token = eval::token_at(m_at);
    return Next::OPERATOR;
}

void Kernel::apply_not() {
    for (; top() == NOT; --m_top)
        m_value = truth(m_value == 0.0);
}

bool Kernel::reduce_to(Level level) {
    while (STATE_RULES[top()].level >= level) {
        if (!reduce(top())) return false;
    }
    return true;
}

bool Kernel::reduce(State state) {
    const evalKernel_vs_type cell = m_pcb.vs[m_top];
    const double left = cell.real;
    const double right = m_value;
    --m_top;
    switch (state) {
        case OR:
            m_value = truth(left != 0.0 || right != 0.0);
            return true;
        case AND:
            m_value = truth(left != 0.0 && right != 0.0);
            return true;
        case EQUAL:
            m_value = truth(left == right);
            return true;
        case NOT_EQUAL:
            m_value = truth(left != right);
            return true;
        case LESS:
            m_value = truth(left < right);
            return true;
        case LESS_OR_EQUAL:
            m_value = truth(left <= right);
            return true;
        case GREATER:
            m_value = truth(left > right);
            return true;
        case GREATER_OR_EQUAL:
            m_value = truth(left >= right);
            return true;
        case ADD:
            m_value = left + right;
            return true;
        case SUBTRACT:
            m_value = left - right;
            return true;
        case MULTIPLY:
            m_value = left * right;
            return true;
        case DIVIDE:
            if (right == 0.0) publish(evalKernel_multiplicative_expression_token);
            m_value = left / checkZero(right);
            return running();
        case NEGATE:
            m_value = -right;
            return true;
        case POWER:
            m_value = std::pow(left, right);
            return true;
        case ALTERNATIVE:
            choose();
            return true;
        case KEEP:
            return true;
        default:
            return assign(state, cell.count);
    }
}

void Kernel::choose() {
    const double second = m_pcb.vs[m_top + 1].real;
    if (m_pcb.vs[m_top].real != 0.0) m_value = second;
    --m_top;
}

// The variable is looked up only now, behind its right side: a right side that changes it counts.
bool Kernel::assign(State state, int name_length) {
    publish(evalKernel_expression_token);
    double& value = *locateVariable(name_length);
    switch (state) {
        case ADD_ASSIGN:
            value += m_value;
            break;
        case SUBTRACT_ASSIGN:
            value -= m_value;
            break;
        case MULTIPLY_ASSIGN:
            value *= m_value;
            break;
        // Intended: unlike "/" it does not check for zero. Expressions in use rely on the infinity.
        case DIVIDE_ASSIGN:
            value /= m_value;
            break;
        default:
            value = m_value;
            break;
    }
    m_value = value;
    return running();
}

// Writes to the control block what an error or a caller reads there.
void Kernel::publish(Token symbol) {
    m_pcb.reduction_token = symbol;
    m_pcb.la_ptr = m_at;
    m_pcb.line = m_line;
    m_pcb.column = static_cast<int>(m_at - m_start - m_bias);
    m_pcb.ssx = m_top;
    m_pcb.sn = top();
}

Next Kernel::succeed() {
    publish(evalKernel_input_string_token);
    m_pcb.exit_flag = evalKernel_success;
    return Next::STOP;
}

Next Kernel::overflow() {
    publish(m_pcb.reduction_token);
    m_pcb.exit_flag = evalKernel_stack_overflow;
    std::fprintf(stderr, "\nParser stack overflow, line %d, column %d\n", m_pcb.line, m_pcb.column);
    return Next::STOP;
}

Next Kernel::missing(Token token) {
    m_token = eval::token_at(m_at);
    return fail("Missing", evalKernel_token_names[token]);
}

Next Kernel::unexpected() {
    if (evalKernel_token_names[m_token][0] != '\0') {
        return fail("Unexpected", evalKernel_token_names[m_token]);
    }
    const char quoted[] = {'\'', static_cast<char>(*m_at), '\'', '\0'};
    const bool is_shown = *m_at >= ' ' && *m_at <= '~' && *m_at != '\\';
    return fail("Unexpected", is_shown ? quoted : "input");
}

Next Kernel::fail(const char* kind, const char* what) {
    publish(m_pcb.reduction_token);
    m_pcb.token_number = m_token;
    m_pcb.input_code = *m_at;
    m_pcb.input_value = *m_at;
    m_pcb.error_frame_token = STATE_RULES[top()].symbol;
    m_pcb.error_frame_ssx = m_top;
    m_pcb.exit_flag = evalKernel_syntax_error;
    std::snprintf(m_pcb.ag_msg, sizeof m_pcb.ag_msg, "%s %s", kind, what);
    m_pcb.error_message = diagnoseError(m_pcb.ag_msg);
    return Next::STOP;
}

}  // namespace

void init_evalKernel() {
    evalKernel_pcb.exit_flag = evalKernel_running;
    evalKernel_pcb.line = 1;
    evalKernel_pcb.column = 1;
    evalKernel_pcb.ssx = 0;
    evalKernel_pcb.la_ptr = evalKernel_pcb.pointer;
    evalKernel_pcb.error_message = nullptr;
}

void evalKernel() {
    FRONTPANEL_ASSERT(evalKernel_pcb.pointer != nullptr, "pointer");
    init_evalKernel();
    Kernel(evalKernel_pcb).run();
}
