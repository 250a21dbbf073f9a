// The panel's main loop: takes keys from the front, lets time pass, and shows what there is to see.
//
// Everything runs on the thread that calls it, the menu thread.
#ifndef FRONTPANEL_UI_MAIN_LOOP_H
#define FRONTPANEL_UI_MAIN_LOOP_H

#include <functional>
#include <optional>

#include <frontpanel_base/end_watch.h>
#include <frontpanel_display/front.h>
#include <frontpanel_ui/session.h>

namespace frontpanel {

class Main_loop {
public:
    // How often what is shown is read again, and long texts scroll.
    static constexpr std::chrono::milliseconds TICK{400};
    // A key that takes longer than this, such as a commit to a slow device, takes the keys with it that were
    // pressed meanwhile: they were meant for what stood on the display then.
    static constexpr std::chrono::milliseconds SLOW_KEY{150};

    // All arguments outlive the loop; `clock` tells the time.
    Main_loop(Session& session, Front& front, std::function<Time()> clock);

    // Does what there is to do, without waiting. One key a turn: what stands where after several keys then does not
    // depend on how fast they came.
    void turn();
    // When the next turn is due, unless the front's source tells of something before.
    Time due() const;
    // Whether the person asked the panel to end.
    bool is_over() const { return m_over; }

    // Turns and waits until the person quits or a signal asks the process to end. The exit status: 0, or 128 and
    // the signal's number.
    int run(const End_watch& end);

private:
    void take(const Front_event& event);
    void press(const Key& key);
    void drop_keys();
    void wait(const End_watch& end) const;

    Session& m_session;
    Front& m_front;
    std::function<Time()> m_clock;
    Time m_next_tick;
    std::optional<Frame> m_frame;  // the last one shown
    bool m_changed = true;         // since then
    bool m_redraw = false;
    bool m_busy = false;  // the front may have more to tell
    bool m_over = false;
};

}  // namespace frontpanel

#endif
