#include <frontpanel_binding/parameter_table.h>

#include <algorithm>
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
    m_variables.reserve(m_variables.size() + count);
    m_named.reserve(m_named.size() + count);
}

Parameter& Parameter_table::variable(const Parameter& parameter) {
    const auto [known, is_new] =
        m_variables.try_emplace(variable_of(parameter.pid, parameter.index));
    if (is_new) {
        known->second = &m_parameters.emplace_back();
    }
    return *known->second;
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
        m_named.emplace(m_names.emplace_back(name), &declared);
    }
    return true;
}

const Parameter* Parameter_table::find(std::uint32_t pid, const Index_t& index) const {
    const auto known = m_variables.find(variable_of(pid, index));
    return known != m_variables.end() ? known->second : nullptr;
}

const Parameter* Parameter_table::find(std::string_view name) const {
    const auto known = m_named.find(name);
    return known != m_named.end() ? known->second : nullptr;
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
    for (const std::string& each : m_names) {
        if (!offer_within_bounds(nearest, each, m_searched)) {
            break;
        }
    }
    return nearest.found();
}

}  // namespace frontpanel
