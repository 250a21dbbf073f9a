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

void describe(CLI::App& app, Options& options) {
    add_file(app, "--menu", options.menu, "The menu to show (docs/menu-file.md)");
    add_file(app, "--script", options.script,
             "Play this script without a terminal (docs/scripts.md)");
    app.add_option_function<std::string>(
           "--size",
           [&options](const std::string& text) {
               const std::string error = parse_size(text, options.size);
               if (!error.empty()) {
                   throw CLI::ValidationError("--size", error);
               }
           },
           "Columns and rows of the display, 20x2 unless told")
        ->type_name("COLUMNSxROWS");
    add_file(app, "--log", options.log,
             "Where the library's diagnostics go, " + default_log_file() + " unless told");
    app.add_option("--debug", options.debug, "Mask of the diagnostics, such as 0x8401")
        ->type_name("MASK");
    app.add_flag("--check", options.check, "Only check the menu, and the script if one is named");
}

}  // namespace

std::variant<Options, int> parse_options(int argc, const char* const* argv, std::ostream& out,
                                         std::ostream& errors) {
    Options options;
    options.menu = shipped_menu();
    CLI::App app("Shows a device's front-panel menu on the terminal, or plays a script on it.",
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
