#include <frontpanel_data/timer.h>

#include <time.h>

#include "assertion.h"

namespace {

// Intended: callers take the differences of host times modulo 2^33.
constexpr unsigned long long HOST_TIME_MASK = 0x1FFFFFFFF;

constexpr unsigned long long MICROSECONDS_A_SECOND = 1'000'000;
constexpr unsigned long long NANOSECONDS_A_SECOND = 1'000'000'000;
constexpr unsigned long long NANOSECONDS_A_MICROSECOND = 1'000;
constexpr unsigned long long MICROSECONDS_A_MILLISECOND = 1'000;

struct Clock_reading {
    unsigned long long seconds;
    unsigned long long nanoseconds;
};

// All zero when the clock cannot be read. Widened first, since seconds may have 32 bits.
Clock_reading read_clock() {
    timespec now{};
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0) {
        return {0, 0};
    }
    return {static_cast<unsigned long long>(now.tv_sec),
            static_cast<unsigned long long>(now.tv_nsec)};
}

uint64_t now_in_milliseconds() {
    return get_host_time() / MICROSECONDS_A_MILLISECOND;
}

}  // namespace

unsigned long long get_host_time() {
    const Clock_reading now = read_clock();
    return (now.seconds * MICROSECONDS_A_SECOND + now.nanoseconds / NANOSECONDS_A_MICROSECOND) &
           HOST_TIME_MASK;
}

unsigned long long get_host_time_ns() {
    const Clock_reading now = read_clock();
    return now.seconds * NANOSECONDS_A_SECOND + now.nanoseconds;
}

Timer::Timer() = default;

Timer::~Timer() = default;

LinuxTimer::LinuxTimer() : expiry_time(0) {}

LinuxTimer::~LinuxTimer() = default;

int LinuxTimer::set(long delta) {
    expiry_time = now_in_milliseconds() + static_cast<uint64_t>(delta);
    return 0;
}

bool LinuxTimer::expired() {
    return expiry_time <= now_in_milliseconds();
}

int LinuxTimer::remaining(long* pdelta) {
    FRONTPANEL_ASSERT(pdelta != nullptr, "pdelta");
    const uint64_t now = now_in_milliseconds();
    *pdelta = expiry_time > now ? static_cast<long>(expiry_time - now) : 0;
    return 0;
}
