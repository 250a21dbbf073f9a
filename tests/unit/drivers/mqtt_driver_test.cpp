// The driver "mqtt" against Debian's broker on a free port of loopback, and against a broker that misbehaves.
#include <frontpanel_driver_mqtt/mqtt_driver.h>

#include <mosquitto.h>

#include <csignal>
#include <fstream>
#include <thread>

#include <frontpanel_drivers/driven_device.h>
#include "support/fake_server.h"
#include "support/folder.h"
#include "support/helper_process.h"
#include "unit/drivers/cache_fixture.h"

namespace support {
namespace {

using namespace frontpanel;

std::uint16_t free_port() {
    return Fake_server().port();
}

// Debian's broker, which keeps nothing on disk.
class Broker {
public:
    explicit Broker(const std::string& settings = "allow_anonymous true\n") : m_settings(settings) {
        start();
    }
    std::string port() const { return std::to_string(m_port); }
    const Folder& folder() const { return m_folder; }
    void stop() { m_process.reset(); }
    void start() {
        const std::string file = m_folder.file("broker.conf");
        std::ofstream(file) << "listener " << m_port << " 127.0.0.1\nuser root\nlog_dest stderr\n"
                            << m_settings;
        m_process.emplace(std::vector<std::string>{"/usr/sbin/mosquitto", "-c", file});
        m_is_running = m_process->wait_for(" running");
    }
    bool is_running() const { return m_is_running; }
    void signal(int number) const { m_process->signal(number); }

private:
    std::string m_settings;
    Folder m_folder;
    std::uint16_t m_port = free_port();
    std::optional<Helper_process> m_process;
    bool m_is_running = false;
};

// Whoever else is at the broker.
class Peer {
public:
    explicit Peer(const Broker& broker) : m_client(mosquitto_new(nullptr, true, this)) {
        mosquitto_message_callback_set(
            m_client, [](mosquitto* /*client*/, void* peer, const mosquitto_message* message) {
                static_cast<Peer*>(peer)->m_messages.push_back(
                    std::string(message->topic) + "=" +
                    std::string(static_cast<const char*>(message->payload),
                                static_cast<std::size_t>(message->payloadlen)) +
                    (message->retain ? " retained" : ""));
            });
        mosquitto_subscribe_callback_set(
            m_client, [](mosquitto* /*client*/, void* peer, int /*message*/, int /*count*/,
                         const int* /*granted*/) { static_cast<Peer*>(peer)->m_is_here = true; });
        mosquitto_publish_callback_set(m_client,
                                       [](mosquitto* /*client*/, void* peer, int /*message*/) {
                                           ++static_cast<Peer*>(peer)->m_published;
                                       });
        mosquitto_connect(m_client, "127.0.0.1", std::stoi(broker.port()), 60);
        mosquitto_subscribe(m_client, nullptr, "#", 2);
        EXPECT_TRUE(work([this] { return m_is_here; }));
    }
    ~Peer() { mosquitto_destroy(m_client); }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    // Returns when the broker has it.
    void publish(const std::string& topic, const std::string& message, bool is_retained = false) {
        const int before = m_published;
        mosquitto_publish(m_client, nullptr, topic.c_str(), static_cast<int>(message.size()),
                          message.data(), 1, is_retained);
        EXPECT_TRUE(work([this, before] { return m_published > before; }));
    }
    // The messages up to and with `last`, "topic=message".
    Lines messages_to(const std::string& last) {
        EXPECT_TRUE(work([&] { return !m_messages.empty() && m_messages.back() == last; })) << last;
        return std::exchange(m_messages, {});
    }

private:
    template <typename Is_done>
    bool work(Is_done is_done) {
        const auto end = std::chrono::steady_clock::now() + 20s;
        while (!is_done()) {
            if (std::chrono::steady_clock::now() > end ||
                mosquitto_loop(m_client, 100, 1) != MOSQ_ERR_SUCCESS) {
                return false;
            }
        }
        return true;
    }

