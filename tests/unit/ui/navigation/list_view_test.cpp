#include "navigation/list_view.h"

#include <optional>
#include <utility>

#include <frontpanel_ui/log_lines.h>
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr const char* PARAMETERS = R"(
    {"name": "gain", "pid": 1, "type": "integer", "min": 0, "max": 99, "value": 5},
    {"name": "limit", "pid": 2, "type": "integer", "min": 0, "max": 9, "value": 9})";
constexpr const char* ITEMS = R"(
    {"type": "range", "name": "Gain", "parameter": "gain"},
    {"type": "range", "name": "Trim", "parameter": "gain", "binding": "visible if [limit] > 0"},
    {"type": "range", "name": "Limit", "parameter": "limit"},
    {"type": "node", "name": "More", "items": [{"type": "range", "name": "Gain", "parameter": "gain"}]})";

class List_view_test : public testing::Test {
protected:
    Lines lines(Lcd_size size = {16, 2}) {
        Lcd lcd(size);
        list.draw(lcd);
        return lines_of({lcd, Leds()});
    }
    void hide_trim() {
        menu.device().set_integer(2, 0, 0);
        menu.menu->bindings()->poll(SIZE_MAX);
        menu.menu->bindings()->settle();
        list.refresh();
    }

    Simulated_menu menu = simulated_text(menu_text(PARAMETERS, ITEMS));
    List_view list{menu.menu->root(), link_to(*menu.menu)};
};

TEST_F(List_view_test, ShowsAsManyEntriesAsThereAreLines) {
    EXPECT_EQ(lines(), (Lines{">Gain          5", " Trim          5"}));
    list.move(1);
    EXPECT_EQ(lines(), (Lines{" Gain          5", ">Trim          5"}));
    list.move(2);
    EXPECT_EQ(lines(), (Lines{" Limit         9", ">More        ..."}));
}

TEST_F(List_view_test, HasATitleWhereThereIsRoom) {
    EXPECT_EQ(lines({16, 3}), (Lines{"Main         1/4", ">Gain          5", " Trim          5"}));
    list.open({&menu.menu->root(), nullptr}, nullptr, false);
    EXPECT_EQ(lines({16, 3}), (Lines{">Gain          5", " Trim          5", " Limit         9"}));
}

TEST_F(List_view_test, TheCursorStaysAtTheEndsUnlessItGoesRound) {
    list.move(-1);
    EXPECT_STREQ(list.selected()->Get_name(), "Gain");
    list.move(99);
    EXPECT_STREQ(list.selected()->Get_name(), "More");
    list.set_wrap(true);
    list.move(1);
    EXPECT_STREQ(list.selected()->Get_name(), "Gain");
    list.move(-1);
    EXPECT_STREQ(list.selected()->Get_name(), "More");
}

TEST_F(List_view_test, TheCursorLeavesAnEntryThatIsHidden) {
    list.move(1);
    hide_trim();
    EXPECT_STREQ(list.selected()->Get_name(), "Limit");
    EXPECT_EQ(lines(), (Lines{" Gain          5", ">Limit         0"}));
}

TEST_F(List_view_test, OpensOnTheWantedEntryOrOnTheFirst) {
    Data_entry* const limit = list.selected()->Get_next()->Get_next();
    list.open({&menu.menu->root(), nullptr}, limit);
    EXPECT_EQ(list.selected(), limit);
    list.open({&menu.menu->root(), nullptr}, &menu.menu->root());
    EXPECT_STREQ(list.selected()->Get_name(), "Gain");
}

TEST_F(List_view_test, AtRestHasNoCursor) {
    list.rest("Main");
    EXPECT_EQ(lines(), (Lines{" Gain          5", " Trim          5"}));
    list.wake();
    EXPECT_EQ(lines()[0], ">Gain          5");
}

TEST_F(List_view_test, AnEntryThatCannotBeReadSaysSoAndRaisesTheAlarm) {
    lines();
    EXPECT_FALSE(list.alarm());
    menu.device().set_fault([](const Memory_device::Operation& operation) {
        return operation.kind == Memory_device::Operation_kind::READ && operation.pid == 1 ? 1 : 0;
    });
    list.refresh();
    EXPECT_EQ(lines()[0], ">Gain read error");
    EXPECT_TRUE(list.alarm());
    menu.device().set_fault(nullptr);
}

