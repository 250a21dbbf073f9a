// Builds a menu from a menu file. docs/menu-file.md describes the file.
#ifndef FRONTPANEL_MENU_MENU_LOADER_H
#define FRONTPANEL_MENU_MENU_LOADER_H

#include <memory>
#include <string>
#include <vector>

#include <frontpanel_menu/menu.h>

namespace frontpanel {

struct Loaded_menu {
    std::unique_ptr<Menu> menu;
    // What is allowed but probably not meant, one line each, with its place.
    std::vector<std::string> warnings;
};

// Whether the cards that the file describes run. Without them live options are never fetched.
enum class Cards { OFF, ON };

// How a menu is loaded.
struct Loading {
    Cards cards = Cards::OFF;
    // Of the display that the menu is for: a name that does not fit is warned of.
    int columns = 20;
};

// Input_errors with all that is wrong with the file, the warnings last, or Input_error when it cannot be read.
Loaded_menu load_menu(const std::string& file, Loading loading = {});
// The same from the text of a file; `file` only names it.
Loaded_menu load_menu_text(const std::string& file, const std::string& text, Loading loading = {});

}  // namespace frontpanel

#endif
