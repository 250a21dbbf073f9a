#include "language/program.h"

#include <algorithm>
#include <utility>

#include "language/list_checker.h"
#include "language/list_format.h"

namespace frontpanel::binding_language {

namespace {

std::size_t index_of(int number) {
    return static_cast<std::size_t>(number);
}

}  // namespace

std::optional<Program> Program::decode(BindingListT list, std::string& why) {
    List_sections sections{};
    if (!check_list(list, sections, why)) {
        return std::nullopt;
    }
    Program program(std::move(list));
    program.m_rule_count = static_cast<uint32_t>(program.m_list[HEADER_RULES]);
    program.m_parameter_count = static_cast<uint32_t>(program.m_list[HEADER_PARAMETERS]);
    program.m_option_count = static_cast<uint32_t>(program.m_list[HEADER_OPTIONS]);
    program.m_parameters = sections.parameters;
    program.m_options = sections.options;
    program.m_texts = sections.texts;
    program.m_wide_numbers = sections.wide_numbers;
    program.m_segments = sections.segments;
    program.m_rules = sections.rules;
    program.m_code = sections.code;
    program.m_pool = sections.pool;
    return program;
}

Rule Program::rule(std::size_t number) const {
    const int* const fields = &m_list[m_rules + number * RULE_SIZE];
    Rule rule{};
    rule.kind = static_cast<Suggestion_kind>(fields[RULE_KIND]);
    rule.source = pooled(m_rules + number * RULE_SIZE + RULE_SOURCE);
    rule.line = fields[RULE_LINE];
    rule.number = number;
    rule.operand_count = index_of(fields[RULE_OPERANDS]);
    rule.first_segment = static_cast<uint32_t>(fields[RULE_FIRST_SEGMENT]);
    rule.condition = segment(rule.first_segment + rule.operand_count);
    rule.detail = fields[RULE_DETAIL];
    return rule;
}

Suggestion_kind Program::kind_of_rule(std::size_t number) const {
    return static_cast<Suggestion_kind>(m_list[m_rules + number * RULE_SIZE + RULE_KIND]);
}

Code Program::operand(const Rule& rule, std::size_t number) const {
    return segment(rule.first_segment + number);
}

Code Program::segment(std::size_t number) const {
    const std::size_t at = m_segments + number;
    return {number == 0 ? 0 : static_cast<uint32_t>(m_list[at - 1]),
            static_cast<uint32_t>(m_list[at])};
}

Code Program::code_of(const Rule& rule) const {
    return {segment(rule.first_segment).begin, rule.condition.end};
}

Program_parameter Program::parameter(std::size_t number) const {
    const std::size_t at = m_parameters + number * PARAMETER_SIZE;
    const int* const fields = &m_list[at];
    Program_parameter parameter{};
    parameter.key.rt = static_cast<RETURN_TYPE>(fields[PARAMETER_TYPE]);
    parameter.key.var = static_cast<uint32_t>(fields[PARAMETER_PID]);
    parameter.key.index.m_index_num = static_cast<uint32_t>(fields[PARAMETER_LEVELS]);
    parameter.key.index.m_index[0] = static_cast<uint16_t>(fields[PARAMETER_LEVEL_0]);
    parameter.key.index.m_index[1] = static_cast<uint16_t>(fields[PARAMETER_LEVEL_1]);
    parameter.name = pooled(at + PARAMETER_NAME);
    parameter.is_read = (fields[PARAMETER_USES] & PARAMETER_IS_READ) != 0;
    parameter.is_written = (fields[PARAMETER_USES] & PARAMETER_IS_WRITTEN) != 0;
    return parameter;
}

Value_type Program::parameter_type(std::size_t number) const {
    const int type = m_list[m_parameters + number * PARAMETER_SIZE + PARAMETER_TYPE];
    return value_type(static_cast<RETURN_TYPE>(type));
}

void Program::append_reads(const Rule& rule, std::vector<std::size_t>& parameters) const {
    const auto first = static_cast<std::ptrdiff_t>(parameters.size());
    const Code code = code_of(rule);
    for (uint32_t i = code.begin; i < code.end; ++i) {
        const int* const instruction = &m_list[m_code + i * INSTRUCTION_SIZE];
        if (instruction[0] == static_cast<int>(Operation::READ)) {
            const std::size_t parameter = index_of(instruction[1]);
            if (std::find(parameters.begin() + first, parameters.end(), parameter) ==
                parameters.end()) {
                parameters.push_back(parameter);
            }
        }
    }
}

bool Program::reads_own_value(const Rule& rule) const {
    const Code code = code_of(rule);
    for (uint32_t i = code.begin; i < code.end; ++i) {
        if (m_list[m_code + i * INSTRUCTION_SIZE] == static_cast<int>(Operation::READ_OWN)) {
            return true;
        }
    }
    return false;
}

std::string_view Program::option_name(std::size_t number) const {
    return pooled(m_options + number * REFERENCE_SIZE);
}

std::optional<Value_type> Program::own_type() const {
    const int type = m_list[HEADER_OWN_TYPE];
    return type == 0 ? std::nullopt : std::optional<Value_type>(static_cast<Value_type>(type - 1));
}

// The numbers hold the pool's bytes in memory order.
std::string_view Program::pooled(std::size_t reference) const {
    const char* const pool = reinterpret_cast<const char*>(m_list.data() + m_pool);
    return {pool + m_list[reference], index_of(m_list[reference + 1])};
}

}  // namespace frontpanel::binding_language
