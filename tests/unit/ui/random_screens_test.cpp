// What the display says after any event is what the device holds.
#include <algorithm>
#include <cctype>

#include "support/panel_fixture.h"
#include "support/random_menu.h"
#include "support/shown_text.h"

namespace frontpanel {
namespace {

constexpr Lcd_size SIZES[] = {{16, 2}, {20, 2}, {20, 4}, {40, 4}};
constexpr int EVENTS = 120;
constexpr uint32_t MENUS = 6;

bool is_list(const Lines& lines) {
    return std::any_of(lines.begin(), lines.end(),
                       [](const std::string& line) { return line.front() == '>'; });
}

// The item of a line of a list; null for a menu, or while the name goes round and shows its gap only.
const Random_menu::Item* item_on(const std::string& line, const Random_menu& menu) {
    const size_t at = line.find_first_not_of(' ', 1);
    return at == std::string::npos ? nullptr : menu.item_of(line[at]);
}

class Random_screens : public testing::TestWithParam<Lcd_size> {
protected:
    void expect_true(Menu_panel& panel, const Random_menu& menu) {
        const Lines lines = panel.lines();
        if (!is_list(lines)) {
            return;
        }
        const size_t first = GetParam().rows >= 3 ? 1 : 0;
        for (size_t row = first; row < lines.size(); ++row) {
            if (const Random_menu::Item* const item = item_on(lines[row], menu)) {
                const std::string text = item->text(panel.device());
                EXPECT_TRUE(text.empty() || ends_in(lines[row], text))
                    << "|" << lines[row] << "| for " << text;
                ++m_checked;
            }
        }
    }

    // An editor that has just opened proposes what the device holds.
    void expect_true_when_opened(Menu_panel& panel, const Random_menu& menu, const Lines& before) {
        const Lines lines = panel.lines();
        const auto line = std::find_if(before.begin(), before.end(),
                                       [](const std::string& text) { return text.front() == '>'; });
        const Random_menu::Item* const item = line == before.end() ? nullptr : item_on(*line, menu);
        if (item == nullptr || item->is_text || !panel.leds().edit || is_list(lines)) {
            return;
        }
        const std::string text = item->text(panel.device());
        const std::string& shown = lines[1];
        const bool is_whole = shown.substr(0, shown.find_last_not_of(' ') + 1) == text;
        EXPECT_TRUE(is_whole || text.size() > shown.size()) << "|" << shown << "| for " << text;
        ++m_checked;
    }

    int m_checked = 0;
};

TEST_P(Random_screens, ShowWhatTheDeviceHolds) {
    for (uint32_t seed = 1; seed <= random_menu_count(MENUS) && !HasFailure(); ++seed) {
        Random_menu menu(seed);
        SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + menu.text());
        Menu_panel panel(menu.text(), GetParam());
        for (int event = 0; event < EVENTS && !HasFailure(); ++event) {
            const Lines before = panel.lines();
            if (menu.below(4) == 0) {
                menu.change(panel.device());
                panel.tick();
            } else {
                const Key key = menu.random_key();
                panel.press(key.kind);
                if (key.kind == Key::SELECT && is_list(before)) {
                    expect_true_when_opened(panel, menu, before);
                }
            }
            expect_true(panel, menu);
        }
    }
    EXPECT_GT(m_checked, 100);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Random_screens, testing::ValuesIn(SIZES));

}  // namespace
}  // namespace frontpanel
