// The displays by name, a row each, for an application whose users choose one.
//
// An application that knows its display needs none of this: it creates a Terminal, Lcdproc_display or Text_display.
#ifndef FRONTPANEL_DISPLAYS_DISPLAY_TABLE_H
#define FRONTPANEL_DISPLAYS_DISPLAY_TABLE_H

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <frontpanel_display/front.h>
#include <frontpanel_displays/character_rom.h>
#include <frontpanel_displays/key_map.h>

namespace frontpanel {

// The settings for opening a display. Each display uses those that it needs.
struct Display_setup {
    std::string argument;          // of `Display_choice`
    std::optional<Lcd_size> size;  // the panel's size; empty: that of the display
    Key_map keys = usual_keys();   // of a display with keys of its own
    int terminal;                  // the descriptor of a terminal
    std::ostream& out;             // for frames as text; outlives the display
    std::ostream& messages;        // status messages, a line each; outlives the display
    const Character_rom* rom = &Character_rom::a00();  // of a display that does not report it
};

// The characters that a display can show.
enum class Display_characters {
    ALL,         // that take one column
    ISO_8859_1,  // and plain forms of dashes and quotation marks
    OF_A_ROM     // which `Display_setup` names; others are defined
};

struct Display_row {
    const char* name;
    const char*
        syntax;  // of the argument behind the name, for the help; empty for a display that has none
    // Whether it takes the argument; null for a display that has none.
    bool (*accepts)(const std::string& argument);
    // Whether it takes the terminal and standard input for itself, so that nothing else may be printed meanwhile.
    bool takes_terminal;
    // One of these two; the other is null. A display with keys is for a person, one without for scripts. Input_error
    // when it cannot be opened.
    std::unique_ptr<Front> (*open_front)(const Display_setup& setup);
    std::unique_ptr<Display> (*open_display)(const Display_setup& setup);

    Display_characters characters = Display_characters::ALL;
    // Whether it has keys of its own.
    bool has_keys = true;

    // Whether it can show the character, if only in a plain form.
    bool shows(char32_t character, const Character_rom& rom) const;
    bool is_interactive() const { return open_front != nullptr; }
};

// A display chosen by its name.
struct Display_choice {
    const Display_row* display = nullptr;  // null: none was chosen
    std::string argument;
};

// All displays. The first with keys and the first without are the defaults.
const std::vector<Display_row>& display_table();
const Display_row& default_display(bool interactive);

// "NAME" or "NAME:ARGUMENT" of a row. Input_error, which lists the displays, for any other text.
Display_choice parse_display(const std::string& text);
// The names with the syntax of their arguments, for the help: "terminal, text" with `last` before the last one.
std::string display_names(const std::string& last = ", ");

}  // namespace frontpanel

#endif
