// A menu with a number and a text.
#ifndef FRONTPANEL_DATA_TESTS_MENU_ITEMS_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_MENU_ITEMS_FIXTURE_H

#include <frontpanel_menu/entry_access.h>

#include "support/panel_fixture.h"

namespace frontpanel {

constexpr const char* LEVEL = R"({"pid": 5, "type": "integer", "min": 0, "max": 100, "value": 7})";
constexpr const char* NOTE = R"({"pid": 6, "type": "text", "length": 8, "value": "abc"})";

inline std::string with_item(const std::string& item) {
    return menu_text(std::string(LEVEL) + "," + NOTE, item);
}

inline std::string with_range(const std::string& members) {
    return with_item(R"({"type": "range", "name": "Level", "pid": 5, )" + members + "}");
}

// The entry of the top menu in that place, from 0.
inline Data_entry& top_item(Menu& menu, int number) {
    Data_entry* entry = neighbour(menu.root(), Data_entry::OPERATION_CHILD);
    for (int i = 0; i < number; ++i) {
        entry = neighbour(*entry, Data_entry::OPERATION_NEXT);
    }
    return *entry;
}

}  // namespace frontpanel

#endif
