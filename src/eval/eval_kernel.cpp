// The parser: a shift/reduce machine for operator precedence that computes while it parses.
//
// Every construct that waits for its right-hand part is one state on the state stack (a conditional and a
// call are two), with its left operand on the value stack. So text of any length and depth needs the control
// block and no more.

#include <cmath>
#include <cstdio>

#include <frontpanel_data/evaluator.h>

#include "assertion.h"
#include "eval/numbers.h"
#include "eval/rules.h"
#include "eval/tokens.h"
#include "eval/white_space.h"

evalKernel_pcb_type evalKernel_pcb;

namespace {

using namespace eval;

constexpr int MAX_ARGUMENTS = sizeof argStack / sizeof argStack[0];
constexpr int MAX_STATES = sizeof evalKernel_pcb.ss / sizeof evalKernel_pcb.ss[0];

// The machine lives in registers while it is inlined as a whole; what is seldom called takes it by value.
#define INLINE __attribute__((always_inline)) inline
#define SELDOM __attribute__((cold, noinline)) static

constexpr double truth(bool condition) {
    return condition ? 1.0 : 0.0;
}

// One step of the machine, by what it expects next.
enum class Next { OPERAND, OPERATOR, STOP };

class Kernel {
public:
    explicit Kernel(evalKernel_pcb_type& pcb)
        : m_pcb(pcb), m_place(place_at(pcb.pointer)), m_top(pcb.ssx) {}

    void run();

private:
    INLINE Next step_operand();
    INLINE Next step_operator();
    INLINE Next step_number();
    INLINE Next step_name();
    INLINE Next step_empty();
    INLINE Next close_bracket();
    INLINE Next close_argument();
    INLINE Next close_call();
    INLINE bool push_argument();

    INLINE bool push_name(int& length);
    INLINE Next use_variable(int length);
    INLINE Next shift_call(int length);

    INLINE Next shift(State state, evalKernel_vs_type left, int length);
    INLINE Next skip_token(int length);
    INLINE bool read_token();

    INLINE bool reduce_to(Level level);
    INLINE bool reduce(State state);
    INLINE void reduce_not();
    INLINE void choose();
    INLINE double divide(double left, double right);
    INLINE bool assign(State state, int name_length);

    State top() const { return static_cast<State>(m_pcb.ss[m_top]); }
    unsigned char current() const { return *m_place.at; }
    bool running() const { return m_pcb.exit_flag == evalKernel_running; }
    INLINE void publish(Token symbol) const;
    INLINE Next succeed();

    SELDOM Next overflow(Kernel kernel);
    SELDOM Next unexpected(Kernel kernel);
    SELDOM Next missing(Kernel kernel, Token token);
    SELDOM Next fail(const Kernel& kernel, const char* kind, const char* what);
    SELDOM bool overflow_name(Kernel kernel);
    SELDOM bool overflow_arguments(Kernel kernel);

