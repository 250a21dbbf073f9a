#include "language/value_bounds.h"

#include <algorithm>

#include "language/saturation.h"

namespace frontpanel::binding_language {
namespace {

constexpr Value_bounds ANY{};
constexpr Value_bounds YES{1, 1};
constexpr Value_bounds NO{0, 0};

Value_bounds truth(bool is_always, bool is_never) {
    return is_always ? YES : is_never ? NO : TRUTH_BOUNDS;
}

int64_t magnitude(int64_t number) {
    return number < 0 ? difference(0, number) : number;
}

// An operation that is monotone in each operand has its extremes at the ends of the operands' bounds.
Value_bounds at_ends(int64_t (*operate)(int64_t, int64_t), Value_bounds left, Value_bounds right) {
    const auto [low, high] =
        std::minmax({operate(left.low, right.low), operate(left.low, right.high),
                     operate(left.high, right.low), operate(left.high, right.high)});
    return {low, high};
}

// A division by zero is a fault and yields nothing.
Value_bounds quotient_bounds(Value_bounds left, Value_bounds right) {
    const Value_bounds negative{right.low, std::min<int64_t>(right.high, -1)};
    const Value_bounds positive{std::max<int64_t>(right.low, 1), right.high};
    const bool has_negative = negative.low <= negative.high;
    const bool has_positive = positive.low <= positive.high;
    if (has_negative && has_positive) {
        return hull(at_ends(quotient, left, negative), at_ends(quotient, left, positive));
    }
    return has_negative   ? at_ends(quotient, left, negative)
           : has_positive ? at_ends(quotient, left, positive)
                          : ANY;
}

// Nearer to 0 than the right side, with the sign of the left.
Value_bounds remainder_bounds(Value_bounds left, Value_bounds right) {
    const int64_t largest = std::max(magnitude(right.low), magnitude(right.high));
    const int64_t most = std::max<int64_t>(largest - 1, 0);
    return {left.low >= 0 ? 0 : std::max(left.low, -most),
            left.high <= 0 ? 0 : std::min(left.high, most)};
}

}  // namespace

Value_bounds hull(Value_bounds one, Value_bounds other) {
    return {std::min(one.low, other.low), std::max(one.high, other.high)};
}

Value_bounds bounds_after(Operation operation, Value_bounds operand) {
    switch (operation) {
        case Operation::NEGATE:
            return {difference(0, operand.high), difference(0, operand.low)};
        case Operation::NOT:
            return truth(operand.is_always_zero(), operand.is_never_zero());
        case Operation::TRUTH:
            return truth(operand.is_never_zero(), operand.is_always_zero());
        case Operation::ABSOLUTE: {
            const Value_bounds negated{difference(0, operand.high), difference(0, operand.low)};
            return {std::max<int64_t>({0, operand.low, negated.low}),
                    std::max(operand.high, negated.high)};
        }
        default:
            return ANY;
    }
}

Value_bounds bounds_after(Operation operation, Value_bounds left, Value_bounds right) {
    switch (operation) {
        case Operation::ADD:
            return {sum(left.low, right.low), sum(left.high, right.high)};
        case Operation::SUBTRACT:
            return {difference(left.low, right.high), difference(left.high, right.low)};
        case Operation::MULTIPLY:
            return at_ends(product, left, right);
        case Operation::DIVIDE:
            return quotient_bounds(left, right);
        case Operation::REMAINDER:
            return remainder_bounds(left, right);
        case Operation::MINIMUM:
            return {std::min(left.low, right.low), std::min(left.high, right.high)};
        case Operation::MAXIMUM:
            return {std::max(left.low, right.low), std::max(left.high, right.high)};
        case Operation::EQUAL:
            return truth(left.is_single() && right.is_single() && left.low == right.low,
                         left.high < right.low || left.low > right.high);
        case Operation::NOT_EQUAL:
            return truth(left.high < right.low || left.low > right.high,
                         left.is_single() && right.is_single() && left.low == right.low);
        case Operation::LESS:
            return truth(left.high < right.low, left.low >= right.high);
        case Operation::LESS_EQUAL:
            return truth(left.high <= right.low, left.low > right.high);
        case Operation::GREATER:
            return truth(left.low > right.high, left.high <= right.low);
        case Operation::GREATER_EQUAL:
            return truth(left.low >= right.high, left.high < right.low);
        default:
            return ANY;
    }
}

Value_bounds bounds_of_between(Value_bounds number, Value_bounds one_end, Value_bounds other_end) {
    const auto is_within = [number](Value_bounds low_end, Value_bounds high_end) {
        return number.low >= low_end.high && number.high <= high_end.low;
    };
    const Value_bounds ends = hull(one_end, other_end);
    return truth(is_within(one_end, other_end) || is_within(other_end, one_end),
                 number.high < ends.low || number.low > ends.high);
}

Value_bounds bounds_of_both(Value_bounds left, Value_bounds right) {
    return truth(left.is_never_zero() && right.is_never_zero(),
                 left.is_always_zero() || right.is_always_zero());
}

Value_bounds bounds_of_either(Value_bounds left, Value_bounds right) {
    return truth(left.is_never_zero() || right.is_never_zero(),
                 left.is_always_zero() && right.is_always_zero());
}

}  // namespace frontpanel::binding_language
