// Whole numbers in text that a person wrote.
#ifndef FRONTPANEL_BASE_NUMBERS_H
#define FRONTPANEL_BASE_NUMBERS_H

#include <charconv>
#include <limits>
#include <optional>
#include <string_view>

namespace frontpanel {

// Parses a text that is a decimal number as a whole, with an optional minus sign. Empty for any other text (an empty
// one, one with blanks or a plus sign) and for a number below `min` or above `max`.
template <typename Number>
std::optional<Number> parse_number(std::string_view text,
                                   Number min = std::numeric_limits<Number>::min(),
                                   Number max = std::numeric_limits<Number>::max()) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stopped != end || number < min || number > max) {
        return std::nullopt;
    }
    return number;
}

}  // namespace frontpanel

#endif
