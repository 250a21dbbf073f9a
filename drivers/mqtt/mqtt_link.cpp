#include "mqtt_link.h"

#include <linux/sockios.h>
#include <linux/tcp.h>
#include <mqtt_protocol.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <system_error>
#include <utility>

#include <frontpanel_base/input_error.h>
#include "mosquitto_library.h"

namespace frontpanel {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds PATIENCE(3000);  // for an answer of the broker
constexpr milliseconds LAST_WORDS(400);
constexpr milliseconds CLOSELY(10);  // a message behind another one
constexpr milliseconds SLICE(100);   // between two looks at m_is_stopping
constexpr milliseconds LONGEST_WAIT(
    1000);                     // between two looks at the time of the next sign of life
constexpr int KEEP_ALIVE = 5;  // seconds, the shortest time that the library takes
constexpr int REFUSED = 128;
constexpr std::size_t TOPICS_AT_ONCE = 100;
constexpr std::size_t LARGEST_LOGIN = 4096;
constexpr std::uint32_t LARGEST_PACKET = 1048576;
// Limit for a packet that is still arriving, from a broker that was not told LARGEST_PACKET or ignores it.
constexpr std::uint64_t LARGEST_UNFINISHED = 4 * std::uint64_t{LARGEST_PACKET};
constexpr const char* TOO_LARGE = "the broker sends a message of more than 4 MiB";
constexpr int NO_PORT = -1;
constexpr const char* NO_ANSWER = "no answer from the broker";
constexpr const char* PANEL_ENDS = "the panel ends";
constexpr const char* HERE = "online";
constexpr const char* GONE = "offline";

std::string system_text(int error) {
    return std::generic_category().message(error);
}

std::string line_of(const std::string& text, std::size_t& at) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    std::string line = text.substr(at, end - at);
    at = std::min(end + 1, text.size());
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

const char* text_or_null(const std::string& text) {
    return text.empty() ? nullptr : text.c_str();
}

// A key that is protected by a password cannot be used: the panel must not ask for it on the terminal.
int no_password(char* /*buffer*/, int /*size*/, int /*is_writing*/, void* /*object*/) {
    return 0;
}

// The bytes of a connection that the library has read so far; 0 with a kernel that does not count them.
std::uint64_t taken_bytes(int connection) {
    tcp_info info{};
    socklen_t size = sizeof info;
    int unread = 0;
    if (getsockopt(connection, IPPROTO_TCP, TCP_INFO, &info, &size) != 0 ||
        ioctl(connection, SIOCINQ, &unread) != 0) {
        return 0;
    }
    const std::uint64_t received = info.tcpi_bytes_received;
    return received - std::min(received, static_cast<std::uint64_t>(unread));
}

// "OpenSSL Error[0]: error:0A000086:SSL routines::certificate verify failed" and "Error: No such host" without what a
// person does not need.
std::string trouble_of(const std::string& logged) {
    const bool is_long = logged.rfind("OpenSSL", 0) == 0;
    const std::size_t end = is_long ? logged.find_last_of(':') : logged.find(": ");
    const std::size_t begin = logged.find_first_not_of(": ", std::min(end, logged.size()));
    return begin == std::string::npos ? logged : logged.substr(begin);
}

}  // namespace

// What the library calls, with the link. Nothing is thrown through it.
struct Mqtt_link::Callbacks {
    static Mqtt_link& link(void* object) { return *static_cast<Mqtt_link*>(object); }
    template <typename Act>
    static void guarded(void* object, Act act) noexcept {
        try {
            act(link(object));
        } catch (...) {
            link(object).m_is_out_of_memory = true;
        }
    }

