// What a driver passes on and returns, as text.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_NOTING_SINK_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_NOTING_SINK_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <frontpanel_drivers/driver.h>

namespace support {

// "0=5" or "0='text'" for a value, "0: reason" for a failure.
class Noting_sink : public frontpanel::Value_sink {
public:
    void value(std::size_t number, const frontpanel::Parameter_value& value) override {
        const auto* const whole = std::get_if<std::int32_t>(&value);
        note(number, "=" + (whole != nullptr ? std::to_string(*whole)
                                             : "'" + std::get<std::string>(value) + "'"));
    }
    void failure(std::size_t number, const std::string& reason) override {
        note(number, ": " + reason);
    }

    std::vector<std::string> take() { return std::exchange(m_lines, {}); }
    std::size_t count() const { return m_lines.size(); }
    bool has(std::size_t number) const {
        const std::string start = std::to_string(number);
        for (const std::string& line : m_lines) {
            if (line.substr(0, line.find_first_of("=:")) == start) {
                return true;
            }
        }
        return false;
    }

private:
    void note(std::size_t number, const std::string& what) {
        m_lines.push_back(std::to_string(number) + what);
    }

    std::vector<std::string> m_lines;
};

// Also notes the age of the last late value.
class Age_sink : public Noting_sink {
public:
    void late_value(std::size_t number, const frontpanel::Parameter_value& value,
                    std::chrono::milliseconds age) override {
        Noting_sink::value(number, value);
        m_age = age;
    }
    std::chrono::milliseconds age() const { return m_age; }

private:
    std::chrono::milliseconds m_age{0};
};

// "done", "refused: no such register"
inline std::string text_of(const frontpanel::Driver_result& result) {
    static constexpr const char* NAMES[] = {"done", "refused", "timed out", "away", "passed on"};
    return NAMES[result.kind] + (result.reason.empty() ? "" : ": " + result.reason);
}

}  // namespace support

#endif
