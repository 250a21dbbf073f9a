#include "overriding.h"

#include <cstdint>
#include <cstring>

#include <frontpanel_data/link_entry.h>

// The tables of virtual operations, by their names in the binary interface of C++ that all our compilers follow.
extern "C" {
extern const void* const _ZTV10Node_entry[];
extern const void* const _ZTV10Link_entry[];
}

namespace overriding {
namespace {

// Behind the offset to the top and the type.
constexpr std::size_t FIRST_SLOT = 2;

// The slot that a pointer to a virtual operation stands for. It holds the offset in the table, to which most
// processors' interface adds 1.
template <class Operation>
std::size_t slot_of(Operation operation) {
    std::uintptr_t words[2];
    static_assert(sizeof operation == sizeof words, "unknown form of a pointer to an operation");
    std::memcpy(words, &operation, sizeof words);
#if defined(__arm__) || defined(__aarch64__)
    return words[0] / sizeof(void*);
#else
    return (words[0] - 1) / sizeof(void*);
#endif
}

const void* const* table_of(const Data_entry& entry) {
    const void* const* table;
    std::memcpy(&table, static_cast<const void*>(&entry), sizeof table);
    return table;
}

Version version_of(const Data_entry& entry, std::size_t slot) {
    const void* const version = table_of(entry)[slot];
    if (version == _ZTV10Node_entry[FIRST_SLOT + slot]) {
        return Version::BASE;
    }
    return version == _ZTV10Link_entry[FIRST_SLOT + slot] ? Version::LINK : Version::OTHER;
}

}  // namespace

Version of_print(const Data_entry& entry) {
    return version_of(entry, slot_of(&Data_entry::Print));
}

Version of_is_visible(const Data_entry& entry) {
    int (Data_entry::*const operation)(bool, Data_interface*) = &Data_entry::isVisible;
    return version_of(entry, slot_of(operation));
}

}  // namespace overriding
