// From the source text of binding rules to compiled rules.
#ifndef FRONTPANEL_BINDING_BINDING_COMPILER_H
#define FRONTPANEL_BINDING_BINDING_COMPILER_H

#include <string_view>
#include <vector>

#include <frontpanel_binding/binding_registry.h>

#include "binding_rule.h"

// The rules of a source text, in its order, at least one. Throws the `Compile_error` of the first mistake.
std::vector<Binding_rule> compile_binding_rules(std::string_view source);

#endif
