#include "charlcd_screen.h"

#include <gtest/gtest.h>

#include <random>

#include "support/charlcd_emulator.h"

namespace frontpanel {
namespace {

Frame frame_of(const std::string& first, const std::string& second, Lcd_size size = {16, 2}) {
    Frame frame{Lcd(size), Leds()};
    frame.lcd.put(0, 0, first);
    frame.lcd.put(1, 0, second);
    return frame;
}

class Charlcd_screen_test : public testing::Test {
protected:
    void SetUp() override { display.feed(screen.setup()); }
    // The bytes for the frame, which the display takes.
    std::string sent_for(const Frame& frame) {
        std::string bytes = screen.update(frame);
        display.feed(bytes);
        EXPECT_EQ(display.mistakes(), 0);
        return bytes;
    }

    Charlcd_screen screen{{16, 2}};
    support::Charlcd_emulator display{16, 2};
};

using Lines = std::vector<std::string>;

TEST_F(Charlcd_screen_test, SetsUpABlankLitDisplayWithoutACursor) {
    EXPECT_EQ(display.lines(), Lines(2, std::string(16, ' ')));
    EXPECT_TRUE(display.is_on());
    EXPECT_TRUE(display.is_lit());
    EXPECT_FALSE(display.has_cursor());
    EXPECT_FALSE(display.blinks());
    EXPECT_EQ(sent_for(frame_of("", "")), "");
}

TEST_F(Charlcd_screen_test, SetsUpADisplayWithinASequenceOfSomebodyElse) {
    for (const char* const rest :
         {"\x1B", "\x1B[", "\x1B[L", "\x1B[LG0", "\x1B[Lx1", "\x1B[Lx1y"}) {
        support::Charlcd_emulator other(16, 2);
        other.feed(rest);
        other.feed(screen.setup());
        EXPECT_EQ(other.lines(), Lines(2, std::string(16, ' '))) << rest;
        EXPECT_FALSE(other.blinks()) << rest;
        EXPECT_EQ(other.mistakes(), 0) << rest;
    }
}

TEST_F(Charlcd_screen_test, SendsOnlyWhatChanges) {
    EXPECT_EQ(sent_for(frame_of("Main", ">Gain")), "Main\x1B[Lx0y1;>Gain");
    EXPECT_EQ(sent_for(frame_of("Main", ">Gain")), "");
    EXPECT_EQ(sent_for(frame_of("Main", ">Gaim")), "\x1B[Lx4y1;m");
    EXPECT_EQ(sent_for(frame_of("Mair", ">Gaim")), "\x1B[Lx3y0;r");
    EXPECT_EQ(display.lines(), (Lines{"Mair            ", ">Gaim           "}));
}

TEST_F(Charlcd_screen_test, AShortGapIsSentAgainAndALongOneIsNot) {
    sent_for(frame_of("abcdefghijklmnop", ""));
    EXPECT_EQ(sent_for(frame_of("AbcdEfghijklmnop", "")), "\x1B[Lx0y0;AbcdE");
    EXPECT_EQ(sent_for(frame_of("abcdefghijklmnoP", "")), "\x1B[Lx0y0;abcde\x1B[Lx15y0;P");
}

TEST_F(Charlcd_screen_test, TheCursorBlinksWhereItIsAndTextGoesElsewhere) {
    Frame frame = frame_of("Gain", "1.5");
    frame.lcd.set_cursor(1, 2);
    EXPECT_EQ(sent_for(frame), "Gain\x1B[Lx0y1;1.5\x1B[Lx2y1;\x1B[LB");
    EXPECT_TRUE(display.blinks());
    frame.lcd.put(0, 0, "Main");
    EXPECT_EQ(sent_for(frame), "\x1B[Lx0y0;M\x1B[Lx2y1;");
    frame.lcd.set_cursor(1, 0);
    EXPECT_EQ(sent_for(frame), "\x1B[Lx0y1;");
    EXPECT_EQ(display.row(), 1);
    EXPECT_EQ(display.column(), 0);
    EXPECT_EQ(sent_for(frame_of("Main", "1.5")), "\x1B[Lb");
    EXPECT_FALSE(display.blinks());
}

TEST_F(Charlcd_screen_test, ADimFrameSwitchesTheLightOff) {
    Frame frame = frame_of("", "");
    frame.dim = true;
    EXPECT_EQ(sent_for(frame), "\x1B[L-");
    EXPECT_FALSE(display.is_lit());
    EXPECT_EQ(sent_for(frame), "");
    frame.dim = false;
    EXPECT_EQ(sent_for(frame), "\x1B[L+");
    EXPECT_TRUE(display.is_lit());
}

TEST_F(Charlcd_screen_test, AFrameOfAnotherSizeIsCutOrLeavesBlanks) {
    Frame large = frame_of("a long line of a large display", "2", {40, 4});
    large.lcd.put(2, 0, "3");
    large.lcd.set_cursor(3, 0);
    sent_for(large);
    EXPECT_EQ(display.lines(), (Lines{"a long line of a", "2               "}));
    EXPECT_FALSE(display.blinks());
    Charlcd_screen wide({20, 4});
    support::Charlcd_emulator other(20, 4);
    other.feed(wide.setup() + wide.update(frame_of("0123456789abcdef", "")));
    EXPECT_EQ(other.lines()[0], "0123456789abcdef    ");
}

TEST_F(Charlcd_screen_test, TheFarewellLeavesNothingToRead) {
    Frame frame = frame_of("Level", "12 dB");
    frame.lcd.set_cursor(1, 0);
    sent_for(frame);
    display.feed(Charlcd_screen::farewell());
    EXPECT_EQ(display.lines(), Lines(2, std::string(16, ' ')));
    EXPECT_FALSE(display.blinks());
}

TEST_F(Charlcd_screen_test, ShowsWhatTheRomHas) {
    sent_for(frame_of("Gerät 20 °C", "4.7 kΩ ±µ→"));
    EXPECT_EQ(display.text(0, support::shown_by_a00()), U"Gerät 20 °C     ");
    EXPECT_EQ(display.text(1, support::shown_by_a00()).substr(0, 8), U"4.7 kΩ \uE000");
    EXPECT_EQ(display.text(1, support::shown_by_a00()).substr(8, 2), U"µ→");

    Charlcd_screen european({16, 2}, Character_rom::a02());
    support::Charlcd_emulator other(16, 2);
    other.feed(european.setup() + european.update(frame_of("Gerät é\\~ 20 °C", "4.7 kΩ ±µ→≤Ж")));
    EXPECT_EQ(other.text(0, support::shown_by_a02()), U"Gerät é\\~ 20 °C ");
    EXPECT_EQ(other.text(1, support::shown_by_a02()), U"4.7 kΩ ±µ→≤Ж    ");
    EXPECT_EQ(other.mistakes(), 0);
    for (int code = 0; code < 8; ++code) {
        EXPECT_FALSE(other.defined(code));
    }
}

// What the controller takes for a command must never be sent as text.
TEST_F(Charlcd_screen_test, NoCodeOfARomIsACommand) {
    for (const Character_rom* const rom :
         {&Character_rom::a00(), &Character_rom::a02(), &Character_rom::iso_8859_1()}) {
        for (char32_t character = 0; character < 0x10000; ++character) {
            if (const std::optional<char> code = rom->code_of(character)) {
                EXPECT_EQ(std::string("\b\t\n\f\r\x1B").find(*code), std::string::npos)
                    << rom->name() << ' ' << std::hex << static_cast<unsigned>(character);
                EXPECT_GE(static_cast<unsigned char>(*code), 8U) << rom->name();
            }
        }
    }
}

TEST_F(Charlcd_screen_test, DefinesWhatTheRomLacks) {
    EXPECT_EQ(sent_for(frame_of("é", "")), std::string("\x1B[LG002040e111f100e00;\0", 23));
    EXPECT_EQ(display.defined(0),
              (Glyph{0b00010, 0b00100, 0b01110, 0b10001, 0b11111, 0b10000, 0b01110, 0}));
    EXPECT_EQ(sent_for(frame_of("éé", "")), std::string("\0", 1));
    EXPECT_TRUE(screen.lost().empty());
}

TEST_F(Charlcd_screen_test, ACharacterThatIsNoLongerShownMakesRoom) {
    sent_for(frame_of("àáâãåèéê", ""));
    for (int code = 0; code < 8; ++code) {
        EXPECT_TRUE(display.defined(code));
    }
    sent_for(frame_of("àáâãåèéë", ""));
    EXPECT_EQ(display.text(0, support::shown_by_a00()).substr(0, 8),
              U"\uE000\uE001\uE002\uE003\uE004\uE005\uE006\uE007");
    EXPECT_EQ(display.defined(7), *glyph_of(U'ë'));
}

TEST_F(Charlcd_screen_test, ANinthCharacterTakesAPlainFormOrAMark) {
    sent_for(frame_of("²³¹½±€§¿¡", ""));
    EXPECT_EQ(display.text(0, support::shown_by_a00()).substr(7, 2), U"\uE007?");
    EXPECT_EQ(screen.lost(), std::set<char32_t>{U'¡'});
}

// A letter without its accent is still read, a sign of a unit is not.
TEST_F(Charlcd_screen_test, ALetterMakesRoomForACharacterWithoutAPlainForm) {
    sent_for(frame_of("àáâãåèéêë", ""));
    EXPECT_EQ(display.text(0, support::shown_by_a00()).substr(7, 2), U"\uE007e");
    sent_for(frame_of("àáâãåèéêë", "±²"));
    EXPECT_EQ(display.text(0, support::shown_by_a00()).substr(0, 9),
              U"\uE000\uE001\uE002\uE003\uE004\uE005eee");
    EXPECT_EQ(display.text(1, support::shown_by_a00()).substr(0, 2), U"\uE006\uE007");
    EXPECT_EQ(display.defined(6), *glyph_of(U'±'));
    EXPECT_TRUE(screen.lost().empty());
    // Those that are defined stay, whatever comes before them.
    sent_for(frame_of("ëàáâãåè", "±²"));
    EXPECT_EQ(display.text(0, support::shown_by_a00()).substr(0, 7),
              U"e\uE000\uE001\uE002\uE003\uE004\uE005");
}

TEST_F(Charlcd_screen_test, WhatNobodyHasDrawnIsAMark) {
    sent_for(frame_of("\u4E2D\u0416 – “x”", "\x01\xFF"));
    EXPECT_EQ(display.text(0, support::shown_by_a00()).substr(0, 9), U"\u003F? - \"x\" ");
    EXPECT_EQ(display.text(1, support::shown_by_a00()).substr(0, 3), U"?\u003F ");
    EXPECT_EQ(screen.lost(), (std::set<char32_t>{U'\u0416', U'\u4E2D'}));
}

TEST_F(Charlcd_screen_test, RandomFramesAreShownWithFewerBytesThanAWholeOne) {
    for (const Lcd_size size : {Lcd_size{16, 2}, Lcd_size{20, 4}, Lcd_size{40, 4}}) {
        Charlcd_screen random_screen(size);
        support::Charlcd_emulator random_display(size.columns, size.rows);
        random_display.feed(random_screen.setup());
        std::mt19937 random(static_cast<unsigned>(size.columns));
        Frame frame{Lcd(size), Leds()};
        for (int i = 0; i < 500; ++i) {
            const int row = static_cast<int>(random() % static_cast<unsigned>(size.rows));
            const int column = static_cast<int>(random() % static_cast<unsigned>(size.columns));
            frame.lcd.put(row, column,
                          std::string(random() % 8, static_cast<char>('a' + random() % 26)));
            if (random() % 4 == 0) {
                frame.lcd.set_cursor(row, column);
            }
            const std::string bytes = random_screen.update(frame);
            random_display.feed(bytes);
            EXPECT_LE(bytes.size(), 32U);
            ASSERT_EQ(random_display.mistakes(), 0);
            for (int line = 0; line < size.rows; ++line) {
                ASSERT_EQ(random_display.lines()[static_cast<size_t>(line)], frame.lcd.line(line));
            }
            if (frame.lcd.cursor_row() >= 0) {
                ASSERT_EQ(random_display.row(), frame.lcd.cursor_row());
                ASSERT_EQ(random_display.column(), frame.lcd.cursor_column());
            }
        }
    }
}

}  // namespace
}  // namespace frontpanel
