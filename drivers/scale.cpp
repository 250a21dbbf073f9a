#include <frontpanel_drivers/scale.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

#include <frontpanel_base/numbers.h>

namespace frontpanel {
namespace {

constexpr std::size_t MOST_DIGITS = 19;  // before the point: what fits 64 bits for sure
constexpr std::uint64_t LOWER_HALF = 0xFFFFFFFFU;
constexpr unsigned HALF_BITS = 32;
constexpr unsigned BITS = 64;
constexpr std::uint64_t TEN = 10;

// A product of two numbers. No type of every device is as wide.
struct Wide {
    std::uint64_t high = 0;
    std::uint64_t low = 0;
};

Wide product(std::uint64_t left, std::uint64_t right) {
    const std::uint64_t low = (left & LOWER_HALF) * (right & LOWER_HALF);
    const std::uint64_t cross = (left >> HALF_BITS) * (right & LOWER_HALF) + (low >> HALF_BITS);
    const std::uint64_t other = (left & LOWER_HALF) * (right >> HALF_BITS) + (cross & LOWER_HALF);
    return {
        (left >> HALF_BITS) * (right >> HALF_BITS) + (cross >> HALF_BITS) + (other >> HALF_BITS),
        (other << HALF_BITS) | (low & LOWER_HALF)};
}

Wide sum(Wide left, std::uint64_t right) {
    left.low += right;
    left.high += left.low < right ? 1 : 0;
    return left;
}

// Without its fraction. Nothing when it has more than 64 bits. `divisor` is below 2^63.
std::optional<std::uint64_t> quotient(const Wide& dividend, std::uint64_t divisor) {
    if (dividend.high >= divisor) {
        return std::nullopt;
    }
    std::uint64_t rest = dividend.high;
    std::uint64_t result = 0;
    for (unsigned bit = BITS; bit-- > 0;) {
        rest = (rest << 1U) | ((dividend.low >> bit) & 1U);
        result <<= 1U;
        if (rest >= divisor) {
            rest -= divisor;
            result |= 1U;
        }
    }
    return result;
}

// The whole part of a factor times the fraction of those decimals, however many they are. `factor` is below 2^59.
std::uint64_t whole_part(std::string_view decimals, std::uint64_t factor) {
    std::uint64_t carry = 0;
    for (auto digit = decimals.rbegin(); digit != decimals.rend(); ++digit) {
        carry = (static_cast<std::uint64_t>(*digit - '0') * factor + carry) / TEN;
    }
    return carry;
}

bool are_digits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// A number's text without its sign.
struct Signed_text {
    explicit Signed_text(std::string_view number)
        : is_negative(!number.empty() && number.front() == '-'),
          text(number.substr(is_negative || (!number.empty() && number.front() == '+') ? 1 : 0)) {}

