#include "language/compiler.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <unordered_map>
#include <utility>

#include "language/list_format.h"
#include "language/program.h"
#include "language/scanner.h"
#include "parameters/source_text.h"

namespace frontpanel::binding_language {

namespace {

constexpr std::size_t LONGEST_SOURCE = 1U << 20;
constexpr int MOST_PARAMETERS = 1024;
constexpr uint32_t MOST_LEVELS = 2;
constexpr int TRIED_ROWS = 8;
constexpr std::size_t USUAL_NOTES = 4;
constexpr std::size_t MOST_ERRORS = 100;  // each looks for its line from the beginning of the text

// How tightly operators bind, loosest first.
enum Level : uint8_t {
    NO_LEVEL,
    OR_LEVEL,
    AND_LEVEL,
    NOT_LEVEL,
    COMPARISON_LEVEL,
    SUM_LEVEL,
    PRODUCT_LEVEL,
    SIGN_LEVEL
};

struct Binary_operator {
    Level level = NO_LEVEL;
    Operation operation{};
};

constexpr Binary_operator SYMBOL_OPERATORS[] = {
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

Binary_operator operator_of(const Token& token) {
    if (token.kind >= Token::PLUS) {
        return SYMBOL_OPERATORS[token.kind - Token::PLUS];
    }
    if (token.is_word("and")) {
        return {AND_LEVEL, Operation::AND};
    }
    if (token.is_word("or")) {
        return {OR_LEVEL, Operation::OR};
    }
    if (token.is_word("in")) {
        return {COMPARISON_LEVEL, Operation::BETWEEN};
    }
    return {};
}

const char* name_of(Value_type type) {
    return type == Value_type::TEXT ? "a text" : "an integer";
}

Value_type value_type(RETURN_TYPE type) {
    return type == STRING ? Value_type::TEXT : Value_type::INTEGER;
}

}  // namespace

// The sections of the list that is being made, in their form in a list.
struct Compiler::Tables {
    BindingListT parameters;
    BindingListT options;
    BindingListT texts;
    BindingListT wide_numbers;
    BindingListT segments;
    BindingListT rules;
    BindingListT code;
    std::string unescaped;  // stands behind the source in the pool
    int own_type = 0;
    // The rows of parameters beyond the first few, by their variables.
    std::unordered_multimap<uint64_t, int> later_rows;

    void clear();
    BindingListT list(std::string_view source) const;
    var_index_s key(int parameter) const;
    std::vector<Named_parameter> named_parameters() const;

    int instruction_count() const { return static_cast<int>(code.size() / INSTRUCTION_SIZE); }
};

void Compiler::Tables::clear() {
    for (BindingListT* const table :
         {&parameters, &options, &texts, &wide_numbers, &segments, &rules, &code}) {
        table->clear();
    }
    unescaped.clear();
    own_type = 0;
    if (!later_rows.empty()) {
        later_rows.clear();
    }
}

BindingListT Compiler::Tables::list(std::string_view source) const {
    const std::size_t pool_bytes = source.size() + unescaped.size();
    const BindingListT* const sections[] = {&parameters, &options, &texts, &wide_numbers,
                                            &segments,   &rules,   &code};
    std::size_t size = HEADER_SIZE;
    for (const BindingListT* const section : sections) {
        size += section->size();
    }
    const std::size_t pool = size;
    size += (pool_bytes + BYTES_PER_NUMBER - 1) / BYTES_PER_NUMBER;

    int header[HEADER_SIZE] = {};
    header[HEADER_MAGIC] = LIST_MAGIC;
    header[HEADER_VERSION] = LIST_VERSION;
    header[HEADER_LENGTH] = static_cast<int>(size);
    header[HEADER_OWN_TYPE] = own_type;
    header[HEADER_PARAMETERS] = static_cast<int>(parameters.size() / PARAMETER_SIZE);
    header[HEADER_OPTIONS] = static_cast<int>(options.size() / REFERENCE_SIZE);
    header[HEADER_TEXTS] = static_cast<int>(texts.size() / REFERENCE_SIZE);
    header[HEADER_WIDE_NUMBERS] = static_cast<int>(wide_numbers.size() / WIDE_NUMBER_SIZE);
    header[HEADER_SEGMENTS] = static_cast<int>(segments.size());
    header[HEADER_RULES] = static_cast<int>(rules.size() / RULE_SIZE);
    header[HEADER_INSTRUCTIONS] = instruction_count();
    header[HEADER_POOL_BYTES] = static_cast<int>(pool_bytes);

    BindingListT list;
    list.reserve(size);
    list.assign(std::begin(header), std::end(header));
    for (const BindingListT* const section : sections) {
        list.insert(list.end(), section->begin(), section->end());
    }
    list.resize(size);
    char* const bytes = reinterpret_cast<char*>(list.data() + pool);
    unescaped.copy(bytes + source.copy(bytes, source.size()), unescaped.size());
    list[HEADER_CHECKSUM] = list_checksum(list.data(), list.size());
    return list;
}

var_index_s Compiler::Tables::key(int parameter) const {
    const int* const row = &parameters[static_cast<std::size_t>(parameter) * PARAMETER_SIZE];
    var_index_s key{static_cast<RETURN_TYPE>(row[PARAMETER_TYPE]),
                    static_cast<uint32_t>(row[PARAMETER_PID]),
                    {}};
    key.index.m_index_num = static_cast<decltype(key.index.m_index_num)>(row[PARAMETER_LEVELS]);
    for (std::size_t level = 0; level < MOST_LEVELS; ++level) {
        key.index.m_index[level] = static_cast<uint16_t>(row[PARAMETER_LEVEL_0 + level]);
    }
    return key;
}

std::vector<Named_parameter> Compiler::Tables::named_parameters() const {
    std::vector<Named_parameter> named(parameters.size() / PARAMETER_SIZE);
    for (std::size_t number = 0; number < named.size(); ++number) {
        const int place = parameters[number * PARAMETER_SIZE + PARAMETER_NAME];
        named[number] = {key(static_cast<int>(number)), static_cast<std::size_t>(place)};
    }
    return named;
}

// One pass: each construct is written to the tables as it is read.
class Compiler::Parser {
public:
    Parser(std::string_view source, const Compile_context& context, Tables& tables,
           Compile_result& result)
        : m_source(source),
          m_context(context),
          m_tables(tables),
          m_notes(result.notes),
          m_warnings(result.warnings),
          m_errors(result.errors),
          m_scanner(source) {}

