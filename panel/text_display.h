// Prints every frame as text, the display's lines within a border and the LEDs below it.
#ifndef FRONTPANEL_PANEL_TEXT_DISPLAY_H
#define FRONTPANEL_PANEL_TEXT_DISPLAY_H

#include <ostream>

#include "display.h"

namespace panel {

class Text_display : public Display {
public:
    // `out` outlives the display.
    explicit Text_display(std::ostream& out) : m_out(out) {}

    void show(const Frame& frame) override;

private:
    std::ostream& m_out;
};

}  // namespace panel

#endif
