#include "line_socket.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace frontpanel {
namespace {

bool is_later(int error) {
    return error == EAGAIN || error == EINTR;
}

struct Address {
    sockaddr_storage storage{};
    socklen_t size = 0;
};

std::optional<Address> address_of(const std::string& text, uint16_t port) {
    Address address;
    auto* const four = reinterpret_cast<sockaddr_in*>(&address.storage);
    if (inet_pton(AF_INET, text.c_str(), &four->sin_addr) == 1) {
        four->sin_family = AF_INET;
        four->sin_port = htons(port);
        address.size = sizeof *four;
        return address;
    }
    auto* const six = reinterpret_cast<sockaddr_in6*>(&address.storage);
    if (inet_pton(AF_INET6, text.c_str(), &six->sin6_addr) == 1) {
        six->sin6_family = AF_INET6;
        six->sin6_port = htons(port);
        address.size = sizeof *six;
        return address;
    }
    return std::nullopt;
}

}  // namespace

void Line_socket::connect(const std::string& address, uint16_t port) {
    close("");
    m_in.clear();
    m_skips = false;
    const std::optional<Address> place = address_of(address, port);
    if (!place) {
        m_reason = "no address";
        return;
    }
    m_socket = socket(place->storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (m_socket < 0) {
        m_reason = std::strerror(errno);
        return;
    }
    // A key press is one short line, which is to arrive at once.
    const int on = 1;
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    m_state = State::CONNECTING;
    const auto* const where = reinterpret_cast<const sockaddr*>(&place->storage);
    if (::connect(m_socket, where, place->size) == 0) {
        m_state = State::OPEN;
    } else if (errno != EINPROGRESS) {
        close(std::strerror(errno));
    }
}

void Line_socket::close(const std::string& reason) {
    if (m_socket >= 0) {
        ::close(m_socket);
    }
    m_socket = -1;
    m_state = State::CLOSED;
    m_out.clear();
    m_reason = reason;
}

void Line_socket::send(const std::string& line) {
    if (m_state != State::OPEN) {
        return;
    }
    if (m_out.size() + line.size() >= MOST_TO_SEND) {
        close("it does not read");
        return;
    }
    m_out += line + '\n';
}

void Line_socket::service() {
    if (m_state == State::CONNECTING) {
        finish_connect();
    }
    if (m_state == State::OPEN) {
        send_waiting();
    }
    if (m_state == State::OPEN) {
        receive();
    }
}

void Line_socket::finish_connect() {
    pollfd ready{m_socket, POLLOUT, 0};
    if (poll(&ready, 1, 0) <= 0) {
        return;
    }
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(m_socket, SOL_SOCKET, SO_ERROR, &error, &size);
    if (error == 0) {
        m_state = State::OPEN;
    } else {
        close(std::strerror(error));
    }
}

void Line_socket::send_waiting() {
    if (m_out.empty()) {
        return;
    }
    const ssize_t sent = ::send(m_socket, m_out.data(), m_out.size(), MSG_NOSIGNAL);
    if (sent >= 0) {
        m_out.erase(0, static_cast<size_t>(sent));
    } else if (!is_later(errno)) {
        // What arrived before is still read.
        const std::string reason = std::strerror(errno);
        receive();
        close(reason);
    }
}

void Line_socket::receive() {
    if (m_in.size() > LONGEST_LINE) {
        return;
    }
    std::array<char, 4096> bytes;
    const ssize_t size = recv(m_socket, bytes.data(), bytes.size(), 0);
    if (size > 0) {
        m_in.append(bytes.data(), static_cast<size_t>(size));
        drop_long_line();
    } else if (size == 0) {
        close("it closed the connection");
    } else if (!is_later(errno)) {
        close(std::strerror(errno));
    }
}

void Line_socket::drop_long_line() {
    const size_t end = m_in.find('\n');
    if (m_skips && end != std::string::npos) {
        m_in.erase(0, end + 1);
        m_skips = false;
    } else if (m_skips || (end == std::string::npos && m_in.size() > LONGEST_LINE)) {
        m_in.clear();
        m_skips = true;
    }
}

std::optional<std::string> Line_socket::next_line() {
    for (size_t end = m_in.find('\n'); end != std::string::npos; end = m_in.find('\n')) {
        std::string line = m_in.substr(0, end);
        m_in.erase(0, end + 1);
        drop_long_line();
        if (line.size() <= LONGEST_LINE) {
            return line;
        }
    }
    return std::nullopt;
}

pollfd Line_socket::source() const {
    const bool sends = m_state == State::CONNECTING || !m_out.empty();
    return {m_socket, static_cast<short>(sends ? POLLIN | POLLOUT : POLLIN), 0};
}

}  // namespace frontpanel
