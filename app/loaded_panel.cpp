#include "loaded_panel.h"

#include <filesystem>

#include "driver_table.h"

namespace frontpanel {
namespace {

std::unique_ptr<Driven_device> driven_device(const std::string& file, const Json_value& root,
                                             Problems& problems, Data_interface& others,
                                             Lacking_drivers lacking) {
    const std::string folder = std::filesystem::path(file).parent_path().string();
    Device_cache_settings settings;
    // A program that ignores SIGTERM is killed after half a second: the cache must wait that long.
    settings.end_patience = std::chrono::seconds(2);
    return std::make_unique<Driven_device>(root, problems, driver_table(), folder, others,
                                           std::move(settings), lacking);
}

// Also without a source: what is wrong with drivers is reported whether they are used or not.
bool has_drivers(const Json_value& root) {
    const auto device = root.is_object() ? root.find("device") : std::nullopt;
    return has_sources(root) || (device && device->is_object() && device->find("drivers"));
}

}  // namespace

Loaded_panel load_panel(const std::string& file, Cards cards, int columns, Drivers drivers,
                        const Shows_character& shows, bool has_all_warnings) {
    return load_panel(std::make_unique<Menu_document>(file), file, cards, columns, drivers, shows,
                      has_all_warnings);
}

Loaded_panel load_panel(std::unique_ptr<Menu_document> document, const std::string& file,
                        Cards cards, int columns, Drivers drivers, const Shows_character& shows,
                        bool has_all_warnings) {
    if (shows) {
        warn_of_characters(*document, shows);
    }
    Problems& problems = document->problems();
    const Json_value root = document->root();
    const bool is_driven = drivers != Drivers::SIMULATED && has_drivers(root);
    Loaded_panel panel;
    panel.device = std::make_unique<Simulated_device>(
        root, problems, cards, is_driven ? Sources::LEFT_OUT : Sources::SIMULATED);
    if (is_driven) {
        panel.driven =
            driven_device(file, root, problems, panel.device->memory(), Lacking_drivers::REFUSED);
        if (drivers == Drivers::CHECKED) {
            panel.driven->check(problems);
        }
    } else if (has_drivers(root)) {
        // Otherwise mistakes in drivers and sources would first show on the real device.
        (void)driven_device(file, root, problems, panel.device->memory(),
                            Lacking_drivers::WARNED_OF);
    }
    Simulated_device& device = *panel.device;
    Loading loading;
    loading.columns = columns;
    loading.has_all_warnings = has_all_warnings;
    loading.card_service = device.cards() != nullptr ? device.cards()->address() : "";
    loading.simulator = Simulator_facts{device.product_options(),
                                        [&device](int slot, uint32_t pid, bool is_tree) {
                                            return device.has_document(slot, pid, is_tree);
                                        },
                                        device.wrong_parameters()};
    Data_interface& access =
        is_driven ? static_cast<Data_interface&>(panel.driven->cache()) : device.memory();
    Loaded_menu loaded = load_menu(*document, access, loading);
    panel.menu = std::move(loaded.menu);
    panel.warnings = std::move(loaded.warnings);
    return panel;
}

}  // namespace frontpanel
