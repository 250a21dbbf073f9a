#include <frontpanel_data/front_panel_messages.h>
#include <gtest/gtest.h>

#include <new>

#include "support/allocation_counter.h"

namespace {

template <class Class, class... Arguments>
bool throws_without_memory(Arguments... arguments) {
    bool is_thrown = false;
    support::fail_allocation(1);
    try {
        const Class message(arguments...);
    } catch (const std::bad_alloc&) {
        is_thrown = true;
    }
    support::fail_allocation(0);
    return is_thrown;
}

TEST(Payload_message, ThrowsWhenThereIsNoMemoryForItsPayload) {
    EXPECT_TRUE(throws_without_memory<FrontPanel::PayloadMessage>(static_cast<unsigned short>(9)));
    EXPECT_TRUE(throws_without_memory<FrontPanel::UserInputTimeoutShortcutMessage>());
    EXPECT_TRUE(throws_without_memory<FrontPanel::SelectPressMessageClass>());
    EXPECT_TRUE(throws_without_memory<FrontPanel::EscapePressMessageClass>());
}

TEST(Payload_message, AllocatesNothingWithoutPayload) {
    EXPECT_FALSE(throws_without_memory<FrontPanel::PayloadMessage>(static_cast<unsigned short>(0)));
    EXPECT_FALSE(throws_without_memory<FrontPanel::AckMessage>());
}

}  // namespace
