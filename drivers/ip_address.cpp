#include <frontpanel_drivers/ip_address.h>

#include <arpa/inet.h>

namespace frontpanel {

std::string ip_address_of(const Json_value& value) {
    std::string text = value.text();
    in6_addr address{};
    if (inet_pton(AF_INET, text.c_str(), &address) != 1 &&
        inet_pton(AF_INET6, text.c_str(), &address) != 1) {
        value.fail("expected an IPv4 or IPv6 address, found \"" + text + "\"");
    }
    return text;
}

}  // namespace frontpanel
