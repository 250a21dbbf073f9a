// How a compiled binding list is laid out. Private to compiler, program and machine.
//
// A list is a header and sections without gaps, in this order:
//     parameters     type, pid, levels, level 0, level 1, name (offset, length), uses
//     options        name (offset, length)
//     texts          constants of the code (offset, length)
//     wide numbers   constants that need 64 bits (low half, high half)
//     segments       the end of each expression in the code; it begins where the one before it ends
//     rules          kind, line, source (offset, length), detail, first segment, operands
//     code           operation, argument
//     pool           the bytes that names, texts and sources refer to, four to a number, the rest 0
#ifndef FRONTPANEL_BINDING_LANGUAGE_LIST_FORMAT_H
#define FRONTPANEL_BINDING_LANGUAGE_LIST_FORMAT_H

#include <cstddef>
#include <cstdint>

#include <frontpanel_data/entry.h>

namespace frontpanel::binding_language {

inline constexpr int LIST_MAGIC = 0x4c425046;  // "FPBL"
inline constexpr int LIST_VERSION = 1;

// The numbers of the header.
enum Header {
    HEADER_MAGIC,
    HEADER_VERSION,
    HEADER_LENGTH,    // of the list, in numbers
    HEADER_CHECKSUM,  // of all others
    HEADER_OWN_TYPE,  // 0: `value` is not used, else 1 + Value_type
    HEADER_PARAMETERS,
    HEADER_OPTIONS,
    HEADER_TEXTS,
    HEADER_WIDE_NUMBERS,
    HEADER_SEGMENTS,
    HEADER_RULES,
    HEADER_INSTRUCTIONS,
    HEADER_POOL_BYTES,
    HEADER_SIZE
};

enum Parameter_field {
    PARAMETER_TYPE,  // RETURN_TYPE
    PARAMETER_PID,
    PARAMETER_LEVELS,
    PARAMETER_LEVEL_0,
    PARAMETER_LEVEL_1,
    PARAMETER_NAME,
    PARAMETER_NAME_LENGTH,
    PARAMETER_USES,
    PARAMETER_SIZE
};
inline constexpr int PARAMETER_IS_READ = 1;
inline constexpr int PARAMETER_IS_WRITTEN = 2;

enum Rule_field {
    RULE_KIND,
    RULE_LINE,
    RULE_SOURCE,
    RULE_SOURCE_LENGTH,
    RULE_DETAIL,  // of SET the parameter, else the number of the chosen word, else 0
    RULE_FIRST_SEGMENT,
    RULE_OPERANDS,  // their segments come first, the condition's follows
    RULE_SIZE
};

inline constexpr std::size_t REFERENCE_SIZE = 2;  // offset and length in the pool
inline constexpr std::size_t WIDE_NUMBER_SIZE = 2;
inline constexpr std::size_t INSTRUCTION_SIZE = 2;
inline constexpr std::size_t BYTES_PER_NUMBER = 4;

// The most levels of a source's nesting, the most values that an expression holds at a time, and the most
// jumps that are open around an instruction.
inline constexpr std::size_t DEEPEST_NESTING = 64;
inline constexpr std::size_t DEEPEST_STACK = 64;
inline constexpr std::size_t MOST_OPEN_JUMPS = 128;

// What an instruction does to the values on the stack: "a b -- c" takes a and b (b on top) and leaves c.
// i: an integer; t: a text; x: either.
enum class Operation : int {
    NUMBER,          // -- i        the argument itself
    WIDE_NUMBER,     // -- i        number of a wide constant
    TEXT,            // -- t        number of a text
    READ,            // -- x        number of a parameter
    READ_OWN,        // -- x
    HAS_OPTION,      // -- i        number of an option
    NEGATE,          // i -- i
    NOT,             // i -- i
    TRUTH,           // i -- i      0 or 1
    ABSOLUTE,        // i -- i
    LENGTH,          // t -- i
    DIGITS,          // i -- t
    ADD,             // i i -- i
    SUBTRACT,        // i i -- i
    MULTIPLY,        // i i -- i
    DIVIDE,          // i i -- i
    REMAINDER,       // i i -- i
    MINIMUM,         // i i -- i
    MAXIMUM,         // i i -- i
    EQUAL,           // i i -- i
    NOT_EQUAL,       // i i -- i
    LESS,            // i i -- i
    LESS_EQUAL,      // i i -- i
    GREATER,         // i i -- i
    GREATER_EQUAL,   // i i -- i
    TEXT_EQUAL,      // t t -- i
    TEXT_NOT_EQUAL,  // t t -- i
    JOIN,            // t t -- t
    BETWEEN,         // i i i -- i   whether the first is between the others
    // Jumps; the argument is the instruction to go on with.
    JUMP,            // --
    JUMP_IF_ZERO,    // i --
    AND,             // i --         jumps with 0 when it is 0
    OR,              // i --         jumps with 1 when it is not 0
    MEMBER,          // i i -- i     drops the second; equal: jumps with 1 in place of the first
    MEMBER_TEXT,     // t t -- t     likewise
    MEMBER_BETWEEN,  // i i i -- i   likewise, when the first is between the others
    NO_MEMBER,       // x -- i       0
    COUNT
};

// Of a list of `length` numbers, HEADER_SIZE at least; the checksum itself counts as 0. A change of a single
// number always changes it. Four sums run side by side, since each step of one waits for the step before.
inline int list_checksum(const int* list, std::size_t length) {
    constexpr uint32_t FACTOR = 0x01000193U;
    const auto added = [](uint32_t sum, int number) {
        sum = (sum ^ static_cast<uint32_t>(number)) * FACTOR;
        return sum ^ sum >> 15;
    };
    static_assert(HEADER_CHECKSUM == 3, "the last of the first four");
    uint32_t sum0 = added(1, list[0]);
    uint32_t sum1 = added(2, list[1]);
    uint32_t sum2 = added(3, list[2]);
    uint32_t sum3 = added(4, 0);
    std::size_t i = 4;
    for (; i + 4 <= length; i += 4) {
        sum0 = added(sum0, list[i]);
        sum1 = added(sum1, list[i + 1]);
        sum2 = added(sum2, list[i + 2]);
        sum3 = added(sum3, list[i + 3]);
    }
    for (; i < length; ++i) {
        sum0 = added(sum0, list[i]);
    }
    return static_cast<int>((((sum0 * FACTOR ^ sum1) * FACTOR ^ sum2) * FACTOR ^ sum3) * FACTOR);
}

}  // namespace frontpanel::binding_language

#endif
