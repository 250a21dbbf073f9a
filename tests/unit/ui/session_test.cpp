#include "session.h"

#include <gtest/gtest.h>

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

using std::chrono::seconds;

constexpr const char* PARAMETERS =
    R"({"pid": 1, "type": "integer", "min": 0, "max": 9, "value": 5})";
constexpr const char* ITEMS = R"({"type": "node", "name": "Audio", "items": [
    {"type": "range", "name": "Gain", "pid": 1}]})";
const Lines HOME{">Audio          ...", "                   "};

class Session_test : public testing::Test {
protected:
    explicit Session_test(std::optional<std::string> pin = std::nullopt)
        : panel(menu_text(PARAMETERS, ITEMS), {19, 2}),
          session(panel.controller(), panel.device(), std::move(pin), now) {
        panel.device().time_for_timeout = 60;
    }

    void press(Key::Kind kind, int times = 1) {
        for (int i = 0; i < times; ++i) {
            session.press({kind}, now);
        }
    }
    void wait(seconds time) {
        now += time;
        session.tick(now);
    }
    Lines lines() { return lines_of(session.draw(now)); }
    int32_t gain() { return panel.device().integer(1, 0).value_or(-1); }

    Time now{seconds(1000)};
    Menu_panel panel;
    Session session;
};

class Locked_session_test : public Session_test {
protected:
    // Opens the panel, which is locked when it starts.
    Locked_session_test() : Session_test("1234") {
        press(Key::SELECT);
        enter("1234");
    }

    void enter(const std::string& pin) {
        for (const char digit : pin) {
            press(Key::UP, digit - '0');
            press(Key::SELECT);
        }
    }
};

TEST_F(Session_test, KeysGoToThePanel) {
    EXPECT_EQ(lines(), HOME);
    press(Key::SELECT);
    EXPECT_EQ(lines()[0], ">Gain             5");
    EXPECT_FALSE(session.draw(now).dim);
}

TEST_F(Session_test, WithoutAKeyThePanelGoesHomeAndDims) {
    press(Key::SELECT);
    wait(seconds(59));
    EXPECT_FALSE(session.is_dim());
    EXPECT_EQ(lines()[0], ">Gain             5");
    wait(seconds(1));
    EXPECT_TRUE(session.is_dim());
    EXPECT_FALSE(session.is_locked());
    EXPECT_EQ(lines(), HOME);
    EXPECT_TRUE(session.draw(now).dim);
}

TEST_F(Session_test, EveryKeyStartsTheTimeAnew) {
    for (int i = 0; i < 3; ++i) {
        wait(seconds(59));
        press(Key::UP);
    }
    wait(seconds(59));
    EXPECT_FALSE(session.is_dim());
}

TEST_F(Session_test, AnEditedValueIsLeftAsItWas) {
    press(Key::SELECT, 2);
    press(Key::UP, 2);
    EXPECT_TRUE(session.draw(now).leds.edit);
    wait(seconds(60));
    EXPECT_FALSE(session.draw(now).leds.edit);
    EXPECT_EQ(lines(), HOME);
    EXPECT_EQ(gain(), 5);
    EXPECT_TRUE(panel.device().writes().empty());
}

TEST_F(Session_test, TheKeyThatWakesThePanelDoesNothingElse) {
    wait(seconds(60));
    press(Key::SELECT);
    EXPECT_FALSE(session.is_dim());
    EXPECT_EQ(lines(), HOME);
    press(Key::SELECT);
    EXPECT_EQ(lines()[0], ">Gain             5");
    wait(seconds(59));
    EXPECT_FALSE(session.is_dim());
}

TEST_F(Session_test, WithoutATimeOutThePanelStaysAsItIs) {
    for (const int never : {0, -1}) {
        panel.device().time_for_timeout = never;
        wait(std::chrono::hours(24));
        EXPECT_FALSE(session.is_dim()) << never;
    }
    panel.device().time_for_timeout = 60;
    wait(seconds(0));
    EXPECT_TRUE(session.is_dim());
}

TEST_F(Session_test, TheApplicationSendsThePanelHome) {
    press(Key::SELECT);
    panel.device().go_home = 1;
    wait(seconds(0));
    EXPECT_EQ(panel.device().go_home, 0);
    EXPECT_FALSE(session.is_dim());
    EXPECT_EQ(lines(), HOME);
}

TEST_F(Session_test, TheApplicationDimsAndWakesThePanel) {
    panel.device().lock_and_dim = 1;
    press(Key::SELECT);
    wait(seconds(0));
    EXPECT_TRUE(session.is_dim());
    EXPECT_EQ(panel.device().lock_and_dim, 1);
    EXPECT_EQ(lines()[0], ">Gain             5");  // nobody asked for the top menu
    panel.device().lock_and_dim = 0;
    wait(seconds(0));
    EXPECT_FALSE(session.is_dim());
    panel.device().lock_and_dim = 1;
    wait(seconds(0));
    press(Key::UP);
    EXPECT_EQ(panel.device().lock_and_dim, 0);
}

TEST_F(Session_test, TheHeartBeatsWithEveryTick) {
    const bool before = session.draw(now).leds.heart;
    EXPECT_EQ(session.draw(now).leds.heart, before);
    wait(seconds(0));
    EXPECT_NE(session.draw(now).leds.heart, before);
    wait(seconds(0));
    EXPECT_EQ(session.draw(now).leds.heart, before);
}

