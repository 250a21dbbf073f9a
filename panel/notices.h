// Texts that stay on the display, one after the other, until a key acknowledges them.
#ifndef FRONTPANEL_PANEL_NOTICES_H
#define FRONTPANEL_PANEL_NOTICES_H

#include <deque>
#include <string>

#include "lcd.h"

namespace panel {

class Notices {
public:
    // Shows a text under a title once those before it are acknowledged; `alarm` lights the alarm LED with it.
    void tell(const std::string& title, const std::string& text, bool alarm = false);
    // Whether none is shown.
    bool empty() const { return m_notices.empty(); }
    // Any key: the text shown is acknowledged. Not without one.
    void press() { m_notices.pop_front(); }
    // Draws the first text. Not without one.
    void draw(Frame& frame) const;

private:
    struct Notice {
        std::string title;
        std::string text;
        bool alarm;
    };

    std::deque<Notice> m_notices;  // the first is shown
};

}  // namespace panel

#endif
