// Events from the drivers for the menu thread. Shared by the threads, which may outlive the cache. Thread-safe.
#ifndef FRONTPANEL_DRIVERS_DRIVER_NEWS_H
#define FRONTPANEL_DRIVERS_DRIVER_NEWS_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

#include <frontpanel_base/descriptor.h>
#include <frontpanel_drivers/device_cache.h>

namespace frontpanel {

// A descriptor that one thread makes readable for another. std::system_error when it cannot be created.
class Wake_descriptor {
public:
    Wake_descriptor();

    int number() const { return m_descriptor.number(); }
    void raise() const;
    // Whether it was raised; it no longer is.
    bool take() const;

private:
    Descriptor m_descriptor;
};

class Driver_news {
public:
    static constexpr std::size_t MOST_EVENTS = 1000;  // kept for the menu thread

    int descriptor() const { return m_changed.number(); }
    bool take_changes() const { return m_changed.take(); }
    // Something that is shown changed.
    void raise() const { m_changed.raise(); }

    void add(Driver_event event);
    std::vector<Driver_event> take_events();

    // The rounds that the drivers' threads have done so far.
    std::uint64_t rounds() const;
    void note_round();
    // Waits until there are more rounds than `seen`, until `end` at the longest.
    void wait_for_round(std::uint64_t seen, std::chrono::steady_clock::time_point end);

private:
    Wake_descriptor m_changed;
    mutable std::mutex m_mutex;
    std::condition_variable m_round_done;
    std::uint64_t m_rounds = 0;
    std::vector<Driver_event> m_events;
    std::size_t m_dropped = 0;
};

}  // namespace frontpanel

#endif
