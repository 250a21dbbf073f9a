// Where an LCDproc server listens.
#ifndef FRONTPANEL_DISPLAYS_LCDPROC_SERVER_H
#define FRONTPANEL_DISPLAYS_LCDPROC_SERVER_H

#include <cstdint>
#include <optional>
#include <string>

namespace frontpanel {

struct Lcdproc_server {
    std::string host = "127.0.0.1";  // an IPv4 or IPv6 address
    uint16_t port = 13666;
};

// "HOST" or "HOST:PORT", in which HOST is "localhost", an IPv4 address or an IPv6 address in brackets: names are not
// looked up, since that may take long. Nothing for any other text.
std::optional<Lcdproc_server> parse_lcdproc_server(const std::string& text);

}  // namespace frontpanel

#endif
