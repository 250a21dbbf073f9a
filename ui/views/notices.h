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
#include "views/text_pages.h"

namespace frontpanel {

class Notices {
public:
    using Answer = std::function<void(bool accepted)>;

    Notices();

    // Shows a text under a title after the earlier notices. Any key acknowledges it, except UP and DOWN for a text on
    // several pages. With `alarm` the alarm LED is lit.
    void tell(const std::string& title, const std::string& text, bool alarm = false);
    // The same, but nothing when this notice waits already: what comes again and again costs one key. Of many that wait
    // one says that there are more.
    void tell_once(const std::string& title, const std::string& text, bool alarm = false);
    // Shows texts one by one, at least one, with the keys that answer. SELECT goes on to the next and accepts with the
    // last, BACK cancels at any; UP and DOWN turn pages; no other key does anything. The answer is given once.
    void ask(const std::string& title, const std::vector<std::string>& texts, Answer answer);
    // The names of the keys that answer questions; an empty name is left out. The default is those of a keyboard.
    void set_keys(const std::string& accepting, const std::string& cancelling);
    // Cancels every question; other notices stay.
    void cancel();
    // Whether none is shown.
    bool empty() const { return m_notices.empty(); }
    // Whether what is shown is a question.
    bool asks() const { return !empty() && m_notices.front().answer != nullptr; }
    // Whether UP and DOWN turn pages of the text that was drawn last.
    bool has_pages() { return !empty() && m_notices.front().pages().has_several(); }
    // UP and DOWN turn the pages of a text that has several. Requires: there is a text.
    void press(Key::Kind key);
    // Draws the first text on the lines below its title, or on numbered pages if it is longer. Pages turn by themselves
    // until a person turns one: see `Text_pages`. A question shows its keys on the last line; on a display of two lines
    // its title precedes its text. Requires: there is a text.
    void draw(Frame& frame);

private:
    struct Notice {
        std::string title;
        std::string told;  // the text given to `tell_once`
        Text_line title_line;
        std::vector<Text_pages> texts;   // the first is shown
        std::vector<Text_pages> titled;  // of a question: each text behind the title
        bool alarm;
        Answer answer;           // null for none
        bool is_titled = false;  // one of `titled` was drawn last
        Text_pages& pages() { return is_titled ? titled.front() : texts.front(); }
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
