// How the shaft encoder works, in lists and editors alike.
#ifndef FRONTPANEL_MENU_ENCODER_SETTINGS_H
#define FRONTPANEL_MENU_ENCODER_SETTINGS_H

namespace frontpanel {

struct Encoder_settings {
    bool reversed = false;  // clockwise counts as counter-clockwise
    bool wrap = false;      // a step beyond the last entry or value leads to the first, and back
    bool acceleration =
        true;  // entries with acceleration move faster in a quick turn; false: none does
};

}  // namespace frontpanel

#endif
