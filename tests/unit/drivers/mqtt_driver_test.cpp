// The driver "mqtt" against Debian's broker on a free port of loopback, and against a broker that misbehaves.
#include <frontpanel_driver_mqtt/mqtt_driver.h>

#include <mosquitto.h>
#include <poll.h>

#include <csignal>
#include <fstream>
#include <thread>

#include "support/fake_server.h"
#include "support/folder.h"
#include "support/helper_process.h"
#include "support/noting_sink.h"
#include "topic_source.h"
#include "unit/drivers/menu_fixture.h"

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
    // One that has just begun does not heed any other signal.
    ~Broker() { signal(SIGKILL); }
    Broker(const Broker&) = delete;
    Broker& operator=(const Broker&) = delete;
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
    void signal(int number) const {
        if (m_process) {
            m_process->signal(number);
        }
    }

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
                                       [](mosquitto* /*client*/, void* peer, int message) {
                                           static_cast<Peer*>(peer)->m_published = message;
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
        int number = 0;
        mosquitto_publish(m_client, &number, topic.c_str(), static_cast<int>(message.size()),
                          message.data(), 1, is_retained);
        EXPECT_TRUE(work([this, number] { return m_published == number; }));
    }
    // Does not wait for the broker.
    void queue(const std::string& topic, const std::string& message) {
        mosquitto_publish(m_client, nullptr, topic.c_str(), static_cast<int>(message.size()),
                          message.data(), 0, false);
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
        Noting_sink sink;
        const auto end = std::chrono::steady_clock::now() + 20s;
        while (sink.count() < count && std::chrono::steady_clock::now() < end) {
            const Driver_result result = m_driver->wait(100ms, -1, sink);
            if (result.kind != Driver_result::DONE) {
                return {text_of(result)};
            }
        }
        return sink.take();
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
                  R"("topic": "room/state", "member": "/lamp/level")",
                  R"("topic": "room/state", "member": "/lamp/on")"});
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(wait_for(1), Lines{"0=215"});
    peer.publish("room/state", R"({"lamp": {"on": true, "level": 70}})");
    EXPECT_EQ(wait_for(2), (Lines{"1=70", "2=1"}));
    peer.publish("room/state", "nonsense");
    EXPECT_EQ(wait_for(2), (Lines{"1: the message is not JSON", "2: the message is not JSON"}));
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
        EXPECT_EQ(write(0, 1), "passed on");
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
    EXPECT_EQ(write(0, 7), "passed on");
    EXPECT_EQ(peer.messages_to(R"(level={"set":7})").size(), 1U);
    EXPECT_EQ(Peer(m_broker).messages_to(R"(level={"set":7} retained)").size(), 1U);
}

TEST_F(Broker_test, ABrokerThatIsAwayAndBackIsUsedAgain) {
    load(port(), {R"("topic": "a", "write": "b")"});
    ASSERT_EQ(connect(), "done");
    m_broker.stop();
    EXPECT_EQ(wait_for(2), Lines{"away: the broker has closed the connection"});
    EXPECT_EQ(write(0, 1), "away: the broker has closed the connection");
    EXPECT_EQ(connect(), "away: Connection refused");
    m_broker.start();
    ASSERT_EQ(connect(), "done");
    Peer(m_broker).publish("a", "5");
    EXPECT_EQ(wait_for(1), Lines{"0=5"});
}

TEST_F(Broker_test, ABrokerThatIsKilledDuringAWriteLeavesItUnknown) {
    load(port(), {R"("topic": "a", "write": "b", "qos": 2)"});
    ASSERT_EQ(connect(), "done");
    // The connection stands, and the broker can no longer answer.
    m_broker.signal(SIGSTOP);
    EXPECT_EQ(write(0, 1), "timed out: no answer from the broker");
    m_broker.signal(SIGKILL);
    EXPECT_EQ(wait_for(2).front().substr(0, 6), "away: ");
    EXPECT_EQ(write(0, 2).substr(0, 6), "away: ");
    m_broker.stop();
    m_broker.start();
    Peer peer(m_broker);
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(write(0, 3), "passed on");
    EXPECT_EQ(peer.messages_to("b=3"), Lines{"b=3"});
}

