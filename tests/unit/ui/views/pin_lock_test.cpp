#include "views/pin_lock.h"

#include <gtest/gtest.h>

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

using std::chrono::seconds;
using Result = Pin_lock::Result;

class Pin_lock_test : public testing::Test {
protected:
    Pin_lock_test() { lock.ask(now); }

    Result press(Key::Kind kind, int times = 1) {
        Result result = Result::ASKING;
        for (int i = 0; i < times; ++i) {
            result = lock.press({kind}, now);
        }
        return result;
    }
    // Sets the digits, each from 0, and takes them.
    Result enter(const std::string& digits) {
        Result result = Result::ASKING;
        for (const char digit : digits) {
            press(Key::UP, digit - '0');
            result = press(Key::SELECT);
        }
        return result;
    }
    Lines lines() {
        Frame frame{Lcd({16, 2}), Leds()};
        lock.draw(frame.lcd, now);
        cursor = frame.lcd.cursor_column();
        return lines_of(frame);
    }

    Time now{seconds(1000)};
    Pin_lock lock{"4711"};
    int cursor = 0;
};

TEST(Pin, IsFourToEightDigits) {
    for (const std::string good : {"0000", "4711", "12345678"}) {
        EXPECT_TRUE(is_pin(good)) << good;
    }
    for (const std::string bad : {"", "123", "123456789", "12a4", "12 4", "-123", "1234\n"}) {
        EXPECT_FALSE(is_pin(bad)) << bad;
    }
}

TEST_F(Pin_lock_test, TheRightDigitsOpen) {
    EXPECT_EQ(enter("471"), Result::ASKING);
    EXPECT_EQ(enter("1"), Result::OPEN);
}

TEST_F(Pin_lock_test, OnlyTheDigitBeingSetShows) {
    EXPECT_EQ(lines(), (Lines{"Locked          ", "PIN 0___        "}));
    EXPECT_EQ(cursor, 4);
    enter("47");
    press(Key::DOWN);
    EXPECT_EQ(lines(), (Lines{"Locked          ", "PIN **9_        "}));
    EXPECT_EQ(cursor, 6);
}

TEST_F(Pin_lock_test, DigitsGoRound) {
    press(Key::DOWN);
    EXPECT_EQ(lines()[1], "PIN 9___        ");
    press(Key::UP);
    EXPECT_EQ(lines()[1], "PIN 0___        ");
}

TEST_F(Pin_lock_test, ATypedDigitIsTaken) {
    press(Key::UP, 3);
    EXPECT_EQ(lock.press({Key::SHORTCUT, 4, '4'}, now), Result::ASKING);
    EXPECT_EQ(lines()[1], "PIN *0__        ");
    lock.press({Key::SHORTCUT, 7, '7'}, now);
    lock.press({Key::CHARACTER, 0, '0'}, now);
    EXPECT_EQ(press(Key::BACK), Result::ASKING);
    EXPECT_EQ(lines()[1], "PIN **0_        ");
    lock.press({Key::SHORTCUT, 1, '1'}, now);
    EXPECT_EQ(lock.press({Key::SHORTCUT, 1, '1'}, now), Result::OPEN);
}

TEST_F(Pin_lock_test, TypedTriesCountAsOthersAndAreNotTakenWhileOneHasToWait) {
    for (const char digit : std::string("000000000000")) {
        lock.press({Key::CHARACTER, 0, digit}, now);
    }
    EXPECT_EQ(lines()[1], "wait 30 s       ");
    for (const char digit : std::string("4711")) {
        EXPECT_EQ(lock.press({Key::CHARACTER, 0, digit}, now), Result::ASKING);
    }
    now += Pin_lock::PENALTY;
    EXPECT_EQ(lines()[1], "PIN 0___        ");
}

TEST_F(Pin_lock_test, BackReturnsToTheDigitBeforeAndThenGivesUp) {
    enter("48");
    EXPECT_EQ(press(Key::BACK), Result::ASKING);
    EXPECT_EQ(lines()[1], "PIN *8__        ");
    press(Key::DOWN);
    press(Key::SELECT);
    EXPECT_EQ(enter("11"), Result::OPEN);
    lock.ask(now);
    EXPECT_EQ(press(Key::BACK), Result::GIVEN_UP);
}

TEST_F(Pin_lock_test, OtherKeysDoNothing) {
    for (const Key::Kind kind : {Key::COARSER, Key::FINER, Key::SHORTCUT}) {
        EXPECT_EQ(press(kind), Result::ASKING);
        EXPECT_EQ(lines()[1], "PIN 0___        ");
    }
}

TEST_F(Pin_lock_test, WhichDigitIsWrongDoesNotShow) {
    enter("999");
    EXPECT_EQ(lines(), (Lines{"Locked          ", "PIN ***0        "}));
    EXPECT_EQ(enter("9"), Result::ASKING);
    EXPECT_EQ(lines(), (Lines{"Wrong PIN       ", "PIN 0___        "}));
    EXPECT_EQ(enter("4711"), Result::OPEN);
}

TEST_F(Pin_lock_test, EveryThirdWrongTryHasToBeWaitedFor) {
    for (int i = 0; i < 3; ++i) {
        enter("0000");
    }
    EXPECT_EQ(lines(), (Lines{"Wrong PIN       ", "wait 30 s       "}));
    EXPECT_EQ(enter("4711"), Result::ASKING);
    now += std::chrono::milliseconds(29001);
    EXPECT_EQ(lines()[1], "wait 1 s        ");
    EXPECT_EQ(enter("4711"), Result::ASKING);
    now += seconds(1);
    EXPECT_EQ(enter("4711"), Result::OPEN);
}

TEST_F(Pin_lock_test, AskingAnewDoesNotEndThePenalty) {
    for (int i = 0; i < 3; ++i) {
        enter("0000");
    }
    EXPECT_EQ(press(Key::BACK), Result::GIVEN_UP);
    lock.ask(now);
    EXPECT_EQ(enter("4711"), Result::ASKING);
    EXPECT_EQ(lines()[1], "wait 30 s       ");
}

TEST_F(Pin_lock_test, TriesBeforeTheQuestionWasGivenUpCount) {
    enter("0000");
    enter("0000");
    lock.ask(now);
    enter("0000");
    EXPECT_EQ(lines()[1], "wait 30 s       ");
}

TEST_F(Pin_lock_test, WithoutKeysTheQuestionGoesAway) {
    now += Pin_lock::PATIENCE - seconds(1);
    EXPECT_EQ(lock.tick(now), Result::ASKING);
    press(Key::UP);
    now += Pin_lock::PATIENCE - seconds(1);
    EXPECT_EQ(lock.tick(now), Result::ASKING);
    now += seconds(1);
    EXPECT_EQ(lock.tick(now), Result::GIVEN_UP);
}

}  // namespace
}  // namespace frontpanel
