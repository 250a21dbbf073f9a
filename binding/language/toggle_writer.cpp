#include "language/toggle_writer.h"

#include <optional>
#include <utility>
#include <vector>

#include "language/list_format.h"

namespace frontpanel::binding_language {
namespace {

constexpr const char* RESULT = "A";
constexpr int MOST_NAMES = 40;     // the evaluator has 100 for all texts of the process
constexpr int DEEPEST = 64;        // jumps inside each other
constexpr size_t LONGEST = 32768;  // bytes

// How tightly an evaluator's text binds, loosest first.
enum Level : uint8_t { EITHER, BOTH, EQUALITY, RELATION, SUM, PRODUCT, SIGN, PRIMARY };

struct Piece {
    std::string text;
    Level level = PRIMARY;
    std::string fault = {};  // what holds when this part has a fault; empty for never
    // While its members are compared: whether one of them was found.
    std::string found = {};
};

struct Too_large {};

struct Binary {
    const char* sign;
    Level level;
};

std::optional<Binary> binary_of(Operation operation) {
    switch (operation) {
        case Operation::ADD:
            return Binary{"+", SUM};
        case Operation::SUBTRACT:
            return Binary{"-", SUM};
        case Operation::MULTIPLY:
            return Binary{"*", PRODUCT};
        case Operation::EQUAL:
            return Binary{"==", EQUALITY};
        case Operation::NOT_EQUAL:
            return Binary{"!=", EQUALITY};
        case Operation::LESS:
            return Binary{"<", RELATION};
        case Operation::LESS_EQUAL:
            return Binary{"<=", RELATION};
        case Operation::GREATER:
            return Binary{">", RELATION};
        case Operation::GREATER_EQUAL:
            return Binary{">=", RELATION};
        default:
            return std::nullopt;
    }
}

std::string enclosed(const Piece& piece, Level least) {
    return piece.level < least ? "(" + piece.text + ")" : piece.text;
}

// Of a piece that is not needed any longer: a long chain grows in place.
std::string take_enclosed(Piece& piece, Level least) {
    return piece.level < least ? enclosed(piece, least) : std::move(piece.text);
}

std::string either(std::string left, const std::string& right) {
    left += left.empty() || right.empty() ? "" : "||";
    left += right;
    return left;
}

// Of a fault, which may be a chain of "||".
std::string only_if(const std::string& condition, const std::string& fault) {
    return fault.empty() ? "" : condition + "&&(" + fault + ")";
}

// Signs on both sides bind to the left.
Piece joined(Piece left, const Binary& with, const Piece& right) {
    std::string text = take_enclosed(left, with.level);
    text += with.sign;
    text += enclosed(right, static_cast<Level>(with.level + 1));
    return {std::move(text), with.level, either(std::move(left.fault), right.fault)};
}

bool is_number(const std::string& text) {
    return text.find_first_not_of("0123456789", text[0] == '-' ? 1 : 0) == std::string::npos;
}

class Writer {
public:
    Writer(const List_tables& tables, std::string_view source,
           const std::function<bool(std::string_view)>& has_option)
        : m_tables(tables), m_source(source), m_has_option(has_option) {}

    std::string write() {
        const Piece value = run(0, m_tables.instruction_count());
        std::string condition = value.text;
        if (!value.fault.empty()) {
            condition = "!(" + value.fault + ")&&" + enclosed(value, EQUALITY);
        }
        const std::string text = m_assignments + RESULT + "=" + condition;
        return text.size() > LONGEST ? "" : text;
    }

private:
    Operation operation_at(int instruction) const {
        return static_cast<Operation>(
            m_tables.code[static_cast<size_t>(instruction) * INSTRUCTION_SIZE]);
    }
    int argument_at(int instruction) const {
        return m_tables.code[static_cast<size_t>(instruction) * INSTRUCTION_SIZE + 1];
    }

    Piece pop() {
        Piece piece = std::move(m_stack.back());
        m_stack.pop_back();
        return piece;
    }

    // The text of a part that is needed more than once: a number, a parameter or a name of its own.
    std::string name_of(Piece& piece) {
        const bool is_read = piece.text[0] == '[' && piece.text.find(']') + 1 == piece.text.size();
        const bool is_named = piece.text.compare(0, 2, "A_") == 0 &&
                              piece.text.find_first_not_of("0123456789", 2) == std::string::npos;
        if (is_read || is_named || is_number(piece.text)) {
            return piece.text;
        }
        if (++m_names > MOST_NAMES || m_assignments.size() + piece.text.size() > LONGEST) {
            throw Too_large();
        }
        std::string name = RESULT + ("_" + std::to_string(m_names));
        m_assignments += name + "=" + piece.text + ";";
        piece.text = name;
        piece.level = PRIMARY;
        return name;
    }

