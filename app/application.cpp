#include "application.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <exception>
#include <functional>
#include <iostream>
#include <optional>
#include <variant>

#include <frontpanel_base/atomic_file.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_base/problems.h>
#include <frontpanel_base/signal_cleanup.h>
#include <frontpanel_data/data_interface.h>
#include <frontpanel_simulator/state_file.h>
#include <frontpanel_simulator/state_keeper.h>
#include <frontpanel_ui/panel.h>
#include "curl_home.h"
#include "driver_work.h"
#include "file_roles.h"
#include "loaded_panel.h"
#include "options.h"
#include "output_log.h"
#include "playing.h"
#include "probe.h"
#include "reports.h"
#include "rule_state.h"
#include "using_panel.h"

namespace frontpanel {
namespace {

// A signal gives the process no more than a second.
constexpr std::chrono::milliseconds SIGNALLED_WRITES(700);

// With `end` for a person, otherwise the script is played.
int use(const Options& options, const Display_row& display, const std::optional<Script>& script,
        const Loaded_panel& loaded, Output_log& log, const End_watch* end) {
    return end != nullptr ? use_panel(options, display, loaded, log, *end)
                          : play(options, display, *script, loaded, log);
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

// The panel can be used although the values cannot be written; at exit it reports what was not kept.
int use_keeping_values(const Options& options, const Loaded_panel& loaded, End_watch& watch,
                       const std::function<int()>& use) {
    Simulated_device& device = *loaded.device;
    State_file file(options.state, device.memory(), device.cards());
    for (const std::string& line : file.restore()) {
        warn(line);
    }
    restore_rules(file, *loaded.menu);
    try {
        file.check_savable();
    } catch (const Input_error& error) {
        warn(error.what());
    }
    State_keeper keeper(file, device.memory(), device.cards());
    int status = 0;
    {
        const Save_at_any_end save(watch, keeper);
        const auto keep = [&] {
            if (keep_rules(*loaded.menu, file)) {
                keeper.note_change();
            }
        };
        loaded.menu->bindings()->set_done_listener(keep);
        status = use();
        loaded.menu->bindings()->set_done_listener(nullptr);
        keep();
        keeper.finish();
    }
    return status;
}

// A person's panel ends by itself when a signal asks for it. A script is ended at once, but its values are kept.
void watch_for_the_end(std::optional<End_watch>& watch, bool interactive, bool keeps_values) {
    if (interactive) {
        watch.emplace();
    } else if (keeps_values) {
        watch.emplace(std::chrono::milliseconds(0));
    }
}

int show(const Options& options, Output_log& log, Menu_pointer document) {
    const Display_row& display = display_of(options, log);
    const bool interactive = display.is_interactive();
    if (interactive) {
        check_front(options, display, log);
    }
    const bool keeps_values = !options.state.empty();
    std::optional<End_watch> end;
    watch_for_the_end(end, interactive, keeps_values);
    const Loaded_panel loaded = load(options, log, Cards::ON, std::move(document));
    std::optional<Script> script;
    if (!interactive) {
        script = script_to_play(options);
    }
    const std::optional<Curl_home> curl_home = prepare_transfers(*loaded.device, log);
    start_drivers(loaded, interactive ? First_values::NOT_AWAITED : First_values::AWAITED);
    const auto use_it = [&] {
        const int status =
            use(options, display, script, loaded, log, interactive ? &*end : nullptr);
        const bool is_signalled = end && end->signal_number() != 0;
        return finish_writes(loaded, log, status, is_signalled ? SIGNALLED_WRITES : LAST_WRITES);
    };
    return keeps_values ? use_keeping_values(options, loaded, *end, use_it) : use_it();
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

// For an exception on a thread of another library, which cannot be caught.
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
    Menu_pointer document = check_files(options);
    if (is_report(options)) {
        return report(options, std::move(document));
    }
    Output_log log(options.log);
    debug = options.debug;
    if (options.check) {
        return check(options, log, std::move(document));
    }
    return options.probe ? probe(options, log, std::move(document))
                         : show(options, log, std::move(document));
}

}  // namespace

int run(int argc, const char* const* argv) {
    hold_standard_error();
    std::set_terminate(end_after_exception);
    // A file beyond the limit of the process is a write that fails, and no sudden end.
    std::signal(SIGXFSZ, SIG_IGN);
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
