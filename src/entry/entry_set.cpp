#include "entry_set.h"

#include <cstdint>
#include <limits>

namespace {

constexpr unsigned int ADDRESS_BITS = std::numeric_limits<std::uintptr_t>::digits;
constexpr unsigned int FIRST_SIZE_BITS = 4;

// Multiplies so that the upper bits depend on all bits of the address: entries lie at equal distances.
std::uintptr_t spread(const Data_entry* entry) {
    constexpr auto GOLDEN_RATIO = static_cast<std::uintptr_t>(0x9E3779B97F4A7C15U);
    return reinterpret_cast<std::uintptr_t>(entry) * GOLDEN_RATIO;
}

}  // namespace

bool Entry_set::insert(const Data_entry* entry) {
    if (2 * m_count >= m_places.size()) {
        grow();
    }
    const std::size_t place = place_of(entry);
    if (m_places[place] != nullptr) {
        return false;
    }
    m_places[place] = entry;
    ++m_count;
    return true;
}

void Entry_set::erase(const Data_entry* entry) {
    if (!holds(entry)) {
        return;
    }
    std::size_t gap = place_of(entry);
    // Closes the gap: an entry behind it moves there, unless the place that its address gives is also behind the gap.
    for (std::size_t place = behind(gap); m_places[place] != nullptr; place = behind(place)) {
        const std::size_t mask = m_places.size() - 1;
        const std::size_t first = first_place(m_places[place]);
        if (((place - first) & mask) >= ((place - gap) & mask)) {
            m_places[gap] = m_places[place];
            gap = place;
        }
    }
    m_places[gap] = nullptr;
    --m_count;
}

bool Entry_set::holds(const Data_entry* entry) const {
    return m_count != 0 && m_places[place_of(entry)] != nullptr;
}

std::size_t Entry_set::first_place(const Data_entry* entry) const {
    return spread(entry) >> m_shift;
}

std::size_t Entry_set::place_of(const Data_entry* entry) const {
    std::size_t place = first_place(entry);
    while (m_places[place] != nullptr && m_places[place] != entry) {
        place = behind(place);
    }
    return place;
}

void Entry_set::grow() {
    const bool is_first = m_places.empty();
    std::vector<const Data_entry*> before(is_first ? std::size_t{1} << FIRST_SIZE_BITS
                                                   : 2 * m_places.size());
    before.swap(m_places);
    m_shift = is_first ? ADDRESS_BITS - FIRST_SIZE_BITS : m_shift - 1;
    for (const Data_entry* const entry : before) {
        if (entry != nullptr) {
            m_places[place_of(entry)] = entry;
        }
    }
}
