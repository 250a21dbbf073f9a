// The kinds of rules, for an application that checks rules against its entries.
#ifndef FRONTPANEL_BINDING_RULE_KIND_H
#define FRONTPANEL_BINDING_RULE_KIND_H

#include <string_view>

#include <frontpanel_data/binding.h>

namespace frontpanel {

// The entries for which rules of a kind do something.
enum class Rule_entries {
    ALL,
    WITH_VALUE,    // all but nodes
    RANGES,        // Data_entry::RANGE_LEAF
    ENUMERATIONS,  // Data_entry::ENUM_LEAF
};

// The word that begins a rule of that kind: "visible".
std::string_view rule_word(Suggestion_kind kind);
Rule_entries rule_entries(Suggestion_kind kind);

}  // namespace frontpanel

#endif
