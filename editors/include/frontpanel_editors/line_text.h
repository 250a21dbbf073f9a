// Texts on a display line that may be too short for them.
//
// Texts are UTF-8. Widths and columns count characters: one with its combining characters counts once, and so does each
// byte that is not UTF-8. A word with a digit is never cut without a mark, since the rest of a number reads as another
// number: '<' or '>' at that end of the line shows that the word goes on.
#ifndef FRONTPANEL_EDITORS_LINE_TEXT_H
#define FRONTPANEL_EDITORS_LINE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace frontpanel {

struct Editor_view;

// The characters of a text, the columns that it takes.
int width_of(std::string_view text);
// The beginning of a text, at most `columns` characters.
std::string start_of(std::string_view text, int columns);
// The text after its first `columns` characters.
std::string rest_of(std::string_view text, int columns);

// The text on lines of at most `columns` characters, at least 1, broken at blanks. A longer word has lines of its own.
// A number stays on one line with its groups of digits ("1 000 000") and its unit ("0 dB"); `<` and `>` mark groups that a
// line has no room for.
std::vector<std::string> wrapped(std::string_view text, int columns);

// A text without cursor: one that is too long is held at its start for two calls, then moves left by one
// character a call. Three blanks between its end and its start show where it begins.
class Scrolling_text {
public:
    // Takes another text and starts at its beginning. Blanks at its end are dropped.
    void set(std::string text);
    // As `set`, but a text that is already shown scrolls on.
    void update(std::string text);
    // Replaces the text by the current one of the same value, and scrolls on from the same place: otherwise the end of
    // a text that changes often, such as a clock's, would never be shown.
    void follow(std::string text);
    // The part to show now, at most `columns` characters. Each call scrolls on.
    std::string show(int columns);
    int width() const { return static_cast<int>(m_characters.size()); }
    const std::string& text() const { return m_text; }

private:
    void take(std::string text);

    std::string m_text;
    std::vector<std::string> m_characters;
    std::size_t m_offset = 0;
    int m_held = 0;  // calls for which the start is still held
};

// Puts the part of `text` around the character at byte `cursor` on the line, with the cursor under that character, and
// all of its word where the line has room for it.
void show_with_cursor(const std::string& text, std::size_t cursor, int columns, Editor_view& shown);

}  // namespace frontpanel

#endif
