// Texts on a display line that may be too short for them.
#ifndef FRONTPANEL_EDITORS_LINE_TEXT_H
#define FRONTPANEL_EDITORS_LINE_TEXT_H

#include <cstddef>
#include <string>

namespace frontpanel {

struct Editor_view;

// A text without cursor: one that is too long is held at its start for two calls, then moves left by one
// character a call, with one blank between its end and its start, as the entries' own texts do.
class Scrolling_text {
public:
    // Takes another text and starts at its beginning. Blanks at its end are dropped.
    void set(std::string text);
    // Takes another text, and goes on with one that is shown already.
    void update(std::string text);
    // The part to show now, at most `columns` characters. Each call moves on.
    std::string show(int columns);

private:
    std::string m_text;
    std::size_t m_offset = 0;
    int m_held = 0;  // calls for which the start is still held
};

// Puts the part of `text` around the character `cursor` on the line, with the cursor under that character.
void show_with_cursor(const std::string& text, std::size_t cursor, int columns, Editor_view& shown);

}  // namespace frontpanel

#endif
