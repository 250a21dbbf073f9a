// What is doubtful in a rule: conditions and comparisons that read nothing, a forgotten bracket mostly, and those that
// the bounds of the parameters make always or never true.
#ifndef FRONTPANEL_BINDING_LANGUAGE_CONSTANT_WARNINGS_H
#define FRONTPANEL_BINDING_LANGUAGE_CONSTANT_WARNINGS_H

#include <cstddef>
#include <string>
#include <string_view>

#include <frontpanel_binding/binding_registry.h>

#include "language/token_cursor.h"
#include "language/value_bounds.h"

namespace frontpanel::binding_language {

class Constant_warnings {
public:
    // Both outlive the object. Warnings, constant conditions and options go to `result`.
    Constant_warnings(const Token_cursor& cursor, Compile_result& result)
        : m_cursor(cursor), m_result(result) {}

    // The token at hand begins a rule. A rule is on one line.
    void begin_rule();
    const char* rule_begin() const { return m_rule_begin; }
    int rule_line() const { return m_rule_line; }

    // The text from `begin` up to the current token never changes. One warning for a rule is enough.
    void warn_of(const char* begin);
    // The text from `begin` up to the current token reads something and yields a value within `bounds`: always true,
    // never true, or both at times. `reason` names what has these bounds; may be empty.
    void comparison(const char* begin, Value_bounds bounds, const std::string& reason);
    // The condition of the rule, whose comparisons came before.
    void condition(const char* begin, Value_bounds bounds);
    void option(std::string_view name);

private:
    void add_constant(const char* begin, Value_bounds bounds, const std::string& reason);
    Compile_error warning(const char* begin, const std::string& message) const;

    const Token_cursor& m_cursor;
    Compile_result& m_result;
    std::size_t m_rules = 0;        // that have begun
    std::size_t m_comparisons = 0;  // of the rule so far
    bool m_has_constant = false;
    const char* m_rule_begin = nullptr;
    int m_rule_line = 0;
    std::size_t m_rule_column = 0;
    bool m_is_warned = false;
};

}  // namespace frontpanel::binding_language

#endif
