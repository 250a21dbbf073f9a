#include "menu_tree.h"

#include <algorithm>

#include <frontpanel_base/input_error.h>
#include <frontpanel_menu/entry_access.h>
#include "file/item_members.h"

namespace frontpanel {
namespace {

void add_below(Data_entry& menu, const std::string& path, int depth,
               std::vector<Placed_entry>& entries) {
    for (Data_entry* child = neighbour(menu, Data_entry::OPERATION_CHILD); child != nullptr;
         child = neighbour(*child, Data_entry::OPERATION_NEXT)) {
        const std::string name = path + shown_name(child->Get_name());
        entries.push_back({child, &menu, name, depth});
        if (is_submenu(*child)) {
            add_below(*child, name + "/", depth + 1, entries);
        }
    }
}

}  // namespace

std::vector<Placed_entry> entries_of(Menu& menu) {
    std::vector<Placed_entry> entries;
    for (Data_entry* const top : {&menu.root(), menu.homescreen(), menu.favourites()}) {
        if (top != nullptr) {
            entries.push_back({top, nullptr, top->Get_name(), 0});
            add_below(*top, top == &menu.root() ? "" : std::string(top->Get_name()) + "/", 1,
                      entries);
        }
    }
    return entries;
}

Placed_entry find_entry(Menu& menu, const std::string& name) {
    const Data_entry* const with_id = menu.entry_with_id(name);
    std::vector<Placed_entry> found = entries_of(menu);
    found.erase(std::remove_if(found.begin(), found.end(),
                               [&](const Placed_entry& placed) {
                                   return with_id != nullptr ? placed.entry != with_id
                                                             : placed.path != name;
                               }),
                found.end());
    if (found.empty()) {
        throw Input_error("the menu has no entry \"" + name + "\"");
    }
    if (found.size() > 1) {
        throw Input_error("several entries are \"" + name + "\": name it by its id");
    }
    return found.front();
}

}  // namespace frontpanel
