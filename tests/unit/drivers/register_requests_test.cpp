#include "register_requests.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

namespace frontpanel {
namespace {

Register_place at(int first, int count = 1, Register_table table = Register_table::HOLDING,
                  int unit = 1) {
    Register_place place;
    place.range = {unit, table, first, count};
    place.width = 16 * count;
    return place;
}

// "1+2 3+1": first address and count of each request for all places.
std::string requests(const std::vector<Register_place>& places, int gap = 0,
                     std::vector<bool> is_first = {}) {
    std::vector<std::size_t> numbers(places.size());
    std::iota(numbers.begin(), numbers.end(), std::size_t{0});
    is_first.resize(places.size(), false);
    std::string text;
    for (const Register_request& request : requests_for(places, numbers, gap, is_first)) {
        text += (text.empty() ? "" : " ") + std::to_string(request.range.first) + "+" +
                std::to_string(request.range.count);
    }
    return text;
}

std::vector<Register_place> in_a_row(int count, Register_table table) {
    std::vector<Register_place> places;
    for (int i = 0; i < count; ++i) {
        places.push_back(at(i, 1, table));
    }
    return places;
}

TEST(RegisterRequests, NeighboursAreAskedForTogether) {
    EXPECT_EQ(requests({at(10), at(11, 2), at(13)}), "10+4");
    EXPECT_EQ(requests({at(13), at(11, 2), at(10)}), "10+4");
    EXPECT_EQ(requests({at(10), at(12)}), "10+1 12+1");
}

TEST(RegisterRequests, RegistersThatTwoParametersShareAreAskedForOnce) {
    EXPECT_EQ(requests({at(10, 2), at(10), at(11), at(11)}), "10+2");
}

TEST(RegisterRequests, UnitsAndTablesAreAskedForApart) {
    EXPECT_EQ(
        requests({at(10), at(11, 1, Register_table::INPUT), at(12, 1, Register_table::HOLDING, 2)}),
        "10+1 11+1 12+1");
}

TEST(RegisterRequests, AGapIsBridgedWhereItIsAllowed) {
    EXPECT_EQ(requests({at(10), at(13)}, 1), "10+1 13+1");
    EXPECT_EQ(requests({at(10), at(13)}, 2), "10+4");
}

TEST(RegisterRequests, ARequestIsNoLargerThanTheProtocolAllows) {
    EXPECT_EQ(requests(in_a_row(126, Register_table::HOLDING)), "0+125 125+1");
    EXPECT_EQ(requests(in_a_row(2001, Register_table::COIL)), "0+2000 2000+1");
    std::vector<Register_place> places = in_a_row(124, Register_table::INPUT);
    places.push_back(at(124, 2, Register_table::INPUT));
    EXPECT_EQ(requests(places), "0+124 124+2");
}

TEST(RegisterRequests, APlaceThatIsFirstIsJoinedWithNoneBeforeIt) {
    EXPECT_EQ(requests({at(10), at(11), at(12), at(13)}, 0, {false, false, true}), "10+2 12+2");
}

// Otherwise a register that a controller does not have could be asked for over and over.
TEST(RegisterRequests, ManyPlacesOfOneRegisterAreSplitWhereTheyAreToBe) {
    const std::vector<Register_place> places(40, at(10));
    std::vector<std::size_t> numbers(places.size());
    std::iota(numbers.begin(), numbers.end(), std::size_t{0});
    for (std::size_t first = 1; first < places.size(); ++first) {
        std::vector<bool> is_first(places.size(), false);
        is_first[first] = true;
        const auto split = requests_for(places, numbers, 0, is_first);
        ASSERT_EQ(split.size(), 2U) << first;
        EXPECT_EQ(split[0].numbers.size(), first);
        EXPECT_EQ(split[1].numbers.front(), first);
    }
}

std::vector<std::string> overlaps(const std::vector<Register_place>& places) {
    std::vector<std::string> texts;
    for (const Register_overlap& overlap : overlaps_of(places)) {
        texts.push_back(std::to_string(overlap.number) + " and " + std::to_string(overlap.other) +
                        " at " + std::to_string(overlap.address));
    }
    return texts;
}

Register_place field(int first, int bit, int width) {
    Register_place place = at(first);
    place.bit = bit;
    place.width = width;
    return place;
}

TEST(RegisterRequests, PlacesWithACommonBitOverlap) {
    using Lines = std::vector<std::string>;
    EXPECT_EQ(overlaps({at(10), at(11), at(10)}), Lines{"2 and 0 at 10"});
    EXPECT_EQ(overlaps({at(11), at(10, 2)}), Lines{"1 and 0 at 11"});
    EXPECT_EQ(overlaps({field(10, 0, 4), field(10, 4, 4), field(10, 7, 2)}),
              Lines{"2 and 1 at 10"});
    EXPECT_EQ(
        overlaps({at(10), at(10, 1, Register_table::INPUT), at(10, 1, Register_table::HOLDING, 2)}),
        Lines{});
    Register_place upper = at(20, 2);
    upper.bit = 16;
    upper.width = 16;
    EXPECT_EQ(overlaps({upper, at(21)}), Lines{});
    EXPECT_EQ(overlaps({upper, at(20)}), Lines{"1 and 0 at 20"});
}

}  // namespace
}  // namespace frontpanel