TEST_F(Broker_test, AMessageThatHoldsNoValueIsAFailureWithItsReason) {
    Peer peer(m_broker);
    load(port(), {R"("topic": "a")", R"("topic": "b", "member": "level")"});
    ASSERT_EQ(connect(), "done");
    const struct {
        const char* topic;
        std::string message;
        const char* received;
    } cases[] = {
        {"a", "21", "0=21"},
        {"a", "\xFF\xFE garbage", "0: not a number: \"\xFF\xFE garbage\""},
        {"a", std::string("\0\0", 2), "0: not a number"},
        {"a", "", "0: not a number: \"\""},
        {"a", std::string(Topic_message::LARGEST, '1'), "0: not a number: \"1111"},
        {"a", std::string(Topic_message::LARGEST + 1, '1'), "0: the message has more than 64 KiB"},
        {"a", "22", "0=22"},
        {"b", R"({"level": 5})", "1=5"},
        {"b", R"({"volume": 5})", "1: the message has no member \"level\""},
        {"b", R"([5])", "1: the message has no member \"level\""},
        {"b", R"({"level": 5)", "1: the message is not JSON"},
        {"b", std::string(60000, '['), "1: the message is not JSON"},
        {"b", R"({"level": 6})", "1=6"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message.substr(0, 20));
        peer.publish(c.topic, c.message);
        const Lines received = wait_for(1);
        ASSERT_EQ(received.size(), 1U);
        EXPECT_EQ(received.front().substr(0, std::string(c.received).size()), c.received);
    }
}

TEST_F(Broker_test, AMessageOfMoreThanAMegabyteIsNotSentToThePanel) {
    Peer peer(m_broker);
    load(port(), {R"("topic": "a")"});
    ASSERT_EQ(connect(), "done");
    peer.publish("a", std::string(1000000, '1'));
    EXPECT_EQ(wait_for(1), Lines{"0: the message has more than 64 KiB"});
    peer.publish("a", std::string(1100000, '1'));
    peer.publish("a", "7");
    EXPECT_EQ(wait_for(1), Lines{"0=7"});
}

TEST_F(Broker_test, ATopicWithoutAMessageIsAFailureUntilThereIsOne) {
    Peer peer(m_broker);
    peer.publish("held", "1", true);
    load(port(),
         {R"("topic": "held")", R"("topic": "silent")", R"("topic": "silent", "member": "x")"});
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(wait_for(3), (Lines{"0=1", "1: no message yet", "2: no message yet"}));
    peer.publish("silent", "5");
    EXPECT_EQ(wait_for(1), (Lines{"1=5", "2: the message has no member \"x\""}));
}

TEST_F(Mqtt_driver_test, APollIsTheIntervalInWhichAMessageIsExpected) {
    load("", {R"("topic": "a")", R"("topic": "b", "poll": "10s")"});
    EXPECT_FALSE(m_driver->repeats(0));
    EXPECT_TRUE(m_driver->repeats(1));
    load(R"(, "poll": "10s")", {R"("topic": "a")"});
    EXPECT_TRUE(m_driver->repeats(0));
}

TEST_F(Broker_test, MessagesThatFollowEachOtherCloselyArePassedTogether) {
    Peer peer(m_broker);
    load(port(), {R"("topic": "a")"});
    ASSERT_EQ(connect(), "done");
    for (int i = 0; i < 5000; ++i) {
        peer.queue("a", std::to_string(i));
    }
    peer.publish("a", "5000");
    // They have all arrived at the broker, and most of them here.
    Lines received;
    while (received.empty() || received.back() != "0=5000") {
        const Lines some = wait_for(1);
        ASSERT_EQ(some.size(), 1U);
        received.push_back(some.front());
    }
    EXPECT_LT(received.size(), 1000U);
}

