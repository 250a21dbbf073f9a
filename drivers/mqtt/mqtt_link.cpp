#include "mqtt_link.h"

#include <mosquitto.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds PATIENCE(3000);  // for an answer of the broker
constexpr milliseconds LAST_WORDS(500);
constexpr milliseconds SLICE(100);  // between two looks at what `stop` says
constexpr milliseconds LONGEST_WAIT(
    1000);                      // between two looks at the time of the next sign of life
constexpr int KEEP_ALIVE = 15;  // seconds
constexpr int REFUSED = 128;
constexpr std::size_t TOPICS_AT_ONCE = 100;
constexpr std::size_t LARGEST_LOGIN = 4096;
constexpr const char* NO_ANSWER = "no answer from the broker";
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

}  // namespace

// What the library calls, with the link.
struct Mqtt_link::Callbacks {
    static Mqtt_link& link(void* object) { return *static_cast<Mqtt_link*>(object); }

    static void welcomed(mosquitto* /*client*/, void* object, int code) {
        link(object).m_welcome = code;
    }
    static void subscribed(mosquitto* /*client*/, void* object, int message, int count,
                           const int* granted) {
        const auto asked = link(object).m_asked.find(message);
        if (asked == link(object).m_asked.end()) {
            return;
        }
        for (std::size_t i = 0; i < asked->second.size(); ++i) {
            if (i >= static_cast<std::size_t>(count) || granted[i] >= REFUSED) {
                link(object).m_refused.insert(asked->second[i]);
            }
        }
        link(object).m_asked.erase(asked);
    }
    static void published(mosquitto* /*client*/, void* object, int message) {
        link(object).m_published = message;
    }
    static void arrived(mosquitto* /*client*/, void* object, const mosquitto_message* message) {
        link(object).m_has_message = true;
        const auto* const bytes = static_cast<const char*>(message->payload);
        const auto size = static_cast<std::size_t>(std::max(message->payloadlen, 0));
        link(object).m_on_message(message->topic,
                                  bytes == nullptr ? "" : std::string_view(bytes, size));
    }
    static void logged(mosquitto* /*client*/, void* object, int level, const char* text) {
        if (level == MOSQ_LOG_ERR) {
            link(object).m_trouble = text;
        }
    }
};

void Mqtt_link::Destroyer::operator()(mosquitto* client) const {
    mosquitto_destroy(client);
}

Mqtt_link::Mqtt_link(Mqtt_settings settings, On_message on_message)
    : m_settings(std::move(settings)), m_on_message(std::move(on_message)) {
    static const int STARTED = mosquitto_lib_init();
    (void)STARTED;
}

Mqtt_link::~Mqtt_link() = default;

// ---- the connection

Driver_result Mqtt_link::open(const std::map<std::string, int>& topics) {
    Driver_result result = start();
    if (result.kind == Driver_result::DONE) {
        result = work(Clock::now() + PATIENCE, -1, [this] { return m_welcome.has_value(); });
    }
    if (result.kind == Driver_result::DONE && *m_welcome != 0) {
        result = Driver_result::away(mosquitto_connack_string(*m_welcome));
    }
    if (result.kind == Driver_result::DONE) {
        result = subscribe(topics);
    }
    if (result.kind != Driver_result::DONE) {
        m_client.reset();
        return Driver_result::away(result.reason);
    }
    if (!m_settings.status.empty()) {
        mosquitto_publish(m_client.get(), nullptr, m_settings.status.c_str(),
                          static_cast<int>(std::char_traits<char>::length(HERE)), HERE, 1, true);
    }
    return result;
}

Driver_result Mqtt_link::start() {
    m_client.reset(mosquitto_new(text_or_null(m_settings.client), true, this));
    m_welcome.reset();
    m_asked.clear();
    m_refused.clear();
    m_trouble.clear();
    if (!m_client) {
        return Driver_result::away(system_text(errno));
    }
    mosquitto* const client = m_client.get();
    mosquitto_connect_callback_set(client, Callbacks::welcomed);
    mosquitto_subscribe_callback_set(client, Callbacks::subscribed);
    mosquitto_publish_callback_set(client, Callbacks::published);
    mosquitto_message_callback_set(client, Callbacks::arrived);
    mosquitto_log_callback_set(client, Callbacks::logged);
    if (!m_settings.status.empty()) {
        mosquitto_will_set(client, m_settings.status.c_str(),
                           static_cast<int>(std::char_traits<char>::length(GONE)), GONE, 1, true);
    }
    if (Driver_result result = log_in(); result.kind != Driver_result::DONE) {
        return result;
    }
    m_is_connecting = true;
    const int result =
        mosquitto_connect_async(client, m_settings.host.c_str(), m_settings.port, KEEP_ALIVE);
    return result == MOSQ_ERR_SUCCESS ? Driver_result::done() : lost(result);
}

