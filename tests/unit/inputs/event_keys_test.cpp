#include <frontpanel_inputs/event_keys.h>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

using Kinds = std::vector<Key::Kind>;

class Event_keys_test : public testing::Test {
protected:
    Kinds take(int type, int code, int value, std::optional<Axis_range> range = std::nullopt) {
        Kinds kinds;
        for (const Key& key :
             keys.take({static_cast<uint16_t>(type), static_cast<uint16_t>(code), value}, range)) {
            kinds.push_back(key.kind);
        }
        return kinds;
    }

    Event_keys keys{usual_event_keys()};
};

TEST_F(Event_keys_test, ARelativeAxisTurnsByItsSteps) {
    EXPECT_EQ(take(EV_REL, REL_X, 1), Kinds{Key::UP});
    EXPECT_EQ(take(EV_REL, REL_DIAL, -2), (Kinds{Key::DOWN, Key::DOWN}));
    EXPECT_EQ(take(EV_REL, REL_WHEEL, 0), Kinds());
}

TEST_F(Event_keys_test, TheFineStepsOfAWheelAreNotCountedAgain) {
    EXPECT_EQ(take(EV_REL, REL_WHEEL_HI_RES, 120), Kinds());
    EXPECT_EQ(take(EV_REL, REL_HWHEEL_HI_RES, -120), Kinds());
}

TEST_F(Event_keys_test, AnAbsurdStepIsBounded) {
    EXPECT_EQ(take(EV_REL, REL_X, INT32_MIN).size(), static_cast<size_t>(Event_keys::MOST_STEPS));
    take(EV_ABS, ABS_X, INT32_MIN);
    EXPECT_EQ(take(EV_ABS, ABS_X, INT32_MAX).size(), static_cast<size_t>(Event_keys::MOST_STEPS));
}

TEST_F(Event_keys_test, AnAbsoluteAxisTurnsByItsDifference) {
    EXPECT_EQ(take(EV_ABS, ABS_X, 5), Kinds());
    EXPECT_EQ(take(EV_ABS, ABS_X, 7), (Kinds{Key::UP, Key::UP}));
    EXPECT_EQ(take(EV_ABS, ABS_X, 6), Kinds{Key::DOWN});
    keys.set_position(ABS_X, 8);
    EXPECT_EQ(take(EV_ABS, ABS_X, 9), Kinds{Key::UP});
    keys.forget_state();
    EXPECT_EQ(take(EV_ABS, ABS_X, 0), Kinds());
}

TEST_F(Event_keys_test, AnAbsoluteAxisGoesRound) {
    constexpr Axis_range RANGE{0, 23};
    take(EV_ABS, ABS_X, 23, RANGE);
    EXPECT_EQ(take(EV_ABS, ABS_X, 0, RANGE), Kinds{Key::UP});
    EXPECT_EQ(take(EV_ABS, ABS_X, 1, RANGE), Kinds{Key::UP});
    EXPECT_EQ(take(EV_ABS, ABS_X, 22, RANGE), (Kinds{Key::DOWN, Key::DOWN, Key::DOWN}));
    EXPECT_EQ(take(EV_ABS, ABS_X, 10, RANGE).size(), 12U);
    take(EV_ABS, ABS_Y, 2, Axis_range{2, 2});
    EXPECT_EQ(take(EV_ABS, ABS_Y, 3, Axis_range{2, 2}), Kinds{Key::UP});
}

// A rotary encoder of 24 steps announces 0 to 24, and goes from 23 to 0.
TEST_F(Event_keys_test, AnEncoderOfTheKernelGoesRoundByOneStep) {
    constexpr Axis_range RANGE{0, 24};
    take(EV_ABS, ABS_X, 22, RANGE);
    EXPECT_EQ(take(EV_ABS, ABS_X, 23, RANGE), Kinds{Key::UP});
    EXPECT_EQ(take(EV_ABS, ABS_X, 0, RANGE), Kinds{Key::UP});
    EXPECT_EQ(take(EV_ABS, ABS_X, 1, RANGE), Kinds{Key::UP});
    EXPECT_EQ(take(EV_ABS, ABS_X, 0, RANGE), Kinds{Key::DOWN});
    EXPECT_EQ(take(EV_ABS, ABS_X, 23, RANGE), Kinds{Key::DOWN});
    keys.set_position(ABS_Y, 24);
    EXPECT_EQ(take(EV_ABS, ABS_Y, 0, RANGE), Kinds{Key::UP});
    EXPECT_EQ(take(EV_ABS, ABS_Y, 24, RANGE), Kinds{Key::DOWN});
}

TEST_F(Event_keys_test, AKeyCountsWhenItIsPressed) {
    EXPECT_EQ(take(EV_KEY, KEY_ENTER, 1), Kinds{Key::SELECT});
    EXPECT_EQ(take(EV_KEY, KEY_ENTER, 0), Kinds());
    EXPECT_EQ(take(EV_KEY, BTN_0, 1), Kinds{Key::SELECT});
    EXPECT_EQ(take(EV_KEY, KEY_A, 1), Kinds());
    EXPECT_EQ(take(EV_SYN, SYN_REPORT, 0), Kinds());
    EXPECT_EQ(keys.take({EV_KEY, KEY_F12, 1})[0].button, 12);
    EXPECT_EQ(keys.take({EV_KEY, KEY_9, 1})[0].button, 9);
}

TEST_F(Event_keys_test, AHeldKeyTurnsOnButDoesNotAcceptAgain) {
    EXPECT_EQ(take(EV_KEY, KEY_UP, 2), Kinds{Key::UP});
    EXPECT_EQ(take(EV_KEY, KEY_ENTER, 2), Kinds());
    EXPECT_EQ(take(EV_KEY, KEY_ESC, 2), Kinds());
    EXPECT_EQ(take(EV_KEY, KEY_RIGHT, 2), Kinds());
}

TEST_F(Event_keys_test, AMapTakesThePlaceOfTheUsualKeysAndReversesAxes) {
    keys = Event_keys({{"KEY_A", {Key::SELECT}}, {"REL_X", {Key::DOWN}}, {"ABS_X", {Key::DOWN}}});
    EXPECT_EQ(take(EV_KEY, KEY_A, 1), Kinds{Key::SELECT});
    EXPECT_EQ(take(EV_KEY, KEY_ENTER, 1), Kinds());
    EXPECT_EQ(take(EV_REL, REL_X, 1), Kinds{Key::DOWN});
    EXPECT_EQ(take(EV_REL, REL_X, -1), Kinds{Key::UP});
    EXPECT_EQ(take(EV_REL, REL_Y, 1), Kinds{Key::UP});
    take(EV_ABS, ABS_X, 0);
    EXPECT_EQ(take(EV_ABS, ABS_X, 1), Kinds{Key::DOWN});
}

TEST_F(Event_keys_test, NamesAreThoseOfTheKernel) {
    EXPECT_NO_THROW(check_event_names(usual_event_keys()));
    const auto error_of = [](const std::string& name, Key::Kind kind) -> std::string {
        try {
            check_event_names({{name, {kind}}});
        } catch (const Input_error& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(error_of("KEY_ENTRE", Key::SELECT),
              "unknown key or axis \"KEY_ENTRE\" of an input device");
    EXPECT_EQ(error_of("REL_X", Key::SELECT), "expected REL_X=up or REL_X=down");
    EXPECT_EQ(error_of("ABS_WHEEL", Key::DOWN), "");
}

}  // namespace
}  // namespace frontpanel
