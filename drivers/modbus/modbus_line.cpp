#include "modbus_line.h"

#include <arpa/inet.h>
#include <modbus.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace frontpanel {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds RETRY_SPAN(2000);  // no try begins later
constexpr milliseconds BUSY_PAUSE(50);
constexpr int DATA_BITS = 8;
constexpr int CHARACTER_BITS = 11;
constexpr int MILLISECONDS = 1000;
constexpr const char* PANEL_ENDS = "the panel ends";

constexpr std::array<const char*, MODBUS_EXCEPTION_MAX> EXCEPTIONS{
    nullptr,
    "the controller does not have this function",
    "the controller has no such address",
    "the controller rejects this value",
    "the controller reports a failure",
    "the controller has accepted it and is still at it",
    "the controller is busy",
    "the controller cannot do this now",
    "the controller reports a memory error",
    nullptr,
    "the gateway has no path to the unit",
    "the unit behind the gateway does not answer"};

std::string system_text(int error) {
    return std::generic_category().message(error);
}

struct Address {
    sockaddr_storage storage{};
    socklen_t size = 0;
};

// Requires: a literal address.
Address address_of(const std::string& host, std::uint16_t port) {
    Address address;
    sockaddr_in four{};
    if (inet_pton(AF_INET, host.c_str(), &four.sin_addr) == 1) {
        four.sin_family = AF_INET;
        four.sin_port = htons(port);
        std::memcpy(&address.storage, &four, sizeof four);
        address.size = sizeof four;
        return address;
    }
    sockaddr_in6 six{};
    inet_pton(AF_INET6, host.c_str(), &six.sin6_addr);
    six.sin6_family = AF_INET6;
    six.sin6_port = htons(port);
    std::memcpy(&address.storage, &six, sizeof six);
    address.size = sizeof six;
    return address;
}

// Waits for a connection that is under way, or until `stop` is readable. 0, or the error.
int connection_error(int socket, int stop, milliseconds timeout) {
    std::array<pollfd, 2> sources{{{socket, POLLOUT, 0}, {stop, POLLIN, 0}}};
    const int ready = poll(sources.data(), sources.size(), static_cast<int>(timeout.count()));
    if (ready < 0) {
        return errno;
    }
    if (sources[0].revents == 0) {
        return ready == 0 ? ETIMEDOUT : ECANCELED;
    }
    int error = 0;
    socklen_t size = sizeof error;
    return getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? error : errno;
}

