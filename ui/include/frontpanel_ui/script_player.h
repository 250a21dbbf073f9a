// Plays a script on the panel: presses its keys, shows every frame, and checks the expectations of the display and of
// the device.
#ifndef FRONTPANEL_UI_SCRIPT_PLAYER_H
#define FRONTPANEL_UI_SCRIPT_PLAYER_H

#include <optional>
#include <ostream>
#include <string>

#include <frontpanel_display/display.h>
#include <frontpanel_ui/panel.h>
#include <frontpanel_ui/script.h>
#include <frontpanel_ui/script_device.h>

namespace frontpanel {

class Script_player {
public:
    // Frames go to `display`, the texts and steps of the script to `out`, differences to `differences`. All arguments
    // outlive the player.
    Script_player(Panel& panel, Script_device& device, Display& display, std::ostream& out,
                  std::ostream& differences);

    // Plays to the end, and returns the number of expectations that were not met. Input_error when a step names a
    // parameter that the device does not have, before anything is played, or sets one to a value that it cannot hold.
    int play(const Script& script);

private:
    void resolve(const Script& script, Step& step) const;
    void perform(const Script& script, const Step& step);
    void show();
    void set_value(const Script& script, const Step& step);
    // The difference from the expectation; empty when it is met.
    std::optional<std::string> difference(const Step& step);
    std::optional<std::string> line_difference(const Step& step) const;
    std::optional<std::string> part_difference(const Step& step);
    bool shows_part(const Step& step) const;
    std::optional<std::string> led_difference(const Step& step) const;
    std::optional<std::string> write_difference(const Step& step);
    std::optional<std::string> no_write_difference() const;
    std::optional<std::string> selection_difference(const Step& step) const;

    Panel& m_panel;
    Script_device& m_device;
    Display& m_display;
    std::ostream& m_out;
    std::ostream& m_differences;
    std::optional<Frame> m_frame;  // the last one shown
};

// Whether a display line matches a pattern, in which '*' matches any characters.
bool matches(const std::string& line, const std::string& pattern);

}  // namespace frontpanel

#endif
