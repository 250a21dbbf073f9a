#include <frontpanel_ui/main_loop.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <deque>

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

using std::chrono::milliseconds;

constexpr const char* PARAMETERS =
    R"({"pid": 1, "type": "integer", "min": 0, "max": 99, "value": 5})";
constexpr const char* ITEMS = R"({"type": "range", "name": "Gain", "pid": 1},
    {"type": "range", "name": "Level", "pid": 1})";

// A front whose events the test makes up.
class Fake_front : public Front {
public:
    void show(const Frame& frame) override { frames.push_back(lines_of(frame)); }
    std::optional<Front_event> next(Time) override {
        if (events.empty()) {
            return std::nullopt;
        }
        const Front_event event = events.front();
        events.pop_front();
        return event;
    }
    pollfd source() const override { return {pipe_end, POLLIN, 0}; }
    Time due() const override { return wanted; }

    void key(Key::Kind kind, int times = 1) {
        for (int i = 0; i < times; ++i) {
            events.push_back({Front_event::KEY, {kind}});
        }
    }

    std::deque<Front_event> events;
    std::vector<Lines> frames;
    Time wanted = Time::max();
    int pipe_end = -1;
};

Panel_options with_clock(std::function<Time()> clock) {
    Panel_options options;
    options.size = {16, 2};
    options.clock = std::move(clock);
    return options;
}

class Main_loop_test : public testing::Test {
protected:
    Main_loop_test() { loop.turn(); }

    void turn_until_idle() {
        do {
            loop.turn();
        } while (loop.due() <= now && !loop.is_over());
    }

    Time now{std::chrono::hours(1)};
    Application_panel shown{menu_text(PARAMETERS, ITEMS), with_clock([this] { return now; })};
    Fake_front front;
    Main_loop loop{shown.panel, front};
};

TEST_F(Main_loop_test, ShowsTheMenuAtOnce) {
    ASSERT_EQ(front.frames.size(), 1U);
    EXPECT_EQ(front.frames[0], (Lines{">Gain          5", " Level         5"}));
}

TEST_F(Main_loop_test, EveryKeyHasItsFrame) {
    front.key(Key::SELECT);
    front.key(Key::UP, 3);
    turn_until_idle();
    ASSERT_EQ(front.frames.size(), 5U);
    EXPECT_EQ(front.frames[1][1], "5               ");
    EXPECT_EQ(front.frames[4][1], "8               ");
}

TEST_F(Main_loop_test, ShowsNothingWhenNothingHappened) {
    now += Panel::TICK - milliseconds(1);
    loop.turn();
    loop.turn();
    EXPECT_EQ(front.frames.size(), 1U);
}

TEST_F(Main_loop_test, ReadsTheDeviceAgainWithEveryTick) {
    shown.device().set_integer(1, 0, 42);
    now += Panel::TICK;
    EXPECT_EQ(loop.due(), now);
    loop.turn();
    ASSERT_EQ(front.frames.size(), 2U);
    EXPECT_EQ(front.frames[1][0], ">Gain         42");
    EXPECT_EQ(loop.due(), now + Panel::TICK);
}

// A device that has something new wakes the loop, at most every SHORTEST_TICK; the Alive LED keeps its pace.
TEST(Main_loop_device, ADeviceThatChangedIsReadAtOnce) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(pipe(ends), 0);
    Time now{std::chrono::hours(1)};
    Panel_options options = with_clock([&] { return now; });
    int ticks = 0;
    options.device_descriptor = ends[0];
    options.before_tick = [&] {
        char byte = 0;
        ++ticks;
        EXPECT_LE(read(ends[0], &byte, ticks == 1 ? 1 : 0), 1);
    };
    Application_panel shown(menu_text(PARAMETERS, ITEMS), std::move(options));
    Fake_front front;
    Main_loop loop(shown.panel, front);
    loop.turn();
    const bool heart = shown.panel.frame().leds.heart;
    shown.device().set_integer(1, 0, 42);
    EXPECT_EQ(write(ends[1], "x", 1), 1);
    now += milliseconds(1);
    loop.turn();
    EXPECT_EQ(front.frames.back()[0], ">Gain         42");
    EXPECT_EQ(shown.panel.frame().leds.heart, heart);
    EXPECT_EQ(write(ends[1], "x", 1), 1);
    now += milliseconds(1);
    loop.turn();
    EXPECT_EQ(ticks, 1);
    EXPECT_EQ(shown.panel.device_descriptor(), -1);
    EXPECT_EQ(loop.due(), now - milliseconds(1) + Panel::SHORTEST_TICK);
    now += Panel::SHORTEST_TICK;
    loop.turn();
    EXPECT_EQ(ticks, 2);
    close(ends[0]);
    close(ends[1]);
}

