// Writes the code of expressions, segment by segment.
#ifndef FRONTPANEL_BINDING_LANGUAGE_CODE_WRITER_H
#define FRONTPANEL_BINDING_LANGUAGE_CODE_WRITER_H

#include <cstddef>
#include <cstdint>
#include <optional>

#include "language/list_format.h"
#include "language/list_tables.h"
#include "language/token_cursor.h"

namespace frontpanel::binding_language {

// What does not fit into a list is an error at the token at hand.
class Code_writer {
public:
    // Both outlive the writer.
    Code_writer(List_tables& tables, const Token_cursor& cursor)
        : m_tables(tables), m_cursor(cursor) {}

    // Begins a segment, which is one expression or nothing.
    void begin_segment() { m_depth = 0; }
    void end_segment() { m_tables.segments.push_back(m_tables.instruction_count()); }

    // `growth` is what the operation adds to the stack. Returns the number of the instruction.
    int emit(Operation operation, int argument, int growth) {
        if (growth > 0 && ++m_depth > DEEPEST_STACK) {
            m_cursor.fail_too_deep();
        } else if (growth < 0) {
            m_depth -= static_cast<std::size_t>(-growth);
        }
        const int number = m_tables.instruction_count();
        static_assert(INSTRUCTION_SIZE == 2);
        m_tables.code.push_back(static_cast<int>(operation));
        m_tables.code.push_back(argument);
        return number;
    }
    // An operation whose result can change.
    void emit_read(Operation operation, int argument) {
        emit(operation, argument, 1);
        ++m_reads;
    }
    void emit_number(uint64_t magnitude, bool is_negative);

    // Opens a jump, which `land` closes.
    int emit_jump(Operation operation, int argument, int growth) {
        open_jump();
        return emit(operation, argument, growth);
    }
    // The jump continues with the next instruction.
    void land(int jump);
    // For several jumps to one place, which count as one.
    void open_jump() {
        open_outer_jump();
        if (m_open_jumps > MOST_OPEN_JUMPS) {
            m_cursor.fail_too_deep();
        }
    }
    // Likewise, around a jump that is about to be written: the limit is checked there.
    void open_outer_jump() { ++m_open_jumps; }
    void close_jump() { --m_open_jumps; }
    // The same as `land` for jumps of which each holds the number of the one before, until 0: a jump is never
    // the first instruction. They are closed by `close_jump`.
    void land_all(int last_jump);
    // Counts the operations so far whose results can change.
    std::size_t reads() const { return m_reads; }

    // The value of the last segment when it is a plain number.
    std::optional<int64_t> constant_of_segment() const;
    // The bytes of the last segment's value when it is a text without placeholders.
    std::optional<std::size_t> text_length_of_segment() const;

    // Forgets the rules written so far, for a text that has an error.
    void drop_rules();

private:
    // The single operation of the last segment; null when it has several.
    const int* only_instruction() const;

    List_tables& m_tables;
    const Token_cursor& m_cursor;
    std::size_t m_reads = 0;
    std::size_t m_open_jumps = 0;
    std::size_t m_depth = 0;  // of the stack, after the code so far
};

}  // namespace frontpanel::binding_language

#endif
