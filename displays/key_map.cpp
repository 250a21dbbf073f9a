#include <frontpanel_displays/key_map.h>

#include <algorithm>
#include <optional>

#include <frontpanel_base/input_error.h>
#include <frontpanel_base/numbers.h>
#include <frontpanel_display/key_table.h>

namespace frontpanel {
namespace {

constexpr size_t LONGEST_NAME = 40;
constexpr size_t MOST_KEYS = 32;  // a server takes no more with one command

// Of a word of the keys, or of the number of a shortcut button.
std::optional<Key> key_of(const std::string& text) {
    if (const std::optional<Key::Kind> kind = key_of_word(text)) {
        return Key{*kind};
    }
    const std::optional<int> button = parse_number(text, FIRST_SHORTCUT, LAST_SHORTCUT);
    return button ? std::optional<Key>(Key{Key::SHORTCUT, *button}) : std::nullopt;
}

bool is_name(const std::string& name) {
    const auto is_graphic = [](char byte) { return byte > ' ' && byte <= '~'; };
    return !name.empty() && name.size() <= LONGEST_NAME &&
           std::all_of(name.begin(), name.end(), is_graphic);
}

void add_key(Key_map& keys, const std::string& assignment) {
    const size_t middle = assignment.rfind('=');
    const std::string name = assignment.substr(0, middle);
    const std::optional<Key> key =
        middle == std::string::npos ? std::nullopt : key_of(assignment.substr(middle + 1));
    if (!key || !is_name(name)) {
        throw Input_error("expected KEY=" + key_words() + " or " + std::to_string(FIRST_SHORTCUT) +
                          " to " + std::to_string(LAST_SHORTCUT) + ", found \"" + assignment +
                          "\"");
    }
    if (!keys.insert({name, *key}).second) {
        throw Input_error("duplicate key \"" + name + "\"");
    }
}

}  // namespace

// A pad of six keys can do all of an editor: left and right move its cursor there.
Key_map usual_keys() {
    Key_map keys;
    for (const Key_row& row : KEY_TABLE) {
        if (row.is_usual) {
            keys[row.keyboard] = {row.kind};
        }
    }
    return keys;
}

Key_map parse_some_keys(const std::string& text) {
    Key_map keys;
    size_t start = 0;
    while (start <= text.size()) {
        const size_t end = std::min(text.find(',', start), text.size());
        add_key(keys, text.substr(start, end - start));
        start = end + 1;
    }
    if (keys.size() > MOST_KEYS) {
        throw Input_error("more than " + std::to_string(MOST_KEYS) + " keys");
    }
    return keys;
}

bool has_select(const Key_map& keys) {
    return std::any_of(keys.begin(), keys.end(),
                       [](const auto& entry) { return entry.second.kind == Key::SELECT; });
}

Key_map parse_key_map(const std::string& text) {
    Key_map keys = parse_some_keys(text);
    if (!has_select(keys)) {
        throw Input_error("no key selects");
    }
    return keys;
}

}  // namespace frontpanel
