#include <frontpanel_binding/parameter_table.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <optional>

namespace frontpanel {
namespace {

constexpr std::size_t FARTHEST = 2;  // letters by which a mistaken name may differ
// Names and pairs of letters that all searches for a mistaken name look at: some tenths of a second.
constexpr std::size_t MOST_SEARCHED = 20'000'000;

// Levels that are not in use count as 0.
std::uint64_t variable_of(std::uint32_t pid, const Index_t& index) {
    const std::uint64_t level0 = index.m_index_num > 0 ? index.m_index[0] : 0;
    const std::uint64_t level1 = index.m_index_num > 1 ? index.m_index[1] : 0;
    return std::uint64_t{pid} << 32 | level1 << 16 | level0;
}

bool is_control(char byte) {
    return static_cast<unsigned char>(byte) < ' ' || byte == '\x7f';
}

bool can_stand_in_brackets(std::string_view name) {
    return !name.empty() && name.find_first_of("[]") == std::string_view::npos &&
           std::none_of(name.begin(), name.end(), is_control) && !is_like_address(name);
}

// The letters to insert, drop or replace that make one text of the other; beyond FARTHEST any number that is, too.
// A very long text counts as far away. `searched` grows by the pairs of letters that were compared.
std::size_t distance(std::string_view from, std::string_view to, std::size_t& searched) {
    std::array<std::size_t, 65> row;
    if (to.size() >= row.size()) {
        return FARTHEST + 1;
    }
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 0; i < from.size(); ++i) {
        // Pairs of letters that lie farther from each other count as unlike.
        const std::size_t first = i > FARTHEST ? i - FARTHEST : 0;
        const std::size_t end = std::min(to.size(), i + FARTHEST + 1);
        std::size_t diagonal = row[first];
        row[first] = first == 0 ? i + 1 : FARTHEST + 1;
        std::size_t least = row[first];
        for (std::size_t j = first; j < end; ++j) {
            const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
            least = std::min(least, row[j + 1]);
        }
        searched += end - std::min(first, end);
        if (least > FARTHEST) {
            return least;
        }
    }
    return row[to.size()];
}

}  // namespace

void Parameter_table::declare(const Parameter& parameter) {
    const auto [known, is_new] =
        m_variables.try_emplace(variable_of(parameter.pid, parameter.index));
    if (is_new) {
        known->second = &m_parameters.emplace_back();
    }
    *known->second = parameter;
}

bool Parameter_table::declare(std::string_view name, const Parameter& parameter) {
    const Parameter* const known = find(name);
    const bool is_taken =
        known != nullptr && (known->pid != parameter.pid || known->type != parameter.type ||
                             known->index != parameter.index);
    if (!can_stand_in_brackets(name) || is_taken) {
        return false;
    }
    declare(parameter);
    if (known == nullptr) {
        m_named.emplace(m_names.emplace_back(name), find(parameter.pid, parameter.index));
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
    std::string_view best;
    std::size_t best_distance = FARTHEST + 1;
    for (const std::string& each : m_names) {
        if (m_searched > MOST_SEARCHED) {
            return {};
        }
        ++m_searched;
        const std::size_t longer = std::max(each.size(), name.size());
        if (longer - std::min(each.size(), name.size()) > FARTHEST) {
            continue;
        }
        const std::size_t found = distance(each, name, m_searched);
        if (found < best_distance) {
            best = each;
            best_distance = found;
        }
    }
    return best_distance < name.size() ? best : std::string_view();
}

}  // namespace frontpanel
