// The functions of a display's keys on the panel.
#ifndef FRONTPANEL_DISPLAYS_KEY_MAP_H
#define FRONTPANEL_DISPLAYS_KEY_MAP_H

#include <map>
#include <string>

#include <frontpanel_display/key.h>

namespace frontpanel {

// By the display's name of the key.
using Key_map = std::map<std::string, Key>;

// The arrow keys, Enter and Escape.
Key_map usual_keys();

// "Up=up,Down=down,Enter=select,F1=1": a key of the display and a word of `KEY_TABLE`, or the number of a shortcut
// button, 1 to 99. Input_error when the text is invalid, names a key twice or has no key for select.
Key_map parse_key_map(const std::string& text);
// The same for keys that need not include select, which another key presses.
Key_map parse_some_keys(const std::string& text);
bool has_select(const Key_map& keys);

}  // namespace frontpanel

#endif
