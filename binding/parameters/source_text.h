// How errors show parts of a source text.
#ifndef FRONTPANEL_BINDING_PARAMETERS_SOURCE_TEXT_H
#define FRONTPANEL_BINDING_PARAMETERS_SOURCE_TEXT_H

#include <string>
#include <string_view>

namespace frontpanel {

// The first character of the source. One that takes no column, and a byte that is not UTF-8, is shown as "\xNN" for
// each byte. Requires: the source is not empty.
std::string shown_character(std::string_view source);

// The source in quotes, cut after 40 bytes, with each character as in `shown_character`.
std::string quoted_source(std::string_view source);

}  // namespace frontpanel

#endif
