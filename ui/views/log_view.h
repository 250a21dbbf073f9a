// What the library prints, on the panel's own display: the lines, and a list of what is shown and printed.
//
// | key            | among the lines                   | in the list                         |
// |----------------|-----------------------------------|-------------------------------------|
// | UP, DOWN       | older and newer lines             | move the cursor                     |
// | COARSER, FINER | the part to the left and right    |                                     |
// | SELECT         | opens the list                    | changes what the cursor stands on   |
// | BACK           | closes the view                   | returns to the lines                |
#ifndef FRONTPANEL_UI_LOG_VIEW_H
#define FRONTPANEL_UI_LOG_VIEW_H

#include <cstdint>
#include <string>
#include <vector>

#include <frontpanel_display/key.h>
#include <frontpanel_display/lcd.h>
#include <frontpanel_ui/log_lines.h>

namespace frontpanel {

class Log_view {
public:
    // The lines outlive the view.
    explicit Log_view(Log_lines& lines) : m_lines(lines) {}

    // Shows the newest lines, of every kind and entry. `entry` is the name to which they can be limited; empty
    // for none.
    void open(const std::string& entry);
    void close() { m_is_open = false; }
    bool is_open() const { return m_is_open; }
    // Whether the list is in front of the lines.
    bool is_list() const { return m_is_list; }
    // To the open view.
    void press(Key::Kind key);
    // Draws the open view with what was printed by now.
    void draw(Lcd& lcd);

private:
    // A line that passes the filters, with its number since the beginning.
    struct Shown {
        uint64_t number;
        const Log_line* line;
    };
    void press_among_lines(Key::Kind key);
    void press_in_list(Key::Kind key);
    void move(int lines);
    void change();
    bool passes(const Log_line& line) const;
    std::vector<Shown> shown_lines() const;
    size_t bottom_of(const std::vector<Shown>& shown) const;
    std::string kind_name() const;
    std::string state_of(int item) const;
    void draw_lines(Lcd& lcd, int first_row);
    void draw_list(Lcd& lcd, int first_row) const;

    Log_lines& m_lines;
    std::string m_entry;
    bool m_is_open = false;
    bool m_is_list = false;
    bool m_only_entry = false;
    int m_kind = 0;         // what is shown: of KINDS, after all and before what is always printed
    bool m_follows = true;  // the newest line is shown
    uint64_t m_bottom = 0;  // otherwise the number of the lowest line shown
    int m_pan = 0;          // halves of the display to the right
    int m_cursor = 0;       // in the list
};

}  // namespace frontpanel

#endif
