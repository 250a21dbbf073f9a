#include <frontpanel_base/parameter_declaration.h>

#include <limits>
#include <optional>
#include <string>

namespace frontpanel {
namespace {

constexpr int64_t LOWEST = std::numeric_limits<int32_t>::min();
constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();
constexpr int64_t LAST_INDEX = 255;  // of a level: a larger one would overlap the next level
constexpr size_t LONGEST_INDEX = 2;  // levels
constexpr int64_t LAST_PID =
    std::numeric_limits<uint32_t>::max() - int64_t{1};  // the last number means "no parameter"

}  // namespace

uint32_t pid_of(const Json_value& owner) {
    return static_cast<uint32_t>(owner.member("pid").integer(0, LAST_PID));
}

std::vector<uint16_t> levels_of(const Json_value& owner) {
    std::vector<uint16_t> levels;
    const std::optional<Json_value> list = owner.find("index");
    if (!list) {
        return levels;
    }
    const std::vector<Json_value> items = list->items();
    if (items.size() > LONGEST_INDEX) {
        list->fail("expected at most " + std::to_string(LONGEST_INDEX) + " levels, found " +
                   std::to_string(items.size()));
    }
    for (const Json_value& level : items) {
        levels.push_back(static_cast<uint16_t>(level.integer(0, LAST_INDEX)));
    }
    return levels;
}

bool is_text_parameter(const Json_value& parameter) {
    static const std::vector<const char*> TYPES{"integer", "text"};
    return parameter.member("type").choice(TYPES) == 1;
}

Number_limits number_limits_of(const Json_value& parameter, Problems& problems) {
    const auto limit = [&](const char* name, int64_t min, int64_t otherwise) {
        return static_cast<int32_t>(problems.value_or(
            [&] { return parameter.member(name).integer(min, HIGHEST); }, otherwise));
    };
    const int32_t min = limit("min", LOWEST, LOWEST);
    return {min, limit("max", min, HIGHEST)};
}

size_t text_limit_of(const Json_value& parameter, Problems& problems) {
    return problems.value_or(
        [&] { return static_cast<size_t>(parameter.member("length").integer(1, LONGEST_TEXT)); },
        LONGEST_TEXT);
}

}  // namespace frontpanel
