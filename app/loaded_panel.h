// A menu file with the simulated device that it describes.
#ifndef FRONTPANEL_APP_LOADED_PANEL_H
#define FRONTPANEL_APP_LOADED_PANEL_H

#include <memory>
#include <string>
#include <vector>

#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_simulator/simulated_device.h>

namespace frontpanel {

struct Loaded_panel {
    std::unique_ptr<Simulated_device> device;  // outlives the menu
    std::unique_ptr<Menu> menu;
    std::vector<std::string> warnings;
};

// Input_error and Input_errors as `load_menu` throws them. `columns` are those of the display.
Loaded_panel load_panel(const std::string& file, Cards cards, int columns);

}  // namespace frontpanel

#endif
