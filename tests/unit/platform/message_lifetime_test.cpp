// When the objects of the catalogue are built and destroyed.
#include <frontpanel_data/front_panel_messages.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

const FrontPanel::Message& heart_beat_of_the_second_unit();

namespace {

struct Built {
    const char* name;
    const void* object;
};
// Of constants only, since objects are built before the unit that notes them may be.
constexpr std::size_t MOST = 100;
Built built[MOST];
std::size_t built_count = 0;
bool tell_destruction = false;

void note_built(const char* name, const void* object) {
    if (built_count < MOST) {
        built[built_count++] = {name, object};
    }
}

void note_destroyed(const char* name) {
    if (tell_destruction) {
        std::fprintf(stderr, "%s\n", name);
    }
}

}  // namespace

// Constructors return the object on some processors and nothing on others.
#define NOTED(length, class_of)                                                    \
    extern "C" void* __real__ZN10FrontPanel##length##class_of##C1Ev(void* object); \
    extern "C" void* __wrap__ZN10FrontPanel##length##class_of##C1Ev(void* object); \
    extern "C" void* __real__ZN10FrontPanel##length##class_of##D1Ev(void* object); \
    extern "C" void* __wrap__ZN10FrontPanel##length##class_of##D1Ev(void* object); \
    void* __wrap__ZN10FrontPanel##length##class_of##C1Ev(void* object) {           \
        note_built(#class_of, object);                                             \
        __real__ZN10FrontPanel##length##class_of##C1Ev(object);                    \
        return object;                                                             \
    }                                                                              \
    void* __wrap__ZN10FrontPanel##length##class_of##D1Ev(void* object) {           \
        note_destroyed(#class_of);                                                 \
        __real__ZN10FrontPanel##length##class_of##D1Ev(object);                    \
        return object;                                                             \
    }

NOTED(16, HeartBeatMessage)
NOTED(10, AckMessage)
NOTED(11, NackMessage)
NOTED(14, StartupMessage)
NOTED(12, ResetMessage)
NOTED(19, UpgradeStartMessage)
NOTED(17, UpgradeEndMessage)
NOTED(24, RequestDeviceTypeMessage)
NOTED(26, RequestSerialNumberMessage)
NOTED(29, RequestFirmwareVersionMessage)
NOTED(31, UserInputTimeoutShortcutMessage)
NOTED(20, DisplayUpdateMessage)
NOTED(19, DisplayClearMessage)
NOTED(23, UserInputTimeoutMessage)
NOTED(23, SelectPressMessageClass)
NOTED(23, EscapePressMessageClass)
NOTED(21, GenericInvalidMessage)

namespace {

const std::vector<std::string> ORDER = {
    "HeartBeatMessage",
    "AckMessage",
    "NackMessage",
    "StartupMessage",
    "ResetMessage",
    "UpgradeStartMessage",
    "UpgradeEndMessage",
    "RequestDeviceTypeMessage",
    "RequestSerialNumberMessage",
    "RequestFirmwareVersionMessage",
    "UserInputTimeoutShortcutMessage",
    "DisplayUpdateMessage",
    "DisplayClearMessage",
    "UserInputTimeoutMessage",
    "SelectPressMessageClass",
    "EscapePressMessageClass",
    "GenericInvalidMessage",
};

std::vector<std::string> built_names() {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < built_count; ++i) {
        names.push_back(built[i].name);
    }
    return names;
}

bool is_built(const void* object) {
    for (std::size_t i = 0; i < built_count; ++i) {
        if (built[i].object == object) {
            return true;
        }
    }
    return false;
}

TEST(MessageLifetime, EveryUnitBuildsItsOwnSetInOrder) {
    std::vector<std::string> twice = ORDER;
    twice.insert(twice.end(), ORDER.begin(), ORDER.end());
    EXPECT_EQ(built_names(), twice);
    const FrontPanel::Message& other = heart_beat_of_the_second_unit();
    EXPECT_NE(&other, &FrontPanel::HeartBeat);
    EXPECT_TRUE(is_built(&other));
    EXPECT_TRUE(is_built(&FrontPanel::HeartBeat));
    EXPECT_TRUE(is_built(&FrontPanel::GenericInvalid));
}

TEST(MessageLifetimeDeathTest, TheSetsAreDestroyedInReverseOrder) {
    std::string reversed;
    for (int unit = 0; unit < 2; ++unit) {
        for (auto name = ORDER.rbegin(); name != ORDER.rend(); ++name) {
            reversed += *name + "\n";
        }
    }
    const auto end_process = [] {
        tell_destruction = true;
        std::exit(0);
    };
    EXPECT_EXIT(end_process(), testing::ExitedWithCode(0), testing::Eq(reversed));
}

}  // namespace
