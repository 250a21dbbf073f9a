#include <frontpanel_editors/number_ranges.h>

#include <frontpanel_data/range_entry.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace frontpanel {
namespace {

constexpr int NAME_ONLY = 0x8;  // of a report: it begins with the name and a blank
constexpr std::string_view BEGIN = "range={ ";
constexpr std::string_view OPENING = " [";
constexpr std::string_view SEPARATOR = ", ";
constexpr std::string_view CLOSING = "] ";

// Takes `part` from the front of the text if it stands there.
bool take(std::string_view& text, std::string_view part) {
    if (text.substr(0, part.size()) != part) {
        return false;
    }
    text.remove_prefix(part.size());
    return true;
}

bool take(std::string_view& text, int& number) {
    const std::from_chars_result end =
        std::from_chars(text.data(), text.data() + text.size(), number);
    if (end.ec != std::errc()) {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(end.ptr - text.data()));
    return true;
}

// " [0, 80] " from the front of the text.
std::optional<Number_range> take_range(std::string_view& text) {
    Number_range range{0, 0};
    const bool is_range = take(text, OPENING) && take(text, range.first) && take(text, SEPARATOR) &&
                          take(text, range.last) && take(text, CLOSING);
    return is_range ? std::optional<Number_range>(range) : std::nullopt;
}

// A report holds the ranges, each with the options on which it depends behind it.
Number_ranges ranges_in(std::string_view report) {
    Number_ranges ranges;
    while (!report.empty()) {
        std::string_view rest = report;
        if (const std::optional<Number_range> range = take_range(rest)) {
            ranges.push_back(*range);
            report = rest;
        } else {
            report.remove_prefix(1);
        }
    }
    return ranges;
}

}  // namespace

Number_ranges normalized(Number_ranges ranges) {
    ranges.erase(std::remove_if(ranges.begin(), ranges.end(),
                                [](const Number_range& range) { return range.first > range.last; }),
                 ranges.end());
    std::sort(ranges.begin(), ranges.end(),
              [](const Number_range& left, const Number_range& right) {
                  return left.first < right.first;
              });
    Number_ranges joined;
    for (const Number_range& range : ranges) {
        if (!joined.empty() && int64_t{range.first} <= int64_t{joined.back().last} + 1) {
            joined.back().last = std::max(joined.back().last, range.last);
        } else {
            joined.push_back(range);
        }
    }
    return joined;
}

Number_ranges common_ranges(const Number_ranges& left, const Number_ranges& right) {
    Number_ranges common;
    for (const Number_range& one : left) {
        for (const Number_range& other : right) {
            common.push_back({std::max(one.first, other.first), std::min(one.last, other.last)});
        }
    }
    return normalized(std::move(common));
}

// The report is the one public operation that shows the gaps. An entry that was never given ranges has bounds alone.
Number_ranges allowed_ranges(Range_entry& entry) {
    const std::string report = entry.getProperties(NAME_ONLY);
    const std::size_t name = std::string_view(entry.Get_name()).size() + 1;
    std::string_view text = std::string_view(report).substr(std::min(name, report.size()));
    Number_ranges ranges = take(text, BEGIN) ? normalized(ranges_in(text)) : Number_ranges();
    return ranges.empty() ? normalized({{entry.Get_min(), entry.Get_max()}}) : ranges;
}

bool allows(const Number_ranges& ranges, int value) {
    return std::any_of(ranges.begin(), ranges.end(), [value](const Number_range& range) {
        return range.first <= value && value <= range.last;
    });
}

int nearest_allowed(const Number_ranges& ranges, int value) {
    const int above = next_allowed(ranges, value, true);
    const int below = next_allowed(ranges, value, false);
    if (above < value || below > value) {
        return above < value ? above : below;  // `value` is beyond the last or the first one
    }
    return int64_t{value} - below <= int64_t{above} - value ? below : above;
}

int next_allowed(const Number_ranges& ranges, int64_t target, bool upwards) {
    if (upwards) {
        const auto found =
            std::find_if(ranges.begin(), ranges.end(),
                         [target](const Number_range& range) { return range.last >= target; });
        return found == ranges.end() ? ranges.back().last
                                     : static_cast<int>(std::max<int64_t>(found->first, target));
    }
    const auto found =
        std::find_if(ranges.rbegin(), ranges.rend(),
                     [target](const Number_range& range) { return range.first <= target; });
    return found == ranges.rend() ? ranges.front().first
                                  : static_cast<int>(std::min<int64_t>(found->last, target));
}

}  // namespace frontpanel
