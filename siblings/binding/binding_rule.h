// A compiled rule: what it suggests, and under which condition.
#ifndef FRONTPANEL_BINDING_BINDING_RULE_H
#define FRONTPANEL_BINDING_BINDING_RULE_H

#include <cstdint>
#include <vector>

#include <frontpanel_binding/binding_registry.h>
#include <frontpanel_data/binding.h>

enum class Comparison_operator { EQUAL, NOT_EQUAL, LESS, LESS_EQUAL, GREATER, GREATER_EQUAL };

// A parameter against a constant of the same type; texts are only equal or not.
struct Comparison {
    var_index_s parameter;
    Comparison_operator operation;
    return_s value;
};

using Conjunction = std::vector<Comparison>;  // all of them
using Condition = std::vector<Conjunction>;   // any of them; empty holds always

struct Binding_rule {
    Suggestion_kind kind;
    std::vector<Binding_interval> intervals;  // of a range rule
    Condition condition;
};

#endif
