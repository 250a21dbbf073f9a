// A menu of presets that exists only while it is shown: built from the files of a folder when it is entered,
// destroyed when it is left. docs/menu-file.md describes the files.
#ifndef FRONTPANEL_MENU_MOUNTED_MENU_H
#define FRONTPANEL_MENU_MOUNTED_MENU_H

#include <frontpanel_binding/expression_binding.h>
#include <frontpanel_data/data_entry.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <frontpanel_base/problems.h>
#include <frontpanel_binding/parameter_table.h>
#include <frontpanel_menu/write_gate.h>

namespace frontpanel {

// The housed entry of a mount link: a menu that is visible whatever its children.
class Mount_node : public Node_entry {
public:
    using Node_entry::isVisible;
    using Node_entry::Node_entry;

    // By its options, its rules and its own visibility.
    int isVisible(bool if_control_refresh, Data_interface* iface) override;
};

// Why a preset cannot be used.
struct Preset_damage {
    std::string line;  // "presets/Sport.json:3:17: REASON"; empty for a preset that can be used
    size_t file_name_at = 0;  // where "Sport.json" begins

    std::string brief() const { return line.substr(file_name_at); }
};

// An entry with the option "load". Committing it while "load" is chosen writes its values through the gate, unless
// there are warnings.
class Preset : public Enum_entry {
public:
    // A preset without values is damaged and cannot be loaded. The gate outlives the preset.
    Preset(const std::string& name, const std::optional<std::vector<Wanted_value>>& values,
           Preset_damage damage, Write_gate& gate);

    const std::vector<Wanted_value>& values() const { return m_values; }
    const Preset_damage& damage() const { return m_damage; }
    // Whether "load" is chosen; resets the choice.
    bool is_chosen();
    void wait();

    // Reads nothing: the entry has no parameter.
    int Refresh(Data_interface* iface, bool eval_binding) override;
    using Enum_entry::Commit;
    int Commit(Data_interface* iface) override;

private:
    std::vector<Wanted_value> m_values;
    Preset_damage m_damage;
    Write_gate& m_gate;
};

// The entry as a preset; null for any other.
Preset* preset_of(Data_entry& entry);

class Mounted_menu {
public:
    // `parameters` and `gate` outlive the menu.
    Mounted_menu(std::string folder, const Parameter_table& parameters, Write_gate& gate);
    Mounted_menu(const Mounted_menu&) = delete;
    Mounted_menu& operator=(const Mounted_menu&) = delete;

    // The path of a folder that a menu file names at a place, relative to that file.
    static std::string folder_of(const Place& place, const std::string& folder);
    // The presets of a folder by name, as many as are shown; empty for a folder that cannot be read.
    static std::vector<std::string> files_in(const std::string& folder);

    // Builds the menu anew, an entry for each preset by name, below `parent`, which outlives it. The first
    // entry, or null when the folder cannot be read. A preset that cannot be used has an entry that reports it.
    Data_entry* build(Data_entry& parent);
    void destroy() { m_presets.clear(); }
    size_t entry_count() const { return m_presets.size(); }
    // The mistakes in presets of the menu that was built last, one line each.
    const std::vector<std::string>& problems() const { return m_problems; }
    // The mistakes in the presets that the folder has now, one line each.
    std::vector<std::string> mistakes() const;
    const std::string& folder() const { return m_folder; }

private:
    std::string m_folder;
    const Parameter_table& m_parameters;
    Write_gate& m_gate;
    std::vector<std::unique_ptr<Data_entry>> m_presets;
    std::vector<std::string> m_problems;
};

}  // namespace frontpanel

#endif