// ---- what is read

constexpr Lcd_size SIZES[] = {{16, 2}, {20, 2}, {20, 4}, {40, 4}};
constexpr int ENTRIES = 200;

// A menu of many numbers without rules, each with its own parameter; `others` are further items before them.
std::string long_menu(const std::string& others = "") {
    std::string parameters;
    std::string items = others;
    for (int pid = 1; pid <= ENTRIES; ++pid) {
        const std::string number = std::to_string(pid);
        parameters += (pid == 1 ? "" : ",") + (R"({"pid": )" + number) +
                      R"(, "type": "integer", "min": 0, "max": 9999, "value": )" + number + "}";
        items += (items.empty() ? "" : ",") + (R"({"type": "range", "name": "N)" + number) +
                 R"(", "pid": )" + number + R"(, "id": "n)" + number + "\"}";
    }
    return menu_text(parameters, items);
}

class Reads : public testing::TestWithParam<Lcd_size> {
protected:
    void show(const std::string& text) {
        panel.emplace(text, GetParam());
        panel->device().set_fault([this](const Memory_device::Operation& operation) {
            reads += operation.kind == Memory_device::Operation_kind::READ ? 1 : 0;
            return 0;
        });
        panel->lines();
        reads = 0;
    }
    int taken() { return std::exchange(reads, 0); }
    // The lines that are for entries.
    int entry_lines() const { return GetParam().rows >= 3 ? GetParam().rows - 1 : GetParam().rows; }
    // The device's value, as it is shown at the end of a line.
    void expect_current(const Lines& lines) {
        for (size_t row = GetParam().rows >= 3 ? 1 : 0; row < lines.size(); ++row) {
            const size_t name = lines[row].find('N');
            ASSERT_NE(name, std::string::npos) << lines[row];
            const auto pid = static_cast<uint32_t>(std::stoi(lines[row].substr(name + 1)));
            const std::string value = std::to_string(panel->device().integer(pid, 0).value());
            EXPECT_TRUE(lines[row].size() > value.size() &&
                        lines[row].substr(lines[row].size() - value.size() - 1) == " " + value)
                << lines[row] << " for " << value;
        }
    }
    void change_all() {
        ++m_change;
        for (uint32_t pid = 1; pid <= ENTRIES; ++pid) {
            panel->device().set_integer(pid, 0, static_cast<int>(pid) + 1000 * m_change);
        }
    }

    int reads = 0;
    std::optional<Menu_panel> panel;

private:
    int m_change = 0;
};

TEST_P(Reads, ATickReadsTheLinesOnTheDisplayAlone) {
    show(long_menu());
    for (int tick = 0; tick < 5; ++tick) {
        panel->tick();
        panel->lines();
        EXPECT_EQ(taken(), entry_lines());
    }
}

TEST_P(Reads, AMenuIsOpenedByReadingItsFirstLines) {
    panel.emplace(long_menu(), GetParam());
    panel->device().set_fault([this](const Memory_device::Operation& operation) {
        reads += operation.kind == Memory_device::Operation_kind::READ ? 1 : 0;
        return 0;
    });
    panel->controller().receive(FrontPanel::UserInputTimeout);  // to the top menu
    panel->lines();
    EXPECT_EQ(taken(), entry_lines());
}

TEST_P(Reads, ALineThatComesIntoViewIsReadOnce) {
    show(long_menu());
    panel->press(Key::DOWN, entry_lines() - 1);
    panel->lines();
    EXPECT_EQ(taken(), 0);
    for (int step = 0; step < 10; ++step) {
        panel->press(Key::DOWN);
        panel->lines();
        EXPECT_EQ(taken(), 1);
        panel->lines();
        EXPECT_EQ(taken(), 0);
    }
}

