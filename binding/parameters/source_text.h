// How errors show parts of a source text.
#ifndef FRONTPANEL_BINDING_PARAMETERS_SOURCE_TEXT_H
#define FRONTPANEL_BINDING_PARAMETERS_SOURCE_TEXT_H

#include <string>
#include <string_view>

namespace frontpanel {

// A byte itself, or "\xNN" when it is not printable ASCII.
std::string shown_byte(char byte);

// In quotes, cut after 40 bytes, and "\xNN" for each byte that is not printable ASCII.
std::string quoted_source(std::string_view source);

}  // namespace frontpanel

#endif
