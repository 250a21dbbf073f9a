#include "number_format.h"

#include <locale.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace number_format {
namespace {

constexpr char WHOLE_CONVERSIONS[] = "dioxXu";
constexpr char REAL_CONVERSIONS[] = "aAeEfFgG";
constexpr int MOST_DIGITS = 3;
constexpr int DEFAULT_PRECISION = 6;
// Numbers in tenths up to here are exact.
constexpr double MOST_TENTHS = 1e15;

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

bool is_digit(char character) {
    return character >= '0' && character <= '9';
}

// Steps over digits; false when there are too many.
bool read_digits(const char*& at, int& number) {
    number = 0;
    int count = 0;
    for (; is_digit(*at); ++at) {
        if (++count > MOST_DIGITS) {
            return false;
        }
        number = number * 10 + (*at - '0');
    }
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

std::string print_by_library(const char* format, Argument argument, double value,
                             std::size_t limit) {
    const Point_as_decimal_sign point;
    const int length = print_to(nullptr, 0, format, argument, value);
    if (length <= 0) {
        return {};
    }
    std::string text(std::min(static_cast<std::size_t>(length), limit), '\0');
    print_to(text.data(), text.size() + 1, format, argument, value);
    return text;
}

// Writes within a buffer; what has no place is noticed at the end.
class Writer {
public:
    Writer(char* begin, char* end) : m_begin(begin), m_at(begin), m_end(end) {}

    void put(char character) {
        if (m_at != m_end) {
            *m_at++ = character;
        } else {
            m_full = true;
        }
    }
    void put(const char* text, std::size_t length) {
        if (length > static_cast<std::size_t>(m_end - m_at)) {
            m_full = true;
            return;
        }
        std::memcpy(m_at, text, length);
        m_at += length;
    }
    void repeat(char character, std::ptrdiff_t count) {
        for (; count > 0; --count) {
            put(character);
        }
    }
    // The text around a conversion, in which "%%" stands for '%'.
    void put_around(const char* at, const char* end) {
        for (; at != end; ++at) {
            put(*at);
            at += *at == '%' ? 1 : 0;
        }
    }
    bool is_full() const { return m_full; }
    std::size_t length() const { return static_cast<std::size_t>(m_at - m_begin); }

private:
    char* m_begin;
    char* m_at;
    char* m_end;
    bool m_full = false;
};

// The digits of a number, without its sign.
struct Digits {
    char text[128];
    std::ptrdiff_t length = 0;

    bool take(const std::to_chars_result& result) {
        length = result.ptr - text;
        return result.ec == std::errc();
    }
};

bool write_whole(unsigned int number, char kind, Digits& digits) {
    const int base = kind == 'o' ? 8 : kind == 'x' || kind == 'X' ? 16 : 10;
    char* const end = digits.text + sizeof digits.text;
    const bool fits = digits.take(std::to_chars(digits.text, end, number, base));
    if (kind == 'X') {
        std::transform(digits.text, digits.text + digits.length, digits.text, [](char digit) {
            return digit >= 'a' ? static_cast<char>(digit - 32) : digit;
        });
    }
    return fits;
}

bool write_tenths(double tenths, Digits& digits) {
    const auto whole = static_cast<unsigned long long>(tenths);
    char* const end = digits.text + sizeof digits.text;
    if (!digits.take(std::to_chars(digits.text, end - 2, whole / 10))) {
        return false;
    }
    digits.text[digits.length++] = '.';
    digits.text[digits.length++] = static_cast<char>('0' + whole % 10);
    return true;
}

bool write_real(double number, char kind, int precision, Digits& digits) {
    const std::chars_format form = kind == 'e'   ? std::chars_format::scientific
                                   : kind == 'g' ? std::chars_format::general
                                                 : std::chars_format::fixed;
    return digits.take(
        std::to_chars(digits.text, digits.text + sizeof digits.text, number, form, precision));
}

}  // namespace

Format::Format(const char* text, Argument argument) : m_text(text), m_argument(argument) {
    int count = 0;
    for (const char* at = std::strchr(text, '%'); at != nullptr; at = std::strchr(at, '%')) {
        if (at[1] == '%') {
            at += 2;
            continue;
        }
        if (++count > 1 || !read_conversion(at)) {
            return;
        }
        at = m_end;
    }
    m_fits = true;
}

// `at` is the '%' of a conversion.
bool Format::read_conversion(const char* at) {
    m_start = at++;
    for (;; ++at) {
        switch (*at) {
            case '-':
                m_left = true;
                continue;
            case '0':
                m_zeros = true;
                continue;
            case '+':
                m_plus = '+';
                continue;
            case ' ':
                m_plus = m_plus == '\0' ? ' ' : m_plus;
                continue;
            case '#':
            case '\'':
                m_rare_flag = true;
                continue;
            default:
                break;
        }
        break;
    }
    if (!read_digits(at, m_width)) {
        return false;
    }
    if (*at == '.' && !read_digits(++at, m_precision)) {
        return false;
    }
    m_kind = *at;
    m_end = at + 1;
    return m_kind != '\0' &&
           std::strchr(m_argument == Argument::WHOLE ? WHOLE_CONVERSIONS : REAL_CONVERSIONS,
                       m_kind) != nullptr;
}

bool Format::is_usual() const {
    return !m_rare_flag && m_kind != 'a' && m_kind != 'A' && m_kind != 'E' && m_kind != 'G';
}

std::string_view Format::print(double value, std::size_t limit, Buffer& buffer) const {
    // Processors differ in the sign of not-a-number, and "-nan dB" means nothing to a user.
    if (std::isnan(value)) {
        value = 0;
    }
    std::size_t length = 0;
    if (write(value, buffer, length)) {
        return {buffer.text, std::min(length, limit)};
    }
    buffer.longer = print_by_library(m_text, m_argument, value, limit);
    return buffer.longer;
}

// False when the library has to print: for a rare conversion, infinity, or a text that is too long.
bool Format::write(double value, Buffer& buffer, std::size_t& length) const {
    Writer out(buffer.text, buffer.text + sizeof buffer.text);
    const char* const end = m_text + std::strlen(m_text);
    if (m_start == nullptr) {
        out.put_around(m_text, end);
        length = out.length();
        return !out.is_full();
    }
    if (!is_usual()) {
        return false;
    }
    Digits digits;
    bool is_negative = false;
    bool is_signed = true;
    std::ptrdiff_t zeros = 0;
    if (m_argument == Argument::WHOLE) {
        const int number = to_int(value);
        is_signed = m_kind == 'd' || m_kind == 'i';
        is_negative = is_signed && number < 0;
        const auto magnitude = static_cast<unsigned int>(number);
        if ((number != 0 || m_precision != 0) &&
            !write_whole(is_negative ? 0U - magnitude : magnitude, m_kind, digits)) {
            return false;
        }
        zeros = std::max<std::ptrdiff_t>(m_precision - digits.length, 0);
    } else {
        const double tenths = std::round(value * 10);
        const double number = m_argument == Argument::TENTHS ? tenths / 10 : value;
        if (!std::isfinite(number)) {
            return false;
        }
        is_negative = std::signbit(number);
        const int precision = m_precision < 0 ? DEFAULT_PRECISION : m_precision;
        const bool in_tenths = m_argument == Argument::TENTHS && precision == 1 &&
                               (m_kind == 'f' || m_kind == 'F') && std::fabs(tenths) < MOST_TENTHS;
        if (in_tenths ? !write_tenths(std::fabs(tenths), digits)
                      : !write_real(std::fabs(number), m_kind, precision, digits)) {
            return false;
        }
    }
    const char sign = is_negative ? '-' : is_signed ? m_plus : '\0';
    std::ptrdiff_t blanks = m_width - digits.length - zeros - (sign != '\0' ? 1 : 0);
    // A precision of whole numbers, or a place at the left, leaves no zeros to fill the width.
    if (m_zeros && !m_left && (m_argument != Argument::WHOLE || m_precision < 0)) {
        zeros = std::max<std::ptrdiff_t>(blanks, 0);
        blanks = 0;
    }
    out.put_around(m_text, m_start);
    out.repeat(' ', m_left ? 0 : blanks);
    if (sign != '\0') {
        out.put(sign);
    }
    out.repeat('0', zeros);
    out.put(digits.text, static_cast<std::size_t>(digits.length));
    out.repeat(' ', m_left ? blanks : 0);
    out.put_around(m_end, end);
    length = out.length();
    return !out.is_full();
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
