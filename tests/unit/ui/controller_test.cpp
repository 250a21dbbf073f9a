#include "controller.h"

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"pid": 100, "type": "integer", "min": -60, "max": 12, "value": 3},
    {"pid": 101, "type": "integer", "min": 0, "max": 3, "value": 1},
    {"pid": 102, "type": "integer", "min": 0, "max": 100, "value": 50},
    {"pid": 103, "type": "integer", "min": 0, "max": 1, "value": 0})";

constexpr const char* ITEMS = R"(
    {"type": "node", "name": "Audio", "items": [
        {"type": "range", "name": "Gain", "pid": 100, "format": "%d dB", "shortcut": 1},
        {"type": "range", "name": "Mode", "pid": 101, "format": "0:off,1:stereo,2:mono,%d"},
        {"type": "range", "name": "Width", "pid": 102, "binding": "visible if [101] == 1", "shortcut": 2},
        {"type": "range", "name": "State", "pid": 103, "access": "read-only",
         "format": "0:no signal now,1:ok,%d"}]},
    {"type": "node", "name": "Level", "shortcut": 3, "items": [
        {"type": "range", "name": "Limit", "pid": 102, "binding": "range 0..40 if [103] == 1"}]})";

TEST(Controller, ShowsTheTopMenuFirst) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    EXPECT_EQ(panel.lines(), (Lines{">Audio           ...", " Level           ..."}));
    EXPECT_FALSE(panel.leds().edit);
    EXPECT_FALSE(panel.leds().alarm);
}

TEST(Controller, TheCursorStaysAtTheEnds) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::UP, 3);
    EXPECT_EQ(panel.lines(), (Lines{">Audio           ...", " Level           ..."}));
    panel.press(Key::DOWN, 3);
    EXPECT_EQ(panel.lines(), (Lines{" Audio           ...", ">Level           ..."}));
}

TEST(Controller, SelectEntersAMenuAndBackReturnsToItsEntry) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::DOWN).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Limit            50", "                    "}));
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{" Audio           ...", ">Level           ..."}));
    panel.press(Key::BACK, 2);
    EXPECT_EQ(panel.lines(), (Lines{" Audio           ...", ">Level           ..."}));
}

TEST(Controller, TheListScrollsWithTheCursor) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Gain           3 dB", " Mode         stereo"}));
    panel.press(Key::DOWN, 2);
    EXPECT_EQ(panel.lines(), (Lines{" Mode         stereo", ">Width            50"}));
    panel.press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{">Mode         stereo", " Width            50"}));
}

TEST(Controller, ADisplayOfThreeLinesShowsTheMenusName) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS), {24, 3});
    panel.press(Key::SELECT).press(Key::DOWN);
    EXPECT_EQ(panel.lines(), (Lines{"Audio                2/4", " Gain               3 dB",
                                    ">Mode             stereo"}));
}

TEST(Controller, ATextThatFillsTheLineStandsStill) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::SELECT).press(Key::DOWN, 3);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(panel.lines()[1], ">State=no signal now");
    }
}

TEST(Controller, EditsAndCommitsANumber) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::SELECT, 2);
    EXPECT_EQ(panel.lines(), (Lines{"Gain                ", "3 dB                "}));
    EXPECT_TRUE(panel.leds().edit);
    panel.press(Key::UP, 2);
    EXPECT_EQ(panel.lines(), (Lines{"Gain                ", "5 dB                "}));
    EXPECT_EQ(panel.device().integer(100, 0), 3);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Gain           5 dB", " Mode         stereo"}));
    EXPECT_EQ(panel.device().integer(100, 0), 5);
    EXPECT_FALSE(panel.leds().edit);
}

TEST(Controller, BackDiscardsAnEdit) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::SELECT, 2).press(Key::UP, 2).press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{">Gain           3 dB", " Mode         stereo"}));
    EXPECT_TRUE(panel.device().writes().empty());
}

