// The driver "file": parameters that are files with one value, as sysfs, configfs, hwmon and pwm folders have them, or one
// word of a line, as /proc/meminfo has it. docs/drivers/file.md describes its members.
#ifndef FRONTPANEL_DRIVER_FILE_FILE_DRIVER_H
#define FRONTPANEL_DRIVER_FILE_FILE_DRIVER_H

#include <frontpanel_drivers/driver.h>

namespace frontpanel {

const Driver_row& file_driver_row();

}  // namespace frontpanel

#endif
