// Every driver of the panel, including those that this build leaves out.
#ifndef FRONTPANEL_APP_DRIVER_TABLE_H
#define FRONTPANEL_APP_DRIVER_TABLE_H

#include <frontpanel_drivers/driven_device.h>

namespace frontpanel {

const Driver_table& driver_table();

}  // namespace frontpanel

#endif
