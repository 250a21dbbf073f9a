#include "loaded_panel.h"

namespace frontpanel {

Loaded_panel load_panel(const std::string& file, Cards cards, int columns) {
    Menu_document document(file);
    auto device = std::make_unique<Simulated_device>(document.root(), document.problems(), cards);
    Loading loading;
    loading.columns = columns;
    loading.card_service = device->cards() != nullptr ? device->cards()->address() : "";
    loading.simulator =
        Simulator_facts{device->product_options(),
                        [&simulated = *device](int slot, uint32_t pid, bool is_tree) {
                            return simulated.has_document(slot, pid, is_tree);
                        },
                        device->wrong_parameters()};
    Loaded_menu loaded = load_menu(document, device->memory(), loading);
    return {std::move(device), std::move(loaded.menu), std::move(loaded.warnings)};
}

}  // namespace frontpanel
