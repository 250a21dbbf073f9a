// One person's session at the panel, between the keys and the controller: returns to the homescreen, dims and locks
// the panel when no key is pressed.
//
// The settings and requests of the application travel with the device's interface: `time_for_timeout` are the
// seconds without a key after which the panel goes home, dims and locks, 0 for never; `go_home` and
// `lock_and_dim` ask for it at once when they are set. `go_home` is 0 again when it was served, `lock_and_dim`
// stays set until a person wakes the panel or opens it.
//
// Its only clock is the time that the caller passes. Used from the menu thread.
#ifndef FRONTPANEL_UI_SESSION_H
#define FRONTPANEL_UI_SESSION_H

#include <functional>
#include <optional>
#include <string>

#include <frontpanel_display/front.h>
#include "controller.h"
#include "views/pin_lock.h"

namespace frontpanel {

class Session {
public:
    // `pin` locks the panel whenever it dims, and from the start: cutting the power must not open it. Without one
    // it only dims. Controller and device outlive the session.
    Session(Controller& controller, Data_interface& device, std::optional<std::string> pin,
            Time now);

    // The key that wakes a dim panel does nothing else; on a locked one it has the PIN asked for.
    void press(const Key& key, Time now);
    // See `Controller::may_end`. A question is not asked on a dim panel.
    bool may_end(std::function<void()> ends, Time now);
    // Reads what is shown from the device again, serves the requests and watches the time. The heart beats, unless the
    // tick comes between two beats.
    void tick(Time now, bool beats = true);
    // The controller's frame, or the question for the PIN.
    Frame draw(Time now);
    void set_size(Lcd_size size) { m_controller.set_size(size); }

    // Whether an editor or the PIN prompt takes the character of a keyboard.
    bool types(char character) const;

    bool is_dim() const { return m_dim; }
    bool is_locked() const { return m_dim && m_lock.has_value(); }

private:
    std::string characters() const;
    void serve_requests();
    void rest();
    void wake();
    void press_on_lock(const Key& key, Time now);

    Controller& m_controller;
    Data_interface& m_device;
    std::optional<Pin_lock> m_lock;
    Time m_last_key;
    bool m_dim = false;
    bool m_asks = false;  // for the PIN
    bool m_heart = false;
};

}  // namespace frontpanel

#endif
