#include "playing.h"

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

}  // namespace
}  // namespace frontpanel
