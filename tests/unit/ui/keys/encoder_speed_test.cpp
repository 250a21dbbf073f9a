#include "keys/encoder_speed.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

using std::chrono::milliseconds;

TEST(EncoderSpeed, TheFirstDetentIsOneStep) {
    EXPECT_EQ(Encoder_speed().steps(Key::UP, milliseconds(0), 10), 1);
}

TEST(EncoderSpeed, HalfTheTimeBetweenDetentsDoublesTheSteps) {
    const std::pair<int, int> CASES[] = {{200, 1}, {120, 1}, {61, 1},  {60, 2},
                                         {30, 4},  {15, 8},  {12, 10}, {1, 10}};
    for (const auto& [apart, steps] : CASES) {
        Encoder_speed speed;
        speed.steps(Key::UP, milliseconds(1000), 10);
        EXPECT_EQ(speed.steps(Key::UP, milliseconds(1000 + apart), 10), steps) << apart;
    }
}

TEST(EncoderSpeed, DetentsAtOneTimeOrBackInTimeAreTheQuickest) {
    Encoder_speed speed;
    speed.steps(Key::UP, milliseconds(1000), 1000);
    EXPECT_EQ(speed.steps(Key::UP, milliseconds(1000), 1000), 120);
    EXPECT_EQ(speed.steps(Key::UP, milliseconds(900), 1000), 120);
}

TEST(EncoderSpeed, AnotherDirectionOrAResetBeginsSlowly) {
    Encoder_speed speed;
    speed.steps(Key::UP, milliseconds(0), 10);
    EXPECT_EQ(speed.steps(Key::DOWN, milliseconds(1), 10), 1);
    EXPECT_EQ(speed.steps(Key::DOWN, milliseconds(2), 10), 10);
    speed.reset();
    EXPECT_EQ(speed.steps(Key::DOWN, milliseconds(3), 10), 1);
}

}  // namespace
}  // namespace frontpanel
