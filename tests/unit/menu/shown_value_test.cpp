#include <frontpanel_menu/shown_value.h>

#include <frontpanel_editors/enum_editor.h>
#include <frontpanel_menu/choice_entry.h>
#include <frontpanel_menu/entry_access.h>

#include "support/indexes.h"
#include "unit/menu/items_fixture.h"
#include "unit/menu/kinds_fixture.h"

namespace frontpanel {
namespace {

std::optional<std::string> shown(const std::string& type, const std::string& members) {
    Simulated_menu loaded = simulated_text(with_item_of(type, members));
    Data_entry& item = *loaded.menu->root().Get_child();
    item.isVisible(true, &loaded.menu->access());
    return shown_value(item);
}

TEST(ShownValue, IsTheWholeTextOfEveryKind) {
    EXPECT_EQ(shown("range", R"("pid": 5, "format": "A frequency of %d hertz, more or less")"),
              "A frequency of 1 hertz, more or less");
    EXPECT_EQ(
        shown("range", R"("pid": 5, "format": "0:off,1:a text of more than twenty characters,%d")"),
        "a text of more than twenty characters");
    EXPECT_EQ(shown("range", R"("pid": 5, "format": "at about %d:00 o'clock today")"),
              "at about 1:00 o'clock today");
    EXPECT_EQ(
        shown("range", R"("pid": 5, "format": "today, that is %.1f", "value_format": "v/10")"),
        "today, that is 0.1");
    EXPECT_EQ(shown("range", R"("pid": 5)"), "1");
    EXPECT_EQ(shown("enum", R"("pid": 5, "choices": ["off", "as the reference is", "on"])"),
              "as the reference is");
    EXPECT_EQ(shown("text", R"("pid": 20)"), "abc");
    EXPECT_EQ(shown("address", R"("pid": 21)"), "127.0.0.1");
    EXPECT_EQ(shown("warning", ""), "Fan stopped");
    EXPECT_EQ(shown("mount", R"("folder": ".")"), "");
}

// An enumeration whose device holds any key.
class Held : public Choice_entry {
public:
    explicit Held(char** texts)
        : Choice_entry("Source", "Source", 120, support::any_index(), 0, 3, 0, texts, 4U, nullptr,
                       READ_WRITE, VISIBLE_ALL, true, SHORTCUT_NONE, nullptr, nullptr, nullptr,
                       nullptr, nullptr, nullptr) {}
    void hold(int key) { m_model.Set(&key, sizeof key); }
};

class Held_key : public testing::Test {
protected:
    char m_w[2] = "w";
    char m_x[2] = "x";
    char m_y[2] = "y";
    char m_z[2] = "z";
    char* m_texts[4] = {m_w, m_x, m_y, m_z};
    Held m_entry{m_texts};
};

TEST_F(Held_key, HasItsOwnTextThoughOthersAreHidden) {
    m_entry.setProductOptions({{"gps", 0}, {"modem", 1}});
    m_entry.Set_control_options({{0, {"gps"}}, {1, {"gps"}}, {2, {"modem"}}, {3, {"modem"}}});
    m_entry.updateControlOptionMap();
    for (const auto& [key, text] : {std::pair<int, const char*>{2, "y"}, {3, "z"}}) {
        m_entry.hold(key);
        EXPECT_EQ(shown_value(m_entry), text);
    }
    EXPECT_EQ(m_entry.Get_size(), 2);
}

TEST_F(Held_key, WithoutAnOptionIsADash) {
    for (const int key : {4, 7, -1}) {
        m_entry.hold(key);
        EXPECT_EQ(shown_value(m_entry), "-") << key;
    }
}

TEST_F(Held_key, WithoutAnOptionIsADashInItsEditorUntilItsFirstStep) {
    m_entry.hold(7);
    Enum_editor editor;
    editor.Prepare(&m_entry);
    EXPECT_EQ(editor.view(20).text, "-");
    EXPECT_EQ(editor.view(20).step, "");
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::REFUSED);
    EXPECT_EQ(m_entry.stored_key(), 7);
    editor.press(Editor_key::UP);
    EXPECT_EQ(editor.view(20).text, "w");
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
    EXPECT_EQ(m_entry.stored_key(), 0);
}

class Shown_value_test : public testing::Test {
protected:
    Data_entry& item(int number) { return top_item(*m_loaded.menu, number); }
    Data_entry& refreshed(int number) {
        refresh(item(number), m_loaded.menu->access());
        return item(number);
    }

    Simulated_menu m_loaded = simulated_text(with_item(
        R"({"type": "range", "name": "Level", "pid": 5, "format": "%d dB of a very long line"},
           {"type": "text", "name": "Note", "pid": 6, "access": "read-only"},
           {"type": "node", "name": "More", "items": [
               {"type": "range", "name": "Again", "pid": 5, "binding": "access read-only if [5] > 50"}]},
           {"type": "link", "target": "Note"})"));
};

TEST_F(Shown_value_test, AValueIsWhole) {
    EXPECT_EQ(shown_value(refreshed(0)), "7 dB of a very long line");
    EXPECT_EQ(shown_value(refreshed(1)), "abc");
}

TEST_F(Shown_value_test, ALinkShowsWhatItHouses) {
    EXPECT_EQ(shown_value(refreshed(3)), "abc");
}

TEST_F(Shown_value_test, AMenuHasNoValue) {
    EXPECT_EQ(shown_value(refreshed(2)), "");
}

TEST_F(Shown_value_test, AMenuFileOrARuleMakesAValueReadOnly) {
    EXPECT_FALSE(is_read_only(refreshed(0)));
    EXPECT_TRUE(is_read_only(refreshed(1)));
    EXPECT_TRUE(is_read_only(refreshed(3)));
    Data_entry& again = *item(2).Get_child();
    refresh(again, m_loaded.menu->access());
    EXPECT_FALSE(is_read_only(again));
    m_loaded.device().set_integer(5, 0, 51);
    refresh(again, m_loaded.menu->access());
    EXPECT_TRUE(is_read_only(again));
}

}  // namespace
}  // namespace frontpanel
