#include <frontpanel_displays/led_folders.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include <frontpanel_base/input_error.h>
#include <frontpanel_display/retry.h>

#include "support/folder.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

class Led_folders_test : public testing::Test {
protected:
    std::string add(const std::string& name, const std::string& most = "255\n") {
        fs::create_directory(folder.file(name));
        write(name + "/brightness", "7\n");
        write(name + "/max_brightness", most);
        write(name + "/trigger", "none rfkill-any [heartbeat] timer\n");
        return folder.file(name);
    }
    void write(const std::string& name, const std::string& text) {
        std::ofstream(folder.file(name)) << text;
    }
    std::string read(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(folder.file(name)).rdbuf();
        return text.str();
    }
    void open(const std::string& map) { leds.emplace(parse_led_map(map), log); }
    void show(bool edit, bool alarm, bool alive) {
        EXPECT_FALSE(leds->next(now));
        leds->show({Lcd({16, 2}), {edit, alarm, alive}});
    }
    std::string place(const std::string& name) const {
        return "frontpanel: LED " + folder.file(name) + " ";
    }

    support::Folder folder;
    std::ostringstream log;
    std::optional<Led_folders> leds;
    Time now{std::chrono::seconds(1000)};
};

TEST_F(Led_folders_test, AreLitAndDarkAsThePanelSays) {
    open("edit=" + add("edit") + ",alarm=" + add("alarm", "1\n") + ",alive=" + add("alive"));
    show(true, false, false);
    EXPECT_EQ(read("edit/brightness"), "255");
    EXPECT_EQ(read("alarm/brightness"), "0");
    EXPECT_EQ(read("alive/brightness"), "0");
    show(false, true, true);
    EXPECT_EQ(read("edit/brightness"), "0");
    EXPECT_EQ(read("alarm/brightness"), "1");
    EXPECT_EQ(read("alive/brightness"), "255");
}

TEST_F(Led_folders_test, OnlyChangesAreWrittenBetweenTwoChecks) {
    open("alarm=" + add("alarm"));
    show(false, true, false);
    write("alarm/brightness", "mine");
    show(true, true, true);
    EXPECT_EQ(read("alarm/brightness"), "mine");
    EXPECT_EQ(leds->due(), now + Led_folders::CHECK);
    now = leds->due();
    EXPECT_FALSE(leds->next(now));
    EXPECT_EQ(read("alarm/brightness"), "255");
}

TEST_F(Led_folders_test, ATriggerIsTakenAndGivenBackAtTheEnd) {
    open("alarm=" + add("alarm"));
    show(false, true, false);
    EXPECT_EQ(read("alarm/trigger"), "none");
    leds.reset();
    EXPECT_EQ(read("alarm/trigger"), "heartbeat");
    EXPECT_EQ(read("alarm/brightness"), "0");
}

TEST_F(Led_folders_test, AnLedThatRefusedAWriteIsGivenBackToo) {
    const std::string path = add("alarm");
    open("alarm=" + path);
    show(false, true, false);
    fs::rename(path + "/brightness", path + "/away");
    show(false, false, false);
    fs::rename(path + "/away", path + "/brightness");
    EXPECT_EQ(read("alarm/brightness"), "255");
    leds.reset();
    EXPECT_EQ(read("alarm/brightness"), "0");
    EXPECT_EQ(read("alarm/trigger"), "heartbeat");
}

TEST_F(Led_folders_test, ATriggerIsNotGivenToAnotherLed) {
    open("alarm=" + add("alarm"));
    show(false, true, false);
    fs::rename(folder.file("alarm"), folder.file("old"));
    add("alarm");
    write("alarm/trigger", "[none] timer\n");
    now = leds->due();
    EXPECT_FALSE(leds->next(now));
    EXPECT_EQ(read("alarm/brightness"), "255");
    leds.reset();
    EXPECT_EQ(read("alarm/brightness"), "0");
    EXPECT_EQ(read("alarm/trigger"), "[none] timer\n");
}

TEST_F(Led_folders_test, AnLedWithoutATriggerIsUsed) {
    const std::string path = add("alarm");
    fs::remove(path + "/trigger");
    open("alarm=" + path);
    show(false, true, false);
    EXPECT_EQ(read("alarm/brightness"), "255");
    EXPECT_FALSE(fs::exists(path + "/trigger"));
    EXPECT_EQ(log.str(), place("alarm") + "is used\n");
}

