// How a controller is reached, as an instance of the driver says.
#ifndef FRONTPANEL_DRIVER_MODBUS_MODBUS_SETTINGS_H
#define FRONTPANEL_DRIVER_MODBUS_MODBUS_SETTINGS_H

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

struct Modbus_settings {
    std::string host = {};  // an IPv4 or IPv6 address; empty for a serial line
    std::uint16_t port = 502;

    std::string device = {};  // path of a serial line; empty for TCP
    int baud = 19200;
    char parity = 'E';  // or 'O', 'N'
    int stop_bits = 1;

    // Of sources that name no others.
    int unit = 1;
    bool is_low_word_first = false;

    std::chrono::milliseconds timeout{500};  // of a whole answer
    int retries = 1;                         // further tries
    int gap = 0;                             // registers that may be read along to save a request

    bool is_serial() const { return host.empty(); }
};

std::vector<const char*> modbus_members();
// Placed_error for what is wrong with an instance, whose members are known to be among `modbus_members`.
Modbus_settings modbus_settings_of(const Json_value& options);

// The member "unit" of an instance or a source, or else `otherwise`.
int unit_of(const Json_value& owner, bool is_serial, int otherwise);
// The member "words" of an instance or a source, or else `otherwise`.
bool is_low_word_first(const Json_value& owner, bool otherwise);

}  // namespace frontpanel

#endif
