#include "language/expression_parser.h"

#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "language/list_format.h"
#include "language/toggle_writer.h"

namespace frontpanel::binding_language {

namespace {

constexpr const char* A_PRIMARY = "a number, a text, a [parameter], \"value\", a function or \"(\"";

}  // namespace

Value_bounds Expression_parser::parse(Value_type type) {
    const Operand operand = expression();
    require_type(operand, type);
    return operand.bounds;
}

Expression_parser::Binary_operator Expression_parser::operator_of(const Token& token) {
    static constexpr Binary_operator SYMBOL_OPERATORS[] = {
        {SUM_LEVEL, Operation::ADD},
        {SUM_LEVEL, Operation::SUBTRACT},
        {PRODUCT_LEVEL, Operation::MULTIPLY},
        {PRODUCT_LEVEL, Operation::DIVIDE},
        {PRODUCT_LEVEL, Operation::REMAINDER},
        {COMPARISON_LEVEL, Operation::EQUAL},
        {COMPARISON_LEVEL, Operation::NOT_EQUAL},
        {COMPARISON_LEVEL, Operation::LESS},
        {COMPARISON_LEVEL, Operation::LESS_EQUAL},
        {COMPARISON_LEVEL, Operation::GREATER},
        {COMPARISON_LEVEL, Operation::GREATER_EQUAL},
    };
    static_assert(std::size(SYMBOL_OPERATORS) == Token::GREATER_EQUAL - Token::PLUS + 1);
    if (token.kind >= Token::PLUS) {
        return SYMBOL_OPERATORS[token.kind - Token::PLUS];
    }
    if (token.kind == Token::BOTH || token.is_word("and")) {
        return {AND_LEVEL, Operation::AND};
    }
    if (token.kind == Token::EITHER || token.is_word("or")) {
        return {OR_LEVEL, Operation::OR};
    }
    if (token.is_word("in")) {
        return {COMPARISON_LEVEL, Operation::BETWEEN};
    }
    return {};
}

Operand Expression_parser::expression() {
    const Operand operand = binary(OR_LEVEL);
    return m_cursor.token().kind == Token::QUESTION ? conditional(operand) : operand;
}

// A chain of conditions is a loop, so that its length does not count as nesting.
Operand Expression_parser::conditional(Operand operand) {
    const Nesting nesting(*this);
    const char* const begin = operand.place;
    std::optional<Value_type> type;
    std::optional<Value_bounds> bounds;
    bool is_truth = true;
    int last_jump = 0;
    m_code.open_outer_jump();
    while (m_cursor.accept(Token::QUESTION)) {
        require_integer(operand);
        const int to_else = m_code.emit_jump(Operation::JUMP_IF_ZERO, 0, -1);
        const Operand branch = expression();
        require_type(branch, type.value_or(branch.type));
        type = branch.type;
        bounds = hull(bounds.value_or(branch.bounds), branch.bounds);
        is_truth = is_truth && branch.is_truth;
        m_cursor.expect(Token::COLON, "an operator or \":\"");
        last_jump = m_code.emit(Operation::JUMP, last_jump, -1);
        m_code.land(to_else);
        operand = binary(OR_LEVEL);
    }
    m_code.close_jump();
    require_type(operand, *type);
    m_code.land_all(last_jump);
    return {*type, is_truth && operand.is_truth, begin, hull(*bounds, operand.bounds)};
}

Operand Expression_parser::binary(Level least) {
    const std::size_t reads_before = m_code.reads();
    Operand left = for_toggle(unary(least));
    for (;;) {
        const Binary_operator with = operator_of(m_cursor.token());
        if (with.level == NO_LEVEL || with.level < least) {
            return left;
        }
        const Operand before = left;
        const char* const end = m_cursor.last_end();
        const bool has_read = m_code.reads() > reads_before;
        left = for_toggle(combine(left, with));
        if (with.level == COMPARISON_LEVEL && m_code.reads() == reads_before) {
            m_warnings.warn_of(left.place);
        } else if (with.level == COMPARISON_LEVEL) {
            check_comparison(before, end, has_read, left);
        }
        if (with.level == COMPARISON_LEVEL &&
            operator_of(m_cursor.token()).level == COMPARISON_LEVEL) {
            m_cursor.fail(m_cursor.place(), "comparisons do not chain; \"and\" joins them");
        }
    }
}

// The library's toggles calculate in doubles, and have no texts.
Operand Expression_parser::for_toggle(const Operand& operand) const {
    if (!m_context.is_toggle) {
        return operand;
    }
    if (operand.type == Value_type::TEXT) {
        m_cursor.fail(operand.place, "a condition of the homescreen compares numbers, not texts");
    }
    if (operand.bounds.low < -LARGEST_IN_TOGGLE || operand.bounds.high > LARGEST_IN_TOGGLE) {
        m_cursor.fail(operand.place, "this number may be beyond " +
                                         std::to_string(LARGEST_IN_TOGGLE) +
                                         ", the largest in a condition of the homescreen");
    }
    return operand;
}

// The side that reads something explains why the result never changes.
void Expression_parser::check_comparison(const Operand& left, const char* left_end, bool left_reads,
                                         const Operand& result) {
    std::string reason;
    if (left_reads && result.bounds.is_single()) {
        const std::string source(left.place, static_cast<std::size_t>(left_end - left.place));
        const auto [low, high] = left.bounds;
        reason = source + " is " + std::to_string(low) +
                 (low == high ? "" : " to " + std::to_string(high));
    }
    m_warnings.comparison(result.place, result.bounds, reason);
}

Operand Expression_parser::combine(const Operand& left, const Binary_operator& with) {
    const char* const operator_place = m_cursor.place();
    m_cursor.advance();
    switch (with.level) {
        case OR_LEVEL:
        case AND_LEVEL:
            return logic(left, with);
        case COMPARISON_LEVEL:
            return with.operation == Operation::BETWEEN
                       ? membership(left)
                       : comparison(left, with.operation, operator_place);
        default:
            break;
    }
    require_integer(left);
    const Operand right = require_integer(binary(static_cast<Level>(with.level + 1)));
    m_code.emit(with.operation, 0, -1);
    return {Value_type::INTEGER, false, left.place,
            bounds_after(with.operation, left.bounds, right.bounds)};
}

Operand Expression_parser::logic(const Operand& left, const Binary_operator& with) {
    require_integer(left);
    const int to_end = m_code.emit_jump(with.operation, 0, -1);
    const Operand right = require_integer(binary(static_cast<Level>(with.level + 1)));
    if (!right.is_truth) {
        m_code.emit(Operation::TRUTH, 0, 0);
    }
    m_code.land(to_end);
    return {Value_type::INTEGER, true, left.place,
            with.operation == Operation::AND ? bounds_of_both(left.bounds, right.bounds)
                                             : bounds_of_either(left.bounds, right.bounds)};
}

Operand Expression_parser::comparison(const Operand& left, Operation operation, const char* place) {
    const bool is_equality = operation == Operation::EQUAL || operation == Operation::NOT_EQUAL;
    if (left.type == Value_type::TEXT && !is_equality) {
        m_cursor.fail(place, "a text is compared with == or != only");
    }
    const Operand right = binary(SUM_LEVEL);
    require_type(right, left.type);
    if (left.type == Value_type::TEXT) {
        m_code.emit(
            operation == Operation::EQUAL ? Operation::TEXT_EQUAL : Operation::TEXT_NOT_EQUAL, 0,
            -1);
        return {Value_type::INTEGER, true, left.place, TRUTH_BOUNDS};
    }
    m_code.emit(operation, 0, -1);
    return {Value_type::INTEGER, true, left.place,
            bounds_after(operation, left.bounds, right.bounds)};
}

Operand Expression_parser::membership(const Operand& left) {
    if (m_cursor.accept(Token::OPEN_BRACE)) {
        return set_membership(left);
    }
    require_integer(left);
    const Operand low = require_integer(binary(SUM_LEVEL));
    m_cursor.expect(Token::TO, "an operator or \"..\"");
    const Operand high = require_integer(binary(SUM_LEVEL));
    m_code.emit(Operation::BETWEEN, 0, -2);
    return {Value_type::INTEGER, true, left.place,
            bounds_of_between(left.bounds, low.bounds, high.bounds)};
}

Operand Expression_parser::set_membership(const Operand& left) {
    const Nesting nesting(*this);
    int last_jump = 0;
    Value_bounds bounds{0, 0};
    m_code.open_jump();
    do {
        bounds = bounds_of_either(bounds, set_element(left, last_jump));
    } while (m_cursor.accept(Token::COMMA));
    m_cursor.expect(Token::CLOSE_BRACE, "an operator, \"..\", \",\" or \"}\"");
    m_code.close_jump();
    m_code.emit(Operation::NO_MEMBER, 0, 0);
    m_code.land_all(last_jump);
    return {Value_type::INTEGER, true, left.place, bounds};
}

// The bounds of whether the left side is this element.
Value_bounds Expression_parser::set_element(const Operand& left, int& last_jump) {
    const Operand element = expression();
    require_type(element, left.type);
    if (left.type == Value_type::TEXT) {
        last_jump = m_code.emit(Operation::MEMBER_TEXT, last_jump, -1);
        return TRUTH_BOUNDS;
    }
    if (m_cursor.accept(Token::TO)) {
        const Operand end = require_integer(expression());
        last_jump = m_code.emit(Operation::MEMBER_BETWEEN, last_jump, -2);
        return bounds_of_between(left.bounds, element.bounds, end.bounds);
    }
    last_jump = m_code.emit(Operation::MEMBER, last_jump, -1);
    return bounds_after(Operation::EQUAL, left.bounds, element.bounds);
}

Operand Expression_parser::unary(Level least) {
    const char* const begin = m_cursor.place();
    if (least <= NOT_LEVEL && m_cursor.accept_word("not")) {
        return denial(begin, NOT_LEVEL);
    }
    if (m_cursor.accept(Token::DENY)) {
        return denial(begin, SIGN_LEVEL);
    }
    return m_cursor.accept(Token::MINUS) ? negative(begin) : primary();
}

// "not" takes a whole comparison, "!" binds as a sign does.
Operand Expression_parser::denial(const char* begin, Level least) {
    const Nesting nesting(*this);
    const Operand denied = require_integer(least == SIGN_LEVEL ? unary(SIGN_LEVEL) : binary(least));
    m_code.emit(Operation::NOT, 0, 0);
    return {Value_type::INTEGER, true, begin, bounds_after(Operation::NOT, denied.bounds)};
}

Operand Expression_parser::negative(const char* begin) {
    const Nesting nesting(*this);
    if (m_cursor.token().kind == Token::NUMBER) {
        const uint64_t magnitude = m_cursor.token().magnitude;
        m_code.emit_number(magnitude, true);
        m_cursor.advance();
        const auto number = static_cast<int64_t>(0 - magnitude);
        return {Value_type::INTEGER, false, begin, {number, number}};
    }
    const Operand positive = require_integer(unary(SIGN_LEVEL));
    m_code.emit(Operation::NEGATE, 0, 0);
    return {Value_type::INTEGER, false, begin, bounds_after(Operation::NEGATE, positive.bounds)};
}

Operand Expression_parser::primary() {
    switch (m_cursor.token().kind) {
        case Token::NUMBER:
            return number();
        case Token::PARAMETER:
            return read_parameter();
        case Token::QUOTE:
            return text();
        case Token::WORD:
            return word();
        case Token::OPEN:
            return in_parentheses();
        default:
            m_cursor.fail_expected(A_PRIMARY);
    }
}

Operand Expression_parser::number() {
    const Token number = m_cursor.token();
    m_code.emit_number(number.magnitude, false);
    m_cursor.advance();
    const int64_t value =
        number.magnitude > uint64_t{INT64_MAX} ? INT64_MAX : static_cast<int64_t>(number.magnitude);
    return {Value_type::INTEGER, number.magnitude <= 1, number.source.data(), {value, value}};
}

Operand Expression_parser::in_parentheses() {
    const Nesting nesting(*this);
    const char* const begin = m_cursor.place();
    m_cursor.advance();
    Operand operand = expression();
    m_cursor.expect(Token::CLOSE, "an operator or \")\"");
    operand.place = begin;
    return operand;
}

Operand Expression_parser::word() {
    const Token name = m_cursor.token();
    m_cursor.advance();
    Operand operand{};
    if (name.is_word("value")) {
        operand = own_value();
    } else if (name.is_word("min")) {
        operand = extreme(Operation::MINIMUM);
    } else if (name.is_word("max")) {
        operand = extreme(Operation::MAXIMUM);
    } else if (name.is_word("abs")) {
        operand = function(Operation::ABSOLUTE, Value_type::INTEGER);
    } else if (name.is_word("length")) {
        operand = function(Operation::LENGTH, Value_type::TEXT);
    } else if (name.is_word("has_option")) {
        operand = has_option();
    } else {
        fail_unknown_word(name);
    }
    operand.place = name.source.data();
    return operand;
}

void Expression_parser::fail_unknown_word(const Token& name) const {
    const bool is_declared = m_context.parameters.find(name.source) != nullptr;
    m_cursor.fail(name.source.data(), "expected " + std::string(A_PRIMARY) + ", found " +
                                          name.description() +
                                          (is_declared ? "; parameters are written in brackets: [" +
                                                             std::string(name.source) + "]"
                                                       : ""));
}

Operand Expression_parser::own_value() {
    if (m_context.own_type != INTEGER && m_context.own_type != STRING) {
        m_cursor.fail(m_cursor.last_end() - std::strlen("value"),
                      "this entry has no value of its own");
    }
    const Value_type type = value_type(m_context.own_type);
    m_tables.own_type = 1 + static_cast<int>(type);
    m_code.emit_read(Operation::READ_OWN, 0);
    return {type, false, nullptr, m_context.own_bounds};
}

Operand Expression_parser::function(Operation operation, Value_type takes) {
    const Nesting nesting(*this);
    m_cursor.expect(Token::OPEN, "\"(\"");
    const Operand operand = expression();
    require_type(operand, takes);
    m_cursor.expect(Token::CLOSE, "an operator or \")\"");
    m_code.emit(operation, 0, 0);
    return {Value_type::INTEGER, false, nullptr,
            takes == Value_type::TEXT ? Value_bounds{0, static_cast<int64_t>(LONGEST_TEXT)}
                                      : bounds_after(operation, operand.bounds)};
}

Operand Expression_parser::extreme(Operation operation) {
    const Nesting nesting(*this);
    m_cursor.expect(Token::OPEN, "\"(\"");
    Value_bounds bounds = require_integer(expression()).bounds;
    m_cursor.expect(Token::COMMA, "an operator or \",\"");
    do {
        bounds = bounds_after(operation, bounds, require_integer(expression()).bounds);
        m_code.emit(operation, 0, -1);
    } while (m_cursor.accept(Token::COMMA));
    m_cursor.expect(Token::CLOSE, "an operator, \",\" or \")\"");
    return {Value_type::INTEGER, false, nullptr, bounds};
}

Operand Expression_parser::has_option() {
    m_cursor.expect(Token::OPEN, "\"(\"");
    if (m_cursor.token().kind != Token::QUOTE) {
        m_cursor.fail_expected("the name of an option in quotes");
    }
    const char* const quote = m_cursor.place();
    const Scanner::Text_part part = m_cursor.text_part(quote);
    if (!part.ends_text || part.source.empty()) {
        m_cursor.fail(quote, part.ends_text ? "the name of an option is empty"
                                            : "the name of an option holds no placeholders");
    }
    m_cursor.advance();
    m_cursor.expect(Token::CLOSE, "\")\"");
    const int option = m_tables.option_count();
    text_reference(part);
    m_tables.options.insert(m_tables.options.end(), m_tables.texts.end() - REFERENCE_SIZE,
                            m_tables.texts.end());
    m_tables.texts.resize(m_tables.texts.size() - REFERENCE_SIZE);
    m_code.emit_read(Operation::HAS_OPTION, option);
    m_warnings.option(part.source);
    return {Value_type::INTEGER, true, nullptr, TRUTH_BOUNDS};
}

Operand Expression_parser::text() {
    const char* const quote = m_cursor.place();
    bool is_first = true;
    for (;;) {
        const Scanner::Text_part part = m_cursor.text_part(quote);
        is_first = text_part(part, is_first);
        if (part.ends_text) {
            break;
        }
        placeholder();
        if (!is_first) {
            m_code.emit(Operation::JOIN, 0, -1);
        }
        is_first = false;
        if (!m_cursor.is(Token::CLOSE_BRACE)) {
            m_cursor.fail_expected("an operator or \"}\"");
        }
    }
    m_cursor.advance();
    return {Value_type::TEXT, false, quote};
}

void Expression_parser::placeholder() {
    const Nesting nesting(*this);
    m_cursor.advance();
    if (expression().type == Value_type::INTEGER) {
        m_code.emit(Operation::DIGITS, 0, 0);
    }
}

// Writes a part unless it is empty and another part makes up for it. Whether nothing is written yet.
bool Expression_parser::text_part(const Scanner::Text_part& part, bool is_first) {
    if (part.source.empty() && !(is_first && part.ends_text)) {
        return is_first;
    }
    m_code.emit(Operation::TEXT, text_reference(part), 1);
    if (!is_first) {
        m_code.emit(Operation::JOIN, 0, -1);
    }
    return false;
}

int Expression_parser::text_reference(const Scanner::Text_part& part) {
    const int number = m_tables.text_count();
    if (part.has_escapes) {
        const std::size_t begin = m_tables.unescaped.size();
        Scanner::append_unescaped(part.source, m_tables.unescaped);
        m_tables.texts.insert(m_tables.texts.end(),
                              {static_cast<int>(m_cursor.source().size() + begin),
                               static_cast<int>(m_tables.unescaped.size() - begin)});
    } else {
        add_reference(m_tables.texts, part.source);
    }
    if (m_tables.texts.back() > static_cast<int>(LONGEST_TEXT)) {
        m_cursor.fail(part.source.data(),
                      "text longer than " + std::to_string(LONGEST_TEXT) + " bytes");
    }
    return number;
}

void Expression_parser::add_reference(BindingListT& table, std::string_view source) const {
    table.insert(table.end(), {static_cast<int>(m_cursor.offset(source.data())),
                               static_cast<int>(source.size())});
}

Operand Expression_parser::read_parameter() {
    const char* const begin = m_cursor.place();
    const int number = m_parameters.number();
    int* const row = m_tables.parameter_row(number);
    row[PARAMETER_USES] |= PARAMETER_IS_READ;
    const Value_type type = value_type(static_cast<RETURN_TYPE>(row[PARAMETER_TYPE]));
    m_code.emit_read(Operation::READ, number);
    m_cursor.advance();
    const var_index_s key = m_tables.key(number);
    const Parameter* const declared = m_context.parameters.find(key.var, key.index);
    const Parameter any{};
    const auto& [low, high] = std::pair(declared != nullptr ? declared->min : any.min,
                                        declared != nullptr ? declared->max : any.max);
    return {type, false, begin, {low, high}};
}

void Expression_parser::require_type(const Operand& operand, Value_type type) const {
    if (operand.type != type) {
        m_cursor.fail(operand.place, std::string("expected ") + name_of(type) + ", found " +
                                         name_of(operand.type));
    }
}

Operand Expression_parser::require_integer(const Operand& operand) const {
    require_type(operand, Value_type::INTEGER);
    return operand;
}

}  // namespace frontpanel::binding_language
