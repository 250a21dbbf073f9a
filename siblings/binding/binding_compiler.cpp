#include "binding_compiler.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

#include "binding_scanner.h"

namespace {

constexpr std::pair<std::string_view, Comparison_operator> OPERATORS[] = {
    {"==", Comparison_operator::EQUAL},  {"!=", Comparison_operator::NOT_EQUAL},
    {"<", Comparison_operator::LESS},    {"<=", Comparison_operator::LESS_EQUAL},
    {">", Comparison_operator::GREATER}, {">=", Comparison_operator::GREATER_EQUAL}};

// The digits of a number token, in 64 bits. False unless the whole token is a number of that size.
bool parse_number(std::string_view source, int64_t& number) {
    const bool is_negative = source.substr(0, 1) == "-";
    std::string_view digits = source.substr(is_negative ? 1 : 0);
    const std::string_view prefix = digits.substr(0, 2);
    const bool is_hexadecimal = prefix == "0x" || prefix == "0X";
    digits.remove_prefix(is_hexadecimal ? 2 : 0);
    uint32_t magnitude = 0;
    const char* const end = digits.data() + digits.size();
    const auto parsed = std::from_chars(digits.data(), end, magnitude, is_hexadecimal ? 16 : 10);
    number = is_negative ? -int64_t{magnitude} : int64_t{magnitude};
    return parsed.ec == std::errc() && parsed.ptr == end;
}

class Parser {
public:
    explicit Parser(std::string_view source) : m_scanner(source), m_token(m_scanner.next()) {}

    std::vector<Binding_rule> rules() {
        std::vector<Binding_rule> rules;
        skip_separators();
        do {
            rules.push_back(rule());
            if (m_token.kind != Binding_token::END && m_token.kind != Binding_token::SEPARATOR) {
                fail_expected(rules.back().condition.empty() ? "\",\", \"if\" or end of rule"
                                                             : "\"and\", \"or\" or end of rule");
            }
            skip_separators();
        } while (m_token.kind != Binding_token::END);
        return rules;
    }

private:
    Binding_rule rule() {
        if (accept("visible")) {
            expect("if");
            return {SUGGESTION_VISIBILITY, {}, condition()};
        }
        if (!accept("range")) {
            fail_expected("\"visible\" or \"range\"");
        }
        Binding_rule range{SUGGESTION_RANGE, {}, {}};
        do {
            range.intervals.push_back(interval());
        } while (accept(","));
        if (accept("if")) {
            range.condition = condition();
        }
        return range;
    }

    Binding_interval interval() {
        const int32_t first = integer();
        expect("..");
        const int32_t last = integer();
        return {std::min(first, last), std::max(first, last)};
    }

    Condition condition() {
        Condition condition;
        do {
            condition.push_back(conjunction());
        } while (accept("or"));
        return condition;
    }

    Conjunction conjunction() {
        Conjunction conjunction;
        do {
            conjunction.push_back(comparison());
        } while (accept("and"));
        return conjunction;
    }

    Comparison comparison() {
        Comparison comparison{};
        comparison.parameter = parameter();
        const Binding_token symbol = m_token;
        comparison.operation = comparison_operator();
        comparison.value = constant();
        comparison.parameter.rt = comparison.value.rt;
        if (comparison.value.rt == STRING && comparison.operation != Comparison_operator::EQUAL &&
            comparison.operation != Comparison_operator::NOT_EQUAL) {
            throw symbol.error("a text is compared with == or != only");
        }
        return comparison;
    }

    var_index_s parameter() {
        var_index_s key{};
        key.var =
            static_cast<uint32_t>(number("a parameter", 0, int64_t{Data_entry::PID_NONE} - 1));
        while (accept(".")) {
            if (key.index.m_index_num == MAX_LEVELS) {
                fail("a parameter has at most two index levels");
            }
            key.index.m_index[key.index.m_index_num++] = static_cast<uint16_t>(
                number("an index level", 0, std::numeric_limits<uint16_t>::max()));
        }
        return key;
    }

    Comparison_operator comparison_operator() {
        for (const auto& [symbol, operation] : OPERATORS) {
            if (accept(symbol)) {
                return operation;
            }
        }
        fail_expected("a comparison (== != < <= > >=)");
    }

    return_s constant() {
        return_s value;
        if (m_token.kind == Binding_token::TEXT) {
            value.rt = STRING;
            value.s = m_token.value;
            advance();
            return value;
        }
        value.rt = INTEGER;
        value.i = integer("an integer or a text in quotes");
        return value;
    }

    int32_t integer(const char* expected = "an integer") {
        return static_cast<int32_t>(number(expected, std::numeric_limits<int32_t>::min(),
                                           std::numeric_limits<int32_t>::max()));
    }

    int64_t number(const char* expected, int64_t min, int64_t max) {
        if (m_token.kind != Binding_token::NUMBER) {
            fail_expected(expected);
        }
        int64_t number = 0;
        if (!parse_number(m_token.source, number) || number < min || number > max) {
            fail(m_token.description() + " is not a number from " + std::to_string(min) + " to " +
                 std::to_string(max));
        }
        advance();
        return number;
    }

    bool accept(std::string_view word_or_symbol) {
        const bool found = m_token.is(word_or_symbol);
        if (found) {
            advance();
        }
        return found;
    }

    void expect(std::string_view word_or_symbol) {
        if (!accept(word_or_symbol)) {
            fail_expected("\"" + std::string(word_or_symbol) + "\"");
        }
    }

    void advance() { m_token = m_scanner.next(); }

    void skip_separators() {
        while (m_token.kind == Binding_token::SEPARATOR) {
            advance();
        }
    }

    [[noreturn]] void fail(const std::string& message) const { throw m_token.error(message); }

    [[noreturn]] void fail_expected(const std::string& expected) const {
        fail("expected " + expected + ", found " + m_token.description());
    }

    static constexpr uint32_t MAX_LEVELS = 2;

    Binding_scanner m_scanner;
    Binding_token m_token;
};

}  // namespace

std::vector<Binding_rule> compile_binding_rules(std::string_view source) {
    return Parser(source).rules();
}