TEST_F(Broker_test, TheStatusTopicSaysWhetherThePanelIsThere) {
    Peer peer(m_broker);
    load(port(R"(, "status": "panel")"), {R"("topic": "a", "write": "b")"});
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(write(0, 1), "passed on");
    EXPECT_EQ(peer.messages_to("b=1"), (Lines{"panel=online", "b=1"}));
    m_driver->disconnect();
    EXPECT_EQ(peer.messages_to("panel=offline").size(), 1U);
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(write(0, 2), "passed on");
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
    EXPECT_EQ(connect(), "away: \"" + folder.file("login") + "\": No such file or directory");
    std::ofstream(folder.file("login")) << "panel\nwrong\n";
    EXPECT_EQ(connect(), "away: Not authorized");
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
    run("cd " + folder.path() +
        " && openssl rsa -aes128 -passout pass:secret -in broker.key -out locked.key 2>/dev/null");
    std::ofstream(folder.file("garbage.pem")) << "garbage\n";
    Broker broker("allow_anonymous true\ncertfile " + folder.file("broker.pem") + "\nkeyfile " +
                  folder.file("broker.key") + "\n");
    if (!broker.is_running()) {
        GTEST_SKIP() << "no broker without Debian's package mosquitto";
    }
    const std::string options = R"(, "port": )" + broker.port();
    load(options + R"(, "ca": "broker.pem")", {R"("topic": "a", "write": "a")"}, folder.path());
    ASSERT_EQ(connect(), "done");
    EXPECT_EQ(write(0, 7), "passed on");
    EXPECT_EQ(wait_for(1), Lines{"0=7"});
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    load(options + R"(, "ca": "other.pem")", {}, folder.path());
    EXPECT_EQ(connect(), "away: certificate verify failed");
    load(options + R"(, "ca": "missing.pem")", {}, folder.path());
    EXPECT_EQ(connect(), "away: \"" + folder.file("missing.pem") + "\": No such file or directory");
    load(options + R"(, "ca": "garbage.pem")", {}, folder.path());
    EXPECT_NE(connect().find("Unable to load CA certificates"), std::string::npos);
    // A key with a password, which nobody is asked for.
    load(options + R"(, "ca": "broker.pem", "cert": "broker.pem", "key": "locked.key")", {},
         folder.path());
    EXPECT_NE(connect().find("Unable to load client key file"), std::string::npos);
    load(options, {}, folder.path());
    EXPECT_EQ(connect().substr(0, 6), "away: ");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Mqtt_driver_test, ThePanelShowsItsOwnCertificate) {
    const Folder folder;
    run("cd " + folder.path() +
        " && openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=both -addext "
        "subjectAltName=IP:127.0.0.1 -keyout a.key -out a.pem 2>/dev/null");
    Broker broker("allow_anonymous true\nrequire_certificate true\ncafile " + folder.file("a.pem") +
                  "\ncertfile " + folder.file("a.pem") + "\nkeyfile " + folder.file("a.key") +
                  "\n");
    if (!broker.is_running()) {
        GTEST_SKIP() << "no broker without Debian's package mosquitto";
    }
    const std::string options = R"(, "ca": "a.pem", "port": )" + broker.port();
    load(options + R"(, "cert": "a.pem", "key": "a.key")", {}, folder.path());
    EXPECT_EQ(connect(), "done");
    load(options, {}, folder.path());
    EXPECT_EQ(connect().substr(0, 6), "away: ");
}

TEST_F(Mqtt_driver_test, ACertificateOfAnotherAddressIsRefused) {
    const Folder folder;
    run("cd " + folder.path() +
        " && openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=elsewhere -addext "
        "subjectAltName=IP:127.0.0.9 -keyout a.key -out a.pem 2>/dev/null");
    Broker broker("allow_anonymous true\ncertfile " + folder.file("a.pem") + "\nkeyfile " +
                  folder.file("a.key") + "\n");
    if (!broker.is_running()) {
        GTEST_SKIP() << "no broker without Debian's package mosquitto";
    }
    load(R"(, "ca": "a.pem", "port": )" + broker.port(), {}, folder.path());
    EXPECT_EQ(connect().substr(0, 6), "away: ");
}

