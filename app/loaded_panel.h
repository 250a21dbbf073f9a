// A menu file with the device that it describes: drivers of a real one, and a simulator for everything else.
#ifndef FRONTPANEL_APP_LOADED_PANEL_H
#define FRONTPANEL_APP_LOADED_PANEL_H

#include <memory>
#include <string>
#include <vector>

#include <frontpanel_drivers/driven_device.h>
#include <frontpanel_menu/character_check.h>
#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_simulator/simulated_device.h>

namespace frontpanel {

// What becomes of parameters with a "source".
enum class Drivers {
    SIMULATED,  // the simulator replaces all drivers, also those that the build lacks
    LOADED,     // they live at the drivers of the file
    CHECKED     // the same, and the drivers add their warnings
};

struct Loaded_panel {
    std::unique_ptr<Simulated_device> device;  // outlives what follows
    std::unique_ptr<Driven_device>
        driven;  // outlives the menu; null when no parameter lives at a driver
    std::unique_ptr<Menu> menu;
    std::vector<std::string> warnings;
};

// Input_error and Input_errors as `load_menu` throws them. `columns` are those of the display. The drivers work once the
// cache of `driven` is started. With `shows` there is a warning of each text with a character that the display cannot
// show. `has_all_warnings`: see `Loading`.
Loaded_panel load_panel(const std::string& file, Cards cards, int columns,
                        Drivers drivers = Drivers::LOADED, const Shows_character& shows = nullptr,
                        bool has_all_warnings = true);
// The same for a menu that was read before.
Loaded_panel load_panel(std::unique_ptr<Menu_document> document, const std::string& file,
                        Cards cards, int columns, Drivers drivers, const Shows_character& shows,
                        bool has_all_warnings);

}  // namespace frontpanel

#endif
