#include "language/machine.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "language/list_format.h"
#include "language/saturation.h"

namespace frontpanel::binding_language {

namespace {

bool is_between(int64_t number, int64_t one_end, int64_t other_end) {
    return one_end <= other_end ? one_end <= number && number <= other_end
                                : other_end <= number && number <= one_end;
}

}  // namespace

const char* fault_text(Fault fault) {
    switch (fault) {
        case Fault::NONE:
            return "no fault";
        case Fault::UNREADABLE:
            return "a parameter cannot be read";
        case Fault::DIVISION_BY_ZERO:
            return "division by zero";
        case Fault::TEXT_TOO_LONG:
            return "text longer than 256 bytes";
    }
    return "unknown fault";
}

static_assert(LONGEST_TEXT == 256, "fault_text names it");

Machine::Machine() : m_memory(std::make_unique<Memory>()) {
    static_assert(DEPTH == DEEPEST_STACK, "the depth that is checked is the depth there is");
}

// One run: the checked list lets it take every operand and every jump as right.
class Run {
public:
    Run(const Program& program, Machine::Memory& memory, Value_source& source)
        : m_program(program), m_memory(memory), m_source(source) {}

    Fault from(Code code, Value& result);

private:
    using Text_buffer = Machine::Text_buffer;

    Value& top(std::size_t below = 0) { return m_memory.values[m_depth - 1 - below]; }
    int64_t& number(std::size_t below = 0) { return top(below).number; }

    // The values that the last operation took are gone, and `value` is the topmost.
    void replace(std::size_t taken, int64_t value) {
        m_depth -= taken;
        top().type = Value_type::INTEGER;
        top().number = value;
    }
    void push(int64_t value) {
        ++m_depth;
        replace(0, value);
    }
    void push(std::string_view text) {
        ++m_depth;
        leave(text);
    }
    void leave(std::string_view text) {
        top().type = Value_type::TEXT;
        top().text = text;
    }

    std::string_view text(int argument) const {
        return m_program.pooled(m_program.m_texts +
                                static_cast<std::size_t>(argument) * REFERENCE_SIZE);
    }
    int64_t wide_number(int argument) const {
        const int* const halves =
            &m_program.m_list[m_program.m_wide_numbers +
                              static_cast<std::size_t>(argument) * WIDE_NUMBER_SIZE];
        return static_cast<int64_t>(uint64_t{static_cast<uint32_t>(halves[1])} << 32 |
                                    static_cast<uint32_t>(halves[0]));
    }

    Fault operate(Operation operation, int argument);
    Fault read(int argument);
    Fault read_own();
    static Fault checked(const Value& value);
    Fault divide(bool for_remainder);
    Fault join();
    void write_digits();
    bool jumps(Operation operation);
    bool is_found(std::size_t taken, bool found);