TEST(Controller, TheCursorOfAnEditorFollowsTheStepSize) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::SELECT).press(Key::DOWN, 2).press(Key::SELECT);
    EXPECT_EQ(panel.controller().draw().lcd.cursor_row(), 1);
    EXPECT_EQ(panel.controller().draw().lcd.cursor_column(), 1);
    panel.press(Key::COARSER);
    EXPECT_EQ(panel.lines(), (Lines{"Width        step 10", "50                  "}));
    EXPECT_EQ(panel.controller().draw().lcd.cursor_column(), 0);
    panel.press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{"Width        step 10", "60                  "}));
    panel.press(Key::FINER).press(Key::DOWN);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "59                  "}));
}

TEST(Controller, AShortcutDoesNotLeaveAnEditor) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::SELECT, 2).press(Key::UP).shortcut(3);
    EXPECT_EQ(panel.lines(), (Lines{"Gain                ", "4 dB                "}));
}

TEST(Controller, ACommitHidesWhatDependsOnIt) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::SELECT).press(Key::DOWN).press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{" Gain           3 dB", ">Mode           mono"}));
    panel.press(Key::DOWN);
    EXPECT_EQ(panel.lines()[1], ">State=no signal now");
    panel.press(Key::UP).press(Key::SELECT).press(Key::DOWN).press(Key::SELECT).press(Key::DOWN);
    EXPECT_EQ(panel.lines(), (Lines{" Mode         stereo", ">Width            50"}));
}

TEST(Controller, TheCursorLeavesAnEntryThatDisappears) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::SELECT).press(Key::DOWN, 2);
    EXPECT_EQ(panel.lines()[1], ">Width            50");
    panel.device().set_integer(101, 0, 0);
    panel.controller().tick();
    EXPECT_EQ(panel.lines(), (Lines{" Mode            off", ">State=no signal now"}));
}

TEST(Controller, TheCursorFallsBackToTheLastVisibleEntry) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Mode", "pid": 101},
        {"type": "range", "name": "Width", "pid": 102, "binding": "visible if [101] == 1"})"));
    panel.press(Key::DOWN);
    panel.device().set_integer(101, 0, 0);
    panel.controller().tick();
    EXPECT_EQ(panel.lines(), (Lines{">Mode              0", "                    "}));
}

TEST(Controller, AMenuThatIsHiddenWhileItIsShownIsLeft) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Mode", "pid": 101},
        {"type": "node", "name": "Stereo", "binding": "visible if [101] == 1", "items": [
            {"type": "node", "name": "Sides", "items": [
                {"type": "range", "name": "Width", "pid": 102},
                {"type": "range", "name": "Swap", "pid": 103}]}]},
        {"type": "range", "name": "Gain", "pid": 100})"));
    panel.press(Key::DOWN).press(Key::SELECT).press(Key::SELECT);
    panel.controller().tick();
    EXPECT_EQ(panel.lines(), (Lines{">Width            50", " Swap              0"}));
    panel.device().set_integer(101, 0, 0);
    panel.controller().tick();
    EXPECT_EQ(panel.lines(), (Lines{">Mode              0", " Gain              3"}));
}

TEST(Controller, AMenuWhoseLastEntryIsHiddenWhileItIsShownIsLeft) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Mode", "pid": 101},
        {"type": "node", "name": "Stereo", "items": [
            {"type": "range", "name": "Width", "pid": 102, "binding": "visible if [101] == 1"}]})"));
    panel.press(Key::DOWN).press(Key::SELECT);
    panel.device().set_integer(101, 0, 0);
    panel.controller().tick();
    EXPECT_EQ(panel.lines(), (Lines{">Mode              0", "                    "}));
}

TEST(Controller, AValueThatHidesItsOwnMenuLeavesIt) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Gain", "pid": 100},
        {"type": "node", "name": "Stereo", "binding": "visible if [101] == 1", "items": [
            {"type": "range", "name": "Mode", "pid": 101}]})"));
    panel.press(Key::DOWN).press(Key::SELECT);
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Gain              3", "                    "}));
    EXPECT_EQ(panel.device().integer(101, 0), 2);
}

