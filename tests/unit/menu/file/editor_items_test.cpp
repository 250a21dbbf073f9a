#include "file/editor_items.h"

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"pid": 5, "type": "integer", "min": 0, "max": 100, "value": 50},
    {"pid": 6, "type": "integer", "min": 0, "max": 1, "value": 0},
    {"pid": 20, "type": "text", "length": 15, "value": "Main"},
    {"pid": 65549, "type": "text", "length": 40, "value": "Fan"})";

std::string with_editor(const std::string& members, const std::string& editor) {
    return menu_text(PARAMETERS, "{" + members + R"(, "name": "A", "editor": )" + editor + "}");
}

std::string with_encoder(const std::string& encoder) {
    return R"({"encoder": )" + encoder + R"(, "device": {"parameters": [)" + PARAMETERS +
           R"(]}, "menu": {"name": "Main", "items": [{"type": "range", "name": "A", "pid": 5}]}})";
}

constexpr const char* RANGE = R"("type": "range", "pid": 5)";
constexpr const char* TEXT = R"("type": "text", "pid": 20)";
constexpr const char* EDITOR = "menu.json: /menu/items/0/editor";

TEST(EditorItems, TellHowANumberIsEdited) {
    Menu_panel panel(
        with_editor(RANGE, R"({"preview": true, "step": 5, "acceleration": 10, "wrap": false})"));
    const Editor_settings& settings = panel.settings(0);
    EXPECT_TRUE(settings.preview);
    EXPECT_EQ(settings.step, 5);
    EXPECT_EQ(settings.acceleration, 10);
    EXPECT_EQ(settings.wrap, false);
    EXPECT_EQ(settings.characters, "");
}

TEST(EditorItems, TellHowATextIsEdited) {
    Menu_panel panel(with_editor(TEXT, R"({"characters": " ABC", "wrap": true})"));
    const Editor_settings& settings = panel.settings(0);
    EXPECT_EQ(settings.characters, " ABC");
    EXPECT_EQ(settings.wrap, true);
    EXPECT_FALSE(settings.preview);
}

TEST(EditorItems, MayTellNothing) {
    Menu_panel panel(with_editor(RANGE, "{}"));
    const Editor_settings& settings = panel.settings(0);
    EXPECT_FALSE(settings.preview);
    EXPECT_EQ(settings.step, 1);
    EXPECT_EQ(settings.acceleration, 1);
    EXPECT_EQ(settings.wrap, std::nullopt);
}

TEST(EditorItems, BelongToEveryKindThatIsEdited) {
    for (const char* const members :
         {RANGE, TEXT, R"("type": "address", "pid": 20)", R"("type": "time", "pid": 20)",
          R"("type": "enum", "pid": 6, "choices": ["a", "b"])"}) {
        EXPECT_EQ(error_of(with_editor(members, R"({"preview": true, "wrap": true})")), "")
            << members;
    }
}

TEST(EditorItems, TheEncoderCountsInThePanel) {
    Menu_panel panel(with_encoder(R"({"reversed": true, "wrap": true})"));
    panel.press(Key::SELECT).press(Key::DOWN);
    EXPECT_EQ(panel.lines()[1], "51                  ");
    panel.press(Key::COARSER).press(Key::DOWN, 6);
    EXPECT_EQ(panel.lines()[1], "0                   ");
    EXPECT_TRUE(panel.menu().encoder_settings().acceleration);
}

TEST(EditorItems, AnErrorNamesPlaceAndExpectation) {
    const std::string at = EDITOR;
    const std::string whole = ": expected a whole number from 1 to ";
    const Error_case CASES[] = {
        {with_editor(RANGE, "3"), at + ": expected an object, found a whole number"},
        {with_editor(RANGE, R"({"stride": 3})"), at + "/stride@: unknown member \"stride\""},
        {with_editor(RANGE, R"({"characters": "AB"})"),
         at + "/characters@: unknown member \"characters\""},
        {with_editor(RANGE, R"({"step": 0})"), at + "/step" + whole + "1000000000, found 0"},
        {with_editor(RANGE, R"({"acceleration": 1001})"),
         at + "/acceleration" + whole + "1000, found 1001"},
        {with_editor(RANGE, R"({"preview": 1})"),
         at + "/preview: expected true or false, found a whole number"},
        {with_editor(TEXT, R"({"step": 2})"), at + "/step@: unknown member \"step\""},
        {with_editor(TEXT, R"({"characters": ""})"),
         at + "/characters: expected a text of 1 to 95 characters, found 0"},
        {with_editor(TEXT, R"({"characters": "ABA"})"),
         at + "/characters: expected each character once"},
        {with_editor(R"("type": "warning")", "{}"), at + ": this item is not edited"},
        {with_editor(R"("type": "node", "items": [{"type": "range", "name": "B", "pid": 5}])",
                     "{}"),
         at + ": this item is not edited"},
        {with_encoder("[]"), "menu.json: /encoder: expected an object, found a list"},
        {with_encoder(R"({"speed": 1})"), "menu.json: /encoder/speed@: unknown member \"speed\""},
        {with_encoder(R"({"wrap": "yes"})"),
         "menu.json: /encoder/wrap: expected true or false, found a text"}};
    for (const Error_case& expected : CASES) {
        EXPECT_EQ(error_of(expected.text), placed(expected.text, expected.error)) << expected.text;
    }
}

}  // namespace
}  // namespace frontpanel
