// Values of a real device on the display: unknown, old, on their way and refused.
#include "support/driven_menu.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

using namespace std::chrono_literals;

constexpr const char* ITEMS = R"({"type": "range", "name": "Gain", "pid": 1},
    {"type": "range", "name": "Level", "pid": 2, "access": "read-only"})";

class Driven_values_test : public testing::Test {
protected:
    explicit Driven_values_test(const std::string& items = ITEMS) : m_driven(items) {
        m_panel.frame();
    }

    Lines lines() { return lines_of(m_panel.frame()); }
    bool alarm() { return m_panel.frame().leds.alarm; }
    void press(Key::Kind kind, int times = 1) {
        for (int i = 0; i < times; ++i) {
            m_panel.press({kind});
        }
    }
    // The driver does what is due, and the panel sees it.
    void step() {
        m_driven.cache().step();
        m_panel.tick();
    }

    support::Driven_menu m_driven;
    Panel m_panel{m_driven.menu(), [] {
                      Panel_options options;
                      options.size = {16, 2};
                      options.clock = [] { return Time(1h); };
                      return options;
                  }()};
};

TEST_F(Driven_values_test, AValueThatWasNeverReadIsTwoDashesWithoutAlarm) {
    EXPECT_EQ(lines(), (Lines{">Gain         --", " Level=       --"}));
    EXPECT_FALSE(alarm());
    step();
    EXPECT_EQ(lines(), (Lines{">Gain         10", " Level=       20"}));
    EXPECT_FALSE(alarm());
}

TEST_F(Driven_values_test, AValueThatCannotBeReadLightsTheAlarm) {
    m_driven.device().fail(1, "garbage");
    step();
    EXPECT_EQ(lines(), (Lines{">Gain         10", " Level=       --"}));
    EXPECT_TRUE(alarm());
}

TEST_F(Driven_values_test, AnOldValueIsMarkedUntilItIsReadAgain) {
    step();
    m_driven.device().fail(0, "garbage");
    m_driven.device().fail(1, "garbage");
    m_driven.advance(3001ms);
    step();
    EXPECT_EQ(lines(), (Lines{">Gain?        10", " Level?       20"}));
    EXPECT_TRUE(alarm());
    m_driven.device().fail(0, "");
    m_driven.device().fail(1, "");
    m_driven.advance(1s);
    step();
    EXPECT_EQ(lines(), (Lines{">Gain         10", " Level=       20"}));
    EXPECT_FALSE(alarm());
}

class Driven_lines_test : public Driven_values_test {
protected:
    Driven_lines_test() : Driven_values_test(std::string(ITEMS) + MODE) {
        m_driven.device().take_calls();
    }

    std::vector<std::string> calls_of_step() {
        step();
        lines();
        return m_driven.device().take_calls();
    }

    static constexpr const char* MODE = R"(, {"type": "range", "name": "Mode", "pid": 3})";
};

TEST_F(Driven_lines_test, AParameterBesideTheDisplayIsNotRead) {
    EXPECT_EQ(calls_of_step(), (std::vector<std::string>{"connect", "read 0 1"}));
    for (int second = 0; second < 8; ++second) {
        m_driven.advance(1s);
        EXPECT_EQ(calls_of_step(), std::vector<std::string>{"read 0 1"});
    }
    press(Key::DOWN, 2);
    EXPECT_EQ(lines(), (Lines{" Level=       20", ">Mode         --"}));
    EXPECT_EQ(calls_of_step(), std::vector<std::string>{"read 2"});
    EXPECT_EQ(lines(), (Lines{" Level=       20", ">Mode         30"}));
}

TEST_F(Driven_lines_test, AParameterThatLeftTheDisplayIsNoLongerRead) {
    step();
    press(Key::DOWN, 2);
    lines();
    step();
    m_driven.advance(Device_cache_settings().wanted_for + 1ms);
    m_panel.tick();
    lines();
    m_driven.device().take_calls();
    EXPECT_EQ(calls_of_step(), std::vector<std::string>{"read 1 2"});
}

TEST_F(Driven_lines_test, AValueThatComesBackIntoViewIsMarkedByItsAgeAndReadAtOnce) {
    step();
    press(Key::DOWN, 2);
    lines();
    for (int second = 0; second < 20; ++second) {
        m_driven.advance(1s);
        step();
        lines();
    }
    m_driven.device().hold(0, 77);
    m_driven.device().take_calls();
    press(Key::UP, 2);
    EXPECT_EQ(lines(), (Lines{">Gain?        10", " Level=       20"}));
    EXPECT_EQ(calls_of_step(), std::vector<std::string>{"read 0"});
    EXPECT_EQ(lines(), (Lines{">Gain         77", " Level=       20"}));
}

TEST_F(Driven_lines_test, WhatCameMeanwhileShowsInTheFirstFrameOfALine) {
    step();
    press(Key::DOWN, 2);
    lines();
    m_driven.device().hold(0, 77);
    m_driven.advance(1s);
    step();
    press(Key::UP, 2);
    EXPECT_EQ(lines()[0], ">Gain         77");
}

