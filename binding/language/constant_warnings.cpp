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
    ++m_rules;
    m_comparisons = 0;
    m_has_constant = false;
}

// The line is known, so that it is not looked for from the beginning of the text.
void Constant_warnings::warn_of(const char* begin) {
    if (std::exchange(m_is_warned, true) || m_result.warnings.size() == MOST_WARNINGS) {
        return;
    }
    m_result.warnings.push_back(
        warning(begin, quoted_source(m_cursor.source_since(begin)) +
                           " reads nothing, so it never changes; parameters are written in "
                           "brackets, as in [100]"));
}

Compile_error Constant_warnings::warning(const char* begin, const std::string& message) const {
    const auto column = m_rule_column + static_cast<std::size_t>(begin - m_rule_begin);
    return {static_cast<std::size_t>(m_rule_line), column, message};
}

void Constant_warnings::comparison(const char* begin, Value_bounds bounds,
                                   const std::string& reason) {
    add_constant(begin, bounds, reason);
    ++m_comparisons;
}

void Constant_warnings::condition(const char* begin, Value_bounds bounds) {
    if (!m_has_constant && !m_is_warned) {
        add_constant(begin, bounds, "");
    }
}

void Constant_warnings::add_constant(const char* begin, Value_bounds bounds,
                                     const std::string& reason) {
    if (!bounds.is_never_zero() && !bounds.is_always_zero()) {
        return;
    }
    m_has_constant = true;
    const bool is_true = bounds.is_never_zero();
    m_result.constants.push_back(
        {m_rules - 1, m_comparisons, is_true,
         warning(begin, quoted_source(m_cursor.source_since(begin)) + " is " +
                            (is_true ? "always" : "never") + " true" +
                            (reason.empty() ? "" : ": " + reason))});
}

void Constant_warnings::option(std::string_view name) {
    m_result.options.push_back({std::string(name), m_cursor.offset(name.data())});
}

}  // namespace frontpanel::binding_language
