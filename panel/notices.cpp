#include "notices.h"

namespace panel {
namespace {

constexpr int TITLE_ROW = 0;
constexpr int TEXT_ROW = 1;

}  // namespace

void Notices::tell(const std::string& title, const std::string& text, bool alarm) {
    m_notices.push_back({title, text, alarm});
}

void Notices::draw(Frame& frame) const {
    frame.lcd.put(TITLE_ROW, 0, m_notices.front().title);
    frame.lcd.put(TEXT_ROW, 0, m_notices.front().text);
    frame.leds.alarm = m_notices.front().alarm;
}

}  // namespace panel
