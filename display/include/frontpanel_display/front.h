// A display with keys: what the main loop waits for and draws on.
#ifndef FRONTPANEL_DISPLAY_FRONT_H
#define FRONTPANEL_DISPLAY_FRONT_H

#include <poll.h>

#include <chrono>
#include <optional>

#include <frontpanel_display/display.h>
#include <frontpanel_display/key.h>

namespace frontpanel {

using Time = std::chrono::steady_clock::time_point;

struct Front_event {
    enum Kind {
        KEY,
        QUIT,    // the person asks the panel to end, or is gone
        REDRAW,  // what was shown is to be shown again
        SIZE     // the display measures `size`
    };
    Kind kind;
    Key key{Key::UP};  // of KEY
    Lcd_size size{};   // of SIZE
};

class Front : public Display {
public:
    // The next thing that happened; nothing when all is told. Never waits.
    virtual std::optional<Front_event> next(Time now) = 0;
    // What tells that something happened. The descriptor is -1 while nothing can.
    virtual pollfd source() const = 0;
    // When `next` is to be asked even if the source is silent; Time::max() for never.
    virtual Time due() const = 0;
};

}  // namespace frontpanel

#endif
