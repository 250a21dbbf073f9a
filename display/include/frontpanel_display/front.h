// A display with keys. An application implements `Front` for a display of its own; the main loop waits for it and draws
// on it.
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
        QUIT,    // the user wants to end the panel
        REDRAW,  // the display lost its picture: show the last frame again
        SIZE,    // the display has `size` from now on
        GONE     // the display is gone for good: the panel ends at once
    };
    Kind kind;
    Key key{Key::UP};  // of KEY; of QUIT its character, which an editor may take instead
    Lcd_size size{};   // of SIZE
};

class Front : public Display {
public:
    // The next event, in the order in which they happened; nothing when there is none left. Never waits.
    virtual std::optional<Front_event> next(Time now) = 0;
    // The descriptor that becomes ready when there may be an event. -1 while there is none to wait for.
    virtual pollfd source() const = 0;
    // When to call `next` even if the source is silent; Time::max() for never.
    virtual Time due() const = 0;
};

}  // namespace frontpanel

#endif
