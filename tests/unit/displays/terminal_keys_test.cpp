#include "terminal_keys.h"

#include <curses.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <set>

#include <frontpanel_display/key_table.h>

namespace frontpanel {
namespace {

struct Key_case {
    int code;
    Key::Kind kind;
    int button;
};

TEST(TerminalKeys, KeysMeanWhatTheLegendSays) {
    const Key_case CASES[] = {
        {KEY_UP, Key::UP, 0},     {KEY_DOWN, Key::DOWN, 0},       {'\r', Key::SELECT, 0},
        {'\n', Key::SELECT, 0},   {KEY_ENTER, Key::SELECT, 0},    {KEY_RIGHT, Key::RIGHT, 0},
        {27, Key::BACK, 0},       {KEY_LEFT, Key::LEFT, 0},       {'+', Key::COARSER, 0},
        {'-', Key::FINER, 0},     {'d', Key::DIAGNOSTICS, 0},     {'D', Key::DIAGNOSTICS, 0},
        {'1', Key::SHORTCUT, 1},  {'9', Key::SHORTCUT, 9},        {KEY_IC, Key::INSERT, 0},
        {KEY_DC, Key::DELETE, 0}, {KEY_BACKSPACE, Key::ERASE, 0}, {127, Key::ERASE, 0},
        {'\b', Key::ERASE, 0},    {KEY_F(1), Key::SHORTCUT, 1},   {KEY_F(12), Key::SHORTCUT, 12},
    };
    for (const Key_case& expected : CASES) {
        const std::optional<Front_event> event = event_of(expected.code);
        ASSERT_TRUE(event) << expected.code;
        EXPECT_EQ(event->kind, Front_event::KEY) << expected.code;
        EXPECT_EQ(event->key.kind, expected.kind) << expected.code;
        EXPECT_EQ(event->key.button, expected.button) << expected.code;
    }
    EXPECT_EQ(event_of('q')->kind, Front_event::QUIT);
    EXPECT_EQ(event_of('Q')->kind, Front_event::QUIT);
    EXPECT_EQ(event_of(KEY_RESIZE)->kind, Front_event::REDRAW);
}

TEST(TerminalKeys, OtherKeysMeanNothing) {
    for (const int code : std::initializer_list<int>{ERR, 0, 1, 255, KEY_F0, KEY_F(13), KEY_HOME}) {
        EXPECT_FALSE(event_of(code)) << code;
    }
}

TEST(TerminalKeys, EveryPrintableKeyBringsItsCharacter) {
    for (char character = ' '; character <= '~'; ++character) {
        const std::optional<Front_event> event = event_of(character);
        ASSERT_TRUE(event) << character;
        EXPECT_EQ(event->key.character, character);
    }
    for (const char other : {'x', '0', ' ', 'u', '.'}) {
        EXPECT_EQ(event_of(other)->key.kind, Key::CHARACTER) << other;
    }
    for (const int code : {KEY_UP, KEY_F(1), 27, 127, static_cast<int>('\r')}) {
        EXPECT_EQ(event_of(code)->key.character, '\0') << code;
    }
}

TEST(TerminalKeys, EveryKeyOfThePanelIsOnTheKeyboard) {
    std::set<Key::Kind> reached;
    for (int code = 0; code <= KEY_MAX; ++code) {
        const std::optional<Front_event> event = event_of(code);
        if (event && event->kind == Front_event::KEY) {
            reached.insert(event->key.kind);
        }
    }
    for (const Key_row& row : KEY_TABLE) {
        EXPECT_EQ(reached.count(row.kind), 1U) << row.word;
    }
}

}  // namespace
}  // namespace frontpanel
