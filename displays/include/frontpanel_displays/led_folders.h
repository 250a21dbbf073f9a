// The panel's LEDs on those of the board: folders as /sys/class/leds has them, with the files "brightness",
// "max_brightness" and "trigger". A front without text and keys, beside a display: see combined_front.h.
#ifndef FRONTPANEL_DISPLAYS_LED_FOLDERS_H
#define FRONTPANEL_DISPLAYS_LED_FOLDERS_H

#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <frontpanel_display/front.h>

namespace frontpanel {

// The folders of "edit", "alarm" and "alive", or of some of them.
using Led_map = std::map<std::string, std::string>;

// "alarm=red:status,alive=/sys/class/leds/green": a folder, or the name of one in /sys/class/leds. Input_error when the
// text is invalid, or names an LED or a folder twice.
Led_map parse_led_map(const std::string& text);

class Led_folders : public Front {
public:
    // How often an LED is written although it did not change: one that was plugged in again is dark.
    static constexpr std::chrono::seconds CHECK{2};

    // Status messages go to `log`, a line each; `log` outlives the LEDs. An LED that is missing or refuses is retried
    // with growing pauses; the others go on.
    Led_folders(const Led_map& leds, std::ostream& log);
    // Switches the LEDs off and restores their triggers.
    ~Led_folders() override;

    void show(const Frame& frame) override;
    // No events.
    std::optional<Front_event> next(Time now) override;
    pollfd source() const override { return {-1, POLLIN, 0}; }
    Time due() const override;

private:
    class Lamp;
    std::vector<std::unique_ptr<Lamp>> m_lamps;
    Time m_now = Time::min();  // nothing is written before the first `next`
};

}  // namespace frontpanel

#endif
