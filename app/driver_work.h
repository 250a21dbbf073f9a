// What the application does with the drivers of a panel while it is used: starts them, shows and logs what happens at
// them, and sees that what was written reaches the devices.
#ifndef FRONTPANEL_APP_DRIVER_WORK_H
#define FRONTPANEL_APP_DRIVER_WORK_H

#include <chrono>

#include <frontpanel_ui/panel.h>
#include "loaded_panel.h"
#include "output_log.h"

namespace frontpanel {

// Has the drivers of a panel work from now on. `first_values` waits for the first value of every parameter, a few seconds
// at the longest. A panel without drivers is left alone, here and below.
enum class First_values { AWAITED, NOT_AWAITED };
void start_drivers(const Loaded_panel& loaded, First_values first_values);

// The panel that is made with the options, as soon as there is one.
struct Shown_panel {
    Panel* panel = nullptr;
};

// Sets what a panel needs to follow its drivers: it ticks when something changes, and shows what happens at them. `shown`
// and the log outlive the options. In a script
// each tick waits for what was written before.
enum class Pace { OF_A_PERSON, OF_A_SCRIPT };
void follow_drivers(Panel_options& options, const Loaded_panel& loaded, Output_log& log,
                    const Shown_panel& shown, Pace pace);

// How long the end of a panel waits for what was written.
inline constexpr std::chrono::milliseconds LAST_WRITES{3000};

// Waits for what was written, `most` at the longest, and reports what did not get out. The exit status: `status`, or
// EXIT_DIFFERENCE in place of success.
int finish_writes(const Loaded_panel& loaded, Output_log& log, int status,
                  std::chrono::milliseconds most);

}  // namespace frontpanel

#endif
