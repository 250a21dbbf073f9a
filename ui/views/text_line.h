// A line of the display with a text on its left and one on its right, such as a name and its value.
#ifndef FRONTPANEL_UI_TEXT_LINE_H
#define FRONTPANEL_UI_TEXT_LINE_H

#include <frontpanel_display/lcd.h>
#include <frontpanel_editors/line_text.h>
#include <frontpanel_menu/list_line.h>

#include <string>

namespace frontpanel {

// Free room goes to the left text. Where both do not fit the right one comes first, and the left one scrolls beside it;
// a right one that has no room at all scrolls itself, beside the beginning of the left one. Each drawing moves on.
class Text_line {
public:
    struct Texts {
        std::string left;
        std::string right;
        // Directly behind the left text; in place of the blank where the line is full.
        std::string mark;
        // The columns that the left text keeps; see `room_of`.
        int least_left = LEAST_NAME_COLUMNS;
    };

    // Draws the texts from `column` on to the end of the row.
    void draw(Lcd& lcd, int row, int column, const Texts& texts);

private:
    Scrolling_text m_left;
    Scrolling_text m_right;
};

}  // namespace frontpanel

#endif
