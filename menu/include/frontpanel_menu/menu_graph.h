// The menu as a graph in Graphviz's language, for `dot -Tsvg`.
#ifndef FRONTPANEL_MENU_MENU_GRAPH_H
#define FRONTPANEL_MENU_MENU_GRAPH_H

#include <string>

#include <frontpanel_menu/menu.h>

namespace frontpanel {

// A node for each entry, with its name and its parameter, grey while the entry is hidden. A solid edge leads from a
// menu to its entries, a dashed one from a link to its housed entry, a dotted one from a mount link to the menu that it
// builds. A blue edge leads from each entry to those whose rules depend on its parameter, which are blue themselves; a
// parameter that no entry shows has a node of its own, without a border.
std::string graph_of(Menu& menu);

}  // namespace frontpanel

#endif
