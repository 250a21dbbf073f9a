// A menu over a device: the device's parameters, the binding engines and the entries. `load_menu` builds one; the
// operations that set, add or keep something are for a builder. Menu thread only.
//
// The order of the members is the order of building: entries go first at the end, then what they refer to.
#ifndef FRONTPANEL_MENU_MENU_H
#define FRONTPANEL_MENU_MENU_H

#include <frontpanel_binding/caching_device.h>
#include <frontpanel_binding/expression_binding.h>
#include <frontpanel_data/data_entry.h>
#include <frontpanel_data/live_data_processor.h>
#include <frontpanel_editors/editor_settings.h>
#include <frontpanel_editors/number_ranges.h>

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <frontpanel_menu/encoder_settings.h>
#include <frontpanel_menu/mounted_menu.h>
#include <frontpanel_menu/write_gate.h>

// The library's links need an object of this class before they show a toggle; they only compare its address with null.
class FPData {};

namespace frontpanel {

class Menu {
public:
    // `device` outlives the menu; only the menu thread uses it through the menu.
    explicit Menu(Data_interface& device);
    ~Menu();
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;

    // The device for every read and write of the menu, so that the rules see them. Toggles of links take it from
    // `VarIdDataInfStore::m_pDataAccessInf`, which must be set to it while the menu is shown.
    Caching_device& access() { return m_access; }
    // The parameters that the menu file declares.
    Parameter_table& parameters() { return m_bindings->parameters(); }
    const std::shared_ptr<Binding_registry>& bindings() const { return m_bindings; }
    // Checks and writes every value of a person or a client.
    Write_gate& gate() { return m_gate; }
    // The entries that show and edit a parameter, in the order of building. Valid until another item is added.
    std::vector<Data_entry*> items_of(const Device_variable& variable);
    // Adds an entry whose value is that of its parameter.
    void add_item(Data_entry& entry);
    // The name of an item on the display; empty for the entry of a bridge, which has none of its own.
    static std::string name_of(const Data_entry& entry);
    // The values that a number allows by itself, without its rules.
    Number_ranges own_ranges(Range_entry& entry) const;
    void keep_own_ranges(const Range_entry& entry, Number_ranges ranges);
    // The top of the tree: the first entry that was added.
    Data_entry& root() { return *m_entries.front(); }
    size_t entry_count() const { return m_entries.size(); }

    // The menus of the homescreen and of the favourites, whose children are links; null for none.
    Data_entry* homescreen() { return m_homescreen; }
    Data_entry* favourites() { return m_favourites; }
    void set_homescreen(Data_entry* menu) { m_homescreen = menu; }
    void set_favourites(Data_entry* menu) { m_favourites = menu; }
    // Every link of the menu, those of both included, in the order of building.
    std::vector<Link_entry*>& links() { return m_links; }
    // The entry with an id of the menu file; null for none.
    Data_entry* entry_with_id(const std::string& id) const {
        const auto found = m_ids.find(id);
        return found == m_ids.end() ? nullptr : found->second;
    }
    void add_id(const std::string& id, Data_entry* entry) { m_ids[id] = entry; }
    // Shows a link only while a toggle is on. Requires: the toggle's parameters are watched.
    void make_homescreen_entry(Link_entry& link, const std::string& toggle);
    // The condition of a homescreen link as the menu file has it, for reports; empty for a link that always shows.
    std::string condition_of(const Link_entry& link) const {
        const auto found = m_conditions.find(&link);
        return found == m_conditions.end() ? "" : found->second;
    }
    void add_condition(const Link_entry& link, const std::string& condition) {
        m_conditions[&link] = condition;
    }
    // A menu that a mount link builds from a folder.
    Mounted_menu& add_mounted_menu(const std::string& folder);
    const std::vector<std::unique_ptr<Mounted_menu>>& mounted_menus() const {
        return m_mounted_menus;
    }

    // The address of the cards' web service, such as "127.0.0.1:8080", at most 15 characters. Default empty: live
    // options are never fetched.
    void set_card_service(const std::string& address) { m_card_service = address; }
    // Adds a processor that fetches the live data of the card in a slot; null without a service.
    Live_Data_Processor* add_processor(int slot);

    // How the values of entries are edited, and how the encoder works.
    Editor_settings_table& editor_settings() { return m_editor_settings; }
    Encoder_settings& encoder_settings() { return m_encoder_settings; }

    // Keeps the option texts of an enumerated entry for as long as the entries live, each with room for `room`
    // characters and a terminator.
    char** keep_texts(const std::vector<std::string>& texts, size_t room = 0);
    // Keeps an index for as long as the entries live.
    const Index_t* keep_index(const Index_t& index);
    // Takes over an entry; its neighbours are or will be the menu's too.
    template <typename Entry>
    Entry& add(std::unique_ptr<Entry> entry) {
        Entry& added = *entry;
        m_entries.push_back(std::move(entry));
        return added;
    }
    // Hands the entry that was added last to the caller.
    Data_entry* release_last();
    // Assigns a shortcut button. False when the button is taken.
    bool add_shortcut(int button, Data_entry& entry);
    // Gives the shortcut table to every entry. Requires: the tree is complete.
    void share_shortcuts();

private:
    struct Texts {
        std::vector<std::string> texts;
        std::vector<char*> array;
    };

    std::shared_ptr<Binding_registry> m_bindings;
    Caching_device m_access;
    Write_gate m_gate;
    std::vector<std::pair<Device_variable, Data_entry*>> m_items;
    bool m_has_sorted_items = true;
    std::unordered_map<const Data_entry*, Number_ranges> m_own_ranges;
    std::string m_card_service;
    std::vector<std::unique_ptr<Live_Data_Processor>> m_processors;
    std::deque<Texts> m_texts;
    std::deque<Index_t> m_indices;
    std::map<int, ShortcutS> m_shortcuts;
    Editor_settings_table m_editor_settings;
    Encoder_settings m_encoder_settings;
    FPData m_front_panel_data;
    std::vector<std::unique_ptr<Mounted_menu>> m_mounted_menus;
    Data_entry* m_homescreen = nullptr;
    Data_entry* m_favourites = nullptr;
    std::vector<Link_entry*> m_links;
    std::map<std::string, Data_entry*> m_ids;
    std::map<const Link_entry*, std::string> m_conditions;
    std::vector<std::unique_ptr<Data_entry>> m_entries;
};

}  // namespace frontpanel

#endif
