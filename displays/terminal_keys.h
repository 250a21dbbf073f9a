// What the keys of a terminal mean to the panel.
#ifndef FRONTPANEL_DISPLAYS_TERMINAL_KEYS_H
#define FRONTPANEL_DISPLAYS_TERMINAL_KEYS_H

#include <optional>

#include <frontpanel_display/front.h>

namespace frontpanel {

inline constexpr char QUIT_KEY = 'q';  // ends the panel, unless an editor takes the character

// `code` is as the curses library delivers it. Nothing for a key without a meaning.
std::optional<Front_event> event_of(int code);

}  // namespace frontpanel

#endif
