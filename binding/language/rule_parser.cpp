#include "language/rule_parser.h"

#include <algorithm>
#include <limits>
#include <string>

#include "language/list_format.h"
#include "parameters/source_text.h"

namespace frontpanel::binding_language {

namespace {

constexpr std::size_t USUAL_NOTES = 4;
constexpr std::size_t MOST_ERRORS = 100;  // each looks for its line from the beginning of the text
constexpr int32_t LOWEST = std::numeric_limits<int32_t>::min();

// `"visible", "range" or "keys"`
template <typename Iterator>
std::string alternatives(Iterator first, Iterator last) {
    std::string text;
    for (Iterator each = first; each != last; ++each) {
        const char* const separator = each == first ? "" : each + 1 == last ? " or " : ", ";
        text += separator + quoted_source(each->word);
    }
    return text;
}

// What may follow the operands of a rule beside the end of it.
const char* expected_behind(Rule_operands operands) {
    switch (operands) {
        case Rule_operands::NONE:
            return "\"if\" or end of rule";
        case Rule_operands::INTERVALS:
            return "an operator, \",\", \"if\" or end of rule";
        case Rule_operands::KEYS:
            return "an operator, \"..\", \",\", \"if\" or end of rule";
        case Rule_operands::TEXT:
        case Rule_operands::WRITTEN_VALUE:
            return "an operator, \"if\" or end of rule";
    }
    return "end of rule";
}

void note_numbers(Rule_note& noted, std::optional<int32_t> low, std::optional<int32_t> high) {
    if (low && high) {
        noted.numbers.emplace(std::min(*low, *high), std::max(*low, *high));
    }
}

}  // namespace

void Rule_parser::parse() {
    do {
        const Scanner start = m_cursor.mark();
        try {
            rule_or_separator();
        } catch (const Compile_error& error) {
            m_errors.push_back(error);
            recover(start);
        }
    } while (!m_cursor.is(Token::END) && m_errors.size() < MOST_ERRORS);
}

void Rule_parser::parse_condition() {
    m_cursor.advance();
    m_warnings.begin_rule();
    begin_rule(*find_rule_kind(SUGGESTION_VISIBILITY));
    condition();
    if (!m_cursor.is(Token::END)) {
        m_cursor.fail_expected("one condition; \"and\" and \"or\" join several");
    }
}

void Rule_parser::rule_or_separator() {
    m_cursor.advance();
    const bool is_without_rules = m_tables.rules.empty() && m_errors.empty();
    if (!m_cursor.is(Token::SEPARATOR) && (!m_cursor.is(Token::END) || is_without_rules)) {
        rule();
    }
}

// The code of a wrong rule is removed: it would otherwise precede that of the next one.
void Rule_parser::recover(const Scanner& rule_start) {
    m_code.drop_rules();
    m_cursor.skip_rule(rule_start);
}

void Rule_parser::rule() {
    m_warnings.begin_rule();
    const Rule_kind& kind = kind_of_rule();
    begin_rule(kind);
    operands(kind);
    condition_of(kind);
}

const Rule_kind& Rule_parser::kind_of_rule() {
    const Rule_kinds kinds = rule_kinds();
    const auto* const found = std::find_if(kinds.begin(), kinds.end(), [&](const Rule_kind& kind) {
        return m_cursor.token().is_word(kind.word);
    });
    if (found == kinds.end()) {
        m_cursor.fail_expected(alternatives(kinds.begin(), kinds.end()));
    }
    m_cursor.advance();
    return *found;
}

void Rule_parser::begin_rule(const Rule_kind& kind) {
    m_tables.rules.resize(m_tables.rules.size() + RULE_SIZE);
    m_rule_offsets.push_back(m_cursor.offset(m_warnings.rule_begin()));
    int* const row = m_tables.last_rule();
    row[RULE_KIND] = kind.suggestion;
    row[RULE_LINE] = m_warnings.rule_line();
    row[RULE_SOURCE] = static_cast<int>(m_cursor.offset(m_warnings.rule_begin()));
    row[RULE_FIRST_SEGMENT] = static_cast<int>(m_tables.segments.size());
}

void Rule_parser::operands(const Rule_kind& kind) {
    switch (kind.operands) {
        case Rule_operands::NONE:
            note_rule(kind.suggestion);
            if (kind.choices != nullptr) {
                choice(kind);
            }
            break;
        case Rule_operands::INTERVALS:
            do {
                interval();
            } while (m_cursor.accept(Token::COMMA));
            break;
        case Rule_operands::KEYS:
            do {
                keys();
            } while (m_cursor.accept(Token::COMMA));
            break;
        case Rule_operands::TEXT:
            note_rule(kind.suggestion);
            segment(Value_type::TEXT);
            break;
        case Rule_operands::WRITTEN_VALUE:
            written_value();
            break;
    }
}

void Rule_parser::interval() {
    Rule_note& noted = note(SUGGESTION_RANGE);
    const std::optional<int32_t> low = integer_segment(LOWEST);
    m_cursor.expect(Token::TO, "an operator or \"..\"");
    const std::optional<int32_t> high = integer_segment(LOWEST);
    note_numbers(noted, low, high);
}

void Rule_parser::keys() {
    Rule_note& noted = note(SUGGESTION_KEYS);
    const std::optional<int32_t> low = integer_segment(0);
    if (m_cursor.accept(Token::TO)) {
        note_numbers(noted, low, integer_segment(0));
    } else {
        m_code.end_segment();  // empty: the high end is the low one
        note_numbers(noted, low, low);
    }
}

void Rule_parser::written_value() {
    if (!m_cursor.is(Token::PARAMETER)) {
        m_cursor.fail_expected("a [parameter]");
    }
    const int target = m_parameters.number();
    int* const row = m_tables.parameter_row(target);
    row[PARAMETER_USES] |= PARAMETER_IS_WRITTEN;
    m_tables.last_rule()[RULE_DETAIL] = target;
    const auto type = static_cast<RETURN_TYPE>(row[PARAMETER_TYPE]);
    m_cursor.advance();
    m_cursor.expect(Token::ASSIGN, "\"=\"");
    Rule_note& noted = note(SUGGESTION_SET);
    noted.written = m_tables.key(target);
    if (type == STRING) {
        segment(Value_type::TEXT);
        noted.text_length = m_code.text_length_of_segment();
    } else {
        const std::optional<int32_t> number = integer_segment(LOWEST);
        note_numbers(noted, number, number);
    }
}

void Rule_parser::choice(const Rule_kind& kind) {
    if (m_cursor.is(Token::WORD)) {
        m_cursor.extend_over_hyphens();
    }
    const auto* const found = std::find_if(
        kind.begin_choices(), kind.end_choices(),
        [&](const Rule_choice& choice) { return m_cursor.token().is_word(choice.word); });
    if (found == kind.end_choices()) {
        m_cursor.fail_expected(alternatives(kind.begin_choices(), kind.end_choices()));
    }
    m_tables.last_rule()[RULE_DETAIL] = found->number;
    m_cursor.advance();
}

void Rule_parser::condition_of(const Rule_kind& kind) {
    if (m_cursor.accept_word("if")) {
        condition();
    } else if (kind.needs_condition) {
        m_cursor.fail_expected("\"if\"");
    } else {
        m_code.end_segment();
        end_rule(expected_behind(kind.operands));
    }
}

void Rule_parser::condition() {
    const char* const begin = m_cursor.place();
    const std::size_t reads_before = m_code.reads();
    const Value_bounds bounds = segment(Value_type::INTEGER);
    end_rule("an operator or end of rule");
    if (m_code.reads() == reads_before) {
        m_warnings.warn_of(begin);
    } else {
        m_warnings.condition(begin, bounds);
    }
}

void Rule_parser::end_rule(const char* expected) {
    if (!m_cursor.is(Token::END) && !m_cursor.is(Token::SEPARATOR)) {
        m_cursor.fail_expected(expected);
    }
    int* const row = m_tables.last_rule();
    row[RULE_SOURCE_LENGTH] =
        static_cast<int>(m_cursor.source_since(m_warnings.rule_begin()).size());
    row[RULE_OPERANDS] = static_cast<int>(m_tables.segments.size()) - 1 - row[RULE_FIRST_SEGMENT];
}

Value_bounds Rule_parser::segment(Value_type type) {
    m_code.begin_segment();
    const Value_bounds bounds = m_expressions.parse(type);
    m_code.end_segment();
    return bounds;
}

// An integer of the device has 32 bits: a plain number beyond them is an error. Returns a plain number.
std::optional<int32_t> Rule_parser::integer_segment(int32_t least) {
    constexpr int32_t GREATEST = std::numeric_limits<int32_t>::max();
    const char* const begin = m_cursor.place();
    segment(Value_type::INTEGER);
    const std::optional<int64_t> number = m_code.constant_of_segment();
    if (number && (*number < least || *number > GREATEST)) {
        m_cursor.fail(begin, quoted_source(m_cursor.source_since(begin)) +
                                 " is not a number from " + std::to_string(least) + " to " +
                                 std::to_string(GREATEST));
    }
    return number ? std::optional<int32_t>(static_cast<int32_t>(*number)) : std::nullopt;
}

// Of what begins with the token at hand.
Rule_note& Rule_parser::note(Suggestion_kind kind) {
    if (m_notes.empty()) {
        m_notes.reserve(USUAL_NOTES);
    }
    return m_notes.emplace_back(Rule_note{kind, m_cursor.offset(m_cursor.place()), {}, {}, {}});
}

void Rule_parser::note_rule(Suggestion_kind kind) {
    note(kind).offset = m_cursor.offset(m_warnings.rule_begin());
}

}  // namespace frontpanel::binding_language
