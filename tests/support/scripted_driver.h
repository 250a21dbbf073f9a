// A driver whose device is in the hands of a test: it holds values, records calls, refuses, is away, pushes and hangs as
// the test says. The device outlives the driver, which the cache owns; it may be used from any thread.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_SCRIPTED_DRIVER_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_SCRIPTED_DRIVER_H

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <frontpanel_base/descriptor.h>
#include <frontpanel_drivers/driver.h>

namespace support {

using frontpanel::Driver_result;
using frontpanel::Parameter_value;

inline std::string text_of(const Parameter_value& value) {
    const auto* const number = std::get_if<std::int32_t>(&value);
    return number != nullptr ? std::to_string(*number) : std::get<std::string>(value);
}

class Scripted_device {
public:
    // ---- what the test says
    void hold(std::size_t number, Parameter_value value) {
        locked([&] { m_values[number] = std::move(value); });
    }
    // The parameter fails to be read; an empty reason ends that.
    void fail(std::size_t number, const std::string& reason) {
        locked([&] { m_failures[number] = reason; });
    }
    void be_away(const std::string& reason) {
        locked([&] { m_away = reason; });
    }
    void be_back() { be_away(""); }
    // The next writes end like that, one each; further ones are done.
    void answer_writes(std::vector<Driver_result> results) {
        locked([&] { m_write_results = std::move(results); });
    }
    // Called once, while the next write is on its way to the device.
    void during_write(std::function<void()> act) {
        locked([&] { m_during_write = std::move(act); });
    }
    // A read ends after that number of parameters.
    void read_at_most(std::size_t count) {
        locked([&] { m_most_read = count; });
    }
    void answer_reads(const Driver_result& result) {
        locked([&] { m_read_result = result; });
    }
    void push_by_itself(std::size_t number) {
        locked([&] { m_pushed.insert(number); });
    }
    // A value that is pushed has a successor in each poll interval. Said before the parameter is added.
    void repeat(std::size_t number) {
        locked([&] { m_repeated.insert(number); });
    }
    void throw_in_reads(const std::string& what) {
        locked([&] { m_thrown = what; });
    }
    // Passed to the sink of the next `wait`.
    void push(std::size_t number, Parameter_value value,
              std::chrono::milliseconds age = std::chrono::milliseconds(0)) {
        locked([&] { m_waiting.push_back({number, std::move(value), age}); });
        const std::uint64_t one = 1;
        (void)!write(m_pushes.number(), &one, sizeof one);
    }
    // Calls do not return from now on, until the device goes on.
    void hang() {
        locked([&] { m_hangs = true; });
    }
    // A wait does not return after its time from now on.
    void hang_in_waits() {
        locked([&] { m_hangs_in_waits = true; });
    }
    void go_on() {
        locked([&] { m_hangs = m_hangs_in_waits = false; });
        m_changed.notify_all();
    }
    // A call that hangs returns when the driver is stopped.
    void heed_stop() {
        locked([&] { m_heeds_stop = true; });
    }

    // ---- what the driver did
    std::vector<std::string> take_calls() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return std::exchange(m_calls, {});
    }
    Parameter_value held(std::size_t number) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_values[number];
    }
    std::vector<std::string> writes() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_writes;
    }
    // Waits until a call hangs.
    void wait_until_hanging() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_hanging > 0; });
    }
    // Waits until the driver is gone.
    void wait_until_gone() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_gone; });
    }

