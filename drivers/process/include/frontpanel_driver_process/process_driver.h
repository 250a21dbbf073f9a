// Parameters that a program of the user's has: a child process, or the other side of a socket on this machine.
//
// docs/process-protocol.md describes the lines that they exchange.
#ifndef FRONTPANEL_DRIVER_PROCESS_PROCESS_DRIVER_H
#define FRONTPANEL_DRIVER_PROCESS_PROCESS_DRIVER_H

#include <frontpanel_drivers/driver.h>

namespace frontpanel {

const Driver_row& process_driver_row();

}  // namespace frontpanel

#endif
