// The whole menu as text, one line an entry, as the library reports it.
#ifndef FRONTPANEL_MENU_MENU_DUMP_H
#define FRONTPANEL_MENU_MENU_DUMP_H

#include <string>

#include <frontpanel_menu/menu.h>

namespace frontpanel {

// Reads every entry from the device with its rules, so that what is reported of it is what it allows by now.
// Live lists are left out: they would be fetched.
void refresh_all(Menu& menu);

// The menu, then the homescreen and the favourites: a line for each entry, with a tab for each menu around it. What
// links lead to stands in its own place only; mounted menus are not built. Reads nothing: see `refresh_all`.
std::string dump_of(Menu& menu);

}  // namespace frontpanel

#endif
