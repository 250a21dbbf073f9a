// How the shaft encoder works, in lists and editors alike.
#ifndef FRONTPANEL_MENU_ENCODER_SETTINGS_H
#define FRONTPANEL_MENU_ENCODER_SETTINGS_H

namespace frontpanel {

struct Encoder_settings {
    bool reversed = false;  // clockwise counts as counter-clockwise
    bool wrap = false;      // a step beyond the last entry or value leads to the first, and back
    bool acceleration =
        true;  // entries that ask for it move faster when turned quickly; false: none does
};

}  // namespace frontpanel

#endif