    // What the code of one value yields.
    Piece run(int begin, int end) {
        if (++m_depth > DEEPEST) {
            throw Too_large();
        }
        for (int i = begin; i < end;) {
            i = step(i);
        }
        --m_depth;
        return pop();
    }

    // Returns the instruction to go on with.
    int step(int i) {
        const Operation operation = operation_at(i);
        const int argument = argument_at(i);
        if (const auto binary = binary_of(operation)) {
            const Piece right = pop();
            m_stack.back() = joined(std::move(m_stack.back()), *binary, right);
            check_size();
            return i + 1;
        }
        switch (operation) {
            case Operation::AND:
            case Operation::OR:
                logic(operation == Operation::AND, i + 1, argument);
                return argument;
            case Operation::JUMP_IF_ZERO: {
                // The branch ends with a jump behind the other one.
                const int behind = argument_at(argument - 1);
                choice(i + 1, argument, behind);
                return behind;
            }
            case Operation::MEMBER:
            case Operation::MEMBER_BETWEEN:
                member(operation == Operation::MEMBER_BETWEEN);
                return i + 1;
            case Operation::NO_MEMBER: {
                const Piece left = pop();
                push({left.found, EITHER, left.fault});
                return i + 1;
            }
            default:
                operate(operation, argument);
                check_size();
                return i + 1;
        }
    }

    void operate(Operation operation, int argument) {
        switch (operation) {
            case Operation::NUMBER:
                push_number(argument);
                break;
            case Operation::WIDE_NUMBER:
                push_number(wide_number(argument));
                break;
            case Operation::READ:
                push({address_of(m_tables.key(argument))});
                break;
            case Operation::HAS_OPTION:
                push_number(m_has_option(option(argument)) ? 1 : 0);
                break;
            case Operation::NEGATE:
                replace({"-" + enclosed(m_stack.back(), SIGN), SIGN, m_stack.back().fault});
                break;
            case Operation::NOT:
                replace(joined(std::move(m_stack.back()), {"==", EQUALITY}, {"0"}));
                break;
            case Operation::TRUTH:
                replace(joined(std::move(m_stack.back()), {"!=", EQUALITY}, {"0"}));
                break;
            case Operation::ABSOLUTE:
                replace({"fabs(" + m_stack.back().text + ")", PRIMARY, m_stack.back().fault});
                break;
            case Operation::MINIMUM:
                extreme("<");
                break;
            case Operation::MAXIMUM:
                extreme(">");
                break;
            case Operation::DIVIDE:
            case Operation::REMAINDER:
                divide(operation == Operation::REMAINDER);
                break;
            case Operation::BETWEEN: {
                const Piece other_end = pop();
                const Piece one_end = pop();
                replace(between(m_stack.back(), one_end, other_end));
                break;
            }
            default:  // texts and the entry's own value are refused before
                throw Too_large();
        }
    }

    // The evaluator evaluates both sides, which have no fault of their own in it.
    void logic(bool is_and, int begin, int end) {
        Piece left = pop();
        const Piece right = run(begin, end);
        std::string fault = std::move(left.fault);
        if (!right.fault.empty()) {
            const std::string name = name_of(left);
            fault = either(std::move(fault), only_if(name + (is_and ? "!=0" : "==0"), right.fault));
        }
        std::string text = take_enclosed(left, is_and ? BOTH : EITHER);
        text += is_and ? "&&" : "||";
        text += enclosed(right, is_and ? EQUALITY : BOTH);
        push({std::move(text), is_and ? BOTH : EITHER, std::move(fault)});
        check_size();
    }

    void choice(int begin, int otherwise, int behind) {
        Piece condition = pop();
        const Piece yes = run(begin, otherwise - 1);
        const Piece no = run(otherwise, behind);
        std::string fault = condition.fault;
        if (!yes.fault.empty() || !no.fault.empty()) {
            const std::string name = name_of(condition);
            fault = either(
                fault, either(only_if(name + "!=0", yes.fault), only_if(name + "==0", no.fault)));
        }
        push({"(" + condition.text + "?" + yes.text + ":" + no.text + ")", PRIMARY, fault});
        check_size();
    }

