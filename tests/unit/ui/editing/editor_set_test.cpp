// The panel on every kind of entry beside numbers.
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"pid": 5, "type": "integer", "min": 0, "max": 2, "value": 1},
    {"pid": 7, "type": "integer", "min": 0, "max": 9, "value": 1},
    {"pid": 20, "type": "text", "length": 24, "value": "Main"},
    {"pid": 21, "type": "text", "length": 15, "value": "127.0.0.1"},
    {"pid": 22, "type": "text", "length": 20, "value": "12:30"},
    {"pid": 23, "type": "text", "length": 15, "value": "192.0.2.1"},
    {"pid": 65549, "type": "text", "length": 40, "value": "Fan 2 stopped: call service"})";

constexpr const char* TEXT = R"({"type": "text", "name": "Label", "pid": 20})";
constexpr const char* ADDRESS = R"({"type": "address", "name": "Address", "pid": 21})";
constexpr const char* TIME = R"({"type": "time", "name": "Clock", "pid": 22})";
constexpr const char* ENUM =
    R"({"type": "enum", "name": "Source", "pid": 5, "choices": ["Off", "Line", "Card"]})";
constexpr const char* WARNING = R"({"type": "warning", "name": "Warning"})";

TEST(ControllerTypes, ATextIsEditedAndWritten) {
    Menu_panel panel(menu_text(PARAMETERS, TEXT));
    EXPECT_EQ(panel.lines()[0], ">Label          Main");
    panel.press(Key::SELECT).press(Key::FINER).press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{"Label               ", "MainA               "}));
    EXPECT_EQ(panel.controller().draw().lcd.cursor_column(), 4);
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.device().text(20, 0), "MainA");
    EXPECT_EQ(panel.lines()[0], ">Label         MainA");
}

TEST(ControllerTypes, ATextKeepsItsValueOnBack) {
    Menu_panel panel(menu_text(PARAMETERS, TEXT));
    panel.press(Key::SELECT).press(Key::UP, 3).press(Key::BACK);
    EXPECT_EQ(panel.lines()[0], ">Label          Main");
    EXPECT_TRUE(panel.device().writes().empty());
}

TEST(ControllerTypes, ALongTextScrollsInTheList) {
    Menu_panel panel(menu_text(PARAMETERS, TEXT));
    panel.device().set_text(20, 0, "Studio A, on the left");
    panel.controller().tick();
    EXPECT_EQ(panel.lines()[0], ">Label Studio A, on ");
    EXPECT_EQ(panel.lines()[0], ">Label Studio A, on ");
    EXPECT_EQ(panel.lines()[0], ">Label Studio A, on ");
    EXPECT_EQ(panel.lines()[0], ">Label tudio A, on t");
}

TEST(ControllerTypes, AnAddressIsEditedAndWritten) {
    Menu_panel panel(menu_text(PARAMETERS, ADDRESS));
    EXPECT_EQ(panel.lines()[0], ">Address   127.0.0.1");
    panel.press(Key::SELECT).press(Key::COARSER).press(Key::UP, 5);
    EXPECT_EQ(panel.lines()[1], "127.0.5.1           ");
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.device().text(21, 0), "127.0.5.1");
}

TEST(ControllerTypes, AnOpenAddressTellsWhetherItAnswers) {
    Menu_panel panel(menu_text(PARAMETERS, ADDRESS));
    panel.press(Key::SELECT);
    const std::string title = panel.lines()[0];
    EXPECT_TRUE(title == "Address       online" || title == "Address      offline") << title;
}

TEST(ControllerTypes, AnAddressBeyondTheDevicesNetworkIsNotAsked) {
    Menu_panel panel(menu_text(PARAMETERS, ADDRESS));
    panel.device().set_text(21, 0, "192.0.2.1");
    panel.controller().tick();
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Address             ", "192.0.2.1           "}));
}

// What the line shows of a long text could be an address, or the name of somebody else's host.
TEST(ControllerTypes, ATextThatIsNoAddressIsNotAsked) {
    for (const char* const text :
         {"127.host.example", "127.0.0.1.example.net", "127.0.0.1 is away"}) {
        Menu_panel panel(menu_text(
            R"({"pid": 21, "type": "text", "length": 40, "value": "127.0.0.1"})", ADDRESS));
        panel.device().set_text(21, 0, text);
        panel.controller().tick();
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.lines()[0], "Address             ") << text;
    }
}

