#include <frontpanel_ui/panel.h>

#include <gtest/gtest.h>

#include <stdexcept>

#include <frontpanel_ui/message_queue.h>
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

using std::chrono::seconds;

constexpr const char* PARAMETERS = R"(
    {"name": "gain", "pid": 1, "type": "integer", "min": 0, "max": 99, "value": 5})";
constexpr const char* ITEMS = R"({"type": "node", "name": "Audio", "items": [
    {"type": "range", "name": "Gain", "parameter": "gain", "binding": "warn \"loud\" if value > 90",
     "editor": {"acceleration": 10}}]})";
const Lines TOP{">Audio       ...", "                "};

class Panel_test : public testing::Test {
protected:
    Panel_options options() {
        Panel_options options;
        options.size = {16, 2};
        options.clock = [this] { return now; };
        return options;
    }
    void open(Panel_options options) {
        shown.emplace(menu_text(PARAMETERS, ITEMS), std::move(options));
    }
    void open() { open(options()); }
    void press(Key::Kind kind, int times = 1) {
        for (int i = 0; i < times; ++i) {
            shown->panel.press({kind});
        }
    }
    Lines lines() { return shown->lines(); }
    int32_t gain() { return shown->device().integer(1, 0).value_or(-1); }

    Time now{seconds(1000)};
    std::optional<Application_panel> shown;
};

TEST_F(Panel_test, TakesKeysAndShowsFrames) {
    open();
    EXPECT_EQ(lines(), TOP);
    press(Key::SELECT, 2);
    now += seconds(1);
    press(Key::UP);
    EXPECT_EQ(lines()[1], "6               ");
    EXPECT_TRUE(shown->panel.frame().leds.edit);
    press(Key::SELECT);
    EXPECT_EQ(gain(), 6);
}

TEST_F(Panel_test, TakesKeysAsMessages) {
    open();
    Message_queue messages;
    messages.push(message_of({Key::SELECT}));
    messages.push(message_of({Key::SELECT}));
    shown->panel.receive(messages);
    EXPECT_EQ(lines()[0], "Gain            ");
    shown->panel.receive(FrontPanel::UserInputTimeout);
    EXPECT_TRUE(shown->panel.has_changed());
    EXPECT_EQ(lines(), TOP);
}

TEST_F(Panel_test, TheFrameStaysUntilSomethingHappens) {
    open();
    EXPECT_TRUE(shown->panel.has_changed());
    const Frame* const first = &shown->panel.frame();
    EXPECT_FALSE(shown->panel.has_changed());
    shown->device().set_integer(1, 0, 42);
    EXPECT_EQ(&shown->panel.frame(), first);
    press(Key::DOWN);
    EXPECT_TRUE(shown->panel.has_changed());
    shown->panel.frame();
    shown->panel.set_size({20, 2});
    EXPECT_TRUE(shown->panel.has_changed());
    EXPECT_EQ(shown->panel.frame().lcd.size().columns, 20);
}

TEST_F(Panel_test, IsDueOnceATick) {
    open();
    EXPECT_EQ(shown->panel.due(), now + Panel::TICK);
    press(Key::SELECT);
    lines();
    shown->device().set_integer(1, 0, 42);
    now += Panel::TICK;
    shown->panel.tick();
    EXPECT_EQ(shown->panel.due(), now + Panel::TICK);
    EXPECT_TRUE(shown->panel.has_changed());
    EXPECT_EQ(lines()[0], ">Gain         42");
}

// A driver may report a value every 20 ms.
TEST_F(Panel_test, TextsScrollNoFasterWhileADeviceReportsChanges) {
    shown.emplace(menu_text(PARAMETERS, R"({"type": "range", "name": "Gain of the hall",
        "parameter": "gain", "format": "%d dB"})"),
                  options());
    constexpr int BEATS = 30;
    int moves = 0;
    std::string name = lines()[0].substr(1, 8);
    for (int i = 1; i <= 4 * BEATS; ++i) {
        now += Panel::SHORTEST_TICK;
        if (i % 4 != 0) {
            shown->panel.hurry();
        }
        shown->panel.tick();
        const std::string next = lines()[0].substr(1, 8);
        moves += next != name ? 1 : 0;
        name = next;
    }
    EXPECT_LE(moves, BEATS);
    EXPECT_GT(moves, BEATS / 2);
}

