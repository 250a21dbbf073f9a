// Translates events of the kernel's input devices to keys of the panel: rotary encoders, buttons and knobs.
#ifndef FRONTPANEL_INPUTS_EVENT_KEYS_H
#define FRONTPANEL_INPUTS_EVENT_KEYS_H

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <frontpanel_display/key.h>

namespace frontpanel {

// By the kernel's name of a key, such as "KEY_ENTER" or "BTN_0". An axis, such as "REL_X" or "ABS_WHEEL", is mapped to
// UP when it grows clockwise, which is the usual, or to DOWN when it grows the other way.
using Event_key_map = std::map<std::string, Key>;

// The arrow keys, Enter and Escape, function keys and digits for shortcuts, and what knobs send.
Event_key_map usual_event_keys();

// Input_error when the kernel has no key or axis of a name in the map, or an axis is mapped to anything but UP or DOWN.
void check_event_names(const Event_key_map& keys);

// An event as the kernel has it, without its time.
struct Input_signal {
    uint16_t type;
    uint16_t code;
    int32_t value;
};

// The values that an absolute axis takes, both included.
struct Axis_range {
    int32_t min;
    int32_t max;
};

class Event_keys {
public:
    static constexpr int MOST_STEPS = 100;  // of one event

    // Requires: `check_event_names` accepts the map.
    explicit Event_keys(const Event_key_map& keys);

    // Call it for a new device, or when its state is unknown: the next event of an absolute axis then only sets its
    // place.
    void forget_state() {
        m_positions.clear();
        m_whole_ranges.clear();
    }
    // Sets the place of an absolute axis.
    void set_position(uint16_t code, int32_t value) { m_positions[code] = value; }
    // The keys that the event presses, in order. An absolute axis turns the shorter way: beyond one end of `range` it
    // continues at the other, like an endless encoder. The largest value of the range counts only after the axis has
    // taken it: the kernel's rotary encoders announce one value more than they have.
    std::vector<Key> take(const Input_signal& signal,
                          const std::optional<Axis_range>& range = std::nullopt);

private:
    int64_t steps_to(const Input_signal& signal, const std::optional<Axis_range>& range);
    std::vector<Key> turn(uint16_t type, uint16_t code, int64_t steps) const;

    std::map<uint16_t, Key> m_keys;                            // by the code of a key
    std::map<std::pair<uint16_t, uint16_t>, bool> m_reversed;  // axes by type and code
    std::map<uint16_t, int32_t> m_positions;                   // of absolute axes
    std::set<uint16_t> m_whole_ranges;  // absolute axes that have taken their largest value
};

}  // namespace frontpanel

#endif
