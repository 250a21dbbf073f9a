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
constexpr const char* MORE = "more in the log";

void draw_lines(Lcd& lcd, int row, const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        lcd.put(row++, 0, line);
    }
}

// The number of pages that a key turns.
int pages_of(Key::Kind key) {
    return key == Key::UP ? -1 : key == Key::DOWN ? 1 : 0;
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
    m_notices.push_back({title, text, {}, {Text_pages(text)}, {}, alarm, nullptr});
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
        notice.texts.emplace_back(text);
        notice.titled.emplace_back(std::string(title).append(": ").append(text));
    }
    m_notices.push_back(std::move(notice));
}

void Notices::press(Key::Kind key) {
    Notice& shown = m_notices.front();
    if (pages_of(key) != 0 && shown.pages().has_several()) {
        shown.pages().turn(pages_of(key));
    } else if (shown.answer == nullptr || key == Key::BACK) {
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
    Lcd& lcd = frame.lcd;
    const Lcd_size size = lcd.size();
    const bool asks = shown.answer != nullptr;
    frame.leds.alarm = shown.alarm;
    shown.is_titled = asks && size.rows < LEAST_ROWS_WITH_TITLE;
    Text_pages& pages = shown.pages();
    if (shown.is_titled) {
        pages.fit(size.columns, 1, true);
        draw_lines(lcd, TITLE_ROW, pages.show());
        lcd.put_right(TITLE_ROW, pages.number());
    } else {
        pages.fit(size.columns, size.rows - TEXT_ROW - (asks ? 1 : 0));
        draw_lines(lcd, TEXT_ROW, pages.show());
        const std::string number = pages.number();
        const std::string mark = !asks            ? number
                                 : number.empty() ? QUESTION_MARK
                                                  : number + " " + QUESTION_MARK;
        shown.title_line.draw(lcd, TITLE_ROW, 0, {shown.title, mark, ""});
    }
    if (asks) {
        draw_keys(lcd);
    }
}

}  // namespace frontpanel
