#include <frontpanel_displays/lcdproc_display.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "support/fake_server.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* GREETING =
    "connect LCDproc 0.5.9 protocol 0.3 lcd wid 20 hgt 2 cellwid 5 cellhgt 8\n";
Frame frame_of(const std::string& first, const std::string& second, Lcd_size size = {20, 2}) {
    Frame frame{Lcd(size), Leds()};
    frame.lcd.put(0, 0, first);
    frame.lcd.put(1, 0, second);
    return frame;
}

class Lcdproc_display_test : public testing::Test {
protected:
    Lcdproc_server choice() const { return {"127.0.0.1", server.port()}; }
    std::string place() const {
        return "frontpanel: display server 127.0.0.1 port " + std::to_string(server.port()) + " ";
    }
    void open(std::optional<Lcd_size> fixed = std::nullopt) {
        display.emplace(choice(), usual_keys(), fixed, log);
    }

    std::optional<Front_event> next() { return display->next(now); }
    // Takes what the server said before, which loopback may still be carrying.
    std::optional<Front_event> wait_next() {
        const pollfd source = display->source();
        EXPECT_TRUE(is_ready(source.fd, source.events));
        return next();
    }
    // Asks until the log has the text.
    void wait_for_log(const std::string& text) {
        while (log.str().find(text) == std::string::npos) {
            const pollfd source = display->source();
            ASSERT_TRUE(source.fd < 0 || is_ready(source.fd, source.events)) << log.str();
            next();
        }
    }
    // The display has sent "hello".
    void connect() {
        next();
        server.accept_client();
        while ((display->source().events & POLLOUT) != 0) {
            wait_next();
        }
        ASSERT_EQ(server.lines_to("hello"), Lines{"hello"});
    }
    // The panel's screen is there and blank, and the server has done with everything.
    void start(const std::string& greeting = GREETING) {
        connect();
        server.say(greeting);
        const std::optional<Front_event> event = wait_next();
        ASSERT_TRUE(event);
        started_with = *event;
        setup = server.lines_to("noop");
        server.say("success\nsuccess\nlisten panel\nnoop complete\n");
        wait_next();
    }
    // The server does what it was told.
    void finish() {
        server.say("success\nnoop complete\n");
        wait_next();
    }
    // What a frame makes the display send.
    Lines sent_for(const Frame& frame) {
        display->show(frame);
        const Lines lines = server.lines_to("noop");
        finish();
        return lines;
    }

    Fake_server server;
    std::ostringstream log;
    std::optional<Lcdproc_display> display;
    Time now{seconds(1000)};
    Front_event started_with{Front_event::QUIT};
    Lines setup;
};

TEST_F(Lcdproc_display_test, GreetsFirstAndSaysNothingBeforeTheAnswer) {
    open();
    display->show(frame_of("Main", ">Gain"));
    connect();
    display->show(frame_of("Main", ">Level"));
    next();
    EXPECT_TRUE(server.is_silent());
}

TEST_F(Lcdproc_display_test, MakesItsScreenAndReservesItsKeys) {
    open();
    start();
    EXPECT_THAT(
        setup,
        ElementsAre("client_set -name frontpanel",
                    "client_add_key \"Down\" \"Enter\" \"Escape\" \"Left\" \"Right\" \"Up\"",
                    "screen_add panel",
                    "screen_set panel -name panel -priority foreground -heartbeat off "
                    "-backlight open -cursor off",
                    "widget_add panel line1 string", "widget_add panel line2 string", "noop"));
    EXPECT_EQ(log.str(), place() + "shows the panel on 20x2\n");
}

TEST_F(Lcdproc_display_test, ThePanelTakesTheSizeOfTheDisplay) {
    open();
    start();
    EXPECT_EQ(started_with.kind, Front_event::SIZE);
    EXPECT_EQ(started_with.size.columns, 20);
    EXPECT_EQ(started_with.size.rows, 2);
}

TEST_F(Lcdproc_display_test, ThePanelStaysWithinWhatAPanelCanBe) {
    open();
    start("connect LCDproc 0.5.9 lcd wid 8 hgt 1\n");
    EXPECT_EQ(started_with.size.columns, 16);
    EXPECT_EQ(started_with.size.rows, 2);
    EXPECT_THAT(
        sent_for(frame_of("Main", ">Gain", {16, 2})),
        ElementsAre("widget_set panel line1 1 1 \"Main    \"", "output 0", "backlight on", "noop"));
}

TEST_F(Lcdproc_display_test, AGivenSizeIsKept) {
    open(Lcd_size{16, 2});
    start();
    EXPECT_EQ(started_with.kind, Front_event::REDRAW);
}

