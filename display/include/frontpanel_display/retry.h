// Decides when to try a lost connection or device again, and which losses and recoveries to report. One that is lost
// and found again and again is reported once, and tried less and less often, until it stays.
#ifndef FRONTPANEL_DISPLAY_RETRY_H
#define FRONTPANEL_DISPLAY_RETRY_H

#include <chrono>

#include <frontpanel_display/front.h>

namespace frontpanel {

class Retry {
public:
    static constexpr std::chrono::milliseconds FIRST_PAUSE{250};
    static constexpr std::chrono::milliseconds LONGEST_PAUSE{10000};
    // After working this long it is steady: its next loss is reported again, and the next pause is short.
    static constexpr std::chrono::seconds STEADY{10};
    static constexpr int MOST_COMPLAINTS = 10;  // until it is steady

    // Call it when the connection, or an attempt, fails. Returns whether to report that.
    bool lose(Time now);
    // Call it when it works. Returns whether to report that.
    bool gain(Time now);
    // Call it while it works. Returns whether to report now that it works: it has become steady after repeated losses.
    bool settle(Time now);
    // Returns whether to report one more complaint about its behaviour.
    bool complain();

    // While it is lost: when to try again; at the start at once.
    Time next_try() const { return m_next_try; }
    // While it works: the earliest time at which `settle` has something to report; Time::max() for never.
    Time settles() const { return m_flaps ? m_steady : Time::max(); }

private:
    Time m_next_try{};
    Time m_steady = Time::
        max();  // when it has worked long enough; Time::max() while it is away, and once it has
    std::chrono::milliseconds m_pause = FIRST_PAUSE;
    bool m_loss_reported = false;
    bool m_flaps = false;  // lost before it was steady, and not steady since
    int m_complaints = 0;
};

}  // namespace frontpanel

#endif