    // Mistakes become errors of the result.
    void rules();

private:
    struct Operand {
        Value_type type;
        bool is_truth;      // an integer that is 0 or 1
        const char* place;  // where it begins
    };
    // Counts a level of nesting while it lives.
    class Nesting {
    public:
        explicit Nesting(Parser& parser) : m_parser(parser) {
            if (++m_parser.m_nesting > DEEPEST_NESTING) {
                m_parser.fail_too_deep();
            }
        }
        ~Nesting() { --m_parser.m_nesting; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        Parser& m_parser;
    };

    void rule();
    void rule_or_separator();
    void go_on_behind(const Scanner& rule_start);
    void visible_rule();
    void range_rule();
    void keys_rule();
    void set_rule();
    void warn_rule();
    void access_rule();
    void begin_rule(Suggestion_kind kind);
    void optional_condition(const char* expected_without);
    void condition();
    void end_rule(const char* expected);
    void warn_of_constant(const char* begin);
    void interval();
    Rule_note& note(Suggestion_kind kind);
    void note_rule(Suggestion_kind kind);
    static void note_numbers(Rule_note& noted, std::optional<int32_t> low,
                             std::optional<int32_t> high);
    std::optional<std::size_t> text_length_of_segment() const;

    void segment(Value_type type);
    void end_segment();
    std::optional<int64_t> constant_of_segment() const;
    std::optional<int32_t> integer_segment(int32_t least);

    Operand expression();
    Operand conditional(Operand condition);
    Operand binary(Level least);
    Operand unary(Level least);
    Operand negative(const char* place);
    Operand primary();
    Operand combine(const Operand& left, const Binary_operator& with);
    Operand logic(const Operand& left, const Binary_operator& with);
    Operand comparison(const Operand& left, Operation operation, const char* place);
    Operand membership(const Operand& left);
    Operand set_membership(const Operand& left);
    void set_element(const Operand& left, int& last_jump);
    Operand word();
    Operand own_value();
    Operand has_option();
    Operand function(Operation operation, Value_type takes);
    Operand extreme(Operation operation);
    Operand text();
    bool text_part(const Scanner::Text_part& part, bool is_first);
    Operand read_parameter();

    int parameter();
    var_index_s address(std::string_view inside) const;
    [[noreturn]] void fail_unknown(std::string_view name) const;
    int parameter_row(const var_index_s& key, std::string_view name);
    int text_reference(const Scanner::Text_part& part);
    void add_reference(BindingListT& table, std::string_view source);

    int emit(Operation operation, int argument, int growth);
    void emit_number(uint64_t magnitude, bool is_negative);
    int emit_jump(Operation operation, int argument, int growth);
    void land(int jump);
    void land_all(int last_jump);

    void require_type(const Operand& operand, Value_type type) const;
    Operand require_integer(const Operand& operand) const;
    bool accept(Token::Kind kind);
    bool accept_word(std::string_view word);
    void expect(Token::Kind kind, const char* expected);
    void advance();
    const char* place() const { return m_token.source.data(); }
    [[noreturn]] void fail(const char* place, const std::string& message) const {
        throw m_scanner.error(place, message);
    }
    [[noreturn]] void fail_expected(const std::string& expected) const {
        fail(place(), "expected " + expected + ", found " + m_token.description());
    }
    [[noreturn]] void fail_too_deep() const { fail(place(), "nested too deeply"); }