TEST_F(Lcdproc_display_test, SendsOnlyWhatChangedAndAFence) {
    open();
    start();
    EXPECT_THAT(sent_for(frame_of("Main", ">Gain")),
                ElementsAre("widget_set panel line1 1 1 \"Main                \"",
                            "widget_set panel line2 1 2 \">Gain               \"", "output 0",
                            "backlight on", "noop"));
    EXPECT_THAT(sent_for(frame_of("Main", ">Level")),
                ElementsAre("widget_set panel line2 1 2 \">Level              \"", "noop"));
    display->show(frame_of("Main", ">Level"));
    EXPECT_TRUE(server.is_silent());
}

TEST_F(Lcdproc_display_test, OfFramesThatComeFasterThanTheServerTheLastCounts) {
    open();
    start();
    sent_for(frame_of("Main", "0"));
    display->show(frame_of("Main", "1"));
    display->show(frame_of("Main", "2"));
    display->show(frame_of("Main", "3"));
    EXPECT_THAT(server.lines_to("noop"),
                ElementsAre("widget_set panel line2 1 2 \"1                   \"", "noop"));
    EXPECT_TRUE(server.is_silent());
    finish();
    EXPECT_THAT(server.lines_to("noop"),
                ElementsAre("widget_set panel line2 1 2 \"3                   \"", "noop"));
}

TEST_F(Lcdproc_display_test, TextsAreQuotedAndInTheDisplaysCharacterSet) {
    open();
    start();
    EXPECT_EQ(sent_for(frame_of("a \"b\\c\" 20\xC2\xB0", ""))[0],
              "widget_set panel line1 1 1 \"a \\\"b\\\\c\\\" 20\xB0         \"");
}

TEST_F(Lcdproc_display_test, ACharacterThatCannotBeShownIsToldOnce) {
    open();
    start();
    log.str("");
    EXPECT_EQ(sent_for(frame_of("5 \xE2\x82\xAC", "\xE2\x82\xAC"))[0],
              "widget_set panel line1 1 1 \"5 ?                 \"");
    sent_for(frame_of("6 \xE2\x82\xAC", "\xC4\x80"));
    EXPECT_EQ(log.str(), place() + "cannot show the character U+20AC\n" + place() +
                             "cannot show the character U+0100\n");
}

TEST_F(Lcdproc_display_test, KeysArriveAtAnyTimeAndInPieces) {
    open();
    start();
    server.say("key Up\nsuccess\nkey Esc");
    std::optional<Front_event> event = wait_next();
    ASSERT_TRUE(event);
    EXPECT_EQ(event->kind, Front_event::KEY);
    EXPECT_EQ(event->key.kind, Key::UP);
    EXPECT_FALSE(next());
    server.say("ape\nkey Enter\n");
    event = wait_next();
    ASSERT_TRUE(event);
    EXPECT_EQ(event->key.kind, Key::BACK);
    EXPECT_EQ(display->due(), Time::min());
    event = next();
    ASSERT_TRUE(event);
    EXPECT_EQ(event->key.kind, Key::SELECT);
    EXPECT_FALSE(next());
    EXPECT_EQ(display->due(), Time::max());
}

TEST_F(Lcdproc_display_test, KeysThatWereNotAskedForMeanNothing) {
    open();
    start();
    server.say("key Menu\nkey\nkey Down\n");
    const std::optional<Front_event> event = wait_next();
    ASSERT_TRUE(event);
    EXPECT_EQ(event->key.kind, Key::DOWN);
}

TEST_F(Lcdproc_display_test, BehindAnotherScreenNothingIsSent) {
    open();
    start();
    sent_for(frame_of("Main", "0"));
    server.say("ignore panel\n");
    wait_next();
    display->show(frame_of("Main", "1"));
    display->show(frame_of("Main", "2"));
    EXPECT_TRUE(server.is_silent());
    server.say("listen other\nlisten panel\n");
    wait_next();
    next();
    EXPECT_THAT(server.lines_to("noop"),
                ElementsAre("widget_set panel line2 1 2 \"2                   \"", "noop"));
}

TEST_F(Lcdproc_display_test, RefusalsAndNonsenseAreToldButNotWithoutEnd) {
    open();
    start();
    log.str("");
    server.say("huh? Unknown widget id\nwhat\x01\n");
    wait_for_log("what?");
    EXPECT_EQ(log.str(),
              place() + "answered \"huh? Unknown widget id\"\n" + place() + "answered \"what?\"\n");
    for (int i = 0; i < 20; ++i) {
        server.say("huh?\n");
    }
    server.say("key Up\n");
    while (!next()) {
    }
    const std::string told = log.str();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), Lcdproc_display::MOST_COMPLAINTS);
}

