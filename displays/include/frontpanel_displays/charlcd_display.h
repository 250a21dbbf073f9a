// The panel on a character display that the kernel drives, by its device file, such as /dev/lcd. The display has no
// keys and no LEDs.
//
// The device may be missing, hang, or be unplugged and plugged in again: nothing here waits for it. Meanwhile the panel
// works without a display; once the device is back, the whole frame is shown.
#ifndef FRONTPANEL_DISPLAYS_CHARLCD_DISPLAY_H
#define FRONTPANEL_DISPLAYS_CHARLCD_DISPLAY_H

#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include <frontpanel_display/front.h>
#include <frontpanel_displays/character_rom.h>

namespace frontpanel {

class Charlcd_display : public Front {
public:
    static constexpr const char* USUAL_DEVICE = "/dev/lcd";
    static constexpr std::chrono::seconds PATIENCE{5};  // for a write
    // How often an idle display is checked: one that was plugged in again shows nothing.
    static constexpr std::chrono::seconds CHECK{2};

    // Opens the device with the first call of `next`. Status messages go to `log`, a line each. `log` and `rom` outlive
    // the display. std::system_error when no thread can be created.
    Charlcd_display(const std::string& device, Lcd_size size, std::ostream& log,
                    const Character_rom& rom = Character_rom::a00());
    // Leaves the display blank.
    ~Charlcd_display() override;

    // Sends only the differences from the last frame, once the device has taken that one. Of frames that come faster,
    // only the last is sent.
    void show(const Frame& frame) override;
    // No events: such a display has no keys.
    std::optional<Front_event> next(Time now) override;
    pollfd source() const override;
    Time due() const override;

    // Whether the device shows the last frame as far as is known.
    bool is_settled() const;

private:
    class Client;
    std::unique_ptr<Client> m_client;
};

}  // namespace frontpanel

#endif
