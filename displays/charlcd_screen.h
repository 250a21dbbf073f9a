// The language of the kernel's character displays, as far as the panel speaks it: text, and sequences that begin with
// an escape.
#ifndef FRONTPANEL_DISPLAYS_CHARLCD_SCREEN_H
#define FRONTPANEL_DISPLAYS_CHARLCD_SCREEN_H

#include <array>
#include <set>
#include <string>
#include <vector>

#include <frontpanel_display/lcd.h>
#include <frontpanel_displays/character_rom.h>

namespace frontpanel {

// Shows frames on such a display: keeps what the display shows, and returns the bytes that change it to another frame.
class Charlcd_screen {
public:
    static constexpr size_t MOST_DEFINED = 8;  // characters

    // A display of this size, of which nothing else is known. `rom` outlives the screen.
    explicit Charlcd_screen(Lcd_size size, const Character_rom& rom = Character_rom::a00());

    // What makes the display blank, lit and without a cursor, whatever was sent to it before.
    std::string setup() const;
    // What makes it show the frame from what it shows now, at first from `setup`; empty when it does. What does not fit
    // the display is cut, what is left of it stays blank. A character that the ROM lacks is defined. Of more than eight
    // those with a plain form take it, and any other becomes '?'.
    std::string update(const Frame& frame);
    // The characters that became '?' in any frame.
    const std::set<char32_t>& lost() const { return m_lost; }
    // Clears the display, so that no old value stays on it.
    static std::string farewell();

private:
    std::vector<char32_t> characters_to_draw(const Lcd& lcd) const;
    std::string define_characters(const Lcd& lcd);
    char code_of(char32_t character);
    std::u32string characters_of(const Lcd& lcd, int row) const;
    std::string update_row(const Lcd& lcd, int row);
    std::string update_cursor(const Lcd& lcd);
    std::string move_to(int row, int column);

    Lcd_size m_size;
    const Character_rom& m_rom;
    std::array<char32_t, MOST_DEFINED> m_defined{};  // by their codes; 0 for none
    std::set<char32_t> m_lost;
    std::vector<std::string> m_lines;
    // Where the next byte goes.
    int m_row = 0;
    int m_column = 0;
    bool m_blinks = false;
    bool m_dim = false;
};

}  // namespace frontpanel

#endif
