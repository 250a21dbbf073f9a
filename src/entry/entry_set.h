// A set of entries for walks. It allocates when it grows, not for each entry, and nothing while it is empty.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_ENTRY_SET_H
#define FRONTPANEL_DATA_SRC_ENTRY_ENTRY_SET_H

#include <cstddef>
#include <vector>

class Data_entry;

// Entries are compared by their addresses and never read. Requires: none is null.
class Entry_set {
public:
    // False when the set already holds the entry.
    bool insert(const Data_entry* entry);
    // Ignores an entry that the set does not hold.
    void erase(const Data_entry* entry);
    bool holds(const Data_entry* entry) const;

private:
    std::size_t first_place(const Data_entry* entry) const;
    std::size_t behind(std::size_t place) const { return (place + 1) & (m_places.size() - 1); }
    // The place of the entry, or else the empty place where it belongs. Requires: `m_places` is not empty.
    std::size_t place_of(const Data_entry* entry) const;
    void grow();

    // A hash table with linear probing. The size is a power of two, and at least half of the places are empty.
    std::vector<const Data_entry*> m_places;
    std::size_t m_count = 0;
    unsigned int m_shift = 0;  // from a multiplied address to a place
};

#endif
