// The character set of most of the panel's displays: ISO-8859-1, one byte a cell. Displays with another set take the
// characters themselves.
//
// Texts reach the panel as UTF-8, and bytewise: the library cuts and scrolls them without regard to characters.
#ifndef FRONTPANEL_BASE_CHARACTER_SET_H
#define FRONTPANEL_BASE_CHARACTER_SET_H

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace frontpanel {

// Takes the place of a byte that is not UTF-8.
inline constexpr char32_t DAMAGED = 0xFFFFFFFF;

// The characters of a UTF-8 text; each combining character counts as one.
std::u32string characters_of(std::string_view text);
// Whether the character is written on the one before it, and takes no column.
bool is_combining(char32_t character);
// The bytes of the first column of a text: those of a character, or of a damaged byte, and of the combining characters
// behind it. A combining character at the start of a text has a column. Requires: the text is not empty.
std::size_t size_of_column(std::string_view text);
// The columns of a UTF-8 text, each as one character: "e" and a combining acute accent become U+00E9. A combining
// character without such a composed form is left out, and added to `lost`.
std::u32string columns_of(std::string_view text, std::set<char32_t>& lost);
// The character as UTF-8.
std::string utf8_of(char32_t character);
// Whether it is a control character, including U+0080 to U+009F.
bool is_control(char32_t character);
// The plain form of a dash or a quotation mark.
std::optional<char> plain_form_of(char32_t character);
// The letter with one accent less, such as U+00E2 for U+1EA5; empty for any other character.
std::optional<char32_t> base_letter_of(char32_t character);

// The cells for these columns. Dashes and quotation marks become their plain forms. A letter with an accent that
// ISO-8859-1 lacks becomes the letter. Controls, other characters beyond ISO-8859-1 and damaged bytes become '?'.
// Characters that are replaced or left out are added to `lost`.
std::string cells_of(std::string_view text, std::set<char32_t>& lost);
std::string cells_of(const std::u32string& columns, std::set<char32_t>& lost);

// Whether a terminal shows the character in one column, independent of its neighbours: it is no control, combining or
// wide character, and not of a script that is written from right to left.
bool has_one_column(char32_t character);
// The characters as UTF-8, with '?' for each that does not take one column.
std::string text_in_columns(const std::u32string& characters);

// The cells as UTF-8 text, with '?' for a cell that is no character of a display.
std::string text_of(std::string_view cells);

// A UTF-8 text that may go to a terminal: control characters, those from U+0080 to U+009F too, and bytes from 0x80 to
// 0x9F outside a character become '?', which a terminal could otherwise take for commands. A tabulator becomes a blank.
std::string printable(std::string_view text);

// "U+20AC".
std::string code_point_name(char32_t character);

}  // namespace frontpanel

#endif
