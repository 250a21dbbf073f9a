// A menu that is written in the test, over the simulated device that it describes.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_SIMULATED_MENU_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_SIMULATED_MENU_H

#include <memory>
#include <string>
#include <vector>

#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_simulator/simulated_device.h>

namespace frontpanel {

struct Simulated_menu {
    std::unique_ptr<Simulated_device> simulator;  // outlives the menu
    std::unique_ptr<Menu> menu;
    std::vector<std::string> warnings;

    Memory_device& device() { return simulator->memory(); }
    Card_service* cards() { return simulator->cards(); }
};

inline Simulated_menu simulate(Menu_document& document, int columns = 20, Cards cards = Cards::OFF,
                               bool has_all_warnings = true) {
    auto device = std::make_unique<Simulated_device>(document.root(), document.problems(), cards);
    Loading loading;
    loading.columns = columns;
    loading.has_all_warnings = has_all_warnings;
    loading.card_service = device->cards() != nullptr ? device->cards()->address() : "";
    loading.simulator =
        Simulator_facts{device->product_options(),
                        [&simulator = *device](int slot, uint32_t pid, bool is_tree) {
                            return simulator.has_document(slot, pid, is_tree);
                        },
                        device->wrong_parameters()};
    Loaded_menu loaded = load_menu(document, device->memory(), loading);
    return {std::move(device), std::move(loaded.menu), std::move(loaded.warnings)};
}

// A menu file with these device parameters and these items of the top menu.
inline std::string menu_text(const std::string& parameters, const std::string& items,
                             const std::string& options = "{}") {
    return R"({"options": )" + options + R"(, "device": {"parameters": [)" + parameters +
           R"(]}, "menu": {"name": "Main", "items": [)" + items + "]}}";
}

inline Simulated_menu simulated_text(const std::string& text, int columns = 20,
                                     Cards cards = Cards::OFF) {
    Menu_document document("menu.json", text);
    return simulate(document, columns, cards);
}

inline Simulated_menu simulated_file(const std::string& file) {
    Menu_document document(file);
    return simulate(document);
}

}  // namespace frontpanel

#endif
