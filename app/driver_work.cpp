#include "driver_work.h"

#include <iostream>
#include <string>
#include <vector>

#include <frontpanel_base/input_error.h>
#include <frontpanel_binding/parameter_address.h>
#include "options.h"

namespace frontpanel {
namespace {

constexpr std::chrono::seconds FIRST_VALUES(3);
constexpr std::chrono::seconds WRITE_OF_A_SCRIPT(1);

// The list already marks a value that cannot be read, and shows the reason when it is selected. The log has every
// event.
bool is_shown(Driver_event::Kind kind) {
    return kind != Driver_event::BACK && kind != Driver_event::READ_FAILED &&
           kind != Driver_event::READ_AGAIN;
}

// Notices name the item that shows the parameter: the display does not show parameter names.
std::string item_name_of(const std::string& parameter, Menu& menu) {
    const Parameter* const found = menu.parameters().find_reference(parameter);
    const std::vector<Data_entry*> items =
        found == nullptr ? std::vector<Data_entry*>()
                         : menu.items_of({found->pid, varidx_of(found->index)});
    const std::string name = items.empty() ? "" : Menu::name_of(*items.front());
    return name.empty() ? parameter : name;
}

void tell(const Driver_event& event, Output_log& log, Panel* panel, Menu& menu) {
    log.note(one_line("driver " + event.text()));
    if (panel == nullptr || !is_shown(event.kind)) {
        return;
    }
    Driver_event shown = event;
    shown.driver = event.parameter.empty() ? event.driver : item_name_of(event.parameter, menu);
    shown.parameter.clear();
    panel->tell(shown.driver, shown.text().substr(shown.driver.size() + 2));
}

}  // namespace

void start_drivers(const Loaded_panel& loaded, First_values first_values) {
    if (loaded.driven == nullptr) {
        return;
    }
    loaded.driven->cache().start();
    if (first_values == First_values::AWAITED) {
        loaded.driven->cache().read_all(FIRST_VALUES);
    }
}

void follow_drivers(Panel_options& options, const Loaded_panel& loaded, Output_log& log,
                    const Shown_panel& shown, Pace pace) {
    if (loaded.driven == nullptr) {
        return;
    }
    Device_cache& cache = loaded.driven->cache();
    options.device_descriptor = cache.descriptor();
    options.before_tick = [&cache, &log, &shown, &menu = *loaded.menu, pace] {
        if (pace == Pace::OF_A_SCRIPT) {
            (void)cache.flush(WRITE_OF_A_SCRIPT);
        }
        cache.take_changes();
        for (const Driver_event& event : cache.take_events()) {
            tell(event, log, shown.panel, menu);
        }
    };
}

int finish_writes(const Loaded_panel& loaded, Output_log& log, int status,
                  std::chrono::milliseconds most) {
    if (loaded.driven == nullptr) {
        return status;
    }
    const std::vector<Unsent_write> left = loaded.driven->cache().flush(most);
    for (const Driver_event& event : loaded.driven->cache().take_events()) {
        tell(event, log, nullptr, *loaded.menu);
    }
    for (const Unsent_write& write : left) {
        log.note(one_line("driver " + write.text()));
        std::cerr << "frontpanel: " << one_line(write.text()) << '\n';
    }
    return status == EXIT_PLAYED && !left.empty() ? EXIT_DIFFERENCE : status;
}

}  // namespace frontpanel
