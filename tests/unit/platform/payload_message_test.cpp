#include <frontpanel_data/front_panel_messages.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

bool is_memory_left = true;

}  // namespace

void* operator new[](std::size_t size) {
    void* const memory = is_memory_left ? std::malloc(size) : nullptr;
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace {

template <class Class, class... Arguments>
bool throws_without_memory(Arguments... arguments) {
    is_memory_left = false;
    bool is_thrown = false;
    try {
        const Class message(arguments...);
    } catch (const std::bad_alloc&) {
        is_thrown = true;
    }
    is_memory_left = true;
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
