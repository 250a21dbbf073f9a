// Plays a script on the panel, for the display that shows it or for a picture.
#ifndef FRONTPANEL_APP_PLAYING_H
#define FRONTPANEL_APP_PLAYING_H

#include <frontpanel_displays/display_table.h>
#include <frontpanel_ui/script.h>
#include "loaded_panel.h"
#include "options.h"
#include "output_log.h"
#include "simulated_script_device.h"

namespace frontpanel {

// The script that the options ask for. Input_error when it cannot be read, or when one has to be named.
Script script_to_play(const Options& options);

// Plays the script to its end. The exit status; Input_error when output cannot be written.
int play(const Options& options, const Display_row& display, const Script& script,
         const Loaded_panel& loaded, Output_log& log);

// The simulated device as a script sees it. Faults that a script begins end with the object.
Simulated_script_device script_device_of(const Loaded_panel& loaded);

// Plays the script of the options for what it does to the menu and its device. The exit status; Input_error for a script
// that cannot be played.
int play_unseen(const Options& options, const Loaded_panel& loaded, Script_device& played,
                Output_log& log);

}  // namespace frontpanel

#endif
