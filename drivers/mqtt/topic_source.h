// Where a parameter lives at a broker, and what its messages mean.
#ifndef FRONTPANEL_DRIVER_MQTT_TOPIC_SOURCE_H
#define FRONTPANEL_DRIVER_MQTT_TOPIC_SOURCE_H

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <frontpanel_base/json_value.h>
#include <frontpanel_drivers/driver.h>
#include <frontpanel_drivers/scale.h>

#include "mqtt_settings.h"

namespace frontpanel {

struct Topic_source {
    std::string topic = {};
    std::string member = {};       // "a.b" in a JSON message; empty: the message is the value
    std::string write_topic = {};  // empty: it is only read
    std::string write_member = {};
    int qos = 1;
    bool is_retained = false;  // of what is written
    bool is_text = false;
    Scale scale = {};
    std::vector<std::string> words = {};  // of the numbers from 0; empty: numbers are numbers
};

std::vector<const char*> topic_members();
// Placed_error for what is wrong with a source, whose members are known to be among `topic_members`.
Topic_source topic_source_of(const Json_value& source, const Mqtt_settings& settings, bool is_text);

constexpr std::size_t LARGEST_MESSAGE = 65536;

struct No_value {
    std::string reason;
};
// The value in a message, or why there is none.
std::variant<Parameter_value, No_value> value_in(const Topic_source& source,
                                                 std::string_view message);
// The message for a value, or why there is none.
std::variant<std::string, No_value> message_for(const Topic_source& source,
                                                const Parameter_value& value);

}  // namespace frontpanel

#endif