TEST_F(Session_test, WhatFailedIsStillThereForWhoeverComesBack) {
    panel.fail(Memory_device::Operation_kind::WRITE, 1);
    press(Key::SELECT, 2);
    press(Key::UP);
    press(Key::SELECT);
    wait(seconds(60));
    EXPECT_EQ(lines()[1], "write failed       ");
    press(Key::SELECT);
    EXPECT_EQ(lines()[1], "write failed       ");
    press(Key::SELECT);
    EXPECT_EQ(lines(), HOME);
}

TEST(Session, APanelWithAPinStartsLocked) {
    const Time now{seconds(1000)};
    Menu_panel panel(menu_text(PARAMETERS, ITEMS), {19, 2});
    Session session(panel.controller(), panel.device(), "1234", now);
    EXPECT_TRUE(session.is_locked());
    EXPECT_TRUE(session.draw(now).dim);
    EXPECT_EQ(panel.device().lock_and_dim, 1);
    session.tick(now);
    EXPECT_TRUE(session.is_locked());
    session.press({Key::SELECT}, now);
    EXPECT_EQ(lines_of(session.draw(now)), (Lines{"Locked             ", "PIN 0___           "}));
}

TEST_F(Locked_session_test, ArrowsTakeADigitAndGoBackToTheOneBefore) {
    wait(seconds(60));
    press(Key::RIGHT);
    press(Key::UP, 3);
    press(Key::RIGHT);
    EXPECT_EQ(lines()[1], "PIN *0__           ");
    press(Key::LEFT);
    EXPECT_EQ(lines()[1], "PIN 3___           ");
    press(Key::SELECT);
    press(Key::ERASE);
    EXPECT_EQ(lines()[1], "PIN 3___           ");
    press(Key::LEFT);
    EXPECT_TRUE(session.draw(now).dim);
}

TEST_F(Locked_session_test, APanelThatDimsLocks) {
    wait(seconds(60));
    EXPECT_TRUE(session.is_locked());
    EXPECT_EQ(lines(), HOME);
    press(Key::SELECT);
    EXPECT_EQ(lines(), (Lines{"Locked             ", "PIN 0___           "}));
    EXPECT_FALSE(session.draw(now).dim);
    EXPECT_TRUE(session.is_locked());
}

TEST_F(Locked_session_test, TheRightPinOpens) {
    wait(seconds(60));
    press(Key::DOWN);
    enter("1234");
    EXPECT_FALSE(session.is_locked());
    EXPECT_FALSE(session.is_dim());
    EXPECT_EQ(panel.device().lock_and_dim, 0);
    EXPECT_EQ(lines(), HOME);
    press(Key::SELECT);
    EXPECT_EQ(lines()[0], ">Gain             5");
}

TEST_F(Locked_session_test, ThePinMayBeTyped) {
    const auto type = [this](char digit) {
        session.press({Key::SHORTCUT, digit - '0', digit}, now);
    };
    wait(seconds(60));
    EXPECT_FALSE(session.types('1'));
    EXPECT_EQ(session.draw(now).characters, "");
    type('9');
    EXPECT_EQ(lines()[1], "PIN 0___           ") << "the first key opens the prompt";
    EXPECT_TRUE(session.types('1'));
    EXPECT_FALSE(session.types('q'));
    EXPECT_EQ(session.draw(now).characters, "0123456789");
    type('1');
    EXPECT_EQ(lines()[1], "PIN *0__           ");
    type('2');
    type('3');
    session.press({Key::COARSER, 0, '+'}, now);
    EXPECT_TRUE(session.is_locked());
    type('4');
    EXPECT_FALSE(session.is_locked());
    EXPECT_EQ(lines(), HOME);
}

TEST_F(Locked_session_test, AnEncoderThatTurnsTheOtherWayDoesSoForThePinToo) {
    Encoder_settings encoder;
    encoder.reversed = true;
    panel.set_encoder(encoder);
    wait(seconds(60));
    press(Key::SELECT);
    press(Key::DOWN, 3);
    EXPECT_EQ(lines()[1], "PIN 3___           ");
    press(Key::UP);
    EXPECT_EQ(lines()[1], "PIN 2___           ");
}

TEST_F(Locked_session_test, AWrongPinDoesNotReachTheMenu) {
    wait(seconds(60));
    press(Key::SELECT);
    enter("1235");
    EXPECT_TRUE(session.is_locked());
    EXPECT_EQ(lines()[0], "Wrong PIN          ");
    press(Key::BACK);
    EXPECT_EQ(lines(), HOME);
    EXPECT_TRUE(session.draw(now).dim);
}

TEST_F(Locked_session_test, AQuestionThatNobodyAnswersGoesAway) {
    wait(seconds(60));
    press(Key::SELECT);
    wait(seconds(15));
    EXPECT_EQ(lines(), HOME);
    EXPECT_TRUE(session.is_locked());
}

TEST_F(Locked_session_test, WhatIsBeingEditedIsNotLeftOpenBehindTheLock) {
    press(Key::SELECT, 2);
    press(Key::UP);
    panel.device().lock_and_dim = 1;
    wait(seconds(0));
    EXPECT_EQ(lines(), HOME);
    press(Key::SELECT);
    enter("1234");
    EXPECT_EQ(lines(), HOME);
    EXPECT_EQ(gain(), 5);
}

TEST_F(Locked_session_test, TheQuestionHasTheDisplaysSize) {
    wait(seconds(60));
    press(Key::SELECT);
    session.set_size({16, 3});
    EXPECT_EQ(lines(), (Lines{"Locked          ", "PIN 0___        ", "                "}));
}

}  // namespace
}  // namespace frontpanel
