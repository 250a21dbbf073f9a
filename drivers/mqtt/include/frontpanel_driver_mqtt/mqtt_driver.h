// Topics at an MQTT broker. docs/drivers/mqtt.md describes the members.
#ifndef FRONTPANEL_DRIVER_MQTT_MQTT_DRIVER_H
#define FRONTPANEL_DRIVER_MQTT_MQTT_DRIVER_H

#include <frontpanel_drivers/driver.h>

namespace frontpanel {

const Driver_row& mqtt_driver_row();

}  // namespace frontpanel

#endif
