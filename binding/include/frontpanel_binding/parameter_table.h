// The parameters that the binding rules of a menu may name, and their types.
//
// A menu's loader declares them before it compiles rules; `[gain]` then stands for the address that was
// declared under that name. Menu thread only.
#ifndef FRONTPANEL_BINDING_PARAMETER_TABLE_H
#define FRONTPANEL_BINDING_PARAMETER_TABLE_H

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

#include <frontpanel_data/data_interface.h>

namespace frontpanel {

class Parameter_table {
public:
    // Declares the type of the device variable of `key`, which is INTEGER or STRING; its levels in use are 0 to
    // 2. `key` with fewer levels, the others being 0, is the same variable. A second declaration replaces the
    // first.
    void declare(const var_index_s& key);
    // Declares the variable and its name. False, and nothing is declared, when the name is taken by another key,
    // or cannot stand in brackets: it is empty, holds "[", "]" or a control character, or reads as an address.
    bool declare(std::string_view name, const var_index_s& key);

    // Null when the name is not declared. Valid until the name is declared again.
    const var_index_s* find(std::string_view name) const;
    // INVALID_TYPE when the variable is not declared.
    RETURN_TYPE type_of(const var_index_s& key) const;
    // The declared name that differs from `name` in the fewest letters, two at most; empty when there is none.
    std::string_view closest(std::string_view name) const;

    // Whether a text in brackets is taken for an address: digits and dots, and whatever follows an "@".
    static bool reads_as_address(std::string_view text);

private:
    std::deque<std::string> m_names;  // what the keys of the map refer to
    std::unordered_map<std::string_view, var_index_s> m_keys;
    std::unordered_map<uint64_t, RETURN_TYPE> m_types;
};

}  // namespace frontpanel

#endif
