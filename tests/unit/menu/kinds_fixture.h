// A menu with one item of any kind.
#ifndef FRONTPANEL_DATA_TESTS_MENU_KINDS_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_MENU_KINDS_FIXTURE_H

#include "support/panel_fixture.h"

namespace frontpanel {

constexpr const char* PARAMETERS = R"(
    {"pid": 5, "type": "integer", "min": 0, "max": 2, "value": 1},
    {"pid": 6, "type": "integer", "min": 1, "max": 2, "value": 1},
    {"pid": 7, "type": "integer", "min": 0, "max": 14, "value": 4},
    {"pid": 8, "type": "integer", "min": 0, "max": 15, "value": 0},
    {"pid": 9001, "type": "integer", "min": 0, "max": 1, "value": 0},
    {"pid": 20, "type": "text", "length": 8, "value": "abc"},
    {"pid": 21, "type": "text", "length": 15, "value": "127.0.0.1"},
    {"pid": 65549, "type": "text", "length": 40, "value": "Fan stopped"})";

constexpr const char* CARDS = R"("cards": [{"slot": 3,
    "combo-boxes": [{"pid": 9001, "options": ["A", "B"]}],
    "trees": [{"pid": 9002, "tree": {"label": "T"}}]}])";

inline std::string with_item_of(const std::string& type, const std::string& members) {
    return R"({"options": {"gps": 1, "modem": 0}, "device": {"parameters": [)" +
           std::string(PARAMETERS) + "], " + CARDS +
           R"(}, "menu": {"name": "Main", "items": [{"name": "Item", "type": ")" + type + "\"" +
           (members.empty() ? "" : ", ") + members + "}]}}";
}

}  // namespace frontpanel

#endif
