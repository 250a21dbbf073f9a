// UTF-8 texts of unknown content in messages: escaped, and cut between characters.
#ifndef FRONTPANEL_BASE_TEXT_BYTES_H
#define FRONTPANEL_BASE_TEXT_BYTES_H

#include <cstddef>
#include <string>
#include <string_view>

namespace frontpanel {

// The text with "\xNN" for each byte of a character that is not kept, and for each byte that is not UTF-8. Without
// `keeps` all characters except controls are kept.
using Keeps_character = bool (*)(char32_t character);
std::string escaped(std::string_view text, Keeps_character keeps = nullptr);

// The beginning of the text, at most `most` bytes, cut between two characters.
std::string_view beginning_of(std::string_view text, std::size_t most);

// The same in quotes, with "..." at the end when it is not the whole text.
std::string quoted_beginning(std::string_view text, std::size_t most);

}  // namespace frontpanel

#endif
