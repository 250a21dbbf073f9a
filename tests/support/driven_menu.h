// A menu whose numbers live at a driver in the hands of a test, behind a cache without threads.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_DRIVEN_MENU_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_DRIVEN_MENU_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include <frontpanel_drivers/device_cache.h>
#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_simulator/memory_device.h>
#include "support/scripted_driver.h"
#include "support/simulated_menu.h"

namespace support {

// Numbers 0 to 99 of the pids 1, 2 and 3, which are the driver's parameters 0, 1 and 2: "gain", "level" and "mode".
class Driven_menu {
public:
    explicit Driven_menu(const std::string& items, bool has_threads = false)
        : m_cache(m_others, settings(has_threads)) {
        const std::size_t plc =
            m_cache.add_driver("plc", std::make_unique<Scripted_driver>(m_device));
        std::string parameters;
        for (const char* const name : {"gain", "level", "mode"}) {
            frontpanel::Driver_parameter parameter;
            parameter.pid = ++m_count;
            parameter.name = name;
            parameter.max = 99;
            m_cache.add_parameter(plc, parameter);
            m_device->hold(m_count - 1, static_cast<std::int32_t>(10 * m_count));
            parameters += std::string(m_count == 1 ? "" : ", ") + R"({"name": ")" + name +
                          R"(", "pid": )" + std::to_string(m_count) +
                          R"(, "type": "integer", "min": 0, "max": 99, "source": {}})";
        }
        frontpanel::Menu_document document("menu.json", frontpanel::menu_text(parameters, items));
        m_menu = frontpanel::load_menu(document, m_cache).menu;
        m_cache.start();
    }

    Scripted_device& device() { return *m_device; }
    frontpanel::Device_cache& cache() { return m_cache; }
    frontpanel::Menu& menu() { return *m_menu; }
    void advance(std::chrono::milliseconds time) { *m_now += time; }

private:
    frontpanel::Device_cache_settings settings(bool has_threads) {
        frontpanel::Device_cache_settings settings;
        settings.has_threads = has_threads;
        if (!has_threads) {
            settings.clock = [now = m_now] { return *now; };
        }
        return settings;
    }

    using Time = std::chrono::steady_clock::time_point;
    std::shared_ptr<Time> m_now = std::make_shared<Time>(std::chrono::hours(1));
    std::shared_ptr<Scripted_device> m_device = std::make_shared<Scripted_device>();
    frontpanel::Memory_device m_others;
    std::uint32_t m_count = 0;
    frontpanel::Device_cache m_cache;
    std::unique_ptr<frontpanel::Menu> m_menu;
};

}  // namespace support

#endif
