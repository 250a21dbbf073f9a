#include <frontpanel_inputs/evdev_input.h>

#include <linux/input-event-codes.h>

#include <algorithm>
#include <deque>
#include <utility>

#include <frontpanel_base/input_error.h>
#include <frontpanel_display/retry.h>
#include "event_device.h"

namespace frontpanel {
namespace {

constexpr const char* FOLDER = "/dev/input";

}  // namespace

class Evdev_input::Reader {
public:
    Reader(const std::string& device, const Event_key_map& keys, std::ostream& log)
        : m_name(device), m_log(log), m_keys(keys) {}

    std::optional<Front_event> next(Time now);
    pollfd source() const { return {m_device ? m_device->descriptor() : -1, POLLIN, 0}; }
    Time due() const;

private:
    void open(Time now);
    void read();
    void take(const Event_device::Signal& signal);
    void lose(std::string reason, Time now);
    void say(const std::string& text);
    void report_use();

    std::string m_name;
    std::ostream& m_log;
    Event_keys m_keys;
    std::unique_ptr<Event_device> m_device;  // null while it is away
    std::deque<Key> m_pressed;
    bool m_has_more = false;  // events that were not looked at
    Retry m_retry;
    Time m_next_try{};
};

std::optional<Front_event> Evdev_input::Reader::next(Time now) {
    if (!m_device && now >= m_next_try) {
        open(now);
    }
    if (m_device && m_pressed.empty()) {
        read();
    }
    if (m_device && m_pressed.empty() && !m_device->error().empty()) {
        lose(m_device->error(), now);
    }
    if (m_device && m_retry.settle(now)) {
        report_use();
    }
    if (m_pressed.empty()) {
        return std::nullopt;
    }
    const Key key = m_pressed.front();
    m_pressed.pop_front();
    return Front_event{Front_event::KEY, key};
}

void Evdev_input::Reader::open(Time now) {
    const bool is_path = m_name.front() == '/' || m_name.front() == '.';
    Opened_device opened = is_path ? open_event_device(m_name) : find_event_device(m_name, FOLDER);
    if (!opened.device) {
        lose(opened.error, now);
        return;
    }
    m_device = std::move(opened.device);
    m_keys.forget_state();
    for (const auto& [axis, position] : m_device->positions()) {
        m_keys.set_position(axis, position);
    }
    if (m_retry.gain(now)) {
        report_use();
    }
}

// Up to the first event that presses a key. A device that never runs out of others must not hold the panel. What it has
// handed over already does not make its descriptor readable.
void Evdev_input::Reader::read() {
    constexpr int MOST_EVENTS = 1000;
    m_has_more = false;
    for (int count = 0; count < MOST_EVENTS && m_pressed.empty(); ++count) {
        const std::optional<Event_device::Signal> signal = m_device->next();
        if (!signal) {
            return;
        }
        take(*signal);
    }
    m_has_more = m_pressed.empty();
}

// What was pressed among lost events is not known: nothing is pressed for it. Axes go on from where they are now.
void Evdev_input::Reader::take(const Event_device::Signal& signal) {
    const Input_signal& event = signal.event;
    if (!signal.is_late) {
        const std::vector<Key> keys = m_keys.take(
            event, event.type == EV_ABS ? m_device->range_of(event.code) : std::nullopt);
        m_pressed.insert(m_pressed.end(), keys.begin(), keys.end());
    } else if (event.type == EV_ABS) {
        m_keys.set_position(event.code, event.value);
    } else if (event.type == EV_SYN && event.code == SYN_DROPPED) {
        m_keys.forget_state();
        for (const auto& [axis, position] : m_device->positions()) {
            m_keys.set_position(axis, position);
        }
    }
}

// The reason may be the device's own.
void Evdev_input::Reader::lose(std::string reason, Time now) {
    m_device.reset();
    m_has_more = false;
    const bool is_news = m_retry.lose(now);
    m_next_try = std::min(m_retry.next_try(), now + LONGEST_PAUSE);
    if (is_news) {
        say("is unreachable (" + std::move(reason) + "); retrying");
    }
}

Time Evdev_input::Reader::due() const {
    if (!m_pressed.empty() || m_has_more) {
        return Time::min();
    }
    return m_device ? m_retry.settles() : m_next_try;
}

void Evdev_input::Reader::say(const std::string& text) {
    m_log << "frontpanel: input " << one_line(m_name + " " + text) << std::endl;
}

void Evdev_input::Reader::report_use() {
    const std::string name = m_device->name();
    say(name.empty() || name == m_name ? "is used" : "is used (" + name + ")");
}

Evdev_input::Evdev_input(const std::string& device, const Event_key_map& keys, std::ostream& log)
    : m_reader(std::make_unique<Reader>(device, keys, log)) {}

Evdev_input::~Evdev_input() = default;

std::optional<Front_event> Evdev_input::next(Time now) {
    return m_reader->next(now);
}

pollfd Evdev_input::source() const {
    return m_reader->source();
}

Time Evdev_input::due() const {
    return m_reader->due();
}

}  // namespace frontpanel
