#include <frontpanel_displays/text_display.h>

#include <string>

namespace frontpanel {
namespace {

const char* lamp(bool lit) {
    return lit ? "(*)" : "( )";
}

}  // namespace

void Text_display::show(const Frame& frame) {
    const std::string edge =
        "+" + std::string(static_cast<size_t>(frame.lcd.size().columns), '-') + "+\n";
    m_out << edge;
    for (int row = 0; row < frame.lcd.size().rows; ++row) {
        m_out << '|' << frame.lcd.text(row) << "|\n";
    }
    m_out << edge << lamp(frame.leds.edit) << " Edit  " << lamp(frame.leds.alarm) << " Alarm\n";
}

}  // namespace frontpanel
