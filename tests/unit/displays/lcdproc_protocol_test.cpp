#include "lcdproc_protocol.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

using Commands = std::vector<std::string>;

struct Answer_case {
    std::string line;
    Lcdproc_answer::Kind kind;
    std::string word;
};

TEST(LcdprocAnswer, TellsTheServersWords) {
    const Answer_case CASES[] = {
        {"success", Lcdproc_answer::SUCCESS, ""},
        {"key Up", Lcdproc_answer::KEY, "Up"},
        {"key F1 panel", Lcdproc_answer::KEY, "F1"},
        {"listen panel", Lcdproc_answer::LISTEN, "panel"},
        {"ignore panel", Lcdproc_answer::IGNORE, "panel"},
        {"noop complete", Lcdproc_answer::FENCE, ""},
        {"huh? Unknown widget id", Lcdproc_answer::REFUSAL, "Unknown"},
        {"huh?", Lcdproc_answer::REFUSAL, ""},
        {"bye", Lcdproc_answer::END, ""},
        {"success\r", Lcdproc_answer::SUCCESS, ""},
    };
    for (const Answer_case& expected : CASES) {
        const Lcdproc_answer answer = parse_lcdproc_answer(expected.line);
        EXPECT_EQ(answer.kind, expected.kind) << expected.line;
        EXPECT_EQ(answer.word, expected.word) << expected.line;
    }
}

TEST(LcdprocAnswer, WhatTheServerNeverSaysIsOther) {
    for (const std::string line :
         {"", " ", "key", "listen", "ignore", "noop", "noop complete now", "keys Up", "Success",
          "connect", "connect LCDproc 0.5.9", "\x01\x02\xFF"}) {
        EXPECT_EQ(parse_lcdproc_answer(line).kind, Lcdproc_answer::OTHER) << line;
    }
}

TEST(LcdprocAnswer, TheGreetingTellsTheDisplaysSize) {
    const Lcdproc_answer answer = parse_lcdproc_answer(
        "connect LCDproc 0.5.9 protocol 0.3 lcd wid 20 hgt 4 cellwid 5 cellhgt 8");
    EXPECT_EQ(answer.kind, Lcdproc_answer::CONNECT);
    EXPECT_EQ(answer.size.columns, 20);
    EXPECT_EQ(answer.size.rows, 4);
}

TEST(LcdprocAnswer, AGreetingWithoutAUsableSizeIsOther) {
    for (const std::string size : {"wid 20", "hgt 4", "wid hgt 4", "wid 20 hgt", "wid 0 hgt 4",
                                   "wid 20 hgt 0", "wid -20 hgt 4", "wid 20x hgt 4",
                                   "wid 257 hgt 4", "wid 20 hgt 65", "wid 99999999999 hgt 4"}) {
        EXPECT_EQ(parse_lcdproc_answer("connect LCDproc 0.5.9 lcd " + size).kind,
                  Lcdproc_answer::OTHER)
            << size;
    }
}

TEST(LcdprocText, IsQuotedWithQuotesAndBackslashesEscaped) {
    EXPECT_EQ(lcdproc_quoted(""), "\"\"");
    EXPECT_EQ(lcdproc_quoted(" a  b "), "\" a  b \"");
    EXPECT_EQ(lcdproc_quoted("say \"x\\y\" {z} #1"), "\"say \\\"x\\\\y\\\" {z} #1\"");
    EXPECT_EQ(lcdproc_quoted("20\xB0"), "\"20\xB0\"");
}

Frame frame_of(Lcd_size size, const std::vector<std::string>& lines) {
    Frame frame{Lcd(size), Leds()};
    for (size_t row = 0; row < lines.size(); ++row) {
        frame.lcd.put(static_cast<int>(row), 0, lines[row]);
    }
    return frame;
}

class Lcdproc_screen_test : public testing::Test {
protected:
    Lcdproc_screen_test() { screen.update(frame_of({16, 2}, {"Main", ">Gain"})); }

