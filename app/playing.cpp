#include "playing.h"

#include <iostream>
#include <sstream>
#include <string>

#include <frontpanel_base/atomic_file.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_displays/picture.h>
#include <frontpanel_ui/panel.h>
#include <frontpanel_ui/script_player.h>
#include "driver_work.h"
#include "reports.h"
#include "shipped.h"
#include "using_panel.h"

namespace frontpanel {
namespace {

int play_on(const Script& script, Panel& panel, Script_device& played, Display& display,
            std::ostream& out) {
    Script_player player(panel, played, display, out, std::cerr);
    const int differences = player.play(script);
    if (differences != 0) {
        std::cerr << one_line(script.file) << ": " << differences << " expectation"
                  << (differences == 1 ? "" : "s") << " not met\n";
        return EXIT_DIFFERENCE;
    }
    check_written(!out);
    return EXIT_PLAYED;
}

// The picture is taken when the script is over, also of what should have been otherwise.
int take_picture(const Options& options, const Script& script, Panel& panel,
                 const Loaded_panel& loaded) {
    check_writable(options.screenshot);
    Picture_display display(options.screenshot);
    std::ostringstream unseen;
    Simulated_script_device played = script_device_of(loaded);
    const int status = play_on(script, panel, played, display, unseen);
    display.finish();
    return status;
}

// Without a terminal the shipped menu shows its tour; another menu or display needs a script of its own.
std::string script_of(const Options& options) {
    if (!options.script.empty()) {
        return options.script;
    }
    const Lcd_size usual;
    if (options.menu != shipped_menu() || options.size.columns != usual.columns ||
        options.size.rows != usual.rows) {
        throw Input_error("standard output is not a terminal: name a script with --script");
    }
    return shipped_tour();
}

// Each step of a script's encoder is one, however fast the script is played.
Panel_options options_for_script(const Options& options, const Loaded_panel& loaded,
                                 Output_log& log, const Shown_panel& shown) {
    Panel_options of_script = panel_options_of(options, *loaded.menu, log);
    of_script.encoder->acceleration = false;
    follow_drivers(of_script, loaded, log, shown, Pace::OF_A_SCRIPT);
    return of_script;
}

}  // namespace

// The script to play. A picture needs none: then it shows the start.
Script script_to_play(const Options& options) {
    if (options.script.empty() && !options.screenshot.empty()) {
        return {};
    }
    const std::string file = script_of(options);
    return parse_script(file, read_input_file(file));
}

int play(const Options& options, const Display_row& display, const Script& script,
         const Loaded_panel& loaded, Output_log& log) {
    Shown_panel shown;
    Panel panel(*loaded.menu, options_for_script(options, loaded, log, shown));
    shown.panel = &panel;
    if (!options.screenshot.empty()) {
        return take_picture(options, script, panel, loaded);
    }
    Simulated_script_device played = script_device_of(loaded);
    return play_on(script, panel, played, *display.open_display(setup_of(options, log)), log.out());
}

Simulated_script_device script_device_of(const Loaded_panel& loaded) {
    Simulated_device& device = *loaded.device;
    Device_cache* const driven = loaded.driven == nullptr ? nullptr : &loaded.driven->cache();
    return {device.memory(), device.cards(), loaded.menu->parameters(), driven};
}

int play_unseen(const Options& options, const Loaded_panel& loaded, Script_device& played,
                Output_log& log) {
    const Script script = parse_script(options.script, read_input_file(options.script));
    std::ostringstream unseen;
    const Display_setup setup{"",     options.size, options.keys, log.out_descriptor(),
                              unseen, std::cerr};
    Shown_panel shown;
    Panel panel(*loaded.menu, options_for_script(options, loaded, log, shown));
    shown.panel = &panel;
    return play_on(script, panel, played, *default_display(false).open_display(setup), unseen);
}

}  // namespace frontpanel
