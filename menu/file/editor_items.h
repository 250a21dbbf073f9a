// The members of a menu file that say how values are edited. They throw Placed_error as `Json_value` does.
#ifndef FRONTPANEL_MENU_EDITOR_ITEMS_H
#define FRONTPANEL_MENU_EDITOR_ITEMS_H

#include <frontpanel_data/data_entry.h>
#include <frontpanel_editors/editor_settings.h>

#include <frontpanel_base/json_value.h>
#include <frontpanel_menu/encoder_settings.h>

namespace frontpanel {

// The members of "editor": each name is written here alone.
namespace editor_member {

constexpr const char* PREVIEW = "preview";
constexpr const char* WRAP = "wrap";
constexpr const char* STEP = "step";
constexpr const char* ACCELERATION = "acceleration";
constexpr const char* CHARACTERS = "characters";

}  // namespace editor_member

// "editor" of an item: how this entry is edited. An entry takes what its kind lists.
Editor_settings editor_settings_of(const Json_value& editor, const Data_entry& entry);
// "encoder" of the menu file.
Encoder_settings encoder_settings_of(const Json_value& encoder);

}  // namespace frontpanel

#endif
