#include "playing.h"

#include "driver_work.h"
#include "menu_files.h"
#include "reports.h"
#include "shipped.h"
#include "support/capture.h"

namespace frontpanel {
namespace {

class Playing_test : public Menu_files {
protected:
    support::Captured play_script(const std::string& text) {
        options.script = write("a.script", text);
        return support::capture(0, [this] {
            Output_log log(options.log);
            const Loaded_panel loaded = load(options, log, Cards::OFF);
            status = play(options, default_display(false), script_to_play(options), loaded, log);
        });
    }

    int status = -1;
};

TEST_F(Playing_test, PrintsEveryFrameOfTheScript) {
    EXPECT_EQ(play_script("select\nexpect 2 |5*|\n").out,
              "+----------------+\n|>Gain          5|\n|                |\n"
              "+----------------+\n( ) Edit  ( ) Alarm\n"
              "\n> select\n"
              "+----------------+\n|Gain            |\n|5               |\n"
              "+----------------+\n(*) Edit  ( ) Alarm\n");
    EXPECT_EQ(status, EXIT_PLAYED);
}

TEST_F(Playing_test, ADifferenceIsCountedAndToldOnStandardError) {
    const std::string errors = play_script("expect 1 |x|\nexpect-write 1 6\n").err;
    EXPECT_EQ(status, EXIT_DIFFERENCE);
    EXPECT_NE(errors.find("a.script:2: expected the write 1 = 6, the device got none\n"),
              std::string::npos);
    EXPECT_NE(errors.find("a.script: 2 expectations not met\n"), std::string::npos);
}

TEST_F(Playing_test, AFaultOfARuleHasItsFolderOnStandardErrorAndNotInTheLog) {
    options.menu = write("faulty.json", R"({"device": {"parameters": [
        {"name": "z", "pid": 1, "type": "integer", "min": 0, "max": 9, "value": 0}]},
        "menu": {"name": "Main", "items": [{"type": "range", "name": "Z", "parameter": "z",
            "binding": "visible if 1 / [z] < 2"}]}})");
    const std::string line = "faulty.json:4:25: Z: visible if 1 / [z] < 2: division by zero\n";
    EXPECT_EQ(play_script("select\n").err, "warning: " + folder.file("") + line);
    EXPECT_EQ(read_input_file(options.log), "warning: " + line);
}

TEST_F(Playing_test, TheEncoderIsNotAcceleratedHoweverFastTheScriptIsPlayed) {
    play_script("select\nup 3\nexpect 2 |8*|\n");
    EXPECT_EQ(status, EXIT_PLAYED);
}

TEST_F(Playing_test, APictureIsTakenInPlaceOfTheFrames) {
    options.screenshot = folder.file("a.svg");
    EXPECT_EQ(play_script("select\n").out, "");
    EXPECT_EQ(read_input_file(options.screenshot).rfind("<svg", 0), 0U);
}

TEST_F(Playing_test, APictureNeedsNoScript) {
    options.screenshot = folder.file("a.svg");
    EXPECT_TRUE(script_to_play(options).steps.empty());
}

TEST_F(Playing_test, TheTourIsForTheShippedMenuOnItsDisplay) {
    EXPECT_EQ(error_of([this] { script_to_play(options); }),
              "standard output is not a terminal: name a script with --script");
    options.menu = shipped_menu();
    EXPECT_NE(error_of([this] { script_to_play(options); }), "");
    options.size = {};
    EXPECT_NE(error_of([this] { script_to_play(options); }),
              "standard output is not a terminal: name a script with --script");
}

class Driven_playing_test : public Driven_menu_files {
protected:
    Driven_playing_test() {
        write("value", "7");
        options.menu = write("driven.json", R"({"device": {
            "drivers": {"files": {"driver": "file"}}, "parameters": [
            {"name": "gain", "pid": 1, "type": "integer", "min": 0, "max": 9,
             "source": {"path": "value"}}]},
            "menu": {"name": "Main", "items": [{"type": "range", "name": "Gain", "pid": 1}]}})");
    }
    int play_script(const std::string& text) {
        options.script = write("a.script", text);
        int status = -1;
        support::capture(0, [&] {
            Output_log log(options.log);
            const Loaded_panel loaded = load(options, log, Cards::OFF);
            start_drivers(loaded, First_values::AWAITED);
            status = play(options, default_display(false), script_to_play(options), loaded, log);
        });
        return status;
    }
};

TEST_F(Driven_playing_test, WritesToADriverAreExpectedLikeAnyOther) {
    EXPECT_EQ(play_script("expect 1 |*7|\nexpect-no-write\nselect\nup\nselect\n"
                          "expect-write gain 8\nexpect-no-write\ntick\nexpect 1 |*8|\n"),
              EXIT_PLAYED);
    EXPECT_EQ(read_input_file(folder.file("value")), "8\n");
    EXPECT_EQ(play_script("select\nup\nselect\nexpect-no-write\n"), EXIT_DIFFERENCE);
}

TEST_F(Driven_playing_test, AParameterAtADriverIsChangedOnlyWithASimulatedDevice) {
    for (const char* const step : {"set gain 3", "fail read gain on", "fail write [gain] off"}) {
        EXPECT_EQ(error_of([&] { play_script(std::string("say a\n") + step); }),
                  folder.file("a.script") +
                      ":2: parameter [gain] lives at a driver: use "
                      "--simulate to change it or let it fail");
    }
    options.simulate = true;
    EXPECT_EQ(play_script("set gain 3\ntick\nexpect 1 |*3|\nfail write gain on\nselect\nup\n"
                          "select\nexpect-write gain 4 (failed)\n"),
              EXIT_PLAYED);
}

}  // namespace
}  // namespace frontpanel
