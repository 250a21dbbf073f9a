// The panel in the hands of chance: any key at any time, a device that changes by itself, and device and cards that
// fail. The number of events is that of FRONTPANEL_SOAK_EVENTS, and the seed that of FRONTPANEL_SOAK_SEED.
#include <frontpanel_simulator/random_faults.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>
#include <set>

#include <frontpanel_menu/entry_access.h>
#include "curl_home.h"
#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

constexpr int USUAL_EVENTS = 10000;
constexpr int FAULT_RESULT = 100;
constexpr Lcd_size SIZE{20, 4};

int number_from(const char* variable, int otherwise) {
    const char* const text = std::getenv(variable);
    return text != nullptr ? std::atoi(text) : otherwise;
}

void replace(std::string& text, const std::string& from, const std::string& to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
        text.replace(at, from.size(), to);
    }
}

// The demonstration menu. Its live data have parameters of their own, since the files under /tmp are named by them.
std::string menu_text() {
    std::string text = read_input_file(FRONTPANEL_SOURCE_DIR "/menus/demo.json");
    replace(text, "9071", "9091");
    replace(text, "9072", "9092");
    return text;
}

void remove_files_of_cards() {
    for (const char* const pid : {"9091", "9092"}) {
        for (const char* const kind : {"-json", "-json.gz", "-post"}) {
            unlink((std::string("/tmp/") + pid + kind).c_str());
        }
    }
}

using Key_of_parameter = std::pair<uint32_t, uint32_t>;
using Contents = std::map<Key_of_parameter, std::string>;

std::string content_of(const Memory_device::Value& value) {
    return value.type == INTEGER ? std::to_string(value.number) : value.text;
}

std::string unescaped(const std::string& text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 2, "\\x") == 0 && i + 3 < text.size()) {
            bytes += static_cast<char>(std::stoi(text.substr(i + 2, 2), nullptr, 16));
            i += 3;
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}

// Which options an enumeration shows is its own business otherwise.
struct Options_of : Enum_entry {
    static bool is_hidden(const Enum_entry& entry, int key) {
        const auto& positions = entry.*(&Options_of::map_enum_to_options);
        const auto found = positions.find(key);
        return found != positions.end() && found->second == -1;
    }
};

class Soak {
public:
    explicit Soak(uint32_t seed) : m_random(seed), m_panel(menu_text(), SIZE, Cards::ON) {
        m_panel.set_may_post(can_post());
        device().set_write_listener(
            [this](const Memory_device::Write& write) { m_writes.push_back(write); });
        m_contents = contents();
        m_frame = m_panel.controller().draw();
    }
    ~Soak() { device().set_write_listener(nullptr); }
    Soak(const Soak&) = delete;
    Soak& operator=(const Soak&) = delete;

