// The members of a menu file that tell how values are edited. They throw Placed_error as `Json_value` does.
#ifndef FRONTPANEL_PANEL_EDITOR_ITEMS_H
#define FRONTPANEL_PANEL_EDITOR_ITEMS_H

#include <frontpanel_data/data_entry.h>
#include <frontpanel_editors/editor_settings.h>

#include "encoder_settings.h"
#include "json_value.h"

namespace panel {

// "editor" of an item: how this entry is edited. An entry takes what its editor can use.
Editor_settings editor_settings_of(const Json_value& editor, const Data_entry& entry);
// "encoder" of the menu file.
Encoder_settings encoder_settings_of(const Json_value& encoder);

}  // namespace panel

#endif