TEST_F(Mqtt_driver_test, AWriteThatTheBrokerForbidsIsRefused) {
    const Folder folder;
    const std::string rules = folder.file("rules");
    std::ofstream(rules) << "topic read #\ntopic readwrite open\n";
    Broker broker("allow_anonymous true\nacl_file " + rules + "\n");
    if (!broker.is_running()) {
        GTEST_SKIP() << "no broker without Debian's package mosquitto";
    }
    for (const char* const qos : {"1", "2"}) {
        SCOPED_TRACE(qos);
        const std::string end = R"(, "qos": )" + std::string(qos);
        load(R"(, "port": )" + broker.port(),
             {R"("topic": "a", "write": "a")" + end, R"("topic": "open", "write": "open")" + end});
        ASSERT_EQ(connect(), "done");
        EXPECT_EQ(write(0, 1), "refused: Not authorized");
        EXPECT_EQ(write(1, 1), "passed on");
    }
}

// ---- a broker that misbehaves

class Fake_broker_test : public Mqtt_driver_test {
protected:
    void SetUp() override {
        load(R"(, "port": )" + std::to_string(m_server.port()), {R"("topic": "a", "write": "b")"});
    }
    // Connects while the broker says `answers`, one for each packet of the driver.
    std::string connect_and_say(const std::vector<std::string>& answers) {
        std::thread broker([&] {
            m_server.accept_client();
            for (const std::string& answer : answers) {
                m_packets.push_back(m_server.take_bytes());
                m_server.say(answer);
            }
            if (m_hangs_up) {
                m_server.hang_up();
            }
        });
        const std::string result = connect();
        broker.join();
        return result;
    }
    // The protocol that the last connection began with.
    int protocol() const { return m_packets.front()[8]; }

    bool m_hangs_up = false;
    Lines m_packets;

    Fake_server m_server;
};

const std::string WELCOME("\x20\x03\x00\x00\x00", 5);
const std::string OLD_WELCOME("\x20\x02\x00\x00", 4);

TEST_F(Fake_broker_test, ATopicThatTheBrokerRefusesIsAFailureOfItsParameters) {
    EXPECT_EQ(connect_and_say({WELCOME, std::string("\x90\x04\x00\x01\x00\x87", 6)}), "done");
    EXPECT_EQ(wait_for(1), Lines{"0: the broker refuses the topic"});
}

TEST_F(Fake_broker_test, GarbageEndsTheConnection) {
    const std::string result = connect_and_say({std::string(100, '\xFF')});
    EXPECT_EQ(result.substr(0, 6), "away: ") << result;
}

TEST_F(Fake_broker_test, ABrokerThatSaysNothingIsAwayWithinBounds) {
    EXPECT_EQ(connect_and_say({}), "away: no answer from the broker");
}

// The broker takes a write, and then `act` happens.
class Fake_broker_write_test : public Fake_broker_test {
protected:
    std::string write_during(const std::function<void()>& act) {
        EXPECT_EQ(connect_and_say({WELCOME, std::string("\x90\x04\x00\x01\x00\x01", 6)}), "done");
        std::thread broker([&] {
            m_server.take_bytes();
            act();
        });
        const std::string result = write(0, 1);
        broker.join();
        return result;
    }
};

TEST_F(Fake_broker_write_test, ALostConnectionLeavesItUnknown) {
    EXPECT_EQ(write_during([this] { m_server.hang_up(); }),
              "timed out: the broker has closed the connection");
    EXPECT_EQ(write(0, 1), "away: the broker has closed the connection");
}

