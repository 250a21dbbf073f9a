#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <optional>

#include <frontpanel_base/input_error.h>
#include <frontpanel_base/nearest_name.h>
#include <frontpanel_base/numbers.h>
#include "configuration.h"
#include "inputs.h"
#include "output_log.h"
#include "shipped.h"

namespace frontpanel {
namespace {

// "20x2". Returns an empty text, or what is wrong, as CLI11 wants it.
std::string parse_size(const std::string& text, Lcd_size& size) {
    const size_t middle = std::min(text.find('x'), text.size());
    const auto columns =
        parse_number(text.substr(0, middle), SMALLEST_LCD.columns, LARGEST_LCD.columns);
    const auto rows = parse_number(text.substr(std::min(middle + 1, text.size())),
                                   SMALLEST_LCD.rows, LARGEST_LCD.rows);
    if (!columns || !rows) {
        return "expected COLUMNSxROWS from " + size_text(SMALLEST_LCD) + " to " +
               size_text(LARGEST_LCD) + ", found \"" + text + "\"";
    }
    size = {*columns, *rows};
    return "";
}

// An empty name is rejected: it usually comes from a variable that was never set.
CLI::Option* add_file(CLI::App& app, const std::string& name, std::string& file,
                      const std::string& description) {
    return app.add_option(name, file, description)
        ->type_name("FILE")
        ->check([](const std::string& given) {
            return given.empty() ? "expected the name of a file" : std::string();
        });
}

// The columns of a line of help: an option, then what it does.
constexpr size_t OPTION_WIDTH = 27;

// One line for each option, then examples.
class Help : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string /*name*/,
                          CLI::AppFormatMode /*mode*/) const override {
        std::string text = app->get_description() + "\n\n";
        for (const CLI::Option* const option : app->get_options()) {
            const std::string& letter = option->get_snames().empty() ? "" : option->get_snames()[0];
            std::string left = letter.empty() ? "      " : "  -" + letter + ", ";
            left += "--" + option->get_lnames()[0];
            if (option->get_expected_min() != 0) {
                left += " " + option->get_type_name();
            }
            left.resize(std::max(left.size() + 1, OPTION_WIDTH), ' ');
            text += left + option->get_description() + "\n";
        }
        return text + "\n" + app->get_footer() + "\n";
    }
};

// An option whose text is parsed elsewhere, which throws Input_error.
template <typename Value, typename Parse>
CLI::Option* add_parsed(CLI::App& app, const std::string& name, Value& value, Parse parse,
                        const std::string& description) {
    const auto take = [name, &value, parse](const std::string& text) {
        try {
            value = parse(text);
        } catch (const Input_error& error) {
            throw CLI::ValidationError(name, error.what());
        }
    };
    return app.add_option_function<std::string>(name, take, description);
}

int parse_time_out(const std::string& text) {
    constexpr int LONGEST = 86400;
    const std::optional<int> seconds = parse_number(text, 0, LONGEST);
    if (!seconds) {
        throw Input_error("expected seconds from 0 to " + std::to_string(LONGEST) + ", found \"" +
                          text + "\"");
    }
    return *seconds;
}

// Decimal, or hexadecimal behind "0x".
uint32_t parse_mask(const std::string& text) {
    uint32_t mask = 0;
    const bool is_hexadecimal = text.compare(0, 2, "0x") == 0 || text.compare(0, 2, "0X") == 0;
    const char* const begin = text.data() + (is_hexadecimal ? 2 : 0);
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(begin, end, mask, is_hexadecimal ? 16 : 10);
    if (begin == end || read.ptr != end || read.ec != std::errc()) {
        throw Input_error("expected a number from 0 to 0xffffffff, found \"" + text + "\"");
    }
    return mask;
}

// What was probably meant by the first option that is unknown.
std::string hint_of_option(const CLI::App& app) {
    for (const std::string& unknown : app.remaining()) {
        if (unknown.compare(0, 2, "--") == 0) {
            const std::string name = unknown.substr(2, unknown.find('=') - 2);
            Nearest_name nearest(name);
            for (const CLI::Option* const option : app.get_options()) {
                nearest.offer(option->get_lnames()[0]);
            }
            return nearest.hint("--", "");
        }
    }
    return "";
}

void take_inputs(const std::vector<std::string>& texts, Options& options) {
    options.inputs.clear();
    for (const std::string& text : texts) {
        try {
            options.inputs.push_back(parse_input(text));
        } catch (const Input_error& error) {
            throw CLI::ValidationError("--input", error.what());
        }
    }
}

// The keys of the display.
Key_map take_keys(const std::string& text, Options& options) {
    Key_map of_display;
    split_keys(parse_some_keys(text), of_display, options.input_keys);
    return of_display;
}

