// Which registers are asked for together.
#ifndef FRONTPANEL_DRIVER_MODBUS_REGISTER_REQUESTS_H
#define FRONTPANEL_DRIVER_MODBUS_REGISTER_REQUESTS_H

#include <cstddef>
#include <utility>
#include <vector>

#include "register_place.h"

namespace frontpanel {

struct Register_request {
    Register_range range;
    std::vector<std::size_t> numbers;  // the places that it covers
};

// The fewest requests for those places that join only what is at most `gap` addresses apart, and no more than a request
// may. `is_first` holds, for each place, whether it is joined with none before it.
std::vector<Register_request> requests_for(const std::vector<Register_place>& places,
                                           const std::vector<std::size_t>& numbers, int gap,
                                           const std::vector<bool>& is_first);

// For each place the first one before it that has a bit of a register in common with it.
struct Register_overlap {
    std::size_t number;
    std::size_t other;
    int address;
};
std::vector<Register_overlap> overlaps_of(const std::vector<Register_place>& places);

}  // namespace frontpanel

#endif
