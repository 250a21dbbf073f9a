// What is known of the value of a device's parameter.
//
// A device that answers from memory implements `Value_states` beside its data interface, so that a panel can mark what is
// old or not written yet.
#ifndef FRONTPANEL_BASE_VALUE_STATE_H
#define FRONTPANEL_BASE_VALUE_STATE_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace frontpanel {

enum class Freshness {
    FRESH,
    OLD,     // no longer confirmed by the device
    UNKNOWN  // no value
};

struct Value_state {
    Freshness freshness = Freshness::FRESH;
    bool is_writing = false;           // the value is one that the device has not confirmed yet
    bool has_failed = false;           // the last attempt to read it failed, or cannot be made
    std::chrono::milliseconds age{0};  // since the device confirmed the value; 0 for an UNKNOWN one
    std::string reason = {};           // why it is not fresh or has failed, in one line; else empty
};

class Value_states {
public:
    virtual ~Value_states() = default;
    // By the address that the data interface gets; nothing for a parameter whose every read asks the device itself.
    // Never waits.
    virtual std::optional<Value_state> state(std::uint32_t pid, std::uint32_t varidx) const = 0;
};

}  // namespace frontpanel

#endif
