#include "device_link.h"

#include <arpa/inet.h>

#include <frontpanel_binding/parameter_address.h>
#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/list_line.h>
#include <frontpanel_menu/listing.h>
#include <frontpanel_menu/menu.h>
#include <frontpanel_ui/panel.h>

namespace frontpanel {

// A name is never asked, also one that begins like an address: to look it up would leave the device.
bool is_loopback(const std::string& address) {
    in_addr parsed{};
    return inet_pton(AF_INET, address.c_str(), &parsed) == 1 &&
           ntohl(parsed.s_addr) >> IN_CLASSA_NSHIFT == IN_LOOPBACKNET;
}

const char* mark_of(const std::optional<Value_state>& state) {
    if (state && state->is_writing) {
        return WRITING_MARK;
    }
    return state && state->freshness == Freshness::OLD ? OLD_MARK : "";
}

Device_link link_to(Menu& menu) {
    const auto has_parameter = [](const Data_entry& entry) {
        return !is_live(entry) && entry.Get_pid() != Data_entry::PID_NONE;
    };
    const auto read_failed = [has_parameter, &device = menu.access()](const Data_entry& entry) {
        return has_parameter(entry) &&
               device.last_read_failed(entry.Get_pid(), varidx_of(*entry.Get_index()));
    };
    const auto is_listed = [&menu](Data_entry& entry) {
        return frontpanel::is_listed(entry, menu);
    };
    const auto state = [has_parameter, &device = menu.access()](const Data_entry& entry) {
        return has_parameter(entry) ? device.state(entry.Get_pid(), varidx_of(*entry.Get_index()))
                                    : std::nullopt;
    };
    const auto poll = [&menu](size_t at_most) { menu.bindings()->poll(at_most); };
    const auto settle = [&menu](size_t at_most) {
        return menu.bindings()->settle(nullptr, at_most);
    };
    return {menu.access(), menu.gate(), read_failed, is_listed, state,
            is_loopback,   can_post,    poll,        settle};
}

}  // namespace frontpanel