TEST(ControllerTypes, ATimeIsEditedAndWritten) {
    Menu_panel panel(menu_text(PARAMETERS, TIME));
    EXPECT_EQ(panel.lines()[0], ">Clock         12:30");
    panel.press(Key::SELECT).press(Key::COARSER).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.device().text(22, 0), "13:30");
    EXPECT_EQ(panel.lines()[0], ">Clock         13:30");
    EXPECT_FALSE(panel.leds().edit);
}

TEST(ControllerTypes, ATimeOfAnotherFormIsShownUntilSelect) {
    Menu_panel panel(menu_text(PARAMETERS, TIME));
    panel.device().set_text(22, 0, "3 days");
    panel.controller().tick();
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Clock               ", "3 days              "}));
    EXPECT_FALSE(panel.leds().edit);
    panel.press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{"Clock               ", "cannot be edited    "}));
    EXPECT_FALSE(panel.leds().edit);
    panel.press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines()[0], ">Clock        3 days");
    EXPECT_TRUE(panel.device().writes().empty());
}

TEST(ControllerTypes, AnOptionIsChosenAndWritten) {
    Menu_panel panel(menu_text(PARAMETERS, ENUM));
    EXPECT_EQ(panel.lines()[0], ">Source         Line");
    panel.press(Key::SELECT).press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{"Source           3/3", "Card                "}));
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.device().integer(5, 0), 2);
    EXPECT_EQ(panel.lines()[0], ">Source         Card");
    panel.press(Key::SELECT).press(Key::DOWN, 2).press(Key::BACK);
    EXPECT_EQ(panel.lines()[0], ">Source         Card");
}

TEST(ControllerTypes, AChosenOptionWhoseChoiceIsHiddenGivesWayToTheFirst) {
    Menu_panel panel(menu_text(PARAMETERS,
                               R"({"type": "enum", "name": "Source", "pid": 5, "choices":
        ["Off", {"text": "Modem", "options": ["modem"]}, {"text": "GPS", "options": ["gps"]}]})",
                               R"({"gps": 1, "modem": 0})"));
    EXPECT_EQ(panel.lines()[0], ">Source          Off");
    EXPECT_EQ(panel.device().integer(5, 0), 0);
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.device().integer(5, 0), 2);
}

TEST(ControllerTypes, AWriteThatFailsSaysSoForEveryType) {
    for (const char* const item : {TEXT, TIME, ENUM}) {
        Menu_panel panel(menu_text(PARAMETERS, item));
        panel.device().set_fault([](const Memory_device::Operation& operation) {
            return operation.kind == Memory_device::Operation_kind::WRITE ? 100 : 0;
        });
        panel.press(Key::SELECT).press(Key::DOWN).press(Key::SELECT);
        EXPECT_EQ(panel.lines()[1], "write failed        ") << item;
        EXPECT_TRUE(panel.leds().alarm) << item;
    }
}

TEST(ControllerTypes, AReadThatFailsSaysSoForEveryType) {
    for (const char* const item : {TEXT, ADDRESS, TIME, ENUM, WARNING}) {
        Menu_panel panel(menu_text(PARAMETERS, item));
        panel.device().set_fault([](const Memory_device::Operation& operation) {
            return operation.kind == Memory_device::Operation_kind::READ ? 100 : 0;
        });
        panel.controller().tick();
        EXPECT_EQ(panel.lines()[0].substr(9), " read error") << item;
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.lines()[1], "read error          ") << item;
    }
}

