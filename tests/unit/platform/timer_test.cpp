// Host time and timers on a clock that the tests set.
#include <frontpanel_data/timer.h>
#include <gtest/gtest.h>
#include <time.h>

#include <cerrno>
#include <climits>
#include <cstdint>

namespace {

struct Clock {
    bool injected = false;
    bool fails = false;
    timespec now{};
    clockid_t asked = -1;
};
Clock test_clock;

}  // namespace

extern "C" int __real_clock_gettime(clockid_t clock, timespec* now);

extern "C" int __wrap_clock_gettime(clockid_t clock, timespec* now) {
    if (!test_clock.injected) {
        return __real_clock_gettime(clock, now);
    }
    test_clock.asked = clock;
    if (test_clock.fails) {
        errno = EINVAL;
        return -1;
    }
    *now = test_clock.now;
    return 0;
}

namespace {

constexpr uint64_t WRAP = 1ULL << 33;         // microseconds
constexpr uint64_t LAST = (WRAP - 1) / 1000;  // the clock's last millisecond
constexpr uint64_t SECOND = 1'000'000;        // microseconds

// The real clock is back when the test ends.
class Host_time : public testing::Test {
protected:
    Host_time() {
        test_clock = Clock();
        test_clock.injected = true;
    }
    ~Host_time() override { test_clock = Clock(); }

    static void set_clock(uint64_t seconds, long nanoseconds) {
        test_clock.now.tv_sec = static_cast<time_t>(seconds);
        test_clock.now.tv_nsec = nanoseconds;
    }
    static void set_microseconds(uint64_t microseconds) {
        set_clock(microseconds / SECOND, static_cast<long>(microseconds % SECOND * 1000));
    }
    static void set_milliseconds(uint64_t milliseconds) { set_microseconds(milliseconds * 1000); }
};

class Exposed_timer : public LinuxTimer {
public:
    uint64_t deadline() const { return expiry_time; }
};

class Timers : public Host_time {
protected:
    long left() {
        long milliseconds = -77;
        EXPECT_EQ(timer.remaining(&milliseconds), 0);
        return milliseconds;
    }