TEST_F(Lcdproc_display_test, ALineWithoutEndTakesNoRoomAndIsDropped) {
    open();
    start();
    const std::string piece(4000, 'k');
    size_t sent = 0;
    while (sent < 1000000) {
        sent += server.flood(piece);
        EXPECT_FALSE(next());
    }
    server.say(" end\nkey Down\n");
    std::optional<Front_event> event;
    while (!event) {
        event = wait_next();
    }
    EXPECT_EQ(event->key.kind, Key::DOWN);
}

TEST_F(Lcdproc_display_test, AFloodOfKeysIsTakenAsFastAsTheLoopGoes) {
    open();
    start();
    std::string keys;
    for (int i = 0; i < 500; ++i) {
        keys += "key Up\n";
    }
    size_t sent = 0;
    for (size_t size = 1; size > 0 && sent < 100000; sent += size) {
        size = server.flood(keys);
    }
    size_t taken = 0;
    while (taken < sent / 7) {
        const std::optional<Front_event> event = next();
        if (event) {
            ++taken;
            EXPECT_EQ(event->kind, Front_event::KEY);
        }
    }
    EXPECT_GE(taken, 500U);
}

TEST_F(Lcdproc_display_test, AServerThatIsAwayIsTriedAgainLessAndLessOften) {
    server.stop_listening();
    open();
    std::vector<milliseconds> pauses;
    for (int i = 0; i < 8; ++i) {
        next();
        while (display->source().fd >= 0) {
            wait_next();
        }
        pauses.push_back(std::chrono::duration_cast<milliseconds>(display->due() - now));
        EXPECT_FALSE(next());
        EXPECT_EQ(display->source().fd, -1);
        now = display->due();
    }
    EXPECT_THAT(pauses, ElementsAre(milliseconds(250), milliseconds(500), milliseconds(1000),
                                    milliseconds(2000), milliseconds(4000), milliseconds(8000),
                                    milliseconds(10000), milliseconds(10000)));
    EXPECT_EQ(log.str(), place() + "is unreachable (Connection refused); retrying\n");
}

TEST_F(Lcdproc_display_test, AServerThatComesBackGetsTheWholeFrame) {
    open();
    start();
    sent_for(frame_of("Main", ">Gain"));
    server.hang_up();
    wait_for_log("is unreachable (it closed the connection)");
    EXPECT_EQ(display->due(), now + Lcdproc_display::FIRST_PAUSE);
    Frame frame = frame_of("Gain", "-3.5 dB");
    frame.leds.edit = true;
    frame.lcd.set_cursor(1, 3);
    display->show(frame);
    now = display->due();
    start();
    EXPECT_EQ(setup.size(), 7U);
    EXPECT_THAT(server.lines_to("noop"),
                ElementsAre("widget_set panel line1 1 1 \"Gain                \"",
                            "widget_set panel line2 1 2 \"-3.5 dB             \"",
                            "screen_set panel -cursor on -cursor_x 4 -cursor_y 2", "output 1",
                            "backlight on", "noop"));
}

TEST_F(Lcdproc_display_test, WhatArrivedBeforeTheEndStillCounts) {
    open();
    start();
    server.say("key Enter\n");
    server.hang_up();
    const std::optional<Front_event> event = wait_next();
    ASSERT_TRUE(event);
    EXPECT_EQ(event->key.kind, Key::SELECT);
    wait_for_log("is unreachable");
}

TEST_F(Lcdproc_display_test, ByeEndsTheConnection) {
    open();
    start();
    server.say("bye\n");
    wait_for_log("is unreachable (it said bye)");
}

// A server that only greets and goes must not be asked four times a second for ever.
TEST_F(Lcdproc_display_test, AServerThatOnlyGreetsIsTriedLessAndLessOften) {
    open();
    for (const int pause : {250, 500, 1000}) {
        connect();
        server.say(GREETING);
        server.hang_up();
        while (display->source().fd >= 0) {
            wait_next();
        }
        while (next()) {
        }
        EXPECT_EQ(display->due(), now + milliseconds(pause));
        now = display->due();
    }
}

