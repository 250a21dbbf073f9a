// Which display shows the panel.
#ifndef FRONTPANEL_DISPLAYS_DISPLAY_CHOICE_H
#define FRONTPANEL_DISPLAYS_DISPLAY_CHOICE_H

#include <cstdint>
#include <string>

namespace frontpanel {

struct Display_choice {
    enum Kind {
        USUAL,     // the terminal when there is one and no script is named, else text
        TERMINAL,  // a person at a terminal
        TEXT,      // every frame of a script as text
        LCDPROC    // a display server
    };
    Kind kind = USUAL;
    std::string host = "127.0.0.1";  // LCDPROC: the server's address, in figures
    uint16_t port = 13666;           // LCDPROC
};

// "terminal", "text", "lcdproc", "lcdproc:HOST", "lcdproc:HOST:PORT", in which HOST is "localhost", an IPv4 address
// or an IPv6 address in brackets: names are not looked up, since that may take long. Input_error for any other text.
Display_choice parse_display(const std::string& text);

}  // namespace frontpanel

#endif
