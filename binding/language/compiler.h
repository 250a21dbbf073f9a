// From the source text of binding rules to a compiled list.
#ifndef FRONTPANEL_BINDING_LANGUAGE_COMPILER_H
#define FRONTPANEL_BINDING_LANGUAGE_COMPILER_H

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include <frontpanel_binding/binding_registry.h>
#include <frontpanel_binding/parameter_table.h>

#include "language/value_bounds.h"

namespace frontpanel::binding_language {

struct List_tables;

struct Compile_context {
    const Parameter_table& parameters;
    RETURN_TYPE own_type;          // of `value`; INVALID_TYPE for an entry that has none
    Value_bounds own_bounds = {};  // of an integer
    bool is_toggle = false;        // numbers only, within those that the library's toggles hold
};

// Keeps its working memory from text to text. Menu thread only.
class Compiler {
public:
    Compiler();
    ~Compiler();
    Compiler(const Compiler&) = delete;
    Compiler& operator=(const Compiler&) = delete;

    // The list of a text of one rule at least, or the mistakes of its rules.
    Compile_result compile(std::string_view source, const Compile_context& context);

    // See `Binding_registry::compile_toggle`.
    Toggle_result compile_toggle(std::string_view condition, const Parameter_table& parameters,
                                 const std::function<bool(std::string_view)>& has_option);

private:
    std::unique_ptr<List_tables> m_tables;
};

}  // namespace frontpanel::binding_language

#endif
