// A value that is edited as a row of numbers, such as an address or a time: one field is chosen, and the
// encoder changes it within limits.
#ifndef FRONTPANEL_EDITORS_FIELD_LINE_H
#define FRONTPANEL_EDITORS_FIELD_LINE_H

#include <frontpanel_editors/value_editor.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace frontpanel {

struct Number_field {
    int value;
    int width;            // digits, filled with zeros; 0 for as many as the number needs
    std::string leading;  // the text between the field before and this one
};

class Field_line {
public:
    struct Limits {
        int min;
        int max;
    };
    using Limits_of = std::function<Limits(std::size_t field)>;

    // Replaces the row and chooses its last field. `trailing` follows the last field.
    void set(std::vector<Number_field> fields, std::string trailing = "");
    // The effect of a step of the encoder: the number changes by `steps`, up to its limits; with `wrap` a step beyond
    // a limit leads to the other one.
    struct Turn {
        int steps = 1;
        bool wrap = false;
    };
    // COARSER and FINER choose the field to the left and to the right; UP and DOWN turn the chosen one.
    void step(Editor_key key, const Turn& turn, const Limits_of& limits_of);
    // A digit replaces the chosen field's number, or follows the digits just typed; one that would exceed the field's
    // limit is ignored. A full field of a fixed width, and any other character, move on to the next field. A number
    // below its limit becomes the limit when the cursor leaves the field.
    void type(char character, const Limits_of& limits_of);
    // Removes the digit that was typed last.
    void erase();
    bool is_typing() const { return !m_typed.empty(); }
    // Puts every field within its limits, from the first to the last, and ends typing.
    void keep_limits(const Limits_of& limits_of);

    int value(std::size_t field) const { return m_fields[field].value; }
    std::size_t chosen() const { return m_chosen; }
    std::string text() const;
    void draw(int columns, Editor_view& shown) const;

private:
    std::string text_up_to(std::size_t end) const;

    std::vector<Number_field> m_fields;
    std::string m_trailing;
    std::size_t m_chosen = 0;
    std::string m_typed;          // the digits of the chosen field that were typed
    bool m_has_moved_on = false;  // a full field just led to the next one
};

}  // namespace frontpanel

#endif
