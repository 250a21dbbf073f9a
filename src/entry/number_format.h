// Printing a number with a printf format that comes from a menu file.
//
// A format is checked before it is used, since a conversion that does not fit its argument would crash the
// panel. The decimal sign is a point whatever the locale, as in the expressions that compute the number.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_NUMBER_FORMAT_H
#define FRONTPANEL_DATA_SRC_ENTRY_NUMBER_FORMAT_H

#include <cstddef>
#include <string>

namespace number_format {

// What the number is before it is printed.
enum class Argument {
    WHOLE,   // an int, cut towards zero
    TENTHS,  // a double, rounded to tenths
    REAL     // a double as it is
};

// Whether `format` holds at most one conversion, and one that takes this argument. Width and precision have
// at most three digits each, so that no format makes a display wait.
bool fits(const char* format, Argument argument);

// The first `limit` characters of `value` printed with a format that fits; not-a-number prints as 0.
std::string print(const char* format, Argument argument, double value, std::size_t limit);

// Cut towards zero, limited to the range of `int`; 0 for not-a-number.
int to_int(double value);

}  // namespace number_format

#endif
