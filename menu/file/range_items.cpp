#include <frontpanel_data/evaluator.h>

#include <algorithm>
#include <limits>

#include "file/builders.h"
#include "file/item_builder.h"
#include "file/item_rules.h"
#include "file/range_format.h"

namespace frontpanel {
namespace {

constexpr int64_t LOWEST = std::numeric_limits<int32_t>::min();
// A range ends one before its exclusive end, so the largest number is in no range.
constexpr int64_t HIGHEST_IN_RANGE = int64_t{std::numeric_limits<int32_t>::max()} - 1;

// "format", checked; where only "value_format" is given, the plain number.
std::string format_of(const Json_value& item) {
    const std::optional<Json_value> format = item.find(member::FORMAT);
    if (!format) {
        return item.find(member::VALUE_FORMAT) ? "%d" : "";
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
    const std::optional<Json_value> expression = item.find(member::VALUE_FORMAT);
    if (!expression) {
        return item.find(member::FORMAT) ? "v" : "";
    }
    std::string text = expression->text();
    if (!text.empty() && !converts(text, min) && !converts(text, max)) {
        expression->fail("not an expression in v");
    }
    return text;
}

std::vector<range_s> ranges_of(Load_context& context, const Json_value& list, int min, int max) {
    std::vector<range_s> ranges;
    for (const Json_value& item : list.items()) {
        item.expect_members({member::MIN, member::MAX, member::OPTIONS});
        const auto first = static_cast<int>(item.member(member::MIN).integer(min, max));
        const auto last = static_cast<int>(item.member(member::MAX).integer(first, max));
        const std::optional<Json_value> options = item.find(member::OPTIONS);
        ranges.push_back({first, last + 1,
                          options ? context.options.use(*options) : std::vector<std::string>()});
    }
    if (ranges.empty()) {
        list.fail("expected at least one range");
    }
    return ranges;
}

// Without allowed ranges of its own an entry allows what lies between its bounds. It must always have some:
// the first suggestion of a binding would leave it none.
void set_ranges(Load_context& context, const Json_value& item, Range_entry& entry, Bounds bounds) {
    const std::optional<Json_value> list = item.find(member::RANGES);
    std::vector<range_s> ranges{{bounds.min, bounds.max + 1, {}}};
    if (list) {
        ranges = ranges_of(context, *list, bounds.min, bounds.max);
    }
    entry.setValidRangeAndValues(ranges);
    if (entry.Get_min() > entry.Get_max()) {
        list->fail("expected at least one range that is allowed with these product options");
    }
}

// "min" and "max" of an item, or those of its parameter.
Bounds bounds_of(Load_context& context, const Json_value& item, const Parameter& parameter) {
    const auto bound = [&](const char* name, int64_t min, int otherwise) {
        return context.problems.value_or(
            [&] { return integer_or(item, name, min, HIGHEST_IN_RANGE, otherwise); }, otherwise);
    };
    const int min = bound(member::MIN, LOWEST, parameter.min);
    const int max = bound(member::MAX, min,
                          static_cast<int>(std::min<int64_t>(parameter.max, HIGHEST_IN_RANGE)));
    if (min > max) {
        item.fail("no number lies between \"min\" and \"max\"");
    }
    return {min, max};
}

}  // namespace

void build_range(Load_context& context, const Json_value& item, const Spot& spot) {
    Problems& problems = context.problems;
    const Leaf leaf = leaf_of(context, item, spot, INTEGER);
    const auto [min, max] = bounds_of(context, item, leaf.parameter.value_or(Parameter{}));
    const int start = problems.value_or(
        [&, low = min, high = max] {
            return integer_or(item, member::DEFAULT, low, high, std::clamp(0, low, high));
        },
        std::clamp(0, min, max));
    std::string format =
        untruncated(problems.value_or([&] { return format_of(item); }, std::string()));
    std::string value_format = problems.value_or(
        [&, low = min, high = max] { return value_format_of(item, low, high); }, std::string());
    if (const auto expression = item.find(member::VALUE_FORMAT)) {
        context.built.display_expressions.push_back({*expression, value_format});
    }
    Range_entry& range = context.menu.add(std::make_unique<Range_entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, kept_index(context, leaf, spot), min,
        max, start, format.data(), value_format.data(), spot.parent, leaf.access, leaf.visible,
        true, Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    const Bounds bounds{min, max};
    finish(context, item, range, spot);
    problems.attempt([&] { set_ranges(context, item, range, bounds); });
    if (item.find(member::BINDING)) {
        context.menu.keep_own_ranges(range);  // before its rules narrow them
    }
    bind(context, item, range, bounds);
}

}  // namespace frontpanel
