// A menu with something to link to.
#ifndef FRONTPANEL_DATA_TESTS_MENU_LINKS_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_MENU_LINKS_FIXTURE_H

#include <frontpanel_menu/entry_access.h>
#include "support/panel_fixture.h"

namespace frontpanel {

constexpr const char* LINK_PARAMETERS = R"(
    {"name": "gain 1", "pid": 100, "index": [1], "type": "integer", "min": -60, "max": 12, "value": 3},
    {"name": "gain 2", "pid": 100, "index": [2], "type": "integer", "min": -60, "max": 12, "value": 4},
    {"name": "mute", "pid": 101, "type": "integer", "min": 0, "max": 1, "value": 0},
    {"name": "label", "pid": 102, "type": "text", "length": 8, "value": "Studio"})";

constexpr const char* AUDIO = R"({"type": "node", "name": "Audio", "items": [
    {"type": "range", "name": "Gain 1", "parameter": "gain 1", "id": "first"},
    {"type": "range", "name": "Gain 2", "parameter": "gain 2"}]})";

inline std::string with_items(const std::string& items, const std::string& members = "") {
    return R"({"device": {"parameters": [)" + std::string(LINK_PARAMETERS) +
           R"(]}, "menu": {"name": "Main", "items": [)" + items + "]}" +
           (members.empty() ? "" : ", ") + members + "}";
}

inline std::string with_home(const std::string& links) {
    return with_items(AUDIO, R"("homescreen": [)" + links + "]");
}

inline std::vector<Data_entry*> children_of(Data_entry& menu) {
    std::vector<Data_entry*> children;
    for (Data_entry* child = neighbour(menu, Data_entry::OPERATION_CHILD); child != nullptr;
         child = neighbour(*child, Data_entry::OPERATION_NEXT)) {
        children.push_back(child);
    }
    return children;
}

inline Lines names_of(Data_entry& menu) {
    Lines names;
    for (const Data_entry* const child : children_of(menu)) {
        names.emplace_back(child->Get_name());
    }
    return names;
}

inline Link_entry& link_in(Data_entry& menu, size_t position) {
    return dynamic_cast<Link_entry&>(*children_of(menu).at(position));
}

}  // namespace frontpanel

#endif
