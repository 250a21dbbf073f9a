// Faults of rules on a panel: a notice each, once.
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr Lcd_size SIZES[] = {{16, 2}, {20, 2}, {20, 4}, {40, 4}};
constexpr uint32_t Z = 5;
constexpr const char* PARAMETERS = R"(
    {"name": "z", "pid": 5, "type": "integer", "min": 0, "max": 60, "value": 1},
    {"name": "gain", "pid": 6, "type": "integer", "min": 0, "max": 9, "value": 3})";

std::string menu_with(const std::string& rules) {
    return menu_text(
        PARAMETERS,
        R"({"type": "range", "name": "Gain", "parameter": "gain", "binding": ")" + rules + R"("})");
}

bool shows(Menu_panel& panel, const std::string& text) {
    return shown_in_time(panel).find(text) != std::string::npos;
}

class Fault_screen : public testing::TestWithParam<Lcd_size> {};

TEST_P(Fault_screen, AFaultIsANoticeOnceUntilItIsMendedAndOccursAnew) {
    Menu_panel panel(menu_with("visible if 10 / [z] > 1"), GetParam());
    EXPECT_FALSE(shows(panel, "rule: "));
    panel.device().set_integer(Z, 0, 0);
    panel.tick();
    EXPECT_TRUE(shows(panel, "Gain"));
    EXPECT_TRUE(shows(panel, "rule: division"));
    panel.press(Key::SELECT).tick();
    EXPECT_FALSE(shows(panel, "rule: "));
    panel.device().set_integer(Z, 0, 2);
    panel.tick();
    EXPECT_FALSE(shows(panel, "rule: "));
    panel.device().set_integer(Z, 0, 0);
    panel.tick();
    EXPECT_TRUE(shows(panel, "rule: division"));
}

TEST_P(Fault_screen, AWriteBeyondTheLimitsIsANoticeAndNoWrite) {
    Menu_panel panel(menu_with("set [gain] = [z] * 2"), GetParam());
    EXPECT_EQ(panel.device().integer(6, 0), 2);
    panel.device().clear_records();
    panel.device().set_integer(Z, 0, 5);
    panel.tick();
    EXPECT_TRUE(shows(panel, "rule: 10 is beyond"));
    EXPECT_TRUE(panel.device().writes().empty());
}

TEST_P(Fault_screen, AWriteThatTheDeviceRefusesIsANoticeOnce) {
    Menu_panel panel(menu_with("set [gain] = [z]"), GetParam());
    panel.fail(Memory_device::Operation_kind::WRITE, 6);
    panel.device().set_integer(Z, 0, 5);
    panel.tick();
    EXPECT_TRUE(shows(panel, "rule: cannot write [gain] = 5"));
    panel.press(Key::SELECT).tick().tick();
    EXPECT_FALSE(shows(panel, "rule: "));
    panel.repair();
    panel.tick();
    EXPECT_EQ(panel.device().integer(6, 0), 5);
}

TEST_P(Fault_screen, AParameterThatCannotBeReadIsNoFaultOfTheRule) {
    Menu_panel panel(menu_with("visible if [z] > 0"), GetParam());
    panel.fail(Memory_device::Operation_kind::READ, Z);
    panel.tick().tick();
    EXPECT_FALSE(shows(panel, "rule: "));
}

TEST_P(Fault_screen, ManyFaultsAtOnceAreToldShortly) {
    std::string items;
    for (int i = 1; i <= 40; ++i) {
        items += (i == 1 ? "" : ",") + (R"({"type": "range", "name": "Gain )" + std::to_string(i)) +
                 R"x(", "parameter": "gain", "binding": "visible if 10 / ([z] - 1) > 1"})x";
    }
    Menu_panel panel(menu_text(PARAMETERS, items), GetParam());
    for (int i = 1; i <= 5; ++i) {
        SCOPED_TRACE(i);
        EXPECT_TRUE(shows(panel, "Gain " + std::to_string(i)));
        panel.press(Key::SELECT);
    }
    EXPECT_TRUE(shows(panel, "more faults"));
    panel.press(Key::SELECT);
    EXPECT_FALSE(shows(panel, "rule: "));
    EXPECT_EQ(panel.menu().bindings()->faults().size(), 40U);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Fault_screen, testing::ValuesIn(SIZES));

TEST(RuleFaults, ThePanelTellsItsApplicationWithThePlaceInTheFile) {
    std::vector<std::string> told;
    Panel_options options;
    options.rule_fault = [&told](const Rule_fault& fault) { told.push_back(fault.text()); };
    const std::string text = menu_with("visible if 10 / [z] > 1");
    Application_panel shown(text, options);
    EXPECT_TRUE(told.empty());
    shown.device().set_integer(Z, 0, 0);
    shown.panel.tick();
    const std::string::size_type rule = text.find("visible if");
    const std::string::size_type line_begin = text.rfind('\n', rule) + 1;
    const auto line = std::count(text.begin(), text.begin() + static_cast<ptrdiff_t>(rule), '\n');
    EXPECT_EQ(told, (Lines{"menu.json:" + std::to_string(line + 1) + ":" +
                           std::to_string(rule - line_begin + 1) +
                           ": Gain: visible if 10 / [z] > 1: division by zero"}));
}

TEST(RuleFaults, OfRulesInSeveralLinesNameTheLineOfTheRules) {
    std::vector<std::string> told;
    Panel_options options;
    options.rule_fault = [&told](const Rule_fault& fault) { told.push_back(fault.text()); };
    Application_panel shown(
        menu_text(PARAMETERS, R"({"type": "range", "name": "Gain", "parameter": "gain",
                                  "binding": "visible if [z] < 9\nrange 0..9 / [z]"})"),
        options);
    shown.device().set_integer(Z, 0, 0);
    shown.panel.tick();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_NE(told[0].find(": Gain: line 2, range 0..9 / [z]: division by zero"), std::string::npos)
        << told[0];
}

}  // namespace
}  // namespace frontpanel