Driver_result Mqtt_link::log_in() {
    if (m_settings.is_encrypted()) {
        const int result = mosquitto_tls_set(m_client.get(), m_settings.ca.c_str(), nullptr,
                                             text_or_null(m_settings.certificate),
                                             text_or_null(m_settings.key), nullptr);
        if (result != MOSQ_ERR_SUCCESS) {
            return Driver_result::away("a file for the encryption cannot be used");
        }
    }
    if (m_settings.login.empty()) {
        return Driver_result::done();
    }
    try {
        const std::string text = read_input_file(m_settings.login, LARGEST_LOGIN);
        std::size_t at = 0;
        const std::string user = line_of(text, at);
        const std::string password = line_of(text, at);
        mosquitto_username_pw_set(m_client.get(), user.c_str(), text_or_null(password));
        return Driver_result::done();
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
    return Driver_result::done();
}

Driver_result Mqtt_link::subscribe_to(std::vector<std::string> topics, int qos) {
    std::vector<char*> pointers;
    for (std::string& topic : topics) {
        pointers.push_back(topic.data());
    }
    int message = 0;
    const int result =
        mosquitto_subscribe_multiple(m_client.get(), &message, static_cast<int>(pointers.size()),
                                     pointers.data(), qos, 0, nullptr);
    if (result != MOSQ_ERR_SUCCESS) {
        return lost(result);
    }
    m_asked[message] = std::move(topics);
    return work(Clock::now() + PATIENCE, -1, [this] { return m_asked.empty(); });
}

void Mqtt_link::close() {
    if (!m_client) {
        return;
    }
    m_is_stopping = false;
    if (!m_settings.status.empty()) {
        publish(m_settings.status, GONE, 1, true);
    }
    if (m_client) {
        mosquitto_disconnect(m_client.get());
        work(Clock::now() + LAST_WORDS, -1,
             [this] { return !mosquitto_want_write(m_client.get()); });
    }
    m_client.reset();
}

// ---- messages

Driver_result Mqtt_link::publish(const std::string& topic, const std::string& message, int qos,
                                 bool is_retained) {
    // A connection that the broker has closed is noticed before anything is sent.
    if (Driver_result result = wait(milliseconds(0), -1); result.kind != Driver_result::DONE) {
        return result;
    }
    int number = 0;
    m_published.reset();
    const int sent =
        mosquitto_publish(m_client.get(), &number, topic.c_str(), static_cast<int>(message.size()),
                          message.data(), qos, is_retained);
    const Driver_result result =
        sent == MOSQ_ERR_SUCCESS
            ? work(Clock::now() + PATIENCE, -1, [this, number] { return m_published == number; })
            : lost(sent);
    return result.kind == Driver_result::DONE ? result : Driver_result::timed_out(result.reason);
}

Driver_result Mqtt_link::wait(milliseconds most, int wake) {
    if (!m_client) {
        return Driver_result::away(m_trouble);
    }
    m_has_message = false;
    Driver_result result = work(Clock::now() + most, wake, [this] { return m_has_message; });
    return result.kind == Driver_result::TIMED_OUT ? Driver_result::done() : result;
}

// ---- the loop

template <typename Is_done>
Driver_result Mqtt_link::work(Time end, int wake, Is_done is_done) {
    for (bool is_first = true; !is_done(); is_first = false) {
        const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
        if ((!is_first && left <= milliseconds(0)) || m_is_stopping) {
            return Driver_result::timed_out(NO_ANSWER);
        }
        bool is_woken = false;
        const int result = work_once(
            std::clamp(left, milliseconds(0), wake < 0 ? SLICE : LONGEST_WAIT), wake, is_woken);
        if (result != MOSQ_ERR_SUCCESS) {
            return lost(result);
        }
        if (is_woken) {
            break;
        }
    }
    return Driver_result::done();
}

int Mqtt_link::work_once(milliseconds most, int wake, bool& is_woken) {
    mosquitto* const client = m_client.get();
    const short writes = mosquitto_want_write(client) ? POLLOUT : 0;
    pollfd sources[] = {{mosquitto_socket(client), static_cast<short>(POLLIN | writes), 0},
                        {wake, POLLIN, 0}};
    poll(sources, 2, static_cast<int>(most.count()));
    is_woken = sources[1].revents != 0;
    int result = MOSQ_ERR_SUCCESS;
    if (sources[0].revents != 0 && std::exchange(m_is_connecting, false)) {
        result = connection_error();
    }
    if (result == MOSQ_ERR_SUCCESS && (sources[0].revents & ~POLLOUT) != 0) {
        result = mosquitto_loop_read(client, 1);
    }
    if (result == MOSQ_ERR_SUCCESS && (sources[0].revents & POLLOUT) != 0) {
        result = mosquitto_loop_write(client, 1);
    }
    return result == MOSQ_ERR_SUCCESS ? mosquitto_loop_misc(client) : result;
}

// Of a connection that is under way, for which the library has no reason.
int Mqtt_link::connection_error() {
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(mosquitto_socket(m_client.get()), SOL_SOCKET, SO_ERROR, &error, &size);
    errno = error;
    return error == 0 ? MOSQ_ERR_SUCCESS : MOSQ_ERR_ERRNO;
}

Driver_result Mqtt_link::lost(int result) {
    m_trouble = reason_of(result, errno);
    m_client.reset();
    return Driver_result::away(m_trouble);
}

std::string Mqtt_link::reason_of(int result, int error) const {
    if (m_welcome && *m_welcome != 0) {
        return mosquitto_connack_string(*m_welcome);
    }
    switch (result) {
        case MOSQ_ERR_ERRNO:
            return system_text(error);
        case MOSQ_ERR_CONN_LOST:
            return "the broker has closed the connection";
        case MOSQ_ERR_KEEPALIVE:
            return NO_ANSWER;
        case MOSQ_ERR_TLS:
            return m_trouble.empty() ? mosquitto_strerror(result) : m_trouble;
        default:
            return mosquitto_strerror(result);
    }
}

}  // namespace frontpanel
