#include <frontpanel_inputs/evdev_input.h>

#include <gtest/gtest.h>
#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>

#include <sstream>

#include <frontpanel_display/retry.h>

#include "support/event_pipe.h"
#include "support/pseudo_evdev.h"

namespace frontpanel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Kinds = std::vector<Key::Kind>;

class Evdev_input_test : public testing::Test {
protected:
    void open(const std::string& device) { input.emplace(device, usual_event_keys(), log); }
    void open() { open(pipe.path()); }
    Kinds pressed() {
        Kinds kinds;
        while (const std::optional<Front_event> event = input->next(now)) {
            EXPECT_EQ(event->kind, Front_event::KEY);
            kinds.push_back(event->key.kind);
        }
        return kinds;
    }
    std::string place() const { return "frontpanel: input " + pipe.path() + " "; }

    support::Event_pipe pipe;
    std::ostringstream log;
    std::optional<Evdev_input> input;
    Time now{seconds(1000)};
};

TEST_F(Evdev_input_test, EventsPressKeys) {
    pipe.plug_in();
    open();
    EXPECT_EQ(input->source().fd, -1);
    EXPECT_EQ(pressed(), Kinds());
    EXPECT_GE(input->source().fd, 0);
    EXPECT_EQ(input->due(), Time::max());
    pipe.signal(EV_REL, REL_X, 2);
    pipe.signal(EV_KEY, KEY_ENTER, 1);
    pipe.signal(EV_KEY, KEY_ENTER, 0);
    EXPECT_EQ(pressed(), (Kinds{Key::UP, Key::UP, Key::SELECT}));
    EXPECT_EQ(log.str(), place() + "is used\n");
}

TEST_F(Evdev_input_test, StepsThatAreLeftAreDueAtOnce) {
    pipe.plug_in();
    open();
    pressed();
    pipe.signal(EV_REL, REL_X, 2);
    EXPECT_TRUE(input->next(now));
    EXPECT_EQ(input->due(), Time::min());
    EXPECT_TRUE(input->next(now));
    EXPECT_EQ(input->due(), Time::max());
}

TEST_F(Evdev_input_test, AFloodOfEventsWithoutKeysHoldsNobodyAndIsReadOn) {
    pipe.plug_in();
    open();
    pressed();
    for (int i = 0; i < 1500; ++i) {
        pipe.send(EV_MSC, MSC_SCAN, i);
    }
    pipe.signal(EV_REL, REL_X, 1);
    EXPECT_FALSE(input->next(now));
    EXPECT_EQ(input->due(), Time::min());
    EXPECT_EQ(pressed(), Kinds{Key::UP});
    EXPECT_EQ(input->due(), Time::max());
}

TEST_F(Evdev_input_test, KeysAmongLostEventsAreNotPressed) {
    pipe.plug_in();
    open();
    pressed();
    pipe.signal(EV_ABS, ABS_X, 3);
    pipe.send(EV_SYN, SYN_DROPPED, 0);
    pipe.signal(EV_KEY, KEY_ENTER, 1);
    pipe.signal(EV_ABS, ABS_X, 17);
    pipe.signal(EV_ABS, ABS_X, 18);
    EXPECT_EQ(pressed(), Kinds{Key::UP});
}

TEST_F(Evdev_input_test, ADeviceIsFoundLaterAndAgain) {
    open();
    EXPECT_EQ(pressed(), Kinds());
    EXPECT_EQ(log.str(), place() + "is unreachable (No such file or directory); retrying\n");
    for (const int pause : {250, 500, 1000, 2000, 2000, 2000}) {
        EXPECT_EQ(input->due() - now, milliseconds(pause));
        now = input->due();
        EXPECT_EQ(pressed(), Kinds());
    }
    log.str("");
    pipe.plug_in();
    now = input->due();
    EXPECT_EQ(pressed(), Kinds());
    EXPECT_EQ(log.str(), place() + "is used\n");
    now += Retry::STEADY;
    EXPECT_EQ(pressed(), Kinds());
    log.str("");

    pipe.signal(EV_REL, REL_X, 1);
    pipe.unplug();
    EXPECT_EQ(pressed(), Kinds{Key::UP});
    EXPECT_EQ(input->source().fd, -1);
    EXPECT_EQ(log.str(), place() + "is unreachable (it went away); retrying\n");
    pipe.plug_in();
    now = input->due();
    EXPECT_EQ(pressed(), Kinds());
    pipe.signal(EV_REL, REL_X, -1);
    EXPECT_EQ(pressed(), Kinds{Key::DOWN});
}

TEST_F(Evdev_input_test, ADeviceThatComesAndGoesIsReportedOnce) {
    open();
    for (int i = 0; i < 5; ++i) {
        pipe.plug_in();
        now = std::max(now, input->due());
        EXPECT_EQ(pressed(), Kinds());
        pipe.unplug();
        EXPECT_EQ(pressed(), Kinds());
    }
    EXPECT_EQ(log.str(),
              place() + "is used\n" + place() + "is unreachable (it went away); retrying\n");
}

// ---- a device that answers as one of the kernel does

class Pseudo_device_test : public Evdev_input_test {
protected:
    Pseudo_device_test() : knob("A knob") { knob.set_wheel(22); }

    support::Pseudo_evdev knob;
};

