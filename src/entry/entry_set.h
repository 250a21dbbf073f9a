// A set of entries for walks: it allocates as it grows, not for each entry, and nothing while it is empty.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_ENTRY_SET_H
#define FRONTPANEL_DATA_SRC_ENTRY_ENTRY_SET_H

#include <cstddef>
#include <vector>

class Data_entry;

// Entries are compared by their addresses and never read. Requires: none is null.
class Entry_set {
public:
    // False when the set holds the entry already.
    bool insert(const Data_entry* entry);
    // Ignores an entry that the set does not hold.
    void erase(const Data_entry* entry);
    bool holds(const Data_entry* entry) const;

private:
    std::size_t first_place(const Data_entry* entry) const;
    std::size_t behind(std::size_t place) const { return (place + 1) & (m_places.size() - 1); }
    // The place of the entry, or the empty one where it belongs. Requires: there are places.
    std::size_t place_of(const Data_entry* entry) const;
    void grow();

    // The size is a power of two, and at least half of the places are empty. An entry takes the first place that was empty
    // when it was added, beginning with the place that follows from its address.
    std::vector<const Data_entry*> m_places;
    std::size_t m_count = 0;
    unsigned int m_shift = 0;  // from a spread address to a place
};

#endif
