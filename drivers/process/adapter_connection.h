// The way to an adapter, whatever it is: lines in both directions, within bounds of memory and time.
//
// Every operation is for one thread, but `stop`.
#ifndef FRONTPANEL_DRIVER_PROCESS_ADAPTER_CONNECTION_H
#define FRONTPANEL_DRIVER_PROCESS_ADAPTER_CONNECTION_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include <frontpanel_base/descriptor.h>
#include "adapter_message.h"
#include "adapter_place.h"
#include "child_process.h"
#include "error_lines.h"

namespace frontpanel {

class Adapter_connection {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr int NO_WAKE = -1;

    // The lines that the adapter prints to its standard error are logged with `name`, that of the driver, in front.
    // std::system_error when no descriptor is available.
    Adapter_connection(Adapter_place place, const std::string& name);
    ~Adapter_connection();
    Adapter_connection(const Adapter_connection&) = delete;
    Adapter_connection& operator=(const Adapter_connection&) = delete;

    // Connects or starts the adapter, `end` at the latest. Whether it is open; `fault` says why it is not. Requires: closed.
    bool open(Time end);
    bool is_open() const { return m_in != nullptr; }
    // Closes, and ends an adapter that was started. `why` becomes the fault.
    void close(const std::string& why);
    // Closes a connection that has ended, or that has to end because of a mistake of the adapter, which gets an error.
    void fail(const std::string& why);
    // Why it is closed, with the adapter's last message.
    const std::string& fault() const { return m_fault; }

    // Writes a message of the adapter to the log, like a line of its standard error.
    void log(const std::string& message);

    // Takes a line, without its end, to be sent. Its place in all that was ever sent.
    std::uint64_t send(const std::string& line);
    // Whether the first byte of the line at that place has left.
    bool has_begun(std::uint64_t place) const { return m_sent > place; }

    // Sends and receives, and waits until a line has arrived, the connection is closed, `wake` is readable, `end` is
    // reached, or it is stopped.
    void serve(Time end, int wake = NO_WAKE);
    // The next line that arrived, without its end. What arrived before the end of a connection is still delivered.
    std::optional<std::string> next_line();
    // Whether `next_line` has one.
    bool has_line() const { return m_line_end != std::string::npos; }

    // From any thread: from now on nothing waits any more.
    void stop() const;
    bool is_stopped() const;

private:
    std::string connect(Time end);
    void send_waiting();
    void receive();
    void find_line();
    void forget_received();
    void receive_errors();
    void end_by_itself(bool was_cut);

    const Adapter_place m_place;
    const Descriptor m_stop;
    Child_process m_child;
    Descriptor m_socket;
    Descriptor* m_in = nullptr;  // null: closed
    Descriptor* m_out = nullptr;
    Error_lines m_errors;
    std::string m_fault;

    std::string m_to_send;
    std::uint64_t m_queued = 0;  // bytes that `send` took, ever
    std::uint64_t m_sent = 0;
    std::string m_received;
    std::size_t m_line_start = 0;  // of the line that comes next
    std::size_t m_searched = 0;    // up to there it has no end
    std::size_t m_line_end = std::string::npos;
};

}  // namespace frontpanel

#endif
