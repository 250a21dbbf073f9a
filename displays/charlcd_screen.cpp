#include "charlcd_screen.h"

#include <algorithm>
#include <optional>

#include <frontpanel_base/character_set.h>

namespace frontpanel {
namespace {

// "\n" ends a sequence that another program began and did not end.
constexpr const char* END_OF_SEQUENCE = "\n";
constexpr const char* CLEAR = "\x1B[2J";
constexpr const char* DISPLAY_ON = "\x1B[LD";
constexpr const char* CURSOR_OFF = "\x1B[Lc";
constexpr const char* BLINK_ON = "\x1B[LB";
constexpr const char* BLINK_OFF = "\x1B[Lb";
constexpr const char* LIGHT_ON = "\x1B[L+";
constexpr const char* LIGHT_OFF = "\x1B[L-";

// Columns and rows are counted from 0.
std::string position(int row, int column) {
    return "\x1B[Lx" + std::to_string(column) + "y" + std::to_string(row) + ";";
}

// The rows of the character are two hexadecimal digits each, the upper one first.
std::string definition(size_t code, const Glyph& glyph) {
    constexpr const char* DIGITS = "0123456789abcdef";
    std::string sequence = "\x1B[LG" + std::to_string(code);
    for (const uint8_t row : glyph) {
        sequence += DIGITS[row >> 4U];
        sequence += DIGITS[row & 0xFU];
    }
    return sequence + ';';
}

template <typename Characters>
bool contains(const Characters& characters, char32_t character) {
    return std::find(characters.begin(), characters.end(), character) != characters.end();
}

}  // namespace

Charlcd_screen::Charlcd_screen(Lcd_size size, const Character_rom& rom)
    : m_size(size),
      m_rom(rom),
      m_lines(static_cast<size_t>(size.rows), std::string(static_cast<size_t>(size.columns), ' ')) {
}

std::string Charlcd_screen::setup() const {
    return std::string(END_OF_SEQUENCE) + DISPLAY_ON + CURSOR_OFF + BLINK_OFF + LIGHT_ON + CLEAR;
}

std::string Charlcd_screen::farewell() {
    return std::string(END_OF_SEQUENCE) + BLINK_OFF + CLEAR;
}

std::string Charlcd_screen::update(const Frame& frame) {
    std::string bytes = define_characters(frame.lcd);
    for (int row = 0; row < m_size.rows; ++row) {
        bytes += update_row(frame.lcd, row);
    }
    bytes += update_cursor(frame.lcd);
    if (frame.dim != m_dim) {
        m_dim = frame.dim;
        bytes += m_dim ? LIGHT_OFF : LIGHT_ON;
    }
    return bytes;
}

std::u32string Charlcd_screen::characters_of(const Lcd& lcd, int row) const {
    std::u32string characters = row < lcd.size().rows ? lcd.characters(row) : U"";
    characters.resize(static_cast<size_t>(m_size.columns), U' ');
    return characters;
}

// The characters of the frame that the display has to draw, as many as it can: at first those that have no plain form,
// then those that it has already.
std::vector<char32_t> Charlcd_screen::characters_to_draw(const Lcd& lcd) const {
    std::vector<char32_t> drawn;
    for (int row = 0; row < m_size.rows; ++row) {
        for (const char32_t character : characters_of(lcd, row)) {
            if (!m_rom.code_of(character) && !plain_form_of(character) &&
                glyph_of(character) != nullptr && !contains(drawn, character)) {
                drawn.push_back(character);
            }
        }
    }
    const auto rank = [this](char32_t character) {
        return !plain_letter_of(character) ? 0 : contains(m_defined, character) ? 1 : 2;
    };
    std::stable_sort(drawn.begin(), drawn.end(),
                     [rank](char32_t one, char32_t other) { return rank(one) < rank(other); });
    drawn.resize(std::min(drawn.size(), MOST_DEFINED));
    return drawn;
}

// What is defined stays where it is as long as it is shown: a code that changes its meaning changes all its cells.
std::string Charlcd_screen::define_characters(const Lcd& lcd) {
    const std::vector<char32_t> drawn = characters_to_draw(lcd);
    std::string bytes;
    for (const char32_t character : drawn) {
        if (contains(m_defined, character)) {
            continue;
        }
        auto* const free =
            std::find_if(m_defined.begin(), m_defined.end(),
                         [&drawn](char32_t defined) { return !contains(drawn, defined); });
        *free = character;
        bytes += definition(static_cast<size_t>(free - m_defined.begin()), *glyph_of(character));
    }
    return bytes;
}

char Charlcd_screen::code_of(char32_t character) {
    if (const std::optional<char> code = m_rom.code_of(character)) {
        return *code;
    }
    if (const std::optional<char> plain = plain_form_of(character)) {
        return *plain;
    }
    const auto* const defined = std::find(m_defined.begin(), m_defined.end(), character);
    if (defined != m_defined.end()) {
        return static_cast<char>(defined - m_defined.begin());
    }
    if (const std::optional<char> plain = plain_letter_of(character)) {
        return *plain;
    }
    m_lost.insert(character);
    return '?';
}

// What stays between two changes is sent again where that is shorter than a new position.
std::string Charlcd_screen::update_row(const Lcd& lcd, int row) {
    std::string line;
    for (const char32_t character : characters_of(lcd, row)) {
        line += code_of(character);
    }
    std::string& held = m_lines[static_cast<size_t>(row)];

    std::string bytes;
    for (size_t column = 0; column < line.size(); ++column) {
        if (line[column] == held[column]) {
            continue;
        }
        const auto target = static_cast<int>(column);
        const auto behind = static_cast<size_t>(m_column);
        const bool is_near =
            m_row == row && behind <= column && column - behind < position(row, target).size();
        bytes += is_near ? line.substr(behind, column - behind) : position(row, target);
        bytes += line[column];
        m_row = row;
        m_column = target + 1;
    }
    held = std::move(line);
    return bytes;
}

std::string Charlcd_screen::update_cursor(const Lcd& lcd) {
    const bool blinks = lcd.cursor_row() >= 0 && lcd.cursor_row() < m_size.rows &&
                        lcd.cursor_column() < m_size.columns;
    std::string bytes = blinks ? move_to(lcd.cursor_row(), lcd.cursor_column()) : "";
    if (blinks != m_blinks) {
        m_blinks = blinks;
        bytes += blinks ? BLINK_ON : BLINK_OFF;
    }
    return bytes;
}

std::string Charlcd_screen::move_to(int row, int column) {
    if (row == m_row && column == m_column) {
        return "";
    }
    m_row = row;
    m_column = column;
    return position(row, column);
}

}  // namespace frontpanel
