// A controller in the hands of a test, on libmodbus: over TCP on a free port of loopback, or on a serial line. It
// records requests, and answers late, by halves, with exceptions or not at all as the test says.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_MODBUS_SERVER_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_MODBUS_SERVER_H

#include <arpa/inet.h>
#include <modbus.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <frontpanel_base/descriptor.h>

namespace support {

// How a request is answered.
struct Modbus_turn {
    enum Kind {
        WELL,
        SILENT,
        LATE,     // when the test says so
        HALF,     // the beginning of the answer, and no more
        GARBLED,  // a damaged check sum, or the number of another transaction
        CUT,      // the connection ends
        EXCEPTION
    };
    Kind kind = WELL;
    unsigned code = 0;  // of an exception
};

class Modbus_server {
public:
    static constexpr int COUNT = 3000;  // of each table

    // TCP.
    explicit Modbus_server(int family = AF_INET)
        : m_family(family), m_context(modbus_new_tcp("127.0.0.1", 0)) {
        start();
    }
    // RTU.
    explicit Modbus_server(const std::string& path)
        : m_is_serial(true), m_context(modbus_new_rtu(path.c_str(), 19200, 'E', 8, 1)) {
        if (!m_context || modbus_connect(m_context.get()) != 0) {
            throw std::runtime_error(path + " is no serial line");
        }
        modbus_set_slave(m_context.get(), 1);
        start();
    }
    ~Modbus_server() { stop(); }
    Modbus_server(const Modbus_server&) = delete;
    Modbus_server& operator=(const Modbus_server&) = delete;

    std::uint16_t port() const { return m_port; }
    // Goes away with all connections; comes back on the same port.
    void stop() {
        if (m_thread.joinable()) {
            raise();
            m_thread.join();
        }
        m_client.reset();
        m_listener.reset();
    }
    void start() {
        std::uint64_t raised = 0;
        (void)!read(m_wake.number(), &raised, sizeof raised);
        if (!m_is_serial) {
            listen_again();
        }
        m_thread = std::thread([this] { run(); });
    }

    // ---- what it holds
    void hold(int address, std::vector<std::uint16_t> words) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::copy(words.begin(), words.end(), m_mapping->tab_registers + address);
    }
    void hold_input(int address, std::uint16_t word) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_mapping->tab_input_registers[address] = word;
    }
    void hold_coil(int address, bool is_on) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_mapping->tab_bits[address] = is_on ? 1 : 0;
    }
    void hold_discrete(int address, bool is_on) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_mapping->tab_input_bits[address] = is_on ? 1 : 0;
    }
    std::uint16_t held(int address) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_mapping->tab_registers[address];
    }
    bool held_coil(int address) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_mapping->tab_bits[address] != 0;
    }

    // ---- how it answers
    // The next requests, one each; further ones well.
    void answer(std::vector<Modbus_turn> turns) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_turns.assign(turns.begin(), turns.end());
    }
    // Requests that touch the address are answered with exception 2.
    void have_no(int address) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_missing.insert(address);
    }
    // Sends the answer that is late, and returns when it is sent.
    void send_late_answer() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_sends_late = true;
        raise();
        m_done.wait_for(lock, std::chrono::seconds(20), [this] { return !m_sends_late; });
    }
    // Waits until there are `count` requests that nobody has taken.
    bool wait_for_requests(std::size_t count) {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_done.wait_for(lock, std::chrono::seconds(20),
                               [&] { return m_requests.size() >= count; });
    }
    // Waits until the client's connection is gone.
    bool wait_for_hang_up() {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_done.wait_for(lock, std::chrono::seconds(20), [this] { return !m_has_client; });
    }
    // Ends the connection between two requests; returns when it is ended.
    void hang_up() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_done.wait_for(lock, std::chrono::seconds(20), [this] { return m_has_client; });
        m_hangs_up = true;
        raise();
        m_done.wait_for(lock, std::chrono::seconds(20), [this] { return !m_hangs_up; });
    }

    // Each as "unit 1: 3 100+2", function, first address and count, or "6 100=5" for one value.
    std::vector<std::string> take_requests() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return std::exchange(m_requests, {});
    }
    int connection_count() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_connections;
    }

