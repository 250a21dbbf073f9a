// A display without a menu: the application draws the frame.
#include <frontpanel_displays/display_table.h>
#include <frontpanel_displays/text_display.h>

#include <sstream>

int main() {
    using namespace frontpanel;
    Frame frame{Lcd({16, 2}), {}};
    frame.lcd.put(0, 0, "Hello");
    frame.leds.edit = true;
    std::ostringstream out;
    Text_display(out).show(frame);
    const bool is_shown = out.str().find("|Hello           |") != std::string::npos;
    return is_shown && parse_display("text").display == &default_display(false) ? 0 : 1;
}
