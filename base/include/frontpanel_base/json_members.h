// Members of an object in an input file that may be missing. All throw Placed_error as `Json_value` does.
#ifndef FRONTPANEL_BASE_JSON_MEMBERS_H
#define FRONTPANEL_BASE_JSON_MEMBERS_H

#include <cstdint>
#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

// The member of that name, or `otherwise` when it is missing.
int integer_or(const Json_value& owner, const char* name, int64_t min, int64_t max, int otherwise);
std::string text_or(const Json_value& owner, const char* name, const std::string& otherwise);
bool boolean_or(const Json_value& owner, const char* name, bool otherwise);
// The elements of a list; none when it is missing.
std::vector<Json_value> list_or_none(const Json_value& owner, const char* name);

}  // namespace frontpanel

#endif