TEST_F(Fake_broker_write_test, AMessageThatCameMeanwhileIsAsOldAsItIs) {
    // Of the topic "a", with the value 5, and no answer to the write.
    EXPECT_EQ(write_during([this] {
                  m_server.say(
                      std::string("\x30\x05\x00\x01"
                                  "a\x00"
                                  "5",
                                  7));
              }),
              "timed out: no answer from the broker");
    Age_sink sink;
    EXPECT_EQ(text_of(m_driver->wait(0ms, -1, sink)), "done");
    EXPECT_GE(sink.age(), 2s);
    EXPECT_LT(sink.age(), 20s);
}

TEST_F(Fake_broker_write_test, TheEndOfThePanelEndsIt) {
    EXPECT_EQ(write_during([this] { m_driver->stop(); }), "timed out: the panel ends");
    m_driver->disconnect();
    EXPECT_EQ(m_server.take_bytes(), std::string("\xE0\x00", 2));
}

TEST_F(Fake_broker_write_test, ARefusalIsReported) {
    EXPECT_EQ(write_during([this] { m_server.say(std::string("\x40\x03\x00\x02\x97", 5)); }),
              "refused: Quota exceeded");
}

// The library takes memory as the message arrives.
class Large_message_test : public Fake_broker_test {
protected:
    // How the connection ends while a message of 256 MiB arrives, of which a part is sent.
    std::string end_of_large_message() {
        const std::string granted("\x90\x04\x00\x01\x00\x01", 6);
        const std::string beginning(
            "\x30\xFF\xFF\xFF\x7F\x00\x01"
            "a\x00",
            9);
        const std::string piece(std::size_t{64} << 10U, 'x');
        const std::string start = connect_and_say({WELCOME, granted});
        if (start != "done") {
            return start;
        }
        m_server.say(beginning);
        Noting_sink sink;
        Driver_result result;
        while (result.kind == Driver_result::DONE && m_sent < ENOUGH) {
            m_sent += m_server.flood(piece);
            result = m_driver->wait(0ms, -1, sink);
        }
        EXPECT_EQ(sink.count(), 0U);
        return text_of(result);
    }

    static constexpr std::size_t ENOUGH = std::size_t{100} << 20U;
    std::size_t m_sent = 0;
};

TEST_F(Large_message_test, EndsTheConnection) {
    EXPECT_EQ(end_of_large_message(), "away: the broker sends a message of more than 4 MiB");
    EXPECT_GE(m_sent, std::size_t{4} << 20U);
    EXPECT_LT(m_sent, std::size_t{16} << 20U);
}

TEST_F(Large_message_test, EndsAnEncryptedConnection) {
    const Folder folder;
    run("cd " + folder.path() +
        " && openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=broker"
        " -addext subjectAltName=IP:127.0.0.1 -keyout a.key -out a.pem 2>/dev/null");
    const std::string port = std::to_string(free_port());
    Helper_process encryption({"socat", "-d", "-d",
                               "OPENSSL-LISTEN:" + port + ",bind=127.0.0.1,verify=0,cert=" +
                                   folder.file("a.pem") + ",key=" + folder.file("a.key"),
                               "TCP:127.0.0.1:" + std::to_string(m_server.port())});
    if (!encryption.wait_for("listening on")) {
        GTEST_SKIP() << "no encryption without Debian's package socat";
    }
    load(R"(, "ca": "a.pem", "port": )" + port, {R"("topic": "a")"}, folder.path());
    EXPECT_EQ(end_of_large_message(), "away: the broker sends a message of more than 4 MiB");
    EXPECT_LT(m_sent, ENOUGH);
}

