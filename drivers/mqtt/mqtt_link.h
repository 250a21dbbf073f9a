// A connection to a broker, used by one thread; only `stop` comes from another one.
#ifndef FRONTPANEL_DRIVER_MQTT_MQTT_LINK_H
#define FRONTPANEL_DRIVER_MQTT_MQTT_LINK_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <frontpanel_drivers/driver.h>

#include "mqtt_settings.h"

struct mosquitto;
struct mosquitto_message;

namespace frontpanel {

struct Mosquitto_library;

class Mqtt_link {
public:
    // Takes each message, within a call of the link.
    using On_message = std::function<void(const std::string& topic, std::string_view message)>;

    Mqtt_link(Mqtt_settings settings, On_message on_message);
    ~Mqtt_link();

    // Connects and subscribes to topics, each with its quality of service. DONE or AWAY. The next call to a broker
    // without MQTT 5 uses MQTT 3.1.1.
    Driver_result open(const std::map<std::string, int>& topics);
    // Reports that the panel ends, and disconnects, within a second.
    void close();
    bool is_open() const { return m_client != nullptr; }
    // Whether the broker has refused the topic.
    bool is_refused(const std::string& topic) const { return m_refused.count(topic) > 0; }

    // DONE when the broker has confirmed it, or, for quality 0, when it is sent. REFUSED by the broker; TIMED_OUT when
    // that is unknown; AWAY when nothing was sent.
    Driver_result publish(const std::string& topic, const std::string& message, int qos,
                          bool is_retained);
    // Until `wake` is readable or messages have arrived: those that follow one closely are taken with it. DONE or AWAY.
    Driver_result wait(std::chrono::milliseconds most, int wake);

    // Calls return soon from now on, but `close`.
    void stop() { m_is_stopping = true; }

private:
    using Time = std::chrono::steady_clock::time_point;
    struct Callbacks;

    Driver_result start();
    bool is_other_protocol() const;
    Driver_result connect();
    Driver_result log_in();
    Driver_result encrypt();
    void limit_messages();
    Driver_result subscribe(const std::map<std::string, int>& topics);
    Driver_result subscribe_to(std::vector<std::string> topics, int qos);
    Driver_result publish(const std::string& topic, const std::string& message, int qos,
                          bool is_retained, std::chrono::milliseconds patience);
    Driver_result answer_to(int message) const;
    Driver_result look();
    // Works until `is_done` or `end`, which is TIMED_OUT; a lost connection is AWAY and closes.
    template <typename Is_done>
    Driver_result work(Time end, int wake, Is_done is_done);
    // Whether something is wrong: the result of a call of the library.
    int work_once(std::chrono::milliseconds most, int wake, bool& is_woken);
    bool is_packet_too_large() const;
    int connection_error();
    Driver_result lost(int result, int error);
    Driver_result lost(const std::string& reason);
    std::string reason_of(int result, int error) const;
    std::string welcome_text() const;

    Mqtt_settings m_settings;
    On_message m_on_message;
    const Mosquitto_library* m_library = nullptr;                                 // of the client
    std::unique_ptr<mosquitto, void (*)(mosquitto*)> m_client{nullptr, nullptr};  // null: closed
    std::atomic<bool> m_is_stopping{false};
    bool m_is_closing = false;
    bool m_is_old_broker = false;  // it lacks MQTT 5
    std::string m_away_reason;     // while closed
    // What has arrived on this connection.
    bool m_is_connecting = false;
    bool m_is_accepted = false;
    std::optional<int> m_welcome;
    std::map<int, std::vector<std::string>>
        m_asked;  // subscriptions that are not answered, by message
    std::set<std::string> m_refused;
    std::map<int, int> m_answers;  // to what was published, by message
    bool m_has_message = false;
    bool m_is_out_of_memory = false;
    std::uint64_t m_packets_end = 0;  // bytes read up to the end of the last complete packet
    std::string m_trouble;            // the last problem that the library has logged
};

}  // namespace frontpanel

#endif
