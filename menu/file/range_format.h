// Checks the display format of a range entry before the library gets it.
#ifndef FRONTPANEL_MENU_RANGE_FORMAT_H
#define FRONTPANEL_MENU_RANGE_FORMAT_H

#include <optional>
#include <string>

namespace frontpanel {

// What is wrong with the format, in a few words; nothing when the library will show it as it is meant. Rows
// of a table of texts ("0:Off,1:On,%d dB") need a whole number, ':' and a text each; the number format has at
// most one conversion, of the kind that the library gives it.
std::optional<std::string> range_format_error(const std::string& format);

// The format as the library takes it. It cuts a number to 14 characters unless the format has a table: here it has one, of
// a row that is no number's.
std::string untruncated(const std::string& format);
// The conversion to a whole number behind the table, such as "%d"; empty when the format has none. Requires: the format
// has no error.
std::string whole_conversion(const std::string& format);

}  // namespace frontpanel

#endif
