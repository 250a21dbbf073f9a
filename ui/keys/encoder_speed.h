// How many steps a detent of the shaft encoder counts for: one, or several when it is turned quickly.
#ifndef FRONTPANEL_UI_ENCODER_SPEED_H
#define FRONTPANEL_UI_ENCODER_SPEED_H

#include <algorithm>
#include <chrono>
#include <optional>

#include <frontpanel_display/key.h>

namespace frontpanel {

class Encoder_speed {
public:
    // The steps of a detent that comes at `now`, from 1 to `most` (at least 1). Two detents in the same
    // direction are quick from `QUICK` apart on; half the time between them doubles the steps.
    int steps(Key::Kind direction, std::chrono::milliseconds now, int most) {
        const bool goes_on = m_last && m_direction == direction;
        const auto apart = goes_on ? std::max(now - *m_last, ONE) : QUICK;
        m_last = now;
        m_direction = direction;
        return std::clamp(static_cast<int>(QUICK / apart), 1, most);
    }
    // The next detent counts for one step.
    void reset() { m_last.reset(); }

private:
    static constexpr std::chrono::milliseconds QUICK{120};
    static constexpr std::chrono::milliseconds ONE{1};

    std::optional<std::chrono::milliseconds> m_last;
    Key::Kind m_direction = Key::UP;
};

}  // namespace frontpanel

#endif
