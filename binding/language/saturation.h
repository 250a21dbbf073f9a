// Exact 64-bit arithmetic that stops at the limits, as the rule language has it.
#ifndef FRONTPANEL_BINDING_LANGUAGE_SATURATION_H
#define FRONTPANEL_BINDING_LANGUAGE_SATURATION_H

#include <cstdint>
#include <limits>

namespace frontpanel::binding_language {

inline constexpr int64_t LEAST_VALUE = std::numeric_limits<int64_t>::min();
inline constexpr int64_t GREATEST_VALUE = std::numeric_limits<int64_t>::max();

inline int64_t sum(int64_t left, int64_t right) {
    int64_t result = 0;
    return __builtin_add_overflow(left, right, &result) ? (right < 0 ? LEAST_VALUE : GREATEST_VALUE)
                                                        : result;
}

inline int64_t difference(int64_t left, int64_t right) {
    int64_t result = 0;
    return __builtin_sub_overflow(left, right, &result) ? (right < 0 ? GREATEST_VALUE : LEAST_VALUE)
                                                        : result;
}

inline int64_t product(int64_t left, int64_t right) {
    int64_t result = 0;
    const bool overflows = __builtin_mul_overflow(left, right, &result);
    return overflows ? ((left < 0) == (right < 0) ? GREATEST_VALUE : LEAST_VALUE) : result;
}

// Division by -1 is the only one that overflows, and on many processors traps.
inline int64_t quotient(int64_t left, int64_t right) {
    return right == -1 ? difference(0, left) : left / right;
}

inline int64_t remainder(int64_t left, int64_t right) {
    return right == -1 ? 0 : left % right;
}

}  // namespace frontpanel::binding_language

#endif