    bool is_negative;
    std::string_view text;
};

std::string_view without_leading_zeros(std::string_view digits) {
    return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

std::uint64_t number_of(std::string_view digits) {
    return parse_number<std::uint64_t>(digits).value_or(0);
}

// The digits of a number with an exponent, without leading zeros.
struct Digits {
    bool is_negative;
    std::string text;
    std::int64_t whole;  // digits before the point; below 0: the number of zeros after the point
};

std::optional<Digits> digits_of(std::string_view number) {
    constexpr std::int64_t FAR = 1000000;
    const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
    const Signed_text mantissa(number.substr(0, mark));
    const Signed_text exponent(number.substr(std::min(mark + 1, number.size())));
    const std::size_t point = std::min(mantissa.text.find('.'), mantissa.text.size());
    std::string text(mantissa.text);
    text.erase(point, 1);
    if (text.empty() || !are_digits(text) || exponent.text.empty() || !are_digits(exponent.text)) {
        return std::nullopt;
    }
    const std::size_t zeros = std::min(text.find_first_not_of('0'), text.size());
    text.erase(0, zeros);
    const std::int64_t shift = parse_number<std::int64_t>(exponent.text, 0, FAR).value_or(FAR);
    return Digits{mantissa.is_negative, std::move(text),
                  static_cast<std::int64_t>(point) - static_cast<std::int64_t>(zeros) +
                      (exponent.is_negative ? -shift : shift)};
}

}  // namespace

Scale::Scale(std::int64_t numerator, std::int64_t denominator) {
    const std::int64_t common = std::gcd(numerator, denominator);
    m_numerator = static_cast<std::uint64_t>(numerator / common);
    m_denominator = static_cast<std::uint64_t>(denominator / common);
}

Scale Scale::of(const Json_value& source) {
    const auto value = source.find("scale");
    if (!value) {
        return {};
    }
    if (!value->is_text()) {
        return {value->integer(1, LARGEST), 1};
    }
    const std::string text = value->text();
    const std::size_t slash = std::min(text.find('/'), text.size());
    const auto numerator = parse_number<std::int64_t>(text.substr(0, slash), 1, LARGEST);
    const auto denominator =
        slash == text.size() ? 1 : parse_number<std::int64_t>(text.substr(slash + 1), 1, LARGEST);
    if (!numerator || !denominator) {
        value->fail("expected a scale such as \"1/1000\" or \"100\", found \"" + text + "\"");
    }
    return {*numerator, *denominator};
}

// Twice the result, rounded down, has the half by which the result is rounded: decimals are needed no longer.
Scaled_number Scale::scaled(bool is_negative, std::uint64_t whole,
                            std::string_view decimals) const {
    constexpr std::int64_t LOWEST = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t HIGHEST = std::numeric_limits<std::int32_t>::max();
    const std::uint64_t factor = 2 * m_numerator;
    const std::optional<std::uint64_t> twice =
        quotient(sum(product(whole, factor), whole_part(decimals, factor)), m_denominator);
    const auto largest = static_cast<std::uint64_t>(is_negative ? -LOWEST : HIGHEST);
    if (!twice || *twice > 2 * largest) {
        return "the number does not fit 32 bits";
    }
    const auto number = static_cast<std::int64_t>((*twice + 1) / 2);
    return static_cast<std::int32_t>(is_negative ? -number : number);
}

Scaled_number Scale::from_device(std::int64_t number) const {
    const auto bits = static_cast<std::uint64_t>(number);
    return scaled(number < 0, number < 0 ? 0 - bits : bits, "");
}

Scaled_number Scale::from_device(std::string_view decimal) const {
    const auto [is_negative, unsigned_part] = Signed_text(decimal);
    const std::size_t point = std::min(unsigned_part.find('.'), unsigned_part.size());
    const std::string_view whole = unsigned_part.substr(0, point);
    const std::string_view fraction =
        unsigned_part.substr(std::min(point + 1, unsigned_part.size()));
    if (!are_digits(whole) || !are_digits(fraction) || (whole.empty() && fraction.empty())) {
        return "not a number";
    }
    const std::string_view digits = without_leading_zeros(whole);
    return digits.size() > MOST_DIGITS ? Scaled_number("the number has too many digits")
                                       : scaled(is_negative, number_of(digits), fraction);
}

Scaled_number Scale::from_json(std::string_view number) const {
    if (number.find_first_of("eE") == std::string_view::npos) {
        return from_device(number);
    }
    std::optional<Digits> digits = digits_of(number);
    if (!digits) {
        return "not a number";
    }
    constexpr auto MOST = static_cast<std::int64_t>(MOST_DIGITS);
    if (digits->text.empty() || digits->whole < -MOST) {
        return 0;
    }
    if (digits->whole > MOST) {
        return "the number has too many digits";
    }
    std::string& text = digits->text;
    text.insert(0, static_cast<std::size_t>(std::max<std::int64_t>(-digits->whole, 0)), '0');
    const auto whole = static_cast<std::size_t>(std::max<std::int64_t>(digits->whole, 0));
    text.resize(std::max(text.size(), whole), '0');
    text.insert(whole, ".");
    return from_device((digits->is_negative ? "-" : "") + text);
}

std::string Scale::to_decimal(std::int32_t number) const {
    const std::uint64_t magnitude =
        static_cast<std::uint64_t>(number < 0 ? -std::int64_t{number} : std::int64_t{number}) *
        m_denominator;
    std::uint64_t billionth = 1;
    for (int i = 0; i < MOST_DECIMALS; ++i) {
        billionth *= TEN;
    }
    std::uint64_t whole = magnitude / m_numerator;
    const std::uint64_t rest = magnitude % m_numerator;
    std::uint64_t decimals = (rest * billionth * 2 + m_numerator) / (2 * m_numerator);
    whole += decimals / billionth;
    decimals %= billionth;
    std::string text = std::to_string(whole);
    if (decimals > 0) {
        const std::string shown = std::to_string(billionth + decimals).substr(1);
        text += "." + shown.substr(0, shown.find_last_not_of('0') + 1);
    }
    return number < 0 && text != "0" ? "-" + text : text;
}

std::int64_t Scale::to_whole(std::int32_t number) const {
    const std::int64_t magnitude = number < 0 ? -std::int64_t{number} : std::int64_t{number};
    const std::uint64_t product = static_cast<std::uint64_t>(magnitude) * m_denominator;
    const auto whole = static_cast<std::int64_t>((2 * product + m_numerator) / (2 * m_numerator));
    return number < 0 ? -whole : whole;
}

}  // namespace frontpanel
