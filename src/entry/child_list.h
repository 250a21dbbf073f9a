// The numbers of remembered child lists.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_CHILD_LIST_H
#define FRONTPANEL_DATA_SRC_ENTRY_CHILD_LIST_H

#include <atomic>
#include <cstdint>

namespace child_list {

// The number that was given last, and the last one that counts no more. Entries of different menus may be used from
// different threads.
extern std::atomic<uint32_t> latest_number;
extern std::atomic<uint32_t> forgotten_up_to;

}  // namespace child_list

#endif