    // What happened, once it did.
    std::string step() {
        m_writes.clear();
        m_may_commit = false;
        const std::string event = happen();
        check_writes(event);
        check_contents(event);
        draw(event);
        check_frame(event);
        return event;
    }
    size_t commits() const { return m_commits; }
    size_t bound_writes() const { return m_bound_writes; }
    size_t demanded_writes() const { return m_demanded_writes; }
    size_t failed_writes() const { return m_failed_writes; }
    size_t opened_editors() const { return m_opened_editors; }
    size_t requests() { return m_panel.cards()->requests().size(); }
    const std::set<std::string>& screens() const { return m_screens; }

private:
    Memory_device& device() { return m_panel.device(); }
    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_random); }

    // A line that comes onto the display is read, and then corrected where a rule no longer allows its value.
    void draw(const std::string& event) {
        m_writes.clear();
        m_may_commit = false;
        m_frame = m_panel.controller().draw();
        check_writes("a frame after " + event);
        check_contents("a frame after " + event);
    }

    std::string happen() {
        const int kind = below(1000);
        if (kind < 650) {
            return press();
        }
        if (kind < 850) {
            m_panel.controller().tick();
            return "tick";
        }
        if (kind < 960) {
            return change_device();
        }
        return kind < 980 ? disturb_device() : disturb_cards();
    }

    std::string press() {
        constexpr Key::Kind KINDS[] = {Key::UP,   Key::UP,      Key::DOWN,   Key::DOWN,
                                       Key::DOWN, Key::SELECT,  Key::SELECT, Key::SELECT,
                                       Key::BACK, Key::COARSER, Key::FINER,  Key::SHORTCUT};
        const Key key{KINDS[below(std::size(KINDS))], 1 + below(9)};
        m_may_commit = key.kind == Key::SELECT && m_frame.leds.edit;
        m_edited = m_panel.controller().edited();
        m_panel.controller().press(key);
        return "key " + std::to_string(key.kind) + " " + std::to_string(key.button);
    }

    std::string change_device() {
        const std::vector<Memory_device::Value> values = device().values();
        const auto& [pid, varidx, type, number, text] =
            values[static_cast<size_t>(below(static_cast<int>(values.size())))];
        if (type == INTEGER) {
            constexpr int STEPS[] = {-100000, -100, -10, -2, -1, 0, 1, 2, 10, 100, 100000};
            device().set_integer(pid, varidx, number + STEPS[below(std::size(STEPS))]);
        } else {
            const std::string others[] = {"",
                                          "127.0.0.1",
                                          "127.1.2.3",
                                          "2026-02-28 23:59:59",
                                          "255.255.255.255",
                                          "\x01\xff%s<&>",
                                          "A longer text"};
            device().set_text(pid, varidx, others[below(std::size(others))]);
        }
        m_contents = contents();
        return "change of " + std::to_string(pid) + "." + std::to_string(varidx);
    }

    std::string disturb_device() {
        constexpr double PROBABILITIES[] = {0, 0, 0.02, 0.2, 1};
        Random_faults::Plan plan;
        plan.seed = static_cast<uint32_t>(m_random());
        plan.probability = PROBABILITIES[below(std::size(PROBABILITIES))];
        plan.result = FAULT_RESULT;
        plan.delay_probability = 0.01;
        plan.longest_delay = std::chrono::microseconds(50);
        device().set_fault(
            [this, faults = Random_faults(plan)](const Memory_device::Operation& operation) {
                return m_may_fail ? faults(operation) : 0;
            });
        return "device fails with probability " + std::to_string(plan.probability);
    }

    std::string disturb_cards() {
        constexpr double PROBABILITIES[] = {0, 0, 0.3, 1};
        const double probability = PROBABILITIES[below(std::size(PROBABILITIES))];
        m_panel.cards()->set_random_faults(static_cast<uint32_t>(m_random()), probability,
                                           std::chrono::milliseconds(5));
        return "cards fail with probability " + std::to_string(probability);
    }

    Contents contents() {
        Contents result;
        for (const Memory_device::Value& value : device().values()) {
            result[{value.pid, value.varidx}] = content_of(value);
        }
        return result;
    }

    // A write is a commit of what the user edited, or one that a rule asks for, or replaces a value that a rule or
    // an option no longer allows.
    // Each one is valid, and refused only by a fault.
    void check_writes(const std::string& event) {
        for (const Memory_device::Write& write : m_writes) {
            ASSERT_TRUE(write.result == 0 || write.result == FAULT_RESULT)
                << event << " wrote " << write.pid << " = " << write.value << ": "
                << Memory_device::result_text(write.result);
            const bool is_commit = m_may_commit && is_edited(write);
            const bool is_demanded = !is_commit && is_demanded_by_a_rule(m_panel.root(), write);
            const bool is_bound =
                is_demanded || (!is_commit && is_correction(m_panel.root(), write));
            ASSERT_TRUE(is_commit || is_bound)
                << event << " wrote " << write.pid << "." << write.varidx << " = " << write.value
                << " over " << m_contents[{write.pid, write.varidx}] << ", at "
                << m_frame.lcd.line(0);
            m_commits += is_commit ? 1 : 0;
            m_bound_writes += is_bound ? 1 : 0;
            m_demanded_writes += is_demanded ? 1 : 0;
            m_failed_writes += write.result != 0 ? 1 : 0;
            if (write.result == 0) {
                m_contents[{write.pid, write.varidx}] =
                    write.type == STRING ? unescaped(write.value) : write.value;
            }
        }
    }

    // Nothing but the writes and what the device did by itself changed it.
    void check_contents(const std::string& event) { ASSERT_EQ(contents(), m_contents) << event; }

    void check_frame(const std::string& event) {
        std::string screen;
        ASSERT_EQ(m_frame.lcd.size().rows, SIZE.rows) << event;
        for (const std::string& line : lines_of(m_frame)) {
            ASSERT_EQ(line.size(), static_cast<size_t>(SIZE.columns)) << event;
            ASSERT_TRUE(
                std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; }))
                << event << ": " << line;
            screen += line;
        }
        ASSERT_GE(m_frame.lcd.cursor_row(), -1) << event;
        ASSERT_LT(m_frame.lcd.cursor_row(), SIZE.rows) << event;
        ASSERT_GE(m_frame.lcd.cursor_column(), -1) << event;
        ASSERT_LT(m_frame.lcd.cursor_column(), SIZE.columns) << event;
        ASSERT_NE(screen.find_first_not_of(' '), std::string::npos) << event;
        m_opened_editors += m_frame.leds.edit ? 1 : 0;
        m_screens.insert(screen);
    }

    static bool holds_parameter(const Data_entry& entry, const Memory_device::Write& write) {
        unsigned int varidx = 0;
        return entry.Get_pid() == write.pid &&
               Data_model::Index_convert(entry.Get_index(), varidx) == Data_model::OK &&
               varidx == write.varidx;
    }

    template <typename Condition>
    static bool any_below(Data_entry& entry, const Condition& condition) {
        if (condition(entry)) {
            return true;
        }
        Data_entry* child = is_menu(entry) ? entry.Get_child() : nullptr;
        for (; child != nullptr; child = child->Get_next()) {
            if (any_below(*child, condition)) {
                return true;
            }
        }
        return false;
    }

    // The title names the entry that is edited, unless it goes round: "<" and ">" stand where it is cut.
    bool is_edited(const Memory_device::Write& write) const {
        const std::string& title = m_frame.lcd.line(0);
        return m_edited != nullptr && holds_parameter(*m_edited, write) &&
               (title.find(m_edited->Get_name()) != std::string::npos ||
                title.find_first_of("<>") != std::string::npos);
    }

    // What the rules of an entry ask for as they stand after the event. The device answers meanwhile.
    bool is_demanded_by_a_rule(Data_entry& root, const Memory_device::Write& write) {
        const bool may_fail = std::exchange(m_may_fail, false);
        const bool is_demanded = any_below(root, [&](const Data_entry& entry) {
            const auto explained = m_panel.menu().bindings()->explain(entry);
            return explained &&
                   std::any_of(explained->rules.begin(), explained->rules.end(),
                               [&](const Rule_explanation& rule) { return demands(rule, write); });
        });
        m_may_fail = may_fail;
        return is_demanded;
    }

    // "[gain 1] = 0"
    bool demands(const Rule_explanation& rule, const Memory_device::Write& write) {
        const size_t end = rule.result.find("] = ");
        if (rule.kind != SUGGESTION_SET || rule.outcome != Rule_explanation::Outcome::HOLDS ||
            end == std::string::npos) {
            return false;
        }
        const Parameter* const parameter =
            m_panel.menu().parameters().find_reference(rule.result.substr(1, end - 1));
        const std::string value = rule.result.substr(end + std::string("] = ").size());
        return parameter != nullptr && parameter->pid == write.pid &&
               varidx_of(parameter->index) == write.varidx &&
               value == (write.type == STRING ? '"' + write.value + '"' : write.value);
    }

    bool is_correction(Data_entry& root, const Memory_device::Write& write) {
        return any_below(root, [&](Data_entry& entry) {
            if (!holds_parameter(entry, write)) {
                return false;
            }
            const std::string& before = m_contents[{write.pid, write.varidx}];
            if (auto* const range = dynamic_cast<Range_entry*>(&entry)) {
                return is_brought_into(*range, std::stoi(before), std::stoi(write.value));
            }
            const auto* const option = dynamic_cast<Enum_entry*>(&entry);
            return option != nullptr && Options_of::is_hidden(*option, std::stoi(before)) &&
                   !Options_of::is_hidden(*option, std::stoi(write.value));
        });
    }

    static bool is_brought_into(Range_entry& range, int before, int after) {
        return before < range.Get_min()   ? after == range.Get_min()
               : before > range.Get_max() ? after == range.Get_max()
                                          : false;
    }

    std::mt19937 m_random;
    const Curl_home m_curl_home;
    Menu_panel m_panel;
    Contents m_contents;  // what the device should hold
    std::vector<Memory_device::Write> m_writes;
    Frame m_frame{Lcd(SIZE), Leds()};
    bool m_may_commit = false;
    const Data_entry* m_edited = nullptr;  // before the key
    size_t m_commits = 0;
    bool m_may_fail = true;  // the device
    size_t m_bound_writes = 0;
    size_t m_demanded_writes = 0;
    size_t m_failed_writes = 0;
    size_t m_opened_editors = 0;
    std::set<std::string> m_screens;
};

