// Closed intervals of numbers that a device holds.
#ifndef FRONTPANEL_BINDING_ENGINE_INTERVAL_H
#define FRONTPANEL_BINDING_ENGINE_INTERVAL_H

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace frontpanel::binding_engine {

inline constexpr int64_t LOWEST = std::numeric_limits<int32_t>::min();
inline constexpr int64_t HIGHEST = std::numeric_limits<int32_t>::max();

// Both ends inclusive.
struct Interval {
    int32_t low;
    int32_t high;
};
inline bool operator==(const Interval& left, const Interval& right) {
    return left.low == right.low && left.high == right.high;
}

// The nearest number of 32 bits.
int32_t clamped(int64_t value);
// Sorts the intervals and joins those that overlap or touch.
void merge(std::vector<Interval>& intervals);

// "3", "0..4"
std::string interval_text(int64_t low, int64_t high);
// "a, b"
std::string comma_joined(const std::vector<std::string>& texts);

}  // namespace frontpanel::binding_engine

#endif
