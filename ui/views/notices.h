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

    Notices();

    // Shows a text under a title once those before it are gone; any key acknowledges it. `alarm` lights the
    // alarm LED with it.
    void tell(const std::string& title, const std::string& text, bool alarm = false);
    // The same, but nothing when this notice waits already: what comes again and again costs one key. Of many that wait
    // one says that there are more.
    void tell_once(const std::string& title, const std::string& text, bool alarm = false);
    // Shows texts one by one, at least one, with the keys that answer. SELECT goes on to the next and accepts with the
    // last, BACK cancels at any; no other key does anything. The answer is given once.
    void ask(const std::string& title, const std::vector<std::string>& texts, Answer answer);
    // The names of the keys that answer questions; an empty name is left out. The default is those of a keyboard.
    void set_keys(const std::string& accepting, const std::string& cancelling);
    // Cancels every question; other notices stay.
    void cancel();
    // Whether none is shown.
    bool empty() const { return m_notices.empty(); }
    // Whether what is shown is a question.
    bool asks() const { return !empty() && m_notices.front().answer != nullptr; }
    // Not without one.
    void press(Key::Kind key);
    // Draws the first text, on several lines if the display has room for it; otherwise it scrolls by one character a
    // call. A question shows its keys on the last line; on a display of two lines its title precedes its text.
    // Requires: there is a text.
    void draw(Frame& frame);

private:
    struct Notice {
        std::string title;
        std::string told;  // the text given to `tell_once`
        Text_line title_line;
        std::vector<Scrolling_text> texts;   // the first is shown
        std::vector<Scrolling_text> titled;  // of a question: each text behind the title
        bool alarm;
        Answer answer;  // null for none
    };
    void finish(bool accepted);
    void draw_keys(Lcd& lcd);

    std::deque<Notice> m_notices;  // the first is shown
    std::string m_accepting;
    std::string m_cancelling;
    Scrolling_text m_keys;  // where no form of them fits
};

}  // namespace frontpanel

#endif
