#include "number_format.h"

#include <locale.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace number_format {
namespace {

constexpr char FLAGS[] = "-+ #0'";
constexpr char DIGITS[] = "0123456789";
constexpr char WHOLE_CONVERSIONS[] = "dioxXu";
constexpr char REAL_CONVERSIONS[] = "aAeEfFgG";
constexpr std::size_t MOST_DIGITS = 3;

// The thread's locale while a number is printed. The "C" locale of newlocale is static: nothing to free.
class Point_as_decimal_sign {
public:
    Point_as_decimal_sign() : m_before(uselocale(c_locale())) {}
    ~Point_as_decimal_sign() { uselocale(m_before); }
    Point_as_decimal_sign(const Point_as_decimal_sign&) = delete;
    Point_as_decimal_sign& operator=(const Point_as_decimal_sign&) = delete;

private:
    static locale_t c_locale() {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

    locale_t m_before;
};

// Steps over digits; false when there are too many.
bool skip_digits(const char*& at) {
    const std::size_t count = std::strspn(at, DIGITS);
    at += count;
    return count <= MOST_DIGITS;
}

// Steps over a conversion behind its '%'; false when it is not one of `conversions`.
bool skip_conversion(const char*& at, const char* conversions) {
    at += std::strspn(at, FLAGS);
    if (!skip_digits(at)) {
        return false;
    }
    if (*at == '.' && !skip_digits(++at)) {
        return false;
    }
    if (*at == '\0' || std::strchr(conversions, *at) == nullptr) {
        return false;
    }
    ++at;
    return true;
}

// The callers have checked the format.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
int print_to(char* out, std::size_t size, const char* format, Argument argument, double value) {
    switch (argument) {
        case Argument::WHOLE:
            return std::snprintf(out, size, format, to_int(value));
        case Argument::TENTHS:
            return std::snprintf(out, size, format, std::round(value * 10) / 10);
        case Argument::REAL:
            break;
    }
    return std::snprintf(out, size, format, value);
}
#pragma GCC diagnostic pop

}  // namespace

bool fits(const char* format, Argument argument) {
    const char* conversions = argument == Argument::WHOLE ? WHOLE_CONVERSIONS : REAL_CONVERSIONS;
    int count = 0;
    for (const char* at = std::strchr(format, '%'); at != nullptr; at = std::strchr(at, '%')) {
        ++at;
        if (*at == '%') {
            ++at;
            continue;
        }
        if (!skip_conversion(at, conversions)) {
            return false;
        }
        ++count;
    }
    return count <= 1;
}

std::string print(const char* format, Argument argument, double value, std::size_t limit) {
    // Processors differ in the sign of not-a-number, and "-nan dB" tells a user nothing.
    if (std::isnan(value)) {
        value = 0;
    }
    const Point_as_decimal_sign point;
    const int length = print_to(nullptr, 0, format, argument, value);
    if (length <= 0) {
        return {};
    }
    std::string text(std::min(static_cast<std::size_t>(length), limit), '\0');
    print_to(text.data(), text.size() + 1, format, argument, value);
    return text;
}

int to_int(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= std::numeric_limits<int>::max()) {
        return std::numeric_limits<int>::max();
    }
    if (value <= std::numeric_limits<int>::min()) {
        return std::numeric_limits<int>::min();
    }
    return static_cast<int>(value);
}

}  // namespace number_format
