// What follows a commit: every entry whose binding depends on the committed parameter is refreshed.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_DEPENDANTS_H
#define FRONTPANEL_DATA_SRC_ENTRY_DEPENDANTS_H

#include <cstdint>

#include <frontpanel_data/binding.h>

#include "../diagnostics.h"

namespace dependants {

// Where the classes differ on purpose.
struct Commit_lines {
    // The commit, as its lines name it.
    const char* function;
    const char* file;
    uint32_t place;                // line and category, with the leaf gate
    bool reports_missing_binding;  // says when there is no binding (ranges do)
    bool announces_walk;           // says that it looks for dependants (ranges and texts do)
    bool adds_record;  // a parameter that the map lacks gets an empty record (texts add none)
};

// Refreshes, through the dispatcher, every dependant of the parameter that `binding` controls whose bind
// refresh is not locked; `committed` is locked meanwhile. The list is walked over a snapshot: a refresh may
// change it, and an entry that has left it by its turn is passed over. Does nothing without a binding or a
// map. `binding` may be null.
void refresh(Data_entry& committed, Binding* binding, Data_interface* iface,
             const Commit_lines& lines);

}  // namespace dependants

#endif