TEST_P(Reads, WhatComesIntoViewIsCurrentInItsFirstFrame) {
    show(long_menu());
    panel->set_encoder([] {
        Encoder_settings settings;
        settings.wrap = true;
        return settings;
    }());
    for (const auto& [key, times] : std::vector<std::pair<Key::Kind, int>>{
             {Key::UP, 1}, {Key::UP, 10}, {Key::DOWN, 11}, {Key::DOWN, 70}, {Key::UP, 71}}) {
        change_all();
        panel->tick();
        panel->press(key, times);
        expect_current(panel->lines());
    }
}

TEST_P(Reads, WhatANoticeCoveredIsCurrentInTheFirstFrameBehindIt) {
    show(long_menu());
    panel->controller().tell_device("plc", "away");
    panel->lines();
    panel->tick().tick();
    panel->lines();
    EXPECT_EQ(taken(), 0);
    change_all();
    panel->press(Key::SELECT);
    expect_current(panel->lines());
}

TEST_P(Reads, WhatTheLogCoveredIsCurrentInTheFirstFrameBehindIt) {
    show(long_menu());
    Log_lines lines(-1);
    panel->controller().set_log(lines);
    panel->press(Key::DIAGNOSTICS);
    panel->lines();
    panel->tick();
    EXPECT_EQ(taken(), 0);
    change_all();
    panel->press(Key::DIAGNOSTICS);
    expect_current(panel->lines());
}

TEST_P(Reads, WhatAnEditorCoveredIsCurrentInTheFirstFrameBehindIt) {
    show(long_menu());
    panel->press(Key::SELECT);
    panel->lines();
    change_all();
    panel->press(Key::BACK);
    expect_current(panel->lines());
}

TEST_P(Reads, ALargerDisplayReadsItsFurtherLines) {
    show(long_menu());
    change_all();
    panel->controller().set_size({GetParam().columns, 8});
    const Lines lines = panel->lines();
    EXPECT_EQ(taken(), 7 - entry_lines());
    EXPECT_EQ(lines.size(), 8U);
}

TEST_P(Reads, AMenuInAListReadsNothing) {
    show(long_menu(
        R"({"type": "node", "name": "A", "items": [{"type": "range", "name": "X", "pid": 1},
        {"type": "range", "name": "Y", "pid": 2, "binding": "visible if [3] > 0"}]},
        {"type": "node", "name": "B", "items": [{"type": "node", "name": "C", "items": [
        {"type": "range", "name": "X", "pid": 1}]}]})"));
    panel->tick();
    panel->lines();
    constexpr int MENUS = 2;
    constexpr int OF_A_RULE = 1;
    EXPECT_EQ(taken(), entry_lines() - MENUS + OF_A_RULE);
}

TEST_P(Reads, ARuleReadsItsParametersWhetherItsEntryShowsOrNot) {
    std::string items;
    for (int number = 0; number < 20; ++number) {
        items += std::string(number == 0 ? "" : ",") + R"({"type": "range", "name": "N1)" +
                 R"(", "pid": 1, "binding": "visible if [2] == 5"})";
    }
    const std::string parameters =
        R"({"pid": 1, "type": "integer", "min": 0, "max": 9, "value": 1},
           {"pid": 2, "type": "integer", "min": 0, "max": 9, "value": 0})";
    show(menu_text(parameters, items));
    panel->tick();
    EXPECT_EQ(panel->lines()[GetParam().rows >= 3 ? 1 : 0].substr(0, 8), " (empty)");
    EXPECT_EQ(taken(), 1);
    panel->device().set_integer(2, 0, 5);
    panel->tick();
    expect_current(panel->lines());
    taken();
    panel->tick();
    expect_current(panel->lines());
    EXPECT_EQ(taken(), 1 + entry_lines());
}

TEST_P(Reads, AHomescreenReadsItsLinesAndItsToggles) {
    std::string links;
    for (int number = 0; number < 20; ++number) {
        links += std::string(number == 0 ? "" : ",") + R"({"target": "n)" +
                 std::to_string(number + 10) + R"(", "toggle": "[3] > 0"})";
    }
    std::string text = long_menu();
    text.insert(1, "\"homescreen\": [" + links + "], ");
    show(text);
    panel->tick();
    panel->lines();
    EXPECT_EQ(taken(), 1 + GetParam().rows);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Reads, testing::ValuesIn(SIZES));

}  // namespace
}  // namespace frontpanel
