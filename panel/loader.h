// The work of the menu loader, whose parts stand in several files: the tree in menu_loader.cpp, rules in
// rule_items.cpp, numbers in range_items.cpp, texts in text_items.cpp, enumerations and slot lists in
// choice_items.cpp.
//
// Work goes on behind whatever is wrong, so that everything is told at once: what cannot be read stands for
// something that can, and an item that cannot be built is left out.
#ifndef FRONTPANEL_PANEL_LOADER_H
#define FRONTPANEL_PANEL_LOADER_H

#include <frontpanel_data/data_entry.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "device_description.h"
#include "item_members.h"
#include "json_value.h"
#include "menu_loader.h"

namespace panel {

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
    Loader(Menu& menu, Problems& problems, Loading loading)
        : m_menu(menu), m_problems(problems), m_loading(loading), m_device(m_menu, problems) {}

    void load(const Json_value& file);

private:
    struct Item_type {
        const char* name;
        std::vector<const char*> members;  // beside those of every item
        void (Loader::*build)(const Json_value& item, Data_entry* parent, unsigned int level);
    };
    static const std::vector<Item_type>& item_types();

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
    Leaf entry_of(const Json_value& item);
    Leaf leaf_of(const Json_value& item, RETURN_TYPE type);
    std::string checked_name(const Json_value& item);
    template <typename Entry, typename... Length>
    void add_text_entry(const Json_value& item, const Leaf& leaf, Data_entry* parent,
                        unsigned int level, Length... length);
    std::vector<Choice> choices_of(const Json_value& list);
    void set_choices(const Json_value& list, Enum_entry& entry, const std::vector<Choice>& choices);
    void finish(const Json_value& item, Data_entry& entry, unsigned int level);
    void set_shortcut(const Json_value& button, Data_entry& entry);
    void warn_of_cut_name(const Json_value& item, const Data_entry& entry) const;
    void set_ranges(const Json_value& item, Range_entry& entry, int min, int max);
    std::vector<range_s> ranges_of(const Json_value& list, int min, int max);
    void bind(const Json_value& item, Data_entry& entry, std::optional<Bounds> bounds);
    void check_rule_parameter(const Json_value& source, const var_index_s& key);
    const Parameter& parameter_of(const Json_value& place, uint32_t pid, const Index_t& index,
                                  RETURN_TYPE type) const;
    std::vector<std::string> option_names(const Json_value& list);
    void warn_of_options();

    Menu& m_menu;
    Problems& m_problems;
    Loading m_loading;
    Device_description m_device;
    std::map<std::string, unsigned int> m_options;
    std::map<std::string, Place> m_option_places;
    std::set<std::string> m_used_options;
};

}  // namespace panel

#endif
