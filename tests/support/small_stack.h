// Runs code on a stack on which no recursion over the levels of a deep menu fits.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_SMALL_STACK_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_SMALL_STACK_H

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

namespace support {

// Enough for what the library and the C library need, sanitizers included.
constexpr std::size_t SMALL_STACK = 512 * 1024;
// Levels of a menu that overflow it at 26 bytes each.
constexpr int DEEP = 20000;

inline void run_on_small_stack(const std::function<void()>& run) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, SMALL_STACK), 0);
    pthread_t thread;
    const auto call = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, call, const_cast<std::function<void()>*>(&run)),
              0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

}  // namespace support

#endif