    mosquitto* m_client;
    bool m_is_here = false;
    int m_published = 0;
    Lines m_messages;
};

class Line_sink : public Value_sink {
public:
    void value(std::size_t number, const Parameter_value& value) override {
        m_lines.push_back(std::to_string(number) + "=" + text_of(value));
    }
    void failure(std::size_t number, const std::string& reason) override {
        m_lines.push_back(std::to_string(number) + ": " + reason);
    }
    Lines lines() const { return m_lines; }

private:
    Lines m_lines;
};

std::string text_of(const Driver_result& result) {
    const char* const kinds[] = {"done", "refused: ", "timed out: ", "away: "};
    return kinds[result.kind] + result.reason;
}

class Mqtt_driver_test : public testing::Test {
protected:
    void load(const std::string& options, const Lines& sources, const std::string& folder = "") {
        Problems problems;
        const Source file{"menu.json", 0};
        const std::string text = R"({"host": "127.0.0.1")" + options + "}";
        const Json_document instance(file, text);
        m_driver =
            mqtt_driver_row().create(Json_value(instance.root(), problems), {"home", folder});
        for (const std::string& source : sources) {
            const std::string members = "{" + source + "}";
            const Json_document document(file, members);
            m_driver->add(Json_value(document.root(), problems), Driver_parameter());
        }
    }
    std::string connect() { return text_of(m_driver->connect()); }
    std::string write(std::size_t number, std::int32_t value) {
        return text_of(m_driver->write(number, value));
    }
    // What has arrived, when it is `count` values or failures; or how waiting for them ended.
    Lines wait_for(std::size_t count) {
        Line_sink sink;
        const auto end = std::chrono::steady_clock::now() + 20s;
        while (sink.lines().size() < count && std::chrono::steady_clock::now() < end) {
            const Driver_result result = m_driver->wait(100ms, -1, sink);
            if (result.kind != Driver_result::DONE) {
                return {text_of(result)};
            }
        }
        return sink.lines();
    }

    std::unique_ptr<Driver> m_driver;
};

class Broker_test : public Mqtt_driver_test {
protected:
    void SetUp() override {
        if (!m_broker.is_running()) {
            GTEST_SKIP() << "no broker without Debian's package mosquitto";
        }
    }
    std::string port(const std::string& more = "") const {
        return R"(, "port": )" + m_broker.port() + more;
    }

