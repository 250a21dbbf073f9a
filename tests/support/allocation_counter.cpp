#include "support/allocation_counter.h"

#include <malloc.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

// Apart from the code that allocates, so that no compiler sees through a pair of new and delete.
namespace {
std::atomic<std::size_t> g_allocations{0};
std::atomic<std::uint64_t> g_bytes{0};
std::atomic<std::size_t> g_live{0};
std::atomic<std::size_t> g_peak{0};
std::atomic<std::size_t> g_failing{0};  // the number of the call that fails

void count_live(void* memory) {
    const std::size_t live = g_live += malloc_usable_size(memory);
    std::size_t peak = g_peak;
    while (live > peak && !g_peak.compare_exchange_weak(peak, live)) {
    }
}

void free_counted(void* memory) {
    g_live -= malloc_usable_size(memory);
    std::free(memory);
}
}  // namespace

std::size_t support::allocations() {
    return g_allocations;
}

std::size_t support::live_bytes() {
    return g_live;
}

std::size_t support::peak_bytes() {
    return g_peak;
}

void support::forget_peak() {
    g_peak = g_live.load();
}

std::uint64_t support::allocated_bytes() {
    return g_bytes;
}

void support::fail_allocation(std::size_t number) {
    g_failing = number == 0 ? 0 : g_allocations + number;
}

// Null when there is no memory, or this is the call that fails.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (++g_allocations == g_failing) {
        return nullptr;
    }
    g_bytes += size;
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory != nullptr) {
        count_live(memory);
    }
    return memory;
}
void* operator new[](std::size_t size, const std::nothrow_t& nothrow) noexcept {
    return operator new(size, nothrow);
}
void* operator new(std::size_t size) {
    if (void* const memory = operator new(size, std::nothrow)) {
        return memory;
    }
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void operator delete(void* memory) noexcept {
    free_counted(memory);
}
void operator delete[](void* memory) noexcept {
    free_counted(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    free_counted(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    free_counted(memory);
}
