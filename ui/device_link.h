// How the panel reaches the device.
#ifndef FRONTPANEL_UI_DEVICE_LINK_H
#define FRONTPANEL_UI_DEVICE_LINK_H

#include <frontpanel_base/value_state.h>
#include <frontpanel_binding/binding_report.h>
#include <frontpanel_data/data_entry.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace frontpanel {

class Write_gate;

struct Device_link {
    Data_interface& access;
    // Checks and writes every value of a person.
    Write_gate& gate;
    // Whether the last read of the entry's parameter failed. The entry's own refresh does not show that: it returns
    // the same for a failed read and a corrected value.
    std::function<bool(const Data_entry&)> read_failed;
    // Whether the list of its menu shows the entry: see listing.h. Does not read its value.
    std::function<bool(Data_entry&)> is_listed;
    // What is known of the value that the entry shows; nothing where every read asks the device itself.
    std::function<std::optional<Value_state>(const Data_entry&)> state;
    // Whether an address belongs to the device's network, so that it may be asked for an answer.
    std::function<bool(const std::string&)> may_probe;
    // Whether a choice can be posted to a card. The entry's own commit does not report that.
    std::function<bool()> may_post;
    // Reads the parameters of the menu's rules from the device: at most this many in a call, in turns.
    std::function<void(std::size_t)> poll;
    // Refreshes the entries that depend on what was read and written since: at most this many in a call, in turns.
    std::function<Binding_settlement(std::size_t)> settle;
};

// The mark of a value that is being written, or is old; empty for any other.
const char* mark_of(const std::optional<Value_state>& state);

// Whether the text is an IPv4 address in figures, 127.0.0.0 to 127.255.255.255.
bool is_loopback(const std::string& address);

class Menu;

// A link to the device of a menu, which outlives it. Only loopback addresses belong to its network.
Device_link link_to(Menu& menu);

}  // namespace frontpanel

#endif
