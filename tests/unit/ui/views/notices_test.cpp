#include "views/notices.h"

#include <gtest/gtest.h>

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

class Notices_test : public testing::Test {
protected:
    Frame frame(Lcd_size size = {16, 2}) {
        Frame frame{Lcd(size), Leds()};
        notices.draw(frame);
        return frame;
    }
    Lines lines() { return lines_of(frame()); }
    void ask(const std::vector<std::string>& texts) {
        notices.ask("Gain", texts, [this](bool accepted) { answers.push_back(accepted); });
    }

    Notices notices;
    std::vector<bool> answers;
};

TEST_F(Notices_test, AnyKeyAcknowledgesAndTheNextOneFollows) {
    notices.tell("Gain", "write failed", true);
    notices.tell("Mode", "read only");
    EXPECT_EQ(lines(), (Lines{"Gain            ", "write failed    "}));
    EXPECT_TRUE(frame().leds.alarm);
    notices.press(Key::DOWN);
    EXPECT_EQ(lines(), (Lines{"Mode            ", "read only       "}));
    EXPECT_FALSE(frame().leds.alarm);
    notices.press(Key::BACK);
    EXPECT_TRUE(notices.empty());
}

TEST_F(Notices_test, WhatWaitsAlreadyIsNotToldAgainAndOfManyOneStandsForTheRest) {
    notices.tell_once("plc", "away", true);
    notices.tell_once("plc", "away", true);
    notices.press(Key::DOWN);
    EXPECT_TRUE(notices.empty());
    for (int i = 0; i < 100; ++i) {
        notices.tell_once("plc", "away " + std::to_string(i), true);
    }
    Lines told;
    for (; !notices.empty(); notices.press(Key::DOWN)) {
        told.push_back(lines()[1]);
    }
    EXPECT_EQ(told, (Lines{"away 0          ", "away 1          ", "away 2          ",
                           "away 3          ", "away 4          ", "more in the log "}));
}

TEST_F(Notices_test, ALongTextTakesTheLinesThatADisplayHas) {
    const auto shown = [this](Lcd_size size) { return lines_of(frame(size)); };
    notices.tell("room", "away: it was ended by signal 15");
    EXPECT_EQ(shown({20, 4}), (Lines{"room                ", "away: it was ended  ",
                                     "by signal 15        ", "                    "}));
    EXPECT_EQ(shown({40, 4})[1], "away: it was ended by signal 15         ");
    notices.press(Key::SELECT);
    ask({"more than a hundred is very loud"});
    EXPECT_EQ(shown({20, 4}), (Lines{"Gain             ok?", "more than a hundred ",
                                     "is very loud        ", "Enter yes, Esc no   "}));
}

TEST_F(Notices_test, AQuestionIsAcceptedWithItsLastText) {
    ask({"loud", "very loud"});
    EXPECT_EQ(lines(), (Lines{"Gain: loud      ", "Enter yes Esc no"}));
    notices.press(Key::UP);
    notices.press(Key::SELECT);
    EXPECT_EQ(lines(), (Lines{"Gain: very loud ", "Enter yes Esc no"}));
    EXPECT_TRUE(answers.empty());
    notices.press(Key::SELECT);
    EXPECT_EQ(answers, std::vector<bool>{true});
    EXPECT_TRUE(notices.empty());
}

TEST_F(Notices_test, BackCancelsAQuestionAtAnyText) {
    ask({"loud", "very loud"});
    notices.press(Key::BACK);
    EXPECT_EQ(answers, std::vector<bool>{false});
    EXPECT_TRUE(notices.empty());
}

TEST_F(Notices_test, CancellingLeavesWhatIsOnlyTold) {
    notices.tell("Mode", "read only");
    ask({"loud"});
    notices.cancel();
    EXPECT_EQ(answers, std::vector<bool>{false});
    EXPECT_EQ(lines()[0], "Mode            ");
}

TEST_F(Notices_test, AnAnswerMayBringUpAnotherNotice) {
    notices.ask("Gain", {"loud"}, [this](bool) { notices.tell("Gain", "write failed"); });
    notices.press(Key::SELECT);
    EXPECT_EQ(lines()[1], "write failed    ");
}

TEST_F(Notices_test, ATextThatIsTooLongForTheDisplayHasPages) {
    const std::string long_text = "one two three four five six seven eight nine ten eleven twelve";
    notices.tell("room", long_text);
    const auto pages = [this](Lcd_size size) {
        std::vector<Lines> all;
        for (Lines page = lines_of(frame(size)); all.empty() || page != all.front();
             page = lines_of(frame(size))) {
            all.push_back(page);
            notices.press(Key::DOWN);
        }
        return all;
    };
    EXPECT_EQ(pages({20, 4}),
              (std::vector<Lines>{{"room             1/2", "one two three four  ",
                                   "five six seven eight", "nine ten eleven     "},
                                  {"room             2/2", "twelve              ",
                                   "                    ", "                    "}}));
    EXPECT_EQ(pages({16, 2}), (std::vector<Lines>{{"room         1/5", "one two three   "},
                                                  {"room         2/5", "four five six   "},
                                                  {"room         3/5", "seven eight nine"},
                                                  {"room         4/5", "ten eleven      "},
                                                  {"room         5/5", "twelve          "}}));
    EXPECT_FALSE(notices.empty());
    frame({40, 4});
    EXPECT_FALSE(notices.has_pages());
    notices.press(Key::DOWN);
    EXPECT_TRUE(notices.empty()) << "any key acknowledges what is on one page";
}

