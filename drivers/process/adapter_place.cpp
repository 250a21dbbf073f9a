#include "adapter_place.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>

#include <frontpanel_base/numbers.h>

namespace frontpanel {
namespace {

constexpr const char* COMMAND = "command";
constexpr const char* UNIX = "unix";
constexpr const char* TCP = "tcp";

std::string joined(const std::string& folder, const std::string& path) {
    return folder.empty() || path.front() == '/' ? path : folder + "/" + path;
}

bool is_program(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}

// A folder of PATH that is relative would depend on where the panel was started.
std::string found_in_path(const std::string& name) {
    const char* const variable = std::getenv("PATH");
    const std::string folders = variable == nullptr ? "/usr/local/bin:/usr/bin:/bin" : variable;
    for (std::size_t start = 0; start <= folders.size();) {
        const std::size_t end = std::min(folders.find(':', start), folders.size());
        std::string file = folders.substr(start, end - start) + "/" + name;
        if (folders[start] == '/' && is_program(file)) {
            return file;
        }
        start = end + 1;
    }
    return "";
}

std::vector<std::string> command_of(const Json_value& value) {
    std::vector<std::string> command;
    for (const Json_value& item : value.some_items(Adapter_place::MOST_ARGUMENTS, "arguments")) {
        command.push_back(
            item.shown_text_of_length(command.empty() ? 1 : 0, Adapter_place::LONGEST_ARGUMENT));
    }
    return command;
}

void read_path(const Json_value& value, const std::string& folder, Adapter_place& place) {
    auto* const address = reinterpret_cast<sockaddr_un*>(&place.address);
    const std::size_t longest = sizeof address->sun_path - 1;
    place.path = joined(folder, value.shown_text_of_length(1, longest));
    if (place.path.size() > longest) {
        value.fail("the path with the folder of the menu file is longer than " +
                   std::to_string(longest) + " characters");
    }
    address->sun_family = AF_UNIX;
    std::memcpy(address->sun_path, place.path.c_str(), place.path.size() + 1);
    place.address_size = sizeof *address;
}

bool read_ipv4(const std::string& host, std::uint16_t port, Adapter_place& place) {
    constexpr std::uint32_t LOOPBACK_NET = 127;
    auto* const address = reinterpret_cast<sockaddr_in*>(&place.address);
    const char* const text = host == "localhost" ? "127.0.0.1" : host.c_str();
    if (inet_pton(AF_INET, text, &address->sin_addr) != 1 ||
        ntohl(address->sin_addr.s_addr) >> 24U != LOOPBACK_NET) {
        return false;
    }
    address->sin_family = AF_INET;
    address->sin_port = htons(port);
    place.address_size = sizeof *address;
    return true;
}

bool read_ipv6(const std::string& host, std::uint16_t port, Adapter_place& place) {
    auto* const address = reinterpret_cast<sockaddr_in6*>(&place.address);
    if (host != "[::1]" || inet_pton(AF_INET6, "::1", &address->sin6_addr) != 1) {
        return false;
    }
    address->sin6_family = AF_INET6;
    address->sin6_port = htons(port);
    place.address_size = sizeof *address;
    return true;
}

// Nothing is looked up, and nothing beyond this machine is reached.
void read_address(const Json_value& value, Adapter_place& place) {
    const std::string text = value.text();
    const std::size_t colon = text.rfind(':');
    const std::string digits = colon == std::string::npos ? "" : text.substr(colon + 1);
    const std::uint16_t port = parse_number<std::uint16_t>(digits, 1).value_or(0);
    const std::string host = text.substr(0, colon);
    if (port == 0 || (!read_ipv4(host, port, place) && !read_ipv6(host, port, place))) {
        value.fail(
            "expected an address on this machine with a port, such as \"localhost:7400\", "
            "\"127.0.0.1:7400\" or \"[::1]:7400\", found \"" +
            text + "\"");
    }
}

}  // namespace

std::string Adapter_place::program() const {
    const std::string& name = command.front();
    return name.find('/') == std::string::npos ? found_in_path(name) : joined(folder, name);
}

std::string Adapter_place::fault() const {
    if (!is_command()) {
        const bool is_missing = !path.empty() && access(path.c_str(), F_OK) != 0;
        return is_missing ? path + ": " + std::strerror(errno) : "";
    }
    const std::string file = program();
    if (file.empty()) {
        return "PATH has no program \"" + command.front() + "\"";
    }
    if (access(file.c_str(), X_OK) != 0) {
        return file + ": " + std::strerror(errno);
    }
    return is_program(file) ? "" : file + ": it is no file";
}

Adapter_place adapter_place_of(const Json_value& options, const std::string& folder) {
    const auto command = options.find(COMMAND);
    const auto path = options.find(UNIX);
    const auto address = options.find(TCP);
    if (int{command.has_value()} + int{path.has_value()} + int{address.has_value()} != 1) {
        options.fail("expected one of the members \"command\", \"unix\" and \"tcp\"");
    }
    Adapter_place place;
    place.folder = folder;
    if (command) {
        place.command = command_of(*command);
    } else if (path) {
        read_path(*path, folder, place);
    } else {
        read_address(*address, place);
    }
    return place;
}

}  // namespace frontpanel
