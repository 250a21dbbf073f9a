// How the values of a number are shown: what a step is in the unit that a person reads, and which value a typed number
// means.
//
// Both follow from the texts of some values, so that every format and conversion is treated alike: the number in them,
// and what stands before and behind it. Rows of a table with other texts are passed over.
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
        bool is_exact;  // whether it is shown as it was typed
    };

    struct Digits {
        std::size_t first;
        std::size_t end;  // behind the last one
    };

    // Without numbers: nothing can be typed.
    Number_scale() = default;
    // Of the values from `min` to `max`. `text_of` is called for as long as the scale lives.
    Number_scale(Text_of text_of, int min, int max);

    // The digits of the number in the text of a value, with their point; of another text its first number. Nothing for a
    // text without a digit.
    std::optional<Digits> digits_in(const std::string& text) const;
    // The characters of a number as it is shown; empty where the texts are no numbers that rise or fall with the values.
    std::string characters() const;
    // What stands before and behind the number.
    const std::string& before() const { return m_before; }
    const std::string& behind() const { return m_behind; }
    // The difference that a step makes, with its unit, such as "1.0 dB"; nothing where it is not the same for each value.
    std::optional<std::string> step_text(int step) const;
    // The value that a number stands for; nothing for a text without a digit.
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
    std::string m_form;    // what stands before the number, without blanks that fill it up
    std::string m_before;  // with those that each number has
    std::string m_behind;
    int m_decimals = 0;
    std::vector<Place> m_places;  // by value; empty without numbers
};

}  // namespace frontpanel

#endif
