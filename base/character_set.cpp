#include <frontpanel_base/character_set.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>

namespace frontpanel {
namespace {

constexpr char UNKNOWN = '?';
constexpr char32_t DAMAGED = 0xFFFFFFFF;
constexpr char32_t LARGEST = 0x10FFFF;

constexpr std::pair<char32_t, char> PLAIN_FORMS[] = {
    {0x2010, '-'},  {0x2011, '-'},  {0x2012, '-'}, {0x2013, '-'}, {0x2014, '-'},
    {0x2018, '\''}, {0x2019, '\''}, {0x201C, '"'}, {0x201D, '"'}, {0x2212, '-'},
};

struct Lead {
    unsigned char mask;
    unsigned char value;
    unsigned char following;
    char32_t smallest;  // a longer form than needed is damaged
};
constexpr Lead LEADS[] = {
    {0x80, 0x00, 0, 0x0}, {0xE0, 0xC0, 1, 0x80}, {0xF0, 0xE0, 2, 0x800}, {0xF8, 0xF0, 3, 0x10000}};

bool is_surrogate(char32_t character) {
    return character >= 0xD800 && character <= 0xDFFF;
}

// The character that begins the text, which it is taken from; of a damaged one only a byte is taken.
char32_t take_character(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    for (const Lead& lead : LEADS) {
        if ((first & lead.mask) != lead.value || text.size() < lead.following) {
            continue;
        }
        char32_t character = first & static_cast<unsigned char>(~lead.mask);
        for (size_t i = 0; i < lead.following; ++i) {
            const auto next = static_cast<unsigned char>(text[i]);
            if ((next & 0xC0U) != 0x80U) {
                return DAMAGED;
            }
            character = character << 6U | (next & 0x3FU);
        }
        if (character < lead.smallest || character > LARGEST || is_surrogate(character)) {
            return DAMAGED;
        }
        text.remove_prefix(lead.following);
        return character;
    }
    return DAMAGED;
}

bool has_cell(char32_t character) {
    return (character >= 0x20 && character <= 0x7E) || (character >= 0xA0 && character <= 0xFF);
}

bool is_control(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

char cell_of(char32_t character, std::set<char32_t>& lost) {
    if (has_cell(character)) {
        return static_cast<char>(character);
    }
    for (const auto& [known, plain] : PLAIN_FORMS) {
        if (character == known) {
            return plain;
        }
    }
    if (character != DAMAGED) {
        lost.insert(character);
    }
    return UNKNOWN;
}

}  // namespace

std::string cells_of(std::string_view text, std::set<char32_t>& lost) {
    std::string cells;
    cells.reserve(text.size());
    while (!text.empty()) {
        cells += cell_of(take_character(text), lost);
    }
    return cells;
}

std::string text_of(std::string_view cells) {
    std::string text;
    for (const char cell : cells) {
        const auto byte = static_cast<unsigned char>(cell);
        if (!has_cell(byte)) {
            text += UNKNOWN;
        } else if (byte < 0x80U) {
            text += cell;
        } else {
            text += static_cast<char>(0xC0U | byte >> 6U);
            text += static_cast<char>(0x80U | (byte & 0x3FU));
        }
    }
    return text;
}

std::string printable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::string_view before = text;
        const char32_t character = take_character(text);
        const std::string_view taken = before.substr(0, before.size() - text.size());
        const char32_t shown =
            character == DAMAGED ? static_cast<unsigned char>(taken.front()) : character;
        if (shown == '\t') {
            result += ' ';
        } else if (is_control(shown)) {
            result += UNKNOWN;
        } else {
            result += taken;
        }
    }
    return result;
}

std::string code_point_name(char32_t character) {
    std::array<char, 16> name{};
    std::snprintf(name.data(), name.size(), "U+%04lX", static_cast<unsigned long>(character));
    return name.data();
}

}  // namespace frontpanel
