// The memory of JSON readers and writers.
#ifndef FRONTPANEL_BASE_JSON_ALLOCATOR_H
#define FRONTPANEL_BASE_JSON_ALLOCATOR_H

#include <cstddef>
#include <cstdlib>
#include <new>

namespace frontpanel {

// An allocator for rapidjson that throws std::bad_alloc when memory runs out. rapidjson's own one returns null
// pointers, which rapidjson then writes to.
class Json_allocator {
public:
    static const bool kNeedFree = true;

    void* Malloc(std::size_t size) { return size == 0 ? nullptr : checked(std::malloc(size)); }
    void* Realloc(void* original, std::size_t /*original_size*/, std::size_t new_size) {
        if (new_size == 0) {
            Free(original);
            return nullptr;
        }
        return checked(std::realloc(original, new_size));
    }
    static void Free(void* memory) { std::free(memory); }

private:
    static void* checked(void* memory) {
        if (memory == nullptr) {
            throw std::bad_alloc();
        }
        return memory;
    }
};

}  // namespace frontpanel

#endif
