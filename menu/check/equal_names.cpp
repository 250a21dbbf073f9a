#include <map>
#include <string>

#include "check/checks.h"
#include "check/entry_table.h"

namespace frontpanel {
namespace {

// Two items that are each shown at times only may stand in for each other.
void check_menu_names(const Built_menu& built, const Built_menu::Submenu& menu,
                      const Entry_table<Json_value>& places) {
    std::map<std::string, const Data_entry*> seen;
    for (const Data_entry* const child : menu.children) {
        const Json_value* const place = places.find(child);
        if (child == nullptr || place == nullptr) {
            continue;
        }
        const auto [other, is_new] = seen.emplace(child->Get_name(), child);
        const bool are_alternatives =
            built.conditional.count(child) > 0 && built.conditional.count(other->second) > 0;
        if (!is_new && !are_alternatives) {
            place->warn("another item of this menu is named \"" + other->first + "\"");
        }
    }
}

}  // namespace

void check_equal_names(const Built_menu& built) {
    Entry_table<Json_value> places;
    places.reserve(built.names.size());
    for (const Built_menu::Name& name : built.names) {
        if (name.entry->Get_visible() >= 0) {
            places.add(name.entry, name.place);
        }
    }
    places.complete();
    for (const Built_menu::Submenu& menu : built.menus) {
        check_menu_names(built, menu, places);
    }
}

}  // namespace frontpanel