private:
    friend class Scripted_driver;

    template <typename Act>
    void locked(Act act) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        act();
    }
    // Records a call, and hangs in it where the test says so.
    void begin(std::unique_lock<std::mutex>& lock, const std::string& call) {
        m_calls.push_back(call);
        if (m_hangs) {
            ++m_hanging;
            m_changed.notify_all();
            m_changed.wait(lock, [this] { return !m_hangs; });
            --m_hanging;
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<std::size_t, Parameter_value> m_values;
    std::map<std::size_t, std::string> m_failures;
    std::set<std::size_t> m_pushed;
    std::set<std::size_t> m_repeated;
    struct Pushed {
        std::size_t number;
        Parameter_value value;
        std::chrono::milliseconds age;
    };
    std::vector<Pushed> m_waiting;
    std::vector<Driver_result> m_write_results;
    std::function<void()> m_during_write;
    Driver_result m_read_result;
    std::size_t m_most_read = SIZE_MAX;
    std::string m_away;
    std::string m_thrown;
    bool m_hangs = false;
    bool m_hangs_in_waits = false;
    bool m_heeds_stop = false;
    int m_hanging = 0;
    bool m_gone = false;
    std::vector<std::string> m_calls;
    std::vector<std::string> m_writes;
    frontpanel::Descriptor m_pushes{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

class Scripted_driver : public frontpanel::Driver {
public:
    explicit Scripted_driver(std::shared_ptr<Scripted_device> device)
        : m_device(std::move(device)) {}
    ~Scripted_driver() override {
        m_device->locked([this] { m_device->m_gone = true; });
        m_device->m_changed.notify_all();
    }

    void add(const frontpanel::Json_value& /*source*/,
             const frontpanel::Driver_parameter& /*parameter*/) override {}

    Driver_result connect() override {
        std::unique_lock<std::mutex> lock(m_device->m_mutex);
        m_device->begin(lock, "connect");
        return away_or_done();
    }
    void disconnect() override {
        std::unique_lock<std::mutex> lock(m_device->m_mutex);
        m_device->begin(lock, "disconnect");
    }
    void stop() override {
        bool heeds = false;
        m_device->locked([&] { heeds = m_device->m_heeds_stop; });
        if (heeds) {
            m_device->go_on();
        }
    }
    bool pushes(std::size_t number) const override {
        const std::lock_guard<std::mutex> lock(m_device->m_mutex);
        return m_device->m_pushed.count(number) > 0;
    }
    bool repeats(std::size_t number) const override {
        const std::lock_guard<std::mutex> lock(m_device->m_mutex);
        return m_device->m_repeated.count(number) > 0;
    }

    Driver_result read(const std::vector<std::size_t>& numbers,
                       frontpanel::Value_sink& sink) override {
        std::unique_lock<std::mutex> lock(m_device->m_mutex);
        std::string call = "read";
        for (const std::size_t number : numbers) {
            call += " " + std::to_string(number);
        }
        m_device->begin(lock, call);
        if (!m_device->m_thrown.empty()) {
            throw std::runtime_error(m_device->m_thrown);
        }
        if (!m_device->m_away.empty() || m_device->m_read_result.kind != Driver_result::DONE) {
            return m_device->m_away.empty() ? m_device->m_read_result : away_or_done();
        }
        const std::size_t count = std::min(numbers.size(), m_device->m_most_read);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t number = numbers[i];
            const std::string failure = m_device->m_failures[number];
            const Parameter_value value = m_device->m_values[number];
            lock.unlock();
            failure.empty() ? sink.value(number, value) : sink.failure(number, failure);
            lock.lock();
        }
        return Driver_result::done();
    }

    Driver_result write(std::size_t number, const Parameter_value& value) override {
        std::unique_lock<std::mutex> lock(m_device->m_mutex);
        const std::string written = std::to_string(number) + "=" + text_of(value);
        m_device->begin(lock, "write " + written);
        if (const auto act = std::exchange(m_device->m_during_write, nullptr)) {
            lock.unlock();
            act();
            lock.lock();
        }
        if (!m_device->m_away.empty()) {
            return away_or_done();
        }
        Driver_result result;
        if (!m_device->m_write_results.empty()) {
            result = m_device->m_write_results.front();
            m_device->m_write_results.erase(m_device->m_write_results.begin());
        }
        if (result.kind == Driver_result::DONE) {
            m_device->m_values[number] = value;
            m_device->m_writes.push_back(written);
        }
        return result;
    }

    Driver_result wait(std::chrono::milliseconds most, int wake,
                       frontpanel::Value_sink& sink) override {
        pollfd sources[] = {{wake, POLLIN, 0}, {m_device->m_pushes.number(), POLLIN, 0}};
        poll(sources, 2, static_cast<int>(most.count()));
        std::uint64_t raised = 0;
        (void)!::read(m_device->m_pushes.number(), &raised, sizeof raised);
        std::unique_lock<std::mutex> lock(m_device->m_mutex);
        if (m_device->m_hangs_in_waits) {
            ++m_device->m_hanging;
            m_device->m_changed.notify_all();
            m_device->m_changed.wait(lock, [this] { return !m_device->m_hangs_in_waits; });
            --m_device->m_hanging;
        }
        const auto waiting = std::exchange(m_device->m_waiting, {});
        const Driver_result result = away_or_done();
        lock.unlock();
        for (const auto& [number, value, age] : waiting) {
            sink.late_value(number, value, age);
        }
        return result;
    }

private:
    Driver_result away_or_done() const {
        return m_device->m_away.empty() ? Driver_result::done()
                                        : Driver_result::away(m_device->m_away);
    }

    std::shared_ptr<Scripted_device> m_device;
};

}  // namespace support

#endif
