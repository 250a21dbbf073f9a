#include "adapter_connection.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <limits>
#include <system_error>
#include <utility>

namespace frontpanel {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds LAST_WORDS(200);  // of an adapter whose output has ended
constexpr std::size_t PIECE = std::size_t{16} * 1024;

bool is_later(int error) {
    return error == EAGAIN || error == EINTR;
}

// Writes to a pipe or a socket. Without a reader it only fails, whatever thread it is called on.
ssize_t write_quietly(int descriptor, const std::string& bytes) {
    sigset_t pipe_signal;
    sigset_t pending;
    sigset_t before;
    sigemptyset(&pipe_signal);
    sigaddset(&pipe_signal, SIGPIPE);
    sigpending(&pending);
    pthread_sigmask(SIG_BLOCK, &pipe_signal, &before);
    const ssize_t size = write(descriptor, bytes.data(), bytes.size());
    const int error = errno;
    if (size < 0 && error == EPIPE && sigismember(&pending, SIGPIPE) == 0) {
        const timespec at_once{};
        sigtimedwait(&pipe_signal, nullptr, &at_once);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return size;
}

int time_left(Adapter_connection::Time end) {
    const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
    return static_cast<int>(std::clamp<milliseconds::rep>(left.count(), 0, 60000));
}

// In the log, to which the panel's standard error goes while it is on a screen.
void print_error(const std::string& line) {
    const std::string whole = line + "\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, whole.data(), whole.size());
}

int descriptor_of(const Descriptor* descriptor) {
    return descriptor == nullptr ? -1 : descriptor->number();
}

}  // namespace

Adapter_connection::Adapter_connection(Adapter_place place, const std::string& name)
    : m_place(std::move(place)),
      m_stop(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_errors(name, print_error) {
    if (!m_stop.is_open()) {
        throw std::system_error(errno, std::generic_category(), "cannot create a descriptor");
    }
}

Adapter_connection::~Adapter_connection() {
    close("");
}

void Adapter_connection::stop() const {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(m_stop.number(), &one, sizeof one);
}

bool Adapter_connection::is_stopped() const {
    pollfd source{m_stop.number(), POLLIN, 0};
    return poll(&source, 1, 0) > 0;
}

// ---- the connection

bool Adapter_connection::open(Time end) {
    m_fault.clear();
    m_to_send.clear();
    m_sent = m_queued;
    forget_received();
    m_errors.forget_last_words();
    if (!m_place.is_command()) {
        m_fault = connect(end);
        m_in = m_out = m_fault.empty() ? &m_socket : nullptr;
        return is_open();
    }
    const std::string program = m_place.program();
    if (program.empty()) {
        m_fault = m_place.fault();
        return false;
    }
    // A name with a slash is one in the folder in which the program runs.
    const std::string& name = m_place.command.front();
    const std::string error = m_child.start(name.find('/') == std::string::npos ? program : name,
                                            m_place.command, m_place.folder);
    if (!error.empty()) {
        m_fault = "cannot start " + program + ": " + error;
        return false;
    }
    m_in = &m_child.output();
    m_out = &m_child.input();
    return true;
}

std::string Adapter_connection::connect(Time end) {
    const int family = m_place.address.ss_family;
    m_socket = Descriptor(socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!m_socket.is_open()) {
        return std::strerror(errno);
    }
    if (family != AF_UNIX) {
        // A request is one short line, which is to arrive at once.
        const int on = 1;
        setsockopt(m_socket.number(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    const auto* const address = reinterpret_cast<const sockaddr*>(&m_place.address);
    if (::connect(m_socket.number(), address, m_place.address_size) == 0) {
        return "";
    }
    int error = errno;
    if (error == EINPROGRESS) {
        std::array<pollfd, 2> sources{
            {{m_socket.number(), POLLOUT, 0}, {m_stop.number(), POLLIN, 0}}};
        error = ETIMEDOUT;
        if (poll(sources.data(), sources.size(), time_left(end)) > 0 && sources[0].revents != 0) {
            socklen_t size = sizeof error;
            getsockopt(m_socket.number(), SOL_SOCKET, SO_ERROR, &error, &size);
        }
    }
    if (error != 0) {
        m_socket.reset();
    }
    // A Unix socket whose queue is full says so.
    return error == 0 ? "" : error == EAGAIN ? "it accepts no connection" : std::strerror(error);
}

void Adapter_connection::close(const std::string& why) {
    m_fault = why;
    m_in = m_out = nullptr;
    m_socket.reset();
    m_child.end();
    receive_errors();
    m_child.errors().reset();
    m_errors.end(Clock::now());
}

// As far as that needs no waiting, the adapter learns what was wrong.
void Adapter_connection::fail(const std::string& why) {
    if (is_open() && m_to_send.empty()) {
        send(error_line(why));
        send_waiting();
    }
    if (is_open()) {
        close(why);
    }
}

void Adapter_connection::log(const std::string& message) {
    m_errors.note(message, Clock::now());
}

void Adapter_connection::end_by_itself(bool was_cut) {
    const Time began = Clock::now();
    m_in = m_out = nullptr;
    m_socket.reset();
    std::string how = m_child.end(LAST_WORDS);
    close("");
    if (how.empty()) {
        how = "it closed the connection";
    }
    m_fault = how + (was_cut ? " in the middle of a line" : "");
    const std::string last_words = m_errors.last_words(began);
    if (m_place.is_command() && !last_words.empty()) {
        m_fault += ": " + last_words;
    }
}

// ---- lines

std::uint64_t Adapter_connection::send(const std::string& line) {
    const std::uint64_t place = m_queued;
    m_to_send += line + '\n';
    m_queued += line.size() + 1;
    return place;
}

void Adapter_connection::send_waiting() {
    if (m_to_send.empty() || !is_open()) {
        return;
    }
    const ssize_t size = write_quietly(m_out->number(), m_to_send);
    if (size >= 0) {
        m_to_send.erase(0, static_cast<std::size_t>(size));
        m_sent += static_cast<std::uint64_t>(size);
    } else if (!is_later(errno)) {
        // What arrived before is still read, and may say why.
        const std::string reason = errno == EPIPE ? "it closed its input" : std::strerror(errno);
        receive();
        receive();
        if (is_open()) {
            close(reason);
        }
    }
}

void Adapter_connection::receive() {
    if (!is_open() || has_line()) {
        return;
    }
    std::array<char, PIECE> bytes;
    const ssize_t size = read(m_in->number(), bytes.data(), bytes.size());
    if (size > 0) {
        m_received.erase(0, m_line_start);
        m_searched -= m_line_start;
        m_line_start = 0;
        m_received.append(bytes.data(), static_cast<std::size_t>(size));
        find_line();
    } else if (size == 0 || !is_later(errno)) {
        end_by_itself(m_line_start < m_received.size());
    }
}

void Adapter_connection::forget_received() {
    m_received.clear();
    m_line_start = 0;
    m_searched = 0;
    m_line_end = std::string::npos;
}

// The end of a line that is too long is not waited for.
void Adapter_connection::find_line() {
    m_line_end = m_received.find('\n', m_searched);
    m_searched = std::min(m_line_end, m_received.size());
    if (m_searched - m_line_start > LONGEST_ADAPTER_LINE) {
        forget_received();
        fail("a line is longer than " + std::to_string(LONGEST_ADAPTER_LINE) + " bytes");
    }
}

std::optional<std::string> Adapter_connection::next_line() {
    if (!has_line()) {
        return std::nullopt;
    }
    std::string line = m_received.substr(m_line_start, m_line_end - m_line_start);
    m_line_start = m_searched = m_line_end + 1;
    find_line();
    return line;
}

void Adapter_connection::receive_errors() {
    std::array<char, PIECE> bytes;
    constexpr int MOST_PIECES = 16;  // of one that prints without an end
    for (int i = 0; i < MOST_PIECES && m_child.errors().is_open(); ++i) {
        const ssize_t size = read(m_child.errors().number(), bytes.data(), bytes.size());
        if (size > 0) {
            m_errors.take({bytes.data(), static_cast<std::size_t>(size)}, Clock::now());
        } else if (size == 0 || !is_later(errno)) {
            m_child.errors().reset();
        } else {
            return;
        }
    }
}

void Adapter_connection::serve(Time end, int wake) {
    send_waiting();
    while (is_open() && !has_line()) {
        enum { IN, OUT, ERRORS, STOP, WAKE, COUNT };
        std::array<pollfd, COUNT> sources{
            {{m_in->number(), POLLIN, 0},
             {m_to_send.empty() ? -1 : descriptor_of(m_out), POLLOUT, 0},
             {m_child.errors().number(), POLLIN, 0},
             {m_stop.number(), POLLIN, 0},
             {wake, POLLIN, 0}}};
        const int left = time_left(end);
        const int ready = poll(sources.data(), sources.size(), left);
        if (sources[ERRORS].revents != 0) {
            receive_errors();
        }
        if (sources[OUT].revents != 0) {
            send_waiting();
        }
        if (sources[IN].revents != 0) {
            receive();
        }
        if (sources[STOP].revents != 0 || sources[WAKE].revents != 0 || (ready <= 0 && left == 0)) {
            return;
        }
        if (left == 0) {
            return;
        }
    }
}

}  // namespace frontpanel
