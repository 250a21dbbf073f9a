#include "engine/interval.h"

#include <algorithm>
#include <cstddef>

namespace frontpanel::binding_engine {

int32_t clamped(int64_t value) {
    return static_cast<int32_t>(std::clamp(value, LOWEST, HIGHEST));
}

// Overlapping ranges would make a step pass the same values twice.
void merge(std::vector<Interval>& intervals) {
    std::sort(intervals.begin(), intervals.end(),
              [](const Interval& left, const Interval& right) { return left.low < right.low; });
    std::size_t merged = 0;
    for (const Interval& interval : intervals) {
        if (merged > 0 && int64_t{interval.low} <= int64_t{intervals[merged - 1].high} + 1) {
            intervals[merged - 1].high = std::max(intervals[merged - 1].high, interval.high);
        } else {
            intervals[merged++] = interval;
        }
    }
    intervals.resize(merged);
}

std::string interval_text(int64_t low, int64_t high) {
    return low == high ? std::to_string(low) : std::to_string(low) + ".." + std::to_string(high);
}

std::string comma_joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}

}  // namespace frontpanel::binding_engine
