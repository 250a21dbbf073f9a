// The members that several parts of a menu file have in common. All throw Placed_error as `Json_value` does.
#ifndef FRONTPANEL_MENU_ITEM_MEMBERS_H
#define FRONTPANEL_MENU_ITEM_MEMBERS_H

#include <frontpanel_data/data_entry.h>

#include <string>

#include <frontpanel_base/json_members.h>
#include <frontpanel_base/parameter_declaration.h>

namespace frontpanel {

// "index"; no levels when there is none.
Index_t index_of(const Json_value& owner);
// What names an item's parameter: "parameter" or "pid".
Json_value parameter_place(const Json_value& item);
// "name", which ends at its first ':'.
std::string name_of(const Json_value& item);
// What the display shows of a name.
std::string shown_name(const std::string& name);
// "visible" and "access" with what they stand for when they are missing.
int visible_of(const Json_value& item);
Data_entry::Data_access access_of(const Json_value& item);

}  // namespace frontpanel

#endif