TEST(Soak, WhateverHappensTheFrameIsValidAndOnlyWhatWasAskedForIsWritten) {
    const auto events = static_cast<size_t>(number_from("FRONTPANEL_SOAK_EVENTS", USUAL_EVENTS));
    const int seed = number_from("FRONTPANEL_SOAK_SEED", 1);
    Soak soak(static_cast<uint32_t>(seed));
    for (size_t i = 0; i < events; ++i) {
        const std::string event = soak.step();
        ASSERT_FALSE(HasFatalFailure()) << "event " << i << " of seed " << seed << ": " << event;
    }
    remove_files_of_cards();
    // It did reach what it is about.
    EXPECT_GT(soak.commits(), events / 100);
    EXPECT_GT(soak.bound_writes(), 0U);
    EXPECT_GT(soak.demanded_writes(), 0U);
    EXPECT_GT(soak.failed_writes(), 0U);
    EXPECT_GT(soak.opened_editors(), events / 20);
    EXPECT_GT(soak.screens().size(), 100U);
    EXPECT_GT(soak.requests(), std::min<size_t>(Card_service::REMEMBERED, events / 1000) - 1);
    std::printf("%zu events: %zu commits, %zu writes of bindings, %zu failed writes, %zu screens\n",
                events, soak.commits(), soak.bound_writes(), soak.failed_writes(),
                soak.screens().size());
}

}  // namespace
}  // namespace frontpanel
