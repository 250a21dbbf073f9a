// The bounds of an expression's value, which follow from those of its parameters before anything is read.
#ifndef FRONTPANEL_BINDING_LANGUAGE_VALUE_BOUNDS_H
#define FRONTPANEL_BINDING_LANGUAGE_VALUE_BOUNDS_H

#include <cstdint>
#include <limits>

#include "language/list_format.h"

namespace frontpanel::binding_language {

// The lowest and the highest value of an integer that an expression can yield, both inclusive. They may be wider than
// what it does yield, never narrower.
struct Value_bounds {
    int64_t low = std::numeric_limits<int64_t>::min();
    int64_t high = std::numeric_limits<int64_t>::max();

    bool is_single() const { return low == high; }
    bool is_never_zero() const { return low > 0 || high < 0; }
    bool is_always_zero() const { return low == 0 && high == 0; }
};

inline constexpr Value_bounds TRUTH_BOUNDS{0, 1};

// Of an operation on one integer, or on two: arithmetic and comparisons. Anything for another operation.
Value_bounds bounds_after(Operation operation, Value_bounds operand);
Value_bounds bounds_after(Operation operation, Value_bounds left, Value_bounds right);
// Of "number in one_end..other_end", with the ends in either order.
Value_bounds bounds_of_between(Value_bounds number, Value_bounds one_end, Value_bounds other_end);
// Of "and" and "or" on truths.
Value_bounds bounds_of_both(Value_bounds left, Value_bounds right);
Value_bounds bounds_of_either(Value_bounds left, Value_bounds right);
// Of one value or the other.
Value_bounds hull(Value_bounds one, Value_bounds other);

}  // namespace frontpanel::binding_language

#endif
