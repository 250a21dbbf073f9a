#include <frontpanel_displays/lcdproc_server.h>

#include <arpa/inet.h>

#include <algorithm>
#include <array>

#include <frontpanel_base/numbers.h>

namespace frontpanel {
namespace {

bool is_address(int family, const std::string& text) {
    std::array<char, sizeof(in6_addr)> address{};
    return inet_pton(family, text.c_str(), address.data()) == 1;
}

// Where the host ends in "HOST" or "HOST:PORT"; npos for a bracket that is not closed.
size_t host_end(const std::string& place) {
    const size_t start = place.rfind('[', 0) == 0 ? place.find(']') : 0;
    return start == std::string::npos ? start : std::min(place.find(':', start), place.size());
}

std::optional<std::string> parse_host(const std::string& text) {
    if (text == "localhost") {
        return Lcdproc_server().host;
    }
    if (is_address(AF_INET, text)) {
        return text;
    }
    if (text.size() > 2 && text.front() == '[' && text.back() == ']') {
        std::string bare = text.substr(1, text.size() - 2);
        if (is_address(AF_INET6, bare)) {
            return bare;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<Lcdproc_server> parse_lcdproc_server(const std::string& text) {
    const size_t end = host_end(text);
    if (end == std::string::npos) {
        return std::nullopt;
    }
    const std::optional<std::string> host = parse_host(text.substr(0, end));
    const std::optional<uint16_t> port = end == text.size()
                                             ? Lcdproc_server().port
                                             : parse_number<uint16_t>(text.substr(end + 1), 1);
    if (!host || !port) {
        return std::nullopt;
    }
    return Lcdproc_server{*host, *port};
}

}  // namespace frontpanel
