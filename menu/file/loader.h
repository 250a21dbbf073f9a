// The work of the menu loader, whose parts stand in several files: the tree in menu_loader.cpp, rules in
// rule_items.cpp, numbers in range_items.cpp, texts in text_items.cpp, enumerations and slot lists in
// choice_items.cpp, links in link_items.cpp, and what no way leads to in
// reach_items.cpp.
//
// Work goes on behind whatever is wrong, so that everything is told at once: what cannot be read stands for
// something that can, and an item that cannot be built is left out.
#ifndef FRONTPANEL_MENU_LOADER_H
#define FRONTPANEL_MENU_LOADER_H

#include <frontpanel_data/data_entry.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>
#include <frontpanel_menu/menu_loader.h>
#include "file/device_description.h"
#include "file/item_members.h"
#include "file/item_names.h"

namespace frontpanel {

// The lowest and the highest value of an entry.
struct Bounds {
    int min;
    int max;
};
// What every entry of a parameter is built from.
struct Leaf {
    std::string name;
    std::string description;
    uint32_t pid;
    const Index_t* index;
    Data_entry::Data_access access;
    int visible;
    std::optional<Parameter> parameter;  // none when it is wrong, which has been told
};
// An option of an enumeration.
struct Choice {
    std::string text;
    std::vector<std::string> options;  // the product options that it needs one of; none for no need
};

class Loader {
public:
    static constexpr size_t MOST_ITEMS =
        1000;  // of one menu: the library walks its list for each of them

    // All outlive the loader.
    Loader(Menu& menu, Problems& problems, const Loading& loading)
        : m_menu(menu),
          m_problems(problems),
          m_loading(loading),
          m_device(m_menu.parameters(), problems, loading) {}

    void load(const Json_value& file);

    struct Item_type {
        const char* name;
        std::vector<const char*> members;  // beside those of every item
        void (Loader::*build)(const Json_value& item, Data_entry* parent, unsigned int level);
        bool is_link = false;     // brings all of its members itself
        bool is_bridged = false;  // may stand behind a bridge
    };
    static const std::vector<Item_type>& item_types();
    // All members that an item of a type may have.
    static std::vector<const char*> members_of(const Item_type& type);

private:
    // A menu with what stands in it, null for a link that is not there yet.
    struct Open_menu {
        Data_entry* entry;
        std::vector<Data_entry*> children;
    };
    // Whether an item of the file can ever be shown, whatever the device does.
    struct Reach {
        Json_value item;
        bool is_never_shown;
    };
    struct Pending_link {
        Json_value item;
        unsigned int level;
        size_t menu;      // in m_menus
        size_t position;  // in its children
    };
    static const Item_type& type_of(const Json_value& item);

    void load_options(const Json_value& options);
    void load_option(const Json_value::Member& option);
    void load_root(const Json_value& menu);
    void load_items(const Json_value& menu, Data_entry& parent, unsigned int level);
    void load_item(const Json_value& item, Data_entry& parent, unsigned int level);
    void build_node(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_range(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_text(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_address(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_time(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_warning(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_enum(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_live_enum(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_slot(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_link(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_bridge(const Json_value& item, Data_entry* parent, unsigned int level);
    void build_mount(const Json_value& item, Data_entry* parent, unsigned int level);
    Link_entry& add_link(Data_entry& housed, const Json_value& item, unsigned int level);
    Link_entry& add_link_to_target(const Json_value& item, unsigned int level);
    void place_links();
    static void order(const Open_menu& menu);
    void set_escapes();
    void load_home(const Json_value& file);
    Data_entry* load_links(const Json_value& list, const char* title,
                           const std::vector<const char*>& members);
    void set_toggle(const Json_value& source, Link_entry& link);
    void check_variables();
    Leaf entry_of(const Json_value& item);
    Leaf leaf_of(const Json_value& item, RETURN_TYPE type);
    std::string checked_name(const Json_value& item);
    template <typename Entry, typename... Length>
    void add_text_entry(const Json_value& item, const Leaf& leaf, Data_entry* parent,
                        unsigned int level, Length... length);
    std::vector<Choice> choices_of(const Json_value& list);
    void set_choices(const Json_value& list, Enum_entry& entry, const std::vector<Choice>& choices);
    const Index_t* keep_index(const Index_t& index);
    void finish(const Json_value& item, Data_entry& entry, unsigned int level);
    void set_properties(const Json_value& item, Data_entry& entry, unsigned int level);
    void enlist(const Json_value& item, const std::string& name, Data_entry& entry);
    void add_id(const Json_value& id, Data_entry* entry);
    void add_wrong_item(const Json_value& item);
    void set_shortcut(const Json_value& button, Data_entry& entry);
    void warn_of_cut_name(const Json_value& place, const Data_entry& entry) const;
    void set_ranges(const Json_value& item, Range_entry& entry, int min, int max);
    std::vector<range_s> ranges_of(const Json_value& list, int min, int max);
    void bind(const Json_value& item, Data_entry& entry, std::optional<Bounds> bounds);
    void report_in(const Json_value& source, const std::vector<Compile_error>& errors) const;
    void check_rule_parameter(const Json_value& source, const Named_parameter& named) const;
    void check_rule(const Json_value& source, const Rule_note& note, const Data_entry& entry,
                    std::optional<Bounds> bounds) const;
    static void check_interval(const Json_value& source, const Rule_note& note, Bounds bounds);
    void check_written_value(const Json_value& source, const Rule_note& note) const;
    void check_cycles();
    const Parameter& parameter_of(const Json_value& item, const Index_t& index,
                                  RETURN_TYPE type) const;
    const Parameter& parameter_of(const Json_value& place, uint32_t pid, const Index_t& index,
                                  RETURN_TYPE type) const;
    static const Parameter& expect_type(const Json_value& place, const Parameter* parameter,
                                        const std::string& what, RETURN_TYPE type);
    std::vector<std::string> option_names(const Json_value& list);
    void warn_of_options();
    bool is_never_shown(const Json_value& item, Data_entry& entry) const;
    bool hides(const Data_entry* entry) const;
    void warn_of_unreachable_items();
    void warn_of_menu_without_items(const Open_menu& menu);
    void warn_of_hidden_item(const Data_entry& entry, const Reach& reach) const;

    Menu& m_menu;
    Problems& m_problems;
    const Loading& m_loading;
    Device_description m_device;
    std::map<std::string, unsigned int> m_options;
    std::map<std::string, Place> m_option_places;
    std::set<std::string> m_used_options;
    Item_names m_names;
    std::vector<Open_menu> m_menus;
    std::vector<size_t> m_open_menus;  // in m_menus, inside each other
    std::vector<Pending_link> m_pending;
    std::vector<std::pair<Json_value, Link_entry*>> m_escapes;
    std::vector<std::pair<Json_value, std::string>> m_display_expressions;
    std::map<const Data_entry*, Place> m_binding_places;
    std::map<Data_entry*, Reach> m_reaches;
    std::vector<std::pair<Json_value, Data_entry*>> m_link_targets;
    bool m_has_toggles = false;
    bool m_is_bridging = false;  // what is built now is a bridge's
    std::vector<std::unique_ptr<Index_t>> m_bridge_indices;
};

}  // namespace frontpanel

#endif
