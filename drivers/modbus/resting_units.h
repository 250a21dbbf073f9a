// Units that do not answer. Each further request would cost a time-out, during which the other units of the line
// could not be asked, so such a unit rests for growing pauses.
#ifndef FRONTPANEL_DRIVER_MODBUS_RESTING_UNITS_H
#define FRONTPANEL_DRIVER_MODBUS_RESTING_UNITS_H

#include <chrono>
#include <map>
#include <string>

namespace frontpanel {

class Resting_units {
public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr std::chrono::milliseconds FIRST_PAUSE{500};
    static constexpr std::chrono::milliseconds LONGEST_PAUSE{8000};

    // The unit did not answer, for that reason.
    void silent(int unit, Time time, const std::string& reason);
    void answered(int unit) { m_rests.erase(unit); }
    // Why the unit is not asked now; null when it is.
    const std::string* reason(int unit, Time time) const;
    // Whether it has answered lately, or was never asked.
    bool is_alive(int unit) const { return m_rests.count(unit) == 0; }

private:
    struct Rest {
        Time until{};
        std::chrono::milliseconds pause{0};
        std::string reason{};
    };
    std::map<int, Rest> m_rests;
};

}  // namespace frontpanel

#endif
