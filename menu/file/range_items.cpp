#include <frontpanel_data/evaluator.h>

#include <algorithm>
#include <limits>

#include "file/loader.h"
#include "file/range_format.h"

namespace frontpanel {
namespace {

constexpr int64_t LOWEST = std::numeric_limits<int32_t>::min();
// A range ends one before its exclusive end, so the largest number is in no range.
constexpr int64_t HIGHEST_IN_RANGE = int64_t{std::numeric_limits<int32_t>::max()} - 1;

// The entry's own display text for a number, checked, with what makes sense where half of it is missing.
std::string format_of(const Json_value& item) {
    const std::optional<Json_value> format = item.find("format");
    if (!format) {
        return item.find("value_format") ? "%d" : "";
    }
    if (const auto error = range_format_error(format->text())) {
        format->fail(*error);
    }
    return format->text();
}

// Whether the library can convert this raw value with the expression.
bool converts(const std::string& expression, int raw_value) {
    std::string source = "v=" + std::to_string(raw_value) + ";\nv=" + expression + ";\n";
    return evaluateExpression(source.data()) == 0;
}

// An expression may have no value for one number, as in a division, but must have it for some.
std::string value_format_of(const Json_value& item, int min, int max) {
    const std::optional<Json_value> expression = item.find("value_format");
    if (!expression) {
        return item.find("format") ? "v" : "";
    }
    std::string text = expression->text();
    if (!text.empty() && !converts(text, min) && !converts(text, max)) {
        expression->fail("not an expression in v");
    }
    return text;
}

}  // namespace

void Loader::build_range(const Json_value& item, Data_entry* parent, unsigned int level) {
    const Leaf leaf = leaf_of(item, INTEGER);
    const Parameter parameter = leaf.parameter.value_or(
        Parameter{INTEGER, 0, {}, static_cast<int>(LOWEST), static_cast<int>(HIGHEST_IN_RANGE)});
    const auto bound = [&](const char* name, int64_t min, int64_t max, int otherwise) {
        return m_problems.value_or([&] { return integer_or(item, name, min, max, otherwise); },
                                   otherwise);
    };
    const int min = bound("min", LOWEST, HIGHEST_IN_RANGE, parameter.min);
    const int max = bound("max", min, HIGHEST_IN_RANGE,
                          static_cast<int>(std::min<int64_t>(parameter.max, HIGHEST_IN_RANGE)));
    if (min > max) {
        item.fail("no number lies between \"min\" and \"max\"");
    }
    const int start = bound("default", min, max, std::clamp(0, min, max));
    std::string format = m_problems.value_or([&] { return format_of(item); }, std::string());
    std::string value_format =
        m_problems.value_or([&] { return value_format_of(item, min, max); }, std::string());
    if (const auto expression = item.find("value_format")) {
        m_display_expressions.emplace_back(*expression, value_format);
    }
    Range_entry& range = m_menu.add(std::make_unique<Range_entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, leaf.index, min, max, start,
        format.data(), value_format.data(), parent, leaf.access, leaf.visible, true,
        Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    finish(item, range, level);
    m_problems.attempt([&] { set_ranges(item, range, min, max); });
    bind(item, range, Bounds{min, max});
}

// Without allowed ranges of its own an entry allows what lies between its bounds. It must always have some:
// the first suggestion of a binding would leave it none.
void Loader::set_ranges(const Json_value& item, Range_entry& entry, int min, int max) {
    const std::optional<Json_value> list = item.find("ranges");
    std::vector<range_s> ranges{{min, max + 1, {}}};
    if (list) {
        ranges = ranges_of(*list, min, max);
    }
    entry.setValidRangeAndValues(ranges);
    if (entry.Get_min() > entry.Get_max()) {
        list->fail("expected at least one range that is allowed with these product options");
    }
}

std::vector<range_s> Loader::ranges_of(const Json_value& list, int min, int max) {
    std::vector<range_s> ranges;
    for (const Json_value& item : list.items()) {
        item.expect_members({"min", "max", "options"});
        const auto first = static_cast<int>(item.member("min").integer(min, max));
        const auto last = static_cast<int>(item.member("max").integer(first, max));
        const std::optional<Json_value> options = item.find("options");
        ranges.push_back(
            {first, last + 1, options ? option_names(*options) : std::vector<std::string>()});
    }
    if (ranges.empty()) {
        list.fail("expected at least one range");
    }
    return ranges;
}

}  // namespace frontpanel
