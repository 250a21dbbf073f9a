// Neighbours of an entry as the menu shows them: fetched through the dispatcher, which follows links.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_NEIGHBOURS_H
#define FRONTPANEL_DATA_SRC_ENTRY_NEIGHBOURS_H

#include <frontpanel_data/entry.h>

namespace neighbours {

inline Data_entry* fetch(Data_entry* entry, Data_entry::Operation_flag which) {
    void* found = nullptr;
    Data_entry::EntryTypeSpecificOperation(entry, nullptr, nullptr, false, which, &found);
    return static_cast<Data_entry*>(found);
}

inline Data_entry* first_child(Data_entry* entry) {
    return fetch(entry, Data_entry::OPERATION_CHILD_LINK);
}

inline Data_entry* next(Data_entry* entry) {
    return fetch(entry, Data_entry::OPERATION_NEXT);
}

}  // namespace neighbours

#endif
