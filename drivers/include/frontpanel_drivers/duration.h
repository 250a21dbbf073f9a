// Spans of time in menu files: "500ms", "1s", "5min", "1h".
#ifndef FRONTPANEL_DRIVERS_DURATION_H
#define FRONTPANEL_DRIVERS_DURATION_H

#include <chrono>
#include <optional>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

// Placed_error for any other text, and for a time shorter than `shortest` or longer than `longest`.
std::chrono::milliseconds duration_of(const Json_value& value, std::chrono::milliseconds shortest,
                                      std::chrono::milliseconds longest);
// The member of that name, or `otherwise` when it is missing.
std::chrono::milliseconds duration_or(const Json_value& owner, const char* name,
                                      std::chrono::milliseconds shortest,
                                      std::chrono::milliseconds longest,
                                      std::chrono::milliseconds otherwise);

}  // namespace frontpanel

#endif
