// The panel's keys, a row each: their names in scripts and key maps, on a keyboard and in messages, and their meaning
// in each part of the panel. All code that names, sends or reads keys uses this table; docs/panel.md describes the
// keys.
#ifndef FRONTPANEL_DISPLAY_KEY_TABLE_H
#define FRONTPANEL_DISPLAY_KEY_TABLE_H

#include <cstdint>
#include <optional>
#include <string>

#include <frontpanel_display/key.h>

namespace frontpanel {

struct Key_row {
    Key::Kind kind;
    const char* word;      // in scripts and key maps
    const char* keyboard;  // the key of a keyboard that presses it
    const char* label;     // that key in a legend or a question
    bool
        is_usual;  // a display with keys of its own presses it by the key of that name, unless mapped
    int8_t detents;  // of the shaft encoder, clockwise; 0 for a push button
    uint8_t code;    // of a push button in its message
    // The key that it counts as where no cursor moves sideways (lists, questions, the PIN), where one does (edited
    // values, diagnostics), and while a text is edited or something is typed. Itself for a key with one meaning.
    Key::Kind in_list;
    Key::Kind at_cursor;
    Key::Kind in_text;
};

// Shortcut buttons are numbered and have no row. The numbers that scripts and key maps take:
inline constexpr int FIRST_SHORTCUT = 1;
inline constexpr int LAST_SHORTCUT = 99;

// clang-format off
inline constexpr Key_row KEY_TABLE[] = {
    {Key::UP, "up", "Up", "Up", true, 1, 0, Key::UP, Key::UP, Key::UP},
    {Key::DOWN, "down", "Down", "Down", true, -1, 0, Key::DOWN, Key::DOWN, Key::DOWN},
    {Key::LEFT, "left", "Left", "Left", true, 0, 19, Key::BACK, Key::COARSER, Key::COARSER},
    {Key::RIGHT, "right", "Right", "Right", true, 0, 20, Key::SELECT, Key::FINER, Key::FINER},
    {Key::SELECT, "select", "Enter", "Enter", true, 0, 11, Key::SELECT, Key::SELECT, Key::SELECT},
    {Key::BACK, "back", "Escape", "Esc", true, 0, 13, Key::BACK, Key::BACK, Key::BACK},
    {Key::COARSER, "coarser", "+", "+", false, 0, 14, Key::COARSER, Key::COARSER, Key::COARSER},
    {Key::FINER, "finer", "-", "-", false, 0, 15, Key::FINER, Key::FINER, Key::FINER},
    {Key::INSERT, "insert", "Insert", "Ins", false, 0, 16, Key::INSERT, Key::INSERT, Key::INSERT},
    {Key::DELETE, "delete", "Delete", "Del", false, 0, 17, Key::DELETE, Key::DELETE, Key::DELETE},
    {Key::ERASE, "erase", "Backspace", "Backspace", false, 0, 21, Key::BACK, Key::BACK, Key::ERASE},
    {Key::DIAGNOSTICS, "diagnostics", "d", "d", false, 0, 18, Key::DIAGNOSTICS, Key::DIAGNOSTICS, Key::DIAGNOSTICS},
    {Key::FAVOURITES, "favourites", "f", "f", false, 0, 22, Key::FAVOURITES, Key::FAVOURITES, Key::FAVOURITES},
};
// clang-format on

// The row of a key; null for a shortcut.
const Key_row* row_of(Key::Kind kind);
// The key with this word; nothing for any other text.
std::optional<Key::Kind> key_of_word(const std::string& word);
// The key that the button with this code presses; nothing when no button has it.
std::optional<Key::Kind> key_of_code(uint8_t code);
// Every word, in the order of the table: "up, down, ...".
std::string key_words();

}  // namespace frontpanel

#endif
