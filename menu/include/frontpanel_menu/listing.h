// Which entries of a menu a list shows, at the cost of their rules: no value is read for it.
//
// The library's own question with refresh reads the entry, and of a submenu its first visible entry. A list asks for
// every entry at every tick, and shows few of them.
#ifndef FRONTPANEL_MENU_LISTING_H
#define FRONTPANEL_MENU_LISTING_H

#include <frontpanel_data/data_entry.h>

namespace frontpanel {

class Menu;

// A submenu of a menu file.
class Menu_node : public Node_entry {
public:
    using Node_entry::Node_entry;

    // Whether its options, its rules and its own visibility let it show, whatever its children do.
    bool is_allowed();
};

// Whether `isVisible` with refresh finds the entry visible. Rules see the values of their parameters as they were last
// polled; an entry whose rules are to take effect with the next `settle` is refreshed when they make it visible, and
// any that was never refreshed has its rules evaluated. A node that is no `Menu_node` is asked in the library's way,
// which reads entries below it.
bool is_listed(Data_entry& entry, Menu& menu);

}  // namespace frontpanel

#endif
