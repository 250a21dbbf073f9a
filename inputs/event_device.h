// An open input device of the kernel, or a pipe with events that were recorded from one.
#ifndef FRONTPANEL_INPUTS_EVENT_DEVICE_H
#define FRONTPANEL_INPUTS_EVENT_DEVICE_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <frontpanel_inputs/event_keys.h>

namespace frontpanel {

class Event_device {
public:
    struct Signal {
        Input_signal event;
        bool is_late;  // the device lost events: this is what its state changed by meanwhile
    };

    virtual ~Event_device() = default;

    // The next event; nothing while there is none. Never waits. Requires: `error` is empty.
    virtual std::optional<Signal> next() = 0;
    // Why the device is gone; empty while it is there.
    virtual const std::string& error() const = 0;
    virtual int descriptor() const = 0;
    // Its own name; empty for a pipe.
    virtual std::string name() const = 0;
    // The values of an absolute axis, and the one that it has now; nothing when that is not known.
    virtual std::optional<Axis_range> range_of(uint16_t axis) const = 0;
    virtual std::vector<std::pair<uint16_t, int32_t>> positions() const = 0;
};

struct Opened_device {
    std::unique_ptr<Event_device> device;  // null when it cannot be opened
    std::string error;
};

// Opens and grabs the device, so that no other program gets its events. A pipe is only opened.
Opened_device open_event_device(const std::string& path);
// The first input device of this name in a folder such as /dev/input that can be opened and grabbed.
Opened_device find_event_device(const std::string& name, const std::string& folder);

}  // namespace frontpanel

#endif
