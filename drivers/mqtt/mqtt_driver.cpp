#include <frontpanel_driver_mqtt/mqtt_driver.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <set>
#include <utility>
#include <variant>

#include "mosquitto_library.h"
#include "mqtt_link.h"
#include "mqtt_settings.h"
#include "topic_source.h"

namespace frontpanel {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds RETAINED_WITHIN(1000);  // of the subscription
constexpr const char* NO_MESSAGE = "no message yet";
constexpr const char* TOPIC_REFUSED = "the broker refuses the topic";

class Mqtt_driver : public Driver {
public:
    Mqtt_driver(const Json_value& options, const Driver_setup& setup)
        : m_settings(mqtt_settings_of(options, setup.folder)),
          m_place(options.place()),
          m_has_poll(options.find("poll")),
          m_link(m_settings, [this](const std::string& topic, std::string_view message) {
              take(topic, message);
          }) {}

    void add(const Json_value& source, const Driver_parameter& parameter) override {
        m_sources.push_back(topic_source_of(source, m_settings, parameter.is_text));
        m_declared.push_back({source.place(), parameter.name});
        m_are_repeated.push_back(m_has_poll || source.find("poll"));
        m_silent.insert(m_sources.size() - 1);
        const Topic_source& added = m_sources.back();
        m_numbers[added.topic].push_back(m_sources.size() - 1);
        int& qos = m_topics[added.topic];
        qos = std::max(qos, added.qos);
    }

    void check(Problems& problems) const override {
        if (std::string fault; mosquitto_library(fault) == nullptr) {
            problems.warn(m_place, fault);
        }
        for (const std::string& fault : m_settings.file_faults()) {
            problems.warn(m_place, fault);
        }
        warn_of_doubles(problems, "is read from", [](const Topic_source& source) {
            return std::pair(source.topic, source.member.steps());
        });
        warn_of_doubles(problems, "is written to", [](const Topic_source& source) {
            return std::pair(source.write_topic, source.write_member.steps());
        });
    }

    Driver_result connect() override {
        m_waiting.clear();
        Driver_result result = m_link.open(m_topics);
        for (const auto& [topic, numbers] : m_numbers) {
            for (const std::size_t number : numbers) {
                if (m_link.is_refused(topic)) {
                    m_waiting[number] = {No_value{TOPIC_REFUSED}};
                    m_silent.erase(number);
                }
            }
        }
        m_silent_until = Clock::now() + RETAINED_WITHIN;
        return result;
    }
    void disconnect() override { m_link.close(); }
    void stop() override { m_link.stop(); }

    bool pushes(std::size_t /*number*/) const override { return true; }
    bool repeats(std::size_t number) const override {
        return number < m_are_repeated.size() && m_are_repeated[number];
    }

    Driver_result read(const std::vector<std::size_t>& /*numbers*/, Value_sink& sink) override {
        pass(sink);
        return Driver_result::refused(NO_MESSAGE);
    }

    Driver_result write(std::size_t number, const Parameter_value& value) override {
        const Topic_source& source = m_sources[number];
        if (source.write_topic.empty()) {
            return Driver_result::refused("the parameter has no topic to write to");
        }
        const auto message = message_for(source, value);
        if (const auto* const none = std::get_if<No_value>(&message)) {
            return Driver_result::refused(none->reason);
        }
        Driver_result result = m_link.publish(source.write_topic, std::get<std::string>(message),
                                              source.qos, source.is_retained);
        return result.kind == Driver_result::DONE ? Driver_result::passed_on() : result;
    }

    Driver_result wait(milliseconds most, int wake, Value_sink& sink) override {
        // What has arrived during another call comes first.
        if (!m_waiting.empty()) {
            most = milliseconds(0);
        } else if (!m_silent.empty()) {
            const auto left = std::chrono::ceil<milliseconds>(m_silent_until - Clock::now());
            most = std::min(most, std::max(left, milliseconds(0)));
        }
        Driver_result result = m_link.wait(most, wake);
        if (result.kind == Driver_result::DONE && Clock::now() >= m_silent_until) {
            give_up_silent_ones();
        }
        pass(sink);
        return result;
    }

private:
    struct Declared {
        Place place;  // for `check` only
        std::string name;
    };
    using Received = std::variant<Parameter_value, No_value>;
    struct Arrival {
        Received received;
        Clock::time_point time = Clock::now();
    };

    template <typename Key_of>
    void warn_of_doubles(Problems& problems, const char* verb, Key_of key_of) const {
        std::map<std::pair<std::string, std::vector<std::string>>, std::size_t> first;
        for (std::size_t number = 0; number < m_sources.size(); ++number) {
            const auto key = key_of(m_sources[number]);
            const auto [other, is_new] = first.emplace(key, number);
            if (!is_new && !key.first.empty()) {
                problems.warn(m_declared[number].place, "\"" + m_declared[other->second].name +
                                                            "\" " + verb + " the same topic");
            }
        }
    }

    void take(const std::string& topic, std::string_view message) {
        const auto numbers = m_numbers.find(topic);
        if (numbers == m_numbers.end()) {
            return;
        }
        Topic_message received(message);
        for (const std::size_t number : numbers->second) {
            m_waiting[number] = {value_in(m_sources[number], received)};
            m_silent.erase(number);
        }
    }

    // What a topic holds comes with the subscription: where nothing came, there is nothing.
    void give_up_silent_ones() {
        for (const std::size_t number : std::exchange(m_silent, {})) {
            m_waiting.emplace(number, Arrival{No_value{NO_MESSAGE}});
        }
    }

    void pass(Value_sink& sink) {
        for (const auto& [number, arrival] : std::exchange(m_waiting, {})) {
            if (const auto* const none = std::get_if<No_value>(&arrival.received)) {
                sink.failure(number, none->reason);
            } else {
                sink.late_value(
                    number, std::get<Parameter_value>(arrival.received),
                    std::chrono::duration_cast<milliseconds>(Clock::now() - arrival.time));
            }
        }
    }

    Mqtt_settings m_settings;
    Place m_place;    // for `check` only
    bool m_has_poll;  // of sources that have none
    std::vector<bool> m_are_repeated;
    std::vector<Topic_source> m_sources;
    std::vector<Declared> m_declared;
    std::map<std::string, std::vector<std::size_t>> m_numbers;  // by topic
    std::map<std::string, int> m_topics;                        // quality of service, by topic
    std::map<std::size_t, Arrival> m_waiting;                   // arrived, but not passed on yet
    std::set<std::size_t> m_silent;  // for which there has never been a message
    Clock::time_point m_silent_until{};
    Mqtt_link m_link;
};

std::unique_ptr<Driver> create(const Json_value& options, const Driver_setup& setup) {
    return std::make_unique<Mqtt_driver>(options, setup);
}

}  // namespace

const Driver_row& mqtt_driver_row() {
    static const Driver_row ROW{"mqtt", mqtt_members(), topic_members(), create};
    return ROW;
}

}  // namespace frontpanel
