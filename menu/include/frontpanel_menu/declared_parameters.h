// The parameters of the device, as the menu file declares them.
#ifndef FRONTPANEL_MENU_DECLARED_PARAMETERS_H
#define FRONTPANEL_MENU_DECLARED_PARAMETERS_H

#include <frontpanel_binding/parameter_table.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

namespace frontpanel {

class Declared_parameters {
public:
    // False, and nothing is added, when there is such a parameter, or such a name, already.
    bool add(const Parameter& parameter);
    bool add_name(const std::string& name, const Parameter& parameter);

    // Null when there is none.
    const Parameter* find(uint32_t pid, uint32_t varidx) const;
    const Parameter* find(const std::string& name) const;
    // By what stands in the brackets of a rule or a toggle: a name, or an address "100", "100.3", "100.3.1".
    const Parameter* find_reference(const std::string& text) const;

private:
    using Key = std::pair<uint32_t, uint32_t>;  // pid and variable index

    std::map<Key, Parameter> m_parameters;
    std::unordered_map<std::string, Key> m_names;
};

}  // namespace frontpanel

#endif