TEST(ControllerTypes, AReadOnlyEntryOfAnyTypeShowsItsValueAndRefusesToChangeIt) {
    struct Case {
        const char* item;
        const char* value;
    };
    for (const Case& row :
         {Case{R"({"type": "range", "name": "T", "pid": 7, "access": "read-only"})",
               "1                   "},
          Case{R"({"type": "enum", "name": "T", "pid": 5, "access": "read-only",
                      "choices": ["a", "b", "c"]})",
               "b                   "},
          Case{R"({"type": "text", "name": "T", "pid": 20, "access": "read-only"})",
               "Main                "},
          Case{R"({"type": "address", "name": "T", "pid": 23, "access": "read-only"})",
               "192.0.2.1           "},
          Case{R"({"type": "time", "name": "T", "pid": 22, "access": "read-only"})",
               "12:30               "},
          Case{R"({"type": "slot", "name": "T", "pid": 7, "access": "read-only"})",
               "2                   "}}) {
        SCOPED_TRACE(row.item);
        Menu_panel panel(menu_text(PARAMETERS, row.item));
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.lines(), (Lines{"T                   ", row.value}));
        EXPECT_FALSE(panel.leds().edit);
        EXPECT_EQ(panel.controller().draw().lcd.cursor_row(), -1);
        for (const Key::Kind key : {Key::UP, Key::DOWN, Key::INSERT, Key::DELETE}) {
            panel.press(key);
            EXPECT_EQ(panel.lines(), (Lines{"T                   ", "read only           "}));
            EXPECT_FALSE(panel.leds().edit);
            panel.press(Key::SELECT);
            EXPECT_EQ(panel.lines(), (Lines{"T                   ", row.value}));
        }
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.lines()[0].substr(0, 2), ">T");
        EXPECT_TRUE(panel.device().writes().empty());
    }
}

TEST(ControllerTypes, AWarningIsShownUntilAnyKey) {
    Menu_panel panel(menu_text(PARAMETERS, WARNING));
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.lines(), (Lines{"Warning             ", "Fan 2 stopped: call "}));
    EXPECT_FALSE(panel.leds().edit);
    panel.lines();
    EXPECT_EQ(panel.lines()[1], "an 2 stopped: call s");
    panel.press(Key::DOWN);
    EXPECT_EQ(panel.lines()[0].substr(0, 8), ">Warning");
    EXPECT_TRUE(panel.device().writes().empty());
}

TEST(ControllerTypes, AShortcutOpensEveryTypesPlaceInItsMenu) {
    Menu_panel panel(menu_text(PARAMETERS, R"({"type": "node", "name": "N", "items": [
        {"type": "text", "name": "Label", "pid": 20},
        {"type": "enum", "name": "Source", "pid": 5, "shortcut": 4, "choices": ["a", "b", "c"]}]})"));
    panel.shortcut(4);
    EXPECT_EQ(panel.lines(), (Lines{" Label          Main", ">Source            b"}));
}

class SlotList : public testing::Test {
protected:
    SlotList()
        : panel(R"({"device": {"parameters": [
              {"pid": 7, "type": "integer", "min": 0, "max": 9, "value": 1}], "products": [
              {"slot": 1, "id": 11, "name": "DEC", "family": "Decoder", "alias": "Studio"},
              {"slot": 2, "id": 12, "name": "ENC", "family": "Encoder", "alias": "Van"},
              {"slot": 8, "id": 13, "name": "MUX", "family": "Multiplexer", "alias": "Tower"}]},
              "menu": {"name": "Main", "items": [{"type": "slot", "name": "Slot", "pid": 7}]}})",
                {40, 2}) {
        VarIdDataInfStore::m_pDataAccessInf = &panel.menu().access();
    }
    ~SlotList() override { VarIdDataInfStore::m_pDataAccessInf = nullptr; }

    Menu_panel panel;
};

TEST_F(SlotList, ShowsTheChosenSlotsProductAndAlias) {
    EXPECT_EQ(panel.lines()[0], ">Slot                          2:ENC Van");
}

TEST_F(SlotList, ChoosesASlotWithItsAliasOnTheWay) {
    panel.press(Key::SELECT).press(Key::UP);
    EXPECT_EQ(panel.lines(), (Lines{"Slot                                3/10",
                                    "3                                       "}));
    panel.press(Key::UP, 5);
    EXPECT_EQ(panel.lines(), (Lines{"Slot                                8/10",
                                    "8:MUX                   Tower           "}));
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.device().integer(7, 0), 7);
}

}  // namespace
}  // namespace frontpanel
