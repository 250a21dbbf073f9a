#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <optional>

#include "input_error.h"
#include "output_log.h"
#include "shipped.h"

namespace panel {
namespace {

std::optional<int> dimension(const std::string& text, int min, int max) {
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stopped != end || number < min || number > max) {
        return std::nullopt;
    }
    return number;
}

std::string size_text(Lcd_size size) {
    return std::to_string(size.columns) + "x" + std::to_string(size.rows);
}

// "20x2". Returns an empty text, or what is wrong, as CLI11 wants it.
std::string parse_size(const std::string& text, Lcd_size& size) {
    const size_t middle = std::min(text.find('x'), text.size());
    const auto columns =
        dimension(text.substr(0, middle), SMALLEST_LCD.columns, LARGEST_LCD.columns);
    const auto rows = dimension(text.substr(std::min(middle + 1, text.size())), SMALLEST_LCD.rows,
                                LARGEST_LCD.rows);
    if (!columns || !rows) {
        return "expected COLUMNSxROWS from " + size_text(SMALLEST_LCD) + " to " +
               size_text(LARGEST_LCD) + ", found \"" + text + "\"";
    }
    size = {*columns, *rows};
    return "";
}

// An empty name is refused: it mostly comes from a variable that was never set.
void add_file(CLI::App& app, const std::string& name, std::string& file,
              const std::string& description) {
    app.add_option(name, file, description)->type_name("FILE")->check([](const std::string& given) {
        return given.empty() ? "expected the name of a file" : std::string();
    });
}

// The columns of a line of help: an option, then what it does.
constexpr size_t OPTION_WIDTH = 27;

// The whole help, which fits a terminal of 24 lines: a line an option, and what people do with them.
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

// Every option has a line of help of at most 80 characters, an entry in packaging/frontpanel.1 and one in
// packaging/completion.
void describe(CLI::App& app, Options& options) {
    app.set_help_flag("-h,--help", "Print this help");
    app.set_version_flag("--version", "frontpanel " FRONTPANEL_VERSION, "Print the version");
    add_file(app, "--menu", options.menu, "The menu to show (docs/menu-file.md)");
    add_file(app, "--script", options.script, "Play a script, not the keyboard (docs/scripts.md)");
    app.add_option_function<std::string>(
           "--size",
           [&options](const std::string& text) {
               const std::string error = parse_size(text, options.size);
               if (!error.empty()) {
                   throw CLI::ValidationError("--size", error);
               }
           },
           "The display's characters, 20x2 unless told")
        ->type_name("COLUMNSxROWS");
    add_file(app, "--state", options.state, "Keep the device's values in this file");
    add_file(app, "--screenshot", options.screenshot, "Make an SVG picture of the panel, and end");
    add_file(app, "--log", options.log, "Where the library's diagnostics go");
    app.add_option("--debug", options.debug, "Mask of the diagnostics, such as 0x8401")
        ->type_name("MASK");
    app.add_flag("--check", options.check, "Only check the menu, and the script if any");
    app.footer(
        "frontpanel --menu my.json --state my.values     values survive a restart\n"
        "frontpanel --menu my.json --check               what is wrong with a menu\n"
        "frontpanel --script my.script                   keys, and what they should do\n"
        "frontpanel --script my.script --screenshot my.svg");
    app.formatter(std::make_shared<Help>());
}

}  // namespace

std::variant<Options, int> parse_options(int argc, const char* const* argv, std::ostream& out,
                                         std::ostream& errors) {
    Options options;
    options.menu = shipped_menu();
    CLI::App app("Shows a device's front-panel menu in the terminal, or plays a script on it.",
                 "frontpanel");
    describe(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        app.exit(help, out, errors);
        return EXIT_PLAYED;
    } catch (const CLI::Error& error) {
        errors << "frontpanel: " << one_line(error.what()) << '\n';
        return EXIT_BAD_INPUT;
    }
    return options;
}

}  // namespace panel
