// When something that went away is tried again, and which of its comings and goings are news: what comes and goes over
// and over is reported once, and tried less and less often, until it stays.
#ifndef FRONTPANEL_DISPLAY_RETRY_H
#define FRONTPANEL_DISPLAY_RETRY_H

#include <chrono>

#include <frontpanel_display/front.h>

namespace frontpanel {

class Retry {
public:
    static constexpr std::chrono::milliseconds FIRST_PAUSE{250};
    static constexpr std::chrono::milliseconds LONGEST_PAUSE{10000};
    // What works this long is steady: its next loss is reported again, and the next pause is short.
    static constexpr std::chrono::seconds STEADY{10};
    static constexpr int MOST_COMPLAINTS = 10;  // until it is steady

    // It failed, or an attempt did. Whether to report that.
    bool lose(Time now);
    // It works from now on. Whether to report that.
    bool gain(Time now);
    // To be called while it works. Whether to report now that it works, since it stayed after coming and going.
    bool settle(Time now);
    // Whether one more complaint about what it does is to be reported.
    bool complain();

    // While it is away: when to try again; at the start at once.
    Time next_try() const { return m_next_try; }
    // While it works: when `settle` has something to report at the earliest; Time::max() for never.
    Time settles() const { return m_flaps ? m_steady : Time::max(); }

private:
    Time m_next_try{};
    Time m_steady = Time::
        max();  // when it has worked long enough; Time::max() while it is away, and once it has
    std::chrono::milliseconds m_pause = FIRST_PAUSE;
    bool m_loss_reported = false;
    bool m_flaps = false;  // went away before it was steady, and has not been since
    int m_complaints = 0;
};

}  // namespace frontpanel

#endif
