// The language of the kernel's character displays, as far as the panel speaks it: text, and sequences that begin with
// an escape.
#ifndef FRONTPANEL_DISPLAYS_CHARLCD_SCREEN_H
#define FRONTPANEL_DISPLAYS_CHARLCD_SCREEN_H

#include <string>
#include <vector>

#include <frontpanel_display/lcd.h>

namespace frontpanel {

// Shows frames on such a display: knows what the display has, and returns the bytes that make it show another frame.
class Charlcd_screen {
public:
    // A display of this size, of which nothing else is known.
    explicit Charlcd_screen(Lcd_size size);

    // What makes the display blank, lit and without a cursor, whatever was sent to it before.
    std::string setup() const;
    // What makes it show the frame from what it shows now, at first from `setup`; empty when it does. What does not fit
    // the display is cut, what is left of it stays blank.
    std::string update(const Frame& frame);
    // What leaves nothing on the display that somebody could take for a value.
    static std::string farewell();

private:
    std::string update_row(const Lcd& lcd, int row);
    std::string update_cursor(const Lcd& lcd);
    std::string move_to(int row, int column);

    Lcd_size m_size;
    std::vector<std::string> m_lines;
    // Where the next byte goes.
    int m_row = 0;
    int m_column = 0;
    bool m_blinks = false;
    bool m_dim = false;
};

}  // namespace frontpanel

#endif
