#include <frontpanel_menu/list_line.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace frontpanel {
namespace {

// The columns of the left and of the right text.
void expect_room(int left, int right, int columns, int left_room, int right_room,
                 int least_left = LEAST_NAME_COLUMNS) {
    const Line_room room = room_of(left, right, columns, least_left);
    EXPECT_EQ(room.left, left_room) << left << " " << right << " on " << columns;
    EXPECT_EQ(room.right, right_room) << left << " " << right << " on " << columns;
}

TEST(ListLine, FreeRoomGoesToTheName) {
    expect_room(11, 3, 15, 11, 3);
    expect_room(3, 11, 15, 3, 11);
    expect_room(15, 0, 15, 15, 0);
    expect_room(0, 15, 15, 0, 15);
}

TEST(ListLine, TheNameGivesWayToTheValue) {
    expect_room(9, 10, 15, 4, 10);
    expect_room(9, 13, 15, 1, 13, 1);
    expect_room(3, 11, 15, 3, 11);
}

TEST(ListLine, AValueThatHasNoRoomGoesRoundBesideAsMuchOfTheNameAsLeavesItEightColumns) {
    expect_room(3, 14, 15, 3, 11);
    expect_room(9, 14, 15, 6, 8);
    expect_room(9, 11, 15, 6, 8);
    expect_room(9, 14, 15, 6, 8, 1);
}

TEST(ListLine, NoTwoTextsTakeMoreThanTheLineHas) {
    for (int columns = 15; columns <= 80; ++columns) {
        for (int left = 1; left <= 30; ++left) {
            for (int right = 1; right <= 90; ++right) {
                const Line_room room = room_of(left, right, columns);
                ASSERT_LE(room.left + 1 + room.right, columns);
                ASSERT_GE(room.left, 1);
                ASSERT_GE(room.right, std::min(right, LEAST_VALUE_COLUMNS));
            }
        }
    }
}

}  // namespace
}  // namespace frontpanel
