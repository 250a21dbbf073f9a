#include "register_requests.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <tuple>

namespace frontpanel {
namespace {

using Address = std::tuple<int, Register_table, int>;  // unit, table, register

Address address_of(const Register_range& range) {
    return {range.unit, range.table, range.first};
}

bool may_join(const Register_range& range, const Register_range& next, int gap) {
    return range.unit == next.unit && range.table == next.table &&
           next.first <= range.end() + gap && next.end() - range.first <= range.most();
}

constexpr std::size_t BITS = 16;
using Owners = std::array<std::optional<std::size_t>, BITS>;

// Takes the bits of a register for a place, and returns the place that had one of them.
std::optional<std::size_t> take_bits(Owners& owners, unsigned mask, std::size_t number) {
    std::optional<std::size_t> other;
    for (std::size_t bit = 0; bit < BITS; ++bit) {
        if ((mask >> bit & 1U) == 0) {
            continue;
        }
        if (!owners[bit]) {
            owners[bit] = number;
        } else if (!other) {
            other = owners[bit];
        }
    }
    return other;
}

}  // namespace

std::vector<Register_request> requests_for(const std::vector<Register_place>& places,
                                           const std::vector<std::size_t>& numbers, int gap,
                                           const std::vector<bool>& is_first) {
    std::vector<std::size_t> sorted = numbers;
    // Places of one address stay in their order: where a request is split must not move.
    std::stable_sort(sorted.begin(), sorted.end(), [&places](std::size_t left, std::size_t right) {
        return address_of(places[left].range) < address_of(places[right].range);
    });
    std::vector<Register_request> requests;
    for (const std::size_t number : sorted) {
        const Register_range& range = places[number].range;
        if (requests.empty() || is_first[number] || !may_join(requests.back().range, range, gap)) {
            requests.push_back({range, {number}});
            continue;
        }
        Register_request& request = requests.back();
        request.range.count = std::max(request.range.end(), range.end()) - request.range.first;
        request.numbers.push_back(number);
    }
    return requests;
}

std::vector<Register_overlap> overlaps_of(const std::vector<Register_place>& places) {
    std::map<Address, Owners> registers;
    std::vector<Register_overlap> overlaps;
    for (std::size_t number = 0; number < places.size(); ++number) {
        const std::vector<std::uint16_t> masks = places[number].masks();
        bool is_told = false;
        for (std::size_t i = 0; i < masks.size(); ++i) {
            Register_range range = places[number].range;
            range.first += static_cast<int>(i);
            const auto other = take_bits(registers[address_of(range)], masks[i], number);
            if (other && !is_told) {
                overlaps.push_back({number, *other, range.first});
                is_told = true;
            }
        }
    }
    return overlaps;
}

}  // namespace frontpanel
