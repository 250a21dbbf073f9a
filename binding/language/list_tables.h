// The sections of a list while it is made, each in the form that it has in a list.
#ifndef FRONTPANEL_BINDING_LANGUAGE_LIST_TABLES_H
#define FRONTPANEL_BINDING_LANGUAGE_LIST_TABLES_H

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <frontpanel_binding/binding_registry.h>

#include "language/list_format.h"

namespace frontpanel::binding_language {

struct List_tables {
    BindingListT parameters;
    BindingListT options;
    BindingListT texts;
    BindingListT wide_numbers;
    BindingListT segments;
    BindingListT rules;
    BindingListT code;
    std::string unescaped;  // follows the source in the pool
    int own_type = 0;
    // The rows of parameters beyond the first few, by their variables.
    std::unordered_multimap<uint64_t, int> later_rows;

    // Keeps the memory of the sections.
    void clear();
    // Drops all rules with their code. What they refer to stays.
    void clear_rules();
    BindingListT list(std::string_view source) const;

    int* parameter_row(int number) {
        return &parameters[static_cast<std::size_t>(number) * PARAMETER_SIZE];
    }
    int* last_rule() { return &rules[rules.size() - RULE_SIZE]; }
    var_index_s key(int parameter) const;
    std::vector<Named_parameter> named_parameters() const;
    int instruction_count() const { return static_cast<int>(code.size() / INSTRUCTION_SIZE); }
    int text_count() const { return static_cast<int>(texts.size() / REFERENCE_SIZE); }
    int option_count() const { return static_cast<int>(options.size() / REFERENCE_SIZE); }
};

}  // namespace frontpanel::binding_language

#endif
