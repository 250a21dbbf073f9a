// The entries of a menu as a person names them: by the way that leads to them, or by the "id" of the menu file.
//
// Links are not followed, and mounted menus are not built.
#ifndef FRONTPANEL_MENU_MENU_TREE_H
#define FRONTPANEL_MENU_MENU_TREE_H

#include <string>
#include <vector>

#include <frontpanel_menu/menu.h>

namespace frontpanel {

struct Placed_entry {
    Data_entry* entry;
    Data_entry* menu;  // the menu around it; null for a top
    std::string path;  // "Audio/Gain 1"; a top's own name for a top
    int depth;         // the menus around it; 0 for a top
};

// Every entry in the order of the menu, then the homescreen with its links, then the favourites with theirs.
std::vector<Placed_entry> entries_of(Menu& menu);

// The entry with that path or id. Input_error when no entry, or more than one, has it.
Placed_entry find_entry(Menu& menu, const std::string& name);

}  // namespace frontpanel

#endif
