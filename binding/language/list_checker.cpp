#include "language/list_checker.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string_view>

#include "language/list_format.h"
#include "language/program.h"
#include "rule_kinds.h"

namespace frontpanel::binding_language {

namespace {

// Thrown within this file alone; `number` follows the text when it is not negative.
struct Damage {
    const char* text;
    int64_t number = -1;
};

void require(bool condition, const char* text, int64_t number = -1) {
    if (!condition) {
        throw Damage{text, number};
    }
}

// ---- the header, and where the sections are

class Layout {
public:
    explicit Layout(const BindingListT& list) : m_list(list) {
        require(list.size() >= HEADER_SIZE, "it is too short for a binding list");
        require(list[HEADER_MAGIC] == LIST_MAGIC, "not a binding list");
        require(list[HEADER_VERSION] == LIST_VERSION, "unknown version", list[HEADER_VERSION]);
        require(list.size() <= static_cast<std::size_t>(std::numeric_limits<int>::max()) &&
                    list[HEADER_LENGTH] == static_cast<int>(list.size()),
                "its length is wrong");
        require(list[HEADER_CHECKSUM] == list_checksum(list.data(), list.size()),
                "its checksum is wrong");
    }

    List_sections sections() {
        List_sections sections{};
        sections.parameters = section(HEADER_PARAMETERS, PARAMETER_SIZE);
        sections.options = section(HEADER_OPTIONS, REFERENCE_SIZE);
        sections.texts = section(HEADER_TEXTS, REFERENCE_SIZE);
        sections.wide_numbers = section(HEADER_WIDE_NUMBERS, WIDE_NUMBER_SIZE);
        sections.segments = section(HEADER_SEGMENTS, 1);
        sections.rules = section(HEADER_RULES, RULE_SIZE);
        sections.code = section(HEADER_INSTRUCTIONS, INSTRUCTION_SIZE);
        sections.pool = section(HEADER_POOL_BYTES, 1, BYTES_PER_NUMBER);
        require(m_at == m_list.size(), "its sections do not fill it");
        return sections;
    }

private:
    uint32_t section(Header count, uint64_t size, uint64_t per_number = 1) {
        require(m_list[count] >= 0, "negative count of a section");
        const uint64_t begin = m_at;
        m_at += (static_cast<uint64_t>(m_list[count]) * size + per_number - 1) / per_number;
        require(m_at <= m_list.size(), "a section goes beyond its end");
        return static_cast<uint32_t>(begin);
    }

    const BindingListT& m_list;
    uint64_t m_at = HEADER_SIZE;
};

// ---- the code

// The types on the stack before an instruction: a bit for each value, set for a text.
struct Stack_types {
    std::size_t depth = 0;
    uint64_t texts = 0;

    bool operator==(const Stack_types& other) const {
        return depth == other.depth && texts == other.texts;
    }
};

static_assert(DEEPEST_STACK <= std::numeric_limits<uint64_t>::digits);

// What the operations without a special argument take and leave, bottom first: i, t, or x for either.
struct Effect {
    std::string_view takes;
    std::string_view leaves;
};

constexpr std::array<Effect, static_cast<std::size_t>(Operation::COUNT)> EFFECTS = {{
    {"", "i"},     // NUMBER
    {"", "i"},     // WIDE_NUMBER
    {"", "t"},     // TEXT
    {"", "?"},     // READ: the parameter's type
    {"", "?"},     // READ_OWN: the type of `value`
    {"", "i"},     // HAS_OPTION
    {"i", "i"},    // NEGATE
    {"i", "i"},    // NOT
    {"i", "i"},    // TRUTH
    {"i", "i"},    // ABSOLUTE
    {"t", "i"},    // LENGTH
    {"i", "t"},    // DIGITS
    {"ii", "i"},   // ADD
    {"ii", "i"},   // SUBTRACT
    {"ii", "i"},   // MULTIPLY
    {"ii", "i"},   // DIVIDE
    {"ii", "i"},   // REMAINDER
    {"ii", "i"},   // MINIMUM
    {"ii", "i"},   // MAXIMUM
    {"ii", "i"},   // EQUAL
    {"ii", "i"},   // NOT_EQUAL
    {"ii", "i"},   // LESS
    {"ii", "i"},   // LESS_EQUAL
    {"ii", "i"},   // GREATER
    {"ii", "i"},   // GREATER_EQUAL
    {"tt", "i"},   // TEXT_EQUAL
    {"tt", "i"},   // TEXT_NOT_EQUAL
    {"tt", "t"},   // JOIN
    {"iii", "i"},  // BETWEEN
    {"", ""},      // JUMP
    {"i", ""},     // JUMP_IF_ZERO
    {"i", ""},     // AND
    {"i", ""},     // OR
    {"ii", "i"},   // MEMBER
    {"tt", "t"},   // MEMBER_TEXT
    {"iii", "i"},  // MEMBER_BETWEEN
    {"x", "i"},    // NO_MEMBER
}};

// Checks the expressions of a list, one after the other. Since jumps go forward only and nest, the states at
// their targets form a stack: no more than MOST_OPEN_JUMPS of them are kept, however long the code is.
class Code_checker {
public:
    Code_checker(const BindingListT& list, const List_sections& sections)
        : m_list(list), m_sections(sections) {}

