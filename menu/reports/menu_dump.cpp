#include <frontpanel_menu/menu_dump.h>

#include <cstdio>

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

void print_tree(Menu& menu) {
    constexpr int PRINT = 0x4;
    constexpr int REPORT = 4;
    for (Data_entry* const top : {&menu.root(), menu.homescreen(), menu.favourites()}) {
        if (top != nullptr) {
            std::printf("%s\n", top->getProperties(REPORT).c_str());
            int depth = 1;
            Data_entry::TraverseMenuTree(top, PRINT, &depth);
        }
    }
}

}  // namespace frontpanel
