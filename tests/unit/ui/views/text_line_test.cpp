#include "views/text_line.h"

#include <gtest/gtest.h>

#include <string>

namespace frontpanel {
namespace {

std::string line(const std::string& left, const std::string& right, const std::string& mark,
                 int column = 0) {
    Lcd lcd({16, 2});
    Text_line().draw(lcd, 0, column, {left, right, mark, 1});
    return lcd.line(0);
}

TEST(Text_line, TheMarkIsBehindTheLeftText) {
    EXPECT_EQ(line("Gain", "5 dB", "*"), "Gain*       5 dB");
    EXPECT_EQ(line("Gain", "", "?"), "Gain?           ");
    EXPECT_EQ(line("", "5 dB", "?"), "?           5 dB");
}

TEST(Text_line, TheMarkTakesTheBlankOfAFullLine) {
    EXPECT_EQ(line("Temperature", "-273.1 C", "?"), "Tempera?-273.1 C");
    EXPECT_EQ(line("Temperature", "-2147483648 ms", "?"), "T?-2147483648 ms");
    EXPECT_EQ(line("Temperature", "-2147483648 ms", "=", 1).size(), 16U);
}

TEST(Text_line, TheMarkHasAPlaceBesideASingleTextThatFillsTheLine) {
    EXPECT_EQ(line("Oil temperature!", "", "?"), "Oil temperature?");
    EXPECT_EQ(line("Oil temperature", "", "?", 1), " Oil temperatur?");
    EXPECT_EQ(line("", "0123456789abcdef", "?"), "?0123456789abcd>");
    EXPECT_EQ(line("Oil temperature!", "", ""), "Oil temperature!");
}

// The digits of a number must stay readable.
TEST(Text_line, AMarkNeverCoversTheRightText) {
    for (std::size_t left = 0; left <= 20; ++left) {
        for (std::size_t right = 1; right <= 13; ++right) {
            const std::string digits = std::string("-0123456789012345").substr(0, right);
            const std::string shown = line(std::string(left, 'n'), digits, "?");
            ASSERT_EQ(shown.substr(shown.size() - digits.size()), digits) << shown;
            ASSERT_NE(shown.find('?'), std::string::npos) << shown;
        }
    }
}

}  // namespace
}  // namespace frontpanel
