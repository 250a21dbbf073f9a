// The relation between the values of a number and their texts: the size of a step in the displayed unit, and the value
// of a typed number.
//
// Both are worked out from the texts of some values, whatever the format and the conversion: from the number in a text,
// and the text before and behind it. Rows of a table with other texts are skipped.
#ifndef FRONTPANEL_EDITORS_NUMBER_SCALE_H
#define FRONTPANEL_EDITORS_NUMBER_SCALE_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace frontpanel {

class Number_scale {
public:
    using Text_of = std::function<std::string(int value)>;

    struct Typed {
        int value;      // the nearest one, which may lie beyond the limits
        bool is_exact;  // whether its text is the typed one
    };

    struct Digits {
        std::size_t first;
        std::size_t end;  // behind the last one
    };

    // For a value that is not shown as a number: nothing can be typed.
    Number_scale() = default;
    // For the values from `min` to `max`. `text_of` is called while the scale exists.
    Number_scale(Text_of text_of, int min, int max);

    // The digits of the number in the text of a value, with their point; of any other text, the first number. Empty for
    // a text without a digit.
    std::optional<Digits> digits_in(const std::string& text) const;
    // The characters that numbers can have; empty unless the numbers in the texts always rise, or always fall, with the
    // values.
    std::string characters() const;
    // The text before and behind the number.
    const std::string& before() const { return m_before; }
    const std::string& behind() const { return m_behind; }
    // The size of a step with its unit, such as "1.0 dB"; empty when it depends on the value.
    std::optional<std::string> step_text(int step) const;
    // The value of a typed number; empty for a text without a digit.
    std::optional<Typed> value_of(const std::string& typed) const;

private:
    struct Place {
        int value;
        double number;
    };

    std::optional<double> number_of(int value) const;
    bool is_linear() const;
    double slope() const;
    int nearest(double number) const;
    int nearest_between(Place low, Place high, double number) const;

    Text_of m_text_of;
    bool m_has_form = false;
    std::string m_form;    // the text before the number, without the blanks that pad it
    std::string m_before;  // the same with the blanks that every text has
    std::string m_behind;
    int m_decimals = 0;
    std::vector<Place> m_places;  // by value; empty without numbers
};

}  // namespace frontpanel

#endif
