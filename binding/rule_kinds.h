// The table of rule kinds: what the grammar, the check of lists, the engine and the search for circles know of
// each. CONTRIBUTING.md has the steps to add one.
#ifndef FRONTPANEL_BINDING_RULE_KINDS_H
#define FRONTPANEL_BINDING_RULE_KINDS_H

#include <cstddef>
#include <memory>
#include <string_view>

#include <frontpanel_binding/rule_kind.h>

namespace frontpanel {

namespace binding_engine {
class Engine;
class Suggestion_maker;
}  // namespace binding_engine

// The operands between the word of a rule and its condition.
enum class Rule_operands {
    NONE,
    INTERVALS,      // 0..40, [limit]..80
    KEYS,           // 0, 2..4
    TEXT,           // an expression that yields a text
    WRITTEN_VALUE,  // [gain] = 40
};

// What the search for circles takes a rule for.
enum class Rule_effect { NONE, LIMITS_ENTRY, WRITES };

// A word that replaces operands, and its number in a list.
struct Rule_choice {
    std::string_view word;
    int number;
};

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): in the order in which a row is read
struct Rule_kind {
    Suggestion_kind suggestion;  // also the kind's number in a list
    std::string_view word;
    Rule_operands operands;
    const Rule_choice* choices;  // null, or one of them is required
    std::size_t choice_count;
    bool needs_condition;
    bool judges_tries;  // when a value is tried, and at no other time
    Rule_effect effect;
    Rule_entries entries;
    std::unique_ptr<binding_engine::Suggestion_maker> (*make)(binding_engine::Engine& engine,
                                                              const Rule_kind& kind);

    const Rule_choice* begin_choices() const { return choices; }
    const Rule_choice* end_choices() const { return choices + choice_count; }
};

// All kinds, in the order in which they are evaluated and reported.
struct Rule_kinds {
    const Rule_kind* first;
    std::size_t count;

    const Rule_kind* begin() const { return first; }
    const Rule_kind* end() const { return first + count; }
};
Rule_kinds rule_kinds();

// Null for a number that is no kind.
const Rule_kind* find_rule_kind(int suggestion);

}  // namespace frontpanel

#endif
