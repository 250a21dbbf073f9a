// How values come onto displays of every size.
#include <algorithm>

#include "support/panel_fixture.h"
#include "support/shown_text.h"

namespace frontpanel {
namespace {

constexpr Lcd_size SIZES[] = {{16, 2}, {20, 2}, {20, 4}, {40, 4}};

constexpr const char* PARAMETERS = R"(
    {"name": "gen", "pid": 1, "type": "integer", "min": 0, "max": 2147483646, "value": 1234567890},
    {"name": "b", "pid": 2, "type": "integer", "min": 0, "max": 1, "value": 1},
    {"name": "key", "pid": 3, "type": "integer", "min": 0, "max": 3, "value": 2},
    {"name": "date", "pid": 4, "type": "text", "length": 19, "value": "2026-11-21 09:59:30"})";

class Shown_values : public testing::TestWithParam<Lcd_size> {
protected:
    std::string item(const std::string& type, const std::string& name, const std::string& members) {
        return menu_text(
            PARAMETERS, R"({"type": ")" + type + R"(", "name": ")" + name + "\", " + members + "}");
    }
    // The line of the first item.
    std::string line(Menu_panel& panel) { return panel.lines()[GetParam().rows >= 3 ? 1 : 0]; }
    // The first frames of the list, each with the text whole or as a marked part of it.
    void expect_in_list(Menu_panel& panel, const std::string& text) {
        for (int frame = 0; frame < 60; ++frame) {
            const std::string shown = line(panel);
            ASSERT_TRUE(ends_in(shown, text)) << "|" << shown << "|";
        }
    }
    bool is_whole(const std::string& shown, const std::string& text) {
        return shown.find(" " + text) != std::string::npos ||
               shown.find("=" + text) != std::string::npos;
    }
};

TEST_P(Shown_values, ANumberIsWholeAndTheNameGivesWay) {
    for (const std::string name : {"Gen", "Frequency"}) {
        Menu_panel panel(item("range", name, R"("parameter": "gen", "format": "%d Hz")"),
                         GetParam());
        EXPECT_TRUE(is_whole(line(panel), "1234567890 Hz")) << line(panel);
        expect_in_list(panel, "1234567890 Hz");
    }
}

TEST_P(Shown_values, ATextInUtf8TakesAColumnForEachCharacter) {
    Menu_panel panel(
        menu_text(
            PARAMETERS,
            R"({"type": "range", "name": "Ger\u00e4t", "parameter": "b", "format": "%d k\u03a9"},
            {"type": "enum", "name": "\u00dc", "parameter": "key", "choices": ["a", "b", "\u00b0C", "d"]})"),
        GetParam());
    const auto size = static_cast<size_t>(GetParam().columns);
    const auto row = [&](int first) { return GetParam().rows >= 3 ? first + 1 : first; };
    const Lcd& lcd = panel.controller().draw().lcd;
    EXPECT_EQ(lcd.characters(row(0)),
              U">Ger\u00e4t" + std::u32string(size - 10, U' ') + U"1 k\u03a9");
    EXPECT_EQ(lcd.characters(row(1)), U" \u00dc" + std::u32string(size - 4, U' ') + U"\u00b0C");
    panel.press(Key::SELECT);
    EXPECT_EQ(panel.controller().draw().lcd.characters(1).substr(0, 4), U"1 k\u03a9");
}

TEST_P(Shown_values, ANumberAmongTextGoesRoundWithMarksWhereItHasNoRoom) {
    const std::string text = "Frequency 1234567890 Hz now";
    Menu_panel panel(item("range", "Gen", R"("parameter": "gen", "format": "Frequency %d Hz now")"),
                     GetParam());
    expect_in_list(panel, text);
    panel.press(Key::SELECT);
    const std::string edited = panel.lines()[1];
    EXPECT_NE(edited.find("1234567890"), std::string::npos) << edited;
    EXPECT_EQ(edited[static_cast<size_t>(panel.controller().draw().lcd.cursor_column())], '0');
}

TEST_P(Shown_values, TheCursorOfANumberStaysOnItsDigit) {
    Menu_panel panel(item("range", "Gen",
                          R"("parameter": "gen", "format": "A frequency in hertz that is %d now")"),
                     GetParam());
    panel.press(Key::SELECT);
    for (const char digit : std::string("098765432")) {
        const Frame frame = panel.controller().draw();
        ASSERT_GE(frame.lcd.cursor_column(), 0);
        EXPECT_EQ(frame.lcd.line(1)[static_cast<size_t>(frame.lcd.cursor_column())], digit);
        panel.press(Key::COARSER);
    }
}

