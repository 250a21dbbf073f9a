// The panel in the hands of a person: which display, and for how long.
#ifndef FRONTPANEL_APP_USING_PANEL_H
#define FRONTPANEL_APP_USING_PANEL_H

#include <optional>
#include <string>

#include <frontpanel_base/end_watch.h>
#include <frontpanel_displays/display_table.h>
#include <frontpanel_menu/menu.h>
#include <frontpanel_ui/panel.h>
#include "loaded_panel.h"
#include "options.h"
#include "output_log.h"

namespace frontpanel {

// The display that was named. Otherwise the usual one: of a person at a terminal, unless a script is played.
const Display_row& display_of(const Options& options, const Output_log& log);
// Input_error unless a person can use the panel on the display.
void check_front(const Options& options, const Display_row& display, const Output_log& log);
// What the display is opened with; the log outlives it.
Display_setup setup_of(const Options& options, Output_log& log);
// The PIN in the file of the options; nothing without a file. A file that others can read is reported on standard error.
// Input_error when it holds no PIN.
std::optional<std::string> pin_of(const Options& options);
// What every panel of the application has; the log outlives it.
Panel_options panel_options_of(const Options& options, Menu& menu, Output_log& log);

// Shows the menu over its device, which moves by itself unless `--still` is given, until the person quits or a signal asks the process to end. The exit status; Input_error when the
// display cannot be opened or the PIN cannot be read.
int use_panel(const Options& options, const Display_row& display, const Loaded_panel& loaded,
              Output_log& log, const End_watch& end);

}  // namespace frontpanel

#endif