    // Requires that the instructions from `begin` to `end`, one at least, yield a value of `type`.
    void check(uint32_t begin, uint32_t end, Value_type type) {
        m_stack = Stack_types();
        m_end = end;
        m_open_count = 0;
        for (m_place = begin; m_place < end; ++m_place) {
            join_jumps();
            step();
        }
        join_jumps();
        require(m_open_count == 0 && m_stack.depth == 1, "no single result at instruction", end);
        require(type_at(0) == type, "result of the wrong type at instruction", end);
    }

private:
    struct Open_jump {
        uint32_t target;
        Stack_types stack;
    };

    void step() {
        const std::size_t at = m_sections.code + m_place * INSTRUCTION_SIZE;
        const int code = m_list[at];
        require(code >= 0 && code < static_cast<int>(Operation::COUNT), "unknown operation at",
                m_place);
        const auto operation = static_cast<Operation>(code);
        const int argument = m_list[at + 1];
        const Effect& effect = EFFECTS[static_cast<std::size_t>(code)];
        take(effect.takes);
        if (operation < Operation::JUMP) {
            check_argument(operation, argument);
            const char left = effect.leaves.front();
            leave(left == '?' ? type_read(operation, argument) : type_of(left));
            return;
        }
        for (const char type : effect.leaves) {
            leave(type_of(type));
        }
        jump(operation, argument);
    }

    void check_argument(Operation operation, int argument) const {
        switch (operation) {
            case Operation::NUMBER:
                return;
            case Operation::WIDE_NUMBER:
                return require_index(argument, m_list[HEADER_WIDE_NUMBERS]);
            case Operation::TEXT:
                return require_index(argument, m_list[HEADER_TEXTS]);
            case Operation::READ:
                return require_index(argument, m_list[HEADER_PARAMETERS]);
            case Operation::HAS_OPTION:
                return require_index(argument, m_list[HEADER_OPTIONS]);
            default:
                return require(argument == 0, "argument without use at instruction", m_place);
        }
    }

    void require_index(int index, int count) const {
        require(index >= 0 && index < count, "argument out of range at instruction", m_place);
    }

    Value_type type_read(Operation operation, int argument) const {
        if (operation == Operation::READ_OWN) {
            require(m_list[HEADER_OWN_TYPE] != 0, "own value without a type at instruction",
                    m_place);
            return static_cast<Value_type>(m_list[HEADER_OWN_TYPE] - 1);
        }
        const std::size_t parameter =
            m_sections.parameters + static_cast<std::size_t>(argument) * PARAMETER_SIZE;
        require((m_list[parameter + PARAMETER_USES] & PARAMETER_IS_READ) != 0,
                "unmarked read at instruction", m_place);
        return m_list[parameter + PARAMETER_TYPE] == STRING ? Value_type::TEXT
                                                            : Value_type::INTEGER;
    }

    void jump(Operation operation, int target) {
        if (operation == Operation::NO_MEMBER) {
            return require(target == 0, "argument without use at instruction", m_place);
        }
        require(target > static_cast<int64_t>(m_place) && target <= static_cast<int64_t>(m_end),
                "jump out of its expression at instruction", m_place);
        Stack_types there = m_stack;
        if (operation == Operation::AND || operation == Operation::OR) {
            push(there, Value_type::INTEGER);
        } else if (operation == Operation::MEMBER_TEXT) {
            --there.depth;
            there.texts &= ~bit(there.depth);
            push(there, Value_type::INTEGER);
        }
        if (operation == Operation::JUMP) {
            // What follows is reached by the innermost open jump alone.
            require(m_open_count != 0 && m_open[m_open_count - 1].target == m_place + 1,
                    "unreachable code after instruction", m_place);
            m_stack = m_open[--m_open_count].stack;
        }
        open(static_cast<uint32_t>(target), there);
    }

    void open(uint32_t target, const Stack_types& stack) {
        if (m_open_count != 0) {
            const Open_jump& innermost = m_open[m_open_count - 1];
            require(target <= innermost.target, "jumps that cross at instruction", m_place);
            if (target == innermost.target) {
                return require(stack == innermost.stack, "types that differ at instruction",
                               target);
            }
        }
        require(m_open_count < m_open.size(), "jumps nested too deeply at instruction", m_place);
        m_open[m_open_count++] = {target, stack};
    }