TEST_P(Shown_values, ATimeComesToItsEnd) {
    Menu_panel panel(item("time", "Date", R"("parameter": "date")"), GetParam());
    expect_in_list(panel, "2026-11-21 09:59:30");
    bool ends = false;
    for (int frame = 0; frame < 60; ++frame) {
        ends = ends || line(panel).find(":30") != std::string::npos;
    }
    EXPECT_TRUE(ends);
}

TEST_P(Shown_values, ATimeIsEditedWithTheCursorOnItsField) {
    Menu_panel panel(item("time", "Date", R"("parameter": "date")"), GetParam());
    panel.press(Key::SELECT);
    for (const char digit : std::string("09911")) {
        const Frame frame = panel.controller().draw();
        EXPECT_EQ(frame.lcd.line(1)[static_cast<size_t>(frame.lcd.cursor_column())], digit);
        panel.press(Key::COARSER);
    }
}

TEST_P(Shown_values, AStoredOptionShowsItsTextThoughOthersAreHidden) {
    const char* const MEMBERS[] = {
        R"("parameter": "key", "choices": ["w", "x", "y", "z"], "binding": "keys 2..3 if [b] == 1")",
        R"("parameter": "key", "choices": ["w", "x", "y", "z"], "binding": "keys 0, 2 if [b] == 1")",
        R"("parameter": "key", "choices": [{"text": "w", "options": ["gps"]}, {"text": "x", "options": ["gps"]}, "y", "z"])"};
    for (const char* const members : MEMBERS) {
        SCOPED_TRACE(members);
        std::string text = item("enum", "Key", members);
        text.replace(text.find(R"("options": {})"), 13, R"("options": {"gps": 0})");
        Menu_panel panel(text, GetParam());
        EXPECT_TRUE(ends_in(line(panel), "y")) << line(panel);
        panel.press(Key::SELECT);
        EXPECT_EQ(panel.lines()[1].substr(0, 2), "y ");
    }
}

TEST_P(Shown_values, AReadOnlyItemIsMarkedAsLongAsItsRuleHolds) {
    Menu_panel panel(
        item("range", "Gen", R"("parameter": "gen", "binding": "access read-only if [b] == 1")"),
        GetParam());
    EXPECT_EQ(line(panel).substr(0, 5), ">Gen=");
    panel.device().set_integer(2, 0, 0);
    panel.tick();
    EXPECT_EQ(line(panel).substr(0, 5), ">Gen ");
}

TEST_P(Shown_values, ANameHasTheRoomThatItsValueLeaves) {
    Menu_panel panel(item("range", "Exactly fifteen", R"("parameter": "b")"), GetParam());
    if (GetParam().columns > 16) {
        EXPECT_EQ(line(panel).substr(0, 17), ">Exactly fifteen ");
        return;
    }
    EXPECT_EQ(line(panel), ">Exactly fifte 1");
}

INSTANTIATE_TEST_SUITE_P(Sizes, Shown_values, testing::ValuesIn(SIZES));

TEST(ShownTexts, EveryTextOfAMenuMayHaveLettersBeyondAscii) {
    Menu_panel panel(R"({"device": {"parameters": [
        {"name": "level", "pid": 1, "type": "integer", "min": 0, "max": 99, "value": 5},
        {"name": "note", "pid": 2, "type": "text", "length": 20, "value": "Küche 21 °C"},
        {"name": "slot", "pid": 3, "type": "integer", "min": 0, "max": 14, "value": 1}],
        "products": [{"slot": 2, "id": 12, "name": "Plätte", "family": "Töne"}]},
        "menu": {"name": "Gerät", "items": [
        {"type": "range", "name": "Größe", "parameter": "level", "format": "%d m²",
         "binding": "warn \"Zu groß: {value} m²\" if value > 5"},
        {"type": "text", "name": "Notiz", "parameter": "note"},
        {"type": "slot", "name": "Plätze", "parameter": "slot"}]}})",
                     {20, 4});
    EXPECT_EQ(panel.lines(), (Lines{"Gerät            1/3", ">Größe          5 m²",
                                    " Notiz   Küche 21 °C", " Plätze     2:Plätte"}));
    panel.press(Key::SELECT).press(Key::UP).press(Key::SELECT);
    EXPECT_EQ(panel.lines()[1], "Zu groß: 6 m²       ");
}

}  // namespace
}  // namespace frontpanel
