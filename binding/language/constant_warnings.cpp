#include "language/constant_warnings.h"

#include <string>
#include <utility>

#include "parameters/source_text.h"

namespace frontpanel::binding_language {

namespace {

constexpr std::size_t MOST_WARNINGS = 100;

}  // namespace

void Constant_warnings::begin_rule() {
    m_rule_begin = m_cursor.place();
    m_rule_line = m_cursor.line();
    m_rule_column = m_cursor.column();
    m_is_warned = false;
}

// The line is known, so that it is not looked for from the beginning of the text.
void Constant_warnings::warn_of(const char* begin) {
    if (std::exchange(m_is_warned, true) || m_warnings.size() == MOST_WARNINGS) {
        return;
    }
    const auto column = m_rule_column + static_cast<std::size_t>(begin - m_rule_begin);
    m_warnings.push_back({static_cast<std::size_t>(m_rule_line), column,
                          quoted_source(m_cursor.source_since(begin)) +
                              " reads nothing, so it never changes; parameters are written "
                              "in brackets, as in [100]"});
}

}  // namespace frontpanel::binding_language
