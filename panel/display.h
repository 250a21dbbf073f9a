// Where the panel's front is shown: a terminal, a text stream, a real display.
#ifndef FRONTPANEL_PANEL_DISPLAY_H
#define FRONTPANEL_PANEL_DISPLAY_H

#include "lcd.h"

namespace panel {

class Display {
public:
    Display() = default;
    virtual ~Display() = default;
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    virtual void show(const Frame& frame) = 0;
};

}  // namespace panel

#endif
