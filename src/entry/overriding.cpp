#include "overriding.h"

#include <cstdint>
#include <cstring>

#include <frontpanel_data/link_entry.h>

namespace overriding {
namespace {

// In a table: behind the offset to the top and the type.
constexpr std::size_t FIRST_SLOT = 2;
constexpr std::size_t OPERATIONS = 79;  // of Data_entry

// The tables of virtual operations and the operations, by their names in the binary interface of C++ that all our
// compilers follow. Names of our own for them: an optimiser that sees the whole library objects to a second declaration
// of a table.
#define FRONTPANEL_KNOWN_AS(symbol) __attribute__((weakref(symbol)))
using Table = const void * [FIRST_SLOT + OPERATIONS];
FRONTPANEL_KNOWN_AS("_ZTV10Node_entry") static Table NODE_TABLE;
FRONTPANEL_KNOWN_AS("_ZTV10Link_entry") static Table LINK_TABLE;
FRONTPANEL_KNOWN_AS("_ZN10Data_entry5PrintEv") static void print_of_entry();
FRONTPANEL_KNOWN_AS("_ZN10Link_entry5PrintEv") static void print_of_link();
FRONTPANEL_KNOWN_AS("_ZN10Data_entry9isVisibleEbP14Data_interface")
static void is_visible_of_entry();
FRONTPANEL_KNOWN_AS("_ZN10Link_entry9isVisibleEbP14Data_interface")
static void is_visible_of_link();

// The slot that a pointer to a virtual operation stands for. Its first word holds the offset in the table. One bit marks
// it as virtual: of the second word where functions may have odd addresses (ARM, MIPS), of the first one elsewhere.
template <class Operation>
std::size_t slot_of(Operation operation) {
    std::uintptr_t words[2];
    static_assert(sizeof operation == sizeof words, "unknown form of a pointer to an operation");
    std::memcpy(words, &operation, sizeof words);
    const bool is_marked_in_second = (words[1] & 1) != 0;
    return (is_marked_in_second ? words[0] : words[0] - 1) / sizeof(void*);
}

const void* const* table_of(const Data_entry& entry) {
    const void* const* table;
    std::memcpy(&table, static_cast<const void*>(&entry), sizeof table);
    return table;
}

// One version may have two addresses: in the library's own tables the one inside the library, and in the tables of a
// program that is linked to a fixed address the one that the program reaches it by.
bool is_version(const void* version, const void* in_table, void (*in_program)()) {
    return version == in_table || version == reinterpret_cast<const void*>(in_program);
}

Version version_of(const Data_entry& entry, std::size_t slot, void (*of_entry)(),
                   void (*of_link)()) {
    const void* const version = table_of(entry)[slot];
    if (is_version(version, NODE_TABLE[FIRST_SLOT + slot], of_entry)) {
        return Version::BASE;
    }
    return is_version(version, LINK_TABLE[FIRST_SLOT + slot], of_link) ? Version::LINK
                                                                       : Version::OTHER;
}

}  // namespace

Version of_print(const Data_entry& entry) {
    return version_of(entry, slot_of(&Data_entry::Print), print_of_entry, print_of_link);
}

Version of_is_visible(const Data_entry& entry) {
    int (Data_entry::*const operation)(bool, Data_interface*) = &Data_entry::isVisible;
    return version_of(entry, slot_of(operation), is_visible_of_entry, is_visible_of_link);
}

}  // namespace overriding
