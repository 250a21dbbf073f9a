// Where a menu file says that the program is that has the parameters.
#ifndef FRONTPANEL_DRIVER_PROCESS_ADAPTER_PLACE_H
#define FRONTPANEL_DRIVER_PROCESS_ADAPTER_PLACE_H

#include <sys/socket.h>

#include <string>
#include <vector>

#include <frontpanel_base/json_value.h>

namespace frontpanel {

struct Adapter_place {
    static constexpr std::size_t MOST_ARGUMENTS = 64;  // the program included
    static constexpr std::size_t LONGEST_ARGUMENT = 1024;

    // Of a program that is started: it and its arguments. Empty for a socket.
    std::vector<std::string> command{};
    // In which the program runs; empty: the panel's working directory.
    std::string folder{};
    // Of a socket.
    sockaddr_storage address{};
    socklen_t address_size = 0;
    std::string path{};  // of a Unix socket

    bool is_command() const { return !command.empty(); }
    // The file of the command: a name with a slash is one in `folder`, any other is searched in PATH, of which only
    // absolute folders count. Empty when PATH has no such program.
    std::string program() const;
    // Why nothing can be started or reached here, as far as that shows without doing so; empty when nothing is wrong.
    std::string fault() const;
};

// One of the members "command", "unix" and "tcp" of an instance in a menu file. Files are named relative to `folder`.
// Throws Placed_error.
Adapter_place adapter_place_of(const Json_value& options, const std::string& folder);

}  // namespace frontpanel

#endif