TEST_F(Driven_values_test, AWrittenValueIsMarkedUntilTheDeviceHasIt) {
    step();
    press(Key::SELECT);
    press(Key::UP);
    press(Key::SELECT);
    EXPECT_EQ(lines(), (Lines{">Gain*        11", " Level=       20"}));
    step();
    EXPECT_EQ(lines(), (Lines{">Gain         11", " Level=       20"}));
    EXPECT_EQ(m_driven.device().writes(), std::vector<std::string>{"0=11"});
}

TEST_F(Driven_values_test, ARefusedValueGivesWayToTheOldOne) {
    step();
    m_driven.device().answer_writes({Driver_result::refused("too hot")});
    press(Key::SELECT);
    press(Key::UP);
    press(Key::SELECT);
    step();
    EXPECT_EQ(lines(), (Lines{">Gain         10", " Level=       20"}));
}

TEST_F(Driven_values_test, AValueWhoseWriteTimedOutIsUnknown) {
    step();
    m_driven.device().answer_writes({Driver_result::timed_out("no answer")});
    m_driven.device().fail(0, "busy");
    press(Key::SELECT);
    press(Key::UP);
    press(Key::SELECT);
    step();
    EXPECT_EQ(lines(), (Lines{">Gain         --", " Level=       20"}));
    EXPECT_TRUE(alarm());
}

TEST_F(Driven_values_test, AnUnknownValueIsNotEditedAndTheReasonIsShown) {
    press(Key::SELECT);
    EXPECT_EQ(lines(), (Lines{"Gain         1/2", "no value: not   "}));
    press(Key::BACK);
    m_driven.device().fail(0, "bad");
    step();
    press(Key::SELECT);
    EXPECT_EQ(lines(), (Lines{"Gain            ", "no value: bad   "}));
    press(Key::BACK);
    EXPECT_EQ(lines()[0], ">Gain         --");
    EXPECT_TRUE(m_driven.device().writes().empty());
}

TEST_F(Driven_values_test, AnOldValueIsEditedAfterItsReasonWasShown) {
    step();
    m_driven.device().fail(0, "bad");
    m_driven.advance(3001ms);
    step();
    press(Key::SELECT);
    EXPECT_EQ(lines(), (Lines{"Gain            ", "old value: bad  "}));
    press(Key::SELECT);
    EXPECT_EQ(lines(), (Lines{"Gain?           ", "10              "}));
}

class Driven_rules_test : public Driven_values_test {
protected:
    Driven_rules_test()
        : Driven_values_test(R"({"type": "range", "name": "Gain", "pid": 1},
            {"type": "range", "name": "Level", "pid": 2, "binding": "visible if [mode] > 40"})") {}

    std::vector<std::string> reasons() {
        std::vector<std::string> all;
        for (const Rule_fault& fault : m_driven.menu().bindings()->faults()) {
            all.push_back(fault.reason);
        }
        return all;
    }
};

TEST_F(Driven_rules_test, AValueThatIsAwaitedIsNoFaultOfItsRule) {
    m_panel.tick();
    EXPECT_EQ(reasons(), std::vector<std::string>());
    step();
    EXPECT_EQ(reasons(), std::vector<std::string>());
    EXPECT_EQ(lines(), (Lines{">Gain         10", "                "}));
}

TEST_F(Driven_rules_test, AValueThatDoesNotComeIsAFaultOfItsRule) {
    m_driven.device().fail(2, "garbage");
    m_panel.tick();
    step();
    EXPECT_EQ(reasons(), std::vector<std::string>{"cannot read [mode]: garbage"});
    m_driven.device().fail(2, "");
    m_driven.advance(1s);
    step();
    EXPECT_EQ(reasons(), std::vector<std::string>());
}

TEST_F(Driven_values_test, AnUnknownValueIsNoBaseForSeveralValuesAtOnce) {
    return_s value;
    value.rt = INTEGER;
    value.i = 5;
    const Write_gate::Outcome outcome =
        m_driven.menu().gate().write({{{1, 0}, value}}, Write_gate::Hidden_items::ACCEPTED, {});
    EXPECT_EQ(outcome.result, Write_gate::Result::REFUSED);
    EXPECT_EQ(outcome.refusal.text(), "Gain 5: value unknown: not read yet");
    EXPECT_TRUE(m_driven.device().writes().empty());
}

TEST(Driven_panel, KeysAreServedWhileADriverHangs) {
    support::Driven_menu driven(ITEMS, true);
    driven.cache().read_all(10s);
    Panel panel(driven.menu());
    driven.device().hang();
    panel.press({Key::SELECT});
    panel.press({Key::UP});
    panel.press({Key::SELECT});
    driven.device().wait_until_hanging();
    panel.press({Key::DOWN});
    panel.tick();
    EXPECT_EQ(lines_of(panel.frame())[1], " Gain*            11");
    EXPECT_EQ(lines_of(panel.frame())[2].substr(0, 7), ">Level=");
    driven.device().go_on();
    EXPECT_TRUE(driven.cache().flush(10s).empty());
}

}  // namespace
}  // namespace frontpanel
