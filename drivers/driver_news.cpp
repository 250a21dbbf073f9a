#include "driver_news.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace frontpanel {

Wake_descriptor::Wake_descriptor() : m_descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!m_descriptor.is_open()) {
        throw std::system_error(errno, std::generic_category(), "cannot create a descriptor");
    }
}

// Fails only while the counter is full, and then it is readable.
void Wake_descriptor::raise() const {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(number(), &one, sizeof one);
}

bool Wake_descriptor::take() const {
    std::uint64_t raised = 0;
    return read(number(), &raised, sizeof raised) == sizeof raised;
}

void Driver_news::add(Driver_event event) {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_events.size() < MOST_EVENTS) {
            m_events.push_back(std::move(event));
        } else {
            ++m_dropped;
        }
    }
    raise();
}

std::vector<Driver_event> Driver_news::take_events() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<Driver_event> events;
    events.swap(m_events);
    if (const std::size_t dropped = std::exchange(m_dropped, 0); dropped > 0) {
        events.push_back({Driver_event::READ_FAILED, "drivers", "",
                          std::to_string(dropped) + " more events like these"});
    }
    return events;
}

std::uint64_t Driver_news::rounds() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_rounds;
}

void Driver_news::note_round() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_rounds;
    }
    m_round_done.notify_all();
}

void Driver_news::wait_for_round(std::uint64_t seen, std::chrono::steady_clock::time_point end) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_round_done.wait_until(lock, end, [&] { return m_rounds > seen; });
}

}  // namespace frontpanel
