#include <map>
#include <string>

#include "check/checks.h"

namespace frontpanel {
namespace {

// Two items that are each shown at times only may stand in for each other.
void check_menu_names(const Built_menu& built, const Built_menu::Submenu& menu,
                      const std::map<const Data_entry*, Json_value>& places) {
    std::map<std::string, const Data_entry*> seen;
    for (const Data_entry* const child : menu.children) {
        const auto place = places.find(child);
        if (child == nullptr || place == places.end()) {
            continue;
        }
        const auto [other, is_new] = seen.emplace(child->Get_name(), child);
        const bool are_alternatives =
            built.conditional.count(child) > 0 && built.conditional.count(other->second) > 0;
        if (!is_new && !are_alternatives) {
            place->second.warn("another item of this menu is named \"" + other->first + "\"");
        }
    }
}

}  // namespace

void check_equal_names(const Built_menu& built) {
    std::map<const Data_entry*, Json_value> places;
    for (const Built_menu::Name& name : built.names) {
        if (name.entry->Get_visible() >= 0) {
            places.emplace(name.entry, name.place);
        }
    }
    for (const Built_menu::Submenu& menu : built.menus) {
        check_menu_names(built, menu, places);
    }
}

}  // namespace frontpanel
