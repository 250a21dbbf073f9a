// The parameters of the device that a menu declares: names, types, bounds and text lengths.
//
// One table serves a menu's loader and its rules: declare the parameters, then compile rules that name them.
// Menu thread only.
#ifndef FRONTPANEL_BINDING_PARAMETER_TABLE_H
#define FRONTPANEL_BINDING_PARAMETER_TABLE_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <string>
#include <string_view>

#include <frontpanel_base/hash_index.h>
#include <frontpanel_data/data_interface.h>

#include <frontpanel_binding/parameter_address.h>

namespace frontpanel {

struct Parameter {
    RETURN_TYPE type = INTEGER;  // or STRING
    std::uint32_t pid = 0;
    Index_t index{};                                              // two levels at most
    std::int32_t min = std::numeric_limits<std::int32_t>::min();  // of a number
    std::int32_t max = std::numeric_limits<std::int32_t>::max();  // of a number
    std::size_t length = MAX_STRING_LENGTH;                       // of a text: bytes at most

    var_index_s key() const { return {type, pid, index}; }
};

class Parameter_table {
public:
    // Declares a parameter. It replaces an earlier declaration of the same device variable, whose names stay:
    // an index with fewer levels, the others being 0, is the same variable.
    void declare(const Parameter& parameter);
    // Declares a parameter and a name for it; a parameter may have several. Returns false, and declares
    // nothing, when another key has the name, or when it cannot be written in brackets: it is empty, holds "[", "]"
    // or a control character, or is like an address.
    bool declare(std::string_view name, const Parameter& parameter);

    // Reserves memory for this many further declarations.
    void reserve(std::size_t count);

    // Each returns null for a parameter that is not declared. The pointers are valid as long as the table; a
    // new declaration changes what they point to.
    const Parameter* find(std::uint32_t pid, const Index_t& index) const;
    const Parameter* find(std::string_view name) const;
    // Finds the parameter in the brackets of a rule or a toggle: a name or an address. An address with "@i" or
    // "@s" names no declaration.
    const Parameter* find_reference(std::string_view text) const;

    // INVALID_TYPE when the variable is not declared.
    RETURN_TYPE type_of(const var_index_s& key) const;
    // The declared name that is nearest to `name`, as `Nearest_name` finds it, for messages; empty when there is none.
    // After thousands of mistakes in a large table it is always empty, so that a menu full of mistakes is rejected
    // quickly.
    std::string_view closest(std::string_view name) const;

private:
    // The parameter of the same device variable; a new one unless it is declared.
    Parameter& variable(const Parameter& parameter);

    struct Named {
        std::string name;
        const Parameter* parameter;
    };

    // The number of a parameter, and of a name; Hash_index::NONE for one that is not declared.
    std::uint32_t number_of(std::uint32_t pid, const Index_t& index) const;
    std::uint32_t number_of(std::string_view name) const;
    // The hash of a parameter is its device variable.
    std::uint64_t hash_of_parameter(std::uint32_t number) const;
    std::uint64_t hash_of_name(std::uint32_t number) const;

    // In the order of declaration.
    std::deque<Parameter> m_parameters;
    std::deque<Named> m_names;
    Hash_index m_parameter_index;  // by device variable
    Hash_index m_name_index;
    mutable std::size_t m_searched = 0;  // by all calls of `closest`
};

}  // namespace frontpanel

#endif
