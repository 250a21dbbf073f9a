// The character grid of the front panel's display, as it is drawn and as tests compare it.
#ifndef FRONTPANEL_DISPLAY_LCD_H
#define FRONTPANEL_DISPLAY_LCD_H

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace frontpanel {

struct Lcd_size {
    int columns = 20;
    int rows = 4;
};

// "20x2".
std::string size_text(Lcd_size size);

// The sizes of displays that the panel supports. A smaller one has no room for a name above an edited value; larger
// character displays of this kind are not made.
inline constexpr Lcd_size SMALLEST_LCD{16, 2};
inline constexpr Lcd_size LARGEST_LCD{80, 16};

class Lcd {
public:
    // A blank grid.
    explicit Lcd(Lcd_size size);

    // Writes UTF-8 text from `column` on. Text beyond the end of the row is dropped. A combining character joins the
    // character before it. A character that ISO-8859-1 lacks becomes its base letter or '?' in `line`: see
    // character_set.h. Does nothing outside the grid.
    void put(int row, int column, std::string_view text);
    // Writes `text` so that it ends in the row's last column; a longer text keeps its start.
    void put_right(int row, std::string_view text);
    // Shows the blinking cursor there; outside the grid it is not shown.
    void set_cursor(int row, int column);

    Lcd_size size() const { return m_size; }
    // The whole line: exactly `columns` cells, one byte of ISO-8859-1 each. Requires: `row` is within the grid.
    const std::string& line(int row) const { return m_lines.at(static_cast<size_t>(row)); }
    // The same cells as characters, for a display with another character set: those that ISO-8859-1 lacks are kept.
    // Controls and damaged bytes are '?' here too.
    const std::u32string& characters(int row) const {
        return m_characters.at(static_cast<size_t>(row));
    }
    // The line as UTF-8 text of `columns` columns: a character that does not take one column is '?'.
    std::string text(int row) const;
    // -1 when no cursor is shown.
    int cursor_row() const { return m_cursor_row; }
    int cursor_column() const { return m_cursor_column; }
    // The characters that `line` replaces or leaves out.
    const std::set<char32_t>& lost() const { return m_lost; }

private:
    void put_characters(int row, int column, const std::u32string& characters);

    Lcd_size m_size;
    std::vector<std::string> m_lines;
    std::vector<std::u32string> m_characters;
    int m_cursor_row = -1;
    int m_cursor_column = -1;
    std::set<char32_t> m_lost;
};

struct Leds {
    bool edit = false;   // an editor is open
    bool alarm = false;  // a read or write of what is shown failed
    bool heart = false;  // changes as long as the panel is alive
};

// The state of the panel, which determines what its keys do.
enum class Panel_mode {
    HOMESCREEN,   // without a cursor
    HOME_CURSOR,  // the homescreen with a cursor
    TOP_MENU,     // one that BACK does not leave
    MENU,
    NUMBER,   // a value is edited
    OPTIONS,  // likewise
    FIELDS,   // likewise, such as an address or a time
    TEXT,     // likewise
    VIEW,     // a value that cannot be changed is shown
    NOTICE,
    QUESTION,
    LOG,
    LOG_LIST,
    ASLEEP,
    LOCKED,
    PIN
};

// Keys whose function depends on the menu and on what is shown now.
struct Key_uses {
    bool has_favourites = false;
    std::vector<int> shortcuts = {};  // the numbers of assigned buttons, in ascending order
    bool turns_pages = false;         // UP and DOWN turn the pages of a long text
};

// One picture of the panel's front, which a display shows.
struct Frame {
    Lcd lcd;
    Leds leds;
    bool dim = false;  // the panel is idle: reduce or switch off the light
    Panel_mode mode = Panel_mode::MENU;
    std::string characters = {};  // that a keyboard can type now
    Key_uses keys = {};
};

}  // namespace frontpanel

#endif
