#include <frontpanel_base/json_members.h>

#include <optional>

namespace frontpanel {

int integer_or(const Json_value& owner, const char* name, int64_t min, int64_t max, int otherwise) {
    const std::optional<Json_value> found = owner.find(name);
    return found ? static_cast<int>(found->integer(min, max)) : otherwise;
}

std::string text_or(const Json_value& owner, const char* name, const std::string& otherwise) {
    const std::optional<Json_value> found = owner.find(name);
    return found ? found->text() : otherwise;
}

bool boolean_or(const Json_value& owner, const char* name, bool otherwise) {
    const std::optional<Json_value> found = owner.find(name);
    return found ? found->boolean() : otherwise;
}

std::vector<Json_value> list_or_none(const Json_value& owner, const char* name) {
    const std::optional<Json_value> list = owner.find(name);
    return list ? list->items() : std::vector<Json_value>();
}

}  // namespace frontpanel
