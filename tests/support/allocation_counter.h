// Counts the allocations of a process, and makes one fail. A test that asks for the count adds allocation_counter.cpp to its
// sources; that file replaces the global operator new, also for the shared library.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_ALLOCATION_COUNTER_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_ALLOCATION_COUNTER_H

#include <cstddef>
#include <cstdint>

namespace support {

// How often the global operator new has been called.
std::size_t allocations();
// The bytes that these calls asked for, freed ones included.
std::uint64_t allocated_bytes();
// How many bytes are allocated now, with what the allocator rounds up.
std::size_t live_bytes();
// The most that were allocated at once since the last call of `forget_peak`.
std::size_t peak_bytes();
void forget_peak();
// Makes one call of it throw std::bad_alloc, the next one for 1; 0 for none.
void fail_allocation(std::size_t number);

}  // namespace support

#endif
