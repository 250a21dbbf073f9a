#include <frontpanel_display/retry.h>

#include <algorithm>
#include <utility>

namespace frontpanel {

bool Retry::lose(Time now) {
    m_flaps = m_flaps || m_steady != Time::max();
    m_steady = Time::max();
    m_next_try = now + m_pause;
    m_pause = std::min(m_pause * 2, LONGEST_PAUSE);
    return !std::exchange(m_loss_reported, true);
}

bool Retry::gain(Time now) {
    m_steady = now + STEADY;
    m_loss_reported = m_loss_reported && m_flaps;
    return !m_flaps;
}

bool Retry::settle(Time now) {
    if (now < m_steady) {
        return false;
    }
    m_steady = Time::max();
    m_pause = FIRST_PAUSE;
    m_complaints = 0;
    if (!m_flaps) {
        return false;
    }
    m_loss_reported = false;
    m_flaps = false;
    return true;
}

bool Retry::complain() {
    const bool is_reported = m_complaints < MOST_COMPLAINTS;
    m_complaints += is_reported ? 1 : 0;
    return is_reported;
}

}  // namespace frontpanel
