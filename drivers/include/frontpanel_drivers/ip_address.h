// Addresses of devices in a menu file. Host names are not accepted: a name server that does not answer would delay a
// driver.
#ifndef FRONTPANEL_DRIVERS_IP_ADDRESS_H
#define FRONTPANEL_DRIVERS_IP_ADDRESS_H

#include <string>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

// An IPv4 or IPv6 address as it is written. Placed_error for anything else.
std::string ip_address_of(const Json_value& value);

}  // namespace frontpanel

#endif
