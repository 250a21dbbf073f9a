// Builds a menu from a menu file. docs/menu-file.md describes the file.
#ifndef FRONTPANEL_PANEL_MENU_LOADER_H
#define FRONTPANEL_PANEL_MENU_LOADER_H

#include <memory>
#include <string>
#include <vector>

#include "menu.h"

namespace panel {

struct Loaded_menu {
    std::unique_ptr<Menu> menu;
    // What is allowed but probably not meant, one line each.
    std::vector<std::string> warnings;
};

// Whether the cards that the file describes run. Without them live options are never fetched.
enum class Cards { OFF, ON };

// Input_error, naming the file and the place in it, when the file cannot be read or does not describe a menu.
Loaded_menu load_menu(const std::string& file, Cards cards = Cards::OFF);
// The same from the text of a file; `file` only names it.
Loaded_menu load_menu_text(const std::string& file, const std::string& text,
                           Cards cards = Cards::OFF);

}  // namespace panel

#endif