TEST_F(Pseudo_device_test, ADeviceIsGrabbedAndPressesKeys) {
    open(knob.path());
    EXPECT_EQ(pressed(), Kinds());
    EXPECT_TRUE(knob.is_grabbed());
    EXPECT_EQ(log.str(), "frontpanel: input " + knob.path() + " is used (A knob)\n");
    knob.signal(EV_REL, REL_DIAL, -2);
    knob.signal(EV_KEY, BTN_0, 1);
    knob.signal(EV_KEY, BTN_0, 0);
    EXPECT_EQ(pressed(), (Kinds{Key::DOWN, Key::DOWN, Key::SELECT}));
}

TEST_F(Pseudo_device_test, AnAbsoluteAxisStartsWhereItIsAndGoesRound) {
    open(knob.path());
    EXPECT_EQ(pressed(), Kinds());
    knob.signal(EV_ABS, ABS_WHEEL, 23);
    knob.signal(EV_ABS, ABS_WHEEL, 0);
    EXPECT_EQ(pressed(), (Kinds{Key::UP, Key::UP}));
    knob.signal(EV_ABS, ABS_WHEEL, 23);
    EXPECT_EQ(pressed(), Kinds{Key::DOWN});
}

TEST_F(Pseudo_device_test, AnEncoderOfTheKernelGoesRoundByOneStep) {
    knob.set_wheel(23);
    knob.set_wheel_end(24);
    open(knob.path());
    EXPECT_EQ(pressed(), Kinds());
    knob.signal(EV_ABS, ABS_WHEEL, 0);
    EXPECT_EQ(pressed(), Kinds{Key::UP});
    knob.signal(EV_ABS, ABS_WHEEL, 23);
    EXPECT_EQ(pressed(), Kinds{Key::DOWN});
}

TEST_F(Pseudo_device_test, AfterLostEventsNothingIsPressedAndTheAxisGoesOnFromWhereItIs) {
    open(knob.path());
    EXPECT_EQ(pressed(), Kinds());
    knob.set_wheel(5);
    knob.set_button(true);
    knob.send(EV_SYN, SYN_DROPPED, 0);
    knob.signal(EV_KEY, BTN_0, 1);
    EXPECT_EQ(pressed(), Kinds());
    knob.signal(EV_ABS, ABS_WHEEL, 6);
    knob.signal(EV_KEY, BTN_0, 0);
    knob.signal(EV_KEY, BTN_0, 1);
    EXPECT_EQ(pressed(), (Kinds{Key::UP, Key::SELECT}));
}

TEST_F(Pseudo_device_test, ADeviceThatAnotherProgramHasGrabbedIsRetried) {
    knob.take_away();
    open(knob.path());
    EXPECT_EQ(pressed(), Kinds());
    EXPECT_EQ(log.str(), "frontpanel: input " + knob.path() +
                             " is unreachable (another program has grabbed it); retrying\n");
    EXPECT_EQ(input->source().fd, -1);
}

// ---- a device of the kernel, where this machine can make one

struct Free_evdev {
    void operator()(libevdev* device) const { libevdev_free(device); }
};
struct Free_uinput {
    void operator()(libevdev_uinput* device) const { libevdev_uinput_destroy(device); }
};

class Uinput_test : public Evdev_input_test {
protected:
    void SetUp() override {
        if (access("/dev/uinput", W_OK) != 0) {
            GTEST_SKIP() << "/dev/uinput is not writable";
        }
        libevdev_set_name(m_description.get(), "frontpanel test knob");
        const input_absinfo round{0, 0, 23, 0, 0, 0};
        libevdev_enable_event_code(m_description.get(), EV_REL, REL_DIAL, nullptr);
        libevdev_enable_event_code(m_description.get(), EV_ABS, ABS_WHEEL, &round);
        libevdev_enable_event_code(m_description.get(), EV_KEY, BTN_0, nullptr);
        plug_in();
    }
    void plug_in() {
        libevdev_uinput* created = nullptr;
        ASSERT_EQ(libevdev_uinput_create_from_device(m_description.get(),
                                                     LIBEVDEV_UINPUT_OPEN_MANAGED, &created),
                  0);
        knob.reset(created);
    }
    void signal(unsigned type, unsigned code, int value) {
        libevdev_uinput_write_event(knob.get(), type, code, value);
        libevdev_uinput_write_event(knob.get(), EV_SYN, SYN_REPORT, 0);
    }

    std::unique_ptr<libevdev, Free_evdev> m_description{libevdev_new()};
    std::unique_ptr<libevdev_uinput, Free_uinput> knob;
};

TEST_F(Uinput_test, AKnobIsFoundByNameGrabbedAndFoundAgain) {
    open("frontpanel test knob");
    pressed();
    signal(EV_REL, REL_DIAL, 1);
    signal(EV_ABS, ABS_WHEEL, 23);
    signal(EV_KEY, BTN_0, 1);
    EXPECT_EQ(pressed(), (Kinds{Key::UP, Key::DOWN, Key::SELECT}));
    Evdev_input second(libevdev_uinput_get_devnode(knob.get()), usual_event_keys(), log);
    second.next(now);
    EXPECT_NE(log.str().find("another program has grabbed it"), std::string::npos) << log.str();
    knob.reset();
    pressed();
    EXPECT_EQ(input->source().fd, -1);
    plug_in();
    now = input->due();
    pressed();
    EXPECT_GE(input->source().fd, 0);
}

}  // namespace
}  // namespace frontpanel