    void join_jumps() {
        while (m_open_count != 0 && m_open[m_open_count - 1].target == m_place) {
            --m_open_count;
            require(m_stack == m_open[m_open_count].stack, "types that differ at instruction",
                    m_place);
        }
    }

    void take(std::string_view types) {
        const std::size_t count = types.size();
        require(m_stack.depth >= count, "missing operand at instruction", m_place);
        m_stack.depth -= count;
        for (std::size_t i = 0; i < count; ++i) {
            require(types[i] == 'x' || type_at(m_stack.depth + i) == type_of(types[i]),
                    "operand of the wrong type at instruction", m_place);
            m_stack.texts &= ~bit(m_stack.depth + i);
        }
    }

    void leave(Value_type type) { push(m_stack, type); }

    void push(Stack_types& stack, Value_type type) const {
        require(stack.depth < DEEPEST_STACK, "stack too deep at instruction", m_place);
        stack.texts |= type == Value_type::TEXT ? bit(stack.depth) : 0;
        ++stack.depth;
    }

    static uint64_t bit(std::size_t place) {
        return place < DEEPEST_STACK ? uint64_t{1} << place : 0;
    }

    Value_type type_at(std::size_t place) const {
        return (m_stack.texts & bit(place)) != 0 ? Value_type::TEXT : Value_type::INTEGER;
    }

    static Value_type type_of(char letter) {
        return letter == 't' ? Value_type::TEXT : Value_type::INTEGER;
    }

    const BindingListT& m_list;
    const List_sections& m_sections;
    Stack_types m_stack;
    uint32_t m_place = 0;
    uint32_t m_end = 0;
    std::array<Open_jump, MOST_OPEN_JUMPS> m_open;
    std::size_t m_open_count = 0;
};

// ---- the tables

class Table_checker {
public:
    Table_checker(const BindingListT& list, const List_sections& sections)
        : m_list(list), m_sections(sections), m_code(list, sections) {}

    void check() {
        require(m_list[HEADER_OWN_TYPE] >= 0 && m_list[HEADER_OWN_TYPE] <= 2,
                "unknown type of the own value");
        require(m_list[HEADER_RULES] > 0, "it has no rules");
        check_pool();
        check_references();
        for (int i = 0; i < m_list[HEADER_PARAMETERS]; ++i) {
            check_parameter(row(m_sections.parameters, i, PARAMETER_SIZE), i);
        }
        for (int i = 0; i < m_list[HEADER_RULES]; ++i) {
            check_rule(row(m_sections.rules, i, RULE_SIZE), i);
        }
        require(m_segment == m_list[HEADER_SEGMENTS], "segments that belong to no rule");
        require(m_instruction == m_list[HEADER_INSTRUCTIONS], "code that belongs to no rule");
    }

private:
    static std::size_t row(uint32_t section, int number, std::size_t size) {
        return section + static_cast<std::size_t>(number) * size;
    }

    void check_pool() const {
        const auto bytes = static_cast<std::size_t>(m_list[HEADER_POOL_BYTES]);
        if (bytes != 0) {
            const char* const pool = reinterpret_cast<const char*>(&m_list[m_sections.pool]);
            require(std::memchr(pool, '\0', bytes) == nullptr, "a zero byte in its texts");
            const std::size_t padded = (m_list.size() - m_sections.pool) * BYTES_PER_NUMBER;
            for (std::size_t i = bytes; i < padded; ++i) {
                require(pool[i] == '\0', "bytes after its texts");
            }
        }
    }

    void check_references() const {
        for (int i = 0; i < m_list[HEADER_OPTIONS]; ++i) {
            require_pooled(row(m_sections.options, i, REFERENCE_SIZE), "bad name of option", i);
        }
        for (int i = 0; i < m_list[HEADER_TEXTS]; ++i) {
            const std::size_t at = row(m_sections.texts, i, REFERENCE_SIZE);
            require_pooled(at, "bad text", i);
            require(m_list[at + 1] <= static_cast<int>(LONGEST_TEXT), "too long a text", i);
        }
    }

    void require_pooled(std::size_t at, const char* text, int number) const {
        const int offset = m_list[at];
        const int length = m_list[at + 1];
        require(offset >= 0 && length >= 0 && offset <= m_list[HEADER_POOL_BYTES] &&
                    length <= m_list[HEADER_POOL_BYTES] - offset,
                text, number);
    }