TEST_F(Panel_test, APageTurnsNoSoonerWhileADeviceReportsChanges) {
    open();
    shown->panel.tell("plc", "away: it does not answer at all");
    EXPECT_EQ(lines()[0], "plc          1/3");
    for (int i = 0; i < 100; ++i) {
        shown->panel.hurry();
        shown->panel.tick();
        EXPECT_EQ(lines()[0], "plc          1/3");
    }
    for (int beat = 0; beat < 20 && lines()[0] == "plc          1/3"; ++beat) {
        now += Panel::TICK;
        shown->panel.tick();
    }
    EXPECT_EQ(lines()[0], "plc          2/3");
}

TEST_F(Panel_test, AsksAboutWhatRulesWarnOf) {
    open();
    press(Key::SELECT);
    shown->device().set_integer(1, 0, 90);
    press(Key::SELECT);
    now += seconds(1);
    press(Key::UP);
    press(Key::SELECT);
    EXPECT_EQ(lines(), (Lines{"Gain: loud      ", "Enter yes Esc no"}));
    EXPECT_EQ(gain(), 90);
    press(Key::SELECT);
    EXPECT_EQ(gain(), 91);
}

TEST_F(Panel_test, AQuestionNamesTheKeysOfTheDisplay) {
    Panel_options named = options();
    named.answer_keys = {"A", "B"};
    open(std::move(named));
    press(Key::SELECT, 2);
    press(Key::COARSER);
    press(Key::UP, 9);
    press(Key::SELECT);
    EXPECT_EQ(lines(), (Lines{"Gain: loud      ", "A yes, B no     "}));
}

TEST_F(Panel_test, AQuickTurnOfTheEncoderIsFasterUnlessItIsSwitchedOff) {
    open();
    press(Key::SELECT, 2);
    press(Key::UP, 3);
    EXPECT_EQ(lines()[1], "26              ");  // 1, 10 and 10 steps
    shown.reset();
    Panel_options slow = options();
    slow.encoder = Encoder_settings{false, false, false};
    open(slow);
    press(Key::SELECT, 2);
    press(Key::UP, 3);
    EXPECT_EQ(lines()[1], "8               ");
}

TEST_F(Panel_test, GoesHomeAndDimsAfterItsIdleTimeout) {
    Panel_options idle = options();
    idle.idle_timeout = seconds(60);
    open(idle);
    press(Key::SELECT);
    now += seconds(61);
    shown->panel.tick();
    EXPECT_TRUE(shown->panel.frame().dim);
    EXPECT_EQ(lines(), TOP);
    press(Key::SELECT);
    EXPECT_FALSE(shown->panel.frame().dim);
    EXPECT_EQ(lines(), TOP);
}

TEST_F(Panel_test, AsksForItsPin) {
    Panel_options locked = options();
    locked.pin = "1000";
    open(locked);
    EXPECT_TRUE(shown->panel.frame().dim);
    press(Key::SELECT);
    EXPECT_EQ(lines()[0], "Locked          ");
    press(Key::UP);
    press(Key::SELECT, 4);
    EXPECT_EQ(lines(), TOP);
}

TEST_F(Panel_test, RejectsWhatIsNoPin) {
    for (const char* const bad : {"", "123", "123456789", "12a4"}) {
        Panel_options locked = options();
        locked.pin = bad;
        EXPECT_FALSE(is_pin(bad));
        EXPECT_THROW(open(locked), std::invalid_argument) << bad;
    }
    EXPECT_TRUE(is_pin("1234"));
    EXPECT_TRUE(is_pin("12345678"));
}

TEST_F(Panel_test, IsTheLibrarysInterfaceAsLongAsItLives) {
    Data_interface* const before = VarIdDataInfStore::m_pDataAccessInf;
    open();
    EXPECT_EQ(VarIdDataInfStore::m_pDataAccessInf, &shown->loaded.menu->access());
    shown.reset();
    EXPECT_EQ(VarIdDataInfStore::m_pDataAccessInf, before);
}

// A front with keys of the test's own.
class Key_front : public Front {
public:
    void show(const Frame& frame) override { last = lines_of(frame); }
    std::optional<Front_event> next(Time) override {
        if (left == 0) {
            return Front_event{Front_event::QUIT};
        }
        --left;
        return Front_event{Front_event::KEY, {Key::SELECT}};
    }
    pollfd source() const override { return {-1, 0, 0}; }
    Time due() const override { return Time::min(); }

