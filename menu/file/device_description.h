// What a menu file tells of the device: its parameters, the products in its slots, and the live data of its
// cards. docs/menu-file.md describes the file.
#ifndef FRONTPANEL_MENU_DEVICE_DESCRIPTION_H
#define FRONTPANEL_MENU_DEVICE_DESCRIPTION_H

#include <frontpanel_data/data_interface.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include <frontpanel_base/json_value.h>
#include <frontpanel_menu/menu.h>

namespace frontpanel {

class Device_description {
public:
    // The device is built in `menu`. What is wrong becomes one of `problems`. Both outlive the description.
    Device_description(Menu& menu, Problems& problems) : m_menu(menu), m_problems(problems) {}

    void load(const Json_value& device);

    // Null when the device has no such parameter. Told_already when its declaration is, or may be, wrong.
    const Parameter* parameter(uint32_t pid, uint32_t varidx) const;
    const Parameter* parameter(const std::string& name) const;
    // As `Declared_parameters::find_reference` finds them.
    const Parameter* reference(const std::string& text) const;
    // Whether the card in a slot has a tree, or a combo box, of that parameter id.
    bool has_document(int slot, uint32_t pid, bool is_tree) const;
    // The product options that the products in the slots bring, one object for each product that has some.
    const std::vector<Json_value>& product_options() const { return m_product_options; }

private:
    void load_parameter(const Json_value& parameter);
    void load_integer(const Json_value& parameter, Parameter& declared);
    void load_text(const Json_value& parameter, Parameter& declared);
    void declare_for_rules(const Parameter& declared, const std::optional<Json_value>& name);
    void load_name(const Json_value& name, const Parameter& declared);
    void load_each(const Json_value& device, const char* list,
                   void (Device_description::*load_one)(const Json_value& item));
    void load_product(const Json_value& product);
    void load_card(const Json_value& card);
    void load_combo_box(const Json_value& box, int slot);
    void load_tree(const Json_value& tree, int slot);
    uint32_t new_document(const Json_value& document, int slot, bool is_tree);

    Menu& m_menu;
    Problems& m_problems;
    std::set<std::pair<uint32_t, uint32_t>> m_wrong_parameters;  // by pid and variable index
    std::set<std::string> m_wrong_names;
    bool m_has_unknown_parameters = false;  // wrong ones that cannot even be told apart
    std::set<int> m_fitted_slots;
    std::map<int, std::string> m_aliases;                  // by product
    std::map<std::pair<int, uint32_t>, bool> m_documents;  // by slot and pid: whether it is a tree
    std::vector<Json_value> m_product_options;
};

}  // namespace frontpanel

#endif
