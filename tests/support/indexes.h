// Index records and parameter keys, written short.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_INDEXES_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_INDEXES_H

#include <frontpanel_data/data_interface.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace support {

// An index with one level for each number, at most eight: `index_of({3, 1})`, `index_of({})`.
inline Index_t index_of(std::initializer_list<uint16_t> levels) {
    Index_t index = {};
    for (const uint16_t level : levels) {
        index.m_index[index.m_index_num++] = level;
    }
    return index;
}

// The index that tests use where it does not matter. It lives as long as the program.
inline const Index_t* any_index() {
    static const Index_t INDEX = index_of({3});
    return &INDEX;
}

inline var_index_s key_of(RETURN_TYPE rt, uint32_t pid, const Index_t& index) {
    return {rt, pid, index};
}

}  // namespace support

#endif
