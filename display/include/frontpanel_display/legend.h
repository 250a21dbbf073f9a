// What the keys of a keyboard do now, as a legend lists it. Derived from the table of keys.
#ifndef FRONTPANEL_DISPLAY_LEGEND_H
#define FRONTPANEL_DISPLAY_LEGEND_H

#include <string>
#include <vector>

#include <frontpanel_display/key.h>
#include <frontpanel_display/lcd.h>

namespace frontpanel {

// The keys that do something while the frame is shown, and what they do, such as "Up/Down move", in the order of a legend.
// A key that types one of `frame.characters` has no other meaning. `quit` is the key that ends the panel, '\0' for none.
std::vector<std::string> legend_of(const Frame& frame, char quit);
// The same for a mode, without a frame.
std::vector<std::string> legend_of(Panel_mode mode, const std::string& characters,
                                   const Key_uses& keys, char quit);

// The items on lines of at most `columns` characters, two blanks between them. A longer item has a line of its own.
std::vector<std::string> folded(const std::vector<std::string>& items, int columns);

// The most lines that a legend of any mode takes.
int most_legend_lines(int columns, char quit);

// The characters of a keyboard that a text takes: every printable one of ASCII.
std::string printable_characters();

}  // namespace frontpanel

#endif