TEST_F(Fake_broker_test, ManyMessagesAreNotALargeOne) {
    const std::string granted("\x90\x04\x00\x01\x00\x01", 6);
    const std::string message(
        "\x30\x80\x80\x04\x00\x01"
        "a\x00",
        8);  // of 64 KiB
    const std::string text = message + std::string(std::size_t{65536} - 4, '1');
    ASSERT_EQ(connect_and_say({WELCOME, granted}), "done");
    std::thread broker([&] {
        for (int count = 0; count < 200; ++count) {
            m_server.say(text);
        }
        m_server.say(
            std::string("\x30\x05\x00\x01"
                        "a\x00"
                        "7",
                        7));
    });
    Lines received;
    while (received.empty() || received.back() != "0=7") {
        received = wait_for(1);
        ASSERT_EQ(received.size(), 1U);
        ASSERT_EQ(received.front().substr(0, 2), received.front() == "0=7" ? "0=" : "0:");
    }
    broker.join();
}

TEST_F(Fake_broker_test, AnOldBrokerIsAskedForTheOldProtocol) {
    const std::string granted("\x90\x03\x00\x01\x01", 5);
    EXPECT_EQ(connect_and_say({std::string("\x20\x02\x00\x01", 4)}),
              "away: Unsupported Protocol Version");
    EXPECT_EQ(protocol(), 5);
    m_server.hang_up();
    m_packets.clear();
    EXPECT_EQ(connect_and_say({OLD_WELCOME, granted}), "done");
    EXPECT_EQ(protocol(), 4);
}

TEST_F(Fake_broker_test, ABrokerThatHangsUpIsAskedForTheOtherProtocol) {
    m_hangs_up = true;
    for (const int expected : {5, 4, 5}) {
        m_packets.clear();
        EXPECT_EQ(connect_and_say({""}), "away: the broker has closed the connection");
        EXPECT_EQ(protocol(), expected);
    }
    m_server.stop_listening();
    EXPECT_EQ(connect(), "away: Connection refused");
    m_server.listen_again();
    m_packets.clear();
    EXPECT_EQ(connect_and_say({""}), "away: the broker has closed the connection");
    EXPECT_EQ(protocol(), 4);
}

// ---- in a menu file

class Mqtt_menu_test : public Driver_menu_test {
protected:
    void load(const std::string& driver, const std::string& parameters, Work work = Work::STEPS) {
        load_menu({&mqtt_driver_row()}, "/nowhere",
                  R"({"home": {"driver": "mqtt", "host": "127.0.0.1")" + driver + "}}", parameters,
                  work);
    }
    // Lets the driver work until the parameter is fresh, or for a long time.
    Freshness step_until(Freshness wanted, milliseconds pace = 100ms) {
        const auto end = std::chrono::steady_clock::now() + 20s;
        Device_cache& cache = m_device->cache();
        do {
            number_of(cache, 1);
            m_clock->advance(pace);
            cache.step();
        } while (cache.state(1, 0)->freshness != wanted && std::chrono::steady_clock::now() < end);
        return cache.state(1, 0)->freshness;
    }
    // The cache of a menu whose parameter 1 lives at the broker: 5, and fresh.
    Device_cache& cache_of_level(const Broker& broker) {
        Peer(broker).publish("level", "5", true);
        load(R"(, "port": )" + broker.port(),
             number(1, "level", R"("topic": "level", "write": "set")"));
        EXPECT_EQ(problems(), Lines{});
        Device_cache& cache = m_device->cache();
        cache.start();
        EXPECT_EQ(step_until(Freshness::FRESH), Freshness::FRESH);
        EXPECT_EQ(number_of(cache, 1), 5);
        return cache;
    }
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
             number(3, "c", R"("topic": "x", "member": "/n")"));
    m_device->check(m_problems);
    EXPECT_EQ(problems(), (Lines{"warning: \"/nowhere/login\": No such file or directory",
                                 "warning: \"a\" is written to the same topic",
                                 "warning: \"b\" is read from the same topic"}));
}

