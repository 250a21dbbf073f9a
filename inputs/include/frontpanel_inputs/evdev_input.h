// Keys from an input device of the kernel: a rotary encoder, buttons, or a knob on USB. The device may be missing, be
// unplugged and plugged in again while the panel runs.
#ifndef FRONTPANEL_INPUTS_EVDEV_INPUT_H
#define FRONTPANEL_INPUTS_EVDEV_INPUT_H

#include <memory>
#include <ostream>
#include <string>

#include <frontpanel_display/input.h>
#include <frontpanel_inputs/event_keys.h>

namespace frontpanel {

class Evdev_input : public Input {
public:
    // The longest time between two attempts to find a missing device.
    static constexpr std::chrono::milliseconds LONGEST_PAUSE{2000};

    // `device` is a path, which begins with '/' or '.', or the name of a device in /dev/input. The path may be that of
    // a pipe with recorded events. The first call of `next` opens and grabs the device. Status messages go to `log`, a
    // line each; `log` outlives the input. Requires: `device` is not empty, and `check_event_names` accepts the keys.
    Evdev_input(const std::string& device, const Event_key_map& keys, std::ostream& log);
    ~Evdev_input() override;

    std::optional<Front_event> next(Time now) override;
    pollfd source() const override;
    Time due() const override;

private:
    class Reader;
    std::unique_ptr<Reader> m_reader;
};

}  // namespace frontpanel

#endif