    Broker m_broker;
};

TEST_F(Broker_test, RetainedMessagesArriveAtOnceAndOthersWhenTheyArePublished) {
    Peer peer(m_broker);
    peer.publish("room/temperature", "21.5", true);
    load(port(), {R"("topic": "room/temperature", "scale": "10")",
                  R"("topic": "room/state", "member": "lamp.level")",
                  R"("topic": "room/state", "member": "lamp.on")"});
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(wait_for(1), Lines{"0=215"});
    peer.publish("room/state", R"({"lamp": {"on": true, "level": 70}})");
    EXPECT_EQ(wait_for(2), (Lines{"1=70", "2=1"}));
    peer.publish("room/state", "nonsense");
    EXPECT_EQ(wait_for(2),
              (Lines{"1: the message is no JSON text", "2: the message is no JSON text"}));
    peer.publish("room/temperature", "22");
    EXPECT_EQ(wait_for(1), Lines{"0=220"});
}

TEST_F(Broker_test, ValuesArePublishedOnceWithEveryQuality) {
    Peer peer(m_broker);
    for (const char* const qos : {"0", "1", "2"}) {
        SCOPED_TRACE(qos);
        load(port(), {R"("topic": "a", "write": "lamp/set", "words": ["OFF", "ON"], "qos": )" +
                          std::string(qos),
                      R"("topic": "a")"});
        ASSERT_EQ(connect(), "done");
        EXPECT_EQ(write(0, 1), "done");
        EXPECT_EQ(peer.messages_to("lamp/set=ON"), Lines{"lamp/set=ON"});
        peer.publish("end", "");
        EXPECT_EQ(peer.messages_to("end="), Lines{"end="});
        EXPECT_EQ(write(0, 2), "refused: 2 has no word");
        EXPECT_EQ(write(1, 1), "refused: the parameter has no topic to write to");
    }
}

TEST_F(Broker_test, AValueIsRetainedWhereTheSourceSaysSo) {
    Peer peer(m_broker);
    load(port(), {R"("topic": "a", "write": "level", "write-member": "set", "retain": true)"});
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(write(0, 7), "done");
    EXPECT_EQ(peer.messages_to(R"(level={"set":7})").size(), 1U);
    EXPECT_EQ(Peer(m_broker).messages_to(R"(level={"set":7} retained)").size(), 1U);
}

TEST_F(Broker_test, ABrokerThatIsAwayAndBackIsUsedAgain) {
    load(port(), {R"("topic": "a", "write": "b")"});
    ASSERT_EQ(connect(), "done");
    m_broker.stop();
    EXPECT_EQ(wait_for(1), Lines{"away: the broker has closed the connection"});
    EXPECT_EQ(write(0, 1), "away: the broker has closed the connection");
    EXPECT_EQ(connect(), "away: Connection refused");
    m_broker.start();
    ASSERT_EQ(connect(), "done");
    Peer(m_broker).publish("a", "5");
    EXPECT_EQ(wait_for(1), Lines{"0=5"});
}

TEST_F(Broker_test, AWriteThatTheBrokerDoesNotAnswerIsUnknown) {
    load(port(), {R"("topic": "a", "write": "b")"});
    ASSERT_EQ(connect(), "done");
    m_broker.signal(SIGSTOP);
    EXPECT_EQ(write(0, 1), "timed out: no answer from the broker");
    m_broker.signal(SIGCONT);
}

TEST_F(Broker_test, TheStatusTopicSaysWhetherThePanelIsThere) {
    Peer peer(m_broker);
    load(port(R"(, "status": "panel")"), {R"("topic": "a", "write": "b")"});
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(write(0, 1), "done");
    EXPECT_EQ(peer.messages_to("b=1"), (Lines{"panel=online", "b=1"}));
    m_driver->disconnect();
    EXPECT_EQ(peer.messages_to("panel=offline").size(), 1U);
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(write(0, 2), "done");
    peer.messages_to("b=2");
    // A panel that ends without a word: the broker says so.
    m_driver.reset();
    EXPECT_EQ(peer.messages_to("panel=offline").size(), 1U);
}

TEST_F(Broker_test, NothingIsPrinted) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    load(port(), {R"("topic": "a", "write": "b")"});
    connect();
    write(0, 1);
    m_broker.stop();
    wait_for(1);
    connect();
    m_driver.reset();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Mqtt_driver_test, UserAndPasswordComeFromAFile) {
    const Folder folder;
    const std::string passwords = folder.file("passwords");
    Helper_process maker({"mosquitto_passwd", "-b", "-c", passwords, "panel", "secret"});
    while (maker.wait_for("\n")) {
    }
    Broker broker("allow_anonymous false\npassword_file " + passwords + "\n");
    if (!broker.is_running()) {
        GTEST_SKIP() << "no broker without Debian's package mosquitto";
    }
    const std::string options = R"(, "login": "login", "port": )" + broker.port();
    load(options, {}, folder.path());
    EXPECT_EQ(connect(),
              "away: " + folder.file("login") + ": cannot be opened: No such file or directory");
    std::ofstream(folder.file("login")) << "panel\nwrong\n";
    EXPECT_EQ(connect(), "away: Connection Refused: not authorised.");
    std::ofstream(folder.file("login")) << "panel\nsecret\n";
    EXPECT_EQ(connect(), "done");
}

// Runs a command to its end.
void run(const std::string& command) {
    Helper_process process({"sh", "-c", command + " && echo well"});
    EXPECT_TRUE(process.wait_for("well")) << process.output();
}

TEST_F(Mqtt_driver_test, AnEncryptedConnectionIsMadeOnlyToABrokerThatIsKnown) {
    const Folder folder;
    for (const char* const name : {"broker", "other"}) {
        run("cd " + folder.path() +
            " && openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=" + name +
            " -addext subjectAltName=IP:127.0.0.1 -keyout " + name + ".key -out " + name +
            ".pem 2>/dev/null");
    }
    Broker broker("allow_anonymous true\ncertfile " + folder.file("broker.pem") + "\nkeyfile " +
                  folder.file("broker.key") + "\n");
    if (!broker.is_running()) {
        GTEST_SKIP() << "no broker without Debian's package mosquitto";
    }
    const std::string options = R"(, "port": )" + broker.port();
    load(options + R"(, "ca": "broker.pem")", {R"("topic": "a", "write": "a")"}, folder.path());
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(write(0, 7), "done");
    EXPECT_EQ(wait_for(1), Lines{"0=7"});
    load(options + R"(, "ca": "other.pem")", {}, folder.path());
    EXPECT_NE(connect(), "done");
    load(options + R"(, "ca": "missing.pem")", {}, folder.path());
    EXPECT_EQ(connect(), "away: a file for the encryption cannot be used");
    load(options, {}, folder.path());
    EXPECT_NE(connect(), "done");
}

// ---- a broker that misbehaves

class Fake_broker_test : public Mqtt_driver_test {
protected:
    // Connects while the broker says `answers`, one for each packet of the driver.
    std::string connect_and_say(const std::vector<std::string>& answers) {
        load(R"(, "port": )" + std::to_string(m_server.port()), {R"("topic": "a")"});
        std::thread broker([&] {
            m_server.accept_client();
            for (const std::string& answer : answers) {
                m_server.take_bytes();
                m_server.say(answer);
            }
        });
        const std::string result = connect();
        broker.join();
        return result;
    }

