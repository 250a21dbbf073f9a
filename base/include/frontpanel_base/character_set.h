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

// In the place of a byte that is no UTF-8.
inline constexpr char32_t DAMAGED = 0xFFFFFFFF;

// The characters of a UTF-8 text, combining ones each by itself.
std::u32string characters_of(std::string_view text);
// Whether it is written on the character before it, and takes no column.
bool is_combining(char32_t character);
// How many bytes of a text its first column has: a character, or a damaged byte, with the combining characters behind
// it. A combining character that begins a text has a column. Requires: the text is not empty.
std::size_t size_of_column(std::string_view text);
// The columns of a UTF-8 text, each as one character: "e" with an acute accent behind it is U+00E9. A combining character
// for which there is no such character is left out, and added to `lost`.
std::u32string columns_of(std::string_view text, std::set<char32_t>& lost);
// The character as UTF-8.
std::string utf8_of(char32_t character);
// Whether it is a control character, one of U+0080 to U+009F included.
bool is_control(char32_t character);
// The plain form of a dash or a quotation mark.
std::optional<char> plain_form_of(char32_t character);
// The letter of one with an accent, which may have another accent; nothing for any other character.
std::optional<char32_t> base_letter_of(char32_t character);

// The cells of columns. Dashes and quotation marks become their plain forms. Of what a display cannot show, a letter with
// an accent becomes the letter; controls, other characters beyond ISO-8859-1 and damaged bytes become a '?' each.
// Characters that were lost so are added to `lost`.
std::string cells_of(std::string_view text, std::set<char32_t>& lost);
std::string cells_of(const std::u32string& columns, std::set<char32_t>& lost);

// Whether a terminal shows it in one column, whatever stands beside it: no control, combining or wide character, none of
// a script that is written from right to left.
bool has_one_column(char32_t character);
// The characters as UTF-8; '?' for one that would not take one column.
std::string text_in_columns(const std::u32string& characters);

// The cells as UTF-8 text; a cell that is no character of a display becomes '?'.
std::string text_of(std::string_view cells);

// A UTF-8 text that may go to a terminal: control characters, those from U+0080 to U+009F too, and bytes from 0x80 to
// 0x9F outside a character become '?', which a terminal could otherwise take for commands. A tabulator becomes a blank.
std::string printable(std::string_view text);

// "U+20AC".
std::string code_point_name(char32_t character);

}  // namespace frontpanel

#endif