    evalKernel_pcb_type& m_pcb;
    Place m_place;
    int m_top;                 // index of the uppermost state
    double m_value = 0.0;      // of the operand read last
    Token m_token = NO_TOKEN;  // the token at `m_place`
};

evalKernel_vs_type real(double value) {
    evalKernel_vs_type cell;
    cell.real = value;
    return cell;
}

evalKernel_vs_type count(int value) {
    evalKernel_vs_type cell;
    cell.count = value;
    return cell;
}

void Kernel::run() {
    m_pcb.ss[m_top] = START;
    for (Next next = Next::OPERAND; next != Next::STOP;) {
        if (!read_token()) return;
        next = next == Next::OPERAND ? step_operand() : step_operator();
    }
}

Next Kernel::step_operand() {
    switch (m_token) {
        case evalKernel_digit_token:
        case evalKernel_point_token:
            return step_number();
        case evalKernel_letter_token:
            return step_name();
        case evalKernel_left_parenthesis_token:
            return shift(GROUP, real(0.0), 1);
        case evalKernel_not_token:
            return shift(NOT, real(0.0), 1);
        // "!" takes a primary, which a sign is not a part of.
        case evalKernel_minus_token:
            return top() == NOT ? unexpected(*this) : shift(NEGATE, real(0.0), 1);
        case evalKernel_plus_token:
            return top() == NOT ? unexpected(*this) : shift(KEEP, real(0.0), 1);
        default:
            return step_empty();
    }
}

// Expressions of the list may be empty, and so may the parentheses of a call.
Next Kernel::step_empty() {
    const State state = top();
    if (state == START) {
        if (m_token == evalKernel_eof_token) return succeed();
        if (m_token == evalKernel_comma_token || m_token == evalKernel_semicolon_token) {
            return skip_token(1);
        }
    }
    const bool is_end_of_call = m_token == evalKernel_right_parenthesis_token &&
                                state == ARGUMENTS && m_pcb.vs[m_top].count == 0;
    return is_end_of_call ? close_call() : unexpected(*this);
}

Next Kernel::step_operator() {
    const Token_rule rule = TOKEN_RULES.of[m_token];
    if (rule.level == NONE) return unexpected(*this);
    reduce_not();
    if (!reduce_to(rule.level)) return Next::STOP;
    return rule.level == CLOSING ? close_bracket() : shift(rule.state, real(m_value), rule.length);
}

Next Kernel::close_bracket() {
    switch (top()) {
        case GROUP:
            if (m_token != evalKernel_right_parenthesis_token) {
                return missing(*this, evalKernel_right_parenthesis_token);
            }
            --m_top;
            ++m_place.at;
            return Next::OPERATOR;
        case CHOICE:
            if (m_token != evalKernel_colon_token) return missing(*this, evalKernel_colon_token);
            return shift(ALTERNATIVE, real(m_value), 1);
        case ARGUMENTS:
            return close_argument();
        default:
            return step_empty();
    }
}

Next Kernel::close_argument() {
    if (!push_argument()) return Next::STOP;
    ++m_pcb.vs[m_top].count;
    if (m_token == evalKernel_comma_token) return skip_token(1);
    return m_token == evalKernel_right_parenthesis_token ? close_call() : unexpected(*this);
}

// As `pushArg`, but publishes the parser's position only for the error of a full stack.
bool Kernel::push_argument() {
    m_pcb.reduction_token = evalKernel_argument_list_token;
    double* const end = argStackTop;
    if (end == argStack + MAX_ARGUMENTS) return overflow_arguments(*this);
    *end = m_value;
    argStackTop = end + 1;
    return true;
}

Next Kernel::close_call() {
    ++m_place.at;
    if (!read_token()) return Next::STOP;
    const int argument_count = m_pcb.vs[m_top].count;
    const int name_length = m_pcb.vs[m_top - 1].count;
    publish(evalKernel_primary_token);
    m_value = callFunction(name_length, argument_count);
    m_top -= 2;
    return running() ? Next::OPERATOR : Next::STOP;
}

Next Kernel::step_number() {
    switch (read_number(m_place.at, m_value)) {
        case Number_end::COMPLETE:
            return Next::OPERATOR;
        case Number_end::NO_DIGIT:
            return missing(*this, evalKernel_digit_token);
        default:
            m_token = token_at(m_place.at);
            return unexpected(*this);
    }
}

Next Kernel::step_name() {
    int length = 0;
    if (!push_name(length) || !read_token()) return Next::STOP;
    const Token_rule rule = TOKEN_RULES.of[m_token];
    if (rule.level != NONE) return use_variable(length);
    if (m_token == evalKernel_left_parenthesis_token) return shift_call(length);
    if (!is_assignment(rule.state) || !takes_assignment(top())) return unexpected(*this);
    return shift(rule.state, count(length), rule.length);
}

bool Kernel::push_name(int& length) {
    unsigned char* at = m_place.at;
    char* end = charStackTop;
    char* const limit = charStack + sizeof charStack - 1;
    while (is_name_character(*at) && end != limit)
        *end++ = static_cast<char>(*at++);
    charStackTop = end;
    length = static_cast<int>(at - m_place.at);
    m_place.at = at;
    return !is_name_character(*at) || overflow_name(*this);
}

Next Kernel::use_variable(int length) {
    publish(evalKernel_primary_token);
    m_value = *locateVariable(length);
    return running() ? Next::OPERATOR : Next::STOP;
}

Next Kernel::shift_call(int length) {
    if (m_top + 2 >= MAX_STATES) return overflow(*this);
    m_pcb.ss[++m_top] = CALL;
    m_pcb.vs[m_top] = count(length);
    return shift(ARGUMENTS, count(0), 1);
}

Next Kernel::shift(State state, evalKernel_vs_type left, int length) {
    if (m_top + 1 >= MAX_STATES) return overflow(*this);
    m_pcb.ss[++m_top] = state;
    m_pcb.vs[m_top] = left;
    return skip_token(length);
}

Next Kernel::skip_token(int length) {
    m_place.at += length;
    return Next::OPERAND;
}

bool Kernel::read_token() {
    skip_white_space(m_place);
    m_token = token_at(m_place.at);
    if (m_place.unclosed == NO_TOKEN) return true;
    missing(*this, m_place.unclosed);
    return false;
}

void Kernel::reduce_not() {
    for (; top() == NOT; --m_top)
        m_value = truth(m_value == 0.0);
}

bool Kernel::reduce_to(Level level) {
    for (State state = top(); STATE_RULES[state].level >= level; state = top()) {
        if (!reduce(state)) return false;
    }
    return true;
}

// One flat switch, long as it is: a second dispatch would show in the time of every evaluation.
bool Kernel::reduce(State state) {
    const evalKernel_vs_type cell = m_pcb.vs[m_top--];
    const double right = m_value;
    switch (state) {
        case OR:
            m_value = truth(cell.real != 0.0 || right != 0.0);
            return true;
        case AND:
            m_value = truth(cell.real != 0.0 && right != 0.0);
            return true;
        case EQUAL:
            m_value = truth(cell.real == right);
            return true;
        case NOT_EQUAL:
            m_value = truth(cell.real != right);
            return true;
        case LESS:
            m_value = truth(cell.real < right);
            return true;
        case LESS_OR_EQUAL:
            m_value = truth(cell.real <= right);
            return true;
        case GREATER:
            m_value = truth(cell.real > right);
            return true;
        case GREATER_OR_EQUAL:
            m_value = truth(cell.real >= right);
            return true;
        case ADD:
            m_value = cell.real + right;
            return true;
        case SUBTRACT:
            m_value = cell.real - right;
            return true;
        case MULTIPLY:
            m_value = cell.real * right;
            return true;
        case DIVIDE:
            m_value = divide(cell.real, right);
            return running();
        case NEGATE:
            m_value = -right;
            return true;
        case KEEP:
            return true;
        case POWER:
            m_value = power(cell.real, right);
            return true;
        case ALTERNATIVE:
            choose();
            return true;
        default:
            return assign(state, cell.count);
    }
}

double Kernel::divide(double left, double right) {
    if (right != 0.0) return left / right;
    publish(evalKernel_multiplicative_expression_token);
    return left / checkZero(right);
}

// Takes the condition from the value stack; the second operand lies above it, already taken.
void Kernel::choose() {
    if (m_pcb.vs[m_top].real != 0.0) m_value = m_pcb.vs[m_top + 1].real;
    --m_top;
}

// The variable is looked up only now, behind its right side: a right side that changes it counts.
bool Kernel::assign(State state, int name_length) {
    publish(evalKernel_expression_token);
    double& value = *locateVariable(name_length);
    switch (state) {
        case ADD_ASSIGN:
            m_value = value + m_value;
            break;
        case SUBTRACT_ASSIGN:
            m_value = value - m_value;
            break;
        case MULTIPLY_ASSIGN:
            m_value = value * m_value;
            break;
        // Intended: unlike "/" it does not check for zero. Expressions in use rely on the infinity.
        case DIVIDE_ASSIGN:
            m_value = value / m_value;
            break;
        default:
            break;
    }
    value = m_value;
    return running();
}

// Writes to the control block what an error or a caller reads there.
void Kernel::publish(Token symbol) const {
    m_pcb.reduction_token = symbol;
    m_pcb.la_ptr = m_place.at;
    m_pcb.line = m_place.line;
    m_pcb.column = m_place.column();
    m_pcb.ssx = m_top;
    m_pcb.sn = top();
}

Next Kernel::succeed() {
    publish(evalKernel_input_string_token);
    m_pcb.exit_flag = evalKernel_success;
    return Next::STOP;
}

Next Kernel::overflow(Kernel kernel) {
    evalKernel_pcb_type& pcb = kernel.m_pcb;
    kernel.publish(pcb.reduction_token);
    pcb.exit_flag = evalKernel_stack_overflow;
    std::fprintf(stderr, "\nParser stack overflow, line %d, column %d\n", pcb.line, pcb.column);
    return Next::STOP;
}

bool Kernel::overflow_name(Kernel kernel) {
    const unsigned char c = *kernel.m_place.at++;
    kernel.publish(evalKernel_name_token);
    pushChar(c);
    return false;
}

bool Kernel::overflow_arguments(Kernel kernel) {
    kernel.publish(evalKernel_argument_list_token);
    pushArg(kernel.m_value);
    return false;
}

Next Kernel::missing(Kernel kernel, Token token) {
    kernel.m_token = token_at(kernel.m_place.at);
    return fail(kernel, "Missing", evalKernel_token_names[token]);
}

Next Kernel::unexpected(Kernel kernel) {
    const char* const name = evalKernel_token_names[kernel.m_token];
    if (name[0] != '\0') return fail(kernel, "Unexpected", name);
    const unsigned char c = kernel.current();
    const char quoted[] = {'\'', static_cast<char>(c), '\'', '\0'};
    const bool is_shown = c >= ' ' && c <= '~' && c != '\\';
    return fail(kernel, "Unexpected", is_shown ? quoted : "input");
}

Next Kernel::fail(const Kernel& kernel, const char* kind, const char* what) {
    evalKernel_pcb_type& pcb = kernel.m_pcb;
    kernel.publish(pcb.reduction_token);
    pcb.error_frame_token = STATE_RULES[kernel.top()].symbol;
    pcb.error_frame_ssx = kernel.m_top;
    pcb.exit_flag = evalKernel_syntax_error;
    std::snprintf(pcb.ag_msg, sizeof pcb.ag_msg, "%s %s", kind, what);
    pcb.error_message = diagnoseError(pcb.ag_msg);
    return Next::STOP;
}

// Every way to stop has published its place before.
void record_stop(evalKernel_pcb_type& pcb) {
    pcb.token_number = token_at(pcb.la_ptr);
    pcb.input_code = *pcb.la_ptr;
    pcb.input_value = *pcb.la_ptr;
}

}  // namespace

void init_evalKernel() {
    evalKernel_pcb.token_number = NO_TOKEN;
    evalKernel_pcb.reduction_token = NO_TOKEN;
    evalKernel_pcb.error_frame_token = NO_TOKEN;
    evalKernel_pcb.error_frame_ssx = 0;
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
    record_stop(evalKernel_pcb);
}