// Nor one that does all that it is told, and goes. Of either nobody wants to hear four times a second.
TEST_F(Lcdproc_display_test, AServerThatAnswersAndGoesIsTriedLessAndLessOftenAndToldOnce) {
    open();
    for (const int pause : {250, 500, 1000, 2000, 4000, 8000, 10000, 10000}) {
        start();
        server.say("huh? " + std::to_string(pause) + "\n");
        server.hang_up();
        while (display->source().fd >= 0) {
            wait_next();
        }
        while (next()) {
        }
        EXPECT_EQ(display->due(), now + milliseconds(pause));
        now = display->due();
    }
    const std::string told = log.str();
    const std::string before = place() + "shows the panel on 20x2\n" + place() + "answered \"huh? ";
    EXPECT_EQ(told.substr(0, before.size()), before);
    size_t losses = 0;
    for (size_t at = told.find("is unreachable"); at != std::string::npos;
         at = told.find("is unreachable", at + 1)) {
        ++losses;
    }
    EXPECT_EQ(losses, 1U) << told;
    EXPECT_EQ(told.find("shows the panel", before.size()), std::string::npos) << told;

    log.str("");
    start();
    EXPECT_EQ(log.str(), "");
    EXPECT_EQ(display->due(), now + Lcdproc_display::STEADY);
    now = display->due();
    next();
    EXPECT_EQ(log.str(), place() + "shows the panel on 20x2\n");
    EXPECT_EQ(display->due(), Time::max());
    server.hang_up();
    wait_for_log("is unreachable (it closed the connection)");
    EXPECT_EQ(display->due(), now + Lcdproc_display::FIRST_PAUSE);
}

TEST_F(Lcdproc_display_test, ComplaintsAboutAnswersEndAlsoAcrossConnections) {
    open();
    for (int i = 0; i < 2 * Lcdproc_display::MOST_COMPLAINTS; ++i) {
        connect();
        server.say("huh?\n");
        server.hang_up();
        while (display->source().fd >= 0) {
            wait_next();
        }
        while (next()) {
        }
        now = display->due();
    }
    const std::string told = log.str();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), Lcdproc_display::MOST_COMPLAINTS + 1)
        << told;
}

TEST_F(Lcdproc_display_test, AServerThatComesBackIsToldAtOnce) {
    open();
    start();
    now += Lcdproc_display::STEADY;
    next();
    server.hang_up();
    wait_for_log("is unreachable");
    now = display->due();
    log.str("");
    start();
    EXPECT_EQ(log.str(), place() + "shows the panel on 20x2\n");
}

TEST_F(Lcdproc_display_test, AServerThatDoesNotAnswerIsLeft) {
    open();
    connect();
    EXPECT_EQ(display->due(), now + Lcdproc_display::PATIENCE);
    now += Lcdproc_display::PATIENCE - milliseconds(1);
    next();
    EXPECT_EQ(log.str(), "");
    now += milliseconds(1);
    next();
    EXPECT_THAT(log.str(), HasSubstr("is unreachable (it does not answer)"));
    EXPECT_EQ(server.lines_to("x"), Lines{"(no more)"});
}

TEST_F(Lcdproc_display_test, AServerThatHangsBehindTheFenceIsLeft) {
    open();
    start();
    EXPECT_EQ(display->due(), Time::max());
    display->show(frame_of("Main", ">Gain"));
    EXPECT_EQ(display->due(), now + Lcdproc_display::PATIENCE);
    now = display->due();
    next();
    EXPECT_THAT(log.str(), HasSubstr("is unreachable (it does not answer)"));
}

TEST_F(Lcdproc_display_test, AnUnusableGreetingIsNoGreeting) {
    open();
    connect();
    server.say("connect LCDproc 0.5.9 lcd wid 0 hgt 99999\n");
    EXPECT_FALSE(wait_next());
    EXPECT_THAT(log.str(), HasSubstr("answered \"connect LCDproc 0.5.9 lcd wid 0 hgt 99999\""));
    now += Lcdproc_display::PATIENCE;
    EXPECT_FALSE(next());
    EXPECT_THAT(log.str(), HasSubstr("is unreachable"));
}

TEST_F(Lcdproc_display_test, AFenceThatNobodyAskedForMeansNothing) {
    open();
    connect();
    server.say("noop complete\nkey Up\nlisten panel\n");
    EXPECT_FALSE(wait_next());
    EXPECT_TRUE(server.is_silent());
}

TEST_F(Lcdproc_display_test, TakesItsLeave) {
    open();
    start();
    display.reset();
    EXPECT_EQ(server.lines_to("bye"), Lines{"bye"});
    EXPECT_EQ(server.lines_to("x"), Lines{"(no more)"});
}

}  // namespace
}  // namespace frontpanel
