// A menu of presets that exists only while it is shown: built from the files of a folder when it is entered,
// destroyed when it is left. docs/menu-file.md describes the files.
#ifndef FRONTPANEL_MENU_MOUNTED_MENU_H
#define FRONTPANEL_MENU_MOUNTED_MENU_H

#include <frontpanel_binding/expression_binding.h>
#include <frontpanel_data/data_entry.h>

#include <memory>
#include <string>
#include <vector>

#include <frontpanel_binding/parameter_table.h>

namespace frontpanel {

// What a mount link houses: a menu that is there whatever its children.
class Mount_node : public Node_entry {
public:
    using Node_entry::isVisible;
    using Node_entry::Node_entry;

    // By its options, its rules and its own visibility.
    int isVisible(bool if_control_refresh, Data_interface* iface) override;
};

class Mounted_menu {
public:
    // `parameters` and `bindings` outlive the menu.
    Mounted_menu(std::string folder, const Parameter_table& parameters, Binding_registry& bindings);
    Mounted_menu(const Mounted_menu&) = delete;
    Mounted_menu& operator=(const Mounted_menu&) = delete;

    // Builds the menu anew, an entry for each preset by name, below `parent`, which outlives it. The first
    // entry, or null when the folder cannot be read. A preset that cannot be used has an entry that says so.
    Data_entry* build(Data_entry& parent);
    void destroy() { m_presets.clear(); }
    size_t entry_count() const { return m_presets.size(); }
    // Why presets of the menu that was built last cannot be used, one line each.
    const std::vector<std::string>& problems() const { return m_problems; }

private:
    std::string m_folder;
    const Parameter_table& m_parameters;
    Binding_registry& m_bindings;
    std::vector<std::unique_ptr<Data_entry>> m_presets;
    std::vector<std::string> m_problems;
};

}  // namespace frontpanel

#endif
