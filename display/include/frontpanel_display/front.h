// A display with keys. An application implements `Front` for a display of its own; the main loop waits for it and draws
// on it.
#ifndef FRONTPANEL_DISPLAY_FRONT_H
#define FRONTPANEL_DISPLAY_FRONT_H

#include <frontpanel_display/display.h>
#include <frontpanel_display/input.h>

namespace frontpanel {

class Front : public Display, public Input {};

}  // namespace frontpanel

#endif
