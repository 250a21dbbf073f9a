#include <frontpanel_display/legend.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include <frontpanel_display/key_table.h>

namespace frontpanel {
namespace {

constexpr const char* SHORTCUTS = "shortcuts";
constexpr int LAST_DIGIT = 9;
constexpr int LAST_FUNCTION_KEY = 12;
constexpr const char* ALL_SHORTCUT_KEYS = "1-9/F1-F12";  // in place of a longer list with gaps

// What a key does in a mode. The key is the one that is meant: see `Key_row`.
struct Use {
    Panel_mode mode;
    Key::Kind key;
    const char* use;
};

// In the order of the legend; keys that do the same stand together.
constexpr Use USES[] = {
    {Panel_mode::HOMESCREEN, Key::UP, "cursor"},
    {Panel_mode::HOMESCREEN, Key::DOWN, "cursor"},
    {Panel_mode::HOMESCREEN, Key::SELECT, "menu"},

    {Panel_mode::HOME_CURSOR, Key::UP, "move"},
    {Panel_mode::HOME_CURSOR, Key::DOWN, "move"},
    {Panel_mode::HOME_CURSOR, Key::SELECT, "open"},
    {Panel_mode::HOME_CURSOR, Key::BACK, "no cursor"},

    {Panel_mode::TOP_MENU, Key::UP, "move"},
    {Panel_mode::TOP_MENU, Key::DOWN, "move"},
    {Panel_mode::TOP_MENU, Key::SELECT, "open"},

    {Panel_mode::MENU, Key::UP, "move"},
    {Panel_mode::MENU, Key::DOWN, "move"},
    {Panel_mode::MENU, Key::SELECT, "open"},
    {Panel_mode::MENU, Key::BACK, "back"},

    {Panel_mode::NUMBER, Key::UP, "change"},
    {Panel_mode::NUMBER, Key::DOWN, "change"},
    {Panel_mode::NUMBER, Key::COARSER, "larger step"},
    {Panel_mode::NUMBER, Key::FINER, "smaller step"},
    {Panel_mode::NUMBER, Key::SELECT, "accept"},
    {Panel_mode::NUMBER, Key::BACK, "discard"},
    {Panel_mode::NUMBER, Key::ERASE, "erase"},

    {Panel_mode::OPTIONS, Key::UP, "change"},
    {Panel_mode::OPTIONS, Key::DOWN, "change"},
    {Panel_mode::OPTIONS, Key::SELECT, "accept"},
    {Panel_mode::OPTIONS, Key::BACK, "discard"},

    {Panel_mode::FIELDS, Key::UP, "change"},
    {Panel_mode::FIELDS, Key::DOWN, "change"},
    {Panel_mode::FIELDS, Key::COARSER, "field before"},
    {Panel_mode::FIELDS, Key::FINER, "next field"},
    {Panel_mode::FIELDS, Key::SELECT, "accept"},
    {Panel_mode::FIELDS, Key::BACK, "discard"},
    {Panel_mode::FIELDS, Key::ERASE, "erase"},

    {Panel_mode::TEXT, Key::UP, "change"},
    {Panel_mode::TEXT, Key::DOWN, "change"},
    {Panel_mode::TEXT, Key::COARSER, "cursor"},
    {Panel_mode::TEXT, Key::FINER, "cursor"},
    {Panel_mode::TEXT, Key::INSERT, "insert"},
    {Panel_mode::TEXT, Key::DELETE, "delete"},
    {Panel_mode::TEXT, Key::ERASE, "erase"},
    {Panel_mode::TEXT, Key::SELECT, "accept"},
    {Panel_mode::TEXT, Key::BACK, "discard"},

    {Panel_mode::VIEW, Key::SELECT, "back"},
    {Panel_mode::VIEW, Key::BACK, "back"},

    {Panel_mode::QUESTION, Key::SELECT, "yes"},
    {Panel_mode::QUESTION, Key::BACK, "no"},

    {Panel_mode::LOG, Key::UP, "scroll"},
    {Panel_mode::LOG, Key::DOWN, "scroll"},
    {Panel_mode::LOG, Key::COARSER, "to the left"},
    {Panel_mode::LOG, Key::FINER, "to the right"},
    {Panel_mode::LOG, Key::SELECT, "what is shown"},
    {Panel_mode::LOG, Key::BACK, "close"},

    {Panel_mode::LOG_LIST, Key::UP, "move"},
    {Panel_mode::LOG_LIST, Key::DOWN, "move"},
    {Panel_mode::LOG_LIST, Key::SELECT, "switch"},
    {Panel_mode::LOG_LIST, Key::BACK, "lines"},

    {Panel_mode::PIN, Key::UP, "digit"},
    {Panel_mode::PIN, Key::DOWN, "digit"},
    {Panel_mode::PIN, Key::SELECT, "take the digit"},
    {Panel_mode::PIN, Key::BACK, "back"},
};

// Modes in which any key does the same.
struct Any_key {
    Panel_mode mode;
    const char* use;
};
constexpr Any_key ANY_KEY[] = {
    {Panel_mode::NOTICE, "Any key acknowledges"},
    {Panel_mode::ASLEEP, "Any key wakes the panel"},
    {Panel_mode::LOCKED, "Any key asks for the PIN"},
};
// For a notice or a question on several pages.
constexpr const char* PAGES = "Up/Down page";
constexpr const char* ANY_OTHER_KEY = "Any other key acknowledges";

constexpr Panel_mode LAST_MODE = Panel_mode::PIN;

// A question about an edited value is not answered by a key that moves its cursor.
bool is_of_cursor(Panel_mode mode) {
    return mode == Panel_mode::NUMBER || mode == Panel_mode::OPTIONS ||
           mode == Panel_mode::FIELDS || mode == Panel_mode::TEXT || mode == Panel_mode::LOG ||
           mode == Panel_mode::QUESTION;
}

// Whether it may be on several pages.
bool has_text(Panel_mode mode) {
    return mode == Panel_mode::NOTICE || mode == Panel_mode::QUESTION;
}

bool is_in_menu(Panel_mode mode) {
    return mode == Panel_mode::HOMESCREEN || mode == Panel_mode::HOME_CURSOR ||
           mode == Panel_mode::TOP_MENU || mode == Panel_mode::MENU;
}

// An editor in which something can be typed erases it.
Key::Kind meant(const Key_row& row, Panel_mode mode) {
    const bool erases =
        mode == Panel_mode::TEXT || mode == Panel_mode::NUMBER || mode == Panel_mode::FIELDS;
    if (erases && row.kind == Key::ERASE) {
        return row.in_text;
    }
    return is_of_cursor(mode) ? row.at_cursor : row.in_list;
}

bool types(const char* keyboard, const std::string& characters) {
    const std::string name = keyboard;
    return name.size() == 1 && characters.find(name) != std::string::npos;
}

void add_key(std::string& keys, const std::string& label) {
    keys += (keys.empty() ? "" : "/") + label;
}

// Every key with this use: of several that do the same, each with those that count as it.
std::string keys_of(Panel_mode mode, const std::string& use, const std::string& characters) {
    std::string keys;
    for (const Use& meaning : USES) {
        if (meaning.mode != mode || meaning.use != use) {
            continue;
        }
        for (const bool is_itself : {true, false}) {
            for (const Key_row& row : KEY_TABLE) {
                const bool is_one =
                    meant(row, mode) == meaning.key && (row.kind == meaning.key) == is_itself;
                if (is_one && !types(row.keyboard, characters)) {
                    add_key(keys, row.label);
                }
            }
        }
    }
    return keys;
}

void add_uses(std::vector<std::string>& items, Panel_mode mode, const std::string& characters) {
    std::vector<std::string> done;
    for (const Use& meaning : USES) {
        const bool is_new = std::find(done.begin(), done.end(), meaning.use) == done.end();
        if (meaning.mode != mode || !is_new) {
            continue;
        }
        done.emplace_back(meaning.use);
        const std::string keys = keys_of(mode, meaning.use, characters);
        if (!keys.empty()) {
            items.push_back(keys + " " + meaning.use);
        }
    }
}

void add_key_of(std::vector<std::string>& items, Key::Kind kind, const std::string& characters,
                const char* use) {
    const Key_row* const row = row_of(kind);
    if (!types(row->keyboard, characters)) {
        items.push_back(std::string(row->label) + " " + use);
    }
}

// "1-3/7" for the numbers up to `last`, each with `prefix` before it.
std::string number_keys(const std::vector<int>& numbers, const std::string& prefix, int last) {
    std::string keys;
    for (auto number = numbers.begin(); number != numbers.end() && *number <= last; ++number) {
        const int first = *number;
        while (number + 1 != numbers.end() && *(number + 1) == *number + 1 &&
               *(number + 1) <= last) {
            ++number;
        }
        std::string range = prefix + std::to_string(first);
        if (*number != first) range.append("-").append(prefix).append(std::to_string(*number));
        add_key(keys, range);
    }
    return keys;
}

// Empty where no key of a keyboard is a shortcut.
std::string shortcut_keys(const std::vector<int>& numbers) {
    std::string keys = number_keys(numbers, "", LAST_DIGIT);
    const std::string function_keys = number_keys(numbers, "F", LAST_FUNCTION_KEY);
    if (!function_keys.empty()) {
        add_key(keys, function_keys);
    }
    return keys.size() <= std::strlen(ALL_SHORTCUT_KEYS) ? keys : ALL_SHORTCUT_KEYS;
}

void add_targets(std::vector<std::string>& items, const Key_uses& keys,
                 const std::string& characters) {
    const std::string shortcuts = shortcut_keys(keys.shortcuts);
    if (!shortcuts.empty()) {
        items.push_back(shortcuts + " " + SHORTCUTS);
    }
    if (keys.has_favourites) {
        add_key_of(items, Key::FAVOURITES, characters, "favourites");
    }
}

// Letters stand for every character, digits for themselves and the signs beside them.
std::string typed_item(const std::string& characters) {
    if (characters.find('a') != std::string::npos) {
        return "Letters, digits, signs type";
    }
    std::string item = "0-9";
    for (const char character : characters) {
        if (character < '0' || character > '9') {
            item += std::string(" ") + (character == ' ' ? "Space" : std::string(1, character));
        }
    }
    return item + " type";
}

}  // namespace

std::vector<std::string> legend_of(const Frame& frame, char quit) {
    return legend_of(frame.mode, frame.characters, frame.keys, quit);
}

std::vector<std::string> legend_of(Panel_mode mode, const std::string& characters,
                                   const Key_uses& keys, char quit) {
    std::vector<std::string> items;
    const bool turns_pages = keys.turns_pages && has_text(mode);
    if (turns_pages) {
        items.emplace_back(PAGES);
    }
    const auto* const any =
        std::find_if(std::begin(ANY_KEY), std::end(ANY_KEY),
                     [mode](const Any_key& known) { return known.mode == mode; });
    if (any != std::end(ANY_KEY)) {
        items.emplace_back(turns_pages ? ANY_OTHER_KEY : any->use);
    }
    add_uses(items, mode, characters);
    if (!characters.empty()) {
        items.push_back(typed_item(characters));
    }
    if (is_in_menu(mode)) {
        add_targets(items, keys, characters);
    }
    const bool has_log = mode != Panel_mode::LOG && mode != Panel_mode::LOG_LIST &&
                         mode != Panel_mode::ASLEEP && mode != Panel_mode::LOCKED &&
                         mode != Panel_mode::PIN;
    if (has_log) {
        add_key_of(items, Key::DIAGNOSTICS, characters, "log");
    }
    if (quit != '\0' && characters.find(quit) == std::string::npos) {
        items.push_back(std::string(1, quit) + " quit");
    }
    return items;
}

std::vector<std::string> folded(const std::vector<std::string>& items, int columns) {
    constexpr const char* GAP = "  ";
    std::vector<std::string> lines;
    for (const std::string& item : items) {
        const bool fits =
            !lines.empty() && lines.back().size() + 2 + item.size() <= static_cast<size_t>(columns);
        if (fits) {
            lines.back() += GAP + item;
        } else {
            lines.push_back(item);
        }
    }
    return lines;
}

int most_legend_lines(int columns, char quit) {
    const Key_uses uses{true, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, true};
    size_t most = 0;
    for (int mode = 0; mode <= static_cast<int>(LAST_MODE); ++mode) {
        for (const std::string& characters : {std::string(), std::string("0123456789-.")}) {
            most = std::max(
                most,
                folded(legend_of(static_cast<Panel_mode>(mode), characters, uses, quit), columns)
                    .size());
        }
    }
    return static_cast<int>(most);
}

std::string printable_characters() {
    std::string characters;
    for (char character = ' '; character <= '~'; ++character) {
        characters += character;
    }
    return characters;
}

}  // namespace frontpanel