TEST(Controller, AMenuWithNothingToShowSaysSo) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Width", "pid": 102, "binding": "visible if [101] == 1"})"));
    panel.device().set_integer(101, 0, 0);
    panel.controller().tick();
    EXPECT_EQ(panel.lines(), (Lines{" (empty)            ", "                    "}));
    panel.press(Key::SELECT).press(Key::DOWN);
    panel.device().set_integer(101, 0, 1);
    panel.controller().tick();
    EXPECT_EQ(panel.lines(), (Lines{">Width            50", "                    "}));
}

TEST(Controller, ABindingHidesAWholeMenu) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Mode", "pid": 101},
        {"type": "node", "name": "More", "binding": "visible if [101] > 1", "items": [
            {"type": "range", "name": "Width", "pid": 102}]})"));
    EXPECT_EQ(panel.lines(), (Lines{">Mode              1", "                    "}));
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Mode              2", " More            ..."}));
}

TEST(Controller, ACommitNarrowsARangeElsewhere) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Clamp", "pid": 103},
        {"type": "range", "name": "Limit", "pid": 102, "binding": "range 0..40 if [103] == 1"})"));
    EXPECT_EQ(panel.lines(), (Lines{">Clamp             0", " Limit            50"}));
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Clamp             1", " Limit            40"}));
    EXPECT_EQ(panel.device().integer(102, 0), 40);
    panel.press(Key::DOWN).press(Key::SELECT).press(Key::UP, 5);
    EXPECT_EQ(panel.lines(), (Lines{"Limit               ", "40                  "}));
}

TEST(Controller, AFailedReadShowsAndKeepsTheValue) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::SELECT);
    panel.device().set_integer(100, 0, 9);
    panel.fail(Memory_device::Operation_kind::READ, 100);
    panel.controller().tick();
    EXPECT_EQ(panel.lines(), (Lines{">Gain     read error", " Mode         stereo"}));
    EXPECT_TRUE(panel.leds().alarm);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Gain                ", "read error          "}));
    EXPECT_TRUE(panel.leds().alarm);
    panel.press(Key::BACK);
    panel.repair();
    panel.controller().tick();
    EXPECT_EQ(panel.lines(), (Lines{">Gain           9 dB", " Mode         stereo"}));
    EXPECT_FALSE(panel.leds().alarm);
}

TEST(Controller, AFailedWriteShowsAndTheDevicesValueComesBack) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.fail(Memory_device::Operation_kind::WRITE, 100);
    panel.press(Key::SELECT, 2).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Gain                ", "write failed        "}));
    EXPECT_TRUE(panel.leds().alarm);
    EXPECT_FALSE(panel.leds().edit);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Gain           3 dB", " Mode         stereo"}));
    EXPECT_FALSE(panel.leds().alarm);
    EXPECT_EQ(panel.device().integer(100, 0), 3);
}

TEST(Controller, AShortcutJumpsToItsEntry) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.shortcut(2);
    EXPECT_EQ(panel.lines(), (Lines{" Mode         stereo", ">Width            50"}));
    panel.shortcut(3);
    EXPECT_EQ(panel.lines(), (Lines{">Limit            50", "                    "}));
    panel.press(Key::BACK);
    EXPECT_EQ(panel.lines(), (Lines{" Audio           ...", ">Level           ..."}));
}

TEST(Controller, AShortcutWithoutEntryDoesNothing) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.press(Key::DOWN).shortcut(7);
    EXPECT_EQ(panel.lines(), (Lines{" Audio           ...", ">Level           ..."}));
}

TEST(Controller, AShortcutToAHiddenEntryIsRefused) {
    Menu_panel panel(menu_text(PARAMETERS, ITEMS));
    panel.device().set_integer(101, 0, 0);
    panel.tick().shortcut(2);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "not available       "}));
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Audio           ...", " Level           ..."}));
}

TEST(Controller, AShortcutIntoAHiddenMenuIsRefused) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Mode", "pid": 101},
        {"type": "node", "name": "More", "binding": "visible if [101] > 1", "items": [
            {"type": "range", "name": "Width", "pid": 102, "shortcut": 1}]})"));
    panel.shortcut(1);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "not available       "}));
    panel.press(Key::BACK);
    panel.device().set_integer(101, 0, 2);
    panel.tick().shortcut(1);
    EXPECT_EQ(panel.lines(), (Lines{">Width            50", "                    "}));
}

