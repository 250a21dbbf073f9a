#include "reports.h"

#include <iostream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <frontpanel_base/input_error.h>
#include <frontpanel_base/problems.h>
#include <frontpanel_data/data_interface.h>
#include <frontpanel_menu/explain.h>
#include <frontpanel_menu/menu_check.h>
#include <frontpanel_menu/menu_dump.h>
#include <frontpanel_menu/menu_graph.h>
#include <frontpanel_simulator/state_file.h>
#include <frontpanel_ui/panel.h>
#include <frontpanel_ui/script.h>
#include "driver_work.h"
#include "playing.h"
#include "rule_state.h"
#include "using_panel.h"

namespace frontpanel {
namespace {

std::string report_of(const Options& options, Menu& menu) {
    if (!options.dump.empty()) {
        debug = 0;
        return options.dump == "json" ? json_dump_of(menu) : dump_of(menu);
    }
    return options.graph ? graph_of(menu) : explain(menu, options.explain);
}

}  // namespace

// The library reports mistakes of an expression to standard error, where the panel prints one line of its own.
Loaded_panel load(const Options& options, Output_log& log, Cards cards, Menu_pointer document,
                  const Shows_character& shows) {
    log.take_errors();
    const Drivers drivers = options.simulate ? Drivers::SIMULATED
                            : options.check  ? Drivers::CHECKED
                                             : Drivers::LOADED;
    if (document == nullptr) {
        document = std::make_unique<Menu_document>(options.menu);
    }
    Loaded_panel loaded = load_panel(std::move(document), options.menu, cards, options.size.columns,
                                     drivers, shows, options.check);
    log.return_errors();
    return loaded;
}

std::optional<Curl_home> prepare_transfers(Simulated_device& device, Output_log& log) {
    if (!device.cards_failure().empty()) {
        log.report("warning: " + device.cards_failure());
    }
    if (device.cards() == nullptr) {
        return std::nullopt;
    }
    if (!can_post()) {
        std::cerr << "warning: live values cannot be posted: /dev is not writable\n";
    }
    return std::optional<Curl_home>(std::in_place);
}

void check_written(bool failed) {
    if (failed) {
        throw Input_error(OUTPUT_FAILED);
    }
}

int check(const Options& options, Output_log& log, Menu_pointer document) {
    Shows_character shows;
    if (const Display_row* const display = options.display.display) {
        shows = [&options, display](char32_t character) {
            return display->shows(character, *options.rom);
        };
    }
    const Loaded_panel loaded = load(options, log, Cards::OFF, std::move(document), shows);
    if (!options.script.empty()) {
        parse_script(options.script, read_input_file(options.script));
    }
    (void)pin_of(options);
    std::vector<std::string> mistakes = preset_mistakes(*loaded.menu);
    if (!mistakes.empty()) {
        mistakes.insert(mistakes.end(), loaded.warnings.begin(), loaded.warnings.end());
        throw Input_errors(mistakes);
    }
    for (const std::string& warning : loaded.warnings) {
        std::cerr << warning << '\n';
    }
    log.out() << one_line(options.menu) << ": a menu of " << loaded.menu->entry_count()
              << " entries\n";
    log.out().flush();
    check_written(!log.out());
    return EXIT_PLAYED;
}

bool is_report(const Options& options) {
    return !options.dump.empty() || options.graph || !options.explain.empty();
}

namespace {

// The state is only read: a report keeps nothing.
void restore_state(const Options& options, const Loaded_panel& loaded) {
    if (options.state.empty()) {
        return;
    }
    State_file file(options.state, loaded.device->memory(), loaded.device->cards());
    for (const std::string& line : file.restore()) {
        std::cerr << "warning: " << one_line(line) << '\n';
    }
    restore_rules(file, *loaded.menu);
}

}  // namespace

// What the library prints while the menu is read goes to the log as ever, so that standard output is the report.
int report(const Options& options, Menu_pointer document) {
    Output_log log(options.log);
    debug = options.debug;
    const bool is_played = !options.script.empty();
    const Loaded_panel loaded =
        load(options, log, is_played ? Cards::ON : Cards::OFF, std::move(document));
    const std::optional<Curl_home> curl_home = prepare_transfers(*loaded.device, log);
    VarIdDataInfStore::m_pDataAccessInf = &loaded.menu->access();
    restore_state(options, loaded);
    start_drivers(loaded, First_values::AWAITED);
    Simulated_script_device played = script_device_of(loaded);
    const int status = is_played ? play_unseen(options, loaded, played, log) : EXIT_PLAYED;
    refresh_all(*loaded.menu);
    log.out() << report_of(options, *loaded.menu);
    log.out().flush();
    check_written(!log.out());
    return finish_writes(loaded, log, status, LAST_WRITES);
}

}  // namespace frontpanel
