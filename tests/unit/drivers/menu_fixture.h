// The device section of a menu file with drivers, and a clock in the test's hands.
#ifndef FRONTPANEL_DATA_TESTS_UNIT_DRIVERS_MENU_FIXTURE_H
#define FRONTPANEL_DATA_TESTS_UNIT_DRIVERS_MENU_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <frontpanel_drivers/driven_device.h>
#include "support/made_of_json.h"
#include "unit/drivers/cache_fixture.h"

namespace support {

// Whether threads do the work of the drivers, or `step` of the cache does.
enum class Work { STEPS, THREADS };

class Driver_menu_test : public testing::Test {
protected:
    // A menu file in `folder` with this object of drivers and these parameters.
    void load_menu(const frontpanel::Driver_table& table, const std::string& folder,
                   const std::string& drivers, const std::string& parameters,
                   Work work = Work::STEPS,
                   frontpanel::Lacking_drivers lacking = frontpanel::Lacking_drivers::REFUSED) {
        m_text =
            R"({"device": {"drivers": )" + drivers + R"(, "parameters": [)" + parameters + "]}}";
        m_document.emplace(m_source, m_text);
        Device_cache_settings settings;
        settings.has_threads = work == Work::THREADS;
        settings.clock = [clock = m_clock] { return clock->now(); };
        m_device.emplace(frontpanel::Json_value(m_document->root(), m_problems), m_problems, table,
                         folder, m_others, settings, lacking);
    }
    // A parameter of "parameters"; `source` are members.
    static std::string number(std::uint32_t pid, const std::string& name,
                              const std::string& source) {
        return R"({"pid": )" + std::to_string(pid) + R"(, "name": ")" + name +
               R"(", "type": "integer", "min": -1000, "max": 1000, "source": {)" + source + "}}";
    }
    Lines problems() const { return without_places(m_problems); }

    frontpanel::Source m_source{"menu.json", 0};
    std::string m_text;
    frontpanel::Problems m_problems;
    std::optional<frontpanel::Json_document> m_document;
    Fake_device m_others;
    std::shared_ptr<Test_clock> m_clock = std::make_shared<Test_clock>();
    std::optional<frontpanel::Driven_device> m_device;
};

}  // namespace support

#endif
