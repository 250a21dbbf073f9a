// Ending the panel while a value is edited.
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr Lcd_size SIZES[] = {{16, 2}, {20, 2}, {20, 4}, {40, 4}};
constexpr const char* PARAMETERS =
    R"({"pid": 1, "type": "integer", "min": 0, "max": 99, "value": 5})";

class Quit : public testing::TestWithParam<Lcd_size> {
protected:
    void press(Key::Kind kind, int times = 1) {
        for (int i = 0; i < times; ++i) {
            panel().press({kind, 0});
        }
    }
    Panel& panel() { return shown.panel; }
    bool asks() {
        for (const std::string& line : shown.lines()) {
            if (line.find("yes") != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    Application_panel shown{menu_text(PARAMETERS, R"({"type": "range", "name": "Gain", "pid": 1},
            {"type": "range", "name": "Live", "pid": 1, "editor": {"preview": true}})"),
                            options_of_size(GetParam())};
};

TEST_P(Quit, EndsAtOnceWhenNothingIsLost) {
    panel().quit();
    EXPECT_TRUE(panel().is_over());
}

TEST_P(Quit, EndsAtOnceWhileAnUnchangedValueIsOpen) {
    press(Key::SELECT);
    panel().quit();
    EXPECT_TRUE(panel().is_over());
}

TEST_P(Quit, AsksOnceBeforeAnEditIsLost) {
    press(Key::SELECT);
    press(Key::UP);
    panel().quit();
    EXPECT_FALSE(panel().is_over());
    EXPECT_TRUE(asks());
    panel().quit();
    EXPECT_FALSE(panel().is_over());
    press(Key::SELECT);
    EXPECT_TRUE(panel().is_over());
    EXPECT_EQ(shown.device().integer(1, 0), 5);
}

TEST_P(Quit, GoesOnEditingWhenTheEditIsToBeKept) {
    press(Key::SELECT);
    press(Key::UP);
    panel().quit();
    press(Key::BACK);
    EXPECT_FALSE(panel().is_over());
    EXPECT_FALSE(asks());
    press(Key::UP);
    press(Key::SELECT);
    EXPECT_EQ(shown.device().integer(1, 0), 7);
    EXPECT_FALSE(panel().is_over());
    panel().quit();
    EXPECT_TRUE(panel().is_over());
}

TEST_P(Quit, APreviewedValueIsPutBackWhenThePanelEnds) {
    press(Key::DOWN);
    press(Key::SELECT);
    press(Key::UP, 3);
    EXPECT_EQ(shown.device().integer(1, 0), 8);
    panel().quit();
    EXPECT_FALSE(panel().is_over());
    press(Key::SELECT);
    EXPECT_TRUE(panel().is_over());
    EXPECT_EQ(shown.device().integer(1, 0), 5);
}

TEST_P(Quit, TheQuestionGoesWithTheEditAfterATimeWithoutKeys) {
    press(Key::SELECT);
    press(Key::UP);
    panel().quit();
    panel().receive(FrontPanel::UserInputTimeout);
    EXPECT_FALSE(asks());
    EXPECT_FALSE(panel().is_over());
    press(Key::SELECT);
    press(Key::UP);
    panel().quit();
    EXPECT_TRUE(asks());
}

INSTANTIATE_TEST_SUITE_P(Sizes, Quit, testing::ValuesIn(SIZES));

}  // namespace
}  // namespace frontpanel
