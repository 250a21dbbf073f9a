#include <frontpanel_displays/terminal.h>

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(Terminal, TheUsualDisplayFitsASmallTerminal) {
    for (const Lcd_size lcd : {Lcd_size{20, 2}, {40, 4}, {78, 16}}) {
        EXPECT_LE(terminal_size_for(lcd).columns, 80);
        EXPECT_LE(terminal_size_for(lcd).rows, 24);
    }
    EXPECT_EQ(terminal_size_for({40, 4}).columns, 43);
    EXPECT_EQ(terminal_size_for({80, 4}).columns, 82);
    EXPECT_EQ(terminal_size_for({20, 2}).rows, 10);
}

}  // namespace
}  // namespace frontpanel
