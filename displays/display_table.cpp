#include <frontpanel_displays/display_table.h>

#include <algorithm>

#include <frontpanel_base/character_set.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_displays/charlcd_display.h>
#include <frontpanel_displays/lcdproc_display.h>
#include <frontpanel_displays/terminal.h>
#include <frontpanel_displays/text_display.h>

namespace frontpanel {
namespace {

std::unique_ptr<Front> open_terminal(const Display_setup& setup) {
    return std::make_unique<Terminal>(setup.terminal);
}

std::unique_ptr<Display> open_text(const Display_setup& setup) {
    return std::make_unique<Text_display>(setup.out);
}

bool is_lcdproc_server(const std::string& argument) {
    return parse_lcdproc_server(argument).has_value();
}

std::unique_ptr<Front> open_lcdproc(const Display_setup& setup) {
    const Lcdproc_server server = parse_lcdproc_server(setup.argument).value_or(Lcdproc_server());
    return std::make_unique<Lcdproc_display>(server, setup.keys, setup.size, setup.messages);
}

bool is_device(const std::string& argument) {
    return !argument.empty();
}

std::unique_ptr<Front> open_charlcd(const Display_setup& setup) {
    return std::make_unique<Charlcd_display>(
        setup.argument.empty() ? Charlcd_display::USUAL_DEVICE : setup.argument,
        setup.size.value_or(Lcd_size()), setup.messages, *setup.rom);
}

}  // namespace

const std::vector<Display_row>& display_table() {
    static const std::vector<Display_row> TABLE = {
        {"terminal", "", nullptr, true, open_terminal, nullptr},
        {"text", "", nullptr, false, nullptr, open_text},
        {"lcdproc", "[:IP[:PORT]]", is_lcdproc_server, false, open_lcdproc, nullptr,
         Display_characters::ISO_8859_1},
        {"charlcd", "[:PATH]", is_device, false, open_charlcd, nullptr,
         Display_characters::OF_A_ROM, false},
    };
    return TABLE;
}

bool Display_row::shows(char32_t character, const Character_rom& rom) const {
    switch (characters) {
        case Display_characters::ALL:
            return has_one_column(character);
        case Display_characters::ISO_8859_1:
            return Character_rom::iso_8859_1().code_of(character) || plain_form_of(character);
        case Display_characters::OF_A_ROM:
            return can_show(rom, character);
    }
    return false;
}

const Display_row& default_display(bool interactive) {
    const std::vector<Display_row>& table = display_table();
    return *std::find_if(table.begin(), table.end(), [interactive](const Display_row& row) {
        return row.is_interactive() == interactive;
    });
}

Display_choice parse_display(const std::string& text) {
    const size_t colon = std::min(text.find(':'), text.size());
    const bool has_argument = colon < text.size();
    const std::string argument = has_argument ? text.substr(colon + 1) : "";
    for (const Display_row& row : display_table()) {
        const bool is_right = row.accepts != nullptr && row.accepts(argument);
        if (text.compare(0, colon, row.name) == 0 && (!has_argument || is_right)) {
            return {&row, argument};
        }
    }
    throw Input_error("expected " + display_names(" or ") + ", found \"" + text + "\"");
}

std::string display_names(const std::string& last) {
    const std::vector<Display_row>& table = display_table();
    std::string names;
    for (const Display_row& row : table) {
        const bool is_first = &row == &table.front();
        const bool is_last = &row == &table.back();
        names += (is_first ? "" : is_last ? last : ", ") + row.name + row.syntax;
    }
    return names;
}

}  // namespace frontpanel
