// Where a parameter lives at a broker, and what its messages mean.
#ifndef FRONTPANEL_DRIVER_MQTT_TOPIC_SOURCE_H
#define FRONTPANEL_DRIVER_MQTT_TOPIC_SOURCE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <frontpanel_base/json_value.h>
#include <frontpanel_drivers/driver.h>
#include <frontpanel_drivers/scale.h>

#include "message_member.h"
#include "mqtt_settings.h"

namespace frontpanel {

struct Topic_source {
    std::string topic = {};
    Message_member member = {};    // that is the value
    std::string write_topic = {};  // empty: it is only read
    Message_member write_member = {};
    int qos = 1;
    bool is_retained = false;  // of what is written
    bool is_text = false;
    Scale scale = {};
    std::vector<std::string> words = {};  // of the numbers from 0; empty: numbers are numbers
};

std::vector<const char*> topic_members();
// Placed_error for what is wrong with a source, whose members are known to be among `topic_members`.
Topic_source topic_source_of(const Json_value& source, const Mqtt_settings& settings, bool is_text);

struct No_value {
    std::string reason;
};

// What arrived on a topic, for all sources that share it: it is parsed once.
class Topic_message {
public:
    static constexpr std::size_t LARGEST = 65536;

    // `text` outlives the message.
    explicit Topic_message(std::string_view text) : m_text(text) {}

    std::string_view text() const { return m_text; }
    // The value of a member, or why there is none.
    std::variant<std::string, No_value> text_of(const Message_member& member);

private:
    const Source m_source{"message", 0};
    std::string_view m_text;
    bool m_is_parsed = false;
    std::optional<Json_document> m_document;  // nothing: it is not JSON
};

// The value in a message, or why there is none.
std::variant<Parameter_value, No_value> value_in(const Topic_source& source,
                                                 Topic_message& message);
// The message for a value, or why there is none.
std::variant<std::string, No_value> message_for(const Topic_source& source,
                                                const Parameter_value& value);

}  // namespace frontpanel

#endif
