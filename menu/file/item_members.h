// The members that several parts of a menu file have in common. All throw Placed_error as `Json_value` does.
#ifndef FRONTPANEL_MENU_ITEM_MEMBERS_H
#define FRONTPANEL_MENU_ITEM_MEMBERS_H

#include <frontpanel_data/data_entry.h>

#include <cstdint>
#include <string>

#include <frontpanel_base/json_value.h>
#include <frontpanel_menu/declared_parameters.h>

namespace frontpanel {

constexpr size_t LONGEST_TEXT = 256;

// "index"; no levels when there is none.
Index_t index_of(const Json_value& owner);
// "pid".
uint32_t pid_of(const Json_value& owner);
// What names an item's parameter: "parameter" or "pid".
Json_value parameter_place(const Json_value& item);
// "name", which ends at its first ':'.
std::string name_of(const Json_value& item);
// What the display shows of a name.
std::string shown_name(const std::string& name);
// "visible" and "access" with what they stand for when they are missing.
int visible_of(const Json_value& item);
Data_entry::Data_access access_of(const Json_value& item);

int integer_or(const Json_value& owner, const char* name, int64_t min, int64_t max, int otherwise);
std::string text_or(const Json_value& owner, const char* name, const std::string& otherwise);
bool boolean_or(const Json_value& owner, const char* name, bool otherwise);
// The elements of a list that may be missing.
std::vector<Json_value> list_or_none(const Json_value& owner, const char* name);

}  // namespace frontpanel

#endif
