// Warnings of conditions and comparisons that read nothing: a forgotten bracket, mostly.
#ifndef FRONTPANEL_BINDING_LANGUAGE_CONSTANT_WARNINGS_H
#define FRONTPANEL_BINDING_LANGUAGE_CONSTANT_WARNINGS_H

#include <cstddef>
#include <vector>

#include <frontpanel_binding/binding_registry.h>

#include "language/token_cursor.h"

namespace frontpanel::binding_language {

class Constant_warnings {
public:
    // Both outlive the object.
    Constant_warnings(const Token_cursor& cursor, std::vector<Compile_error>& warnings)
        : m_cursor(cursor), m_warnings(warnings) {}

    // The token at hand begins a rule. A rule is on one line.
    void begin_rule();
    const char* rule_begin() const { return m_rule_begin; }
    int rule_line() const { return m_rule_line; }

    // What stands from `begin` up to the token at hand never changes. One warning for a rule is enough.
    void warn_of(const char* begin);

private:
    const Token_cursor& m_cursor;
    std::vector<Compile_error>& m_warnings;
    const char* m_rule_begin = nullptr;
    int m_rule_line = 0;
    std::size_t m_rule_column = 0;
    bool m_is_warned = false;
};

}  // namespace frontpanel::binding_language

#endif