private:
    struct Freer {
        void operator()(modbus_t* context) const { modbus_free(context); }
        void operator()(modbus_mapping_t* mapping) const { modbus_mapping_free(mapping); }
    };
    using Request = std::vector<std::uint8_t>;

    void raise() {
        const std::uint64_t one = 1;
        (void)!write(m_wake.number(), &one, sizeof one);
    }
    void listen_again() {
        m_listener = frontpanel::Descriptor(socket(m_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const int on = 1;
        setsockopt(m_listener.number(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in four{};
        four.sin_family = AF_INET;
        four.sin_port = htons(m_port);
        four.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        sockaddr_in6 six{};
        six.sin6_family = AF_INET6;
        six.sin6_port = htons(m_port);
        six.sin6_addr = in6addr_loopback;
        m_family == AF_INET ? listen_on(four) : listen_on(six);
    }
    // The port is at the same place in both kinds of address.
    template <typename Address>
    void listen_on(Address address) {
        auto* const where = reinterpret_cast<sockaddr*>(&address);
        socklen_t size = sizeof address;
        if (bind(m_listener.number(), where, size) != 0 || listen(m_listener.number(), 5) != 0 ||
            getsockname(m_listener.number(), where, &size) != 0) {
            throw std::runtime_error("no port to listen on");
        }
        m_port = ntohs(reinterpret_cast<sockaddr_in*>(where)->sin_port);
    }

    int line() const {
        return m_is_serial ? modbus_get_socket(m_context.get()) : m_client.number();
    }
    void run() {
        for (;;) {
            pollfd sources[] = {{m_wake.number(), POLLIN, 0},
                                {line(), POLLIN, 0},
                                {m_listener.number(), POLLIN, 0}};
            poll(sources, 3, -1);
            if (sources[0].revents != 0 && !obey()) {
                return;
            }
            if (sources[2].revents != 0) {
                accept_client();
            } else if (sources[1].revents != 0) {
                serve();
            }
        }
    }
    // False when it shall stop.
    bool obey() {
        std::uint64_t raised = 0;
        (void)!read(m_wake.number(), &raised, sizeof raised);
        const std::lock_guard<std::mutex> lock(m_mutex);
        const bool goes_on = m_sends_late || m_hangs_up;
        if (std::exchange(m_sends_late, false)) {
            modbus_reply(m_context.get(), m_late.data(), static_cast<int>(m_late.size()),
                         m_mapping.get());
        }
        if (std::exchange(m_hangs_up, false)) {
            drop_client();
        }
        m_done.notify_all();
        return goes_on;
    }
    void accept_client() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_client = frontpanel::Descriptor(accept(m_listener.number(), nullptr, nullptr));
        m_has_client = m_client.is_open();
        m_connections += m_has_client ? 1 : 0;
        modbus_set_socket(m_context.get(), m_client.number());
        m_done.notify_all();
    }
    void drop_client() {
        m_client.reset();
        m_has_client = false;
        m_done.notify_all();
    }

    void serve() {
        Request request(MODBUS_MAX_ADU_LENGTH);
        const int size = modbus_receive(m_context.get(), request.data());
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (size < 0 && !m_is_serial) {
            drop_client();
        }
        if (size > 0) {
            request.resize(static_cast<std::size_t>(size));
            record(request);
            reply(request, turn_for(request));
        }
    }
    static int number(const Request& request, std::size_t at) {
        return request[at] << 8 | request[at + 1];
    }
    std::size_t header() const {
        return static_cast<std::size_t>(modbus_get_header_length(m_context.get()));
    }
    int first(const Request& request) const { return number(request, header() + 1); }
    int value(const Request& request) const { return number(request, header() + 3); }
    bool is_single(const Request& request) const {
        return request[header()] == 5 || request[header()] == 6;
    }
    void record(const Request& request) {
        m_requests.push_back("unit " + std::to_string(request[header() - 1]) + ": " +
                             std::to_string(request[header()]) + " " +
                             std::to_string(first(request)) + (is_single(request) ? "=" : "+") +
                             std::to_string(value(request)));
        m_done.notify_all();
    }
    Modbus_turn turn_for(const Request& request) {
        const auto missing = m_missing.lower_bound(first(request));
        const int end = first(request) + (is_single(request) ? 1 : value(request));
        if (missing != m_missing.end() && *missing < end) {
            return {Modbus_turn::EXCEPTION, MODBUS_EXCEPTION_ILLEGAL_DATA_ADDRESS};
        }
        if (!m_is_serial && request[header() - 1] != 1) {
            return {Modbus_turn::EXCEPTION, MODBUS_EXCEPTION_GATEWAY_TARGET};
        }
        if (m_turns.empty()) {
            return {};
        }
        const Modbus_turn turn = m_turns.front();
        m_turns.pop_front();
        return turn;
    }
    void reply(const Request& request, Modbus_turn turn) {
        switch (turn.kind) {
            case Modbus_turn::WELL:
                reply_well(request);
                return;
            case Modbus_turn::SILENT:
                return;
            case Modbus_turn::LATE:
                m_late = request;
                return;
            case Modbus_turn::HALF:
                reply_half(request);
                return;
            case Modbus_turn::GARBLED:
                reply_garbled(request);
                return;
            case Modbus_turn::CUT:
                drop_client();
                return;
            case Modbus_turn::EXCEPTION:
                if (m_is_serial || turn.code < MODBUS_EXCEPTION_MAX) {
                    modbus_reply_exception(m_context.get(), request.data(), turn.code);
                } else {
                    reply_unknown_exception(request, turn.code);
                }
        }
    }
    void reply_well(const Request& request) {
        modbus_reply(m_context.get(), request.data(), static_cast<int>(request.size()),
                     m_mapping.get());
    }
    // Of a read of one register: all but its last byte.
    void reply_half(const Request& request) {
        Request bytes(request.begin(), request.begin() + static_cast<std::ptrdiff_t>(header()) + 1);
        if (!m_is_serial) {
            bytes[5] = 5;
        }
        bytes.push_back(2);
        bytes.push_back(0);
        (void)!write(line(), bytes.data(), bytes.size());
    }
    // One that libmodbus does not send.
    void reply_unknown_exception(const Request& request, unsigned code) {
        Request bytes(request.begin(), request.begin() + static_cast<std::ptrdiff_t>(header()) + 1);
        bytes[5] = 3;
        bytes.back() |= 0x80;
        bytes.push_back(static_cast<std::uint8_t>(code));
        (void)!write(line(), bytes.data(), bytes.size());
    }
    void reply_garbled(Request request) {
        if (m_is_serial) {
            const Request bytes{request[0], request[1], 2, 0, 7, 0, 0};
            (void)!write(line(), bytes.data(), bytes.size());
            return;
        }
        request[0] ^= 0x40;
        reply_well(request);
    }

    bool m_is_serial = false;
    int m_family = AF_INET;
    std::unique_ptr<modbus_t, Freer> m_context;
    std::unique_ptr<modbus_mapping_t, Freer> m_mapping{
        modbus_mapping_new(COUNT, COUNT, COUNT, COUNT)};
    std::uint16_t m_port = 0;
    frontpanel::Descriptor m_listener;
    frontpanel::Descriptor m_client;
    frontpanel::Descriptor m_wake{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::thread m_thread;

    std::mutex m_mutex;
    std::condition_variable m_done;
    std::deque<Modbus_turn> m_turns;
    std::set<int> m_missing;
    Request m_late;
    bool m_sends_late = false;
    bool m_hangs_up = false;
    bool m_has_client = false;
    int m_connections = 0;
    std::vector<std::string> m_requests;
};

}  // namespace support

#endif
