// Neighbours of an entry as the menu shows them: fetched through the dispatcher, which follows links.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_NEIGHBOURS_H
#define FRONTPANEL_DATA_SRC_ENTRY_NEIGHBOURS_H

#include <unordered_set>

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

// The siblings of a walk so far. A link without a next entry of its own goes on behind the entry it houses,
// which may lead back into the list: a sibling that was met before ends the walk.
class Met {
public:
    bool is_new(const Data_entry* sibling) { return m_siblings.insert(sibling).second; }

private:
    std::unordered_set<const Data_entry*> m_siblings;
};

}  // namespace neighbours

#endif
