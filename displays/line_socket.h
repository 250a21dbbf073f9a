// A TCP connection that carries lines, and on which nothing ever waits.
//
// What the other side sends or does not read costs a bounded amount of memory.
#ifndef FRONTPANEL_DISPLAYS_LINE_SOCKET_H
#define FRONTPANEL_DISPLAYS_LINE_SOCKET_H

#include <poll.h>

#include <cstdint>
#include <optional>
#include <string>

namespace frontpanel {

class Line_socket {
public:
    static constexpr size_t LONGEST_LINE = 1024;  // a longer one that arrives is dropped
    static constexpr size_t MOST_TO_SEND = 65536;

    enum class State { CLOSED, CONNECTING, OPEN };

    Line_socket() = default;
    ~Line_socket() { close(""); }
    Line_socket(const Line_socket&) = delete;
    Line_socket& operator=(const Line_socket&) = delete;

    // Begins to connect to an IPv4 or IPv6 address in figures. What was there before is closed and dropped.
    void connect(const std::string& address, uint16_t port);
    // Why the connection ended is kept for `reason`.
    void close(const std::string& reason);
    // Takes a line, without its end, to be sent with the next `service`. Closes the connection if the other side does
    // not read.
    void send(const std::string& line);
    // Connects, sends and receives as far as nothing has to be waited for.
    void service();
    // The next line that arrived, without its end; those before the end of a connection are still delivered.
    std::optional<std::string> next_line();
    bool has_line() const { return m_in.find('\n') != std::string::npos; }

    State state() const { return m_state; }
    const std::string& reason() const { return m_reason; }
    // What the connection waits for.
    pollfd source() const;

private:
    void finish_connect();
    void send_waiting();
    void receive();
    void drop_long_line();

    int m_socket = -1;
    State m_state = State::CLOSED;
    std::string m_reason;
    std::string m_in;
    std::string m_out;
    bool m_skips = false;  // the rest of a line that is too long
};

}  // namespace frontpanel

#endif
