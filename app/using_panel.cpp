#include "using_panel.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <optional>
#include <string>

#include <frontpanel_base/input_error.h>
#include <frontpanel_display/key_table.h>
#include "driver_work.h"
#include "inputs.h"

namespace frontpanel {
namespace {

constexpr size_t REFRESHES_AT_ONCE = 100;  // some tenths of a millisecond

bool has_terminal(const Output_log& log) {
    return isatty(log.out_descriptor()) != 0;
}

bool can_others_read(const std::string& file) {
    struct stat status {};
    return stat(file.c_str(), &status) == 0 && (status.st_mode & S_IROTH) != 0;
}

}  // namespace

// What is in the file is never repeated in a message.
std::optional<std::string> pin_of(const Options& options) {
    if (options.pin_file.empty()) {
        return std::nullopt;
    }
    std::string pin = read_input_file(options.pin_file);
    while (!pin.empty() && (pin.back() == '\n' || pin.back() == '\r')) {
        pin.pop_back();
    }
    if (!is_pin(pin)) {
        throw Input_error(options.pin_file + ": expected a PIN of " + std::to_string(SHORTEST_PIN) +
                          " to " + std::to_string(LONGEST_PIN) + " digits");
    }
    if (can_others_read(options.pin_file)) {
        std::cerr << "warning: " << one_line(options.pin_file)
                  << ": others can read this PIN: \"chmod 600\" keeps it from them\n";
    }
    return pin;
}

namespace {

// The first name of a key in the map; empty where nothing presses it.
std::string name_of(const Key_map& keys, Key::Kind kind) {
    const auto found = std::find_if(
        keys.begin(), keys.end(), [kind](const auto& entry) { return entry.second.kind == kind; });
    return found == keys.end() ? "" : found->first;
}

// A display server names its keys itself. Those of the usual map are a keyboard's.
std::optional<Answer_keys> answer_keys_of(const Options& options, const Display_row& display) {
    if (!display.has_keys) {
        return Answer_keys{"Select", "Back"};  // a knob and a button without a name
    }
    const std::string accepting = name_of(options.keys, Key::SELECT);
    const std::string cancelling = name_of(options.keys, Key::BACK);
    const bool is_usual =
        accepting == row_of(Key::SELECT)->keyboard && cancelling == row_of(Key::BACK)->keyboard;
    return is_usual ? std::nullopt : std::optional<Answer_keys>({accepting, cancelling});
}

Panel_options options_for_person(const Options& options, const Display_row& display,
                                 const Loaded_panel& loaded, Output_log& log) {
    Panel_options panel = panel_options_of(options, *loaded.menu, log);
    panel.encoder->acceleration = panel.encoder->acceleration && !options.no_acceleration;
    panel.refreshes_at_once = REFRESHES_AT_ONCE;
    panel.idle_timeout = std::chrono::seconds(options.time_out);
    panel.pin = pin_of(options);
    panel.answer_keys = answer_keys_of(options, display);
    // Each turn of the loop asks the time. Lines that the library prints unasked make the log grow as well.
    Movement* const movement = options.still ? nullptr : &loaded.device->movement();
    panel.clock = [&log, movement, start = std::chrono::steady_clock::now()] {
        log.trim();
        const auto now = std::chrono::steady_clock::now();
        if (movement != nullptr) {
            movement->advance(std::chrono::duration_cast<std::chrono::milliseconds>(now - start));
        }
        return now;
    };
    return panel;
}

}  // namespace

const Display_row& display_of(const Options& options, const Output_log& log) {
    if (options.display.display != nullptr) {
        return *options.display.display;
    }
    return default_display(options.script.empty() && options.screenshot.empty() &&
                           has_terminal(log));
}

void check_front(const Options& options, const Display_row& display, const Output_log& log) {
    if (!options.script.empty() || !options.screenshot.empty()) {
        throw Input_error("scripts and pictures are for the display \"text\"");
    }
    if (!display.has_keys) {
        check_input_keys(options);
    }
    if (!display.takes_terminal) {
        return;
    }
    if (!has_terminal(log)) {
        throw Input_error("standard output is not a terminal: name a script with --script");
    }
    if (isatty(STDIN_FILENO) == 0) {
        throw Input_error("standard input is not a terminal: name a script with --script");
    }
}

Display_setup setup_of(const Options& options, Output_log& log) {
    const auto size = options.has_size ? std::optional<Lcd_size>(options.size) : std::nullopt;
    return {options.display.argument,
            size,
            options.keys,
            log.out_descriptor(),
            log.out(),
            std::cerr,
            options.rom};
}

namespace {

// Text editors find the place by the name under which the panel was given the file.
std::string line_of(const Rule_fault& fault) {
    return "warning: " + one_line(fault.text());
}

// A person reads the log on the panel, whose lines are short. The library's lines name no folder either.
std::string log_line_of(Rule_fault fault) {
    fault.place.erase(0, fault.place.rfind('/') + 1);
    return line_of(fault);
}

}  // namespace

Panel_options panel_options_of(const Options& options, Menu& menu, Output_log& log) {
    Panel_options panel;
    panel.size = options.size;
    panel.encoder = menu.encoder_settings();
    panel.log = &log.lines();
    panel.rule_fault = [&log](const Rule_fault& fault) {
        if (fault.is_notable()) {
            log.report(line_of(fault), log_line_of(fault));
        } else {
            log.note(log_line_of(fault));
        }
    };
    return panel;
}

// A terminal that shows the panel has no room for what is said to standard error meanwhile.
int use_panel(const Options& options, const Display_row& display, const Loaded_panel& loaded,
              Output_log& log, const End_watch& end) {
    Shown_panel shown;
    Panel_options panel_options = options_for_person(options, display, loaded, log);
    follow_drivers(panel_options, loaded, log, shown, Pace::OF_A_PERSON);
    Panel panel(*loaded.menu, std::move(panel_options));
    shown.panel = &panel;
    if (display.takes_terminal) {
        log.take_errors();
    }
    if (!display.has_keys && options.inputs.empty()) {
        std::cerr << "warning: the display has no keys: name an input with --input\n";
    }
    const std::unique_ptr<Front> front =
        whole_front(display.open_front(setup_of(options, log)), options, std::cerr);
    const int status = panel.run(*front, end);
    if (display.takes_terminal) {
        log.return_errors();
    }
    return status;
}

}  // namespace frontpanel
