// A device behind an MQTT broker for the driver soak: "RECORD PORT".
//
// It publishes its clock, as a plain message and as a text in JSON, and the setting "set" ten times a second; the
// setting "live" is published when it changes and when the broker is back, and is retained. A value published under
// "soak/write/" is recorded and then accepted; only for unlucky numbers the device keeps its old value.
#include <fcntl.h>
#include <mosquitto.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds TICK(100);
constexpr milliseconds PAUSE(100);  // before the broker is tried again
constexpr int KEEP_ALIVE = 5;       // seconds
constexpr const char* WRITES = "soak/write/";

std::int64_t now_in_milliseconds() {
    return std::chrono::duration_cast<milliseconds>(Clock::now().time_since_epoch()).count();
}

// The last value of each setting, also after the program was killed.
class Record {
public:
    explicit Record(const char* path)
        : m_file(open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {
        std::ifstream lines(path);
        std::int64_t time = 0;
        std::string name;
        for (int value = 0; lines >> time >> name >> value;) {
            m_held[name] = value;
        }
    }
    int held(const std::string& name) { return m_held[name]; }
    // The value is in the record before it is published.
    void write(const std::string& name, int value) {
        const std::string line =
            std::to_string(now_in_milliseconds()) + " " + name + " " + std::to_string(value) + "\n";
        (void)!::write(m_file, line.data(), line.size());
        m_held[name] = value;
    }

private:
    int m_file;
    std::map<std::string, int> m_held;
};

class Device {
public:
    Device(const char* record, int port) : m_record(record), m_port(port) {}

    // Until the connection is lost.
    void serve() {
        m_client = mosquitto_new(nullptr, true, this);
        m_is_subscribed = false;
        mosquitto_connect_callback_set(m_client, [](mosquitto* client, void*, int) {
            mosquitto_subscribe(client, nullptr, (std::string(WRITES) + "+").c_str(), 2);
        });
        mosquitto_subscribe_callback_set(m_client,
                                         [](mosquitto*, void* device, int, int, const int*) {
                                             static_cast<Device*>(device)->begin();
                                         });
        mosquitto_message_callback_set(
            m_client, [](mosquitto*, void* device, const mosquitto_message* message) {
                static_cast<Device*>(device)->take(
                    message->topic, std::string(static_cast<const char*>(message->payload),
                                                static_cast<std::size_t>(message->payloadlen)));
            });
        if (mosquitto_connect(m_client, "127.0.0.1", m_port, KEEP_ALIVE) == MOSQ_ERR_SUCCESS) {
            work();
        }
        mosquitto_destroy(m_client);
    }

private:
    void work() {
        Clock::time_point next_tick = Clock::now();
        for (int wait = 0; mosquitto_loop(m_client, std::max(wait, 0), 1) == MOSQ_ERR_SUCCESS;) {
            const Clock::time_point now = Clock::now();
            if (now >= next_tick) {
                next_tick = now + TICK;
                publish_clock();
            }
            wait = static_cast<int>(std::chrono::ceil<milliseconds>(next_tick - now).count());
        }
    }
    void begin() {
        m_is_subscribed = true;
        publish_setting("live");
        std::puts("ready");
        std::fflush(stdout);
    }
    void take(const std::string& topic, const std::string& message) {
        const std::string name = topic.substr(std::string(WRITES).size());
        const std::size_t digits = message.find_first_of("0123456789");
        if (digits == std::string::npos) {
            return;
        }
        const int value = std::stoi(message.substr(digits));
        constexpr int UNLUCKY_ONE_OF = 97;
        constexpr int UNLUCKY = 13;
        if (value % UNLUCKY_ONE_OF != UNLUCKY) {
            m_record.write(name, value);
            publish_setting(name);
        }
    }
    void publish_clock() {
        if (!m_is_subscribed) {
            return;
        }
        const std::string clock = std::to_string(now_in_milliseconds() / 100);
        publish("soak/clock", clock, 0, false);
        publish("soak/state", R"({"text": "T)" + clock + R"("})", 1, false);
        publish_setting("set");
    }
    void publish_setting(const std::string& name) {
        const std::string value = std::to_string(m_record.held(name));
        if (name == "live") {
            publish("soak/live", R"({"level": )" + value + "}", 2, true);
        } else {
            publish("soak/set", value, 1, false);
        }
    }
    void publish(const char* topic, const std::string& message, int qos, bool is_retained) {
        mosquitto_publish(m_client, nullptr, topic, static_cast<int>(message.size()),
                          message.data(), qos, is_retained);
    }

    Record m_record;
    const int m_port;
    mosquitto* m_client = nullptr;
    bool m_is_subscribed = false;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    mosquitto_lib_init();
    for (Device device(argv[1], std::stoi(argv[2]));;) {
        device.serve();
        std::this_thread::sleep_for(PAUSE);
    }
}
