// A display without keys. An application implements `Display` for one of its own; menu thread only.
#ifndef FRONTPANEL_DISPLAY_DISPLAY_H
#define FRONTPANEL_DISPLAY_DISPLAY_H

#include <frontpanel_display/lcd.h>

namespace frontpanel {

class Display {
public:
    Display() = default;
    virtual ~Display() = default;
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    // Shows the frame in place of the one before. The frame is valid during the call only. Must not wait for long: the
    // panel takes no keys meanwhile.
    virtual void show(const Frame& frame) = 0;
};

}  // namespace frontpanel

#endif
