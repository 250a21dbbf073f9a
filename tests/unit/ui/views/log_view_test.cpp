// The library's output on the panel's display: keys in, frames out.
#include <frontpanel_data/data_interface.h>

#include <cstdio>
#include <functional>

#include "output_log.h"
#include "support/folder.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"pid": 102, "type": "integer", "min": 0, "max": 100, "value": 50},
    {"pid": 103, "type": "integer", "min": 0, "max": 100, "value": 7})";
constexpr const char* ITEMS = R"(
    {"type": "range", "name": "Gain", "pid": 102}, {"type": "range", "name": "Gain 2", "pid": 103})";

void print(uint32_t mask, const char* text) {
    debug_listener(mask);
    std::printf("%s\n", text);
    debug_listener(0);
}

class LogView : public testing::Test {
protected:
    ~LogView() override { debug = 0; }

    // Runs with the output kept; what is compared is compared afterwards, since it is printed too.
    void with_log(const std::function<void(Menu_panel&)>& act, Lcd_size size = {20, 2}) {
        Menu_panel panel(menu_text(PARAMETERS, ITEMS), size);
        Output_log log(m_folder.file("log"));
        panel.controller().set_log(log.lines());
        act(panel);
    }
    static void print_some() {
        print(0x3, "[Get] Gain is 1");
        print(0x5, "[Commit] Gain 2 is 2");
        print(0x21, "[Bind] [Gain]");
        std::printf("here 14\n");
    }

    support::Folder m_folder;
    std::vector<Lines> m_frames;
};

TEST_F(LogView, ShowsTheNewestLinesAndScrolls) {
    with_log([this](Menu_panel& panel) {
        print_some();
        for (const Key::Kind key : {Key::DIAGNOSTICS, Key::UP, Key::UP, Key::UP, Key::DOWN}) {
            m_frames.push_back(panel.press(key).lines());
        }
    });
    EXPECT_EQ(m_frames, (std::vector<Lines>{{"[Bind] [Gain]       ", "here 14             "},
                                            {"[Commit] Gain 2 is 2", "[Bind] [Gain]       "},
                                            {"[Get] Gain is 1     ", "[Commit] Gain 2 is 2"},
                                            {"[Get] Gain is 1     ", "[Commit] Gain 2 is 2"},
                                            {"[Commit] Gain 2 is 2", "[Bind] [Gain]       "}}));
}

TEST_F(LogView, FollowsWhatIsPrintedUnlessItIsScrolledBack) {
    with_log([this](Menu_panel& panel) {
        print_some();
        m_frames.push_back(panel.press(Key::DIAGNOSTICS).lines());
        print(0x3, "one more");
        m_frames.push_back(panel.lines());
        m_frames.push_back(panel.press(Key::UP).lines());
        print(0x3, "and more");
        m_frames.push_back(panel.lines());
        m_frames.push_back(panel.press(Key::DOWN, 5).lines());
        print(0x3, "the last");
        m_frames.push_back(panel.lines());
    });
    EXPECT_EQ(m_frames[1], (Lines{"here 14             ", "one more            "}));
    EXPECT_EQ(m_frames[2], (Lines{"[Bind] [Gain]       ", "here 14             "}));
    EXPECT_EQ(m_frames[3], m_frames[2]);
    EXPECT_EQ(m_frames[4], (Lines{"one more            ", "and more            "}));
    EXPECT_EQ(m_frames[5], (Lines{"and more            ", "the last            "}));
}

TEST_F(LogView, ALargerDisplayNamesItAndItsPlace) {
    with_log(
        [this](Menu_panel& panel) {
            print_some();
            m_frames.push_back(panel.press(Key::DIAGNOSTICS).lines());
            m_frames.push_back(panel.press(Key::UP).lines());
        },
        {24, 4});
    EXPECT_EQ(m_frames[0], (Lines{"Diagnostics          4/4", "[Commit] Gain 2 is 2    ",
                                  "[Bind] [Gain]           ", "here 14                 "}));
    EXPECT_EQ(m_frames[1], (Lines{"Diagnostics          3/4", "[Get] Gain is 1         ",
                                  "[Commit] Gain 2 is 2    ", "[Bind] [Gain]           "}));
}

