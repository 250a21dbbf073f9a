#include <frontpanel_displays/charlcd_display.h>

#include <gtest/gtest.h>

#include <sstream>

#include <frontpanel_display/retry.h>

#include "support/charlcd_pipe.h"
#include "support/fake_server.h"

namespace frontpanel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

Frame frame_of(const std::string& first, const std::string& second) {
    Frame frame{Lcd({16, 2}), Leds()};
    frame.lcd.put(0, 0, first);
    frame.lcd.put(1, 0, second);
    return frame;
}

class Charlcd_display_test : public testing::Test {
protected:
    void open() { display.emplace(pipe.path(), Lcd_size{16, 2}, log); }
    void next() { EXPECT_FALSE(display->next(now)); }
    // Until what is under way is done, or has failed.
    void finish() {
        const pollfd source = display->source();
        ASSERT_TRUE(is_ready(source.fd, source.events));
        next();
    }
    // The bytes that a frame makes the display send.
    std::string sent_for(const Frame& frame) {
        display->show(frame);
        finish();
        EXPECT_TRUE(display->is_settled());
        return pipe.read_all();
    }
    // The display is there, shows "Main" and ">Gain", and is steady.
    void start() {
        pipe.plug_in();
        open();
        next();
        finish();
        sent_for(frame_of("Main", ">Gain"));
        now += Retry::STEADY;
        next();
        if (!display->is_settled()) {
            finish();
        }
        log.str("");
    }
    std::string line(int row) const { return pipe.emulator.lines().at(static_cast<size_t>(row)); }
    std::string place() const { return "frontpanel: display " + pipe.path() + " "; }

    support::Charlcd_pipe pipe{16, 2};
    std::ostringstream log;
    std::optional<Charlcd_display> display;
    Time now{seconds(1000)};
};

TEST_F(Charlcd_display_test, SetsTheDisplayUpAndShowsTheFrame) {
    pipe.plug_in();
    open();
    display->show(frame_of("Main", ">Gain"));
    EXPECT_EQ(pipe.read_all(), "");
    next();
    finish();
    EXPECT_TRUE(display->is_settled());
    pipe.read_all();
    EXPECT_EQ(line(0), "Main            ");
    EXPECT_EQ(line(1), ">Gain           ");
    EXPECT_EQ(log.str(), place() + "shows the panel on 16x2\n");
}

TEST_F(Charlcd_display_test, SendsOnlyWhatChanges) {
    start();
    EXPECT_EQ(sent_for(frame_of("Main", ">Gais")), "\x1B[Lx4y1;s");
    display->show(frame_of("Main", ">Gais"));
    next();
    EXPECT_TRUE(display->is_settled());
    EXPECT_EQ(pipe.read_all(), "");
}

TEST_F(Charlcd_display_test, OfFramesThatComeFasterTheLastCounts) {
    start();
    display->show(frame_of("Main", ">Gai1"));
    display->show(frame_of("Main", ">Gai2"));
    display->show(frame_of("Main", ">Gai3"));
    finish();
    EXPECT_FALSE(display->is_settled());
    finish();
    EXPECT_TRUE(display->is_settled());
    EXPECT_EQ(pipe.read_all(), "\x1B[Lx4y1;1\x1B[Lx4y1;3");
    EXPECT_EQ(line(1), ">Gai3           ");
}

TEST_F(Charlcd_display_test, AMissingDeviceIsReportedOnceAndTriedAgainWithPauses) {
    open();
    display->show(frame_of("Main", ">Gain"));
    next();
    finish();
    EXPECT_EQ(log.str(), place() + "is unreachable (No such file or directory); retrying\n");
    for (const int pause : {250, 500, 1000, 2000, 4000, 8000, 10000, 10000}) {
        EXPECT_EQ(display->due() - now, milliseconds(pause));
        now = display->due();
        next();
        finish();
    }
    log.str("");
    pipe.plug_in();
    now = display->due();
    next();
    finish();
    pipe.read_all();
    EXPECT_EQ(line(1), ">Gain           ");
    EXPECT_EQ(log.str(), place() + "shows the panel on 16x2\n");
}

TEST_F(Charlcd_display_test, ADeviceThatGoesAwayAndComesBackShowsTheWholeFrame) {
    start();
    pipe.unplug();
    display->show(frame_of("Main", ">Level"));
    finish();
    EXPECT_EQ(log.str(), place() + "is unreachable (it went away); retrying\n");
    display->show(frame_of("Sub", ">Level"));
    pipe.plug_in();
    now = display->due();
    next();
    finish();
    pipe.read_all();
    EXPECT_EQ(line(0), "Sub             ");
    EXPECT_EQ(line(1), ">Level          ");
}

TEST_F(Charlcd_display_test, AnIdleDisplayThatWasPluggedInAgainIsNoticed) {
    start();
    pipe.unplug();
    pipe.plug_in();
    EXPECT_LE(display->due() - now, Charlcd_display::CHECK);
    now = display->due();
    next();
    finish();
    now = display->due();
    next();
    finish();
    pipe.read_all();
    EXPECT_EQ(line(0), "Main            ");
    EXPECT_EQ(line(1), ">Gain           ");
}

TEST_F(Charlcd_display_test, ADeviceThatComesAndGoesIsReportedOnce) {
    open();
    for (int i = 0; i < 5; ++i) {
        pipe.plug_in();
        now = std::max(now, display->due());
        next();
        finish();
        pipe.unplug();
        display->show(frame_of("Main", std::to_string(i)));
        finish();
    }
    EXPECT_EQ(log.str(), place() + "shows the panel on 16x2\n" + place() +
                             "is unreachable (it went away); retrying\n");
}

TEST_F(Charlcd_display_test, ADeviceThatHangsIsGivenUp) {
    start();
    pipe.fill();
    display->show(frame_of("Main", ">Level"));
    next();
    EXPECT_FALSE(display->is_settled());
    EXPECT_EQ(log.str(), "");
    EXPECT_EQ(display->due() - now, Charlcd_display::PATIENCE);
    now = display->due();
    next();
    EXPECT_EQ(log.str(), place() + "is unreachable (it takes nothing); retrying\n");
    finish();
    pipe.drain();
    now = display->due();
    next();
    finish();
    pipe.read_all();
    EXPECT_EQ(line(1), ">Level          ");
}

TEST_F(Charlcd_display_test, TheEndRightAfterAFrameLeavesTheDisplayBlank) {
    start();
    display->show(frame_of("Main", ">Level"));
    display.reset();
    pipe.read_all();
    EXPECT_EQ(line(1), std::string(16, ' '));
}

TEST_F(Charlcd_display_test, TheEndRightAfterTheStartLeavesTheDisplayBlank) {
    pipe.plug_in();
    open();
    display->show(frame_of("Main", ">Level"));
    next();
    display.reset();
    EXPECT_NE(pipe.read_all(), "");
    EXPECT_EQ(line(1), std::string(16, ' '));
    EXPECT_FALSE(pipe.emulator.blinks());
}

TEST_F(Charlcd_display_test, TheEndOfADisplayThatHangsDoesNotHang) {
    start();
    pipe.fill();
    display->show(frame_of("Main", ">Level"));
    display.reset();
}

TEST_F(Charlcd_display_test, TheEndLeavesTheDisplayBlank) {
    start();
    display.reset();
    pipe.read_all();
    EXPECT_EQ(line(0), std::string(16, ' '));
    EXPECT_EQ(line(1), std::string(16, ' '));
}

}  // namespace
}  // namespace frontpanel
