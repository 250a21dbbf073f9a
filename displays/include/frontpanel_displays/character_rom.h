// The characters that a display has in its ROM, and how those that it lacks are shown: as a character that the display
// lets define, or in a plain form.
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
    // HD44780 with the ROMs A00 (Japanese) and A02 (European), and displays with ISO-8859-1. Codes that a driver takes
    // for controls are left out.
    static const Character_rom& a00();
    static const Character_rom& a02();
    static const Character_rom& iso_8859_1();

    const std::string& name() const { return m_name; }
    // Nothing for a character that the ROM lacks.
    std::optional<char> code_of(char32_t character) const;

private:
    explicit Character_rom(std::string name) : m_name(std::move(name)) {}
    void add(char32_t character, int code);
    void add_ascii();
    void add_alike();

    std::string m_name;
    std::unordered_map<char32_t, char> m_codes;
};

// "a00", "a02" or "iso-8859-1". Input_error, which lists them, for any other text.
const Character_rom& parse_character_rom(const std::string& text);
// Their names, for the help: "a00, a02" with `last` before the last one.
std::string character_rom_names(const std::string& last = ", ");

// How a display that lets characters be defined draws one; null for a character that nobody has drawn.
const Glyph* glyph_of(char32_t character);
// What stands for a character that a display can neither show nor draw: a letter without its accent, the plain form of
// a dash; nothing where it would read as something else.
std::optional<char> plain_letter_of(char32_t character);

// Whether a display with this ROM that lets characters be defined can show it, in itself or in a plain form.
bool can_show(const Character_rom& rom, char32_t character);

}  // namespace frontpanel

#endif