TEST_F(Mqtt_menu_test, AFloodOfMessagesWakesTheMenuNowAndThen) {
    constexpr int COUNT = 10000;
    Broker broker;
    if (!broker.is_running()) {
        GTEST_SKIP() << "no broker without Debian's package mosquitto";
    }
    load(R"(, "port": )" + broker.port(),
         R"({"pid": 1, "type": "integer", "min": 0, "max": 10000, "source": {"topic": "level"}})",
         Work::THREADS);
    ASSERT_EQ(problems(), Lines{});
    Device_cache& cache = m_device->cache();
    cache.start();
    Peer peer(broker);
    peer.publish("level", "0", true);
    const auto end = std::chrono::steady_clock::now() + 60s;
    const auto wait_for_value = [&](int wanted) {
        int wakes = 0;
        while (number_of(cache, 1) != wanted && std::chrono::steady_clock::now() < end) {
            pollfd source{cache.descriptor(), POLLIN, 0};
            poll(&source, 1, 100);
            wakes += cache.take_changes() ? 1 : 0;
        }
        return wakes;
    };
    wait_for_value(0);
    std::thread flood([&] {
        for (int i = 1; i < COUNT; ++i) {
            peer.queue("level", std::to_string(i));
        }
        peer.publish("level", std::to_string(COUNT));
    });
    const int wakes = wait_for_value(COUNT);
    flood.join();
    EXPECT_EQ(number_of(cache, 1), COUNT);
    EXPECT_LT(wakes, COUNT / 5);
}

TEST_F(Mqtt_menu_test, AWriteWhileTheBrokerRestartsIsSentOnce) {
    Broker broker;
    if (!broker.is_running()) {
        GTEST_SKIP() << "no broker without Debian's package mosquitto";
    }
    Device_cache& cache = cache_of_level(broker);

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
    // The broker has it, and the device has not answered yet.
    EXPECT_TRUE(cache.state(1, 0)->is_writing);
    peer.publish("level", "8");
    EXPECT_EQ(step_until(Freshness::FRESH, 0ms), Freshness::FRESH);
    EXPECT_FALSE(cache.state(1, 0)->is_writing);
    EXPECT_EQ(number_of(cache, 1), 8);
    EXPECT_EQ(texts_of(cache.take_events()),
              (Lines{"home: away: the broker has closed the connection", "home: back"}));
}

// Detents of a knob before, while and after the broker is away.
TEST_F(Mqtt_menu_test, AnEditWhileTheBrokerRestartsLosesNoLastDetent) {
    Broker broker;
    if (!broker.is_running()) {
        GTEST_SKIP() << "no broker without Debian's package mosquitto";
    }
    Device_cache& cache = cache_of_level(broker);
    {
        Peer peer(broker);
        set_number(cache, 1, 6);
        cache.step();
        EXPECT_EQ(peer.messages_to("set=6").back(), "set=6");
    }
    // The broker has the first detent, and the device has not answered.
    EXPECT_TRUE(cache.state(1, 0)->is_writing);
    broker.signal(SIGKILL);
    broker.stop();
    EXPECT_EQ(step_until(Freshness::UNKNOWN), Freshness::UNKNOWN);
    const Lines events = texts_of(cache.take_events());
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[1].substr(0, 29), "home: level: write timed out:") << events[1];
    for (const int detent : {7, 8, 9}) {
        set_number(cache, 1, detent);
        cache.step();
        EXPECT_EQ(number_of(cache, 1), detent);
        EXPECT_TRUE(cache.state(1, 0)->is_writing);
    }

    broker.start();
    Peer peer(broker);
    m_clock->advance(2s);
    cache.step();
    EXPECT_EQ(peer.messages_to("set=9"), Lines{"set=9"});
    set_number(cache, 1, 10);
    cache.step();
    EXPECT_EQ(peer.messages_to("set=10"), Lines{"set=10"});
    peer.publish("level", "10");
    EXPECT_EQ(step_until(Freshness::FRESH, 0ms), Freshness::FRESH);
    EXPECT_EQ(number_of(cache, 1), 10);
    EXPECT_FALSE(cache.state(1, 0)->is_writing);
    EXPECT_EQ(texts_of(cache.take_events()), Lines{"home: back"});
}

}  // namespace
}  // namespace support
