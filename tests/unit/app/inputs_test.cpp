#include "inputs.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/event_pipe.h"

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

class Silent_front : public Front {
public:
    void show(const Frame&) override {}
    std::optional<Front_event> next(Time) override { return std::nullopt; }
    pollfd source() const override { return {-1, POLLIN, 0}; }
    Time due() const override { return Time::max(); }
};

// A build may leave the inputs out.
class Inputs : public testing::Test {
protected:
    void SetUp() override {
        if (!has_inputs()) {
            GTEST_SKIP() << "built without inputs";
        }
    }
};

TEST_F(Inputs, AreNamedByPathOrName) {
    EXPECT_EQ(parse_input("evdev:/dev/input/event0"), "/dev/input/event0");
    EXPECT_EQ(parse_input("evdev:A knob: large"), "A knob: large");
    for (const std::string bad : {"", "evdev", "evdev:", "/dev/input/event0", "uinput:x"}) {
        try {
            parse_input(bad);
            ADD_FAILURE() << bad;
        } catch (const Input_error& error) {
            EXPECT_EQ(error.what(), "expected evdev:PATH or evdev:NAME, found \"" + bad + "\"");
        }
    }
}

TEST_F(Inputs, EachPartHasTheKeysWithItsNames) {
    Key_map display;
    Key_map inputs;
    split_keys({{"Enter", {Key::SELECT}}, {"KEY_A", {Key::BACK}}}, display, inputs);
    EXPECT_EQ(display.size(), 1U);
    EXPECT_EQ(display.count("Enter"), 1U);
    EXPECT_EQ(inputs.size(), 1U);
    EXPECT_EQ(inputs.count("KEY_A"), 1U);
    split_keys({{"BTN_0", {Key::SELECT}}}, display, inputs);
    EXPECT_EQ(display.size(), usual_keys().size());
    EXPECT_EQ(inputs.size(), 1U);
    split_keys({{"Enter", {Key::SELECT}}}, display, inputs);
    EXPECT_EQ(display.size(), 1U);
    EXPECT_TRUE(inputs.empty());
    EXPECT_THROW(split_keys({{"KEY_NONE", {Key::SELECT}}}, display, inputs), Input_error);
}

TEST_F(Inputs, AMapOfAxesAloneKeepsTheUsualKeys) {
    Key_map display;
    Key_map inputs;
    split_keys({{"REL_X", {Key::DOWN}}}, display, inputs);
    EXPECT_EQ(display.size(), usual_keys().size());
    EXPECT_EQ(inputs.size(), 1U);
    EXPECT_THROW(split_keys({{"REL_X", {Key::DOWN}}, {"KEY_A", {Key::BACK}}}, display, inputs),
                 Input_error);
    EXPECT_THROW(split_keys({{"A", {Key::BACK}}}, display, inputs), Input_error);

    support::Event_pipe pipe;
    pipe.plug_in();
    std::ostringstream log;
    Options options;
    options.inputs = {pipe.path()};
    options.input_keys = {{"REL_X", {Key::DOWN}}};
    const auto front = whole_front(std::make_unique<Silent_front>(), options, log);
    const Time now(std::chrono::seconds(1000));
    EXPECT_FALSE(front->next(now));
    pipe.signal(EV_REL, REL_X, 1);
    pipe.signal(EV_KEY, KEY_ENTER, 1);
    EXPECT_EQ(front->next(now)->key.kind, Key::DOWN);
    EXPECT_EQ(front->next(now)->key.kind, Key::SELECT);
}

TEST_F(Inputs, ADisplayWithoutKeysNeedsAnInputThatSelects) {
    Options options;
    options.inputs = {"/nonexistent/one"};
    EXPECT_NO_THROW(check_input_keys(options));
    options.input_keys = {{"REL_X", {Key::DOWN}}};
    EXPECT_NO_THROW(check_input_keys(options));
    options.input_keys = {{"KEY_A", {Key::BACK}}};
    EXPECT_THROW(check_input_keys(options), Input_error);
    options.inputs.clear();
    EXPECT_NO_THROW(check_input_keys(options));
}

TEST_F(Inputs, StandBesideTheDisplay) {
    std::ostringstream log;
    Options options;
    auto display = std::make_unique<Silent_front>();
    const Front* const alone = display.get();
    EXPECT_EQ(whole_front(std::move(display), options, log).get(), alone);
    options.inputs = {"/nonexistent/one", "/nonexistent/two"};
    const auto front = whole_front(std::make_unique<Silent_front>(), options, log);
    EXPECT_FALSE(front->next(Time(std::chrono::seconds(1000))));
    EXPECT_EQ(
        log.str(),
        "frontpanel: input /nonexistent/one is unreachable (No such file or directory); retrying\n"
        "frontpanel: input /nonexistent/two is unreachable (No such file or directory); retrying\n");
}

TEST(Inputs_left_out, TheOptionOfTheBuildThatBringsThemIsNamed) {
    if (has_inputs()) {
        GTEST_SKIP() << "built with inputs";
    }
    const auto error_of = [](const auto& work) -> std::string {
        try {
            work();
        } catch (const Input_error& error) {
            return error.what();
        }
        return "";
    };
    const std::string lacks =
        "this build lacks the input \"evdev\" (build with -D FRONTPANEL_INPUTS=ON)";
    EXPECT_EQ(error_of([] { parse_input("evdev:A knob"); }), lacks);
    EXPECT_EQ(error_of([] { parse_input("uinput:x"); }),
              "expected evdev:PATH or evdev:NAME, found \"uinput:x\"");
    Key_map display;
    Key_map inputs;
    EXPECT_EQ(error_of([&] {
                  split_keys({{"KEY_A", {Key::SELECT}}}, display, inputs);
              }),
              lacks + ", and \"KEY_A\" is a key of it");
    EXPECT_EQ(error_of([&] { split_keys({{"A", {Key::SELECT}}}, display, inputs); }), "");
}

TEST(Led_folders_of_options, StandBesideTheDisplay) {
    std::ostringstream log;
    Options options;
    options.leds = {{"alarm", "/nonexistent/led"}};
    const auto front = whole_front(std::make_unique<Silent_front>(), options, log);
    EXPECT_FALSE(front->next(Time(std::chrono::seconds(1000))));
    EXPECT_EQ(
        log.str(),
        "frontpanel: LED /nonexistent/led is unreachable (No such file or directory); retrying\n");
}

}  // namespace
}  // namespace frontpanel
