// What the builders of items share while a menu file is loaded.
//
// Loading continues after an error, so that all errors are reported at once: a value that cannot be read is replaced by
// a valid one, and an item that cannot be built is left out.
#ifndef FRONTPANEL_MENU_LOAD_CONTEXT_H
#define FRONTPANEL_MENU_LOAD_CONTEXT_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <frontpanel_menu/menu_loader.h>
#include "check/built_menu.h"
#include "file/device_description.h"
#include "file/item_names.h"
#include "file/link_places.h"
#include "file/product_options.h"
#include "file/work_budget.h"

namespace frontpanel {

constexpr size_t MOST_ITEMS = 1000;  // of one menu: the library walks its list for each of them

struct Load_context {
    // All outlive the context.
    Load_context(Menu& built_menu, Problems& found, const Loading& how)
        : menu(built_menu),
          problems(found),
          loading(how),
          device(menu.parameters(), problems, loading),
          work(problems),
          options(problems, work),
          built{menu, options, loading.columns, {}, {}, {}, {}, {}, {}, {}, {}, {}} {}

    // The menu that items join now; null outside of menus.
    Built_menu::Submenu* open_menu() {
        return open_menus.empty() ? nullptr : &built.menus[open_menus.back()];
    }

    Menu& menu;
    Problems& problems;
    const Loading& loading;
    Device_description device;
    Work_budget work;
    Product_options options;
    Item_names names;
    Link_places links;
    Built_menu built;
    std::map<const Source*, std::shared_ptr<const std::string>> file_names;  // that rules keep
    std::vector<size_t> open_menus;  // in `built.menus`, inside each other
};

}  // namespace frontpanel

#endif
