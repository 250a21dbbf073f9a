// The keys of the panel, whichever device they come from.
#ifndef FRONTPANEL_DISPLAY_KEY_H
#define FRONTPANEL_DISPLAY_KEY_H

namespace frontpanel {

struct Key {
    enum Kind {
        UP,    // shaft encoder, one step clockwise
        DOWN,  // shaft encoder, one step counter-clockwise
        SELECT,
        BACK,
        COARSER,      // a larger encoder step
        FINER,        // a smaller encoder step
        SHORTCUT,     // a shortcut button
        INSERT,       // a blank into an edited text
        DELETE,       // a character of it
        DIAGNOSTICS,  // shows what the library prints; on a device, a long press of select
        LEFT,         // an arrow key: a cursor to the left, or back
        RIGHT,        // an arrow key: a cursor to the right, or select
        ERASE,        // a character of an edited text, or back
        FAVOURITES,   // opens the favourites
        CHARACTER     // a key of a keyboard that means nothing but its character
    };
    Kind kind;
    int button = 0;  // of SHORTCUT: the button's number
    // What the key of a keyboard writes, printable ASCII. An editor that takes it writes it; anywhere else the key means
    // its kind. 0 for any other key.
    char character = '\0';
};

}  // namespace frontpanel

#endif
