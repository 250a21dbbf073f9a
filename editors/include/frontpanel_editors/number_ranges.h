// The values that a range entry allows now, with the gaps between them, and steps from one to another.
//
// The entry itself reports only its lowest and its highest value, and steps into the gaps between its ranges.
#ifndef FRONTPANEL_EDITORS_NUMBER_RANGES_H
#define FRONTPANEL_EDITORS_NUMBER_RANGES_H

#include <cstdint>
#include <vector>

class Range_entry;

namespace frontpanel {

// Both ends inclusive, `first` <= `last`.
struct Number_range {
    int first;
    int last;
};
inline bool operator==(const Number_range& left, const Number_range& right) {
    return left.first == right.first && left.last == right.last;
}

// Sorted; no two touch. Empty: no value is allowed.
using Number_ranges = std::vector<Number_range>;

// Drops ranges without a value, sorts the others and joins those that overlap or touch.
Number_ranges normalized(Number_ranges ranges);
// What both allow.
Number_ranges common_ranges(const Number_ranges& left, const Number_ranges& right);

// What the entry allows: its ranges whose product options hold, cut to what its rules suggested last. A new
// suggestion of its binding is applied first, as by `Range_entry::updateRange`.
Number_ranges allowed_ranges(Range_entry& entry);

bool allows(const Number_ranges& ranges, int value);
// The allowed value that is nearest to `value`, the lower one of two. Requires: some value is allowed.
int nearest_allowed(const Number_ranges& ranges, int value);
// The first allowed value from `target` on, upwards or downwards; beyond the last one, the last. Requires: some value
// is allowed.
int next_allowed(const Number_ranges& ranges, int64_t target, bool upwards);

}  // namespace frontpanel

#endif
