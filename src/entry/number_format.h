// Printing a number with a printf format that comes from a menu file.
//
// A format is checked before it is used, since a conversion that does not fit its argument would crash the
// panel. The decimal sign is a point whatever the locale, as in the expressions that compute the number.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_NUMBER_FORMAT_H
#define FRONTPANEL_DATA_SRC_ENTRY_NUMBER_FORMAT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace number_format {

// What the number is before it is printed.
enum class Argument {
    WHOLE,   // an int, cut towards zero
    TENTHS,  // a double, rounded to tenths
    REAL     // a double as it is
};

// What holds a printed text.
struct Buffer {
    char text[256];
    std::string longer;  // of a text that has no place there, or of a conversion that is rare
};

class Format {
public:
    // `text` outlives the format.
    Format(const char* text, Argument argument);

    // Whether the text holds at most one conversion, and one that takes the argument. Width and precision have
    // at most three digits each, so that no format makes a display wait.
    bool fits() const { return m_fits; }

    // The first `limit` characters of `value` printed; not-a-number prints as 0. Refers to `buffer`. Usual
    // conversions allocate nothing.
    // Requires: the format fits.
    std::string_view print(double value, std::size_t limit, Buffer& buffer) const;

private:
    bool read_conversion(const char* at);
    bool is_usual() const;
    bool write(double value, Buffer& buffer, std::size_t& length) const;

    const char* m_text;
    Argument m_argument;
    bool m_fits = false;
    // The conversion.
    const char* m_start = nullptr;  // its '%'; null without one
    const char* m_end = nullptr;    // behind it
    char m_kind = '\0';
    bool m_left = false;
    bool m_zeros = false;
    char m_plus = '\0';  // sign of numbers that are not negative
    bool m_rare_flag = false;
    int m_width = 0;
    int m_precision = -1;  // none
};

// Cut towards zero, limited to the range of `int`; 0 for not-a-number.
int to_int(double value);

}  // namespace number_format

#endif
