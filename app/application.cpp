#include "application.h"

#include <fcntl.h>
#include <frontpanel_data/data_entry.h>
#include <unistd.h>

#include <cstring>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <variant>

#include <frontpanel_base/atomic_file.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_base/problems.h>
#include <frontpanel_base/signal_cleanup.h>
#include <frontpanel_displays/display_table.h>
#include <frontpanel_displays/picture.h>
#include <frontpanel_menu/explain.h>
#include <frontpanel_menu/menu_dump.h>
#include <frontpanel_menu/menu_graph.h>
#include <frontpanel_simulator/state_file.h>
#include <frontpanel_simulator/state_keeper.h>
#include <frontpanel_ui/panel.h>
#include <frontpanel_ui/script_player.h>
#include "curl_home.h"
#include "file_roles.h"
#include "loaded_panel.h"
#include "options.h"
#include "output_log.h"
#include "shipped.h"
#include "simulated_script_device.h"

namespace frontpanel {
namespace {

// The library tells what is wrong with an expression on standard error, where the panel has one line to say.
Loaded_panel load(const Options& options, Output_log& log, Cards cards) {
    log.take_errors();
    Loaded_panel loaded = load_panel(options.menu, cards, options.size.columns);
    log.return_errors();
    return loaded;
}

void check_written(bool failed) {
    if (failed) {
        throw Input_error(OUTPUT_FAILED);
    }
}

int check(const Options& options, Output_log& log) {
    const Loaded_panel loaded = load(options, log, Cards::OFF);
    if (!options.script.empty()) {
        parse_script(options.script, read_input_file(options.script));
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

int play(const Script& script, Panel& panel, Simulated_device& device, Display& display,
         std::ostream& out) {
    Simulated_script_device played(device.memory(), device.cards());
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
                 Simulated_device& device) {
    check_writable(options.screenshot);
    Picture_display display(options.screenshot);
    std::ostringstream unseen;
    const int status = play(script, panel, device, display, unseen);
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
        throw Input_error("standard output is no terminal: name a script with --script");
    }
    return shipped_tour();
}

bool has_terminal(const Output_log& log) {
    return isatty(log.out_descriptor()) != 0;
}

// The display that was named. Otherwise the usual one: of a person at a terminal, unless a script is played.
const Display_row& display_of(const Options& options, const Output_log& log) {
    if (options.display.display != nullptr) {
        return *options.display.display;
    }
    return default_display(options.script.empty() && options.screenshot.empty() &&
                           has_terminal(log));
}

// Whether a person can use the panel on the display.
void check_front(const Options& options, const Display_row& display, const Output_log& log) {
    if (!options.script.empty() || !options.screenshot.empty()) {
        throw Input_error("scripts and pictures are for the display \"text\"");
    }
    if (!display.takes_terminal) {
        return;
    }
    if (!has_terminal(log)) {
        throw Input_error("standard output is no terminal: name a script with --script");
    }
    if (isatty(STDIN_FILENO) == 0) {
        throw Input_error("standard input is no terminal: name a script with --script");
    }
}

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
    return pin;
}

// What the transfers of live data need while the cards run.
std::optional<Curl_home> prepare_transfers(Simulated_device& device) {
    if (device.cards() == nullptr) {
        return std::nullopt;
    }
    if (!can_post()) {
        std::cerr << "warning: live values cannot be posted: /dev is not writable\n";
    }
    return std::optional<Curl_home>(std::in_place);
}

// What is played while nobody is at the keys. A picture needs no script: then it is of the start.
Script script_to_play(const Options& options) {
    if (options.script.empty() && !options.screenshot.empty()) {
        return {};
    }
    const std::string file = script_of(options);
    return parse_script(file, read_input_file(file));
}

Display_setup setup_of(const Options& options, Output_log& log) {
    const auto size = options.has_size ? std::optional<Lcd_size>(options.size) : std::nullopt;
    return {options.display.argument, size,      options.keys,
            log.out_descriptor(),     log.out(), std::cerr};
}

Panel_options panel_options_of(const Options& options, Menu& menu, Output_log& log) {
    Panel_options panel;
    panel.size = options.size;
    panel.encoder = menu.encoder_settings();
    panel.log = &log.lines();
    return panel;
}

// Each step of a script's encoder is one, however fast the script is played.
Panel_options options_for_script(const Options& options, Menu& menu, Output_log& log) {
    Panel_options panel = panel_options_of(options, menu, log);
    panel.encoder->acceleration = false;
    return panel;
}

Panel_options options_for_person(const Options& options, Menu& menu, Output_log& log) {
    Panel_options panel = panel_options_of(options, menu, log);
    panel.encoder->acceleration = panel.encoder->acceleration && !options.no_acceleration;
    panel.idle_timeout = std::chrono::seconds(options.time_out);
    panel.pin = pin_of(options);
    // Each turn of the loop asks the time. Lines that the library prints unasked make the log grow as well.
    panel.clock = [&log] {
        log.trim();
        return std::chrono::steady_clock::now();
    };
    return panel;
}

// A terminal that shows the panel has no room for what is said to standard error meanwhile.
int use_front(const Options& options, const Display_row& display, Menu& menu, Output_log& log,
              const End_watch& end) {
    Panel panel(menu, options_for_person(options, menu, log));
    if (display.takes_terminal) {
        log.take_errors();
    }
    const int status = panel.run(*display.open_front(setup_of(options, log)), end);
    if (display.takes_terminal) {
        log.return_errors();
    }
    return status;
}

// With `end` for a person, otherwise the script is played.
int use(const Options& options, const Display_row& display, const std::optional<Script>& script,
        const Loaded_panel& loaded, Output_log& log, const End_watch* end) {
    Menu& menu = *loaded.menu;
    if (end != nullptr) {
        return use_front(options, display, menu, log, *end);
    }
    Panel panel(menu, options_for_script(options, menu, log));
    if (!options.screenshot.empty()) {
        return take_picture(options, *script, panel, *loaded.device);
    }
    return play(*script, panel, *loaded.device, *display.open_display(setup_of(options, log)), log.out());
}

void warn(const std::string& line) {
    std::cerr << "warning: " << one_line(line) << '\n';
}

// Saves the values at its end, and when a signal ends the process before. The first is silent: a caller who needs to
// know finishes the keeper.
class Save_at_any_end {
public:
    Save_at_any_end(End_watch& watch, State_keeper& keeper) : m_watch(watch), m_keeper(keeper) {
        m_watch.set_forced_end([this] { save("frontpanel: "); });
    }
    ~Save_at_any_end() {
        save(nullptr);
        m_watch.set_forced_end(nullptr);
    }
    Save_at_any_end(const Save_at_any_end&) = delete;
    Save_at_any_end& operator=(const Save_at_any_end&) = delete;

private:
    void save(const char* complaint) {
        try {
            m_keeper.save_now();
        } catch (const std::exception& error) {
            if (complaint != nullptr) {
                std::cerr << complaint << error.what() << '\n';
            }
        }
    }

