// Checks the expression of "value_format" before the library gets it: docs/evaluator.md describes the language.
#ifndef FRONTPANEL_MENU_DISPLAY_EXPRESSION_H
#define FRONTPANEL_MENU_DISPLAY_EXPRESSION_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace frontpanel {

struct Expression_error {
    size_t offset;  // in the expression, from 0
    std::string message;
};

// Why the library can convert neither `min` nor `max`: an expression may have no value for one number, as in a
// division, but must have it for some.
std::optional<Expression_error> display_expression_error(const std::string& expression, int min,
                                                         int max);
// Whether the number shown depends on the value.
bool names_value(const std::string& expression);
// Whether some value from `min` to `max` is shown as a number with decimals. The first values stand for all.
bool has_decimals(const std::string& expression, int min, int max);

}  // namespace frontpanel

#endif
