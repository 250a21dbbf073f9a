// What a person meets in the first hour with a panel, on every size of display that it ships for.

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr Lcd_size SIZES[] = {{16, 2}, {20, 2}, {20, 4}, {40, 4}};

const std::string MENU = R"({"device": {"parameters": [
    {"name": "gain", "pid": 1, "type": "integer", "min": -600, "max": 120, "value": 0},
    {"name": "label", "pid": 2, "type": "text", "length": 8, "value": "AB"},
    {"name": "host", "pid": 3, "type": "text", "length": 15, "value": "10.0.0.1"},
    {"name": "temp", "pid": 4, "type": "integer", "min": 0, "max": 99, "value": 41}]},
    "menu": {"name": "Main", "items": [
        {"type": "range", "name": "Gain", "parameter": "gain", "format": "%.1f dB",
         "value_format": "v/10", "id": "gain", "binding": "warn \"loud\" if value > 60"},
        {"type": "text", "name": "Label", "parameter": "label"},
        {"type": "address", "name": "Host", "parameter": "host"},
        {"type": "bridge", "item": {"type": "range", "name": "Box", "parameter": "temp",
                                    "format": "%d C", "access": "read-only"}}]},
    "homescreen": [{"target": "gain"}],
    "favourites": [{"target": "gain"}]})";

class First_hour : public testing::TestWithParam<Lcd_size> {
protected:
    void press(Key::Kind kind, int times = 1) {
        for (int i = 0; i < times; ++i) {
            m_shown.panel.press({kind, 0});
        }
    }
    void type(const std::string& text) {
        for (const char character : text) {
            m_shown.panel.press({Key::CHARACTER, 0, character});
        }
    }
    Memory_device& device() { return m_shown.device(); }
    // The line without the blanks at its end.
    std::string line(size_t row) {
        std::string text = m_shown.lines().at(row);
        return text.substr(0, text.find_last_not_of(' ') + 1);
    }
    std::string last_line() { return line(static_cast<size_t>(GetParam().rows) - 1); }
    bool has_title() const { return GetParam().rows >= 3; }
    // The first line for items.
    size_t first_row() const { return has_title() ? 1 : 0; }
    bool ends_with(const std::string& text, const std::string& end) const {
        return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
    }

    Application_panel m_shown{MENU, options_of_size(GetParam())};
};

TEST_P(First_hour, AMenuShowsItsTitleWhereThereIsRoom) {
    press(Key::SELECT);
    EXPECT_EQ(line(0).rfind("Main", 0), has_title() ? 0U : std::string::npos) << line(0);
    EXPECT_EQ(line(first_row()).rfind(">Gain", 0), 0U) << line(first_row());
}

TEST_P(First_hour, BackAtTheTopDoesNothing) {
    const Lines home = m_shown.lines();
    press(Key::BACK, 3);
    EXPECT_EQ(m_shown.lines(), home);
    press(Key::SELECT);
    press(Key::BACK, 3);
    EXPECT_EQ(m_shown.lines(), home);
}

TEST_P(First_hour, FavouritesHaveAKeyAndATitle) {
    press(Key::FAVOURITES);
    EXPECT_EQ(line(0).rfind("Favourites", 0), has_title() ? 0U : std::string::npos) << line(0);
    EXPECT_EQ(line(first_row()).rfind(">Gain", 0), 0U) << line(first_row());
    press(Key::BACK);
    EXPECT_TRUE(ends_with(line(0), "0.0 dB")) << line(0);
}

TEST_P(First_hour, TheStepIsInTheUnitOfTheValue) {
    press(Key::SELECT, 2);
    EXPECT_EQ(line(0), "Gain");
    press(Key::COARSER);
    EXPECT_TRUE(ends_with(line(0), "step 1.0 dB")) << line(0);
    press(Key::UP);
    EXPECT_EQ(line(1), "1.0 dB");
}

TEST_P(First_hour, AQuestionShowsItsKeys) {
    press(Key::SELECT, 2);
    type("9");
    press(Key::SELECT);
    EXPECT_TRUE(last_line() == "Enter yes, Esc no" || last_line() == "Enter yes Esc no")
        << last_line();
    press(Key::SELECT);
    EXPECT_EQ(device().integer(1, 0), 90);
}

TEST_P(First_hour, NumbersTextsAndAddressesAreTyped) {
    press(Key::SELECT, 2);
    type("-12.5");
    EXPECT_EQ(line(1), "-12.5 dB");
    press(Key::SELECT);
    EXPECT_EQ(device().integer(1, 0), -125);
    press(Key::DOWN);
    press(Key::SELECT);
    type("x7");
    EXPECT_EQ(line(1), "Ax7");
    press(Key::SELECT);
    EXPECT_EQ(device().text(2, 0), "Ax7");
    press(Key::DOWN);
    press(Key::SELECT);
    press(Key::LEFT, 3);
    type("127");
    press(Key::SELECT);
    EXPECT_EQ(device().text(3, 0), "127.0.0.1");
}

TEST_P(First_hour, ANewCharacterIsVisible) {
    press(Key::SELECT);
    press(Key::DOWN);
    press(Key::SELECT);
    press(Key::RIGHT, 2);
    press(Key::INSERT);
    EXPECT_EQ(line(1), "ABA");
    press(Key::SELECT);
    EXPECT_EQ(device().text(2, 0), "ABA");
}

TEST_P(First_hour, ABridgeHasTheNameOfItsItemAndAMarkThatItIsReadOnly) {
    press(Key::SELECT);
    press(Key::DOWN, 3);
    const std::string shown = last_line();
    EXPECT_EQ(shown.rfind(">Box=", 0), 0U) << shown;
    EXPECT_TRUE(ends_with(shown, " 41 C")) << shown;
    press(Key::SELECT);
    EXPECT_EQ(line(0), "Box");
    EXPECT_EQ(line(1), "41 C");
}

INSTANTIATE_TEST_SUITE_P(Sizes, First_hour, testing::ValuesIn(SIZES));

TEST(FirstHour, TheUsualDisplayHasFourLinesOfTwentyColumns) {
    EXPECT_EQ(Panel_options().size.columns, 20);
    EXPECT_EQ(Panel_options().size.rows, 4);
}

}  // namespace
}  // namespace frontpanel