TEST(Main_loop_typing, TheKeyThatEndsThePanelIsACharacterInAText) {
    Application_panel shown(
        menu_text(R"({"name": "label", "pid": 1, "type": "text", "length": 8, "value": "A"})",
                  R"({"type": "text", "name": "Label", "parameter": "label"})"),
        with_clock([] { return Time(std::chrono::hours(1)); }));
    Fake_front front;
    Main_loop loop(shown.panel, front);
    const Front_event quit{Front_event::QUIT, {Key::CHARACTER, 0, 'q'}};
    front.key(Key::SELECT);
    front.events.push_back(quit);
    front.key(Key::SELECT);
    for (int turn = 0; turn < 5; ++turn) {
        loop.turn();
    }
    EXPECT_FALSE(loop.is_over());
    EXPECT_EQ(shown.device().text(1, 0), "q");
    front.events.push_back(quit);
    loop.turn();
    EXPECT_TRUE(loop.is_over());
}

TEST_F(Main_loop_test, IsDueWhenItsFrontIs) {
    front.wanted = now + milliseconds(5);
    EXPECT_EQ(loop.due(), front.wanted);
}

// Drawing would scroll long texts on.
TEST_F(Main_loop_test, ARedrawShowsTheSameFrameAgain) {
    shown.device().set_integer(1, 0, 42);
    front.events.push_back({Front_event::REDRAW});
    loop.turn();
    ASSERT_EQ(front.frames.size(), 2U);
    EXPECT_EQ(front.frames[1], front.frames[0]);
}

TEST_F(Main_loop_test, TakesTheSizeOfItsFront) {
    front.events.push_back({Front_event::SIZE, {Key::UP}, {20, 4}});
    loop.turn();
    EXPECT_EQ(front.frames.back(), (Lines{"Main             1/2", ">Gain              5",
                                          " Level             5", "                    "}));
}

TEST_F(Main_loop_test, EndsWhenThePersonQuits) {
    front.events.push_back({Front_event::QUIT});
    front.key(Key::SELECT);
    loop.turn();
    EXPECT_TRUE(loop.is_over());
    EXPECT_EQ(front.frames.size(), 1U);
}

TEST_F(Main_loop_test, AnEndlessRowOfKeysStillLetsTimePass) {
    front.key(Key::DOWN, 100);
    shown.device().set_integer(1, 0, 42);
    now += Panel::TICK;
    loop.turn();
    EXPECT_EQ(front.events.size(), 99U);
    EXPECT_EQ(front.frames.back()[1], ">Level        42");
    EXPECT_LE(loop.due(), now);
    turn_until_idle();
    EXPECT_GT(loop.due(), now);
}

TEST_F(Main_loop_test, KeysPressedDuringASlowCommitAreNotReplayed) {
    front.key(Key::SELECT);
    front.key(Key::UP);
    turn_until_idle();
    shown.device().set_fault([this](const Memory_device::Operation& operation) {
        if (operation.kind == Memory_device::Operation_kind::WRITE) {
            now += Main_loop::SLOW_KEY + milliseconds(1);
            front.key(Key::DOWN, 3);
            front.key(Key::SELECT);
            front.events.push_back({Front_event::SIZE, {Key::UP}, {16, 3}});
        }
        return 0;
    });
    front.key(Key::SELECT);
    turn_until_idle();
    EXPECT_EQ(shown.device().integer(1, 0), 6);
    EXPECT_TRUE(front.events.empty());
    EXPECT_EQ(front.frames.back(),
              (Lines{"Main         1/2", ">Gain          6", " Level         6"}));
}

TEST_F(Main_loop_test, KeysPressedDuringAQuickCommitCount) {
    front.key(Key::SELECT);
    front.key(Key::UP);
    front.key(Key::SELECT);
    front.key(Key::DOWN);
    turn_until_idle();
    EXPECT_EQ(front.frames.back(), (Lines{" Gain          6", ">Level         6"}));
}

TEST_F(Main_loop_test, AQuitDuringASlowCommitCounts) {
    front.key(Key::SELECT);
    front.key(Key::UP);
    turn_until_idle();
    shown.device().set_fault([this](const Memory_device::Operation&) {
        now += std::chrono::seconds(1);
        return 0;
    });
    front.key(Key::SELECT);
    front.key(Key::DOWN);
    front.events.push_back({Front_event::QUIT});
    turn_until_idle();
    EXPECT_TRUE(loop.is_over());
}

[[noreturn]] void loop_until_a_signal() {
    const End_watch watch{std::chrono::hours(1)};
    Application_panel shown{menu_text(PARAMETERS, ITEMS), {{16, 2}}};
    Fake_front front;
    Main_loop loop{shown.panel, front};
    kill(getpid(), SIGTERM);
    _exit(loop.run(watch));
}

// In a process of its own: signals are the whole process's.
TEST(Main_loopDeathTest, EndsWithTheStatusOfASignal) {
    EXPECT_EXIT(loop_until_a_signal(), testing::ExitedWithCode(128 + SIGTERM), "");
}

TEST(Main_loop_run, WaitsForItsFrontAndEndsWithTheQuit) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    Application_panel shown{menu_text(PARAMETERS, ITEMS), {{16, 2}}};
    Fake_front front;
    front.pipe_end = ends[0];
    Main_loop loop{shown.panel, front};
    ASSERT_EQ(write(ends[1], "x", 1), 1);
    const End_watch end;
    front.events.push_back({Front_event::QUIT});
    EXPECT_EQ(loop.run(end), 0);
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
}  // namespace frontpanel
