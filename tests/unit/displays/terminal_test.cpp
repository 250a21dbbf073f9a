#include <frontpanel_displays/terminal.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <utility>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

// The size of a screen that nobody has would take the memory of the device.
TEST(Terminal, AnAbsurdSizeIsRefused) {
    const std::pair<const char*, const char*> CASES[] = {{"COLUMNS", "30000"},
                                                         {"LINES", "1001"},
                                                         {"COLUMNS", "99999999999999999999"},
                                                         {"COLUMNS", "0x7530"}};
    for (const auto& [name, value] : CASES) {
        setenv(name, value, 1);
        try {
            const Terminal terminal(STDOUT_FILENO);
            ADD_FAILURE() << name;
        } catch (const Input_error& error) {
            EXPECT_EQ(error.what(), std::string(name) + "=" + value + ": expected at most 1000");
        }
        unsetenv(name);
    }
}

TEST(Terminal, TheUsualDisplayFitsASmallTerminal) {
    for (const Lcd_size lcd : {Lcd_size{20, 2}, {40, 4}, {78, 16}}) {
        EXPECT_LE(terminal_size_for(lcd, 80).columns, 80);
        EXPECT_LE(terminal_size_for(lcd, 80).rows, 24);
    }
    EXPECT_EQ(terminal_size_for({20, 4}).columns, 40);
    EXPECT_LE(terminal_size_for({20, 4}).rows, 16);
    EXPECT_EQ(terminal_size_for({40, 4}).columns, 42);
    EXPECT_EQ(terminal_size_for({80, 4}).columns, 82);
}

}  // namespace
}  // namespace frontpanel