// A connected socket, or `error`.
Descriptor connected_socket(const Modbus_settings& settings, int stop, int& error) {
    const Address address = address_of(settings.host, settings.port);
    Descriptor socket(
        ::socket(address.storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!socket.is_open()) {
        error = errno;
        return socket;
    }
    const int on = 1;
    setsockopt(socket.number(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    const auto* const where = reinterpret_cast<const sockaddr*>(&address.storage);
    error = 0;
    if (::connect(socket.number(), where, address.size) != 0) {
        error = errno == EINPROGRESS ? connection_error(socket.number(), stop, settings.timeout)
                                     : errno;
    }
    return socket;
}

int read_bits(modbus_t* context, const Register_range& range, Words& words) {
    std::vector<std::uint8_t> bits(words.size());
    const auto read =
        range.table == Register_table::COIL ? modbus_read_bits : modbus_read_input_bits;
    const int count = read(context, range.first, range.count, bits.data());
    std::copy(bits.begin(), bits.end(), words.begin());
    return count;
}

int read_words(modbus_t* context, const Register_range& range, Words& words) {
    if (range.is_bits()) {
        return read_bits(context, range, words);
    }
    const auto read = range.table == Register_table::HOLDING ? modbus_read_registers
                                                             : modbus_read_input_registers;
    return read(context, range.first, range.count, words.data());
}

int write_words(modbus_t* context, const Register_range& range, const Words& words) {
    if (range.is_bits()) {
        return modbus_write_bit(context, range.first, words.front());
    }
    return range.count == 1
               ? modbus_write_register(context, range.first, words.front())
               : modbus_write_registers(context, range.first, range.count, words.data());
}

// Bytes of request and answer together, at most.
int bytes_of(const Register_range& range) {
    constexpr int FRAMES = 16;
    constexpr int BYTE_BITS = 8;
    return FRAMES + (range.is_bits() ? range.count / BYTE_BITS + 1 : 2 * range.count);
}

}  // namespace

// How a request ended.
struct Modbus_line::Outcome {
    enum Kind { DONE, EXCEPTION, SILENT, GARBLED, BROKEN };
    Kind kind = DONE;
    int code = 0;  // of an exception, or of the system's error
    int unit = 0;

    static Outcome of(int result, int unit) {
        if (result >= 0) {
            return {DONE, 0, unit};
        }
        const int error = errno;
        if (error >= MODBUS_ENOBASE && error < EMBBADCRC) {
            return {EXCEPTION, error - MODBUS_ENOBASE, unit};
        }
        if (error == EMBBADEXC || error == EMBUNKEXC) {
            return {EXCEPTION, 0, unit};
        }
        if (error > MODBUS_ENOBASE) {
            return {GARBLED, 0, unit};
        }
        return {error == ETIMEDOUT ? SILENT : BROKEN, error, unit};
    }

    bool is_busy() const {
        return kind == EXCEPTION && code == MODBUS_EXCEPTION_SLAVE_OR_SERVER_BUSY;
    }
    bool is_bad_address() const {
        return kind == EXCEPTION && (code == MODBUS_EXCEPTION_ILLEGAL_DATA_ADDRESS ||
                                     code == MODBUS_EXCEPTION_ILLEGAL_DATA_VALUE);
    }
    // A gateway reports a unit that is off by an exception.
    bool is_no_answer() const {
        return kind == SILENT || kind == GARBLED ||
               (kind == EXCEPTION && code == MODBUS_EXCEPTION_GATEWAY_TARGET);
    }
    // The request may have had its effect, or have it later.
    bool is_unknown() const {
        return kind != DONE &&
               (is_no_answer() || kind == BROKEN || code == MODBUS_EXCEPTION_ACKNOWLEDGE);
    }

    std::string text() const {
        switch (kind) {
            case DONE:
                return "";
            case SILENT:
                return "no answer from unit " + std::to_string(unit);
            case GARBLED:
                return "damaged answer from unit " + std::to_string(unit);
            case BROKEN:
                return system_text(code);
            case EXCEPTION:
                break;
        }
        const char* const known = EXCEPTIONS[static_cast<std::size_t>(code)];
        return (known != nullptr ? std::string(known) : "the controller refuses") +
               (code == 0 ? " (unknown exception)" : " (exception " + std::to_string(code) + ")");
    }
};

void Modbus_line::Closer::operator()(modbus_t* context) const {
    modbus_close(context);
    modbus_free(context);
}

Modbus_line::Modbus_line(Modbus_settings settings)
    : m_settings(std::move(settings)), m_stop(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!m_stop.is_open()) {
        throw std::system_error(errno, std::generic_category(), "cannot create a descriptor");
    }
}

Modbus_line::~Modbus_line() = default;

// The library waits for an answer by itself: only the end of the connection ends that.
void Modbus_line::stop() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(m_stop.number(), &one, sizeof one);
    const std::lock_guard<std::mutex> lock(m_context_mutex);
    if (m_context && !m_settings.is_serial()) {
        shutdown(modbus_get_socket(m_context.get()), SHUT_RDWR);
    }
}

bool Modbus_line::is_stopped() const {
    pollfd source{m_stop.number(), POLLIN, 0};
    return poll(&source, 1, 0) > 0;
}

void Modbus_line::pause(milliseconds time) const {
    pollfd source{m_stop.number(), POLLIN, 0};
    poll(&source, 1, static_cast<int>(time.count()));
}

void Modbus_line::set_context(modbus_t* context) {
    const std::lock_guard<std::mutex> lock(m_context_mutex);
    m_context.reset(context);
}

Driver_result Modbus_line::open() {
    close();
    m_is_disturbed = false;
    Driver_result result = m_settings.is_serial() ? open_serial() : open_tcp();
    if (is_stopped()) {
        result = Driver_result::away(PANEL_ENDS);
    }
    if (result.kind != Driver_result::DONE) {
        close();
        return result;
    }
    // The library puts descriptors into sets of a fixed size.
    if (modbus_get_socket(m_context.get()) >= FD_SETSIZE) {
        close();
        return Driver_result::away("too many files are open");
    }
    modbus_set_byte_timeout(m_context.get(), 0, 0);  // the answer as a whole has a time limit
    return result;
}

Driver_result Modbus_line::open_tcp() {
    int error = 0;
    Descriptor socket = connected_socket(m_settings, m_stop.number(), error);
    if (error != 0) {
        return Driver_result::away(system_text(error));
    }
    modbus_t* const context = modbus_new_tcp("127.0.0.1", m_settings.port);
    if (context == nullptr) {
        return Driver_result::away(system_text(errno));
    }
    // The library would wait for a connection with a descriptor set of a fixed size, and looks names up.
    modbus_set_socket(context, socket.release());
    set_context(context);
    return Driver_result::done();
}

Driver_result Modbus_line::open_serial() {
    set_context(modbus_new_rtu(m_settings.device.c_str(), m_settings.baud, m_settings.parity,
                               DATA_BITS, m_settings.stop_bits));
    if (!m_context || modbus_connect(m_context.get()) != 0) {
        return Driver_result::away(system_text(errno));
    }
    return Driver_result::done();
}

void Modbus_line::close() {
    set_context(nullptr);
}

