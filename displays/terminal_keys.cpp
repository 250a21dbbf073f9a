#include "terminal_keys.h"

#include <curses.h>

#include <cctype>
#include <string>

#include <frontpanel_display/key_table.h>

namespace frontpanel {
namespace {

constexpr int LAST_DIGIT_KEY = 9;
constexpr int LAST_FUNCTION_KEY = 12;

// The keys of a keyboard that send no character of their own.
struct Named_key {
    int code;
    const char* keyboard;  // as in `Key_row`
};
constexpr Named_key NAMED_KEYS[] = {
    {KEY_UP, "Up"},
    {KEY_DOWN, "Down"},
    {KEY_LEFT, "Left"},
    {KEY_RIGHT, "Right"},
    {KEY_ENTER, "Enter"},
    {'\r', "Enter"},
    {'\n', "Enter"},
    {27, "Escape"},
    {KEY_IC, "Insert"},
    {KEY_DC, "Delete"},
    {'\b', "Backspace"},
    {127, "Backspace"},  // what most terminals send
    {KEY_BACKSPACE, "Backspace"},
};

// The name of a key of the keyboard; empty for one without.
std::string keyboard_name(int code) {
    for (const Named_key& known : NAMED_KEYS) {
        if (code == known.code) {
            return known.keyboard;
        }
    }
    const bool is_character = code > ' ' && code <= '~';
    return is_character ? std::string(1, static_cast<char>(std::tolower(code))) : "";
}

// The number of a shortcut button; 0 for any other key.
int shortcut_of(int code) {
    if (code > '0' && code <= '0' + LAST_DIGIT_KEY) {
        return code - '0';
    }
    return code > KEY_F0 && code <= KEY_F0 + LAST_FUNCTION_KEY ? code - KEY_F0 : 0;
}

}  // namespace

std::optional<Front_event> event_of(int code) {
    const bool is_printable = code >= ' ' && code <= '~';
    const char character = is_printable ? static_cast<char>(code) : '\0';
    if (const int button = shortcut_of(code)) {
        return Front_event{Front_event::KEY, {Key::SHORTCUT, button, character}};
    }
    if (code == QUIT_KEY || code == std::toupper(QUIT_KEY)) {
        return Front_event{Front_event::QUIT, {Key::CHARACTER, 0, character}};
    }
    if (code == KEY_RESIZE) {
        return Front_event{Front_event::REDRAW};
    }
    const std::string name = keyboard_name(code);
    for (const Key_row& row : KEY_TABLE) {
        if (name == row.keyboard) {
            return Front_event{Front_event::KEY, {row.kind, 0, character}};
        }
    }
    return is_printable ? std::optional<Front_event>(
                              Front_event{Front_event::KEY, {Key::CHARACTER, 0, character}})
                        : std::nullopt;
}

}  // namespace frontpanel
