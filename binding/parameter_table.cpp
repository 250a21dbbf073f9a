#include <frontpanel_binding/parameter_table.h>

#include <algorithm>
#include <array>
#include <numeric>

namespace frontpanel {
namespace {

constexpr std::size_t FARTHEST = 2;  // letters by which a mistaken name may differ

// What the device takes for an address: levels that are not in use are 0.
uint64_t variable_of(const var_index_s& key) {
    const uint32_t levels = key.index.m_index_num;
    const uint64_t level0 = levels > 0 ? key.index.m_index[0] : 0;
    const uint64_t level1 = levels > 1 ? key.index.m_index[1] : 0;
    return uint64_t{key.var} << 32 | level1 << 16 | level0;
}

bool is_control(char byte) {
    return static_cast<unsigned char>(byte) < ' ' || byte == '\x7f';
}

// The letters to insert, drop or replace that make one text of the other; texts that are very long are told to
// be far apart.
std::size_t distance(std::string_view from, std::string_view to) {
    std::array<std::size_t, 65> row;
    if (to.size() >= row.size()) {
        return FARTHEST + 1;
    }
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row[to.size()];
}

}  // namespace

void Parameter_table::declare(const var_index_s& key) {
    m_types[variable_of(key)] = key.rt;
}

bool Parameter_table::declare(std::string_view name, const var_index_s& key) {
    const bool is_usable = !name.empty() && name.find_first_of("[]") == std::string_view::npos &&
                           std::none_of(name.begin(), name.end(), is_control) &&
                           !reads_as_address(name);
    const auto known = m_keys.find(name);
    const bool is_taken =
        known != m_keys.end() && (known->second.var != key.var || known->second.rt != key.rt ||
                                  known->second.index != key.index);
    if (!is_usable || is_taken) {
        return false;
    }
    declare(key);
    if (known == m_keys.end()) {
        m_keys.emplace(m_names.emplace_back(name), key);
    }
    return true;
}

const var_index_s* Parameter_table::find(std::string_view name) const {
    const auto known = m_keys.find(name);
    return known != m_keys.end() ? &known->second : nullptr;
}

RETURN_TYPE Parameter_table::type_of(const var_index_s& key) const {
    const auto known = m_types.find(variable_of(key));
    return known != m_types.end() ? known->second : INVALID_TYPE;
}

std::string_view Parameter_table::closest(std::string_view name) const {
    std::string_view best;
    std::size_t best_distance = FARTHEST + 1;
    for (const std::string& each : m_names) {
        const std::size_t longer = std::max(each.size(), name.size());
        if (longer - std::min(each.size(), name.size()) <= FARTHEST &&
            distance(each, name) < best_distance) {
            best = each;
            best_distance = distance(each, name);
        }
    }
    return best_distance < name.size() ? best : std::string_view();
}

bool Parameter_table::reads_as_address(std::string_view text) {
    const auto is_digit = [](char byte) { return byte >= '0' && byte <= '9'; };
    std::size_t length = 0;
    while (length < text.size() && (is_digit(text[length]) || text[length] == '.')) {
        ++length;
    }
    return length > 0 && is_digit(text[0]) && (length == text.size() || text[length] == '@');
}

}  // namespace frontpanel
