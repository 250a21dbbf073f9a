#include "range_display.h"

#include <frontpanel_data/evaluator.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>

#include "number_format.h"

namespace range_display {
namespace {

using number_format::Argument;

// A formatted number without a table fills the display's number field.
constexpr std::size_t NUMBER_FIELD = 14;

std::string_view decimal(int value, Storage& storage) {
    char* const begin = storage.digits;
    const std::to_chars_result end = std::to_chars(begin, begin + sizeof storage.digits, value);
    return {begin, static_cast<std::size_t>(end.ptr - begin)};
}

bool has_table(const std::string& format) {
    return format.find(':') != std::string::npos && format.find(',') != std::string::npos;
}

// The text of the table's row for `key`; without one, `rest` becomes where the number format starts.
std::optional<std::string_view> table_text(std::string_view format, std::string_view key,
                                           std::size_t& rest) {
    for (std::size_t row = 0;;) {
        const std::size_t comma = format.find(',', row);
        // Not limited to the row: a row without a ':' takes the next row's and matches no number.
        const std::size_t colon = format.find(':', row);
        if (comma == std::string_view::npos || colon == std::string_view::npos) {
            rest = row;
            return std::nullopt;
        }
        if (format.substr(row, colon - row) == key) {
            return format.substr(colon + 1, comma - colon - 1);
        }
        row = comma + 1;
    }
}

bool starts_with(const char* text, const char* start) {
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

// Menu files rely on this: "%d" and "%02x" count anywhere in the whole format, even directly behind a "%".
Argument argument_of(const std::string& display_format, const char* format) {
    Argument argument = Argument::REAL;
    const char* const start = display_format.c_str();
    for (const char* at = std::strchr(start, '%'); at != nullptr; at = std::strchr(at + 1, '%')) {
        if (starts_with(at, "%d") || starts_with(at, "%02x") ||
            (at >= format && starts_with(at, "%02X"))) {
            return Argument::WHOLE;
        }
        if (at >= format && starts_with(at, "%.1f")) {
            argument = Argument::TENTHS;
        }
    }
    return argument;
}

// By its name: other expressions of the panel may have left variables that sort before it.
const VariableDescriptor* find_variable(const char* name) {
    const VariableDescriptor* const end = variable + nVariables;
    const VariableDescriptor* const found =
        std::lower_bound(static_cast<const VariableDescriptor*>(variable), end, name,
                         [](const VariableDescriptor& candidate, const char* wanted) {
                             return std::strcmp(candidate.name, wanted) < 0;
                         });
    return found != end && std::strcmp(found->name, name) == 0 ? found : nullptr;
}

// "v=VALUE;\nv=EXPRESSION;\n", without an allocation for usual expressions.
class Conversion_text {
public:
    Conversion_text(std::string_view value, std::string_view expression) {
        constexpr std::string_view PARTS[] = {"v=", ";\nv=", ";\n"};
        const std::string_view all[] = {PARTS[0], value, PARTS[1], expression, PARTS[2]};
        std::size_t size = 1;
        for (const std::string_view part : all) {
            size += part.size();
        }
        if (size > sizeof m_short) {
            m_long = std::string(size, '\0');
            m_text = m_long.data();
        }
        char* at = m_text;
        for (const std::string_view part : all) {
            at = std::copy(part.begin(), part.end(), at);
        }
        *at = '\0';
    }
    Conversion_text(const Conversion_text&) = delete;
    Conversion_text& operator=(const Conversion_text&) = delete;

    char* text() { return m_text; }

private:
    char m_short[128];
    std::string m_long;
    char* m_text = m_short;
};

double converted(int value, std::string_view digits, const std::string& expression) {
    Conversion_text text(digits, expression);
    if (evaluateExpression(text.text()) != 0) {
        return value;
    }
    const VariableDescriptor* const result = find_variable("v");
    return result != nullptr ? result->value : value;
}

}  // namespace

std::string_view text_of(int value, const std::string& display_format,
                         const std::string& value_format, std::size_t limit, Storage& storage) {
    const std::string_view digits = decimal(value, storage);
    const std::string_view plain = digits.substr(0, limit);
    if (display_format.empty() || value_format.empty()) {
        return plain;
    }

    std::size_t number_at = 0;
    const bool table = has_table(display_format);
    if (table) {
        const auto text = table_text(display_format, digits, number_at);
        if (text) {
            return text->substr(0, limit);
        }
    }
    const char* const format = display_format.c_str() + number_at;
    const number_format::Format number(format, argument_of(display_format, format));
    if (!number.fits()) {
        return plain;
    }
    return number.print(converted(value, digits, value_format),
                        table ? limit : std::min(limit, NUMBER_FIELD), storage.formatted);
}

}  // namespace range_display
