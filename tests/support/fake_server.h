// A server on loopback for one client, which says only what the test says.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_FAKE_SERVER_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_FAKE_SERVER_H

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

namespace frontpanel {

constexpr int LONG_TIME =
    20000;  // milliseconds for what arrives at once unless something is broken

inline bool is_ready(int descriptor, short events) {
    pollfd source{descriptor, events, 0};
    return poll(&source, 1, LONG_TIME) == 1;
}

class Fake_server {
public:
    Fake_server() { listen_on(0); }
    ~Fake_server() {
        hang_up();
        stop_listening();
    }

    uint16_t port() const { return m_port; }
    void stop_listening() {
        if (m_listener >= 0) {
            close(m_listener);
        }
        m_listener = -1;
    }
    void listen_again() { listen_on(m_port); }

    void accept_client() {
        ASSERT_TRUE(is_ready(m_listener, POLLIN));
        m_client = accept(m_listener, nullptr, nullptr);
        ASSERT_GE(m_client, 0);
    }
    void hang_up() {
        if (m_client >= 0) {
            close(m_client);
        }
        m_client = -1;
    }
    void say(const std::string& text) {
        ASSERT_EQ(send(m_client, text.data(), text.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(text.size()));
    }
    // As much as the connection takes without waiting.
    size_t flood(const std::string& text) {
        const ssize_t size = send(m_client, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        return size < 0 ? 0 : static_cast<size_t>(size);
    }
    // The lines that arrived, up to and with `last`.
    std::vector<std::string> lines_to(const std::string& last) {
        std::vector<std::string> lines;
        while (lines.empty() || lines.back() != last) {
            const size_t end = m_in.find('\n');
            if (end != std::string::npos) {
                lines.push_back(m_in.substr(0, end));
                m_in.erase(0, end + 1);
            } else if (!receive()) {
                lines.emplace_back("(no more)");
                return lines;
            }
        }
        return lines;
    }
    // Waits for bytes of the client, whatever they are.
    std::string take_bytes() {
        char bytes[1000];
        EXPECT_TRUE(is_ready(m_client, POLLIN));
        const ssize_t size = recv(m_client, bytes, sizeof bytes, 0);
        return {bytes, size > 0 ? static_cast<size_t>(size) : 0};
    }
    // Whether the client has sent nothing that was not asked for yet.
    bool is_silent() {
        pollfd source{m_client, POLLIN, 0};
        return m_in.empty() && poll(&source, 1, 0) == 0;
    }

private:
    void listen_on(uint16_t port) {
        m_listener = socket(AF_INET, SOCK_STREAM, 0);
        const int on = 1;
        setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port);
        socklen_t size = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        ASSERT_EQ(bind(m_listener, any, size), 0);
        ASSERT_EQ(listen(m_listener, 1), 0);
        ASSERT_EQ(getsockname(m_listener, any, &size), 0);
        m_port = ntohs(address.sin_port);
    }
    bool receive() {
        char bytes[4096];
        if (!is_ready(m_client, POLLIN)) {
            return false;
        }
        const ssize_t size = recv(m_client, bytes, sizeof bytes, 0);
        m_in.append(bytes, size > 0 ? static_cast<size_t>(size) : 0);
        return size > 0;
    }

    int m_listener = -1;
    int m_client = -1;
    uint16_t m_port = 0;
    std::string m_in;
};

}  // namespace frontpanel

#endif