    static void welcomed(mosquitto* /*client*/, void* object, int code, int /*flags*/,
                         const mosquitto_property* /*properties*/) {
        link(object).m_welcome = code;
    }
    static void subscribed(mosquitto* /*client*/, void* object, int message, int count,
                           const int* granted) {
        guarded(object, [&](Mqtt_link& link) {
            const auto asked = link.m_asked.find(message);
            if (asked == link.m_asked.end()) {
                return;
            }
            for (std::size_t i = 0; i < asked->second.size(); ++i) {
                if (i >= static_cast<std::size_t>(count) || granted[i] >= REFUSED) {
                    link.m_refused.insert(asked->second[i]);
                }
            }
            link.m_asked.erase(asked);
        });
    }
    static void published(mosquitto* /*client*/, void* object, int message, int code,
                          const mosquitto_property* /*properties*/) {
        guarded(object, [&](Mqtt_link& link) { link.m_answers[message] = code; });
    }
    static void arrived(mosquitto* /*client*/, void* object, const mosquitto_message* message) {
        guarded(object, [&](Mqtt_link& link) {
            link.m_has_message = true;
            const auto* const bytes = static_cast<const char*>(message->payload);
            const auto size = static_cast<std::size_t>(std::max(message->payloadlen, 0));
            link.m_on_message(message->topic,
                              bytes == nullptr ? "" : std::string_view(bytes, size));
        });
    }
    static void logged(mosquitto* client, void* object, int level, const char* text) {
        // The library logs "Client NAME received PINGRESP" for each complete packet.
        if (level == MOSQ_LOG_DEBUG && std::strstr(text, " received ") != nullptr) {
            link(object).m_packets_end =
                taken_bytes(link(object).m_library->mosquitto_socket(client));
        }
        // The first error is the cause of the others.
        if (level == MOSQ_LOG_ERR && link(object).m_trouble.empty()) {
            guarded(object, [&](Mqtt_link& link) { link.m_trouble = trouble_of(text); });
        }
    }
};

Mqtt_link::Mqtt_link(Mqtt_settings settings, On_message on_message)
    : m_settings(std::move(settings)), m_on_message(std::move(on_message)) {}

Mqtt_link::~Mqtt_link() = default;

// ---- the connection

Driver_result Mqtt_link::open(const std::map<std::string, int>& topics) {
    Driver_result result = start();
    if (result.kind == Driver_result::DONE) {
        result = subscribe(topics);
    }
    if (result.kind != Driver_result::DONE) {
        return lost(result.reason);
    }
    if (!m_settings.status.empty()) {
        const std::string here = HERE;
        m_library->mosquitto_publish(m_client.get(), nullptr, m_settings.status.c_str(),
                                     static_cast<int>(here.size()), here.data(), 1, true);
    }
    return result;
}

// Up to the broker's welcome.
Driver_result Mqtt_link::start() {
    m_welcome.reset();
    m_asked.clear();
    m_refused.clear();
    m_answers.clear();
    m_trouble.clear();
    m_is_out_of_memory = false;
    m_packets_end = 0;
    std::string fault;
    m_library = mosquitto_library(fault);
    if (m_library == nullptr) {
        return Driver_result::away(fault);
    }
    m_client = {m_library->mosquitto_new(text_or_null(m_settings.client), true, this),
                m_library->mosquitto_destroy};
    if (!m_client) {
        return Driver_result::away(system_text(errno));
    }
    Driver_result result = connect();
    if (result.kind == Driver_result::DONE) {
        result = work(Clock::now() + PATIENCE, -1, [this] { return m_welcome.has_value(); });
    }
    if (result.kind == Driver_result::DONE && *m_welcome != 0) {
        result = Driver_result::away(welcome_text());
    }
    if (result.kind == Driver_result::AWAY && is_other_protocol()) {
        m_is_old_broker = !m_is_old_broker;
    }
    m_trouble.clear();
    return result;
}

// Whether the broker may have closed the connection because it lacks the protocol version. Not every broker gives the
// reason.
bool Mqtt_link::is_other_protocol() const {
    if (m_welcome) {
        return *m_welcome == MQTT_RC_UNSUPPORTED_PROTOCOL_VERSION ||
               *m_welcome == CONNACK_REFUSED_PROTOCOL_VERSION;
    }
    return m_is_accepted && m_trouble.empty();
}

