// The display text of a range entry's value: a plain number, a text of a table or a formatted number.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_RANGE_DISPLAY_H
#define FRONTPANEL_DATA_SRC_ENTRY_RANGE_DISPLAY_H

#include <cstddef>
#include <string>
#include <string_view>

#include "number_format.h"

namespace range_display {

// What holds a text that is not part of the format.
struct Storage {
    char digits[12];
    number_format::Buffer formatted;
};

// The text that shows `value`, at most `limit` characters, as documented at the constructor of `Range_entry`. It
// refers to `display_format` or to `storage`. Allocates only for rare conversions and long expressions.
std::string_view text_of(int value, const std::string& display_format,
                         const std::string& value_format, std::size_t limit, Storage& storage);

}  // namespace range_display

#endif
