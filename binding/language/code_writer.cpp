#include "language/code_writer.h"

#include <limits>
#include <utility>

namespace frontpanel::binding_language {

void Code_writer::emit_number(uint64_t magnitude, bool is_negative) {
    constexpr auto GREATEST = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
    if (magnitude > GREATEST && !is_negative) {
        m_cursor.fail(m_cursor.place(),
                      m_cursor.token().description() +
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

void Code_writer::land(int jump) {
    close_jump();
    const std::size_t at = static_cast<std::size_t>(jump) * INSTRUCTION_SIZE;
    m_tables.code[at + 1] = m_tables.instruction_count();
}

void Code_writer::land_all(int last_jump) {
    while (last_jump != 0) {
        const std::size_t at = static_cast<std::size_t>(last_jump) * INSTRUCTION_SIZE;
        last_jump = std::exchange(m_tables.code[at + 1], m_tables.instruction_count());
    }
}

const int* Code_writer::only_instruction() const {
    const std::size_t count = m_tables.segments.size();
    const int begin = count > 1 ? m_tables.segments[count - 2] : 0;
    return m_tables.segments.back() == begin + 1
               ? &m_tables.code[m_tables.code.size() - INSTRUCTION_SIZE]
               : nullptr;
}

std::optional<int64_t> Code_writer::constant_of_segment() const {
    const int* const instruction = only_instruction();
    if (instruction == nullptr) {
        return std::nullopt;
    }
    switch (static_cast<Operation>(instruction[0])) {
        case Operation::NUMBER:
            return instruction[1];
        case Operation::WIDE_NUMBER: {
            const std::size_t at = static_cast<std::size_t>(instruction[1]) * WIDE_NUMBER_SIZE;
            const auto low = static_cast<uint32_t>(m_tables.wide_numbers[at]);
            const auto high = static_cast<uint32_t>(m_tables.wide_numbers[at + 1]);
            return static_cast<int64_t>(uint64_t{high} << 32 | low);
        }
        default:
            return std::nullopt;
    }
}

std::optional<std::size_t> Code_writer::text_length_of_segment() const {
    const int* const instruction = only_instruction();
    if (instruction == nullptr || static_cast<Operation>(instruction[0]) != Operation::TEXT) {
        return std::nullopt;
    }
    const std::size_t at = static_cast<std::size_t>(instruction[1]) * REFERENCE_SIZE;
    return static_cast<std::size_t>(m_tables.texts[at + 1]);
}

void Code_writer::drop_rules() {
    m_tables.clear_rules();
    m_open_jumps = 0;
}

}  // namespace frontpanel::binding_language
