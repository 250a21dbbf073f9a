// A menu file checked without a device.
#ifndef FRONTPANEL_MENU_MENU_CHECK_H
#define FRONTPANEL_MENU_MENU_CHECK_H

#include <cstddef>
#include <string>
#include <vector>

#include <frontpanel_menu/menu_loader.h>

namespace frontpanel {

struct Menu_check {
    // One line each, with its place. A menu with errors cannot be loaded, unless all of them are of its presets.
    std::vector<std::string> errors;
    // What is valid but probably a mistake.
    std::vector<std::string> warnings;
    std::size_t entry_count = 0;  // of a menu that can be loaded
};

// Loads a document as `load_menu` does, over a device that is never read, and reads its presets.
Menu_check check_menu(Menu_document& document, const Loading& loading = {});

// The errors in the presets of a menu's mounted menus, one line each, with its place. Loading a menu does not read
// presets, since the menu can be used with a damaged one.
std::vector<std::string> preset_mistakes(const Menu& menu);

}  // namespace frontpanel

#endif
