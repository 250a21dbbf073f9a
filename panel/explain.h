// Why an entry is hidden, limited or read-only, told to whoever writes a menu.
#ifndef FRONTPANEL_PANEL_EXPLAIN_H
#define FRONTPANEL_PANEL_EXPLAIN_H

#include <string>

#include "menu.h"

namespace panel {

// Of the entry with that path or id and of every menu around it, the outermost first: whether it is shown, and what
// of it decides that, each expression with the values that it saw. A link is followed by what it houses. Reads from
// the device. Input_error when there is no such entry.
std::string explain(Menu& menu, const std::string& name);

}  // namespace panel

#endif
