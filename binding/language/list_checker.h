// The check that a list passes before any of it is used.
#ifndef FRONTPANEL_BINDING_LANGUAGE_LIST_CHECKER_H
#define FRONTPANEL_BINDING_LANGUAGE_LIST_CHECKER_H

#include <cstdint>
#include <string>

#include <frontpanel_data/entry.h>

namespace frontpanel::binding_language {

// Where the sections of a list begin.
struct List_sections {
    uint32_t parameters;
    uint32_t options;
    uint32_t texts;
    uint32_t wide_numbers;
    uint32_t segments;
    uint32_t rules;
    uint32_t code;
    uint32_t pool;
};

// Whether `list` can be run without harm: its checksum, its layout, every reference, and the types and the
// depth of the stack at every instruction. Fills `sections`, or `why` with one line.
bool check_list(const BindingListT& list, List_sections& sections, std::string& why);

}  // namespace frontpanel::binding_language

#endif
