// Keys without a display. An application implements `Input` for keys of its own, and combines them with a display: see
// combined_front.h.
#ifndef FRONTPANEL_DISPLAY_INPUT_H
#define FRONTPANEL_DISPLAY_INPUT_H

#include <poll.h>

#include <chrono>
#include <optional>

#include <frontpanel_display/key.h>
#include <frontpanel_display/lcd.h>

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

class Input {
public:
    Input() = default;
    virtual ~Input() = default;
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // The next event, in the order in which they happened; empty when there is none. Never waits.
    virtual std::optional<Front_event> next(Time now) = 0;
    // The descriptor that becomes ready when there may be an event. -1 while there is none to wait for.
    virtual pollfd source() const = 0;
    // When to call `next` even if the source is silent; Time::max() for never.
    virtual Time due() const = 0;
};

}  // namespace frontpanel

#endif
