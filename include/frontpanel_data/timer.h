// Monotonic host time, a millisecond deadline timer, and a hexadecimal dump for diagnostics.
//
// Any thread may call the functions; one timer object serves one thread at a time.
#ifndef FRONTPANEL_DATA_TIMER_H
#define FRONTPANEL_DATA_TIMER_H

#include <cstdint>

#include <frontpanel_data/export.h>

// The monotonic clock in microseconds, in 33 bits: after 0x1FFFFFFFF (about 2 h 23 min) it starts again at 0.
// 0 when the clock cannot be read.
FRONTPANEL_DATA_EXPORT unsigned long long get_host_time();

// The monotonic clock in nanoseconds, never reduced. 0 when the clock cannot be read.
FRONTPANEL_DATA_EXPORT unsigned long long get_host_time_ns();

// Prints `size` bytes to standard output: for every 16 of them one line of two-digit hexadecimal numbers and
// one with the characters below them, both behind the offset of the first. A byte that is no printable ASCII
// character shows as ".", whatever the locale. Prints nothing for size 0; otherwise `buffer` must not be null
// (asserted).
FRONTPANEL_DATA_EXPORT void dump_hex(const unsigned char* buffer, unsigned int size);

// A deadline that is set, asked for, and set again.
class FRONTPANEL_DATA_EXPORT Timer {
public:
    Timer();
    virtual ~Timer();

    // Puts the deadline `delta` milliseconds after now; a negative `delta` puts it before. 0 on success.
    virtual int set(long delta) = 0;
    // Whether the deadline has come.
    virtual bool expired() = 0;
    // Stores the milliseconds left in `*pdelta`, 0 once the deadline has come. 0 on success.
    virtual int remaining(long* pdelta) = 0;
};

// A timer on `get_host_time`, in whole milliseconds of it. Expired until it is first set.
//
// The deadline does not follow the clock when that starts again at 0, which happens every 8,589,934 ms. So for
// a timer that is set before the clock starts again and asked after it:
// - a deadline that was already behind the last millisecond of the clock is never reached;
// - one before it, not seen as expired in time, counts as not expired until the clock has come round;
// - `remaining` then stores more than was set;
// - a deadline put before the clock's 0 by a negative `delta` is never reached either, and `remaining`
//   stores a negative number.
// Setting the timer again helps in each case: when `remaining` stores more than was set, the clock has started
// again.
class FRONTPANEL_DATA_EXPORT LinuxTimer : public Timer {
public:
    LinuxTimer();

    // Always 0.
    int set(long delta) override;
    // A deadline equal to now counts.
    bool expired() override;
    // Always 0. `pdelta` must not be null (asserted).
    int remaining(long* pdelta) override;
    ~LinuxTimer() override;

protected:
    uint64_t expiry_time;  // milliseconds of `get_host_time`
};

#endif
