// Which entries of a menu a list shows. Only rules are evaluated: no value is read for it.
//
// A list asks this for every entry at every tick, and shows few of them. `isVisible` with refresh would read each
// entry, and for a submenu its first visible entry.
#ifndef FRONTPANEL_MENU_LISTING_H
#define FRONTPANEL_MENU_LISTING_H

#include <frontpanel_data/data_entry.h>

namespace frontpanel {

class Menu;

// A submenu of a menu file.
class Menu_node : public Node_entry {
public:
    using Node_entry::Node_entry;

    // Whether its options, its rules and its own visibility allow it to be shown. Its children do not count.
    bool is_allowed();
};

// Whether the list shows the entry: the answer of `isVisible` with refresh. Rules see their parameters as last polled.
// The rules of an entry that was never refreshed are evaluated. An entry that waits for `settle` is refreshed if its
// rules make it visible. A node that is no `Menu_node` is asked by `isVisible`, which reads entries below it.
bool is_listed(Data_entry& entry, Menu& menu);

}  // namespace frontpanel

#endif
