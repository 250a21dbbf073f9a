// What the display says after any event is what the device holds, and what is written is what the menu allows.
#include <algorithm>
#include <deque>
#include <map>
#include <optional>

#include <frontpanel_display/key_table.h>
#include "support/folder.h"
#include "support/panel_fixture.h"
#include "support/random_menu.h"
#include "support/shown_text.h"

namespace frontpanel {
namespace {

constexpr Lcd_size SIZES[] = {{16, 2}, {20, 2}, {20, 4}, {40, 4}};
constexpr int EVENTS = 160;
constexpr uint32_t MENUS = 6;

using Item = Random_menu::Item;

bool is_list(Panel_mode mode) {
    return mode == Panel_mode::TOP_MENU || mode == Panel_mode::MENU;
}

std::string without_blanks_behind(const std::string& line) {
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

// The numbers that the device holds, by parameter.
using Numbers = std::map<uint32_t, int>;

// One panel over one random menu, with what a person sees of it and what the device is told.
class Random_play {
public:
    // This many entries are refreshed at once after a change.
    Random_play(uint32_t seed, Lcd_size size, size_t most_refreshes)
        : m_menu(seed, m_folder.path()),
          m_panel(text_with_presets(), size),
          m_first_row(size.rows >= 3 ? 1 : 0) {
        m_panel.controller().set_most_refreshes(most_refreshes);
        look();
    }

    const Random_menu& menu() const { return m_menu; }
    int checked() const { return m_checked; }
    int written() const { return m_written; }
    int loaded() const { return m_loaded; }

    void one_event() {
        if (m_panel.controller().has_rest() && m_menu.below(2) == 0) {
            let_more_follow();
            return;
        }
        const size_t kind = m_menu.below(80);
        if (kind < 18) {
            change_device();
        } else if (kind == 18) {
            load_preset();
        } else {
            press(m_menu.random_key());
        }
    }

private:
    std::string text_with_presets() {
        m_menu.write_presets(m_folder.path());
        return m_menu.text();
    }

    void let_more_follow() {
        begin("more entries follow", std::nullopt);
        m_panel.controller().settle_rest();
        end();
    }

    void change_device() {
        for (size_t changes = m_menu.below(3) + 1; changes > 0; --changes) {
            m_menu.change(m_panel.device());
        }
        begin("the device changes", std::nullopt);
        m_panel.tick();
        end();
    }

    void press(const Key& key) {
        const Key_row* const row = row_of(key.kind);
        begin(std::string("key ") + (row != nullptr ? row->word : "") + key.character, key.kind);
        if (is_list(m_mode) && key.kind == Key::SELECT) {
            m_edited = item_under_cursor();
        }
        m_panel.controller().press(key);
        look();
        if (is_list(m_mode_before) && !is_list(m_mode) && m_edited == nullptr) {
            m_edited = m_menu.item_of(m_lines[0].front());  // the name had left its line
        }
        if (is_list(m_mode_before) && !is_list(m_mode) && m_edited != nullptr) {
            m_is_typed = false;
            if (!m_edited->is_text) {
                m_opened = held(m_edited->pid);
            }
            if (m_mode == Panel_mode::NUMBER || m_mode == Panel_mode::OPTIONS) {
                expect_opened();
            }
        }
        if (key.kind == Key::CHARACTER) {
            m_is_typed = true;
        } else if (key.kind == Key::UP || key.kind == Key::DOWN) {
            m_is_typed = false;
        }
        end();
    }

    // From wherever the panel is.
    void load_preset() {
        for (int i = 0; i < 20 && m_mode != Panel_mode::TOP_MENU; ++i) {
            press({Key::BACK});
        }
        for (size_t i = 0; i < m_menu.items().size() + 2; ++i) {
            press({Key::UP});
        }
        press({Key::SELECT});
        const size_t place = m_menu.below(m_menu.presets().size());
        for (size_t i = 0; i < place; ++i) {
            press({Key::DOWN});
        }
        press({Key::SELECT});
        press({Key::UP});
        ASSERT_EQ(without_blanks_behind(m_lines[1]), "load");
        m_preset = &m_menu.presets()[place];
        do {
            press(
                {m_mode == Panel_mode::QUESTION && m_menu.below(4) == 0 ? Key::BACK : Key::SELECT});
        } while (m_mode == Panel_mode::QUESTION);
        m_preset = nullptr;
    }

    void begin(const std::string& event, std::optional<Key::Kind> key) {
        m_event = event;
        m_key = key;
        m_mode_before = m_mode;
        m_proposed_before = m_proposed;
        m_was_typed = m_is_typed;
        m_old = numbers();
        m_panel.device().clear_records();
    }

    void look() {
        const Frame frame = m_panel.controller().draw();
        m_lines = lines_of(frame);
        m_mode = frame.mode;
    }

    void end() {
        look();
        SCOPED_TRACE(told());
        expect_list();
        expect_editor();
        expect_writes();
        if (m_preset != nullptr) {
            expect_all_or_none();
        }
        if (is_list(m_mode)) {
            m_edited = nullptr;
            m_opened.reset();
            m_proposed.reset();
        }
    }

    // What has happened lately, for whoever reads a failure.
    std::string told() {
        m_history.push_back(m_event + " -> |" + m_lines[0] + "|" + m_lines[1] + "| mode " +
                            std::to_string(held(Random_menu::MODE_PID)));
        if (m_history.size() > 10) {
            m_history.pop_front();
        }
        std::string all;
        for (const std::string& line : m_history) {
            all += "\n" + line;
        }
        return all;
    }

    int held(uint32_t pid) { return m_panel.device().integer(pid, 0).value(); }
    Numbers numbers() {
        Numbers all;
        for (const Item& item : m_menu.items()) {
            if (!item.is_text) {
                all[item.pid] = held(item.pid);
            }
        }
        return all;
    }

    // The item of a line of a list; null for a menu, or while the name goes round and shows its gap only.
    const Item* item_on(const std::string& line) const {
        const size_t at = line.find_first_not_of(' ', 1);
        return at == std::string::npos ? nullptr : m_menu.item_of(line[at]);
    }
    const Item* item_under_cursor() const {
        const auto line = std::find_if(m_lines.begin(), m_lines.end(),
                                       [](const std::string& text) { return text.front() == '>'; });
        return line == m_lines.end() ? nullptr : item_on(*line);
    }

    void expect_list() {
        if (!is_list(m_mode)) {
            return;
        }
        for (size_t row = m_first_row; row < m_lines.size(); ++row) {
            if (const Item* const item = item_on(m_lines[row])) {
                const std::string text = item->text(m_panel.device());
                EXPECT_TRUE(text.empty() || ends_in(m_lines[row], text))
                    << "|" << m_lines[row] << "| for " << text;
                ++m_checked;
            }
        }
    }

    // An editor that has just opened proposes what the device holds.
    void expect_opened() {
        const std::string text = m_edited->text(m_panel.device());
        const std::string& shown = m_lines[1];
        EXPECT_TRUE(without_blanks_behind(shown) == text || text.size() > shown.size())
            << "|" << shown << "| for " << text;
        ++m_checked;
    }

    // What an editor proposes may be written, or is what the device held. A text that goes round is not read, nor one
    // that is being typed.
    void expect_editor() {
        m_proposed.reset();
        if (m_mode != Panel_mode::NUMBER || m_is_typed || m_edited == nullptr) {
            return;
        }
        const std::string shown = without_blanks_behind(m_lines[1]);
        constexpr size_t LONGEST_WORD = 3;  // behind a number, which may have gone round
        if (shown.size() + 1 + LONGEST_WORD >= m_lines[1].size()) {
            return;
        }
        m_proposed = m_edited->number(shown);
        ASSERT_TRUE(m_proposed) << "|" << shown << "|";
        EXPECT_TRUE(m_edited->allows(*m_proposed, held(Random_menu::MODE_PID)) ||
                    m_proposed == m_opened)
            << "|" << shown << "|";
        ++m_checked;
    }

    void expect_writes() {
        Numbers values = m_old;
        for (const Memory_device::Write& write : m_panel.device().writes()) {
            EXPECT_EQ(write.result, 0) << write.pid << " = " << write.value;
            const Item& item = *m_menu.item_of(write.pid);
            if (item.is_text) {
                EXPECT_FALSE(item.is_locked_in_mode_1 && values[Random_menu::MODE_PID] == 1);
            } else {
                const int value = std::stoi(write.value);
                SCOPED_TRACE("write of " + write.value + " to " + item.name);
                expect_write(item, value, values);
                values[write.pid] = value;
            }
            ++m_written;
        }
    }

    void expect_write(const Item& item, int value, const Numbers& values) {
        // The values of a preset are judged as they will be together.
        const int mode =
            m_preset != nullptr ? held(Random_menu::MODE_PID) : values.at(Random_menu::MODE_PID);
        const bool is_edited = m_edited != nullptr && item.pid == m_edited->pid;
        const bool is_put_back = is_edited && value == m_opened;
        const bool is_undone = m_preset != nullptr && value == m_old.at(item.pid);
        const bool is_of_rule = mode == 2 && item.set_in_mode_2 == value;
        if (is_put_back || is_undone || is_of_rule) {
            return;
        }
        EXPECT_TRUE(item.allows(value, mode));
        if (!item.allows(values.at(item.pid), mode)) {
            return;  // a value that is not allowed any longer is corrected
        }
        EXPECT_FALSE(item.is_locked_in_mode_1 && mode == 1);
        EXPECT_TRUE(m_key) << "nobody asked for it";
        if (m_preset != nullptr) {
            EXPECT_TRUE(is_of_preset(item.pid, value));
        } else {
            EXPECT_TRUE(m_edited == nullptr || is_edited);
            // A preview writes what the editor shows now, select what it has shown.
            const bool is_preview = m_mode == Panel_mode::NUMBER;
            const std::optional<int> shown = is_preview ? m_proposed : m_proposed_before;
            EXPECT_TRUE(!shown || m_was_typed || value == shown);
        }
        if (item.warns_above && value > *item.warns_above) {
            EXPECT_EQ(m_mode_before, Panel_mode::QUESTION);
        }
    }

    bool is_of_preset(uint32_t pid, int value) const {
        return std::any_of(m_preset->begin(), m_preset->end(), [&](const auto& wanted) {
            return wanted.first == pid && wanted.second == value;
        });
    }

    void expect_all_or_none() {
        bool is_all = true;
        bool is_none = true;
        for (const auto& [pid, value] : *m_preset) {
            is_all = is_all && held(pid) == value;
            is_none = is_none && held(pid) == m_old.at(pid);
        }
        EXPECT_TRUE(is_all || is_none);
        const bool says_loaded = std::any_of(m_lines.begin(), m_lines.end(), [](const auto& line) {
            return line.find(" loaded") != std::string::npos &&
                   line.find("not loaded") == std::string::npos;
        });
        EXPECT_TRUE(!says_loaded || is_all);
        EXPECT_TRUE(says_loaded || is_none || m_mode == Panel_mode::QUESTION);
        m_loaded += says_loaded ? 1 : 0;
    }

    support::Folder m_folder;
    Random_menu m_menu;
    Menu_panel m_panel;
    size_t m_first_row;

    Lines m_lines;
    Panel_mode m_mode{};
    const Item* m_edited = nullptr;  // in an editor; null where that is not known
    std::optional<int> m_opened;     // what the device held when its editor opened
    std::optional<int> m_proposed;   // by the editor; nothing where that cannot be read
    bool m_is_typed = false;
    const Random_menu::Preset_values* m_preset = nullptr;  // that is being loaded

    // Of the present event:
    std::string m_event;
    std::deque<std::string> m_history;  // of events
    std::optional<Key::Kind> m_key;
    Panel_mode m_mode_before{};
    std::optional<int> m_proposed_before;
    bool m_was_typed = false;
    Numbers m_old;

    int m_checked = 0;
    int m_written = 0;
    int m_loaded = 0;
};

class Random_screens : public testing::TestWithParam<Lcd_size> {
protected:
    static void play(size_t most_refreshes) {
        int checked = 0;
        int written = 0;
        int loaded = 0;
        for (uint32_t seed = 1; seed <= random_menu_count(MENUS) && !HasFailure(); ++seed) {
            Random_play play(seed, GetParam(), most_refreshes);
            SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + play.menu().text());
            for (int event = 0; event < EVENTS && !HasFailure(); ++event) {
                play.one_event();
            }
            checked += play.checked();
            written += play.written();
            loaded += play.loaded();
        }
        EXPECT_GT(checked, 100);
        EXPECT_GT(written, 10);
        EXPECT_GT(loaded, 0);
    }
};

TEST_P(Random_screens, ShowWhatTheDeviceHoldsAndWriteWhatIsAllowed) {
    play(SIZE_MAX);
}

TEST_P(Random_screens, DoSoWhileEntriesStillFollowAChange) {
    play(1);
}

INSTANTIATE_TEST_SUITE_P(Sizes, Random_screens, testing::ValuesIn(SIZES));

}  // namespace
}  // namespace frontpanel
