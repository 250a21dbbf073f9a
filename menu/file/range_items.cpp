#include <algorithm>
#include <limits>

#include "file/builders.h"
#include "file/display_expression.h"
#include "file/editor_items.h"
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
    if (const auto error = range_format_error(format->shown_text())) {
        format->fail(*error);
    }
    return format->shown_text();
}

std::string value_format_of(const Json_value& item, int min, int max) {
    const std::optional<Json_value> expression = item.find(member::VALUE_FORMAT);
    if (!expression) {
        return item.find(member::FORMAT) ? "v" : "";
    }
    std::string text = expression->text();
    if (const auto error = display_expression_error(text, min, max)) {
        throw Placed_error(expression->place_in_text(error->offset), error->message);
    }
    if (!text.empty() && !names_value(text)) {
        expression->warn("the expression does not name v, so that every value shows the same");
    }
    return text;
}

// A whole number in the format cuts the decimals of the expression.
void check_decimals(const Json_value& item, const std::string& format,
                    const std::string& value_format, Bounds bounds) {
    const std::string conversion = whole_conversion(format);
    const std::optional<Json_value> expression = item.find(member::VALUE_FORMAT);
    if (!conversion.empty() && expression && has_decimals(value_format, bounds.min, bounds.max)) {
        item.find(member::FORMAT)
            .value_or(*expression)
            .warn("\"" + conversion + "\" hides the decimals of \"" + value_format +
                  "\": %.1f shows them, %.0f rounds");
    }
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

// Whether a person can never change the item. One with a rule of access is judged like one that can be changed.
bool is_only_shown(const Json_value& item, Data_entry::Data_access access) {
    const std::optional<Json_value> rules = item.find(member::BINDING);
    return access == Data_entry::READ_ONLY &&
           (!rules || rules->text_with_lines().find("access") == std::string::npos);
}

void warn_of_ignored(const Json_value& item, const char* name) {
    if (const auto written = item.find(name)) {
        written->warn("ignored: the item is only shown, and shows every value of the device");
    }
}

// Without allowed ranges of its own an entry allows what lies between its bounds. It must always have some:
// the first suggestion of a binding would leave it none.
void set_ranges(Load_context& context, const std::optional<Json_value>& list, Range_entry& entry,
                Bounds bounds) {
    std::vector<range_s> ranges{{bounds.min, bounds.max + 1, {}}};
    if (list) {
        ranges = ranges_of(context, *list, bounds.min, bounds.max);
    }
    entry.setValidRangeAndValues(ranges);
    if (entry.Get_min() > entry.Get_max()) {
        list->fail("expected at least one range that is allowed with these product options");
    }
}

Bounds limits_of(const Parameter& parameter) {
    return {parameter.min, static_cast<int>(std::min<int64_t>(parameter.max, HIGHEST_IN_RANGE))};
}

// "min" and "max" of an item, or those of its parameter, which hold what the device takes.
Bounds bounds_of(Load_context& context, const Json_value& item, const Parameter& parameter) {
    const auto bound = [&](const char* name, int64_t min, int otherwise) {
        return context.problems.value_or(
            [&] { return integer_or(item, name, min, HIGHEST_IN_RANGE, otherwise); }, otherwise);
    };
    const int min = bound(member::MIN, LOWEST, parameter.min);
    const int max = bound(member::MAX, min, limits_of(parameter).max);
    if (min > max) {
        item.fail("no number lies between \"min\" and \"max\"");
    }
    return {min, max};
}

void check_bound(const Json_value& item, const char* name, int bound, const Parameter& parameter) {
    const auto written = item.find(name);
    if (written && (bound < parameter.min || bound > parameter.max)) {
        written->report("the parameter holds " + std::to_string(parameter.min) + " to " +
                        std::to_string(parameter.max) + ", not " + std::to_string(bound));
    }
}

// The step of an editor is known once the item is finished.
void check_step(Load_context& context, const Json_value& item, const Data_entry& entry,
                Bounds bounds) {
    const auto editor = item.find(member::EDITOR);
    const auto step = editor && editor->is_object() ? editor->find(editor_member::STEP) : editor;
    const auto settings = context.menu.editor_settings().find(&entry);
    if (!editor || !step || settings == context.menu.editor_settings().end()) {
        return;
    }
    const int64_t width = int64_t{bounds.max} - bounds.min;
    if (settings->second.step > width && width > 0) {
        step->warn("a step of " + std::to_string(settings->second.step) +
                   " is larger than the whole range, " + std::to_string(bounds.min) + " to " +
                   std::to_string(bounds.max));
    }
}

}  // namespace

void build_range(Load_context& context, const Json_value& item, const Spot& spot) {
    Problems& problems = context.problems;
    const Leaf leaf = leaf_of(context, item, spot, INTEGER);
    const Parameter parameter = leaf.parameter.value_or(Parameter{});
    Bounds bounds = bounds_of(context, item, parameter);
    check_bound(item, member::MIN, bounds.min, parameter);
    check_bound(item, member::MAX, bounds.max, parameter);
    std::optional<Json_value> ranges = item.find(member::RANGES);
    // A limit would replace the reading of a read-only item, on the display and in the device.
    if (is_only_shown(item, leaf.access)) {
        bounds = limits_of(parameter);
        ranges.reset();
        for (const char* const name : {member::MIN, member::MAX, member::RANGES}) {
            warn_of_ignored(item, name);
        }
    }
    const auto [min, max] = bounds;
    const int start = problems.value_or(
        [&, low = min, high = max] {
            return integer_or(item, member::DEFAULT, low, high, std::clamp(0, low, high));
        },
        std::clamp(0, min, max));
    std::string format =
        untruncated(problems.value_or([&] { return format_of(item); }, std::string()));
    std::string value_format = problems.value_or(
        [&, low = min, high = max] { return value_format_of(item, low, high); }, std::string());
    Range_entry& range = context.menu.add(std::make_unique<Range_entry>(
        leaf.name.c_str(), leaf.description.c_str(), leaf.pid, kept_index(context, leaf, spot), min,
        max, start, format.data(), value_format.data(), spot.parent, leaf.access, leaf.visible,
        true, Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr));
    check_decimals(item, format, value_format, bounds);
    finish(context, item, range, spot);
    check_step(context, item, range, bounds);
    problems.attempt([&] { set_ranges(context, ranges, range, bounds); });
    if (item.find(member::BINDING)) {
        // Kept before rules narrow them. `ranges` may depend on options, so the entry is asked for those that hold.
        context.menu.keep_own_ranges(
            range, ranges ? allowed_ranges(range) : Number_ranges{{bounds.min, bounds.max}});
    }
    bind(context, item, range, bounds);
}

}  // namespace frontpanel
