// The keys of an enumerated entry by their visible positions.
#ifndef FRONTPANEL_DATA_SRC_ENTRY_KEYS_BY_POSITION_H
#define FRONTPANEL_DATA_SRC_ENTRY_KEYS_BY_POSITION_H

#include <frontpanel_data/enum_entry.h>

#include <map>
#include <vector>

#include "../step_counter.h"

constexpr int NO_KEY = -1;

// Positions above the number of keys are rare, and searched.
struct Enum_entry::Keys_by_position {
    explicit Keys_by_position(const std::map<int, int>& positions)
        : map_size(positions.size()), keys(positions.size(), NO_KEY) {
        for (const auto& [key, position] : positions) {
            if (has(position) && at(position) == NO_KEY) {
                keys[static_cast<std::size_t>(position)] = key;
            }
        }
        step_counter::positions_searched += map_size;
    }

    bool has(int position) const {
        return position >= 0 && static_cast<std::size_t>(position) < keys.size();
    }
    int at(int position) const { return keys[static_cast<std::size_t>(position)]; }

    std::size_t map_size;
    std::vector<int> keys;  // the first one at each position
};

#endif
