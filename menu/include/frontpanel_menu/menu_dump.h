// The whole menu as a table for a person, or as JSON for a program.
#ifndef FRONTPANEL_MENU_MENU_DUMP_H
#define FRONTPANEL_MENU_MENU_DUMP_H

#include <string>

#include <frontpanel_menu/menu.h>

namespace frontpanel {

// Refreshes every entry and its rules from the device, so that reports are current. Live lists are left out: they would
// be fetched.
void refresh_all(Menu& menu);

// The menu, then the homescreen and the favourites: a line for each entry under a heading, indented by the menus around
// it, with its type, its parameter, the value as the display shows it, and notes: whether it is hidden and why, its
// access, the values that it allows, and its button. An entry that links lead to is listed once, in its own menu;
// mounted menus are not built. See `refresh_all`.
std::string dump_of(Menu& menu);
// The same as a JSON document, which docs/panel.md describes.
std::string json_dump_of(Menu& menu);

}  // namespace frontpanel

#endif
