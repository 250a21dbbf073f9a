#include "views/notices.h"

#include <algorithm>
#include <utility>

#include <frontpanel_display/key_table.h>

namespace frontpanel {
namespace {

constexpr int TITLE_ROW = 0;
constexpr int TEXT_ROW = 1;
constexpr int LEAST_ROWS_WITH_TITLE = 3;
constexpr const char* QUESTION_MARK = "ok?";
constexpr size_t MOST_TOLD = 5;  // waiting notices of `tell_once`
constexpr const char* MORE_TITLE = "Device";
constexpr const char* MORE = "more: see the log";

Scrolling_text scrolling(const std::string& text) {
    Scrolling_text scrolls;
    scrolls.set(text);
    return scrolls;
}

// Draws the text on the rows up to `end`, on several lines if they have room for it; otherwise it scrolls on one.
void draw_text(Lcd& lcd, Scrolling_text& text, int end) {
    const int columns = lcd.size().columns;
    const std::vector<std::string> lines = wrapped(text.text(), columns, end - TEXT_ROW);
    if (lines.empty()) {
        lcd.put(TEXT_ROW, 0, text.show(columns));
    }
    int row = TEXT_ROW;
    for (const std::string& line : lines) {
        lcd.put(row++, 0, line);
    }
}

}  // namespace

Notices::Notices() {
    set_keys(row_of(Key::SELECT)->label, row_of(Key::BACK)->label);
}

void Notices::set_keys(const std::string& accepting, const std::string& cancelling) {
    m_accepting = accepting.empty() ? "" : accepting + " yes";
    m_cancelling = cancelling.empty() ? "" : cancelling + " no";
    m_keys.set(m_accepting + ", " + m_cancelling);
}

void Notices::tell(const std::string& title, const std::string& text, bool alarm) {
    m_notices.push_back({title, text, {}, {scrolling(text)}, {}, alarm, nullptr});
}

void Notices::tell_once(const std::string& title, const std::string& text, bool alarm) {
    const bool is_full = m_notices.size() >= MOST_TOLD;
    const std::string shown_title = is_full ? MORE_TITLE : title;
    const std::string shown = is_full ? MORE : text;
    const bool waits = std::any_of(m_notices.begin(), m_notices.end(), [&](const Notice& notice) {
        return notice.title == shown_title && notice.told == shown;
    });
    if (!waits) {
        tell(shown_title, shown, alarm);
    }
}

void Notices::ask(const std::string& title, const std::vector<std::string>& texts, Answer answer) {
    Notice notice{title, "", {}, {}, {}, false, std::move(answer)};
    for (const std::string& text : texts) {
        notice.texts.push_back(scrolling(text));
        notice.titled.push_back(scrolling(std::string(title).append(": ").append(text)));
    }
    m_notices.push_back(std::move(notice));
}

void Notices::press(Key::Kind key) {
    Notice& shown = m_notices.front();
    if (shown.answer == nullptr || key == Key::BACK) {
        finish(false);
    } else if (key == Key::SELECT && shown.texts.size() > 1) {
        shown.texts.erase(shown.texts.begin());
        shown.titled.erase(shown.titled.begin());
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

// The names of the keys are not cut; a comma separates them if there is room.
void Notices::draw_keys(Lcd& lcd) {
    const int columns = lcd.size().columns;
    const bool has_both = !m_accepting.empty() && !m_cancelling.empty();
    for (const std::string& between : {std::string(has_both ? ", " : ""), std::string(" ")}) {
        const std::string keys = m_accepting + between + m_cancelling;
        if (static_cast<int>(keys.size()) <= columns) {
            lcd.put(lcd.size().rows - 1, 0, keys);
            return;
        }
    }
    lcd.put(lcd.size().rows - 1, 0, m_keys.show(columns));
}

void Notices::draw(Frame& frame) {
    Notice& shown = m_notices.front();
    const Lcd_size size = frame.lcd.size();
    frame.leds.alarm = shown.alarm;
    if (shown.answer == nullptr || size.rows >= LEAST_ROWS_WITH_TITLE) {
        shown.title_line.draw(frame.lcd, TITLE_ROW, 0,
                              {shown.title, shown.answer != nullptr ? QUESTION_MARK : "", ""});
        draw_text(frame.lcd, shown.texts.front(), size.rows - (shown.answer != nullptr ? 1 : 0));
    } else {
        frame.lcd.put(TITLE_ROW, 0, shown.titled.front().show(size.columns));
    }
    if (shown.answer != nullptr) {
        draw_keys(frame.lcd);
    }
}

}  // namespace frontpanel
