// A menu as it was built, with the places in the file that the checks of the whole name in their messages.
#ifndef FRONTPANEL_MENU_BUILT_MENU_H
#define FRONTPANEL_MENU_BUILT_MENU_H

#include <frontpanel_data/data_entry.h>

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>
#include <frontpanel_menu/menu.h>
#include "file/product_options.h"

namespace frontpanel {

struct Built_menu {
    // An item in a menu that is no link.
    struct Item {
        Data_entry* entry;
        Json_value item;
    };
    // A menu with what stands in it; null for a link that could not be placed.
    struct Submenu {
        Data_entry* entry;
        std::vector<Data_entry*> children;
    };
    struct Name {
        Json_value place;
        const Data_entry* entry;
    };
    struct Link {
        Json_value reference;  // that names the target
        const Data_entry* target;
        const Link_entry* link;
    };

    // A condition that is always or never true, and the copies of its rules that are made.
    struct Constant {
        Json_value rules;
        size_t rule;
        size_t number;
        bool is_true;
        std::string warning;  // with the place within the rules where that is none of the file
        Place place;
    };

    Menu& menu;
    const Product_options& options;
    int columns;  // of the display
    std::deque<Item> items;
    std::vector<Submenu> menus;  // each before those in it
    std::deque<Name> names;      // that the display shows
    std::vector<Link> links;
    std::map<const Data_entry*, Place> rules;
    std::vector<Constant> constants;
    std::deque<Place> condition_texts;            // of all rules, each time they are compiled
    std::set<const Data_entry*> allowed_circles;  // items with "allow_circle"
    std::set<const Data_entry*> conditional;      // items that are shown at times only
};

}  // namespace frontpanel

#endif
