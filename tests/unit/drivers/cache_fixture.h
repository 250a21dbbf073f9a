// A cache over scripted drivers, with a clock in the test's hands.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_DRIVERS_CACHE_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_UNIT_DRIVERS_CACHE_FIXTURE_H

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <frontpanel_drivers/device_cache.h>
#include "support/fake_device.h"
#include "support/scripted_driver.h"

namespace support {

using frontpanel::Device_cache;
using frontpanel::Device_cache_settings;
using frontpanel::Driver_event;
using frontpanel::Driver_parameter;
using frontpanel::Freshness;
using std::chrono::milliseconds;
using namespace std::chrono_literals;

class Test_clock {
public:
    std::chrono::steady_clock::time_point now() const {
        return std::chrono::steady_clock::time_point(milliseconds(m_now));
    }
    void advance(milliseconds time) { m_now += time.count(); }

private:
    std::atomic<std::int64_t> m_now{1000000};
};

inline Driver_parameter number_parameter(std::uint32_t pid, std::int32_t min = -1000,
                                         std::int32_t max = 1000) {
    Driver_parameter parameter;
    parameter.pid = pid;
    parameter.name = "p" + std::to_string(pid);
    parameter.min = min;
    parameter.max = max;
    return parameter;
}

inline Driver_parameter text_parameter(std::uint32_t pid, std::size_t length) {
    Driver_parameter parameter;
    parameter.pid = pid;
    parameter.name = "p" + std::to_string(pid);
    parameter.is_text = true;
    parameter.length = length;
    return parameter;
}

// A number of the interface; nothing when the read fails.
inline std::optional<std::int32_t> number_of(Data_interface& device, std::uint32_t pid) {
    std::int32_t number = 0;
    return device.Get(pid, 0, &number, sizeof number) == 0 ? std::optional<std::int32_t>(number)
                                                           : std::nullopt;
}

inline int set_number(Data_interface& device, std::uint32_t pid, std::int32_t number) {
    return device.Set(pid, 0, &number, sizeof number);
}

inline std::vector<std::string> texts_of(const std::vector<Driver_event>& events) {
    std::vector<std::string> texts;
    for (const Driver_event& event : events) {
        texts.push_back(event.text());
    }
    return texts;
}

class Cache_test : public testing::Test {
protected:
    // Without threads: `step` does their work.
    Device_cache_settings settings() {
        Device_cache_settings settings;
        settings.clock = [clock = m_clock] { return clock->now(); };
        settings.has_threads = false;
        return settings;
    }
    std::size_t add_driver(const std::string& name, std::shared_ptr<Scripted_device> device,
                           milliseconds poll = 1s) {
        return m_cache.add_driver(name, std::make_unique<Scripted_driver>(std::move(device)), poll);
    }
    // Parameters 0 to count-1 of the driver "plc", which hold their own numbers.
    void add_numbers(std::uint32_t count) {
        const std::size_t driver = add_driver("plc", m_device);
        for (std::uint32_t pid = 0; pid < count; ++pid) {
            m_cache.add_parameter(driver, number_parameter(pid));
            m_device->hold(pid, static_cast<std::int32_t>(pid));
        }
        m_cache.start();
    }
    void step(int count = 1) {
        for (int i = 0; i < count; ++i) {
            m_cache.step();
        }
    }
    // Asks for the parameter, lets the driver read it, and forgets what happened meanwhile.
    void read(std::uint32_t pid) {
        number_of(m_cache, pid);
        step();
        m_device->take_calls();
        m_cache.take_changes();
        m_cache.take_events();
    }
    std::vector<std::string> events() { return texts_of(m_cache.take_events()); }
    Freshness freshness(std::uint32_t pid) const { return m_cache.state(pid, 0)->freshness; }

    std::shared_ptr<Test_clock> m_clock = std::make_shared<Test_clock>();
    std::shared_ptr<Scripted_device> m_device = std::make_shared<Scripted_device>();
    Fake_device m_others;
    Device_cache m_cache{m_others, settings()};
};

using Lines = std::vector<std::string>;

}  // namespace support

#endif
