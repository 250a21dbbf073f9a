// The members of a menu file that tell how values are edited. They throw Placed_error as `Json_value` does.
#ifndef FRONTPANEL_MENU_EDITOR_ITEMS_H
#define FRONTPANEL_MENU_EDITOR_ITEMS_H

#include <frontpanel_data/data_entry.h>
#include <frontpanel_editors/editor_settings.h>

#include <frontpanel_base/json_value.h>
#include <frontpanel_menu/encoder_settings.h>

namespace frontpanel {

// "editor" of an item: how this entry is edited. An entry takes what its editor can use.
Editor_settings editor_settings_of(const Json_value& editor, const Data_entry& entry);
// "encoder" of the menu file.
Encoder_settings encoder_settings_of(const Json_value& encoder);

}  // namespace frontpanel

#endif