TEST_F(LogView, LinesAreMovedThroughByCharacters) {
    with_log([this](Menu_panel& panel) {
        print(0x3, "123456789\u00E4\u00F6\u00FCdefghijk");
        panel.press(Key::DIAGNOSTICS);
        m_frames.push_back(panel.press(Key::FINER).lines());
        m_frames.push_back(panel.press(Key::FINER, 9).lines());
    });
    EXPECT_EQ(m_frames[0][0], "\u00F6\u00FCdefghijk          ");
    EXPECT_EQ(m_frames[1][0], m_frames[0][0]);
}

// There is nothing to see beyond the end of the longest line.
TEST_F(LogView, LongLinesAreMovedThroughToTheirEnd) {
    with_log([this](Menu_panel& panel) {
        print(0x3, "0123456789abcdefghijklmnop");
        panel.press(Key::DIAGNOSTICS);
        for (const Key::Kind key : {Key::FINER, Key::FINER, Key::FINER, Key::COARSER}) {
            m_frames.push_back(panel.press(key).lines());
        }
    });
    EXPECT_EQ(m_frames[0][0], "abcdefghijklmnop    ");
    EXPECT_EQ(m_frames[1][0], "klmnop              ");
    EXPECT_EQ(m_frames[2][0], "klmnop              ");
    EXPECT_EQ(m_frames[3][0], "abcdefghijklmnop    ");
}

TEST_F(LogView, ArrowsMoveAlongTheLinesAndThroughTheList) {
    with_log([this](Menu_panel& panel) {
        print(0x3, "0123456789abcdefghijklmnop");
        panel.press(Key::DIAGNOSTICS);
        for (const Key::Kind key : {Key::RIGHT, Key::LEFT, Key::SELECT, Key::RIGHT, Key::LEFT}) {
            m_frames.push_back(panel.press(key).lines());
        }
        m_frames.push_back(panel.press(Key::ERASE).lines());
    });
    EXPECT_EQ(m_frames[0][0], "abcdefghijklmnop    ");
    EXPECT_EQ(m_frames[1][0], "0123456789abcdefghij");
    EXPECT_EQ(m_frames[2][0], ">show      all kinds");
    EXPECT_EQ(m_frames[3][0], ">show        general");
    EXPECT_EQ(m_frames[4][0], "0123456789abcdefghij");
    EXPECT_EQ(m_frames[5][0], ">Gain             50");
}

TEST_F(LogView, SaysThatNothingWasPrinted) {
    with_log(
        [this](Menu_panel& panel) { m_frames.push_back(panel.press(Key::DIAGNOSTICS).lines()); });
    EXPECT_EQ(m_frames[0], (Lines{"(no output)         ", "                    "}));
}

TEST_F(LogView, LimitsWhatIsShownToOneKind) {
    with_log([this](Menu_panel& panel) {
        print_some();
        panel.press(Key::DIAGNOSTICS).press(Key::SELECT);
        m_frames.push_back(panel.lines());
        for (const int times : {3, 2, 8, 1}) {
            panel.press(Key::SELECT, times);
            m_frames.push_back(panel.lines());
            m_frames.push_back(panel.press(Key::BACK).lines());
            panel.press(Key::SELECT);
        }
    });
    EXPECT_EQ(m_frames, (std::vector<Lines>{{">show      all kinds", " show      any entry"},
                                            {">show        writing", " show      any entry"},
                                            {"[Commit] Gain 2 is 2", "                    "},
                                            {">show       bindings", " show      any entry"},
                                            {"[Bind] [Gain]       ", "                    "},
                                            {">show          other", " show      any entry"},
                                            {"here 14             ", "                    "},
                                            {">show      all kinds", " show      any entry"},
                                            {"[Bind] [Gain]       ", "here 14             "}}));
}

TEST_F(LogView, LimitsWhatIsShownToTheEntryUnderTheCursor) {
    with_log([this](Menu_panel& panel) {
        print_some();
        for (const Key::Kind down : {Key::UP, Key::DOWN}) {
            panel.press(down).press(Key::DIAGNOSTICS).press(Key::SELECT).press(Key::DOWN);
            m_frames.push_back(panel.press(Key::SELECT).lines());
            m_frames.push_back(panel.press(Key::BACK).lines());
            panel.press(Key::BACK);
        }
    });
    // Names that stand as words of their own: "Gain" is one in "Gain 2".
    EXPECT_EQ(m_frames, (std::vector<Lines>{{" show      all kinds", ">show           Gain"},
                                            {"[Commit] Gain 2 is 2", "[Bind] [Gain]       "},
                                            {" show      all kinds", ">show         Gain 2"},
                                            {"[Commit] Gain 2 is 2", "                    "}}));
}

