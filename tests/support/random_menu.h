// A menu of every kind of item that shows a value, with random formats, ranges, choices and rules, and what each of its
// items must show for what the device holds.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_RANDOM_MENU_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_RANDOM_MENU_H

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <frontpanel_display/key.h>
#include <frontpanel_simulator/memory_device.h>

namespace frontpanel {

// The same menu for the same seed.
class Random_menu {
public:
    static constexpr uint32_t MODE_PID = 1;
    static constexpr int LAST_MODE = 2;

    struct Item {
        uint32_t pid;
        bool is_text;
        std::string name;  // one letter, repeated: it is known by any part of it
        int min;
        int max;
        std::vector<std::pair<int, int>> allowed;         // of a number, by the item; empty for all
        std::function<std::string(Memory_device&)> text;  // that the item must show
        std::vector<std::string> texts;                   // that a device may hold
    };

    explicit Random_menu(uint32_t seed) : m_random(seed) {
        add_number("mode", MODE_PID, 0, LAST_MODE, 0, "");
        for (int i = 0; i < 12; ++i) {
            add_item();
        }
        m_items_text +=
            R"(,{"type": "node", "name": "Z", "items": [{"type": "range", "name": "Y", "parameter": "mode"}]})";
    }

    std::string text() const {
        return R"({"options": {"gps": 0, "modem": 1}, "device": {"parameters": [)" + m_parameters +
               R"(]}, "menu": {"name": "Main", "items": [)" + m_items_text + "]}}";
    }
    const std::vector<Item>& items() const { return m_items; }
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
        constexpr Key::Kind KINDS[] = {Key::UP,      Key::DOWN,   Key::DOWN,
                                       Key::DOWN,    Key::SELECT, Key::SELECT,
                                       Key::COARSER, Key::FINER,  Key::BACK};
        return {KINDS[below(std::size(KINDS))], 0};
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
    struct Format {
        const char* members;
        std::string (*text)(int value);
    };

    static std::string tenths(int value) {
        std::array<char, 64> text{};
        std::snprintf(text.data(), text.size(), "%.1f dB", value / 10.0);
        return text.data();
    }
    static const std::vector<Format>& formats() {
        static const std::vector<Format> FORMATS{
            {"", [](int value) { return std::to_string(value); }},
            {R"(, "format": "%d Hz")", [](int value) { return std::to_string(value) + " Hz"; }},
            {R"(, "format": "Frequency %d Hz now")",
             [](int value) { return "Frequency " + std::to_string(value) + " Hz now"; }},
            {R"(, "format": "%.1f dB", "value_format": "v/10")", tenths},
            {R"(, "format": "0:off,1:on,5:as the reference is,%d")",
             [](int value) {
                 return value == 0   ? "off"
                        : value == 1 ? "on"
                        : value == 5 ? "as the reference is"
                                     : std::to_string(value);
             }},
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
        m_items_text += (m_items_text.empty() ? "" : ",") + (R"({"type": ")" + type) +
                        R"(", "name": ")" + name + R"(", "parameter": ")" + parameter + "\"" +
                        members + "}";
    }

    void add_number(const std::string& parameter, uint32_t pid, int min, int max, size_t format,
                    const std::string& members) {
        add_parameter(parameter, pid,
                      R"("type": "integer", "min": )" + std::to_string(min) + R"(, "max": )" +
                          std::to_string(max) + R"(, "value": )" + std::to_string(min));
        const std::string name = next_name();
        add_item_text("range", name, parameter, formats()[format].members + members);
        m_items.push_back({pid,
                           false,
                           name,
                           min,
                           max,
                           {},
                           [pid, text = formats()[format].text](Memory_device& device) {
                               return text(device.integer(pid, 0).value());
                           },
                           {}});
    }

    void add_item() {
        const auto pid = static_cast<uint32_t>(10 + m_items.size());
        const std::string parameter = "p" + std::to_string(pid);
        switch (below(6)) {
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
        if (has_gap) {
            members = R"(, "ranges": [{"min": )" + std::to_string(min) + R"(, "max": )" +
                      std::to_string(min + third) + R"(}, {"min": )" + std::to_string(max - third) +
                      R"(, "max": )" + std::to_string(max) + "}]";
        }
        add_number(parameter, pid, min, max, below(formats().size()),
                   members + binding(below(2) == 0 ? "range " + low + " if [mode] == 1" : ""));
        if (has_gap) {
            m_items.back().allowed = {{min, min + third}, {max - third, max}};
        }
    }

    // Rules that any item may have, behind one of its own.
    std::string binding(std::string rules) {
        const auto add = [&rules](const std::string& rule) {
            rules += (rules.empty() ? "" : "; ") + rule;
        };
        if (below(4) == 0) {
            add("visible if [mode] != 2");
        }
        if (below(3) == 0) {
            add("access read-only if [mode] == 1");
        }
        return rules.empty() ? "" : R"(, "binding": ")" + rules + "\"";
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
        const char* const KEYS[] = {"", "keys 2..3 if [mode] == 1", "keys 0, 3 if [mode] == 1"};
        add_item_text("enum", name, parameter,
                      R"(, "choices": [)" + choices + "]" + binding(KEYS[below(3)]));
        m_items.push_back({pid,
                           false,
                           name,
                           0,
                           last,
                           {},
                           [pid, texts](Memory_device& device) {
                               return texts.at(static_cast<size_t>(device.integer(pid, 0).value()));
                           },
                           {}});
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
        add_item_text(type, name, parameter, binding(""));
        m_items.push_back({pid,
                           true,
                           name,
                           0,
                           0,
                           {},
                           [pid](Memory_device& device) {
                               const std::string text = device.text(pid, 0).value();
                               return text.substr(0, text.find_last_not_of(' ') + 1);
                           },
                           texts});
    }

    std::mt19937 m_random;
    std::string m_parameters;
    std::string m_items_text;
    std::vector<Item> m_items;
};

// How many random menus a test tries: FRONTPANEL_RANDOM_MENUS, or `usual`.
inline uint32_t random_menu_count(uint32_t usual) {
    const char* const wanted = std::getenv("FRONTPANEL_RANDOM_MENUS");
    return wanted != nullptr ? static_cast<uint32_t>(std::strtoul(wanted, nullptr, 10)) : usual;
}

}  // namespace frontpanel

#endif
