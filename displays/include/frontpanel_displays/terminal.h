// The panel's front on a terminal: a bordered display, LEDs and a legend of the keys.
//
// One terminal at a time, menu thread only. The destructor restores the terminal, and so does a crash or a signal that
// ends the process.
#ifndef FRONTPANEL_DISPLAYS_TERMINAL_H
#define FRONTPANEL_DISPLAYS_TERMINAL_H

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include <frontpanel_base/signal_cleanup.h>
#include <frontpanel_display/front.h>

struct screen;  // of the curses library

namespace frontpanel {

class Terminal : public Front {
public:
    // Requires: `output` is a descriptor of a terminal, and so is standard input. The caller keeps `output`.
    // Input_error when the terminal's type is unknown or cannot move its cursor, or its size, also that in COLUMNS and
    // LINES, is absurd.
    explicit Terminal(int output);
    ~Terminal() override;

    // On a terminal that is too small, a message replaces the frame.
    void show(const Frame& frame) override;
    std::optional<Front_event> next(Time now) override;
    pollfd source() const override;
    Time due() const override { return Time::max(); }

private:
    void draw_lcd(const Lcd& lcd, bool dim) const;
    void draw_leds(int row, const Leds& leds) const;
    void draw_legend(int row, const Frame& frame) const;
    void place_cursor(const Lcd& lcd) const;

    struct Close_file {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Close_file> m_output;
    screen* m_screen;
    std::optional<Signal_cleanup> m_last_act;
};

// The terminal rows and columns that a display of this size takes, with the longest legend. A legend takes fewer lines
// on a wider terminal, of `columns` columns.
Lcd_size terminal_size_for(Lcd_size lcd, int columns = 0);

}  // namespace frontpanel

#endif
