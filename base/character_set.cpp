#include <frontpanel_base/character_set.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "code_blocks.h"
#include "composition.h"

namespace frontpanel {
namespace {

constexpr char UNKNOWN = '?';
constexpr char32_t LARGEST = 0x10FFFF;

constexpr std::pair<char32_t, char> PLAIN_FORMS[] = {
    {0x2010, '-'},  {0x2011, '-'},  {0x2012, '-'}, {0x2013, '-'}, {0x2014, '-'},
    {0x2018, '\''}, {0x2019, '\''}, {0x201C, '"'}, {0x201D, '"'}, {0x2212, '-'},
};

// The characters between these blocks are combining, wide, invisible, or written from right to left.
constexpr Code_block ONE_COLUMN[] = {
    {0x20, 0x7E},     {0xA0, 0xAC},     {0xAE, 0x2FF},    {0x370, 0x377},   {0x37A, 0x37F},
    {0x384, 0x482},   {0x48A, 0x52F},   {0x1E00, 0x1EFF}, {0x2010, 0x2027}, {0x2030, 0x205E},
    {0x2070, 0x20BF}, {0x2100, 0x218B}, {0x2190, 0x2319}, {0x231C, 0x2328}, {0x232B, 0x23E8},
    {0x2500, 0x25FC}, {0x25FF, 0x2613}, {0x2616, 0x2647}, {0x2654, 0x267E}, {0x2701, 0x2704},
    {0x2706, 0x2709}, {0x270C, 0x2727}, {0xFF61, 0xFF9F},
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

char cell_of(char32_t character, std::set<char32_t>& lost) {
    if (has_cell(character)) {
        return static_cast<char>(character);
    }
    if (const std::optional<char> plain = plain_form_of(character)) {
        return *plain;
    }
    if (character != DAMAGED) {
        lost.insert(character);
    }
    for (auto base = base_letter_of(character); base; base = base_letter_of(*base)) {
        if (has_cell(*base)) {
            return static_cast<char>(*base);
        }
    }
    return UNKNOWN;
}

}  // namespace

std::u32string characters_of(std::string_view text) {
    std::u32string characters;
    characters.reserve(text.size());
    while (!text.empty()) {
        characters += take_character(text);
    }
    return characters;
}

std::size_t size_of_column(std::string_view text) {
    const std::size_t size = text.size();
    take_character(text);
    for (std::string_view rest = text; !rest.empty() && is_combining(take_character(rest));) {
        text = rest;
    }
    return size - text.size();
}

std::u32string columns_of(std::string_view text, std::set<char32_t>& lost) {
    std::u32string columns;
    columns.reserve(text.size());
    while (!text.empty()) {
        const std::size_t size = size_of_column(text);
        columns += composed(characters_of(text.substr(0, size)), lost);
        text.remove_prefix(size);
    }
    return columns;
}

std::string utf8_of(char32_t character) {
    const auto byte = [](char32_t bits) { return static_cast<char>(bits); };
    const auto following = [&](unsigned shift) {
        return byte(0x80U | (character >> shift & 0x3FU));
    };
    if (character < 0x80) {
        return {byte(character)};
    }
    if (character < 0x800) {
        return {byte(0xC0U | character >> 6U), following(0)};
    }
    if (character < 0x10000) {
        return {byte(0xE0U | character >> 12U), following(6), following(0)};
    }
    return {byte(0xF0U | character >> 18U), following(12), following(6), following(0)};
}

bool is_control(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

std::optional<char> plain_form_of(char32_t character) {
    for (const auto& [known, plain] : PLAIN_FORMS) {
        if (character == known) {
            return plain;
        }
    }
    return std::nullopt;
}

std::string cells_of(const std::u32string& columns, std::set<char32_t>& lost) {
    std::string cells;
    cells.reserve(columns.size());
    for (const char32_t character : columns) {
        cells += cell_of(character, lost);
    }
    return cells;
}

std::string cells_of(std::string_view text, std::set<char32_t>& lost) {
    return cells_of(columns_of(text, lost), lost);
}

bool has_one_column(char32_t character) {
    return is_in(ONE_COLUMN, character);
}

std::string text_in_columns(const std::u32string& characters) {
    std::string text;
    for (const char32_t character : characters) {
        text += has_one_column(character) ? utf8_of(character) : std::string(1, UNKNOWN);
    }
    return text;
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