    const Program& m_program;
    Machine::Memory& m_memory;
    Value_source& m_source;
    std::size_t m_depth = 0;
};

Fault Run::from(Code code, Value& result) {
    const int* const instructions = m_program.m_list.data() + m_program.m_code;
    for (uint32_t i = code.begin; i < code.end;) {
        const int* const instruction = instructions + i * INSTRUCTION_SIZE;
        const auto operation = static_cast<Operation>(instruction[0]);
        if (operation >= Operation::JUMP) {
            i = jumps(operation) ? static_cast<uint32_t>(instruction[1]) : i + 1;
            continue;
        }
        const Fault fault = operate(operation, instruction[1]);
        if (fault != Fault::NONE) {
            return fault;
        }
        ++i;
    }
    result = top();
    return Fault::NONE;
}

// A table of the language's operations: long, and read line by line.
Fault Run::operate(Operation operation, int argument) {
    switch (operation) {
        case Operation::NUMBER:
            push(int64_t{argument});
            break;
        case Operation::WIDE_NUMBER:
            push(wide_number(argument));
            break;
        case Operation::TEXT:
            push(text(argument));
            break;
        case Operation::READ:
            return read(argument);
        case Operation::READ_OWN:
            return read_own();
        case Operation::HAS_OPTION:
            push(int64_t{m_source.has_option(static_cast<std::size_t>(argument))});
            break;
        case Operation::NEGATE:
            replace(0, difference(0, number()));
            break;
        case Operation::NOT:
            replace(0, number() == 0);
            break;
        case Operation::TRUTH:
            replace(0, number() != 0);
            break;
        case Operation::ABSOLUTE:
            replace(0, number() < 0 ? difference(0, number()) : number());
            break;
        case Operation::LENGTH:
            replace(0, static_cast<int64_t>(top().text.size()));
            break;
        case Operation::DIGITS:
            write_digits();
            break;
        case Operation::ADD:
            replace(1, sum(number(1), number()));
            break;
        case Operation::SUBTRACT:
            replace(1, difference(number(1), number()));
            break;
        case Operation::MULTIPLY:
            replace(1, product(number(1), number()));
            break;
        case Operation::DIVIDE:
            return divide(false);
        case Operation::REMAINDER:
            return divide(true);
        case Operation::MINIMUM:
            replace(1, std::min(number(1), number()));
            break;
        case Operation::MAXIMUM:
            replace(1, std::max(number(1), number()));
            break;
        case Operation::EQUAL:
            replace(1, number(1) == number());
            break;
        case Operation::NOT_EQUAL:
            replace(1, number(1) != number());
            break;
        case Operation::LESS:
            replace(1, number(1) < number());
            break;
        case Operation::LESS_EQUAL:
            replace(1, number(1) <= number());
            break;
        case Operation::GREATER:
            replace(1, number(1) > number());
            break;
        case Operation::GREATER_EQUAL:
            replace(1, number(1) >= number());
            break;
        case Operation::TEXT_EQUAL:
            replace(1, top(1).text == top().text);
            break;
        case Operation::TEXT_NOT_EQUAL:
            replace(1, top(1).text != top().text);
            break;
        case Operation::JOIN:
            return join();
        case Operation::BETWEEN:
            replace(2, is_between(number(2), number(1), number()));
            break;
        default:  // jumps are not operated, and a checked list has no others
            break;
    }
    return Fault::NONE;
}

Fault Run::read(int argument) {
    const auto parameter = static_cast<std::size_t>(argument);
    Value& value = m_memory.values[m_depth++];
    value = Value();
    if (!m_source.read(parameter, value)) {
        return Fault::UNREADABLE;
    }
    value.type = m_program.parameter_type(parameter);
    return checked(value);
}

Fault Run::read_own() {
    Value& value = m_memory.values[m_depth++];
    value = Value();
    if (!m_source.read_own(value)) {
        return Fault::UNREADABLE;
    }
    value.type = *m_program.own_type();
    return checked(value);
}

Fault Run::checked(const Value& value) {
    return value.text.size() > LONGEST_TEXT ? Fault::TEXT_TOO_LONG : Fault::NONE;
}

Fault Run::divide(bool for_remainder) {
    if (number() == 0) {
        return Fault::DIVISION_BY_ZERO;
    }
    replace(1, for_remainder ? remainder(number(1), number()) : quotient(number(1), number()));
    return Fault::NONE;
}

// Each place on the stack has a buffer for the text that is made there.
void Run::write_digits() {
    Text_buffer& buffer = m_memory.texts[m_depth - 1];
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), top().number);
    leave({buffer.data(), static_cast<std::size_t>(written.ptr - buffer.data())});
}

Fault Run::join() {
    const std::string_view right = top().text;
    Value& left = top(1);
    const std::size_t length = left.text.size() + right.size();
    if (length > LONGEST_TEXT) {
        return Fault::TEXT_TOO_LONG;
    }
    Text_buffer& buffer = m_memory.texts[m_depth - 2];
    if (left.text.data() != buffer.data()) {
        left.text.copy(buffer.data(), buffer.size());
    }
    right.copy(buffer.data() + left.text.size(), right.size());
    --m_depth;
    leave({buffer.data(), length});
    return Fault::NONE;
}

bool Run::jumps(Operation operation) {
    switch (operation) {
        case Operation::JUMP:
            return true;
        case Operation::JUMP_IF_ZERO:
            return m_memory.values[--m_depth].number == 0;
        case Operation::AND:
            if (number() == 0) {
                return true;
            }
            --m_depth;
            return false;
        case Operation::OR:
            if (number() != 0) {
                replace(0, 1);
                return true;
            }
            --m_depth;
            return false;
        case Operation::MEMBER:
            return is_found(1, number(1) == number());
        case Operation::MEMBER_TEXT:
            return is_found(1, top(1).text == top().text);
        case Operation::MEMBER_BETWEEN:
            return is_found(2, is_between(number(2), number(1), number()));
        default:  // NO_MEMBER
            replace(0, 0);
            return false;
    }
}

bool Run::is_found(std::size_t taken, bool found) {
    m_depth -= taken;
    if (found) {
        replace(0, 1);
    }
    return found;
}

Fault Machine::run(const Program& program, Code code, Value_source& source, Value& result) {
    Run run(program, *m_memory, source);
    return run.from(code, result);
}

}  // namespace frontpanel::binding_language
