// The toggle expressions of homescreen links: from what a menu file says to what the library evaluates.
//
// The library reads a toggle's result from the evaluator's first variable by name, whichever evaluation created
// it. So every toggle assigns to `a`, and no other expression of the panel uses a name that sorts before it.
#ifndef FRONTPANEL_MENU_TOGGLE_H
#define FRONTPANEL_MENU_TOGGLE_H

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <frontpanel_binding/parameter_table.h>

namespace frontpanel {

constexpr const char* TOGGLE_RESULT = "a";

struct Toggle {
    std::string expression;  // "a=[101.1]==1"
    std::vector<const Parameter*> parameters;
};

// What is wrong with a toggle, and where in its text, from 0.
class Toggle_error : public std::runtime_error {
public:
    Toggle_error(size_t offset, const std::string& text)
        : std::runtime_error(text), m_offset(offset) {}
    size_t offset() const { return m_offset; }

private:
    size_t m_offset;
};

// `find` delivers the parameter of a name or an address, null for none. Toggle_error when the text is no
// condition. The empty text is the toggle that is always on.
Toggle translate_toggle(const std::string& text,
                        const std::function<const Parameter*(const std::string&)>& find);

// The names of the variables in an expression of the evaluator's language, as they come.
std::vector<std::string> variables_of(const std::string& expression);

}  // namespace frontpanel

#endif
