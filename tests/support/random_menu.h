// A menu of every kind of item that shows a value, with random formats, ranges, choices, rules, links, bridges and
// presets: what each of its items must show for what the device holds, and which values may be written to it.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_RANDOM_MENU_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_RANDOM_MENU_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <frontpanel_display/key.h>
#include <frontpanel_simulator/memory_device.h>

namespace frontpanel {

// The same menu for the same seed.
class Random_menu {
public:
    static constexpr uint32_t MODE_PID = 1;
    static constexpr int LAST_MODE = 2;

    using Intervals = std::vector<std::pair<int, int>>;  // both ends inclusive

    struct Item {
        uint32_t pid = 0;
        bool is_text = false;
        std::string name = {};  // one letter, repeated: it is known by any part of it
        int min = 0;
        int max = 0;
        // Of a number or choice: what the item allows by itself, and what a rule leaves of it in mode 1.
        Intervals allowed = {};
        std::optional<Intervals> allowed_in_mode_1 = {};
        bool is_locked_in_mode_1 = false;
        std::optional<int> warns_above = {};
        std::optional<int> set_in_mode_2 = {};  // what a rule of another item writes to it
        std::function<std::string(Memory_device&)> text = {};  // that the item must show
        // The number that a text of an editor stands for; nothing for a text of another form.
        std::function<std::optional<int>(const std::string&)> number = {};
        std::vector<std::string> texts = {};  // that a device may hold

        bool allows(int value, int mode) const {
            return holds(allowed, value) &&
                   (mode != 1 || !allowed_in_mode_1 || holds(*allowed_in_mode_1, value));
        }
    };

    // A preset by what it writes.
    using Preset_values = std::vector<std::pair<uint32_t, int>>;

    static bool holds(const Intervals& intervals, int value) {
        return std::any_of(intervals.begin(), intervals.end(), [value](const auto& interval) {
            return interval.first <= value && value <= interval.second;
        });
    }

    // The menu shows presets from `folder`, which `write_presets` fills.
    explicit Random_menu(uint32_t seed, const std::string& folder = "") : m_random(seed) {
        add_number("mode", MODE_PID, 0, LAST_MODE, 0, "");
        for (int i = 0; i < 12; ++i) {
            add_item();
        }
        m_items_text +=
            R"(,{"type": "node", "name": "Z", "items": [{"type": "range", "name": "Y", "parameter": "mode"}, )"
            R"({"type": "link", "target": ")" +
            m_targets[below(m_targets.size())] + "\"}]}";
        if (!folder.empty()) {
            m_items_text =
                R"({"type": "mount", "name": "X", "folder": ")" + folder + "\"}," + m_items_text;
            for (int i = 0; i < PRESETS; ++i) {
                add_preset();
            }
        }
    }

    std::string text() const {
        return R"({"options": {"gps": 0, "modem": 1}, "device": {"products": [)"
               R"({"slot": 3, "id": 7, "name": "RX200", "family": "rx"}], "parameters": [)" +
               m_parameters + R"(]}, "menu": {"name": "Main", "items": [)" + m_items_text + "]}}";
    }
    const std::vector<Item>& items() const { return m_items; }
    const Item* item_of(uint32_t pid) const {
        const auto found = std::find_if(m_items.begin(), m_items.end(),
                                        [pid](const Item& item) { return item.pid == pid; });
        return found == m_items.end() ? nullptr : &*found;
    }
    // Those of the mounted folder, in the order of the menu that shows it.
    const std::vector<Preset_values>& presets() const { return m_presets; }
    void write_presets(const std::string& folder) const {
        for (size_t i = 0; i < m_presets.size(); ++i) {
            std::string text;
            for (const auto& [pid, value] : m_presets[i]) {
                text += (text.empty() ? "" : ",") + ("\"" + parameter_name(pid)) +
                        "\": " + std::to_string(value);
            }
            std::ofstream(folder + "/P" + std::to_string(i) + ".json") << "{" << text << "}";
        }
    }
    // The item whose name has this letter; null for none.
    const Item* item_of(char letter) const {
        for (const Item& item : m_items) {
            if (item.name.front() == letter) {
                return &item;
            }
        }
        return nullptr;
    }

    size_t below(size_t end) { return std::uniform_int_distribution<size_t>(0, end - 1)(m_random); }
    Key random_key() {
        constexpr Key::Kind KINDS[] = {Key::UP,      Key::DOWN,   Key::DOWN,   Key::UP,
                                       Key::DOWN,    Key::SELECT, Key::SELECT, Key::SELECT,
                                       Key::COARSER, Key::FINER,  Key::BACK,   Key::CHARACTER};
        const Key::Kind kind = KINDS[below(std::size(KINDS))];
        constexpr char TYPED[] = "0123456789-.";
        return {kind, 0, kind == Key::CHARACTER ? TYPED[below(std::size(TYPED) - 1)] : '\0'};
    }
    // Gives a parameter another value, as a device does by itself.
    void change(Memory_device& device) {
        const Item& item = m_items[below(m_items.size())];
        if (item.is_text) {
            device.set_text(item.pid, 0, item.texts[below(item.texts.size())]);
        } else {
            device.set_integer(item.pid, 0, number_between(item.min, item.max));
        }
    }