TEST_F(LogView, SwitchesWhatIsPrinted) {
    uint32_t general_off = 1;
    uint32_t reading_on = 0;
    uint32_t last_on = 0;
    with_log([&](Menu_panel& panel) {
        debug = 0x1;
        panel.press(Key::DIAGNOSTICS).press(Key::SELECT).press(Key::DOWN, 2);
        m_frames.push_back(panel.lines());
        m_frames.push_back(panel.press(Key::SELECT).lines());
        general_off = debug;
        m_frames.push_back(panel.press(Key::DOWN).press(Key::SELECT).lines());
        reading_on = debug;
        m_frames.push_back(panel.press(Key::DOWN, 99).press(Key::SELECT).lines());
        last_on = debug;
        m_frames.push_back(panel.press(Key::UP, 99).lines());
    });
    EXPECT_EQ(general_off, 0U);
    EXPECT_EQ(reading_on, 0x2U);
    EXPECT_EQ(last_on, 0x8002U);
    EXPECT_EQ(m_frames, (std::vector<Lines>{{" show      any entry", ">print general    on"},
                                            {" show      any entry", ">print general   off"},
                                            {" print general   off", ">print reading    on"},
                                            {" print quiet     off", ">print verbose    on"},
                                            {">show      all kinds", " show      any entry"}}));
}

TEST_F(LogView, WhatTheLibraryReadsIsThereWithItsKind) {
    with_log([this](Menu_panel& panel) {
        panel.lines();
        debug = 0x2;
        panel.tick();
        panel.press(Key::DIAGNOSTICS).press(Key::SELECT).press(Key::SELECT, 2).press(Key::BACK);
        m_frames.push_back(panel.press(Key::UP, 1000).lines());
    });
    EXPECT_EQ(m_frames[0][0], "Integer_model::Get: ");
}

TEST_F(LogView, StandsStillAndLeavesTheCursorOfTheListWhereItWas) {
    with_log([this](Menu_panel& panel) {
        panel.press(Key::DOWN).press(Key::DIAGNOSTICS);
        panel.device().set_integer(103, 0, 8);
        debug = 0xffffbfff;
        panel.tick();
        m_frames.push_back(panel.lines());
        debug = 0;
        panel.shortcut(1).press(Key::INSERT).press(Key::BACK);
        m_frames.push_back(panel.lines());
    });
    EXPECT_EQ(m_frames[0], (Lines{"(no output)         ", "                    "}));
    EXPECT_EQ(m_frames[1], (Lines{" Gain             50", ">Gain 2            8"}));
}

TEST_F(LogView, AnOpenEditorWaitsBehindIt) {
    bool edits = false;
    with_log([&](Menu_panel& panel) {
        panel.press(Key::SELECT).press(Key::UP).press(Key::DIAGNOSTICS);
        edits = panel.leds().edit;
        panel.press(Key::SELECT).press(Key::DOWN).press(Key::SELECT);
        m_frames.push_back(panel.lines());
        m_frames.push_back(panel.press(Key::DIAGNOSTICS).lines());
    });
    EXPECT_TRUE(edits);
    EXPECT_EQ(m_frames[0], (Lines{" show      all kinds", ">show           Gain"}));
    EXPECT_EQ(m_frames[1], (Lines{"Gain                ", "51                  "}));
}

TEST_F(LogView, NobodyAtThePanelClosesIt) {
    with_log([this](Menu_panel& panel) {
        panel.press(Key::DIAGNOSTICS);
        panel.controller().receive(FrontPanel::UserInputTimeout);
        m_frames.push_back(panel.lines());
    });
    EXPECT_EQ(m_frames[0], (Lines{">Gain             50", " Gain 2            7"}));
}

TEST_F(LogView, SaysThatNothingIsKept) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::DIAGNOSTICS);
    EXPECT_EQ(panel.lines(), (Lines{"Diagnostics         ", "not kept            "}));
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines()[0], ">Gain             50");
}

}  // namespace
}  // namespace frontpanel