    int left = 2;
    Lines last;
};

TEST_F(Panel_test, HasTheTimeOfTheMachineByDefault) {
    open({{16, 2}});
    const Time before = std::chrono::steady_clock::now();
    const Time time = shown->panel.now();
    EXPECT_LE(before, time);
    EXPECT_LE(time, std::chrono::steady_clock::now());
}

// The clock stands still: while a key takes long, further ones are dropped.
TEST_F(Panel_test, RunsOnAFrontUntilThePersonQuits) {
    open();
    Key_front front;
    EXPECT_EQ(shown->panel.run(front), 0);
    EXPECT_EQ(front.last[0], "Gain            ");
}

// A menu in which 100 entries depend on one parameter.
class Panel_with_dependants : public testing::Test {
protected:
    Panel_with_dependants() {
        settle_all();
        for (Data_entry* entry = bank().Get_child(); entry != nullptr; entry = entry->Get_next()) {
            entry->isVisible(true, &shown.loaded.menu->access());
        }
    }

    static std::string text() {
        std::string items;
        for (int i = 0; i < 100; ++i) {
            items += std::string(i == 0 ? "" : ",") +
                     R"({"type": "range", "name": "Level", "pid": 2, "binding": "range 0..[1]"})";
        }
        return menu_text(std::string(PARAMETERS) +
                             R"(, {"pid": 2, "type": "integer", "min": 0, "max": 99, "value": 0})",
                         R"({"type": "range", "name": "Gain", "parameter": "gain"},
                            {"type": "range", "name": "Other", "pid": 2},
                            {"type": "node", "name": "Bank", "items": [)" +
                             items + "]}");
    }
    Panel_options options() {
        Panel_options options;
        options.size = {16, 2};
        options.refreshes_at_once = 10;
        options.clock = [this] { return now; };
        options.before_tick = [this] { now += work; };
        return options;
    }
    Data_entry& bank() { return *shown.loaded.menu->root().Get_child()->Get_next()->Get_next(); }
    int last_max() {
        Data_entry* entry = bank().Get_child();
        while (entry->Get_next() != nullptr) {
            entry = entry->Get_next();
        }
        return static_cast<Range_entry*>(entry)->Get_max();
    }
    bool has_rest() { return shown.loaded.menu->bindings()->has_unsettled(); }
    int settle_all() {
        int ticks = 0;
        for (; has_rest() && ticks < 1000; ++ticks) {
            EXPECT_LE(shown.panel.due(), now);
            shown.panel.tick();
        }
        return ticks;
    }
    void change_gain(int32_t value) {
        shown.device().set_integer(1, 0, value);
        now += Panel::TICK;
        shown.panel.tick();
    }

    Time now{seconds(1000)};
    std::chrono::milliseconds work{0};  // of a tick
    Application_panel shown{text(), options()};
};

TEST_F(Panel_with_dependants, AKeyComesBeforeTheRestOfTheEntries) {
    change_gain(60);
    EXPECT_TRUE(has_rest());
    shown.panel.press({Key::DOWN});
    EXPECT_EQ(shown.lines()[1].substr(0, 6), ">Other");
    EXPECT_TRUE(has_rest());
    EXPECT_EQ(settle_all(), 8) << "10 in the tick, 10 with the key, then 10 at once";
    EXPECT_LE(shown.panel.due(), now) << "the list is asked as well";
    EXPECT_EQ(last_max(), 60);
}

TEST_F(Panel_with_dependants, WhatIsShownFollowsAtOnceAndTheRestNeedsNoFrame) {
    change_gain(60);
    EXPECT_EQ(shown.lines()[0], ">Gain         60");
    const bool heart = shown.panel.frame().leds.heart;
    EXPECT_FALSE(shown.panel.has_changed());
    EXPECT_EQ(settle_all(), 9);
    EXPECT_FALSE(shown.panel.has_changed());
    EXPECT_EQ(shown.panel.due(), now + Panel::TICK);
    EXPECT_EQ(shown.panel.frame().leds.heart, heart);
}

TEST_F(Panel_with_dependants, TheRestPausesForSixTimesAsLongAsItWorked) {
    work = std::chrono::milliseconds(5);
    change_gain(60);
    ASSERT_TRUE(has_rest());
    EXPECT_EQ(shown.panel.due(), now + 6 * work);
}

}  // namespace
}  // namespace frontpanel