    Fake_server m_server;
};

const std::string WELCOME("\x20\x02\x00\x00", 4);

TEST_F(Fake_broker_test, ATopicThatTheBrokerRefusesIsAFailureOfItsParameters) {
    EXPECT_EQ(connect_and_say({WELCOME, std::string("\x90\x03\x00\x01\x80", 5)}), "done");
    EXPECT_EQ(wait_for(1), Lines{"0: the broker refuses the topic"});
}

TEST_F(Fake_broker_test, GarbageEndsTheConnection) {
    const std::string result = connect_and_say({std::string(100, '\xFF')});
    EXPECT_EQ(result.substr(0, 6), "away: ") << result;
}

TEST_F(Fake_broker_test, ABrokerThatSaysNothingIsAwayWithinBounds) {
    EXPECT_EQ(connect_and_say({}), "away: no answer from the broker");
}

// ---- in a menu file

class Mqtt_menu_test : public testing::Test {
protected:
    void load(const std::string& driver, const std::string& parameters) {
        m_text = R"({"device": {"drivers": {"home": {"driver": "mqtt", "host": "127.0.0.1")" +
                 driver + R"(}}, "parameters": [)" + parameters + "]}}";
        m_document.emplace(m_source, m_text);
        Device_cache_settings settings;
        settings.has_threads = false;
        settings.clock = [clock = m_clock] { return clock->now(); };
        m_device.emplace(Json_value(m_document->root(), m_problems), m_problems,
                         Driver_table{&mqtt_driver_row()}, "/nowhere", m_others, settings);
    }
    static std::string number(std::uint32_t pid, const std::string& name,
                              const std::string& source) {
        return R"({"pid": )" + std::to_string(pid) + R"(, "name": ")" + name +
               R"(", "type": "integer", "min": -1000, "max": 1000, "source": {)" + source + "}}";
    }
    Lines problems() const {
        Lines lines = m_problems.errors();
        const Lines warnings = m_problems.warnings();
        lines.insert(lines.end(), warnings.begin(), warnings.end());
        for (std::string& line : lines) {
            line = line.substr(line.find(": ") + 2);
        }
        return lines;
    }
    // Lets the driver work until the parameter is fresh, or for a long time.
    Freshness step_until(Freshness wanted) {
        const auto end = std::chrono::steady_clock::now() + 20s;
        Device_cache& cache = m_device->cache();
        do {
            number_of(cache, 1);
            m_clock->advance(100ms);
            cache.step();
        } while (cache.state(1, 0)->freshness != wanted && std::chrono::steady_clock::now() < end);
        return cache.state(1, 0)->freshness;
    }

    Source m_source{"menu.json", 0};
    std::string m_text;
    Problems m_problems;
    std::optional<Json_document> m_document;
    Fake_device m_others;
    std::shared_ptr<Test_clock> m_clock = std::make_shared<Test_clock>();
    std::optional<Driven_device> m_device;
};

TEST_F(Mqtt_menu_test, MistakesAreReportedWithTheNearestName) {
    load(R"(, "prot": 1)", number(1, "a", R"("topik": "x")"));
    EXPECT_EQ(problems(), (Lines{"unknown member \"prot\"; did you mean \"port\"?",
                                 "expected a member \"topic\"",
                                 "unknown member \"topik\"; did you mean \"topic\"?"}));
}

TEST_F(Mqtt_menu_test, DoubledTopicsAndMissingFilesAreProbablyMistakes) {
    load(R"(, "login": "login")",
         number(1, "a", R"("topic": "x", "member": "m", "write": "w")") + "," +
             number(2, "b", R"("topic": "x", "member": "n", "write": "w")") + "," +
             number(3, "c", R"("topic": "x", "member": "n")"));
    m_device->check(m_problems);
    EXPECT_EQ(problems(), (Lines{"warning: \"/nowhere/login\": No such file or directory",
                                 "warning: \"a\" is written to the same topic",
                                 "warning: \"b\" is read from the same topic"}));
}

TEST_F(Mqtt_menu_test, AWriteWhileTheBrokerRestartsIsSentOnce) {
    Broker broker;
    if (!broker.is_running()) {
        GTEST_SKIP() << "no broker without Debian's package mosquitto";
    }
    Peer(broker).publish("level", "5", true);
    load(R"(, "port": )" + broker.port(),
         number(1, "level", R"("topic": "level", "write": "set")"));
    ASSERT_EQ(problems(), Lines{});
    Device_cache& cache = m_device->cache();
    cache.start();
    EXPECT_EQ(step_until(Freshness::FRESH), Freshness::FRESH);
    EXPECT_EQ(number_of(cache, 1), 5);

    broker.stop();
    EXPECT_EQ(step_until(Freshness::OLD), Freshness::OLD);
    set_number(cache, 1, 8);
    cache.step();
    EXPECT_EQ(number_of(cache, 1), 8);
    EXPECT_TRUE(cache.state(1, 0)->is_writing);

    broker.start();
    Peer peer(broker);
    m_clock->advance(5s);
    cache.step();
    EXPECT_EQ(peer.messages_to("set=8"), Lines{"set=8"});
    EXPECT_FALSE(cache.state(1, 0)->is_writing);
    peer.publish("level", "8");
    m_clock->advance(5s);
    EXPECT_EQ(step_until(Freshness::FRESH), Freshness::FRESH);
    EXPECT_EQ(texts_of(cache.take_events()),
              (Lines{"home: away: the broker has closed the connection", "home: back"}));
}

}  // namespace
}  // namespace support
