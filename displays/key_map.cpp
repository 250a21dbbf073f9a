#include <frontpanel_displays/key_map.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

constexpr int LAST_BUTTON = 99;
constexpr size_t LONGEST_NAME = 40;
constexpr size_t MOST_KEYS = 32;  // a server takes no more with one command

struct Key_word {
    const char* word;
    Key::Kind kind;
};
constexpr Key_word KEY_WORDS[] = {
    {"up", Key::UP},         {"down", Key::DOWN},       {"select", Key::SELECT},
    {"back", Key::BACK},     {"coarser", Key::COARSER}, {"finer", Key::FINER},
    {"left", Key::LEFT},     {"right", Key::RIGHT},     {"erase", Key::ERASE},
    {"insert", Key::INSERT}, {"delete", Key::DELETE},   {"diagnostics", Key::DIAGNOSTICS},
};

std::optional<Key> key_of(const std::string& word) {
    for (const Key_word& known : KEY_WORDS) {
        if (word == known.word) {
            return Key{known.kind};
        }
    }
    int button = 0;
    const char* const end = word.data() + word.size();
    const auto [stopped, error] = std::from_chars(word.data(), end, button);
    if (error != std::errc() || stopped != end || button < 1 || button > LAST_BUTTON) {
        return std::nullopt;
    }
    return Key{Key::SHORTCUT, button};
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
        throw Input_error(
            "expected KEY=up, down, left, right, select, back, coarser, finer, insert, delete, erase, diagnostics or "
            "1 to 99, found \"" +
            assignment + "\"");
    }
    if (!keys.insert({name, *key}).second) {
        throw Input_error("key \"" + name + "\" is there twice");
    }
}

}  // namespace

// A pad of six keys can do all of an editor: left and right move its cursor there.
Key_map usual_keys() {
    return parse_key_map("Up=up,Down=down,Enter=select,Escape=back,Left=left,Right=right");
}

Key_map parse_key_map(const std::string& text) {
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
    const auto selects = [](const auto& entry) { return entry.second.kind == Key::SELECT; };
    if (std::none_of(keys.begin(), keys.end(), selects)) {
        throw Input_error("no key selects");
    }
    return keys;
}

}  // namespace frontpanel
