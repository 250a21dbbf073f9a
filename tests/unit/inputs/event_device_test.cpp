#include "event_device.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/event_pipe.h"
#include "support/pseudo_evdev.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

class Event_device_test : public testing::Test {
protected:
    void open() {
        pipe.plug_in();
        Opened_device opened = open_event_device(pipe.path());
        ASSERT_TRUE(opened.device) << opened.error;
        device = std::move(opened.device);
    }
    // "TYPE CODE VALUE" of the next event.
    std::string next() {
        const std::optional<Event_device::Signal> signal = device->next();
        return signal ? std::to_string(signal->event.type) + " " +
                            std::to_string(signal->event.code) + " " +
                            std::to_string(signal->event.value) + (signal->is_late ? " late" : "")
                      : "none";
    }

    support::Event_pipe pipe;
    std::unique_ptr<Event_device> device;
};

TEST_F(Event_device_test, RecordedEventsComeInTheirOrder) {
    open();
    EXPECT_EQ(next(), "none");
    pipe.signal(EV_REL, REL_X, -1);
    pipe.signal(EV_KEY, KEY_ENTER, 1);
    EXPECT_EQ(next(), "2 0 -1");
    EXPECT_EQ(next(), "0 0 0");
    EXPECT_EQ(next(), "1 28 1");
    EXPECT_EQ(next(), "0 0 0");
    EXPECT_EQ(next(), "none");
    EXPECT_EQ(device->error(), "");
    EXPECT_EQ(device->name(), "");
}

TEST_F(Event_device_test, AnEventInPiecesIsOne) {
    open();
    input_event event{};
    event.type = EV_KEY;
    event.code = KEY_A;
    event.value = 1;
    const std::string bytes(reinterpret_cast<const char*>(&event), sizeof event);
    for (size_t i = 0; i + 1 < bytes.size(); ++i) {
        pipe.send_bytes(bytes.substr(i, 1));
        EXPECT_EQ(next(), "none");
    }
    pipe.send_bytes(bytes.substr(bytes.size() - 1));
    EXPECT_EQ(next(), "1 30 1");
}

TEST_F(Event_device_test, AfterLostEventsTheRestOfTheirReportIsLeftOut) {
    open();
    pipe.send(EV_SYN, SYN_DROPPED, 0);
    pipe.send(EV_KEY, KEY_ENTER, 1);
    pipe.send(EV_SYN, SYN_REPORT, 0);
    pipe.send(EV_REL, REL_X, 1);
    EXPECT_EQ(next(), "0 3 0 late");
    EXPECT_EQ(next(), "2 0 1");
}

TEST_F(Event_device_test, TheEndOfAPipeIsTheEndOfTheDevice) {
    open();
    pipe.signal(EV_REL, REL_X, 1);
    pipe.unplug();
    EXPECT_EQ(next(), "2 0 1");
    EXPECT_EQ(device->error(), "");
    EXPECT_EQ(next(), "0 0 0");
    EXPECT_EQ(next(), "none");
    EXPECT_EQ(device->error(), "it went away");
}

TEST_F(Event_device_test, WhatIsNoInputDeviceIsRejected) {
    support::Folder folder;
    EXPECT_EQ(open_event_device(folder.file("missing")).error, "No such file or directory");
    EXPECT_EQ(open_event_device(folder.path()).error, "neither an input device nor a pipe");
    std::ofstream(folder.file("file")) << "text";
    EXPECT_EQ(open_event_device(folder.file("file")).error, "neither an input device nor a pipe");
    EXPECT_EQ(open_event_device("/dev/null").error, "not an input device");
}

TEST_F(Event_device_test, ADeviceIsLookedForByItsName) {
    support::Folder folder;
    EXPECT_EQ(find_event_device("Knob", folder.file("missing")).error,
              "no input device has this name");
    std::ofstream(folder.file("event0")) << "text";
    EXPECT_EQ(find_event_device("Knob", folder.path()).error, "no input device has this name");
    const support::Pseudo_evdev knob("Knob");
    fs::create_symlink(knob.path(), folder.file("event10"));
    EXPECT_EQ(find_event_device("Kno", folder.path()).error, "no input device has this name");
    EXPECT_TRUE(find_event_device("Knob", folder.path()).device);
    EXPECT_TRUE(knob.is_grabbed());
}

TEST_F(Event_device_test, ADeviceThatCannotBeAskedForItsNameIsReported) {
    support::Folder folder;
    fs::create_symlink("event0", folder.file("event0"));
    EXPECT_EQ(find_event_device("Knob", folder.path()).error,
              "no input device has this name; " + folder.file("event0") +
                  ": Too many levels of symbolic links");
}

TEST_F(Event_device_test, OfSeveralDevicesOfANameAFreeOneIsTaken) {
    support::Folder folder;
    support::Pseudo_evdev taken("Knob");
    support::Pseudo_evdev third("Knob");
    const support::Pseudo_evdev second("Knob");
    fs::create_symlink(taken.path(), folder.file("event2"));
    fs::create_symlink(second.path(), folder.file("event9"));
    fs::create_symlink(third.path(), folder.file("event10"));
    taken.take_away();
    EXPECT_TRUE(find_event_device("Knob", folder.path()).device);
    EXPECT_TRUE(second.is_grabbed());
    EXPECT_FALSE(third.is_grabbed());
    third.take_away();
    fs::remove(folder.file("event9"));
    EXPECT_EQ(find_event_device("Knob", folder.path()).error, "another program has grabbed it");
}

}  // namespace
}  // namespace frontpanel
