// A menu to report on.
#ifndef FRONTPANEL_DATA_TESTS_MENU_REPORTS_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_MENU_REPORTS_FIXTURE_H

#include <frontpanel_menu/explain.h>
#include "support/panel_fixture.h"

namespace frontpanel {

constexpr const char* REPORTED_MENU =
    R"({"options": {"gps": 0, "slot{n}": 4}, "device": {"parameters": [
    {"name": "gain", "pid": 100, "index": [1], "type": "integer", "min": 0, "max": 100, "value": 3},
    {"name": "mode", "pid": 101, "type": "integer", "min": 0, "max": 1, "value": 0},
    {"name": "lock", "pid": 102, "type": "integer", "min": 0, "max": 1, "value": 1}]},
    "menu": {"name": "Main \"A&B\" \\n", "items": [
        {"type": "node", "name": "Audio", "items": [
            {"type": "range", "name": "Gain", "id": "gain", "parameter": "gain",
             "binding": "visible if [101] == 1; access read-only if [102] == 1"}]},
        {"type": "enum", "name": "Mode", "parameter": "mode", "choices": ["off", "on"]},
        {"type": "range", "name": "Fix", "parameter": "mode", "options": ["gps", "slot5"]},
        {"type": "range", "name": "Seat", "parameter": "mode", "options": ["slot3"], "visible": false},
        {"type": "mount", "name": "Presets", "folder": "."},
        {"type": "link", "target": "gain"}]},
    "homescreen": [{"target": "gain", "toggle": "[mode] == 0 && [lock] == 1"}]})";

class Menu_reports : public testing::Test {
protected:
    Menu& menu() { return *m_loaded.menu; }
    std::string explained(const std::string& name) { return explain(menu(), name); }
    std::string error_of(const std::string& name) {
        try {
            explain(menu(), name);
        } catch (const Input_error& error) {
            return error.what();
        }
        return "";
    }

    Simulated_menu m_loaded = simulated_text(REPORTED_MENU);
};

}  // namespace frontpanel

#endif