void describe_front(CLI::App& app, Options& options) {
    add_parsed(app, "--display", options.display, parse_display, display_names())
        ->type_name("DISPLAY");
    add_parsed(
        app, "--charset", options.rom,
        [](const std::string& text) { return &parse_character_rom(text); },
        "Characters of charlcd: " + character_rom_names())
        ->type_name("NAME");
    app.add_option_function<std::vector<std::string>>(
           "--input",
           [&options](const std::vector<std::string>& texts) { take_inputs(texts, options); },
           "An encoder, buttons or a knob; as often as needed")
        ->type_name("evdev:DEVICE")
        ->allow_extra_args(false);
    add_parsed(
        app, "--keys", options.keys,
        [&options](const std::string& text) { return take_keys(text, options); },
        "Keys of lcdproc and inputs, such as Enter=select,F1=1")
        ->type_name("KEYS");
    add_parsed(app, "--leds", options.leds, parse_led_map,
               "LEDs of the board, such as alarm=NAME,alive=NAME")
        ->type_name("LEDS");
    add_parsed(app, "--timeout", options.time_out, parse_time_out,
               "Idle seconds before dimming (default 300, 0: never)")
        ->type_name("SECONDS");
    app.add_flag("--no-acceleration", options.no_acceleration, "Disable encoder acceleration");
    app.add_flag("--still", options.still, "Keep the simulated device from moving by itself");
    app.add_flag("--simulate", options.simulate, "Simulate what lives at drivers");
    add_file(app, "--pin-file", options.pin_file, "Lock with the PIN in this file");
}

// Options that print something instead of showing the panel.
void describe_reports(CLI::App& app, Options& options) {
    CLI::Option* const dump =
        app.add_flag("--dump{table}", options.dump, "Print the menu, then exit; =json for programs")
            ->check([](const std::string& form) {
                return form == "table" || form == "json"
                           ? std::string()
                           : "expected table or json, found \"" + form + "\"";
            });
    CLI::Option* const graph =
        app.add_flag("--graph", options.graph, "Print the menu for Graphviz, then exit");
    CLI::Option* const explain =
        app.add_option("--explain", options.explain, "Explain an entry's state, then exit")
            ->type_name("ENTRY")
            ->check([](const std::string& given) {
                return given.empty() ? "expected a path or an id" : std::string();
            });
    CLI::Option* const probe =
        app.add_flag("--probe", options.probe, "Read each driver's parameters once, then exit");
    CLI::Option* const check = app.get_option("--check");
    dump->excludes(graph)->excludes(explain)->excludes(probe)->excludes(check);
    graph->excludes(explain)->excludes(probe)->excludes(check);
    explain->excludes(probe)->excludes(check);
    probe->excludes(check);
}

// Every option has a line of help of at most 80 characters, an entry in packaging/frontpanel.1, one in
// packaging/completion and, unless it cannot be configured, one in packaging/frontpanel.conf.
void describe(CLI::App& app, Options& options) {
    app.set_help_flag("-h,--help", "Print this help")->configurable(false);
    app.set_version_flag("--version", "frontpanel " FRONTPANEL_VERSION, "Print the version")
        ->configurable(false);
    add_file(app, "--config", options.config, "Read further options from this file")
        ->configurable(false);
    add_file(app, "--menu", options.menu, "The menu to show (docs/menu-file.md)");
    add_file(app, "--script", options.script, "Play a script, not the keyboard (docs/scripts.md)");
    app.add_option_function<std::string>(
           "--size",
           [&options](const std::string& text) {
               const std::string error = parse_size(text, options.size);
               if (!error.empty()) {
                   throw CLI::ValidationError("--size", error);
               }
               options.has_size = true;
           },
           "Display size in characters (default 20x4)")
        ->type_name("COLUMNSxROWS");
    add_file(app, "--state", options.state, "Keep the device's values in this file");
    add_file(app, "--screenshot", options.screenshot,
             "Write an SVG picture of the panel, then exit");
    add_file(app, "--log", options.log, "File for the library's diagnostics");
    add_parsed(app, "--debug", options.debug, parse_mask, "Mask of the diagnostics, such as 0x8401")
        ->type_name("MASK");
    describe_front(app, options);
    app.add_flag("--check", options.check, "Check the menu, presets and any script, then exit");
    describe_reports(app, options);
    app.footer(
        "frontpanel --menu my.json --state my.values     keep values over a restart\n"
        "frontpanel --menu my.json --check               report the menu's mistakes");
    app.formatter(std::make_shared<Help>());
}

}  // namespace

std::variant<Options, int> parse_options(int argc, const char* const* argv, std::ostream& out,
                                         std::ostream& errors) {
    Options options;
    options.menu = shipped_menu();
    CLI::App app("Shows a device's front-panel menu on a display or terminal, or plays a script.",
                 "frontpanel");
    describe(app, options);
    try {
        app.parse(argc, argv);
        if (!options.config.empty()) {
            configure(app, options.config);
        }
        options.menu = menu_file(options.menu);
    } catch (const CLI::Success& help) {
        app.exit(help, out, errors);
        if (!out.flush()) {
            errors << "frontpanel: " << OUTPUT_FAILED << '\n';
            return EXIT_BAD_INPUT;
        }
        return EXIT_PLAYED;
    } catch (const CLI::ExtrasError& error) {
        errors << "frontpanel: " << one_line(error.what() + hint_of_option(app)) << '\n';
        return EXIT_BAD_INPUT;
    } catch (const std::runtime_error& error) {  // of the command line, or an Input_error
        errors << "frontpanel: " << one_line(error.what()) << '\n';
        return EXIT_BAD_INPUT;
    }
    return options;
}

}  // namespace frontpanel
