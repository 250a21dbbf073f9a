// The parameters of a device as an input file declares them: the menu that shows them and a simulator that holds them
// read the same declaration.
//
// All operations throw Placed_error as `Json_value` does.
#ifndef FRONTPANEL_BASE_PARAMETER_DECLARATION_H
#define FRONTPANEL_BASE_PARAMETER_DECLARATION_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

constexpr size_t LONGEST_TEXT = 256;  // characters

// "pid" of a parameter, or of an item that shows one.
uint32_t pid_of(const Json_value& owner);
// "index": its levels, at most 2, each at most 255; none when it is missing.
std::vector<uint16_t> levels_of(const Json_value& owner);
// Whether "type" is "text"; otherwise it is "integer".
bool is_text_parameter(const Json_value& parameter);

struct Number_limits {
    int32_t min;
    int32_t max;
};
// "min" and "max" of a number. An error is added to `problems`, and the widest limit takes its place.
Number_limits number_limits_of(const Json_value& parameter, Problems& problems);
// "length" of a text: its largest number of characters. Errors are treated in the same way.
size_t text_limit_of(const Json_value& parameter, Problems& problems);

}  // namespace frontpanel

#endif
