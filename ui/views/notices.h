// Texts that stay on the display, one after the other, until a key acknowledges or answers them.
#ifndef FRONTPANEL_UI_NOTICES_H
#define FRONTPANEL_UI_NOTICES_H

#include <frontpanel_editors/line_text.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include <frontpanel_display/key.h>
#include <frontpanel_display/lcd.h>
#include "views/text_line.h"

namespace frontpanel {

class Notices {
public:
    using Answer = std::function<void(bool accepted)>;

    // Shows a text under a title once those before it are gone; any key acknowledges it. `alarm` lights the
    // alarm LED with it.
    void tell(const std::string& title, const std::string& text, bool alarm = false);
    // Shows texts one by one, at least one. SELECT goes on to the next and accepts with the last, BACK cancels
    // at any; no other key does anything. The answer is given once.
    void ask(const std::string& title, const std::vector<std::string>& texts, Answer answer);
    // Cancels every question; what is only told stays.
    void cancel();
    // Whether none is shown.
    bool empty() const { return m_notices.empty(); }
    // Not without one.
    void press(Key::Kind key);
    // Draws the first text, which scrolls by one character a call when it is too long. Not without one.
    void draw(Frame& frame);

private:
    struct Notice {
        std::string title;
        Text_line title_line;
        std::vector<Scrolling_text> texts;  // the first is shown
        bool alarm;
        Answer answer;  // null for none
    };
    void finish(bool accepted);

    std::deque<Notice> m_notices;  // the first is shown
};

}  // namespace frontpanel

#endif
