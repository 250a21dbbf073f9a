// The characters in the ROM of a display, and how others are shown: as a character that can be defined in the display,
// or in a plain form.
#ifndef FRONTPANEL_DISPLAYS_CHARACTER_ROM_H
#define FRONTPANEL_DISPLAYS_CHARACTER_ROM_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

namespace frontpanel {

// The rows of a character of 5x8 dots, top first; the right column is bit 0.
using Glyph = std::array<uint8_t, 8>;

class Character_rom {
public:
    // HD44780 with the ROMs A00 (Japanese) and A02 (European), and displays with ISO-8859-1. Codes that drivers treat
    // as controls are left out.
    static const Character_rom& a00();
    static const Character_rom& a02();
    static const Character_rom& iso_8859_1();

    const std::string& name() const { return m_name; }
    // Empty for a character that the ROM lacks.
    std::optional<char> code_of(char32_t character) const;

private:
    explicit Character_rom(std::string name) : m_name(std::move(name)) {}
    void add(char32_t character, int code);
    void add_ascii();
    void add_alike();

    std::string m_name;
    std::unordered_map<char32_t, char> m_codes;
};

// "a00", "a02" or "iso-8859-1". Input_error, which lists the names, for any other text.
const Character_rom& parse_character_rom(const std::string& text);
// The names of the ROMs, for the help: "a00, a02" with `last` before the last one.
std::string character_rom_names(const std::string& last = ", ");

// The dots of a character, for a display in which characters can be defined; null when there is no drawing of it.
const Glyph* glyph_of(char32_t character);
// The replacement of a character that a display can neither show nor draw: a letter without its accent, the plain form
// of a dash; empty where that would have another meaning.
std::optional<char> plain_letter_of(char32_t character);

// Whether a display with this ROM and defined characters can show the character, if only in a plain form.
bool can_show(const Character_rom& rom, char32_t character);

}  // namespace frontpanel

#endif