    // Members are tried until one fits: the faults of those behind it do not count.
    void member(bool is_between) {
        const Piece other_end = is_between ? pop() : Piece{};
        const Piece one_end = pop();
        Piece& left = m_stack.back();
        const Piece plain{name_of(left), PRIMARY};
        Piece is_member = is_between ? between({plain}, one_end, other_end)
                                     : joined(plain, {"==", EQUALITY}, one_end);
        std::string fault = is_member.fault;
        if (!fault.empty() && !left.found.empty()) {
            Piece found{left.found, EITHER};
            left.found = name_of(found);
            fault = only_if(left.found + "==0", fault);
        }
        left.fault = either(left.fault, fault);
        left.found = either(left.found, is_member.text);
        check_size();
    }

    // The signs of both differences differ, or one is 0, exactly when the number is between the ends.
    Piece between(Piece number, const Piece& one_end, const Piece& other_end) {
        const Piece plain{name_of(number), PRIMARY};
        const Binary minus{"-", SUM};
        const Piece below = joined(plain, minus, one_end);
        const Piece above = joined(plain, minus, other_end);
        Piece result = joined(joined(below, {"*", PRODUCT}, above), {"<=", RELATION}, {"0"});
        result.fault = either(number.fault, result.fault);
        return result;
    }

    void extreme(const char* sign) {
        Piece right = pop();
        Piece left = pop();
        const std::string one = name_of(left);
        const std::string other = name_of(right);
        push({"(" + one + sign + other + "?" + one + ":" + other + ")", PRIMARY,
              either(left.fault, right.fault)});
    }

    // A divisor of 0 is 1 instead, and a fault. What remains is taken off first, so that the quotient is exact.
    void divide(bool is_remainder) {
        Piece right = pop();
        Piece left = pop();
        std::string divisor = name_of(right);
        std::string fault = either(left.fault, right.fault);
        if (!is_number(divisor) || divisor == "0" || divisor == "-0") {
            fault = either(fault, divisor + "==0");
            Piece safe{"(" + divisor + "+(" + divisor + "==0))", PRIMARY};
            divisor = is_remainder ? safe.text : name_of(safe);
        }
        if (is_remainder) {
            push({"fmod(" + left.text + "," + divisor + ")", PRIMARY, fault});
            return;
        }
        const std::string dividend = name_of(left);
        push({"(" + dividend + "-fmod(" + dividend + "," + divisor + "))/" + divisor, PRODUCT,
              fault});
    }

    void push(Piece piece) { m_stack.push_back(std::move(piece)); }
    void replace(Piece piece) { m_stack.back() = std::move(piece); }
    void push_number(int64_t number) {
        push({std::to_string(number), number < 0 ? SIGN : PRIMARY});
    }
    void check_size() const {
        if (m_stack.back().text.size() + m_stack.back().fault.size() > LONGEST) {
            throw Too_large();
        }
    }

    int64_t wide_number(int number) const {
        const int* const halves =
            &m_tables.wide_numbers[static_cast<size_t>(number) * WIDE_NUMBER_SIZE];
        return static_cast<int64_t>(uint64_t{static_cast<uint32_t>(halves[1])} << 32 |
                                    static_cast<uint32_t>(halves[0]));
    }
    std::string_view option(int number) const {
        const int* const reference =
            &m_tables.options[static_cast<size_t>(number) * REFERENCE_SIZE];
        const auto begin = static_cast<size_t>(reference[0]);
        const auto size = static_cast<size_t>(reference[1]);
        return begin < m_source.size()
                   ? m_source.substr(begin, size)
                   : std::string_view(m_tables.unescaped).substr(begin - m_source.size(), size);
    }
    static std::string address_of(const var_index_s& key) {
        std::string address = std::to_string(key.var);
        for (unsigned int level = 0; level < key.index.m_index_num; ++level) {
            address += "." + std::to_string(key.index.m_index[level]);
        }
        return "[" + address + "]";
    }

    const List_tables& m_tables;
    std::string_view m_source;
    const std::function<bool(std::string_view)>& m_has_option;
    std::vector<Piece> m_stack;
    std::string m_assignments;
    int m_names = 0;
    int m_depth = 0;
};

}  // namespace

std::string toggle_text(const List_tables& tables, std::string_view source,
                        const std::function<bool(std::string_view)>& has_option) {
    try {
        return Writer(tables, source, has_option).write();
    } catch (const Too_large&) {
        return "";
    }
}

}  // namespace frontpanel::binding_language
