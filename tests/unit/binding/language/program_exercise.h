// Runs all of a program, whatever it is: what a list that was accepted may do to the engine.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_BINDING_LANGUAGE_PROGRAM_EXERCISE_H
#define FRONTPANEL_DATA_TESTS_UNIT_BINDING_LANGUAGE_PROGRAM_EXERCISE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "language/list_format.h"
#include "language/machine.h"
#include "language/program.h"

namespace support {

using namespace frontpanel;

inline void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

// Answers every question, each time with another value.
class Any_values : public binding_language::Value_source {
public:
    bool read(std::size_t parameter, binding_language::Value& value) override {
        require(parameter < parameters);
        return answer(value);
    }
    bool read_own(binding_language::Value& value) override { return answer(value); }
    bool has_option(std::size_t option) override {
        require(option < options);
        return (++m_turn & 1) != 0;
    }

    std::size_t parameters = 0;
    std::size_t options = 0;

private:
    bool answer(binding_language::Value& value) {
        static const std::string TEXT(300, 't');
        static constexpr int64_t NUMBERS[] = {0, 1, -1, INT64_MAX, INT64_MIN, 5, 1, 0};
        static constexpr std::size_t LENGTHS[] = {0, 1, 5, 200, 256, 3, 0, 1, 257};
        ++m_turn;
        value.number = NUMBERS[m_turn % std::size(NUMBERS)];
        value.text = std::string_view(TEXT).substr(0, LENGTHS[m_turn % std::size(LENGTHS)]);
        return m_turn % 29 != 0;
    }

    std::size_t m_turn = 0;
};

// The bytes of a text are all there.
inline std::size_t touch(std::string_view text) {
    std::size_t sum = 0;
    for (const char byte : text) {
        sum += static_cast<unsigned char>(byte);
    }
    return sum;
}

inline void exercise(const binding_language::Program& program, binding_language::Machine& machine) {
    using namespace frontpanel::binding_language;
    Any_values values;
    values.parameters = program.parameter_count();
    values.options = program.option_count();
    std::size_t sum = 2;
    for (std::size_t i = 0; i < program.parameter_count(); ++i) {
        const Program_parameter parameter = program.parameter(i);
        sum += touch(parameter.name);
        require(parameter.key.index.m_index_num <= 2);
        require(parameter.key.rt == INTEGER || parameter.key.rt == STRING);
    }
    for (std::size_t i = 0; i < program.option_count(); ++i) {
        sum += touch(program.option_name(i));
    }
    std::vector<std::size_t> reads;
    for (std::size_t i = 0; i < program.rule_count(); ++i) {
        const Rule rule = program.rule(i);
        sum += touch(rule.source);
        program.append_reads(rule, reads);
        program.reads_own_value(rule);
        require(rule.kind != SUGGESTION_SET || rule.target() < program.parameter_count());
        for (std::size_t part = 0; part <= rule.operand_count; ++part) {
            const bool is_condition = part == rule.operand_count;
            const Code code = is_condition ? rule.condition : program.operand(rule, part);
            if (code.empty()) {
                continue;
            }
            for (int turn = 0; turn < 3; ++turn) {
                Value value;
                if (machine.run(program, code, values, value) == Fault::NONE) {
                    const bool is_text =
                        !is_condition &&
                        (rule.kind == SUGGESTION_WARNING ||
                         (rule.kind == SUGGESTION_SET &&
                          program.parameter_type(rule.target()) == Value_type::TEXT));
                    require((value.type == Value_type::TEXT) == is_text);
                    require(!is_text || value.text.size() <= LONGEST_TEXT);
                    sum += is_text ? touch(value.text) : 1;
                }
            }
        }
    }
    for (const std::size_t parameter : reads) {
        require(program.parameter(parameter).is_read);
    }
    require(sum != 1);  // so that no compiler leaves the reading out
}

// Makes the length and the checksum of a list what they should be.
inline void repair(BindingListT& list) {
    using namespace frontpanel::binding_language;
    if (list.size() >= HEADER_SIZE) {
        list[HEADER_MAGIC] = LIST_MAGIC;
        list[HEADER_VERSION] = LIST_VERSION;
        list[HEADER_LENGTH] = static_cast<int>(list.size());
        list[HEADER_CHECKSUM] = list_checksum(list.data(), list.size());
    }
}

}  // namespace support

#endif