    End_watch& m_watch;
    State_keeper& m_keeper;
};

// Where the values cannot be written the panel can be used all the same; the end tells what was not kept.
int use_keeping_values(const Options& options, Simulated_device& device, End_watch& watch,
                       const std::function<int()>& use) {
    State_file file(options.state, device.memory(), device.cards());
    for (const std::string& line : file.restore()) {
        warn(line);
    }
    try {
        file.check_savable();
    } catch (const Input_error& error) {
        warn(error.what());
    }
    State_keeper keeper(file, device.memory(), device.cards());
    int status = 0;
    {
        const Save_at_any_end save(watch, keeper);
        status = use();
        keeper.finish();
    }
    return status;
}

bool is_report(const Options& options) {
    return options.dump || options.graph || !options.explain.empty();
}

std::string report_of(const Options& options, Menu& menu) {
    if (options.dump) {
        debug = 0;
        return dump_of(menu);
    }
    return options.graph ? graph_of(menu) : explain(menu, options.explain);
}

// What the library prints while the menu is read goes to the log as ever, so that standard output is the report.
int report(const Options& options) {
    Output_log log(options.log);
    debug = options.debug;
    const Loaded_panel loaded = load(options, log, Cards::OFF);
    VarIdDataInfStore::m_pDataAccessInf = &loaded.menu->access();
    refresh_all(*loaded.menu);
    log.out() << report_of(options, *loaded.menu);
    log.out().flush();
    check_written(!log.out());
    return EXIT_PLAYED;
}

// A person's panel ends by itself when a signal asks for it. A script is ended at once, but its values are kept.
void watch_for_the_end(std::optional<End_watch>& watch, bool interactive, bool keeps_values) {
    if (interactive) {
        watch.emplace();
    } else if (keeps_values) {
        watch.emplace(std::chrono::milliseconds(0));
    }
}

int show(const Options& options, Output_log& log) {
    const Display_row& display = display_of(options, log);
    const bool interactive = display.is_interactive();
    if (interactive) {
        check_front(options, display, log);
    }
    const bool keeps_values = !options.state.empty();
    std::optional<End_watch> end;
    watch_for_the_end(end, interactive, keeps_values);
    const Loaded_panel loaded = load(options, log, Cards::ON);
    std::optional<Script> script;
    if (!interactive) {
        script = script_to_play(options);
    }
    const std::optional<Curl_home> curl_home = prepare_transfers(*loaded.device);
    const auto use_it = [&] {
        return use(options, display, script, loaded, log, interactive ? &*end : nullptr);
    };
    return keeps_values ? use_keeping_values(options, *loaded.device, *end, use_it) : use_it();
}

// Standard error as the panel was given it, whatever takes its place meanwhile.
int first_errors = -1;

// A descriptor that is closed becomes the next file or connection that is opened, which whatever is said to
// standard error would then disturb.
void hold_standard_error() {
    first_errors = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (first_errors >= 0) {
        return;
    }
    const int nothing = open("/dev/null", O_WRONLY);
    if (nothing >= 0 && nothing != STDERR_FILENO) {
        dup2(nothing, STDERR_FILENO);
        close(nothing);
    }
}

// Takes no memory: there may be none left.
void say(int descriptor, const char* text) {
    static_cast<void>(!write(descriptor, text, std::strlen(text)));
}

// What the exception that is being handled says, which is memory, a thread or another resource that ran out.
void complain_of_exception(int descriptor) {
    say(descriptor, "frontpanel: ");
    try {
        throw;
    } catch (const std::bad_alloc&) {
        say(descriptor, "out of memory");
    } catch (const std::exception& error) {
        say(descriptor, error.what());
    } catch (...) {
        say(descriptor, "unexpected error");
    }
    say(descriptor, "\n");
}

// For an exception on a thread of a library's own, which nobody can catch.
[[noreturn]] void end_after_exception() {
    do_last_acts();
    if (std::current_exception() != nullptr) {
        complain_of_exception(first_errors);
    } else {
        say(first_errors, "frontpanel: ended by a fault in the program\n");
    }
    _exit(EXIT_EXHAUSTED);
}

int run_options(int argc, const char* const* argv) {
    const auto parsed = parse_options(argc, argv, std::cout, std::cerr);
    if (const int* const status = std::get_if<int>(&parsed)) {
        return *status;
    }
    const Options& options = std::get<Options>(parsed);
    check_files(options);
    if (is_report(options)) {
        return report(options);
    }
    Output_log log(options.log);
    debug = options.debug;
    return options.check ? check(options, log) : show(options, log);
}

}  // namespace

int run(int argc, const char* const* argv) {
    hold_standard_error();
    std::set_terminate(end_after_exception);
    try {
        return run_options(argc, argv);
    } catch (const Input_errors& errors) {
        for (const std::string& line : errors.lines()) {
            std::cerr << line << '\n';
        }
        return EXIT_BAD_INPUT;
    } catch (const Input_error& error) {
        std::cerr << "frontpanel: " << error.what() << '\n';
        return EXIT_BAD_INPUT;
    } catch (...) {
        complain_of_exception(STDERR_FILENO);
        return EXIT_EXHAUSTED;
    }
}

}  // namespace frontpanel
