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
    // Through which every value of a person goes.
    Write_gate& gate;
    // Whether the last read of the entry's parameter failed. The entry's own refresh cannot tell: it reports
    // a failed read and a corrected value alike.
    std::function<bool(const Data_entry&)> read_failed;
    // Whether the list of its menu shows the entry: see listing.h. Does not read its value.
    std::function<bool(Data_entry&)> is_listed;
    // What is known of the value that the entry shows; nothing where every read asks the device itself.
    std::function<std::optional<Value_state>(const Data_entry&)> state;
    // Whether an address belongs to the device's network, so that it may be asked for an answer.
    std::function<bool(const std::string&)> may_probe;
    // Whether a choice can be posted to a card. The entry's own commit cannot tell.
    std::function<bool()> may_post;
    // Asks the device for what the rules of the menu depend on: for so many parameters, in turns.
    std::function<void(std::size_t)> poll;
    // Brings every entry up to date with what was read and written since; so many of them, in turns.
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
