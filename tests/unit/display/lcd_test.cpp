#include <frontpanel_display/lcd.h>

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(Lcd, StartsBlankWithoutCursor) {
    const Lcd lcd({16, 2});
    EXPECT_EQ(lcd.line(0), "                ");
    EXPECT_EQ(lcd.line(1), "                ");
    EXPECT_EQ(lcd.cursor_row(), -1);
    EXPECT_EQ(lcd.cursor_column(), -1);
}

TEST(Lcd, PutsTextWhereItIsTold) {
    Lcd lcd({16, 2});
    lcd.put(1, 3, "Gain");
    EXPECT_EQ(lcd.line(0), "                ");
    EXPECT_EQ(lcd.line(1), "   Gain         ");
}

TEST(Lcd, DropsWhatDoesNotFitTheRow) {
    Lcd lcd({16, 2});
    lcd.put(0, 12, "Network");
    EXPECT_EQ(lcd.line(0), "            Netw");
    EXPECT_EQ(lcd.line(1), "                ");
}

TEST(Lcd, IgnoresPlacesOutsideTheGrid) {
    Lcd lcd({16, 2});
    for (const auto& [row, column] : {std::pair(-1, 0), {2, 0}, {0, -1}, {0, 16}}) {
        lcd.put(row, column, "x");
        lcd.set_cursor(row, column);
    }
    EXPECT_EQ(lcd.line(0) + lcd.line(1), std::string(32, ' '));
    EXPECT_EQ(lcd.cursor_row(), -1);
}

TEST(Lcd, PutsTextAtTheRightEdge) {
    Lcd lcd({16, 2});
    lcd.put_right(0, "12 dB");
    lcd.put_right(1, "a text that is longer than the row");
    EXPECT_EQ(lcd.line(0), "           12 dB");
    EXPECT_EQ(lcd.line(1), "a text that is l");
}

TEST(Lcd, ShowsAQuestionMarkForWhatADisplayCannotShow) {
    Lcd lcd({16, 2});
    lcd.put(0, 0, "a\x01z\n\x7f\xe2\x82\xac\xff~ ");
    EXPECT_EQ(lcd.line(0), "a?z????~        ");
    EXPECT_EQ(lcd.lost(), (std::set<char32_t>{0x1, 0xA, 0x7F, 0x20AC}));
}

TEST(Lcd, KeepsTheCharactersThatIso88591Lacks) {
    Lcd lcd({16, 2});
    lcd.put(0, 0, "4 k\u03A9 \u2013 \u00B0\x01\xFF\u0085");
    EXPECT_EQ(lcd.line(0), "4 k? - \xB0???     ");
    EXPECT_EQ(lcd.characters(0), U"4 k\u03A9 \u2013 \u00B0???     ");
    lcd.put_right(1, "5 \u20AC");
    EXPECT_EQ(lcd.characters(1), U"             5 \u20AC");
    EXPECT_EQ(lcd.lost(), (std::set<char32_t>{0x1, 0x85, 0x3A9, 0x20AC}));
}

TEST(Lcd, ALineOfTextHasAColumnForEachCell) {
    Lcd lcd({16, 2});
    lcd.put(0, 0, "4 k\u03A9 e\u0301 \u65E5 \u2264\x1B|");
    EXPECT_EQ(lcd.text(0), "4 k\u03A9 \u00E9 ? \u2264?|    ");
    EXPECT_EQ(lcd.text(1), std::string(16, ' '));
}

TEST(Lcd, ACombiningCharacterTakesNoCell) {
    Lcd lcd({16, 2});
    lcd.put(0, 0, "e\u0301x\u0301r\u030C\u0301");
    EXPECT_EQ(lcd.characters(0), U"\u00E9x\u0159             ");
    EXPECT_EQ(lcd.line(0), "\xE9xr             ");
    lcd.put_right(1, "20 e\u0301");
    EXPECT_EQ(lcd.characters(1), U"            20 \u00E9");
    EXPECT_EQ(lcd.lost(), (std::set<char32_t>{0x159, 0x301}));
}

TEST(Lcd, CountsCellsAndNotBytes) {
    Lcd lcd({16, 2});
    lcd.put(0, 13, "20\xc2\xb0 C");
    lcd.put_right(1, " \xc2\xb5\xc2\xb5");
    EXPECT_EQ(lcd.line(0), "             20\xb0");
    EXPECT_EQ(lcd.line(1), "              \xb5\xb5");
    EXPECT_TRUE(lcd.lost().empty());
}

TEST(Lcd, RemembersItsCursor) {
    Lcd lcd({16, 2});
    lcd.set_cursor(1, 15);
    EXPECT_EQ(lcd.cursor_row(), 1);
    EXPECT_EQ(lcd.cursor_column(), 15);
}

TEST(Lcd, ASizeIsColumnsByRows) {
    EXPECT_EQ(size_text({20, 2}), "20x2");
    EXPECT_EQ(size_text(LARGEST_LCD), "80x16");
}

}  // namespace
}  // namespace frontpanel
