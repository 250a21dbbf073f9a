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

// Facts about the device from a simulator that has read the same document.
struct Simulator_facts {
    // The options that products add, one object each: see "options" of a product.
    std::vector<Json_value> product_options;
    // Whether the card in a slot has a tree, or a combo box, of that parameter id.
    std::function<bool(int slot, uint32_t pid, bool is_tree)> has_document;
    // Pid and variable index of parameters whose start value is wrong; the simulator has reported them.
    std::set<std::pair<uint32_t, uint32_t>> wrong_parameters;
};

// How a menu is loaded.
struct Loading {
    // Columns of the display that the menu is for: the loader warns of names that do not fit.
    int columns = 20;
    // Product options beside those of the file; for an option in both, the higher value counts.
    std::map<std::string, unsigned int> product_options = {};
    // The address of the cards' web service: see `Menu::set_card_service`.
    std::string card_service = {};
    // Without a simulator "value", "products" and "cards" of the file's device are ignored with a warning, and any
    // card may have any document.
    std::optional<Simulator_facts> simulator = std::nullopt;
    // Whether `Loaded_menu::warnings` are complete. False leaves out warnings that need a check of the whole menu,
    // which takes a third of the time: for a panel that shows none. If the menu has errors, they are complete in any
    // case.
    bool has_all_warnings = true;
};

// Builds the menu of a file over `device`, which outlives it and is not accessed while loading. Throws Input_errors
// with all errors in the file, then the warnings, or Input_error when it cannot be read.
Loaded_menu load_menu(const std::string& file, Data_interface& device, const Loading& loading = {});
// The same from the text of a file; `file` is only its name, and included files are relative to its folder.
Loaded_menu load_menu_text(const std::string& file, const std::string& text, Data_interface& device,
                           const Loading& loading = {});
// The same from a document that other components, such as a simulator, have read before: the problems that they found
// are among the errors and warnings. Empties the document's list of parameters. The menu does not need the document.
Loaded_menu load_menu(Menu_document& document, Data_interface& device, const Loading& loading = {});

}  // namespace frontpanel

#endif