TEST_F(Notices_test, AnyOtherKeyAcknowledgesATextOnSeveralPages) {
    for (const Key::Kind key : {Key::SELECT, Key::BACK, Key::SHORTCUT, Key::COARSER}) {
        notices.tell("Gain", "louder than the hall allows");
        EXPECT_EQ(lines(), (Lines{"Gain         1/2", "louder than the "}));
        notices.press(Key::UP);
        EXPECT_EQ(lines(), (Lines{"Gain         2/2", "hall allows     "}));
        notices.press(key);
        EXPECT_TRUE(notices.empty());
    }
}

TEST_F(Notices_test, PagesTurnByThemselves) {
    notices.tell("Gain", "louder than the hall allows");
    std::string all;
    for (int drawn = 0; drawn < 20; ++drawn) {
        all += lines()[0].substr(13);
    }
    EXPECT_EQ(all.substr(0, 9), "1/21/21/2") << "but not at once";
    EXPECT_NE(all.find("1/22/2"), std::string::npos);
    EXPECT_NE(all.find("2/21/2"), std::string::npos);
}

TEST_F(Notices_test, AQuestionHasPagesToo) {
    ask({"louder than the hall allows", "very loud"});
    EXPECT_EQ(lines(), (Lines{"Gain: louder 1/3", "Enter yes Esc no"}));
    notices.press(Key::DOWN);
    EXPECT_EQ(lines(), (Lines{"than the     2/3", "Enter yes Esc no"}));
    notices.press(Key::UP);
    notices.press(Key::UP);
    EXPECT_EQ(lines(), (Lines{"hall allows  3/3", "Enter yes Esc no"}));
    EXPECT_EQ(lines_of(frame({16, 4})), (Lines{"Gain         ok?", "louder than the ",
                                               "hall allows     ", "Enter yes Esc no"}));
    EXPECT_EQ(lines_of(frame({16, 3})),
              (Lines{"Gain     1/2 ok?", "louder than the ", "Enter yes Esc no"}));
    notices.press(Key::SELECT);
    EXPECT_EQ(lines(), (Lines{"Gain: very loud ", "Enter yes Esc no"}));
    EXPECT_TRUE(answers.empty());
}

TEST_F(Notices_test, AQuestionShowsItsKeysAtEverySize) {
    ask({"loud"});
    EXPECT_EQ(lines_of(frame({16, 2})), (Lines{"Gain: loud      ", "Enter yes Esc no"}));
    EXPECT_EQ(lines_of(frame({20, 2})), (Lines{"Gain: loud          ", "Enter yes, Esc no   "}));
    EXPECT_EQ(lines_of(frame({20, 4})), (Lines{"Gain             ok?", "loud                ",
                                               "                    ", "Enter yes, Esc no   "}));
    EXPECT_EQ(lines_of(frame({40, 4})), (Lines{"Gain                                 ok?",
                                               "loud                                    ",
                                               "                                        ",
                                               "Enter yes, Esc no                       "}));
}

TEST_F(Notices_test, AQuestionOfAnyLengthShowsItsKeys) {
    ask({std::string(200, 'x')});
    for (const Lcd_size size : {Lcd_size{16, 2}, {20, 2}, {20, 4}, {40, 4}}) {
        for (int drawn = 0; drawn < 250; ++drawn) {
            const Lines shown = lines_of(frame(size));
            EXPECT_EQ(shown.back().substr(0, 9), "Enter yes");
            EXPECT_NE(shown.back().find("Esc no"), std::string::npos);
        }
    }
}

TEST_F(Notices_test, AQuestionNamesTheKeysOfItsDisplay) {
    notices.set_keys("A", "B");
    ask({"loud"});
    EXPECT_EQ(lines()[1], "A yes, B no     ");
    notices.set_keys("A", "");
    EXPECT_EQ(lines()[1], "A yes           ");
    notices.set_keys("ControlRight", "ControlLeft");
    EXPECT_EQ(lines()[1], "ControlRight yes");
    std::string all;
    for (int drawn = 0; drawn < 40; ++drawn) {
        all += lines()[1].back();
    }
    EXPECT_NE(all.find("ControlLeft no"), std::string::npos) << all;
}

}  // namespace
}  // namespace frontpanel
