// Runs a panel on a front: takes the front's keys, calls the panel's tick, and shows its frames.
//
// For an application that waits for descriptors of its own as well:
//
//     Main_loop loop(panel, front);
//     while (!loop.is_over()) {
//         loop.turn();
//         // poll() for `front.source()`, `panel.device_descriptor()` and the application's descriptors, until
//         // `loop.due()` at the latest
//     }
//
// Everything runs on the thread that calls it, the menu thread.
#ifndef FRONTPANEL_UI_MAIN_LOOP_H
#define FRONTPANEL_UI_MAIN_LOOP_H

#include <chrono>

#include <frontpanel_base/end_watch.h>
#include <frontpanel_display/front.h>

namespace frontpanel {

class Panel;

class Main_loop {
public:
    // Keys that are pressed while a key takes longer than this, such as a commit to a slow device, are dropped: they
    // were meant for the frame before.
    static constexpr std::chrono::milliseconds SLOW_KEY{150};

    // Both outlive the loop.
    Main_loop(Panel& panel, Front& front);

    // Does what is due, without waiting. One key a turn: the result of several keys does not depend on how fast they
    // come.
    void turn();
    // When the next turn is due, unless the front's source is ready before. Time::min() for at once.
    Time due() const;
    // Whether the user ended the panel.
    bool is_over() const { return m_over; }

    // Turns and waits until the user ends the panel or a signal asks the process to end. Returns the exit status: 0, or
    // 128 plus the signal's number.
    int run(const End_watch& end);

private:
    void take(const Front_event& event);
    void press(const Key& key);
    void drop_keys();
    void wait(const End_watch& end) const;

    Panel& m_panel;
    Front& m_front;
    bool m_redraw = false;
    bool m_busy = false;  // the front may have more events
    bool m_over = false;
};

}  // namespace frontpanel

#endif
