// A member of a JSON message: by its name, or by a JSON pointer (RFC 6901) where it is nested.
#ifndef FRONTPANEL_DRIVER_MQTT_MESSAGE_MEMBER_H
#define FRONTPANEL_DRIVER_MQTT_MESSAGE_MEMBER_H

#include <string>
#include <vector>

#include <frontpanel_base/json_document.h>
#include <frontpanel_base/json_value.h>

namespace frontpanel {

class Message_member {
public:
    // None: the message as a whole.
    Message_member() = default;
    // "Power", or "/ENERGY/Power". Placed_error for an empty text, and for "~" without "0" or "1" in a pointer.
    explicit Message_member(const Json_value& value);

    bool is_whole() const { return m_steps.empty(); }
    const std::string& name() const { return m_name; }  // as it was given
    // The names from the message to the member; those of "Power" and "/Power" are equal.
    const std::vector<std::string>& steps() const { return m_steps; }
    // Null when the message has no such member.
    const Json_node* find(const Json_node& message) const;
    // A message that has only this member; `value` is JSON. A pointer makes an object of each step.
    std::string message_with(const std::string& value) const;

private:
    std::string m_name;
    std::vector<std::string> m_steps;
};

// The text as JSON.
std::string json_text(const std::string& text);

}  // namespace frontpanel

#endif
