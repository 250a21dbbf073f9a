#include "views/pin_lock.h"

namespace frontpanel {
namespace {

constexpr int TITLE_ROW = 0;
constexpr int PIN_ROW = 1;
constexpr int DIGITS = 10;
constexpr const char* PROMPT = "PIN ";

}  // namespace

void Pin_lock::ask(Time now) {
    m_taken.clear();
    m_digit = 0;
    m_refused = false;
    m_last_key = now;
}

Pin_lock::Result Pin_lock::press(const Key& key, Time now) {
    m_last_key = now;
    if (key.kind == Key::BACK && m_taken.empty()) {
        return Result::GIVEN_UP;
    }
    if (now < m_penalty_end) {
        return Result::ASKING;
    }
    if (key.character >= '0' && key.character <= '9') {
        m_digit = key.character - '0';
        return take_digit(now);
    }
    switch (key.kind) {
        case Key::UP:
            m_digit = (m_digit + 1) % DIGITS;
            break;
        case Key::DOWN:
            m_digit = (m_digit + DIGITS - 1) % DIGITS;
            break;
        case Key::SELECT:
            return take_digit(now);
        case Key::BACK:
            m_digit = m_taken.back() - '0';
            m_taken.pop_back();
            break;
        default:
            break;
    }
    return Result::ASKING;
}

// Whether a digit is right shows only with the last one.
Pin_lock::Result Pin_lock::take_digit(Time now) {
    m_taken += static_cast<char>('0' + m_digit);
    m_digit = 0;
    m_refused = false;
    if (m_taken.size() < m_pin.size()) {
        return Result::ASKING;
    }
    if (m_taken == m_pin) {
        m_wrong = 0;
        return Result::OPEN;
    }
    m_taken.clear();
    m_refused = true;
    if (++m_wrong % FREE_TRIES == 0) {
        m_penalty_end = now + PENALTY;
    }
    return Result::ASKING;
}

Pin_lock::Result Pin_lock::tick(Time now) {
    return now - m_last_key >= PATIENCE && now >= m_penalty_end ? Result::GIVEN_UP : Result::ASKING;
}

void Pin_lock::draw(Lcd& lcd, Time now) const {
    if (now < m_penalty_end) {
        const auto left = std::chrono::ceil<std::chrono::seconds>(m_penalty_end - now);
        lcd.put(TITLE_ROW, 0, "Wrong PIN");
        lcd.put(PIN_ROW, 0, "wait " + std::to_string(left.count()) + " s");
        return;
    }
    lcd.put(TITLE_ROW, 0, m_refused ? "Wrong PIN" : "Locked");
    const std::string rest(m_pin.size() - m_taken.size() - 1, '_');
    const std::string before = PROMPT + std::string(m_taken.size(), '*');
    lcd.put(PIN_ROW, 0, before + std::to_string(m_digit) + rest);
    lcd.set_cursor(PIN_ROW, static_cast<int>(before.size()));
}

}  // namespace frontpanel
