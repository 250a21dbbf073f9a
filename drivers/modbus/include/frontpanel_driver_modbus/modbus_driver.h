// Registers and coils of a controller, over Modbus TCP or a serial line (RTU). docs/drivers/modbus.md describes the members.
#ifndef FRONTPANEL_DRIVER_MODBUS_MODBUS_DRIVER_H
#define FRONTPANEL_DRIVER_MODBUS_MODBUS_DRIVER_H

#include <frontpanel_drivers/driver.h>

namespace frontpanel {

const Driver_row& modbus_driver_row();

}  // namespace frontpanel

#endif
