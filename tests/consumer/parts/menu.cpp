// A menu file over a device of the application's own, without a display.
#include <frontpanel_base/input_error.h>
#include <frontpanel_menu/menu_check.h>
#include <frontpanel_menu/menu_dump.h>
#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_menu/shown_value.h>

#include "device.h"

int main() {
    using namespace frontpanel;
    Device device;
    device.values = {{100, 7}};
    Menu_document document("menu.json", R"({
        "device": {"parameters": [
            {"name": "level", "pid": 100, "type": "integer", "min": 0, "max": 100, "value": 5}]},
        "menu": {"name": "Main", "items": [
            {"type": "range", "name": "Level", "parameter": "level", "format": "%d dB"}]}})");
    const Loaded_menu loaded = load_menu(document, device);
    refresh_all(*loaded.menu);
    Data_entry& level = *loaded.menu->root().Get_child();
    const bool is_shown = shown_value(level) == "7 dB";
    const bool is_dumped = dump_of(*loaded.menu).find("Level") != std::string::npos;
    return is_shown && is_dumped && loaded.warnings.size() == 1 ? 0 : 1;
}
