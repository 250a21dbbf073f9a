// Explains to the author of a menu why an entry is hidden, limited or read-only.
#ifndef FRONTPANEL_MENU_EXPLAIN_H
#define FRONTPANEL_MENU_EXPLAIN_H

#include <string>

#include <frontpanel_menu/menu.h>

namespace frontpanel {

// Of the entry with that path or id and of every menu around it, the outermost first: whether it is shown, and what
// of it decides that, each expression with the values that it saw. A link is followed by what it houses. Reads from
// the device. Input_error when the menu has no such entry.
std::string explain(Menu& menu, const std::string& name);

}  // namespace frontpanel

#endif
