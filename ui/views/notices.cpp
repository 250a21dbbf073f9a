#include "views/notices.h"

#include <utility>

namespace frontpanel {
namespace {

constexpr int TITLE_ROW = 0;
constexpr int TEXT_ROW = 1;
constexpr int LEAST_ROWS_WITH_HINT = 3;
constexpr const char* QUESTION_MARK = "ok?";
constexpr const char* HINT = "select/back";

Scrolling_text scrolling(const std::string& text) {
    Scrolling_text scrolls;
    scrolls.set(text);
    return scrolls;
}

}  // namespace

void Notices::tell(const std::string& title, const std::string& text, bool alarm) {
    m_notices.push_back({title, {}, {scrolling(text)}, alarm, nullptr});
}

void Notices::ask(const std::string& title, const std::vector<std::string>& texts, Answer answer) {
    Notice notice{title, {}, {}, false, std::move(answer)};
    for (const std::string& text : texts) {
        notice.texts.push_back(scrolling(text));
    }
    m_notices.push_back(std::move(notice));
}

void Notices::press(Key::Kind key) {
    Notice& shown = m_notices.front();
    if (shown.answer == nullptr || key == Key::BACK) {
        finish(false);
    } else if (key == Key::SELECT && shown.texts.size() > 1) {
        shown.texts.erase(shown.texts.begin());
    } else if (key == Key::SELECT) {
        finish(true);
    }
}

// The answer may bring up a notice of its own.
void Notices::finish(bool accepted) {
    const Notice answered = std::move(m_notices.front());
    m_notices.pop_front();
    if (answered.answer != nullptr) {
        answered.answer(accepted);
    }
}

void Notices::cancel() {
    std::deque<Notice> notices;
    notices.swap(m_notices);
    for (Notice& notice : notices) {
        if (notice.answer == nullptr) {
            m_notices.push_back(std::move(notice));
        } else {
            notice.answer(false);
        }
    }
}

void Notices::draw(Frame& frame) {
    Notice& shown = m_notices.front();
    const Lcd_size size = frame.lcd.size();
    shown.title_line.draw(frame.lcd, TITLE_ROW, 0,
                          {shown.title, shown.answer != nullptr ? QUESTION_MARK : "", ""});
    frame.lcd.put(TEXT_ROW, 0, shown.texts.front().show(size.columns));
    if (shown.answer != nullptr && size.rows >= LEAST_ROWS_WITH_HINT) {
        frame.lcd.put_right(size.rows - 1, HINT);
    }
    frame.leds.alarm = shown.alarm;
}

}  // namespace frontpanel
