// Counts what operations walk over, so that tests see how their cost grows.
#ifndef FRONTPANEL_DATA_SRC_STEP_COUNTER_H
#define FRONTPANEL_DATA_SRC_STEP_COUNTER_H

#include <atomic>
#include <cstddef>

namespace step_counter {

// One sum for each kind of walk. Entries of different menus may be used from different threads.
// To find a child or the end of its list; without the few that are compared each time.
inline std::atomic<std::size_t> children_walked{0};
inline std::atomic<std::size_t> dependants_compared{
    0};  // to see whether an entry is still a dependant
inline std::atomic<std::size_t> siblings_compared{0};   // to see whether a walk leads back
inline std::atomic<std::size_t> positions_searched{0};  // to find the option at a position

}  // namespace step_counter

#endif
