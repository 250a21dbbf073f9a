// Where the panel's front is shown: a terminal, a text stream, a real display.
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

    virtual void show(const Frame& frame) = 0;
};

}  // namespace frontpanel

#endif
