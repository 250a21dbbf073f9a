// Prints every frame as text, the display's lines within a border and the LEDs below it.
#ifndef FRONTPANEL_DISPLAYS_TEXT_DISPLAY_H
#define FRONTPANEL_DISPLAYS_TEXT_DISPLAY_H

#include <ostream>

#include <frontpanel_display/display.h>

namespace frontpanel {

class Text_display : public Display {
public:
    // `out` outlives the display.
    explicit Text_display(std::ostream& out) : m_out(out) {}

    void show(const Frame& frame) override;

private:
    std::ostream& m_out;
};

}  // namespace frontpanel

#endif
