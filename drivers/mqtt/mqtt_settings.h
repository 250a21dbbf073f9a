// How a broker is reached, as an instance of the driver says.
#ifndef FRONTPANEL_DRIVER_MQTT_MQTT_SETTINGS_H
#define FRONTPANEL_DRIVER_MQTT_MQTT_SETTINGS_H

#include <cstdint>
#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

struct Mqtt_settings {
    std::string host = {};  // an IPv4 or IPv6 address
    std::uint16_t port = 1883;
    std::string client = {};  // empty: made up
    std::string login = {};   // file with user and password, a line each; empty: none
    // Files in PEM form; with `ca` the connection is encrypted.
    std::string ca = {};
    std::string certificate = {};
    std::string key = {};
    std::string status = {};  // topic that says whether the panel is there; empty: none
    int qos = 1;              // of sources that name none

    bool is_encrypted() const { return !ca.empty(); }
    // Why each named file that cannot be read cannot: "PATH: REASON". A pipe, which could hang, is none.
    std::vector<std::string> file_faults() const;
};

std::vector<const char*> mqtt_members();
// Placed_error for what is wrong with an instance, whose members are known to be among `mqtt_members`. Files are named
// relative to `folder`.
Mqtt_settings mqtt_settings_of(const Json_value& options, const std::string& folder);

// A member that is a topic for one kind of message: without the characters that stand for several.
std::string topic_of(const Json_value& value);

}  // namespace frontpanel

#endif
