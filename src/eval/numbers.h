// Numbers of the expression language. They never depend on the locale.
#ifndef FRONTPANEL_DATA_SRC_EVAL_NUMBERS_H
#define FRONTPANEL_DATA_SRC_EVAL_NUMBERS_H

#include <climits>
#include <cmath>

#include "eval/tokens.h"

namespace eval {

// As `std::pow`, to the bit. Whole powers of whole numbers that a double holds exactly are the same by whatever way they
// are worked out, and multiplying is quicker: the last product is the largest, so that one that is exact followed exact
// ones.
inline double power(double base, double exponent) {
    constexpr double MAX_EXACT = 9007199254740992.0;  // 2 to the power of 53
    constexpr double MAX_BASE = 94906265.0;           // the largest whose square is not above it
    const bool may_be_exact = exponent >= 2.0 && exponent <= 53.0 && std::fabs(base) >= 1.0 &&
                              std::fabs(base) <= MAX_BASE;
    if (!may_be_exact || static_cast<int>(base) != base) return std::pow(base, exponent);
    auto left = static_cast<unsigned>(exponent);
    if (left != exponent) return std::pow(base, exponent);
    double result = 1.0;
    for (double factor = base;; factor *= factor) {
        if ((left & 1) != 0) result *= factor;
        left >>= 1;
        if (left == 0) break;
    }
    return std::fabs(result) <= MAX_EXACT ? result : std::pow(base, exponent);
}

// How a number ended: complete, or with a character where a digit, or an exponent, had to be.
enum class Number_end { COMPLETE, NO_DIGIT, NO_EXPONENT };

// The value is that of doubles added up digit by digit. As long as every step is exact, integers have the
// same value and are faster.
inline double read_integer_part(unsigned char*& at) {
    constexpr int EXACT_DIGITS = 15;  // a double represents every integer with 15 digits
    unsigned long long exact = 0;
    int digits = 0;
    for (; is_digit(*at) && digits < EXACT_DIGITS; ++digits)
        exact = exact * 10 + (*at++ - '0');
    double value = static_cast<double>(exact);
    while (is_digit(*at))
        value = value * 10.0 + (*at++ - '0');
    return value;
}

// Intended: folded from the last digit to the first. The last bits differ from those of a fold the other way,
// and a display shows them.
inline double read_fraction_part(unsigned char*& at) {
    const unsigned char* const first = at;
    while (is_digit(*at))
        ++at;
    double value = 0.0;
    for (const unsigned char* digit = at; digit != first;) {
        --digit;
        value = ((*digit - '0') + value) / 10.0;
    }
    return value;
}

// Reads what stands behind the "e". An exponent beyond `int` saturates.
inline Number_end read_exponent(unsigned char*& at, int& exponent) {
    const bool is_negative = *at == '-';
    const bool has_sign = is_negative || *at == '+';
    if (has_sign) ++at;
    if (!is_digit(*at)) return has_sign ? Number_end::NO_DIGIT : Number_end::NO_EXPONENT;
    int size = 0;
    for (; is_digit(*at); ++at) {
        const int digit = *at - '0';
        size = size > (INT_MAX - digit) / 10 ? INT_MAX : size * 10 + digit;
    }
    exponent = is_negative ? -size : size;
    return Number_end::COMPLETE;
}

// Reads the number at `at`, which is a digit or a point, and steps behind what belongs to it.
inline Number_end read_number(unsigned char*& at, double& value) {
    const bool has_integer_part = is_digit(*at);
    value = has_integer_part ? read_integer_part(at) : 0.0;
    if (*at == '.') {
        ++at;
        if (!has_integer_part && !is_digit(*at)) return Number_end::NO_DIGIT;
        if (is_digit(*at)) value += read_fraction_part(at);
    }
    if (*at != 'e' && *at != 'E') return Number_end::COMPLETE;
    ++at;
    int exponent = 0;
    const Number_end end = read_exponent(at, exponent);
    if (end == Number_end::COMPLETE) value *= std::pow(10.0, exponent);
    return end;
}

}  // namespace eval

#endif
