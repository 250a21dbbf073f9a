#include <frontpanel_data/jmutex.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <thread>

namespace {

TEST(JMutex, IsUnusableBeforeItIsInitialised) {
    JMutex mutex;
    EXPECT_FALSE(mutex.IsInitialized());
    EXPECT_EQ(mutex.Lock(), EINVAL);
    EXPECT_EQ(mutex.Unlock(), EINVAL);
}

TEST(JMutex, LocksAndUnlocks) {
    JMutex mutex;
    EXPECT_EQ(mutex.Init(), 0);
    EXPECT_TRUE(mutex.IsInitialized());
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(mutex.Lock(), 0);
        EXPECT_EQ(mutex.Unlock(), 0);
    }
}

TEST(JMutex, InitialisingAgainChangesNothing) {
    JMutex mutex;
    EXPECT_EQ(mutex.Init(), 0);
    EXPECT_EQ(mutex.Lock(), 0);
    EXPECT_EQ(mutex.Init(), 0);
    EXPECT_EQ(mutex.Unlock(), 0);
    EXPECT_TRUE(mutex.IsInitialized());
}

TEST(JMutex, KeepsThreadsApart) {
    JMutex mutex;
    ASSERT_EQ(mutex.Init(), 0);
    int count = 0;
    const auto work = [&] {
        for (int i = 0; i < 10000; ++i) {
            mutex.Lock();
            ++count;
            mutex.Unlock();
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
    EXPECT_EQ(count, 20000);
}

}  // namespace
