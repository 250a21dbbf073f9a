#include "device_link.h"

#include <arpa/inet.h>

#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/menu.h>
#include <frontpanel_ui/panel.h>

namespace frontpanel {

// A name is never asked, also one that begins like an address: to look it up would leave the device.
bool is_loopback(const std::string& address) {
    in_addr parsed{};
    return inet_pton(AF_INET, address.c_str(), &parsed) == 1 &&
           ntohl(parsed.s_addr) >> IN_CLASSA_NSHIFT == IN_LOOPBACKNET;
}

Device_link link_to(Menu& menu) {
    const auto read_failed = [&device = menu.access()](const Data_entry& entry) {
        if (is_live(entry) || entry.Get_pid() == Data_entry::PID_NONE) {
            return false;
        }
        unsigned int varidx = 0;
        Data_model::Index_convert(entry.Get_index(), varidx);
        return device.last_read_failed(entry.Get_pid(), varidx);
    };
    const auto poll = [&menu](size_t at_most) { menu.bindings()->poll(at_most); };
    const auto settle = [&menu] { return menu.bindings()->settle(); };
    return {menu.access(), menu.gate(), read_failed, is_loopback, can_post, poll, settle};
}

}  // namespace frontpanel
