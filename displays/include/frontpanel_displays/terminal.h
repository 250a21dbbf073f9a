// The panel's front on a terminal: a bordered display, LEDs and a legend of the keys.
//
// One terminal at a time, from the menu thread. The terminal is as it was before once the object is gone,
// and also when the process ends by a crash or a signal.
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
    // `output` is a descriptor of a terminal, which standard input is too. Input_error when the terminal's
    // type is not known or cannot move its cursor, or its size, also that in COLUMNS and LINES, is absurd.
    explicit Terminal(int output);
    ~Terminal() override;

    // On a terminal that is too small a message stands in the frame's place.
    void show(const Frame& frame) override;
    std::optional<Front_event> next(Time now) override;
    pollfd source() const override;
    // Keys come with the source.
    Time due() const override { return Time::max(); }

private:
    void draw_lcd(const Lcd& lcd, bool dim) const;
    void draw_leds(int row, const Leds& leds) const;
    void draw_legend(int row) const;
    void place_cursor(const Lcd& lcd) const;

    struct Close_file {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Close_file> m_output;
    screen* m_screen;
    std::optional<Signal_cleanup> m_last_act;
};

// Terminal rows and columns that a display of this size takes, with its legend.
Lcd_size terminal_size_for(Lcd_size lcd);

}  // namespace frontpanel

#endif
