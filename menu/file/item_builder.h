// What the builders of items have in common. A builder reads its item, adds an entry to the menu, binds its rules and
// calls `finish`.
#ifndef FRONTPANEL_MENU_ITEM_BUILDER_H
#define FRONTPANEL_MENU_ITEM_BUILDER_H

#include <frontpanel_data/data_entry.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "file/item_members.h"
#include "file/load_context.h"

namespace frontpanel {

struct Entry_kind;

// Where an item stands.
struct Spot {
    Data_entry* parent;  // null for the top menu, and behind a bridge
    unsigned int level;  // of menus; 0 for the top
    // Of an item behind a bridge: who owns its index. Null for an item in a menu.
    std::unique_ptr<const Index_t>* bridge = nullptr;
};

// What every entry is built from.
struct Leaf {
    std::string name;
    std::string description;
    uint32_t pid;
    Index_t index;
    Data_entry::Data_access access;
    int visible;
    std::optional<Parameter> parameter;  // none when it is wrong, which has been reported
};

// The kind that an item's "type" names.
const Entry_kind& kind_of_item(const Json_value& item);
// What an error says of a parameter name that nothing declares.
std::string no_parameter(const Parameter_table& parameters, const std::string& name);
// All members that an item of a row of `entry_kinds` may have: in a menu, or behind a bridge.
const std::vector<const char*>& members_of(const Entry_kind& kind);
const std::vector<const char*>& bridged_members_of(const Entry_kind& kind);

Leaf entry_of(Load_context& context, const Json_value& item, const Spot& spot);
// Of an entry that shows a parameter of that type.
Leaf leaf_of(Load_context& context, const Json_value& item, const Spot& spot, RETURN_TYPE type);
// The parameter at an address, which must have that type; `place` is what an error names.
const Parameter& parameter_at(const Load_context& context, const Json_value& place, uint32_t pid,
                              const Index_t& index, RETURN_TYPE type);
// The leaf's index, which lives as long as the entry.
const Index_t* kept_index(Load_context& context, const Leaf& leaf, const Spot& spot);

// Gives an entry what every kind of item has, once it stands in the tree.
void finish(Load_context& context, const Json_value& item, Data_entry& entry, const Spot& spot);
// The part of `finish` that an entry behind a link gets.
void set_properties(Load_context& context, const Json_value& item, Data_entry& entry,
                    const Spot& spot);
// The part of `finish` that makes an entry, or a link, one of its menu's, and known by its names.
void enlist(Load_context& context, const Json_value& item, Data_entry& entry);
void set_shortcut(Load_context& context, const Json_value& button, Data_entry& entry);
void add_id(Load_context& context, const Json_value& id, Data_entry& entry);

}  // namespace frontpanel

#endif