private:
    static constexpr int PRESETS = 4;

    struct Format {
        const char* members;
        std::string (*text)(int value);
        double factor;       // of the number shown
        const char* before;  // what stands before the number
        const char* behind;
    };

    static std::string parameter_name(uint32_t pid) {
        return pid == MODE_PID ? "mode" : "p" + std::to_string(pid);
    }

    static std::optional<int> number_of(const std::string& text, const Format& format) {
        if (format.members[0] != '\0' &&
            std::string(format.members).find("0:off") != std::string::npos) {
            for (const int value : {0, 1, 5}) {
                if (text == format.text(value)) {
                    return value;
                }
            }
        }
        const std::string before = format.before;
        const std::string behind = format.behind;
        if (text.size() <= before.size() + behind.size() ||
            text.compare(0, before.size(), before) != 0 ||
            text.compare(text.size() - behind.size(), behind.size(), behind) != 0) {
            return std::nullopt;
        }
        const std::string digits =
            text.substr(before.size(), text.size() - before.size() - behind.size());
        char* end = nullptr;
        const double number = std::strtod(digits.c_str(), &end);
        return *end == '\0' ? std::optional(static_cast<int>(std::lround(number * format.factor)))
                            : std::nullopt;
    }

    static std::string tenths(int value) {
        std::array<char, 64> text{};
        std::snprintf(text.data(), text.size(), "%.1f dB", value / 10.0);
        return text.data();
    }
    static const std::vector<Format>& formats() {
        static const std::vector<Format> FORMATS{
            {"", [](int value) { return std::to_string(value); }, 1, "", ""},
            {R"(, "format": "%d Hz")", [](int value) { return std::to_string(value) + " Hz"; }, 1,
             "", " Hz"},
            {R"(, "format": "Frequency %d Hz now")",
             [](int value) { return "Frequency " + std::to_string(value) + " Hz now"; }, 1,
             "Frequency ", " Hz now"},
            {R"(, "format": "%.1f dB", "value_format": "v/10")", tenths, 10, "", " dB"},
            {R"(, "format": "0:off,1:on,5:as the reference is,%d")",
             [](int value) {
                 return value == 0   ? "off"
                        : value == 1 ? "on"
                        : value == 5 ? "as the reference is"
                                     : std::to_string(value);
             },
             1, "", ""},
        };
        return FORMATS;
    }

    int number_between(int min, int max) {
        return std::uniform_int_distribution<int>(min, max)(m_random);
    }

    std::string next_name() {
        const char letter = static_cast<char>('a' + m_items.size());
        return std::string(1 + below(18), letter);
    }

    void add_parameter(const std::string& name, uint32_t pid, const std::string& members) {
        m_parameters += (m_parameters.empty() ? "" : ",") + (R"({"name": ")" + name) +
                        R"(", "pid": )" + std::to_string(pid) + ", " + members + "}";
    }
    void add_item_text(const std::string& type, const std::string& name,
                       const std::string& parameter, const std::string& members) {
        const std::string item = R"({"type": ")" + type + R"(", "name": ")" + name +
                                 R"(", "parameter": ")" + parameter + "\"" + members + "}";
        const bool is_bridged =
            type != "enum" && type != "slot" && !m_items_text.empty() && below(6) == 0;
        m_items_text += (m_items_text.empty() ? "" : ",") +
                        (is_bridged ? R"({"type": "bridge", "item": )" + item + "}" : item);
        if (!is_bridged) {
            m_targets.push_back(name);
        }
    }

    void add_number(const std::string& parameter, uint32_t pid, int min, int max, size_t format,
                    const std::string& members) {
        add_parameter(parameter, pid,
                      R"("type": "integer", "min": )" + std::to_string(min) + R"(, "max": )" +
                          std::to_string(max) + R"(, "value": )" + std::to_string(min));
        const std::string name = next_name();
        add_item_text("range", name, parameter, formats()[format].members + members);
        Item& item = m_items.emplace_back();
        item.pid = pid;
        item.name = name;
        item.min = min;
        item.max = max;
        item.allowed = {{min, max}};
        item.text = [pid, text = formats()[format].text](Memory_device& device) {
            return text(device.integer(pid, 0).value());
        };
        item.number = [format](const std::string& text) {
            return number_of(text, formats()[format]);
        };
    }

    void add_item() {
        const auto pid = static_cast<uint32_t>(10 + m_items.size());
        const std::string parameter = "p" + std::to_string(pid);
        switch (below(7)) {
            case 0:
            case 1:
            case 2:
                add_random_number(parameter, pid);
                break;
            case 3:
                add_choice(parameter, pid);
                break;
            case 4:
                add_text("text", parameter, pid,
                         {"", "Studio", "Studio 12 on the left", "FR10-004217-001188"});
                break;
            case 5:
                add_slot(parameter, pid);
                break;
            default:
                add_text(below(2) == 0 ? "time" : "address", parameter, pid, {});
                break;
        }
    }

    void add_random_number(const std::string& parameter, uint32_t pid) {
        constexpr std::pair<int, int> BOUNDS[] = {
            {0, 9}, {0, 100}, {-990, 0}, {0, 1234567890}, {-2147483647, 2147483646}};
        const auto [min, max] = BOUNDS[below(std::size(BOUNDS))];
        const int third = static_cast<int>((int64_t{max} - min) / 3);
        const std::string low = std::to_string(min) + ".." + std::to_string(min + third);
        std::string members;
        const bool has_gap = below(3) == 0;
        const bool is_narrowed = below(2) == 0;
        const bool warns = below(4) == 0;
        const int limit = min + third + third / 2;
        Rules rules;
        if (is_narrowed) {
            rules.add("range " + low + " if [mode] == 1");
        }
        if (warns) {
            rules.add("warn \\\"W {value}\\\" if value > " + std::to_string(limit));
        }
        std::optional<std::pair<size_t, int>> written;
        if (below(4) == 0) {
            written = written_by_rule(rules);
        }
        if (below(4) == 0) {
            members += R"(, "editor": {"preview": true})";
        }
        if (has_gap) {
            members += R"(, "ranges": [{"min": )" + std::to_string(min) + R"(, "max": )" +
                       std::to_string(min + third) + R"(}, {"min": )" +
                       std::to_string(max - third) + R"(, "max": )" + std::to_string(max) + "}]";
        }
        const bool is_locked = add_common(rules);
        add_number(parameter, pid, min, max, below(formats().size()), members + rules.member());
        Item& item = m_items.back();
        item.is_locked_in_mode_1 = is_locked;
        if (has_gap) {
            item.allowed = {{min, min + third}, {max - third, max}};
        }
        if (is_narrowed) {
            item.allowed_in_mode_1 = {{min, min + third}};
        }
        if (warns) {
            item.warns_above = limit;
        }
        if (written) {
            m_items[written->first].set_in_mode_2 = written->second;
        }
    }

    struct Rules {
        std::string text;
        void add(const std::string& rule) { text += (text.empty() ? "" : "; ") + rule; }
        std::string member() const { return text.empty() ? "" : R"(, "binding": ")" + text + "\""; }
    };

    // Rules that any item may have. Whether the item is read only in mode 1.
    bool add_common(Rules& rules) {
        if (below(4) == 0) {
            rules.add("visible if [mode] != 2");
        }
        const bool is_locked = below(3) == 0;
        if (is_locked) {
            rules.add("access read-only if [mode] == 1");
        }
        return is_locked;
    }

    // A rule that writes a number of an earlier item, by its place; nothing when there is none.
    std::optional<std::pair<size_t, int>> written_by_rule(Rules& rules) {
        for (size_t i = 1; i < m_items.size(); ++i) {
            const Item& item = m_items[i];
            if (!item.is_text && !item.set_in_mode_2) {
                const int value = number_between(item.min, item.max);
                rules.add("set [" + parameter_name(item.pid) + "] = " + std::to_string(value) +
                          " if [mode] == 2");
                return std::pair(i, value);
            }
        }
        return std::nullopt;
    }

    // Of numbers and choices, allowed or not.
    void add_preset() {
        Preset_values values;
        for (const Item& item : m_items) {
            if (!item.is_text && below(5) == 0) {
                const auto& part = item.allowed[below(item.allowed.size())];
                values.emplace_back(item.pid, below(4) == 0
                                                  ? number_between(item.min, item.max)
                                                  : number_between(part.first, part.second));
            }
        }
        if (values.empty()) {
            values.emplace_back(MODE_PID, 1);
        }
        m_presets.push_back(values);
    }

    void add_choice(const std::string& parameter, uint32_t pid) {
        const std::vector<std::string> texts{"w", "Input 1", "as the reference is 25", "z"};
        const int last = static_cast<int>(texts.size()) - 1;
        const size_t hidden = below(texts.size() + 1);  // by the product; the last value: none
        std::string choices;
        for (size_t key = 0; key < texts.size(); ++key) {
            choices += key == 0 ? "" : ",";
            choices += key == hidden ? R"({"text": ")" + texts[key] + R"(", "options": ["gps"]})"
                                     : "\"" + texts[key] + "\"";
        }
        add_parameter(parameter, pid,
                      R"("type": "integer", "min": 0, "max": 3, "value": )" +
                          std::to_string(hidden == 0 ? 1 : 0));
        const std::string name = next_name();
        const auto [keys, left] = std::array<std::pair<const char*, Intervals>, 3>{
            {{"", {}},
             {"keys 2..3 if [mode] == 1", {{2, 3}}},
             {"keys 0, 3 if [mode] == 1", {{0, 0}, {3, 3}}}}}[below(3)];
        Rules rules;
        if (*keys != '\0') {
            rules.add(keys);
        }
        const bool is_locked = add_common(rules);
        add_item_text("enum", name, parameter,
                      R"(, "choices": [)" + choices + "]" + rules.member());
        Item& item = m_items.emplace_back();
        item.pid = pid;
        item.name = name;
        item.max = last;
        for (int key = 0; key <= last; ++key) {
            if (static_cast<size_t>(key) != hidden) {
                item.allowed.emplace_back(key, key);
            }
        }
        if (*keys != '\0') {
            item.allowed_in_mode_1 = left;
        }
        item.is_locked_in_mode_1 = is_locked;
        item.text = [pid, texts](Memory_device& device) {
            return texts.at(static_cast<size_t>(device.integer(pid, 0).value()));
        };
    }

    // Slots without a product show their number.
    void add_slot(const std::string& parameter, uint32_t pid) {
        add_parameter(parameter, pid, R"("type": "integer", "min": 0, "max": 14, "value": 0)");
        const std::string name = next_name();
        add_item_text("slot", name, parameter, "");
        Item& item = m_items.emplace_back();
        item.pid = pid;
        item.name = name;
        item.max = 14;
        item.allowed = {{0, 14}};
        item.text = [pid](Memory_device& device) {
            const int slot = device.integer(pid, 0).value();
            return std::to_string(slot + 1) + (slot == 2 ? ":RX200" : "");
        };
    }

    void add_text(const std::string& type, const std::string& parameter, uint32_t pid,
                  std::vector<std::string> texts) {
        if (type == "time") {
            texts = {"09:59", "2026-11-21", "2026-11-21 09:59:30"};
        } else if (type == "address") {
            texts = {"127.0.0.9", "192.168.100.200"};
        }
        add_parameter(parameter, pid,
                      R"("type": "text", "length": 22, "value": ")" + texts.front() + "\"");
        const std::string name = next_name();
        Rules rules;
        const bool is_locked = add_common(rules);
        add_item_text(type, name, parameter, rules.member());
        Item& item = m_items.emplace_back();
        item.pid = pid;
        item.is_text = true;
        item.name = name;
        item.is_locked_in_mode_1 = is_locked;
        item.text = [pid](Memory_device& device) {
            const std::string text = device.text(pid, 0).value();
            return text.substr(0, text.find_last_not_of(' ') + 1);
        };
        item.texts = std::move(texts);
    }

    std::mt19937 m_random;
    std::string m_parameters;
    std::string m_items_text;
    std::vector<Item> m_items;
    std::vector<std::string> m_targets;  // names of what a link can show
    std::vector<Preset_values> m_presets;
};

// How many random menus a test tries: FRONTPANEL_RANDOM_MENUS, or `usual`.
inline uint32_t random_menu_count(uint32_t usual) {
    const char* const wanted = std::getenv("FRONTPANEL_RANDOM_MENUS");
    return wanted != nullptr ? static_cast<uint32_t>(std::strtoul(wanted, nullptr, 10)) : usual;
}

}  // namespace frontpanel

#endif
