// Builds a menu over any device from a menu file. docs/menu-file.md describes the file.
#ifndef FRONTPANEL_MENU_MENU_LOADER_H
#define FRONTPANEL_MENU_MENU_LOADER_H

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <frontpanel_base/json_value.h>
#include <frontpanel_menu/menu.h>
#include <frontpanel_menu/menu_document.h>

namespace frontpanel {

struct Loaded_menu {
    std::unique_ptr<Menu> menu;
    // What is valid but probably a mistake, one line each, with its place.
    std::vector<std::string> warnings;
};

// What a simulator that has read the same document knows of its device.
struct Simulator_facts {
    // What products bring, one object each: see "options" of a product.
    std::vector<Json_value> product_options;
    // Whether the card in a slot has a tree, or a combo box, of that parameter id.
    std::function<bool(int slot, uint32_t pid, bool is_tree)> has_document;
    // Pid and variable index of parameters whose start value is wrong, which it has reported.
    std::set<std::pair<uint32_t, uint32_t>> wrong_parameters;
};

// How a menu is loaded.
struct Loading {
    // Of the display that the menu is for: a name that does not fit is warned of.
    int columns = 20;
    // Product options beside those of the file; of one that both have, the higher value counts.
    std::map<std::string, unsigned int> product_options = {};
    // Where the web service of the device's cards is: see `Menu::set_card_service`.
    std::string card_service = {};
    // Without a simulator "value", "products" and "cards" of the file's device are ignored with a warning, and any
    // card may have any document.
    std::optional<Simulator_facts> simulator = std::nullopt;
    // Whether `Loaded_menu::warnings` are complete. False leaves out those that need a check of the whole menu, which are
    // a third of the time: for a panel that shows none. An Input_errors has them all the same.
    bool has_all_warnings = true;
};

// Builds the menu of a file over `device`, which outlives it and is not accessed while loading. Input_errors with all
// that is wrong with the file, the warnings last, or Input_error when it cannot be read.
Loaded_menu load_menu(const std::string& file, Data_interface& device, const Loading& loading = {});
// The same from the text of a file; `file` only names it and is what included files are relative to.
Loaded_menu load_menu_text(const std::string& file, const std::string& text, Data_interface& device,
                           const Loading& loading = {});
// The same from a document that other components, such as a simulator, have read before: the problems that they found
// are among the errors and warnings. Empties the document's list of parameters. The menu does not need the document.
Loaded_menu load_menu(Menu_document& document, Data_interface& device, const Loading& loading = {});

}  // namespace frontpanel

#endif
