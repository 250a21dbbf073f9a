#include <frontpanel_displays/display_choice.h>

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

constexpr const char* SERVER = "lcdproc";

[[noreturn]] void refuse(const std::string& text) {
    throw Input_error("expected terminal, text or lcdproc[:ADDRESS[:PORT]], found \"" + text +
                      "\"");
}

bool is_address(int family, const std::string& text) {
    std::array<char, sizeof(in6_addr)> address{};
    return inet_pton(family, text.c_str(), address.data()) == 1;
}

uint16_t parse_port(const std::string& text, const std::string& whole) {
    uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, port);
    if (error != std::errc() || stopped != end || port == 0) {
        refuse(whole);
    }
    return port;
}

// Where the host ends in "HOST" or "HOST:PORT".
size_t host_end(const std::string& place) {
    const size_t start = place.rfind('[', 0) == 0 ? place.find(']') : 0;
    return start == std::string::npos ? start : std::min(place.find(':', start), place.size());
}

std::string parse_host(const std::string& text, const std::string& whole) {
    if (text == "localhost") {
        return Display_choice().host;
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
    refuse(whole);
}

}  // namespace

Display_choice parse_display(const std::string& text) {
    Display_choice choice;
    if (text == "terminal") {
        choice.kind = Display_choice::TERMINAL;
        return choice;
    }
    if (text == "text") {
        choice.kind = Display_choice::TEXT;
        return choice;
    }
    const std::string server(SERVER);
    if (text.rfind(server, 0) != 0) {
        refuse(text);
    }
    choice.kind = Display_choice::LCDPROC;
    if (text.size() == server.size()) {
        return choice;
    }
    if (text[server.size()] != ':') {
        refuse(text);
    }
    const std::string place = text.substr(server.size() + 1);
    const size_t end = host_end(place);
    if (end == std::string::npos) {
        refuse(text);
    }
    choice.host = parse_host(place.substr(0, end), text);
    if (end < place.size()) {
        choice.port = parse_port(place.substr(end + 1), text);
    }
    return choice;
}

}  // namespace frontpanel