TEST(Controller, AnEntryWithoutAllowedValueShowsNoneAndTakesNone) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Width", "pid": 102, "binding": "range 70..80 if [103] == 0",
         "ranges": [{"min": 0, "max": 60}, {"min": 90, "max": 100}]})"));
    EXPECT_EQ(panel.lines(), (Lines{">Width           ---", "                    "}));
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Width               ", "no value allowed    "}));
    EXPECT_FALSE(panel.leds().edit);
    EXPECT_FALSE(panel.leds().alarm);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{">Width           ---", "                    "}));
    EXPECT_EQ(panel.device().integer(102, 0), 50);
    panel.device().set_integer(103, 0, 1);
    panel.controller().tick();
    EXPECT_EQ(panel.lines(), (Lines{">Width            50", "                    "}));
}

TEST(Controller, AnEntryWhoseOptionsDoNotHoldIsSkipped) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Dolby", "pid": 101, "options": ["dolby"]},
        {"type": "range", "name": "Slot 3", "pid": 102, "options": ["slot3"]},
        {"type": "range", "name": "Slot 5", "pid": 103, "options": ["slot5"]},
        {"type": "range", "name": "Hidden", "pid": 103, "visible": false})",
                               R"({"dolby": 0, "slot{n}": 4})"));
    EXPECT_EQ(panel.lines(), (Lines{">Slot 3           50", "                    "}));
}

TEST(Controller, ALongNameScrollsInTheRoomThatItsValueLeaves) {
    Menu_panel panel(menu_text(PARAMETERS, R"(
        {"type": "range", "name": "Reference attenuation", "pid": 102})"));
    for (const char* const expected :
         {">Reference attenu 50", ">Reference attenu 50", ">Reference attenu 50",
          ">eference attenua 50", ">ference attenuat 50"}) {
        EXPECT_EQ(panel.lines()[0], expected);
    }
}

// Parameters 1 to `count`, each with an item.
std::string long_menu(int count) {
    std::string parameters;
    std::string items;
    for (int pid = 1; pid <= count; ++pid) {
        const std::string number = std::to_string(pid);
        const std::string comma = pid == 1 ? "" : ",";
        parameters += comma + R"({"pid": )" + number +
                      R"(, "type": "integer", "min": 0, "max": 999, "value": 5})";
        items +=
            comma + R"({"type": "range", "name": "Item )" + number + R"(", "pid": )" + number + "}";
    }
    return menu_text(parameters, items);
}

TEST(Controller, ALongMenuReadsWhatIsShownAlone) {
    constexpr size_t COUNT = 300;
    Menu_panel panel(long_menu(COUNT), {20, 3});
    panel.press(Key::DOWN, COUNT - 1).lines();
    std::set<uint32_t> reads;
    panel.device().set_fault([&reads](const Memory_device::Operation& operation) {
        if (operation.kind == Memory_device::Operation_kind::READ) {
            reads.insert(operation.pid);
        }
        return 0;
    });
    panel.controller().tick();
    for (int i = 0; i < 4; ++i) {
        panel.controller().tick();
    }
    EXPECT_EQ(reads, (std::set<uint32_t>{COUNT - 1, COUNT}));

    panel.device().set_integer(COUNT, 0, 7);
    panel.controller().tick();
    EXPECT_EQ(panel.lines(),
              (Lines{"Main         300/300", " Item 299          5", ">Item 300          7"}));
}

TEST(Controller, WhatComesIntoViewInALongMenuShowsItsValueOfNow) {
    Menu_panel panel(long_menu(300), {20, 3});
    panel.lines();
    panel.device().set_integer(3, 0, 8);
    panel.press(Key::DOWN, 2);
    EXPECT_EQ(panel.lines(),
              (Lines{"Main           3/300", " Item 2            5", ">Item 3            8"}));
}

}  // namespace
}  // namespace frontpanel
