// The members of an item in a menu file: their names, and those that several kinds have in common. The operations
// throw Placed_error as `Json_value` does.
#ifndef FRONTPANEL_MENU_ITEM_MEMBERS_H
#define FRONTPANEL_MENU_ITEM_MEMBERS_H

#include <frontpanel_data/data_entry.h>

#include <string>

#include <frontpanel_base/json_members.h>
#include <frontpanel_base/parameter_declaration.h>

namespace frontpanel {

// Each name is written here alone.
namespace member {

// Of every item.
constexpr const char* TYPE = "type";
constexpr const char* ID = "id";
// Of every item but links.
constexpr const char* NAME = "name";
constexpr const char* DESCRIPTION = "description";
constexpr const char* INDEX = "index";
constexpr const char* VISIBLE = "visible";
constexpr const char* SHORTCUT = "shortcut";
constexpr const char* OPTIONS = "options";
constexpr const char* BINDING = "binding";
constexpr const char* EDITOR = "editor";
constexpr const char* ALLOW_CIRCLE = "allow_circle";
// Of some kinds: menu/entry_kinds.cpp lists which.
constexpr const char* ITEMS = "items";
constexpr const char* PARAMETER = "parameter";
constexpr const char* PID = "pid";
constexpr const char* ACCESS = "access";
constexpr const char* MIN = "min";
constexpr const char* MAX = "max";
constexpr const char* DEFAULT = "default";
constexpr const char* FORMAT = "format";
constexpr const char* VALUE_FORMAT = "value_format";
constexpr const char* RANGES = "ranges";
constexpr const char* CHOICES = "choices";
constexpr const char* LIVE = "live";
constexpr const char* TARGET = "target";
constexpr const char* TOGGLE = "toggle";
constexpr const char* BEHAVIOUR = "behaviour";
constexpr const char* ESCAPE = "escape";
constexpr const char* ITEM = "item";
constexpr const char* FOLDER = "folder";

}  // namespace member

// "index"; no levels when it is missing.
Index_t index_of(const Json_value& owner);
// What names an item's parameter: "parameter" or "pid".
Json_value parameter_place(const Json_value& item);
// "name", which ends at its first ':'.
std::string name_of(const Json_value& item);
// What the display shows of a name.
std::string shown_name(const std::string& name);
// "visible" and "access", or their defaults.
int visible_of(const Json_value& item);
Data_entry::Data_access access_of(const Json_value& item);

}  // namespace frontpanel

#endif
