// What stands beside the display: the keys of input devices, and the LEDs of the board.
#ifndef FRONTPANEL_APP_INPUTS_H
#define FRONTPANEL_APP_INPUTS_H

#include <memory>
#include <ostream>
#include <string>

#include <frontpanel_display/front.h>
#include "options.h"

namespace frontpanel {

// Whether this build has inputs.
bool has_inputs();

// The path or the name behind "evdev:". Input_error for any other text, and in a build without inputs.
std::string parse_input(const std::string& text);

// Gives each part the keys with names of its own: input devices those of the kernel, such as "KEY_ENTER", and the
// display the others. A part that none of the keys is for keeps the usual ones; for inputs that is an empty map. Inputs
// of which only axes are named keep the usual keys too. Input_error when the kernel has no key of a name, or none of the
// keys selects.
void split_keys(const Key_map& keys, Key_map& of_display, Key_map& of_inputs);

// For a display without keys of its own: Input_error when the keys of the inputs cannot select.
void check_input_keys(const Options& options);

// The display with the inputs and the LEDs of the options. Status messages go to `log`, which outlives the front.
std::unique_ptr<Front> whole_front(std::unique_ptr<Front> display, const Options& options,
                                   std::ostream& log);

}  // namespace frontpanel

#endif
