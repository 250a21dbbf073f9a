#include <frontpanel_binding/parameter_table.h>

#include <algorithm>
#include <functional>
#include <optional>

#include <frontpanel_base/nearest_name.h>

namespace frontpanel {
namespace {

// Levels that are not in use count as 0.
std::uint64_t variable_of(std::uint32_t pid, const Index_t& index) {
    const std::uint64_t level0 = index.m_index_num > 0 ? index.m_index[0] : 0;
    const std::uint64_t level1 = index.m_index_num > 1 ? index.m_index[1] : 0;
    return std::uint64_t{pid} << 32 | level1 << 16 | level0;
}

bool is_control(char byte) {
    return static_cast<unsigned char>(byte) < ' ' || byte == '\x7f';
}

bool is_bracket(char byte) {
    return byte == '[' || byte == ']';
}

bool can_stand_in_brackets(std::string_view name) {
    return !name.empty() && std::none_of(name.begin(), name.end(), is_bracket) &&
           std::none_of(name.begin(), name.end(), is_control) && !is_like_address(name);
}

}  // namespace

void Parameter_table::reserve(std::size_t count) {
    m_parameter_index.reserve(m_parameters.size() + count,
                              [this](std::uint32_t number) { return hash_of_parameter(number); });
    m_name_index.reserve(m_names.size() + count,
                         [this](std::uint32_t number) { return hash_of_name(number); });
}

std::uint64_t Parameter_table::hash_of_parameter(std::uint32_t number) const {
    return variable_of(m_parameters[number].pid, m_parameters[number].index);
}

std::uint64_t Parameter_table::hash_of_name(std::uint32_t number) const {
    return std::hash<std::string_view>()(m_names[number].name);
}

std::uint32_t Parameter_table::number_of(std::uint32_t pid, const Index_t& index) const {
    const std::uint64_t variable = variable_of(pid, index);
    return m_parameter_index.find(
        variable, [&](std::uint32_t number) { return hash_of_parameter(number) == variable; });
}

std::uint32_t Parameter_table::number_of(std::string_view name) const {
    return m_name_index.find(std::hash<std::string_view>()(name),
                             [&](std::uint32_t number) { return m_names[number].name == name; });
}

Parameter& Parameter_table::variable(const Parameter& parameter) {
    const std::uint32_t known = number_of(parameter.pid, parameter.index);
    if (known != Hash_index::NONE) {
        return m_parameters[known];
    }
    const auto hash_of = [this](std::uint32_t number) { return hash_of_parameter(number); };
    m_parameter_index.reserve(m_parameters.size() + 1,
                              hash_of);  // what fails for lack of memory adds nothing
    m_parameters.push_back(parameter);
    m_parameter_index.add(hash_of);
    return m_parameters.back();
}

void Parameter_table::declare(const Parameter& parameter) {
    variable(parameter) = parameter;
}

bool Parameter_table::declare(std::string_view name, const Parameter& parameter) {
    const Parameter* const known = find(name);
    const bool is_taken =
        known != nullptr && (known->pid != parameter.pid || known->type != parameter.type ||
                             known->index != parameter.index);
    if (!can_stand_in_brackets(name) || is_taken) {
        return false;
    }
    Parameter& declared = variable(parameter);
    declared = parameter;
    if (known == nullptr) {
        const auto hash_of = [this](std::uint32_t number) { return hash_of_name(number); };
        m_name_index.reserve(m_names.size() + 1, hash_of);
        m_names.push_back({std::string(name), &declared});
        m_name_index.add(hash_of);
    }
    return true;
}

const Parameter* Parameter_table::find(std::uint32_t pid, const Index_t& index) const {
    const std::uint32_t known = number_of(pid, index);
    return known != Hash_index::NONE ? &m_parameters[known] : nullptr;
}

const Parameter* Parameter_table::find(std::string_view name) const {
    const std::uint32_t known = number_of(name);
    return known != Hash_index::NONE ? m_names[known].parameter : nullptr;
}

const Parameter* Parameter_table::find_reference(std::string_view text) const {
    if (!is_like_address(text)) {
        return find(text);
    }
    const std::optional<Parameter_address> address = parse_address(text);
    return address && address->type == INVALID_TYPE ? find(address->pid, address->index) : nullptr;
}

RETURN_TYPE Parameter_table::type_of(const var_index_s& key) const {
    const Parameter* const known = find(key.var, key.index);
    return known != nullptr ? known->type : INVALID_TYPE;
}

std::string_view Parameter_table::closest(std::string_view name) const {
    Nearest_name nearest(name);
    for (const Named& each : m_names) {
        if (!offer_within_bounds(nearest, each.name, m_searched)) {
            break;
        }
    }
    return nearest.found();
}

}  // namespace frontpanel
