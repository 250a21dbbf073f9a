// Lets a person use the panel at the terminal.
#ifndef FRONTPANEL_PANEL_INTERACTIVE_H
#define FRONTPANEL_PANEL_INTERACTIVE_H

#include "controller.h"

namespace panel {

// Until the person quits, or a signal asks the process to end; the terminal is restored either way. The exit
// status: 0, or 128 and the signal's number. `output` is a descriptor of the terminal.
int use_terminal(Controller& controller, int output);

}  // namespace panel

#endif
