// Plays a script on the panel without hands or eyes: presses its keys, shows every frame, checks what is
// expected of the display and of the device.
#ifndef FRONTPANEL_UI_SCRIPT_PLAYER_H
#define FRONTPANEL_UI_SCRIPT_PLAYER_H

#include <deque>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <tuple>

#include <frontpanel_simulator/card_service.h>
#include <frontpanel_simulator/memory_device.h>

#include <frontpanel_display/display.h>
#include <frontpanel_ui/controller.h>
#include <frontpanel_ui/script.h>

namespace frontpanel {

class Script_player {
public:
    // Frames go to `display`, what the script says and does to `out`, differences to `differences`; `cards`
    // is null when none run. All arguments outlive the player. The player takes the device's fault and write
    // callbacks.
    Script_player(Controller& controller, Memory_device& device, const Card_service* cards,
                  Display& display, std::ostream& out, std::ostream& differences);
    ~Script_player();
    Script_player(const Script_player&) = delete;
    Script_player& operator=(const Script_player&) = delete;

    // Plays to the end. The number of expectations that were not met. Input_error when a step names a
    // parameter that the device does not have, before anything is played, or sets one to a value that it
    // cannot hold.
    int play(const Script& script);

private:
    using Fault = std::tuple<bool, uint32_t, uint32_t>;  // write, pid, variable index

    void check_parameter(const Script& script, const Step& step) const;
    void perform(const Script& script, const Step& step);
    void show();
    void press(const Key& key);
    void set_fault(const Step& step);
    void set_value(const Script& script, const Step& step);
    // What differs from the expectation; nothing when it is met.
    std::optional<std::string> difference(const Step& step);
    std::optional<std::string> line_difference(const Step& step) const;
    std::optional<std::string> led_difference(const Step& step) const;
    std::optional<std::string> write_difference(const Step& step);
    std::optional<std::string> selection_difference(const Step& step) const;

    Controller& m_controller;
    Memory_device& m_device;
    const Card_service* m_cards;
    Display& m_display;
    std::ostream& m_out;
    std::ostream& m_differences;
    std::optional<Frame> m_frame;               // the last one shown
    std::deque<Memory_device::Write> m_writes;  // not checked yet, oldest first
    std::set<Fault> m_faults;
    Message_queue m_messages;
};

// Whether a display line is what a pattern says, in which '*' stands for any characters.
bool matches(const std::string& line, const std::string& pattern);

}  // namespace frontpanel

#endif
