#include "file/range_format.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace frontpanel {
namespace {

constexpr size_t MOST_DIGITS = 3;  // of a width or a precision
constexpr const char* INTEGER_CONVERSIONS = "diouxX";
constexpr const char* DOUBLE_CONVERSIONS = "eEfFgGaA";

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

bool has_table(const std::string& format) {
    return contains(format, ":") && contains(format, ",");
}

// A whole number as "%d" prints it: the library compares the printed value with the row's.
bool is_printed_number(const std::string& text) {
    const size_t first = !text.empty() && text[0] == '-' ? 1 : 0;
    const std::string digits = text.substr(first);
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    return digits == "0" ? first == 0 : digits[0] != '0';
}

std::optional<std::string> row_error(const std::string& row) {
    const size_t colon = row.find(':');
    if (colon == std::string::npos) {
        return "table row \"" + row + "\" has no ':'";
    }
    if (!is_printed_number(row.substr(0, colon))) {
        return "table row \"" + row + "\" does not begin with a whole number";
    }
    return std::nullopt;
}

size_t skip_digits(const std::string& text, size_t position) {
    const size_t start = position;
    while (position < text.size() && position - start < MOST_DIGITS &&
           std::isdigit(static_cast<unsigned char>(text[position])) != 0) {
        ++position;
    }
    return position;
}

// The conversion that begins at `start`, up to and with its letter; cut short at the end of the text.
std::string conversion_at(const std::string& text, size_t start) {
    size_t position = text.find_first_not_of("-+ #0", start + 1);
    position = skip_digits(text, position == std::string::npos ? text.size() : position);
    if (position < text.size() && text[position] == '.') {
        position = skip_digits(text, position + 1);
    }
    return text.substr(start, position + 1 - start);
}

// The conversions of a printf text, "%%" not included.
std::vector<std::string> conversions_of(const std::string& text) {
    std::vector<std::string> conversions;
    size_t position = text.find('%');
    while (position != std::string::npos) {
        if (text.compare(position, 2, "%%") == 0) {
            position = text.find('%', position + 2);
            continue;
        }
        conversions.push_back(conversion_at(text, position));
        position = text.find('%', position + conversions.back().size());
    }
    return conversions;
}

// "%" alone, or before a blank: a per cent sign, mostly.
std::string per_cent_hint(const std::vector<std::string>& conversions) {
    const bool is_meant =
        std::any_of(conversions.begin(), conversions.end(), [](const std::string& conversion) {
            return conversion.size() == 1 || conversion[1] == ' ';
        });
    return is_meant ? "; a per cent sign is written %%" : "";
}

std::optional<std::string> number_error(const std::string& format, const std::string& number) {
    const std::vector<std::string> conversions = conversions_of(number);
    if (conversions.empty()) {
        return std::nullopt;
    }
    if (conversions.size() > 1) {
        return "more than one conversion in \"" + number + "\"" + per_cent_hint(conversions);
    }
    const bool whole =
        contains(format, "%d") || contains(format, "%02x") || contains(number, "%02X");
    const std::string fitting = whole ? INTEGER_CONVERSIONS : DOUBLE_CONVERSIONS;
    if (fitting.find(conversions[0].back()) == std::string::npos) {
        return "conversion \"" + conversions[0] + "\" is not one of " +
               (whole ? "%d, %02x, %02X" : "%d, %02x, %02X, %f, %e, %g") +
               per_cent_hint(conversions);
    }
    return std::nullopt;
}

// Behind the rows of the table.
size_t start_of_number(const std::string& format) {
    return has_table(format) ? format.rfind(',') + 1 : 0;
}

}  // namespace

std::string untruncated(const std::string& format) {
    return format.empty() || has_table(format) ? format : ":," + format;
}

std::string whole_conversion(const std::string& format) {
    const std::vector<std::string> conversions =
        conversions_of(format.substr(start_of_number(format)));
    const bool is_whole =
        !conversions.empty() &&
        std::string(INTEGER_CONVERSIONS).find(conversions[0].back()) != std::string::npos;
    return is_whole ? conversions[0] : "";
}

std::optional<std::string> range_format_error(const std::string& format) {
    size_t position = 0;
    if (has_table(format)) {
        size_t comma = format.find(',');
        while (comma != std::string::npos) {
            if (auto error = row_error(format.substr(position, comma - position))) {
                return error;
            }
            position = comma + 1;
            comma = format.find(',', position);
        }
    }
    return number_error(format, format.substr(position));
}

}  // namespace frontpanel
