// Explains to the author of a menu why an entry is hidden, limited or read-only.
#ifndef FRONTPANEL_MENU_EXPLAIN_H
#define FRONTPANEL_MENU_EXPLAIN_H

#include <string>

#include <frontpanel_menu/menu.h>

namespace frontpanel {

// Explains the entry with that path or id and every menu around it, the outermost first: whether it is shown, and why,
// each expression with the values that it read. A link is followed by its housed entry. Reads from the device.
// Input_error when the menu has no such entry.
std::string explain(Menu& menu, const std::string& name);

}  // namespace frontpanel

#endif
