// Writes a compiled condition in the language of the library's toggles: docs/evaluator.md describes it.
#ifndef FRONTPANEL_BINDING_LANGUAGE_TOGGLE_WRITER_H
#define FRONTPANEL_BINDING_LANGUAGE_TOGGLE_WRITER_H

#include <functional>
#include <string>
#include <string_view>

#include "language/list_tables.h"

namespace frontpanel::binding_language {

// Integers up to this magnitude are exact in the evaluator.
inline constexpr int64_t LARGEST_IN_TOGGLE = int64_t{1} << 53;

// The text yields 1 while the condition holds, and 0 while it does not or has a fault. The library reads a toggle's
// result from the evaluator's first variable by name, so the text assigns it to "A", before which no name sorts; other
// names begin with "A_". Parameters stand in brackets with the addresses of their keys.
//
// Requires: the tables hold one rule without operands whose code reads no texts and stays within the largest integer.
// Empty when the text would be too large for the evaluator.
std::string toggle_text(const List_tables& tables, std::string_view source,
                        const std::function<bool(std::string_view)>& has_option);

}  // namespace frontpanel::binding_language

#endif
