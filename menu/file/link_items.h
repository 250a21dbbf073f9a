// Links of a menu file: in menus, on the homescreen and among the favourites.
#ifndef FRONTPANEL_MENU_LINK_ITEMS_H
#define FRONTPANEL_MENU_LINK_ITEMS_H

#include <frontpanel_data/data_entry.h>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

struct Load_context;

// A link to what an item names as its target, once all items are built.
Link_entry& add_link_to_target(Load_context& context, const Json_value& item, unsigned int level);
// The homescreen and the favourites: menus of their own that hold links alone.
void load_home(Load_context& context, const Json_value& file);

}  // namespace frontpanel

#endif