Driver_result Mqtt_link::connect() {
    mosquitto* const client = m_client.get();
    m_library->mosquitto_connect_v5_callback_set(client, Callbacks::welcomed);
    m_library->mosquitto_subscribe_callback_set(client, Callbacks::subscribed);
    m_library->mosquitto_publish_v5_callback_set(client, Callbacks::published);
    m_library->mosquitto_message_callback_set(client, Callbacks::arrived);
    m_library->mosquitto_log_callback_set(client, Callbacks::logged);
    m_library->mosquitto_int_option(client, MOSQ_OPT_TCP_NODELAY, 1);
    if (!m_is_old_broker) {
        m_library->mosquitto_int_option(client, MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
        limit_messages();
    }
    if (!m_settings.status.empty()) {
        const std::string gone = GONE;
        m_library->mosquitto_will_set(client, m_settings.status.c_str(),
                                      static_cast<int>(gone.size()), gone.data(), 1, true);
    }
    for (const auto prepare : {&Mqtt_link::encrypt, &Mqtt_link::log_in}) {
        if (Driver_result result = (this->*prepare)(); result.kind != Driver_result::DONE) {
            return result;
        }
    }
    m_is_connecting = true;
    m_is_accepted = false;
    const int result = m_library->mosquitto_connect_async(client, m_settings.host.c_str(),
                                                          m_settings.port, KEEP_ALIVE);
    return result == MOSQ_ERR_SUCCESS ? Driver_result::done() : lost(result, errno);
}

// The broker is asked to send no larger packet. The library takes that only with the connect that waits: with a port that
// is invalid it keeps it for the one that does not.
void Mqtt_link::limit_messages() {
    mosquitto_property* properties = nullptr;
    m_library->mosquitto_property_add_int32(&properties, MQTT_PROP_MAXIMUM_PACKET_SIZE,
                                            LARGEST_PACKET);
    m_library->mosquitto_connect_bind_v5(m_client.get(), m_settings.host.c_str(), NO_PORT,
                                         KEEP_ALIVE, nullptr, properties);
    m_library->mosquitto_property_free_all(&properties);
}

Driver_result Mqtt_link::encrypt() {
    if (const std::vector<std::string> faults = m_settings.file_faults(); !faults.empty()) {
        return Driver_result::away(faults.front());
    }
    if (!m_settings.is_encrypted()) {
        return Driver_result::done();
    }
    const int result = m_library->mosquitto_tls_set(m_client.get(), m_settings.ca.c_str(), nullptr,
                                                    text_or_null(m_settings.certificate),
                                                    text_or_null(m_settings.key), no_password);
    return result == MOSQ_ERR_SUCCESS ? Driver_result::done()
                                      : Driver_result::away(m_library->mosquitto_strerror(result));
}

Driver_result Mqtt_link::log_in() {
    if (m_settings.login.empty()) {
        return Driver_result::done();
    }
    try {
        const std::string text = read_input_file(m_settings.login, LARGEST_LOGIN);
        std::size_t at = 0;
        const std::string user = line_of(text, at);
        const std::string password = line_of(text, at);
        const int result = m_library->mosquitto_username_pw_set(m_client.get(), user.c_str(),
                                                                text_or_null(password));
        return result == MOSQ_ERR_SUCCESS
                   ? Driver_result::done()
                   : Driver_result::away("\"" + m_settings.login +
                                         "\": " + m_library->mosquitto_strerror(result));
    } catch (const Input_error& error) {
        return Driver_result::away(error.what());
    }
}

Driver_result Mqtt_link::subscribe(const std::map<std::string, int>& topics) {
    std::map<int, std::vector<std::string>> by_qos;
    for (const auto& [topic, qos] : topics) {
        by_qos[qos].push_back(topic);
    }
    for (const auto& [qos, names] : by_qos) {
        for (std::size_t first = 0; first < names.size(); first += TOPICS_AT_ONCE) {
            const auto begin = names.begin() + static_cast<std::ptrdiff_t>(first);
            const auto end =
                begin + static_cast<std::ptrdiff_t>(std::min(names.size() - first, TOPICS_AT_ONCE));
            if (Driver_result result = subscribe_to({begin, end}, qos);
                result.kind != Driver_result::DONE) {
                return result;
            }
        }
    }
    return work(Clock::now() + PATIENCE, -1, [this] { return m_asked.empty(); });
}

Driver_result Mqtt_link::subscribe_to(std::vector<std::string> topics, int qos) {
    std::vector<char*> pointers;
    pointers.reserve(topics.size());
    for (std::string& topic : topics) {
        pointers.push_back(topic.data());
    }
    int message = 0;
    const int result = m_library->mosquitto_subscribe_multiple(m_client.get(), &message,
                                                               static_cast<int>(pointers.size()),
                                                               pointers.data(), qos, 0, nullptr);
    if (result != MOSQ_ERR_SUCCESS) {
        return lost(result, errno);
    }
    m_asked[message] = std::move(topics);
    return Driver_result::done();
}

void Mqtt_link::close() {
    if (!m_client) {
        return;
    }
    m_is_closing = true;
    if (!m_settings.status.empty()) {
        publish(m_settings.status, GONE, 1, true, LAST_WORDS);
    }
    if (m_client) {
        m_library->mosquitto_disconnect(m_client.get());
        work(Clock::now() + LAST_WORDS, -1,
             [this] { return !m_library->mosquitto_want_write(m_client.get()); });
    }
    lost("");
    m_is_closing = false;
}

// ---- messages

Driver_result Mqtt_link::publish(const std::string& topic, const std::string& message, int qos,
                                 bool is_retained) {
    return publish(topic, message, qos, is_retained, PATIENCE);
}

Driver_result Mqtt_link::publish(const std::string& topic, const std::string& message, int qos,
                                 bool is_retained, milliseconds patience) {
    // A connection that the broker has closed is noticed before anything is sent.
    if (Driver_result result = look(); result.kind != Driver_result::DONE) {
        return result;
    }
    int number = 0;
    m_answers.clear();
    const int sent = m_library->mosquitto_publish(m_client.get(), &number, topic.c_str(),
                                                  static_cast<int>(message.size()), message.data(),
                                                  qos, is_retained);
    if (sent == MOSQ_ERR_CONN_LOST || sent == MOSQ_ERR_ERRNO) {
        return Driver_result::timed_out(lost(sent, errno).reason);
    }
    if (sent == MOSQ_ERR_NO_CONN) {
        return lost(sent, errno);
    }
    if (sent != MOSQ_ERR_SUCCESS) {
        return Driver_result::refused(m_library->mosquitto_strerror(sent));
    }
    const Driver_result result =
        work(Clock::now() + patience, -1, [this, number] { return m_answers.count(number) > 0; });
    return result.kind == Driver_result::DONE ? answer_to(number)
                                              : Driver_result::timed_out(result.reason);
}

Driver_result Mqtt_link::answer_to(int message) const {
    const int code = m_answers.at(message);
    return code < REFUSED ? Driver_result::done()
                          : Driver_result::refused(m_library->mosquitto_reason_string(code));
}

Driver_result Mqtt_link::wait(milliseconds most, int wake) {
    if (!m_client) {
        return Driver_result::away(m_away_reason);
    }
    m_has_message = false;
    Driver_result result = work(Clock::now() + most, wake, [this] { return m_has_message; });
    if (result.kind == Driver_result::DONE && m_has_message) {
        result = work(Clock::now() + CLOSELY, wake, [] { return false; });
    }
    return result.kind == Driver_result::TIMED_OUT ? Driver_result::done() : result;
}

// Takes what is there.
Driver_result Mqtt_link::look() {
    if (!m_client) {
        return Driver_result::away(m_away_reason);
    }
    const Driver_result result = work(Clock::now(), -1, [] { return false; });
    return result.kind == Driver_result::AWAY ? result : Driver_result::done();
}

// ---- the loop

template <typename Is_done>
Driver_result Mqtt_link::work(Time end, int wake, Is_done is_done) {
    for (bool is_first = true; !is_done(); is_first = false) {
        if (m_is_stopping && !m_is_closing) {
            return Driver_result::timed_out(PANEL_ENDS);
        }
        const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
        if (!is_first && left <= milliseconds(0)) {
            return Driver_result::timed_out(NO_ANSWER);
        }
        bool is_woken = false;
        const int result = work_once(
            std::clamp(left, milliseconds(0), wake < 0 ? SLICE : LONGEST_WAIT), wake, is_woken);
        if (result != MOSQ_ERR_SUCCESS) {
            return lost(result, errno);
        }
        if (m_is_out_of_memory) {
            return lost(MOSQ_ERR_NOMEM, errno);
        }
        if (is_woken) {
            break;
        }
    }
    return Driver_result::done();
}

int Mqtt_link::work_once(milliseconds most, int wake, bool& is_woken) {
    mosquitto* const client = m_client.get();
    const short writes = m_library->mosquitto_want_write(client) ? POLLOUT : 0;
    pollfd sources[] = {
        {m_library->mosquitto_socket(client), static_cast<short>(POLLIN | writes), 0},
        {wake, POLLIN, 0}};
    poll(sources, 2, static_cast<int>(most.count()));
    is_woken = sources[1].revents != 0;
    int result = MOSQ_ERR_SUCCESS;
    if (sources[0].revents != 0 && std::exchange(m_is_connecting, false)) {
        result = connection_error();
        m_is_accepted = result == MOSQ_ERR_SUCCESS;
    }
    if (result == MOSQ_ERR_SUCCESS && (sources[0].revents & ~POLLOUT) != 0) {
        result = m_library->mosquitto_loop_read(client, 1);
        if (result == MOSQ_ERR_SUCCESS && is_packet_too_large()) {
            m_trouble = TOO_LARGE;
            result = MOSQ_ERR_OVERSIZE_PACKET;
        }
    }
    if (result == MOSQ_ERR_SUCCESS && (sources[0].revents & POLLOUT) != 0) {
        result = m_library->mosquitto_loop_write(client, 1);
    }
    return result == MOSQ_ERR_SUCCESS ? m_library->mosquitto_loop_misc(client) : result;
}

// The library reads packets of any size. It allocates a packet as a whole, but memory is only used as the packet
// arrives.
bool Mqtt_link::is_packet_too_large() const {
    return taken_bytes(m_library->mosquitto_socket(m_client.get())) >
           m_packets_end + LARGEST_UNFINISHED;
}

// Of a connection that is under way, for which the library has no reason.
int Mqtt_link::connection_error() {
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(m_library->mosquitto_socket(m_client.get()), SOL_SOCKET, SO_ERROR, &error, &size);
    errno = error;
    return error == 0 ? MOSQ_ERR_SUCCESS : MOSQ_ERR_ERRNO;
}

Driver_result Mqtt_link::lost(int result, int error) {
    return lost(reason_of(result, error));
}

Driver_result Mqtt_link::lost(const std::string& reason) {
    m_away_reason = reason;
    m_client.reset();
    return Driver_result::away(reason);
}

std::string Mqtt_link::welcome_text() const {
    return m_is_old_broker ? m_library->mosquitto_connack_string(*m_welcome)
                           : m_library->mosquitto_reason_string(*m_welcome);
}

std::string Mqtt_link::reason_of(int result, int error) const {
    if (m_welcome.value_or(0) != 0) {
        return welcome_text();
    }
    if (!m_trouble.empty()) {
        return m_trouble;
    }
    switch (result) {
        case MOSQ_ERR_ERRNO:
            return system_text(error);
        case MOSQ_ERR_CONN_LOST:
            return "the broker has closed the connection";
        case MOSQ_ERR_KEEPALIVE:
            return NO_ANSWER;
        default:
            return m_library->mosquitto_strerror(result);
    }
}

}  // namespace frontpanel