TEST_F(Led_folders_test, AMissingLedIsReportedOnceAndFoundLater) {
    open("alarm=" + folder.file("alarm") + ",edit=" + add("edit"));
    show(true, true, false);
    EXPECT_EQ(read("edit/brightness"), "255");
    EXPECT_EQ(log.str(), place("alarm") + "is unreachable (No such file or directory); retrying\n" +
                             place("edit") + "is used\n");
    for (int i = 0; i < 5; ++i) {
        now = leds->due();
        show(true, true, false);
    }
    log.str("");
    add("alarm");
    now += Retry::LONGEST_PAUSE;
    EXPECT_FALSE(leds->next(now));
    EXPECT_EQ(read("alarm/brightness"), "255");
    EXPECT_EQ(log.str(), place("alarm") + "is used\n");
}

TEST_F(Led_folders_test, AnLedThatVanishesAndComesBackIsSetAgain) {
    open("alarm=" + add("alarm"));
    show(false, true, false);
    log.str("");
    fs::remove_all(folder.file("alarm"));
    show(false, false, false);
    EXPECT_EQ(log.str(), place("alarm") +
                             "is unreachable (brightness: No such file or directory); retrying\n");
    show(false, true, false);
    add("alarm");
    now = leds->due();
    EXPECT_FALSE(leds->next(now));
    EXPECT_EQ(read("alarm/brightness"), "255");
    EXPECT_EQ(read("alarm/trigger"), "none");
}

TEST_F(Led_folders_test, AnotherLedInTheSameFolderIsNoticed) {
    open("alarm=" + add("alarm"));
    show(false, true, false);
    fs::rename(folder.file("alarm"), folder.file("old"));
    add("alarm", "9\n");
    now = leds->due();
    EXPECT_FALSE(leds->next(now));
    EXPECT_EQ(read("alarm/brightness"), "9");
    EXPECT_EQ(read("alarm/trigger"), "none");
}

TEST_F(Led_folders_test, ARefusedWriteIsReported) {
    const std::string path = add("alarm");
    fs::remove(path + "/brightness");
    fs::create_directory(path + "/brightness");
    open("alarm=" + path);
    show(false, true, false);
    EXPECT_EQ(log.str(),
              place("alarm") + "is unreachable (brightness: Is a directory); retrying\n");
    EXPECT_EQ(leds->due(), now + Retry::FIRST_PAUSE);
}

TEST_F(Led_folders_test, AnInvalidGreatestBrightnessIsReported) {
    for (const std::string most : {"", "0\n", "bright\n", "-1\n"}) {
        const std::string path = add("alarm", most);
        log.str("");
        open("alarm=" + path);
        show(false, true, false);
        EXPECT_NE(log.str().find("max_brightness: expected a number from 1, found \""),
                  std::string::npos)
            << log.str();
        EXPECT_EQ(read("alarm/brightness"), "7\n");
    }
}

TEST_F(Led_folders_test, ALedThatBlocksDoesNotHoldThePanel) {
    const std::string path = add("alarm");
    fs::remove(path + "/brightness");
    ASSERT_EQ(mkfifo((path + "/brightness").c_str(), 0600), 0);
    open("alarm=" + path);
    show(false, true, false);
    EXPECT_NE(log.str().find("is unreachable (brightness: "), std::string::npos) << log.str();
}

TEST(LedMap, NamesAFolderOrOneOfTheKernel) {
    EXPECT_EQ(parse_led_map("alarm=red:status,edit=/tmp/led,alive=a=b"),
              (Led_map{{"alarm", "/sys/class/leds/red:status"},
                       {"edit", "/tmp/led"},
                       {"alive", "/sys/class/leds/a=b"}}));
    const std::pair<const char*, const char*> CASES[] = {
        {"", "expected edit, alarm or alive=FOLDER, found \"\""},
        {"alarm", "expected edit, alarm or alive=FOLDER, found \"alarm\""},
        {"alarm=", "expected edit, alarm or alive=FOLDER, found \"alarm=\""},
        {"alarm=a,", "expected edit, alarm or alive=FOLDER, found \"\""},
        {"power=a", "expected edit, alarm or alive=FOLDER, found \"power=a\""},
        {"alarm=a,alarm=b", "duplicate LED \"alarm\""},
        {"alarm=a,edit=a", "duplicate folder \"/sys/class/leds/a\""},
    };
    for (const auto& [text, error] : CASES) {
        try {
            parse_led_map(text);
            ADD_FAILURE() << text;
        } catch (const Input_error& caught) {
            EXPECT_STREQ(caught.what(), error);
        }
    }
}

}  // namespace
}  // namespace frontpanel
