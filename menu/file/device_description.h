// What a menu file says of the device to those who show it: its parameters with their types, names and bounds.
// docs/menu-file.md describes the file.
#ifndef FRONTPANEL_MENU_DEVICE_DESCRIPTION_H
#define FRONTPANEL_MENU_DEVICE_DESCRIPTION_H

#include <frontpanel_data/data_interface.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include <frontpanel_base/json_value.h>
#include <frontpanel_menu/menu_loader.h>

namespace frontpanel {

class Device_description {
public:
    // The parameters are declared in `table`. What is wrong becomes one of `problems`. All outlive the description.
    Device_description(Parameter_table& table, Problems& problems, const Loading& loading)
        : m_table(table), m_problems(problems), m_loading(loading) {}

    void load(const Json_value& device);

    // Null when the device has no such parameter. Told_already when its declaration is, or may be, wrong.
    const Parameter* parameter(uint32_t pid, const Index_t& index) const;
    const Parameter* parameter(const std::string& name) const;
    // As `Parameter_table::find_reference` finds them.
    const Parameter* reference(const std::string& text) const;
    // The text that the simulated device starts with; empty when "value" does not give one.
    std::optional<Json_value> start_text(const Parameter& parameter) const;
    // Whether the card in a slot has a tree, or a combo box, of that parameter id, as far as that is known.
    bool has_document(int slot, uint32_t pid, bool is_tree) const;

private:
    void load_parameter(const Json_value& parameter);
    // Declares the parameter with its limits. Throws Told_already when a limit is wrong.
    void load_type(const Json_value& parameter, Parameter& declared,
                   const std::optional<std::string>& name);
    void load_limits(const Json_value& parameter, Parameter& declared);
    void check_name(const Json_value& name, const Parameter& declared);
    bool is_wrong(const Parameter& parameter) const;
    void warn_of_simulation(const Json_value& device) const;

    Parameter_table& m_table;
    Problems& m_problems;
    const Loading& m_loading;
    std::set<std::pair<uint32_t, uint32_t>> m_wrong_parameters;  // by pid and variable index
    std::map<std::pair<uint32_t, uint32_t>, Json_node> m_start_texts;
    Json_storage
        m_kept_texts;  // of m_start_texts: the texts of the file are released before the items are built
    std::set<std::string> m_wrong_names;
    bool m_has_unknown_parameters = false;  // wrong ones without an address
};

}  // namespace frontpanel

#endif
