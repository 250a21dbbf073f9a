#include "language/parameter_references.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "language/list_format.h"
#include "language/program.h"

namespace frontpanel::binding_language {

namespace {

constexpr int MOST_PARAMETERS = 1024;
constexpr int TRIED_ROWS = 8;

}  // namespace

int Parameter_references::number() {
    const std::string_view token = m_cursor.token().source;
    const std::string_view inside = token.substr(1, token.size() - 2);
    if (const std::optional<int> known = known_row(inside)) {
        return *known;
    }
    if (is_like_address(inside)) {
        return row(address(inside), inside);
    }
    const Parameter* const declared = m_declared.find(inside);
    if (declared == nullptr) {
        fail_unknown(inside);
    }
    return row(declared->key(), inside);
}

// Rules come back to the same few parameters, so the names so far are tried before the table.
std::optional<int> Parameter_references::known_row(std::string_view name) const {
    const BindingListT& rows = m_tables.parameters;
    const auto tried = static_cast<std::size_t>(TRIED_ROWS) * PARAMETER_SIZE;
    for (std::size_t at = 0; at < std::min(rows.size(), tried); at += PARAMETER_SIZE) {
        const std::string_view known =
            m_cursor.source().substr(static_cast<std::size_t>(rows[at + PARAMETER_NAME]),
                                     static_cast<std::size_t>(rows[at + PARAMETER_NAME_LENGTH]));
        if (known == name) {
            return static_cast<int>(at / PARAMETER_SIZE);
        }
    }
    return std::nullopt;
}

void Parameter_references::fail_unknown(std::string_view name) const {
    const std::string_view closest = m_declared.closest(name);
    Compile_error error =
        m_cursor.error(m_cursor.place(), "unknown parameter " + m_cursor.token().description());
    if (!closest.empty()) {
        error.message += "; did you mean [" + std::string(closest) + "]?";
    }
    error.unknown_name = name;
    throw error;
}

var_index_s Parameter_references::address(std::string_view text) const {
    Address_error error;
    const std::optional<Parameter_address> address = parse_address(text, &error);
    if (!address) {
        m_cursor.fail(text.data() + error.offset, error.message);
    }
    var_index_s key{INTEGER, address->pid, address->index};
    const RETURN_TYPE declared = m_declared.type_of(key);
    if (address->type != INVALID_TYPE) {
        key.rt = address->type;
    } else if (declared != INVALID_TYPE) {
        key.rt = declared;
    }
    if (declared != INVALID_TYPE && declared != key.rt) {
        m_cursor.fail(m_cursor.place(), "parameter " + m_cursor.token().description() +
                                            " is declared as " + name_of(value_type(declared)));
    }
    return key;
}

int Parameter_references::row(const var_index_s& key, std::string_view name) {
    const int address[] = {key.rt, static_cast<int>(key.var),
                           static_cast<int>(key.index.m_index_num), key.index.m_index[0],
                           key.index.m_index[1]};
    const uint64_t variable =
        uint64_t{key.var} << 32 | uint64_t{key.index.m_index[0]} << 16 | key.index.m_index[1];
    if (const std::optional<int> known = known_row(address, variable)) {
        return *known;
    }
    BindingListT& rows = m_tables.parameters;
    const int count = static_cast<int>(rows.size() / PARAMETER_SIZE);
    if (count == MOST_PARAMETERS) {
        m_cursor.fail(m_cursor.place(),
                      "more than " + std::to_string(MOST_PARAMETERS) + " parameters");
    }
    rows.insert(rows.end(), std::begin(address), std::end(address));
    rows.insert(rows.end(),
                {static_cast<int>(m_cursor.offset(name.data())), static_cast<int>(name.size()), 0});
    if (count >= TRIED_ROWS) {
        m_tables.later_rows.emplace(variable, count);
    }
    return count;
}

// `address` is the beginning of a row.
std::optional<int> Parameter_references::known_row(const int* address, uint64_t variable) const {
    const auto is_at = [&](int row) {
        return std::equal(address, address + PARAMETER_NAME,
                          &m_tables.parameters[static_cast<std::size_t>(row) * PARAMETER_SIZE]);
    };
    const int count = static_cast<int>(m_tables.parameters.size() / PARAMETER_SIZE);
    for (int row = 0; row < std::min(count, TRIED_ROWS); ++row) {
        if (is_at(row)) {
            return row;
        }
    }
    const auto [first, last] = m_tables.later_rows.equal_range(variable);
    const auto known =
        std::find_if(first, last, [&](const auto& numbered) { return is_at(numbered.second); });
    return known != last ? std::optional<int>(known->second) : std::nullopt;
}

}  // namespace frontpanel::binding_language
