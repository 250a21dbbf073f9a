// Finds the items of a sequence by a key, with 8 to 16 bytes for each item. A menu has tens of thousands of parameters,
// and a map with a node for each takes five times as much memory.
#ifndef FRONTPANEL_BASE_HASH_INDEX_H
#define FRONTPANEL_BASE_HASH_INDEX_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace frontpanel {

// A number that nobody knows before the process begins. With it, no file can choose keys that would all be in one place:
// such an index would compare each key with all others.
std::uint64_t hash_seed();

// The caller has the sequence: the index holds only the numbers of its items, from 0.
class Hash_index {
public:
    static constexpr std::uint32_t NONE = std::numeric_limits<std::uint32_t>::max();

    // The number of the item whose key has that hash and for which `is_it` returns true; NONE when there is none.
    template <typename Is_it>
    std::uint32_t find(std::uint64_t hash, Is_it is_it) const {
        if (m_places.empty()) {
            return NONE;
        }
        std::size_t place = place_of(hash);
        while (m_places[place] != NONE && !is_it(m_places[place])) {
            place = next(place);
        }
        return m_places[place];
    }
    // Adds the next item. `hash_of` returns the hash of any item, including this one. Requires: no item has its key.
    template <typename Hash_of>
    void add(Hash_of hash_of) {
        const std::uint32_t number = m_count;
        reserve(m_count + 1, hash_of);
        put(number, hash_of(number));
        ++m_count;
    }
    // Reserves memory for this many items.
    template <typename Hash_of>
    void reserve(std::size_t count, Hash_of hash_of) {
        unsigned int bits = std::max(m_bits, FEWEST_BITS);
        while (count > std::size_t{1} << (bits - 1)) {
            ++bits;
        }
        if (bits > m_bits) {
            m_places = std::vector<std::uint32_t>(std::size_t{1} << bits, NONE);
            m_bits = bits;  // once there was memory
            for (std::uint32_t number = 0; number < m_count; ++number) {
                put(number, hash_of(number));
            }
        }
    }

private:
    static constexpr unsigned int FEWEST_BITS = 4;

    // A key may be its own hash, so each place depends on all of its bits.
    std::size_t place_of(std::uint64_t hash) const {
        std::uint64_t mixed = hash ^ m_seed;
        mixed = (mixed ^ mixed >> 32) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ mixed >> 29) * 0x9E3779B97F4A7C15U;
        return static_cast<std::size_t>((mixed ^ mixed >> 32) >> (64 - m_bits));
    }
    std::size_t next(std::size_t place) const { return (place + 1) & (m_places.size() - 1); }
    void put(std::uint32_t number, std::uint64_t hash) {
        std::size_t place = place_of(hash);
        while (m_places[place] != NONE) {
            place = next(place);
        }
        m_places[place] = number;
    }

    std::uint64_t m_seed = hash_seed();
    unsigned int m_bits = 0;              // the number of places is 2 to this power
    std::vector<std::uint32_t> m_places;  // at least half of them are free
    std::uint32_t m_count = 0;
};

}  // namespace frontpanel

#endif