    Exposed_timer timer;
};

TEST_F(Host_time, IsTheMonotonicClock) {
    get_host_time();
    EXPECT_EQ(test_clock.asked, CLOCK_MONOTONIC);
    test_clock.asked = -1;
    get_host_time_ns();
    EXPECT_EQ(test_clock.asked, CLOCK_MONOTONIC);
}

TEST_F(Host_time, CountsWholeMicroseconds) {
    set_clock(0, 999);
    EXPECT_EQ(get_host_time(), 0u);
    set_clock(0, 1000);
    EXPECT_EQ(get_host_time(), 1u);
    set_clock(12, 345'678'999);
    EXPECT_EQ(get_host_time(), 12'345'678u);
}

TEST_F(Host_time, StartsAgainAtZeroAfterThirtyThreeBits) {
    set_microseconds(WRAP - 1);
    EXPECT_EQ(get_host_time(), 0x1FFFFFFFFu);
    set_microseconds(WRAP);
    EXPECT_EQ(get_host_time(), 0u);
    set_microseconds(WRAP + 1);
    EXPECT_EQ(get_host_time(), 1u);
    set_microseconds(2 * WRAP + 5);
    EXPECT_EQ(get_host_time(), 5u);
}

TEST_F(Host_time, InNanosecondsIsNotReduced) {
    set_clock(0, 1);
    EXPECT_EQ(get_host_time_ns(), 1u);
    set_clock(8590, 123);
    EXPECT_EQ(get_host_time_ns(), 8'590'000'000'123u);
    set_clock(INT32_MAX, 999'999'999);
    EXPECT_EQ(get_host_time_ns(), 2'147'483'647'999'999'999u);
}

TEST_F(Host_time, IsZeroWhenTheClockCannotBeRead) {
    set_clock(12, 345);
    test_clock.fails = true;
    EXPECT_EQ(get_host_time(), 0u);
    EXPECT_EQ(get_host_time_ns(), 0u);
}

TEST(Real_host_time, DoesNotRunBackwards) {
    const unsigned long long first = get_host_time_ns();
    EXPECT_GT(first, 0u);
    EXPECT_GE(get_host_time_ns(), first);
}

TEST_F(Timers, AreExpiredUntilTheyAreSet) {
    EXPECT_TRUE(timer.expired());
    EXPECT_EQ(left(), 0);
    set_milliseconds(1000);
    EXPECT_TRUE(timer.expired());
    EXPECT_EQ(left(), 0);
}

TEST_F(Timers, SetToNowAreExpiredAtOnce) {
    set_milliseconds(1000);
    EXPECT_EQ(timer.set(0), 0);
    EXPECT_TRUE(timer.expired());
    EXPECT_EQ(left(), 0);
}

TEST_F(Timers, ExpireWithTheDeadlineItself) {
    set_milliseconds(1000);
    EXPECT_EQ(timer.set(20), 0);
    EXPECT_FALSE(timer.expired());
    EXPECT_EQ(left(), 20);
    set_milliseconds(1019);
    EXPECT_FALSE(timer.expired());
    EXPECT_EQ(left(), 1);
    set_milliseconds(1020);
    EXPECT_TRUE(timer.expired());
    EXPECT_EQ(left(), 0);
    set_milliseconds(1021);
    EXPECT_TRUE(timer.expired());
    EXPECT_EQ(left(), 0);
}

TEST_F(Timers, CountWholeMillisecondsOfTheClock) {
    set_microseconds(1'000'999);
    timer.set(1);
    EXPECT_EQ(timer.deadline(), 1001u);
    EXPECT_FALSE(timer.expired());
    set_microseconds(1'001'000);
    EXPECT_TRUE(timer.expired());
}

TEST_F(Timers, SetToThePastAreExpired) {
    set_milliseconds(1000);
    EXPECT_EQ(timer.set(-5), 0);
    EXPECT_EQ(timer.deadline(), 995u);
    EXPECT_TRUE(timer.expired());
    EXPECT_EQ(left(), 0);
}

TEST_F(Timers, CanBeSetAnew) {
    set_milliseconds(1000);
    timer.set(500);
    timer.set(3);
    EXPECT_EQ(left(), 3);
    timer.set(-1);
    EXPECT_TRUE(timer.expired());
}

TEST_F(Timers, ReachWithADeadlineOfTheLargestNumber) {
    set_milliseconds(1000);
    timer.set(LONG_MAX);
    EXPECT_EQ(timer.deadline(), 1000u + static_cast<uint64_t>(LONG_MAX));
    EXPECT_FALSE(timer.expired());
    EXPECT_EQ(left(), LONG_MAX);
}

TEST_F(Timers, SetBeforeTheClocksZeroAreNeverReached) {
    set_milliseconds(3);
    timer.set(-5);
    EXPECT_EQ(timer.deadline(), UINT64_MAX - 1);
    EXPECT_FALSE(timer.expired());
    EXPECT_EQ(left(), -5);
    timer.set(LONG_MIN);
    EXPECT_FALSE(timer.expired());
    EXPECT_EQ(left(), LONG_MIN);
    set_milliseconds(1000);
    timer.set(-5);
    EXPECT_TRUE(timer.expired());
}

TEST_F(Timers, SetBeyondTheClocksEndAreNeverReached) {
    set_milliseconds(LAST - 10);
    timer.set(20);
    EXPECT_EQ(timer.deadline(), LAST + 10);
    set_microseconds(WRAP - 1);
    EXPECT_FALSE(timer.expired());
    EXPECT_EQ(left(), 10);
    set_microseconds(WRAP);
    EXPECT_FALSE(timer.expired());
    EXPECT_EQ(left(), static_cast<long>(LAST) + 10);
    set_microseconds(2 * WRAP - 1);
    EXPECT_FALSE(timer.expired());
}

TEST_F(Timers, NotSeenExpiredBeforeTheClockStartsAgainWaitUntilItHasComeRound) {
    set_milliseconds(LAST - 10);
    timer.set(5);
    set_microseconds(WRAP);
    EXPECT_FALSE(timer.expired());
    EXPECT_EQ(left(), static_cast<long>(LAST) - 5);
    set_microseconds(WRAP + (LAST - 5) * 1000);
    EXPECT_TRUE(timer.expired());
    EXPECT_EQ(left(), 0);
}

TEST_F(Timers, WithoutAClockStandAtZero) {
    set_milliseconds(1000);
    test_clock.fails = true;
    EXPECT_EQ(timer.set(7), 0);
    EXPECT_FALSE(timer.expired());
    EXPECT_EQ(left(), 7);
    test_clock.fails = false;
    EXPECT_TRUE(timer.expired());
}

TEST_F(Timers, AreUsedThroughTheirInterface) {
    set_milliseconds(1000);
    LinuxTimer* const linux_timer = new LinuxTimer;
    Timer* const interface = linux_timer;
    long milliseconds = 0;
    EXPECT_EQ(interface->set(9), 0);
    EXPECT_FALSE(interface->expired());
    EXPECT_EQ(interface->remaining(&milliseconds), 0);
    EXPECT_EQ(milliseconds, 9);
    delete interface;
}

TEST(TimerDeathTest, NeedsAPlaceForWhatRemains) {
    LinuxTimer timer;
    EXPECT_DEATH(timer.remaining(nullptr), "remaining: Assertion `pdelta' failed");
}

}  // namespace
