#include "navigation/list_view.h"

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

}  // namespace
}  // namespace frontpanel
