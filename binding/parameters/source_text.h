// How errors show parts of a source text.
#ifndef FRONTPANEL_BINDING_PARAMETERS_SOURCE_TEXT_H
#define FRONTPANEL_BINDING_PARAMETERS_SOURCE_TEXT_H

#include <string>
#include <string_view>

namespace frontpanel {

// The first character of the source, which is not empty, or "\xNN" for each byte of one that takes no column and for a
// byte that is no UTF-8.
std::string shown_character(std::string_view source);

// In quotes, cut after 40 bytes, each character as `shown_character` has it.
std::string quoted_source(std::string_view source);

}  // namespace frontpanel

#endif