    Lcdproc_screen screen{{16, 2}};
};

TEST(Lcdproc_screen, IsOneScreenWithAWidgetALine) {
    EXPECT_EQ(Lcdproc_screen({16, 2}).setup(),
              (Commands{"screen_add panel",
                        "screen_set panel -name panel -priority foreground -heartbeat off "
                        "-backlight open -cursor off",
                        "widget_add panel line1 string", "widget_add panel line2 string"}));
}

TEST(Lcdproc_screen, TheFirstFrameTellsLampsAndBacklightAndWhatIsNotBlank) {
    Lcdproc_screen screen({16, 2});
    EXPECT_EQ(
        screen.update(frame_of({16, 2}, {"", ">Gain"})),
        (Commands{"widget_set panel line2 1 2 \">Gain           \"", "output 0", "backlight on"}));
}

TEST_F(Lcdproc_screen_test, TheSameFrameNeedsNothing) {
    EXPECT_EQ(screen.update(frame_of({16, 2}, {"Main", ">Gain"})), Commands());
}

TEST_F(Lcdproc_screen_test, OnlyLinesThatChangedAreSent) {
    EXPECT_EQ(screen.update(frame_of({16, 2}, {"Main", ">Level"})),
              Commands{"widget_set panel line2 1 2 \">Level          \""});
    EXPECT_EQ(screen.update(frame_of({16, 2}, {"", ">Level"})),
              Commands{"widget_set panel line1 1 1 \"                \""});
}

TEST_F(Lcdproc_screen_test, TheCursorIsCountedFromOne) {
    Frame frame = frame_of({16, 2}, {"Main", ">Gain"});
    frame.lcd.set_cursor(1, 4);
    EXPECT_EQ(screen.update(frame),
              Commands{"screen_set panel -cursor on -cursor_x 5 -cursor_y 2"});
    EXPECT_EQ(screen.update(frame), Commands());
    EXPECT_EQ(screen.update(frame_of({16, 2}, {"Main", ">Gain"})),
              Commands{"screen_set panel -cursor off"});
}

TEST_F(Lcdproc_screen_test, LampsAreOutputsAndDimmingTheBacklight) {
    Frame frame = frame_of({16, 2}, {"Main", ">Gain"});
    frame.leds.edit = true;
    EXPECT_EQ(screen.update(frame), Commands{"output 1"});
    frame.leds = {false, true, true};
    frame.dim = true;
    EXPECT_EQ(screen.update(frame), (Commands{"output 6", "backlight off"}));
    frame.dim = false;
    EXPECT_EQ(screen.update(frame), Commands{"backlight on"});
}

TEST(Lcdproc_screen, WhatDoesNotFitTheDisplayIsCut) {
    Lcdproc_screen screen({10, 1});
    Frame frame = frame_of({16, 2}, {"Main menu of 3", ">Gain"});
    frame.lcd.set_cursor(1, 2);
    EXPECT_EQ(screen.update(frame),
              (Commands{"widget_set panel line1 1 1 \"Main menu \"", "output 0", "backlight on"}));
    frame.lcd.set_cursor(0, 10);
    EXPECT_EQ(screen.update(frame), Commands());
    frame.lcd.set_cursor(0, 9);
    EXPECT_EQ(screen.update(frame),
              Commands{"screen_set panel -cursor on -cursor_x 10 -cursor_y 1"});
}

TEST(Lcdproc_screen, WhatIsLeftOfTheDisplayStaysBlank) {
    Lcdproc_screen screen({18, 4});
    EXPECT_EQ(screen.update(frame_of({16, 2}, {"Main", ">Gain"})),
              (Commands{"widget_set panel line1 1 1 \"Main              \"",
                        "widget_set panel line2 1 2 \">Gain             \"", "output 0",
                        "backlight on"}));
}

}  // namespace
}  // namespace frontpanel