    void check_parameter(std::size_t at, int number) const {
        const int* const fields = &m_list[at];
        const int type = fields[PARAMETER_TYPE];
        const int levels = fields[PARAMETER_LEVELS];
        require(type == INTEGER || type == STRING, "unknown type of parameter", number);
        require(static_cast<uint32_t>(fields[PARAMETER_PID]) != Data_entry::PID_NONE,
                "bad address of parameter", number);
        require(levels >= 0 && levels <= 2, "bad levels of parameter", number);
        for (int level = 0; level < 2; ++level) {
            const int index = fields[PARAMETER_LEVEL_0 + level];
            const int last = level < levels ? std::numeric_limits<uint16_t>::max() : 0;
            require(index >= 0 && index <= last, "bad index of parameter", number);
        }
        require_pooled(at + PARAMETER_NAME, "bad name of parameter", number);
        require(fields[PARAMETER_USES] >= 1 && fields[PARAMETER_USES] <= 3,
                "unknown use of parameter", number);
    }

    void check_rule(std::size_t at, int number) {
        const int* const fields = &m_list[at];
        require(fields[RULE_LINE] > 0, "bad line of rule", number);
        require_pooled(at + RULE_SOURCE, "bad source of rule", number);
        require(fields[RULE_FIRST_SEGMENT] == m_segment, "bad segments of rule", number);
        require(fields[RULE_OPERANDS] >= 0 &&
                    fields[RULE_OPERANDS] < m_list[HEADER_SEGMENTS] - m_segment,
                "bad operands of rule", number);
        const Rule_kind* const kind = find_rule_kind(fields[RULE_KIND]);
        require(kind != nullptr && has_shape(*kind, fields), "bad shape of rule", number);
        for (int i = 0; i < fields[RULE_OPERANDS]; ++i) {
            const bool may_be_empty = kind->operands == Rule_operands::KEYS && i % 2 == 1;
            check_segment(operand_type(*kind, fields), may_be_empty, number);
        }
        check_segment(Value_type::INTEGER, !kind->needs_condition, number);
    }

    // Whether a rule has the number of operands and the detail of its kind.
    bool has_shape(const Rule_kind& kind, const int* fields) const {
        const int operands = fields[RULE_OPERANDS];
        const int detail = fields[RULE_DETAIL];
        switch (kind.operands) {
            case Rule_operands::NONE:
                return operands == 0 && is_choice(kind, detail);
            case Rule_operands::INTERVALS:
            case Rule_operands::KEYS:
                return operands >= 2 && operands % 2 == 0 && detail == 0;
            case Rule_operands::TEXT:
                return operands == 1 && detail == 0;
            case Rule_operands::WRITTEN_VALUE:
                return operands == 1 && is_written(detail);
        }
        return false;
    }

    static bool is_choice(const Rule_kind& kind, int detail) {
        return kind.choices == nullptr ? detail == 0
                                       : std::any_of(kind.begin_choices(), kind.end_choices(),
                                                     [&](const Rule_choice& choice) {
                                                         return choice.number == detail;
                                                     });
    }

    bool is_written(int parameter) const {
        return parameter >= 0 && parameter < m_list[HEADER_PARAMETERS] &&
               (m_list[row(m_sections.parameters, parameter, PARAMETER_SIZE) + PARAMETER_USES] &
                PARAMETER_IS_WRITTEN) != 0;
    }

    Value_type operand_type(const Rule_kind& kind, const int* fields) const {
        if (kind.operands == Rule_operands::WRITTEN_VALUE) {
            return value_type(static_cast<RETURN_TYPE>(
                m_list[row(m_sections.parameters, fields[RULE_DETAIL], PARAMETER_SIZE) +
                       PARAMETER_TYPE]));
        }
        return kind.operands == Rule_operands::TEXT ? Value_type::TEXT : Value_type::INTEGER;
    }

    void check_segment(Value_type type, bool may_be_empty, int rule) {
        const int end = m_list[m_sections.segments + static_cast<std::size_t>(m_segment)];
        require(end >= m_instruction && end <= m_list[HEADER_INSTRUCTIONS], "bad code of rule",
                rule);
        require(may_be_empty || end > m_instruction, "missing code of rule", rule);
        if (end > m_instruction) {
            m_code.check(static_cast<uint32_t>(m_instruction), static_cast<uint32_t>(end), type);
        }
        m_instruction = end;
        ++m_segment;
    }

    const BindingListT& m_list;
    const List_sections& m_sections;
    Code_checker m_code;
    int m_segment = 0;      // the next that no rule had yet
    int m_instruction = 0;  // likewise
};

}  // namespace

bool check_list(const BindingListT& list, List_sections& sections, std::string& why) {
    try {
        sections = Layout(list).sections();
        Table_checker(list, sections).check();
    } catch (const Damage& damage) {
        why = damage.text;
        if (damage.number >= 0) {
            why += ' ' + std::to_string(damage.number);
        }
        return false;
    }
    return true;
}

}  // namespace frontpanel::binding_language
