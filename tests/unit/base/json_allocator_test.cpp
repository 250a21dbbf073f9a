#include <frontpanel_base/json_allocator.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace frontpanel {
namespace {

// Sanitizers end the program for it.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define FRONTPANEL_TEST_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define FRONTPANEL_TEST_SANITIZED
#endif
#endif

TEST(JsonAllocator, MemoryThatIsNotThereIsAnException) {
#ifdef FRONTPANEL_TEST_SANITIZED
    GTEST_SKIP() << "a sanitizer takes over";
#endif
    Json_allocator allocator;
    // Not PTRDIFF_MAX, which is only half of the addresses of a 32-bit device.
    const volatile std::size_t too_large = SIZE_MAX;
    EXPECT_THROW(allocator.Malloc(too_large), std::bad_alloc);
    void* const kept = allocator.Malloc(4);
    std::memcpy(kept, "abc", 4);
    EXPECT_THROW(allocator.Realloc(kept, 4, too_large), std::bad_alloc);
    EXPECT_STREQ(static_cast<const char*>(kept), "abc");
    Json_allocator::Free(kept);
}

TEST(JsonAllocator, GrowsMemoryAndTakesNoneForNothing) {
    Json_allocator allocator;
    EXPECT_EQ(allocator.Malloc(0), nullptr);
    void* memory = allocator.Realloc(nullptr, 0, 4);
    std::memcpy(memory, "abc", 4);
    memory = allocator.Realloc(memory, 4, 4000);
    EXPECT_STREQ(static_cast<const char*>(memory), "abc");
    EXPECT_EQ(allocator.Realloc(memory, 4000, 0), nullptr);
}

}  // namespace
}  // namespace frontpanel
