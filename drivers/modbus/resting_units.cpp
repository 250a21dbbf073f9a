#include "resting_units.h"

#include <algorithm>

namespace frontpanel {

void Resting_units::silent(int unit, Time time, const std::string& reason) {
    Rest& rest = m_rests[unit];
    rest.pause = std::clamp(2 * rest.pause, FIRST_PAUSE, LONGEST_PAUSE);
    rest.until = time + rest.pause;
    rest.reason = reason;
}

const std::string* Resting_units::reason(int unit, Time time) const {
    const auto found = m_rests.find(unit);
    return found != m_rests.end() && time < found->second.until ? &found->second.reason : nullptr;
}

}  // namespace frontpanel
