#include <frontpanel_base/character_set.h>
#include <frontpanel_editors/line_text.h>
#include <frontpanel_editors/still_texts.h>
#include <frontpanel_editors/value_editor.h>

#include <algorithm>
#include <cctype>
#include <utility>

namespace frontpanel {
namespace {

constexpr int HOLD_CALLS = 2;
constexpr std::size_t GAP = 3;
constexpr const char* BLANK = " ";
constexpr const char* GOES_ON_LEFT = "<";
constexpr const char* GOES_ON_RIGHT = ">";
// A line of fewer columns would show little more than the marks.
constexpr std::size_t LEAST_COLUMNS_WITH_MARKS = 4;

using Characters = std::vector<std::string>;

Characters characters_in(std::string_view text) {
    Characters characters;
    while (!text.empty()) {
        const std::size_t length = size_of_column(text);
        characters.emplace_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return characters;
}

bool is_digit(const std::string& character) {
    return std::isdigit(static_cast<unsigned char>(character.front())) != 0;
}

struct Word {
    std::size_t begin;
    std::size_t end;
};

// The word at a character; empty at a blank.
Word word_at(const Characters& text, std::size_t at) {
    Word word{at, at};
    while (word.begin > 0 && text[word.begin - 1] != BLANK) {
        --word.begin;
    }
    while (word.end < text.size() && text[word.end] != BLANK) {
        ++word.end;
    }
    return word;
}

// Whether a line that ends or begins in front of a character cuts a word with a digit.
bool cuts_number(const Characters& text, std::size_t at) {
    if (at == 0 || at >= text.size() || text[at] == BLANK || text[at - 1] == BLANK) {
        return false;
    }
    const Word word = word_at(text, at);
    return std::any_of(text.begin() + static_cast<std::ptrdiff_t>(word.begin),
                       text.begin() + static_cast<std::ptrdiff_t>(word.end), is_digit);
}

// The part of a text from a character on. A scrolling text follows itself after a gap.
std::string part_of(const Characters& text, std::size_t start, std::size_t columns,
                    bool goes_round) {
    const std::size_t cycle = text.size() + GAP;
    const std::size_t count = goes_round ? columns : std::min(columns, text.size() - start);
    std::string part;
    for (std::size_t column = 0; column < count; ++column) {
        const std::size_t at = goes_round ? (start + column) % cycle : start + column;
        const bool is_first = column == 0;
        const bool is_last = column + 1 == columns;
        if (columns >= LEAST_COLUMNS_WITH_MARKS && is_first && cuts_number(text, at)) {
            part += GOES_ON_LEFT;
        } else if (columns >= LEAST_COLUMNS_WITH_MARKS && is_last && cuts_number(text, at + 1)) {
            part += GOES_ON_RIGHT;
        } else {
            part += at < text.size() ? text[at] : BLANK;
        }
    }
    return part;
}

// A long word on several lines. The marks where it is cut replace characters, so the next line begins two characters
// earlier.
std::vector<std::string> parts_of(const Characters& word, int columns) {
    const auto width = static_cast<std::size_t>(std::max(1, columns));
    const bool has_marks = width >= LEAST_COLUMNS_WITH_MARKS && cuts_number(word, 1);
    const std::size_t advance = has_marks ? width - 2 : width;
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (; start + width < word.size(); start += advance) {
        parts.push_back(part_of(word, start, width, false));
    }
    parts.push_back(part_of(word, start, width, false));
    return parts;
}

std::vector<std::string> words_in(std::string_view text) {
    std::vector<std::string> words;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        if (end > begin) {
            words.emplace_back(text.substr(begin, end - begin));
        }
        begin = end + 1;
    }
    return words;
}

bool ends_in_digit(const std::string& word) {
    return std::isdigit(static_cast<unsigned char>(word.back())) != 0;
}

// Whether the second word goes on with the digits of the first, as in "1 000 000".
bool continues_number(const std::string& word, const std::string& next) {
    constexpr std::size_t GROUP = 3;
    const std::size_t digits = std::min(next.find_first_not_of("0123456789"), next.size());
    return ends_in_digit(word) && digits == GROUP;
}

// Whether the second word begins with the unit of the first, as in "0 dB..80 dB".
bool begins_with_unit(const std::string& word, const std::string& next) {
    constexpr int LONGEST_UNIT = 3;
    const auto is_of_unit = [](char byte) {
        const auto code = static_cast<unsigned char>(byte);
        return std::isalpha(code) != 0 || byte == '%' || code > 0x7F;
    };
    const std::string unit(next.begin(), std::find_if_not(next.begin(), next.end(), is_of_unit));
    return ends_in_digit(word) && !unit.empty() && width_of(unit) <= LONGEST_UNIT;
}

// Takes the word at `at` and those that belong to it from the text, as far as a line has room for them: a number whose
// second half or unit is on another page would be read as another value. Where there is no room, marks show that the
// number goes on.
std::string group_at(std::vector<std::string>& words, std::size_t& at, int columns) {
    const auto goes_on = [&words](std::size_t next) {
        return next < words.size() && continues_number(words[next - 1], words[next]);
    };
    std::string group = words[at++];
    for (; goes_on(at) || (at < words.size() && begins_with_unit(words[at - 1], words[at])); ++at) {
        const int mark = goes_on(at + 1) ? 1 : 0;
        if (width_of(group) + 1 + width_of(words[at]) + mark > columns) {
            break;
        }
        group.append(BLANK).append(words[at]);
    }
    if (goes_on(at) && columns >= static_cast<int>(LEAST_COLUMNS_WITH_MARKS)) {
        group += GOES_ON_RIGHT;
        words[at].insert(0, GOES_ON_LEFT);
    }
    return group;
}

}  // namespace

int width_of(std::string_view text) {
    int width = 0;
    for (; !text.empty(); text.remove_prefix(size_of_column(text))) {
        ++width;
    }
    return width;
}

std::string start_of(std::string_view text, int columns) {
    return part_of(characters_in(text), 0, static_cast<std::size_t>(std::max(0, columns)), false);
}

std::string rest_of(std::string_view text, int columns) {
    for (int column = 0; column < columns && !text.empty(); ++column) {
        text.remove_prefix(size_of_column(text));
    }
    return std::string(text);
}

std::vector<std::string> wrapped(std::string_view text, int columns) {
    std::vector<std::string> words = words_in(text);
    std::vector<std::string> all;
    for (std::size_t at = 0; at < words.size();) {
        const std::string group = group_at(words, at, columns);
        if (!all.empty() && width_of(all.back()) + 1 + width_of(group) <= columns) {
            all.back() += BLANK + group;
            continue;
        }
        for (std::string& part : parts_of(characters_in(group), columns)) {
            all.push_back(std::move(part));
        }
    }
    return all;
}

void Scrolling_text::take(std::string text) {
    m_text = std::move(text);
    m_text.erase(m_text.find_last_not_of(' ') + 1);
    m_characters = characters_in(m_text);
}

void Scrolling_text::set(std::string text) {
    take(std::move(text));
    m_offset = 0;
    m_held = HOLD_CALLS;
}

void Scrolling_text::update(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    if (text != m_text) {
        set(std::move(text));
    }
}

void Scrolling_text::follow(std::string text) {
    if (m_text.empty()) {
        set(std::move(text));
        return;
    }
    take(std::move(text));
    if (m_offset >= m_characters.size() + GAP) {
        m_offset = 0;
        m_held = HOLD_CALLS;
    }
}

std::string Scrolling_text::show(int columns) {
    const auto width = static_cast<std::size_t>(std::max(0, columns));
    if (m_characters.size() <= width) {
        m_offset = 0;
        m_held = HOLD_CALLS;
        return m_text;
    }
    std::string shown = part_of(m_characters, m_offset, width, true);
    if (Still_texts::are_still()) {
        return shown;
    }
    if (m_held > 0) {
        --m_held;
        return shown;
    }
    m_offset = (m_offset + 1) % (m_characters.size() + GAP);
    m_held = m_offset == 0 ? HOLD_CALLS : 0;
    return shown;
}

void show_with_cursor(const std::string& text, std::size_t cursor, int columns,
                      Editor_view& shown) {
    const auto width = static_cast<std::size_t>(columns);
    const Characters characters = characters_in(text);
    const std::size_t place =
        characters_in(std::string_view(text).substr(0, cursor + 1)).size() - 1;
    const Word word = word_at(characters, place);
    const bool has_room = word.end > place && word.end - word.begin <= width;
    std::size_t end = std::max(has_room ? word.end : place + 1, width);
    // The mark of a word that goes on would stand in the cursor's place.
    if (width >= LEAST_COLUMNS_WITH_MARKS && place + 1 == end && cuts_number(characters, end)) {
        ++end;
    }
    const std::size_t start = std::min(end - width, characters.size());
    shown.text = part_of(characters, start, width, false);
    shown.cursor = static_cast<int>(place - start);
}

}  // namespace frontpanel
