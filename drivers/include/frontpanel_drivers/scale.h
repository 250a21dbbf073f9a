// An exact factor between the numbers of a device and the whole numbers of a menu: "1/1000" shows millidegrees as degrees,
// "100" shows 0.52 as 52.
#ifndef FRONTPANEL_DRIVERS_SCALE_H
#define FRONTPANEL_DRIVERS_SCALE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

// A number of the menu, or why there is none: one line.
using Scaled_number = std::variant<std::int32_t, std::string>;

// Results are rounded to the nearest number, halves away from zero. A result that does not fit is reported, never cut.
class Scale {
public:
    static constexpr std::int64_t LARGEST = 1000000000;  // of both numbers
    static constexpr int MOST_DECIMALS = 9;              // of a text that is written

    Scale() = default;  // 1
    // Both from 1 to LARGEST.
    Scale(std::int64_t numerator, std::int64_t denominator);
    // The member "scale" of a source: "1/1000", "100" or 100; 1 when it is missing. Placed_error for anything else.
    static Scale of(const Json_value& source);

    bool is_one() const { return m_numerator == m_denominator; }

    // From the device: a whole number, or a decimal one with an optional sign and fraction: "42", "-0.52", "+7", ".5".
    Scaled_number from_device(std::int64_t number) const;
    Scaled_number from_device(std::string_view decimal) const;
    // A number as JSON has it, which may have an exponent: "2.5e-3".
    Scaled_number from_json(std::string_view number) const;
    // For the device: a decimal number, rounded to nine decimals; or a whole number.
    std::string to_decimal(std::int32_t number) const;
    std::int64_t to_whole(std::int32_t number) const;

private:
    Scaled_number scaled(bool is_negative, std::uint64_t whole, std::string_view decimals) const;

    std::uint64_t m_numerator = 1;
    std::uint64_t m_denominator = 1;
};

}  // namespace frontpanel

#endif
