#include <frontpanel_drivers/duration.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string>

#include <frontpanel_base/numbers.h>

namespace frontpanel {
namespace {

using std::chrono::milliseconds;

struct Unit {
    const char* name;
    std::int64_t span;  // in milliseconds
};

// The largest first, so that a text takes the largest unit that has no remainder.
constexpr std::array<Unit, 4> UNITS{{{"h", 3600000}, {"min", 60000}, {"s", 1000}, {"ms", 1}}};

std::string text_of(milliseconds span) {
    for (const Unit& unit : UNITS) {
        if (span.count() % unit.span == 0) {
            return std::to_string(span.count() / unit.span) + unit.name;
        }
    }
    return "";
}

std::optional<milliseconds> parse(const std::string& text) {
    const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
    const auto number = parse_number<std::int64_t>(text.substr(0, end), 0,
                                                   std::numeric_limits<std::int32_t>::max());
    for (const Unit& unit : UNITS) {
        if (number && text.substr(end) == unit.name) {
            return milliseconds(*number * unit.span);
        }
    }
    return std::nullopt;
}

}  // namespace

milliseconds duration_of(const Json_value& value, milliseconds shortest, milliseconds longest) {
    const std::string text = value.text();
    const std::optional<milliseconds> span = parse(text);
    if (!span) {
        value.fail("expected a time such as \"500ms\", \"2s\", \"5min\" or \"1h\", found \"" +
                   text + "\"");
    }
    if (*span < shortest || *span > longest) {
        value.fail("expected a time from " + text_of(shortest) + " to " + text_of(longest) +
                   ", found \"" + text + "\"");
    }
    return *span;
}

milliseconds duration_or(const Json_value& owner, const char* name, milliseconds shortest,
                         milliseconds longest, milliseconds otherwise) {
    const auto value = owner.find(name);
    return value ? duration_of(*value, shortest, longest) : otherwise;
}

}  // namespace frontpanel
