// What is known of the value of a device's parameter.
//
// A device that answers from memory implements `Value_states` beside its data interface, so that a panel can mark
// values that are old or not written yet.
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
    bool is_writing = false;           // the value was written, but not confirmed by the device yet
    bool has_failed = false;           // the last attempt to read it failed, or cannot be made
    std::chrono::milliseconds age{0};  // since the device confirmed the value; 0 for an UNKNOWN one
    std::string reason = {};           // one line: why it is not fresh or has failed; else empty
};

class Value_states {
public:
    virtual ~Value_states() = default;
    // The state of a parameter, addressed as in the data interface. Empty for a parameter that is read from the device
    // each time. Never waits.
    virtual std::optional<Value_state> state(std::uint32_t pid, std::uint32_t varidx) const = 0;
};

}  // namespace frontpanel

#endif
