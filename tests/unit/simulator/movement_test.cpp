#include <frontpanel_simulator/movement.h>

#include <gtest/gtest.h>

#include <limits>

namespace frontpanel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

std::vector<int32_t> places(const Course& course, int count) {
    std::vector<int32_t> all;
    for (int second = 0; second < count; ++second) {
        all.push_back(place_on(course, seconds(second)));
    }
    return all;
}

TEST(Movement, GoesFromOneValueToTheOtherAndBack) {
    EXPECT_EQ(places({1, 0, 0, 4, 0, seconds(8)}, 10),
              (std::vector<int32_t>{0, 1, 2, 3, 4, 3, 2, 1, 0, 1}));
    EXPECT_EQ(places({1, 0, 2, 0, 2, seconds(4)}, 6), (std::vector<int32_t>{2, 1, 0, 1, 2, 1}));
}

TEST(Movement, BeginsAtTheStartValueOrTheNearerEnd) {
    EXPECT_EQ(places({1, 0, 0, 4, 3, seconds(8)}, 4), (std::vector<int32_t>{3, 4, 3, 2}));
    EXPECT_EQ(places({1, 0, 4, 0, 3, seconds(8)}, 4), (std::vector<int32_t>{3, 2, 1, 0}));
    EXPECT_EQ(place_on({1, 0, 0, 4, 9, seconds(8)}, seconds(0)), 4);
    EXPECT_EQ(place_on({1, 0, 0, 4, -9, seconds(8)}, seconds(0)), 0);
    EXPECT_EQ(places({1, 0, 7, 7, 3, seconds(8)}, 2), (std::vector<int32_t>{7, 7}));
}

TEST(Movement, StaysWithinItsEndsOverTheWholeRange) {
    const Course course{1,
                        0,
                        std::numeric_limits<int32_t>::min(),
                        std::numeric_limits<int32_t>::max(),
                        0,
                        seconds(86400)};
    for (int64_t at = 0; at < 200000; at += 977) {
        const int32_t place = place_on(course, seconds(at));
        EXPECT_GE(place, course.from);
        EXPECT_LE(place, course.to);
    }
    for (int at = 0; at < 5000; at += 7) {
        const int32_t place = place_on({1, 0, -3, 5, 0, seconds(1)}, milliseconds(at));
        EXPECT_GE(place, -3);
        EXPECT_LE(place, 5);
    }
}

TEST(Movement, MovesTheDeviceAndKeepsNothingOfIt) {
    Memory_device device;
    device.add_integer(1, 0, 0, 9, 0);
    int changes = 0;
    device.set_change_listener([&changes] { ++changes; });
    Movement movement(device);
    movement.add({1, 0, 0, 4, 0, seconds(8)});
    movement.advance(seconds(3));
    EXPECT_EQ(device.integer(1, 0), 3);
    EXPECT_EQ(changes, 0) << "values that are kept in a file are not written for a measured one";
    EXPECT_TRUE(device.writes().empty());
    device.set_integer(1, 0, 9);
    movement.advance(seconds(4));
    EXPECT_EQ(device.integer(1, 0), 4);
}

}  // namespace
}  // namespace frontpanel