bool Modbus_line::is_hung_up() const {
    const int socket = modbus_get_socket(m_context.get());
    std::array<char, MODBUS_TCP_MAX_ADU_LENGTH> stray{};
    const ssize_t size = recv(socket, stray.data(), stray.size(), MSG_DONTWAIT);
    // Stray bytes would be mistaken for an answer: a new connection begins without them.
    return size >= 0 || errno != EAGAIN;
}

bool Modbus_line::is_quiet() {
    const int line = modbus_get_socket(m_context.get());
    const auto end = Clock::now() + 3 * m_settings.timeout;
    std::array<pollfd, 2> sources{{{line, POLLIN, 0}, {m_stop.number(), POLLIN, 0}}};
    while (poll(sources.data(), sources.size(), static_cast<int>(m_settings.timeout.count())) > 0) {
        if (sources[1].revents != 0) {
            return false;
        }
        std::array<char, MODBUS_RTU_MAX_ADU_LENGTH> stray{};
        if (Clock::now() > end || ::read(line, stray.data(), stray.size()) <= 0) {
            return false;
        }
    }
    return true;
}

// Makes sure that what arrives next is an answer to what is sent next.
Driver_result Modbus_line::make_ready() {
    if (is_stopped()) {
        return Driver_result::away(PANEL_ENDS);
    }
    if (!m_context) {
        return open();
    }
    if (!m_settings.is_serial()) {
        return is_hung_up() ? open() : Driver_result::done();
    }
    if (m_is_disturbed && !is_quiet()) {
        return is_stopped() ? Driver_result::away(PANEL_ENDS) : open();
    }
    m_is_disturbed = false;
    // A pause of three and a half characters separates frames.
    constexpr int PAUSE_BITS = 39;
    pause(milliseconds(PAUSE_BITS * MILLISECONDS / m_settings.baud + 1));
    modbus_flush(m_context.get());
    return Driver_result::done();
}

void Modbus_line::set_answer_time(const Register_range& range) {
    milliseconds time = m_settings.timeout;
    if (m_settings.is_serial()) {
        time += milliseconds(bytes_of(range) * CHARACTER_BITS * MILLISECONDS / m_settings.baud);
    }
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    const std::chrono::microseconds rest = time - seconds;
    modbus_set_response_timeout(m_context.get(), static_cast<std::uint32_t>(seconds.count()),
                                static_cast<std::uint32_t>(rest.count()));
}

// Requires: ready. An answer that is late must not be taken for that of the next request.
template <typename Request>
Modbus_line::Outcome Modbus_line::ask(const Register_range& range, Request request) {
    modbus_set_slave(m_context.get(), range.unit);
    set_answer_time(range);
    const Outcome outcome = Outcome::of(request(m_context.get()), range.unit);
    const bool is_lost = outcome.kind == Outcome::SILENT || outcome.kind == Outcome::GARBLED;
    if (outcome.kind == Outcome::BROKEN || (is_lost && !m_settings.is_serial())) {
        close();
    }
    m_is_disturbed = is_lost;
    return outcome;
}

Modbus_line::Answer Modbus_line::read(const Register_range& range, Words& words, int retries) {
    const auto end = Clock::now() + RETRY_SPAN;
    words.assign(static_cast<std::size_t>(range.count), 0);
    for (int tries = 0;; ++tries) {
        if (const Driver_result ready = make_ready(); ready.kind != Driver_result::DONE) {
            return {ready};
        }
        const Outcome outcome =
            ask(range, [&](modbus_t* context) { return read_words(context, range, words); });
        if (outcome.kind == Outcome::BROKEN) {
            return {Driver_result::away(outcome.text())};
        }
        const bool may_help = outcome.is_busy() || outcome.is_no_answer();
        if (!may_help || tries >= retries || Clock::now() >= end) {
            const auto kind = outcome.kind == Outcome::DONE ? Driver_result::DONE
                              : outcome.is_no_answer()      ? Driver_result::TIMED_OUT
                                                            : Driver_result::REFUSED;
            return {{kind, outcome.text()}, outcome.is_bad_address()};
        }
        if (outcome.is_busy()) {
            pause(BUSY_PAUSE);
        }
    }
}

Driver_result Modbus_line::write(const Register_range& range, const Words& words) {
    const auto end = Clock::now() + RETRY_SPAN;
    for (int tries = 0;; ++tries) {
        if (Driver_result ready = make_ready(); ready.kind != Driver_result::DONE) {
            return ready;
        }
        const Outcome outcome =
            ask(range, [&](modbus_t* context) { return write_words(context, range, words); });
        if (outcome.is_busy() && tries < m_settings.retries && Clock::now() < end) {
            pause(BUSY_PAUSE);
            continue;
        }
        if (outcome.kind == Outcome::DONE) {
            return Driver_result::done();
        }
        return outcome.is_unknown() ? Driver_result::timed_out(outcome.text())
                                    : Driver_result::refused(outcome.text());
    }
}

}  // namespace frontpanel
