#include <frontpanel_menu/menu_dump.h>

#include <frontpanel_menu/entry_access.h>
#include "menu_tree.h"

namespace frontpanel {

void refresh_all(Menu& menu) {
    menu.bindings()->poll();
    for (const Placed_entry& placed : entries_of(menu)) {
        if (!is_live(housed(*placed.entry))) {
            refresh(*placed.entry, menu.access());
        }
    }
    menu.bindings()->settle();
}

std::string dump_of(Menu& menu) {
    constexpr int REPORT = 4;
    std::string text;
    for (const Placed_entry& placed : entries_of(menu)) {
        text += std::string(static_cast<size_t>(placed.depth), '\t') +
                placed.entry->getProperties(REPORT) + "\n";
    }
    return text;
}

}  // namespace frontpanel