    std::string_view m_source;
    const Compile_context& m_context;
    Tables& m_tables;
    std::vector<Rule_note>& m_notes;
    std::vector<Compile_error>& m_warnings;
    std::vector<Compile_error>& m_errors;
    Scanner m_scanner;
    Token m_token{};
    const char* m_rule_begin = nullptr;
    int m_rule_line = 0;
    std::size_t m_rule_column = 0;
    bool m_is_warned = false;          // of the rule at hand
    std::size_t m_reads = 0;           // emitted so far, of whatever can change
    const char* m_last_end = nullptr;  // of the token before the current one
    std::size_t m_nesting = 0;
    std::size_t m_open_jumps = 0;
    std::size_t m_depth = 0;  // of the stack, after the code so far
};

// ---- rules

void Compiler::Parser::rules() {
    do {
        const Scanner start = m_scanner;
        try {
            rule_or_separator();
        } catch (const Compile_error& error) {
            m_errors.push_back(error);
            go_on_behind(start);
        }
    } while (m_token.kind != Token::END && m_errors.size() < MOST_ERRORS);
}

void Compiler::Parser::rule_or_separator() {
    advance();
    const bool is_without_rules = m_tables.rules.empty() && m_errors.empty();
    if (m_token.kind != Token::SEPARATOR && (m_token.kind != Token::END || is_without_rules)) {
        rule();
    }
}

// What is left of a rule that is wrong would stand in the code of the next one.
void Compiler::Parser::go_on_behind(const Scanner& rule_start) {
    m_tables.rules.clear();
    m_tables.segments.clear();
    m_tables.code.clear();
    m_open_jumps = 0;
    m_scanner = rule_start;
    m_scanner.skip_rule();
    advance();
}

void Compiler::Parser::rule() {
    m_rule_begin = place();
    m_rule_line = m_scanner.line();
    m_rule_column = static_cast<std::size_t>(m_rule_begin - m_scanner.line_begin()) + 1;
    m_is_warned = false;
    if (accept_word("visible")) {
        visible_rule();
    } else if (accept_word("range")) {
        range_rule();
    } else if (accept_word("keys")) {
        keys_rule();
    } else if (accept_word("set")) {
        set_rule();
    } else if (accept_word("warn")) {
        warn_rule();
    } else if (m_token.is_word("access")) {
        access_rule();
    } else {
        fail_expected("\"visible\", \"range\", \"keys\", \"set\", \"warn\" or \"access\"");
    }
}

void Compiler::Parser::visible_rule() {
    begin_rule(SUGGESTION_VISIBILITY);
    note_rule(SUGGESTION_VISIBILITY);
    if (!accept_word("if")) {
        fail_expected("\"if\"");
    }
    condition();
}

void Compiler::Parser::range_rule() {
    begin_rule(SUGGESTION_RANGE);
    do {
        interval();
    } while (accept(Token::COMMA));
    optional_condition("an operator, \",\", \"if\" or end of rule");
}

void Compiler::Parser::interval() {
    constexpr int32_t LEAST = std::numeric_limits<int32_t>::min();
    Rule_note& noted = note(SUGGESTION_RANGE);
    const std::optional<int32_t> low = integer_segment(LEAST);
    expect(Token::TO, "an operator or \"..\"");
    const std::optional<int32_t> high = integer_segment(LEAST);
    note_numbers(noted, low, high);
}

void Compiler::Parser::keys_rule() {
    begin_rule(SUGGESTION_KEYS);
    do {
        Rule_note& noted = note(SUGGESTION_KEYS);
        const std::optional<int32_t> low = integer_segment(0);
        if (accept(Token::TO)) {
            note_numbers(noted, low, integer_segment(0));
        } else {
            end_segment();  // empty: the high end is the low one
            note_numbers(noted, low, low);
        }
    } while (accept(Token::COMMA));
    optional_condition("an operator, \"..\", \",\", \"if\" or end of rule");
}

void Compiler::Parser::set_rule() {
    begin_rule(SUGGESTION_SET);
    if (m_token.kind != Token::PARAMETER) {
        fail_expected("a [parameter]");
    }
    const int target = parameter();
    int* const row = &m_tables.parameters[static_cast<std::size_t>(target) * PARAMETER_SIZE];
    row[PARAMETER_USES] |= PARAMETER_IS_WRITTEN;
    m_tables.rules[m_tables.rules.size() - RULE_SIZE + RULE_DETAIL] = target;
    const auto type = static_cast<RETURN_TYPE>(row[PARAMETER_TYPE]);
    advance();
    expect(Token::ASSIGN, "\"=\"");
    Rule_note& noted = note(SUGGESTION_SET);
    noted.written = m_tables.key(target);
    if (type == STRING) {
        segment(Value_type::TEXT);
        noted.text_length = text_length_of_segment();
    } else {
        const std::optional<int32_t> number = integer_segment(std::numeric_limits<int32_t>::min());
        note_numbers(noted, number, number);
    }
    optional_condition("an operator, \"if\" or end of rule");
}

void Compiler::Parser::warn_rule() {
    begin_rule(SUGGESTION_WARNING);
    note_rule(SUGGESTION_WARNING);
    segment(Value_type::TEXT);
    optional_condition("an operator, \"if\" or end of rule");
}

void Compiler::Parser::access_rule() {
    advance();
    begin_rule(SUGGESTION_ACCESS);
    note_rule(SUGGESTION_ACCESS);
    const std::pair<std::string_view, int> RIGHTS[] = {{"read-only", Data_entry::READ_ONLY},
                                                       {"read-write", Data_entry::READ_WRITE},
                                                       {"write-only", Data_entry::WRITE_ONLY}};
    if (m_token.kind == Token::WORD) {
        m_token = m_scanner.hyphenated(m_token);
    }
    for (const auto& [name, right] : RIGHTS) {
        if (m_token.is_word(name)) {
            m_tables.rules[m_tables.rules.size() - RULE_SIZE + RULE_DETAIL] = right;
            advance();
            return optional_condition("\"if\" or end of rule");
        }
    }
    fail_expected("\"read-only\", \"read-write\" or \"write-only\"");
}

void Compiler::Parser::begin_rule(Suggestion_kind kind) {
    m_tables.rules.resize(m_tables.rules.size() + RULE_SIZE);
    int* const row = &m_tables.rules[m_tables.rules.size() - RULE_SIZE];
    row[RULE_KIND] = kind;
    row[RULE_LINE] = m_rule_line;
    row[RULE_SOURCE] = static_cast<int>(m_rule_begin - m_source.data());
    row[RULE_FIRST_SEGMENT] = static_cast<int>(m_tables.segments.size());
}

// Of what begins with the current token.
Rule_note& Compiler::Parser::note(Suggestion_kind kind) {
    if (m_notes.empty()) {
        m_notes.reserve(USUAL_NOTES);
    }
    const auto offset = static_cast<std::size_t>(place() - m_source.data());
    return m_notes.emplace_back(Rule_note{kind, offset, {}, {}, {}});
}

void Compiler::Parser::note_rule(Suggestion_kind kind) {
    note(kind).offset = static_cast<std::size_t>(m_rule_begin - m_source.data());
}

void Compiler::Parser::note_numbers(Rule_note& noted, std::optional<int32_t> low,
                                    std::optional<int32_t> high) {
    if (low && high) {
        noted.numbers.emplace(std::min(*low, *high), std::max(*low, *high));
    }
}

void Compiler::Parser::optional_condition(const char* expected_without) {
    if (accept_word("if")) {
        return condition();
    }
    end_segment();
    end_rule(expected_without);
}

void Compiler::Parser::condition() {
    const char* const begin = place();
    const std::size_t reads_before = m_reads;
    segment(Value_type::INTEGER);
    end_rule("an operator or end of rule");
    if (m_reads == reads_before) {
        warn_of_constant(begin);
    }
}

// What stands since `begin` looks as if something could change it: a forgotten bracket, mostly. A rule is on one
// line.
void Compiler::Parser::warn_of_constant(const char* begin) {
    if (std::exchange(m_is_warned, true)) {
        return;
    }
    const std::string_view source(begin, static_cast<std::size_t>(m_last_end - begin));
    const auto column = m_rule_column + static_cast<std::size_t>(begin - m_rule_begin);
    m_warnings.push_back({static_cast<std::size_t>(m_rule_line), column,
                          quoted_source(source) +
                              " reads nothing, so it never changes; a parameter stands "
                              "in brackets, as in [100]"});
}

void Compiler::Parser::end_rule(const char* expected) {
    if (m_token.kind != Token::END && m_token.kind != Token::SEPARATOR) {
        fail_expected(expected);
    }
    int* const row = &m_tables.rules[m_tables.rules.size() - RULE_SIZE];
    row[RULE_SOURCE_LENGTH] = static_cast<int>(m_last_end - m_rule_begin);
    row[RULE_OPERANDS] = static_cast<int>(m_tables.segments.size()) - 1 - row[RULE_FIRST_SEGMENT];
}

void Compiler::Parser::segment(Value_type type) {
    m_depth = 0;
    require_type(expression(), type);
    end_segment();
}

void Compiler::Parser::end_segment() {
    m_tables.segments.push_back(m_tables.instruction_count());
}

// The value of the last segment when it is a number.
std::optional<int64_t> Compiler::Parser::constant_of_segment() const {
    const std::size_t count = m_tables.segments.size();
    const int begin = count > 1 ? m_tables.segments[count - 2] : 0;
    const std::size_t at = m_tables.code.size() - INSTRUCTION_SIZE;
    const auto operation = static_cast<Operation>(m_tables.code[at]);
    if (m_tables.segments.back() != begin + 1 || operation > Operation::WIDE_NUMBER) {
        return std::nullopt;
    }
    if (operation == Operation::NUMBER) {
        return m_tables.code[at + 1];
    }
    const bool is_negative = m_tables.wide_numbers.back() < 0;
    return is_negative ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
}

// An integer of the device, which has 32 bits: a number that does not fit is a mistake. The number, when it
// is known already.
// The bytes of the last segment's value when it is a text without placeholders.
std::optional<std::size_t> Compiler::Parser::text_length_of_segment() const {
    const std::size_t count = m_tables.segments.size();
    const int begin = count > 1 ? m_tables.segments[count - 2] : 0;
    const std::size_t at = m_tables.code.size() - INSTRUCTION_SIZE;
    if (m_tables.segments.back() != begin + 1 ||
        static_cast<Operation>(m_tables.code[at]) != Operation::TEXT) {
        return std::nullopt;
    }
    const auto text = static_cast<std::size_t>(m_tables.code[at + 1]) * REFERENCE_SIZE;
    return static_cast<std::size_t>(m_tables.texts[text + 1]);
}

std::optional<int32_t> Compiler::Parser::integer_segment(int32_t least) {
    constexpr int32_t GREATEST = std::numeric_limits<int32_t>::max();
    const char* const begin = place();
    segment(Value_type::INTEGER);
    const std::optional<int64_t> number = constant_of_segment();
    if (number && (*number < least || *number > GREATEST)) {
        const std::string_view source(begin, static_cast<std::size_t>(m_last_end - begin));
        fail(begin, quoted_source(source) + " is not a number from " + std::to_string(least) +
                        " to " + std::to_string(GREATEST));
    }
    return number ? std::optional<int32_t>(static_cast<int32_t>(*number)) : std::nullopt;
}

// ---- expressions

Compiler::Parser::Operand Compiler::Parser::expression() {
    const Operand operand = binary(OR_LEVEL);
    return m_token.kind == Token::QUESTION ? conditional(operand) : operand;
}

// A chain of conditions is a loop, so that its length does not count as nesting.
Compiler::Parser::Operand Compiler::Parser::conditional(Operand operand) {
    const Nesting nesting(*this);
    const char* const begin = operand.place;
    std::optional<Value_type> type;
    bool is_truth = true;
    int last_jump = 0;
    ++m_open_jumps;
    while (accept(Token::QUESTION)) {
        require_integer(operand);
        const int to_else = emit_jump(Operation::JUMP_IF_ZERO, 0, -1);
        const Operand branch = expression();
        require_type(branch, type.value_or(branch.type));
        type = branch.type;
        is_truth = is_truth && branch.is_truth;
        expect(Token::COLON, "an operator or \":\"");
        last_jump = emit(Operation::JUMP, last_jump, -1);
        land(to_else);
        operand = binary(OR_LEVEL);
    }
    --m_open_jumps;
    require_type(operand, *type);
    land_all(last_jump);
    return {*type, is_truth && operand.is_truth, begin};
}

Compiler::Parser::Operand Compiler::Parser::binary(Level least) {
    const std::size_t reads_before = m_reads;
    Operand left = unary(least);
    for (;;) {
        const Binary_operator with = operator_of(m_token);
        if (with.level == NO_LEVEL || with.level < least) {
            return left;
        }
        left = combine(left, with);
        if (with.level == COMPARISON_LEVEL && m_reads == reads_before) {
            warn_of_constant(left.place);
        }
        if (with.level == COMPARISON_LEVEL && operator_of(m_token).level == COMPARISON_LEVEL) {
            fail(place(), "comparisons do not chain; \"and\" joins them");
        }
    }
}

Compiler::Parser::Operand Compiler::Parser::combine(const Operand& left,
                                                    const Binary_operator& with) {
    const char* const operator_place = place();
    advance();
    switch (with.level) {
        case OR_LEVEL:
        case AND_LEVEL:
            return logic(left, with);
        case COMPARISON_LEVEL:
            return with.operation == Operation::BETWEEN
                       ? membership(left)
                       : comparison(left, with.operation, operator_place);
        default:
            require_integer(left);
            require_integer(binary(static_cast<Level>(with.level + 1)));
            emit(with.operation, 0, -1);
            return {Value_type::INTEGER, false, left.place};
    }
}

Compiler::Parser::Operand Compiler::Parser::logic(const Operand& left,
                                                  const Binary_operator& with) {
    require_integer(left);
    const int to_end = emit_jump(with.operation, 0, -1);
    const Operand right = require_integer(binary(static_cast<Level>(with.level + 1)));
    if (!right.is_truth) {
        emit(Operation::TRUTH, 0, 0);
    }
    land(to_end);
    return {Value_type::INTEGER, true, left.place};
}

Compiler::Parser::Operand Compiler::Parser::comparison(const Operand& left, Operation operation,
                                                       const char* place) {
    const bool is_equality = operation == Operation::EQUAL || operation == Operation::NOT_EQUAL;
    if (left.type == Value_type::TEXT && !is_equality) {
        fail(place, "a text is compared with == or != only");
    }
    require_type(binary(SUM_LEVEL), left.type);
    if (left.type == Value_type::TEXT) {
        operation =
            operation == Operation::EQUAL ? Operation::TEXT_EQUAL : Operation::TEXT_NOT_EQUAL;
    }
    emit(operation, 0, -1);
    return {Value_type::INTEGER, true, left.place};
}

Compiler::Parser::Operand Compiler::Parser::membership(const Operand& left) {
    if (accept(Token::OPEN_BRACE)) {
        return set_membership(left);
    }
    require_integer(left);
    require_integer(binary(SUM_LEVEL));
    expect(Token::TO, "an operator or \"..\"");
    require_integer(binary(SUM_LEVEL));
    emit(Operation::BETWEEN, 0, -2);
    return {Value_type::INTEGER, true, left.place};
}

Compiler::Parser::Operand Compiler::Parser::set_membership(const Operand& left) {
    const Nesting nesting(*this);
    int last_jump = 0;
    if (++m_open_jumps > MOST_OPEN_JUMPS) {
        fail_too_deep();
    }
    do {
        set_element(left, last_jump);
    } while (accept(Token::COMMA));
    expect(Token::CLOSE_BRACE, "an operator, \"..\", \",\" or \"}\"");
    --m_open_jumps;
    emit(Operation::NO_MEMBER, 0, 0);
    land_all(last_jump);
    return {Value_type::INTEGER, true, left.place};
}

void Compiler::Parser::set_element(const Operand& left, int& last_jump) {
    require_type(expression(), left.type);
    if (left.type == Value_type::INTEGER && accept(Token::TO)) {
        require_integer(expression());
        last_jump = emit(Operation::MEMBER_BETWEEN, last_jump, -2);
        return;
    }
    const Operation operation =
        left.type == Value_type::TEXT ? Operation::MEMBER_TEXT : Operation::MEMBER;
    last_jump = emit(operation, last_jump, -1);
}

Compiler::Parser::Operand Compiler::Parser::unary(Level least) {
    const char* const begin = place();
    if (least <= NOT_LEVEL && accept_word("not")) {
        const Nesting nesting(*this);
        require_integer(binary(NOT_LEVEL));
        emit(Operation::NOT, 0, 0);
        return {Value_type::INTEGER, true, begin};
    }
    return accept(Token::MINUS) ? negative(begin) : primary();
}

Compiler::Parser::Operand Compiler::Parser::negative(const char* begin) {
    const Nesting nesting(*this);
    if (m_token.kind == Token::NUMBER) {
        emit_number(m_token.magnitude, true);
        advance();
    } else {
        require_integer(unary(SIGN_LEVEL));
        emit(Operation::NEGATE, 0, 0);
    }
    return {Value_type::INTEGER, false, begin};
}

Compiler::Parser::Operand Compiler::Parser::primary() {
    const char* const begin = place();
    switch (m_token.kind) {
        case Token::NUMBER: {
            emit_number(m_token.magnitude, false);
            const bool is_truth = m_token.magnitude <= 1;
            advance();
            return {Value_type::INTEGER, is_truth, begin};
        }
        case Token::PARAMETER:
            return read_parameter();
        case Token::QUOTE:
            return text();
        case Token::WORD:
            return word();
        case Token::OPEN: {
            const Nesting nesting(*this);
            advance();
            Operand operand = expression();
            expect(Token::CLOSE, "an operator or \")\"");
            operand.place = begin;
            return operand;
        }
        default:
            fail_expected("a number, a text, a [parameter], \"value\", a function or \"(\"");
    }
}

Compiler::Parser::Operand Compiler::Parser::word() {
    const Token name = m_token;
    advance();
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
        m_token = name;
        const bool is_declared = m_context.parameters.find(name.source) != nullptr;
        fail(name.source.data(),
             "expected a number, a text, a [parameter], \"value\", a function or \"(\", found " +
                 name.description() +
                 (is_declared
                      ? "; a parameter stands in brackets: [" + std::string(name.source) + "]"
                      : ""));
    }
    operand.place = name.source.data();
    return operand;
}

Compiler::Parser::Operand Compiler::Parser::own_value() {
    if (m_context.own_type != INTEGER && m_context.own_type != STRING) {
        fail(m_last_end - std::strlen("value"), "this entry has no value of its own");
    }
    const Value_type type = value_type(m_context.own_type);
    m_tables.own_type = 1 + static_cast<int>(type);
    emit(Operation::READ_OWN, 0, 1);
    ++m_reads;
    return {type, false, nullptr};
}

Compiler::Parser::Operand Compiler::Parser::function(Operation operation, Value_type takes) {
    const Nesting nesting(*this);
    expect(Token::OPEN, "\"(\"");
    require_type(expression(), takes);
    expect(Token::CLOSE, "an operator or \")\"");
    emit(operation, 0, 0);
    return {Value_type::INTEGER, false, nullptr};
}

Compiler::Parser::Operand Compiler::Parser::extreme(Operation operation) {
    const Nesting nesting(*this);
    expect(Token::OPEN, "\"(\"");
    require_integer(expression());
    expect(Token::COMMA, "an operator or \",\"");
    do {
        require_integer(expression());
        emit(operation, 0, -1);
    } while (accept(Token::COMMA));
    expect(Token::CLOSE, "an operator, \",\" or \")\"");
    return {Value_type::INTEGER, false, nullptr};
}

Compiler::Parser::Operand Compiler::Parser::has_option() {
    expect(Token::OPEN, "\"(\"");
    if (m_token.kind != Token::QUOTE) {
        fail_expected("the name of an option in quotes");
    }
    const char* const quote = place();
    const Scanner::Text_part part = m_scanner.text_part(quote);
    if (!part.ends_text || part.source.empty()) {
        fail(quote, part.ends_text ? "the name of an option is empty"
                                   : "the name of an option holds no placeholders");
    }
    advance();
    expect(Token::CLOSE, "\")\"");
    const int option = static_cast<int>(m_tables.options.size() / REFERENCE_SIZE);
    text_reference(part);
    m_tables.options.insert(m_tables.options.end(), m_tables.texts.end() - REFERENCE_SIZE,
                            m_tables.texts.end());
    m_tables.texts.resize(m_tables.texts.size() - REFERENCE_SIZE);
    emit(Operation::HAS_OPTION, option, 1);
    ++m_reads;
    return {Value_type::INTEGER, true, nullptr};
}

// ---- texts

Compiler::Parser::Operand Compiler::Parser::text() {
    const char* const quote = place();
    bool is_first = true;
    for (;;) {
        const Scanner::Text_part part = m_scanner.text_part(quote);
        is_first = text_part(part, is_first);
        if (part.ends_text) {
            break;
        }
        const Nesting nesting(*this);
        advance();
        if (expression().type == Value_type::INTEGER) {
            emit(Operation::DIGITS, 0, 0);
        }
        if (!is_first) {
            emit(Operation::JOIN, 0, -1);
        }
        is_first = false;
        if (m_token.kind != Token::CLOSE_BRACE) {
            fail_expected("an operator or \"}\"");
        }
    }
    advance();
    return {Value_type::TEXT, false, quote};
}

// Writes a part unless it is empty and another part makes up for it. Whether nothing is written yet.
bool Compiler::Parser::text_part(const Scanner::Text_part& part, bool is_first) {
    if (part.source.empty() && !(is_first && part.ends_text)) {
        return is_first;
    }
    emit(Operation::TEXT, text_reference(part), 1);
    if (!is_first) {
        emit(Operation::JOIN, 0, -1);
    }
    return false;
}

int Compiler::Parser::text_reference(const Scanner::Text_part& part) {
    const int number = static_cast<int>(m_tables.texts.size() / REFERENCE_SIZE);
    if (part.has_escapes) {
        const std::size_t offset = m_source.size() + m_tables.unescaped.size();
        Scanner::append_unescaped(part.source, m_tables.unescaped);
        const std::size_t length = m_source.size() + m_tables.unescaped.size() - offset;
        m_tables.texts.insert(m_tables.texts.end(),
                              {static_cast<int>(offset), static_cast<int>(length)});
    } else {
        add_reference(m_tables.texts, part.source);
    }
    if (m_tables.texts.back() > static_cast<int>(LONGEST_TEXT)) {
        fail(part.source.data(), "text longer than " + std::to_string(LONGEST_TEXT) + " bytes");
    }
    return number;
}

void Compiler::Parser::add_reference(BindingListT& table, std::string_view source) {
    table.insert(table.end(), {static_cast<int>(source.data() - m_source.data()),
                               static_cast<int>(source.size())});
}

// ---- parameters

Compiler::Parser::Operand Compiler::Parser::read_parameter() {
    const char* const begin = place();
    const int number = parameter();
    int* const row = &m_tables.parameters[static_cast<std::size_t>(number) * PARAMETER_SIZE];
    row[PARAMETER_USES] |= PARAMETER_IS_READ;
    const Value_type type = value_type(static_cast<RETURN_TYPE>(row[PARAMETER_TYPE]));
    emit(Operation::READ, number, 1);
    ++m_reads;
    advance();
    return {type, false, begin};
}

// The number of the parameter that the current token names. Rules come back to the same few parameters, so
// the names so far are tried before the table.
int Compiler::Parser::parameter() {
    const std::string_view inside = m_token.source.substr(1, m_token.source.size() - 2);
    const BindingListT& rows = m_tables.parameters;
    const auto tried = static_cast<std::size_t>(TRIED_ROWS) * PARAMETER_SIZE;
    for (std::size_t at = 0; at < std::min(rows.size(), tried); at += PARAMETER_SIZE) {
        const std::string_view known =
            m_source.substr(static_cast<std::size_t>(rows[at + PARAMETER_NAME]),
                            static_cast<std::size_t>(rows[at + PARAMETER_NAME_LENGTH]));
        if (known == inside) {
            return static_cast<int>(at / PARAMETER_SIZE);
        }
    }
    if (is_like_address(inside)) {
        return parameter_row(address(inside), inside);
    }
    const Parameter* const declared = m_context.parameters.find(inside);
    if (declared == nullptr) {
        fail_unknown(inside);
    }
    return parameter_row(declared->key(), inside);
}

void Compiler::Parser::fail_unknown(std::string_view name) const {
    const std::string_view closest = m_context.parameters.closest(name);
    Compile_error error = m_scanner.error(place(), "unknown parameter " + m_token.description());
    if (!closest.empty()) {
        error.message += "; did you mean [" + std::string(closest) + "]?";
    }
    error.unknown_name = name;
    throw error;
}

var_index_s Compiler::Parser::address(std::string_view inside) const {
    Address_error error;
    const std::optional<Parameter_address> address = parse_address(inside, &error);
    if (!address) {
        fail(inside.data() + error.offset, error.message);
    }
    var_index_s key{INTEGER, address->pid, address->index};
    const RETURN_TYPE declared = m_context.parameters.type_of(key);
    if (address->type != INVALID_TYPE) {
        key.rt = address->type;
    } else if (declared != INVALID_TYPE) {
        key.rt = declared;
    }
    if (declared != INVALID_TYPE && declared != key.rt) {
        fail(place(), "parameter " + m_token.description() + " is declared as " +
                          name_of(value_type(declared)));
    }
    return key;
}

int Compiler::Parser::parameter_row(const var_index_s& key, std::string_view name) {
    const int address[] = {key.rt, static_cast<int>(key.var),
                           static_cast<int>(key.index.m_index_num), key.index.m_index[0],
                           key.index.m_index[1]};
    BindingListT& rows = m_tables.parameters;
    const auto is_at = [&](int row) {
        return std::equal(std::begin(address), std::end(address),
                          &rows[static_cast<std::size_t>(row) * PARAMETER_SIZE]);
    };
    const int count = static_cast<int>(rows.size() / PARAMETER_SIZE);
    for (int row = 0; row < std::min(count, TRIED_ROWS); ++row) {
        if (is_at(row)) {
            return row;
        }
    }
    const uint64_t variable =
        uint64_t{key.var} << 32 | uint64_t{key.index.m_index[0]} << 16 | key.index.m_index[1];
    const auto [first, last] = m_tables.later_rows.equal_range(variable);
    const auto known =
        std::find_if(first, last, [&](const auto& numbered) { return is_at(numbered.second); });
    if (known != last) {
        return known->second;
    }
    if (count == MOST_PARAMETERS) {
        fail(place(), "more than " + std::to_string(MOST_PARAMETERS) + " parameters");
    }
    rows.insert(rows.end(), std::begin(address), std::end(address));
    add_reference(rows, name);
    rows.push_back(0);
    if (count >= TRIED_ROWS) {
        m_tables.later_rows.emplace(variable, count);
    }
    return count;
}

// ---- code

// `growth` is what the operation adds to the stack. The number of the instruction.
int Compiler::Parser::emit(Operation operation, int argument, int growth) {
    if (growth > 0 && ++m_depth > DEEPEST_STACK) {
        fail_too_deep();
    } else if (growth < 0) {
        m_depth -= static_cast<std::size_t>(-growth);
    }
    const int number = m_tables.instruction_count();
    const std::size_t at = m_tables.code.size();
    m_tables.code.resize(at + INSTRUCTION_SIZE);
    m_tables.code[at] = static_cast<int>(operation);
    m_tables.code[at + 1] = argument;
    return number;
}

void Compiler::Parser::emit_number(uint64_t magnitude, bool is_negative) {
    constexpr auto GREATEST = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
    if (magnitude > GREATEST && !is_negative) {
        fail(place(), m_token.description() +
                          " is not a number from -9223372036854775808 to 9223372036854775807");
    }
    const uint64_t bits = is_negative ? 0 - magnitude : magnitude;
    const auto low = static_cast<int32_t>(static_cast<uint32_t>(bits));
    const auto high = static_cast<int32_t>(static_cast<uint32_t>(bits >> 32));
    if (high == (low < 0 ? -1 : 0)) {
        emit(Operation::NUMBER, low, 1);
        return;
    }
    const int number = static_cast<int>(m_tables.wide_numbers.size() / WIDE_NUMBER_SIZE);
    m_tables.wide_numbers.insert(m_tables.wide_numbers.end(), {low, high});
    emit(Operation::WIDE_NUMBER, number, 1);
}

int Compiler::Parser::emit_jump(Operation operation, int argument, int growth) {
    if (++m_open_jumps > MOST_OPEN_JUMPS) {
        fail_too_deep();
    }
    return emit(operation, argument, growth);
}

// Lets a jump go on with the next instruction.
void Compiler::Parser::land(int jump) {
    --m_open_jumps;
    const std::size_t at = static_cast<std::size_t>(jump) * INSTRUCTION_SIZE;
    m_tables.code[at + 1] = m_tables.instruction_count();
}

// The same for jumps of which each holds the number of the one before, until 0: a jump is never the first
// instruction.
void Compiler::Parser::land_all(int last_jump) {
    while (last_jump != 0) {
        const std::size_t at = static_cast<std::size_t>(last_jump) * INSTRUCTION_SIZE;
        last_jump = std::exchange(m_tables.code[at + 1], m_tables.instruction_count());
    }
}

// ---- tokens

void Compiler::Parser::require_type(const Operand& operand, Value_type type) const {
    if (operand.type != type) {
        fail(operand.place,
             std::string("expected ") + name_of(type) + ", found " + name_of(operand.type));
    }
}

Compiler::Parser::Operand Compiler::Parser::require_integer(const Operand& operand) const {
    require_type(operand, Value_type::INTEGER);
    return operand;
}

bool Compiler::Parser::accept(Token::Kind kind) {
    const bool found = m_token.kind == kind;
    if (found) {
        advance();
    }
    return found;
}

bool Compiler::Parser::accept_word(std::string_view word) {
    const bool found = m_token.is_word(word);
    if (found) {
        advance();
    }
    return found;
}

void Compiler::Parser::expect(Token::Kind kind, const char* expected) {
    if (!accept(kind)) {
        fail_expected(expected);
    }
}

void Compiler::Parser::advance() {
    m_last_end = m_scanner.position();
    m_token = m_scanner.next();
}

// ---- the compiler

namespace {

// Why a text is not read at all.
std::optional<Compile_error> unreadable(std::string_view source) {
    const Scanner scanner(source);
    if (source.size() > LONGEST_SOURCE) {
        return scanner.error(
            source.data(), "source text longer than " + std::to_string(LONGEST_SOURCE) + " bytes");
    }
    const std::size_t zero_byte = source.find('\0');
    if (zero_byte != std::string_view::npos) {
        return scanner.error(source.data() + zero_byte, "unexpected character \"\\x00\"");
    }
    return std::nullopt;
}

Compile_result refused(std::vector<Compile_error> errors) {
    Compile_result result;
    result.errors = std::move(errors);
    result.error = result.errors.front();
    return result;
}

}  // namespace

Compiler::Compiler() : m_tables(std::make_unique<Tables>()) {}

Compiler::~Compiler() = default;

Compile_result Compiler::compile(std::string_view source, const Compile_context& context) {
    if (const std::optional<Compile_error> error = unreadable(source)) {
        return refused({*error});
    }
    Compile_result result;
    m_tables->clear();
    Parser(source, context, *m_tables, result).rules();
    if (!result.errors.empty()) {
        return refused(std::move(result.errors));
    }
    result.list = m_tables->list(source);
    result.parameters = m_tables->named_parameters();
    return result;
}

}  // namespace frontpanel::binding_language
