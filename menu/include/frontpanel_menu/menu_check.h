// A menu file checked without a device.
#ifndef FRONTPANEL_MENU_MENU_CHECK_H
#define FRONTPANEL_MENU_MENU_CHECK_H

#include <cstddef>
#include <string>
#include <vector>

#include <frontpanel_menu/menu_loader.h>

namespace frontpanel {

struct Menu_check {
    // One line each, with its place. A menu with errors cannot be loaded.
    std::vector<std::string> errors;
    // What is allowed but probably not meant.
    std::vector<std::string> warnings;
    std::size_t entry_count = 0;  // of a menu without errors
};

// Loads a document as `load_menu` does, over a device that nobody reads.
Menu_check check_menu(Menu_document& document, const Loading& loading = {});

}  // namespace frontpanel

#endif
