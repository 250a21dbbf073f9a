// Sets of characters as tables of blocks of code points.
#ifndef FRONTPANEL_BASE_CODE_BLOCKS_H
#define FRONTPANEL_BASE_CODE_BLOCKS_H

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace frontpanel {

// Both ends included.
struct Code_block {
    char32_t first;
    char32_t last;
};

// Requires: the blocks are sorted and do not overlap.
template <std::size_t COUNT>
bool is_in(const Code_block (&blocks)[COUNT], char32_t character) {
    const auto behind = std::upper_bound(
        std::begin(blocks), std::end(blocks), character,
        [](char32_t wanted, const Code_block& block) { return wanted < block.first; });
    return behind != std::begin(blocks) && character <= std::prev(behind)->last;
}

}  // namespace frontpanel

#endif
