#include <frontpanel_displays/text_display.h>

#include <gtest/gtest.h>

#include <sstream>

namespace frontpanel {
namespace {

TEST(TextDisplay, PrintsTheLinesWithinABorderAndTheLedsBelow) {
    Frame frame{Lcd({16, 2}), Leds()};
    frame.lcd.put(0, 0, ">Gain");
    frame.lcd.put_right(0, "-3 dB");
    frame.lcd.put(1, 0,
                  " 20 \xC2\xB0"
                  "C 5 k\u03A9");
    std::ostringstream out;
    Text_display display(out);
    display.show(frame);
    EXPECT_EQ(out.str(),
              "+----------------+\n"
              "|>Gain      -3 dB|\n"
              "| 20 \xC2\xB0"
              "C 5 k\u03A9     |\n"
              "+----------------+\n"
              "( ) Edit  ( ) Alarm\n");
}

TEST(TextDisplay, ShowsWhichLedsAreLit) {
    Frame frame{Lcd({16, 2}), Leds()};
    frame.leds.edit = true;
    frame.leds.alarm = true;
    frame.leds.heart = true;
    std::ostringstream out;
    Text_display(out).show(frame);
    EXPECT_NE(out.str().find("+\n(*) Edit  (*) Alarm\n"), std::string::npos) << out.str();
}

}  // namespace
}  // namespace frontpanel
