#include "adapter_connection.h"

#include <gtest/gtest.h>

#include <thread>

#include "support/fake_server.h"
#include "support/folder.h"

namespace frontpanel {
namespace {

using namespace std::chrono_literals;

Adapter_place place_of(const std::string& members) {
    const Source source{"menu.json", 0};
    const Json_document document(source, "{" + members + "}");
    Problems problems;
    return adapter_place_of(Json_value(document.root(), problems), "");
}

Adapter_connection::Time later() {
    return std::chrono::steady_clock::now() + 60s;
}

class Adapter_connection_test : public testing::Test {
protected:
    Adapter_connection_test() {
        EXPECT_TRUE(m_connection.open(later())) << m_connection.fault();
        m_server.accept_client();
    }
    std::string next_line() {
        m_connection.serve(later());
        return m_connection.next_line().value_or("(none) " + m_connection.fault());
    }

    Fake_server m_server;
    Adapter_connection m_connection{
        place_of(R"("tcp": "127.0.0.1:)" + std::to_string(m_server.port()) + "\""), "room"};
};

TEST_F(Adapter_connection_test, LinesGoToAndFro) {
    m_connection.send("one");
    m_connection.send("two");
    m_server.say("a\nb");
    EXPECT_EQ(next_line(), "a");
    EXPECT_EQ(m_server.lines_to("two"), (std::vector<std::string>{"one", "two"}));
    m_server.say("b\n\nc\n");
    EXPECT_EQ(next_line(), "bb");
    EXPECT_EQ(next_line(), "");
    EXPECT_EQ(next_line(), "c");
}

TEST_F(Adapter_connection_test, ALineHasBegunOnceItsFirstByteHasLeft) {
    const std::uint64_t first = m_connection.send("one");
    EXPECT_FALSE(m_connection.has_begun(first));
    m_connection.serve(std::chrono::steady_clock::now());
    EXPECT_TRUE(m_connection.has_begun(first));
    // No adapter reads what follows: a line that is behind very much never leaves.
    for (int i = 0; i < 100; ++i) {
        m_connection.send(std::string(100000, 'x'));
    }
    const std::uint64_t last = m_connection.send("last");
    m_connection.serve(std::chrono::steady_clock::now());
    EXPECT_FALSE(m_connection.has_begun(last));
    EXPECT_TRUE(m_connection.is_open());
}

TEST_F(Adapter_connection_test, LinesBeforeTheEndAreDelivered) {
    m_server.say("a\nb\nc");
    m_server.hang_up();
    EXPECT_EQ(next_line(), "a");
    EXPECT_EQ(next_line(), "b");
    EXPECT_EQ(next_line(), "(none) it closed the connection in the middle of a line");
    EXPECT_FALSE(m_connection.is_open());
}

TEST_F(Adapter_connection_test, ALineWithoutAnEndClosesIt) {
    m_server.say(std::string(LONGEST_ADAPTER_LINE, 'x') + "\n");
    EXPECT_EQ(next_line().size(), LONGEST_ADAPTER_LINE);
    m_server.say(std::string(LONGEST_ADAPTER_LINE + 1, 'x'));
    EXPECT_EQ(next_line(), "(none) a line is longer than 4096 bytes");
}

TEST_F(Adapter_connection_test, TheAdapterLearnsWhyItIsEnded) {
    m_connection.fail("no \x1b JSON");
    EXPECT_EQ(m_connection.fault(), "no \x1b JSON");
    EXPECT_FALSE(m_connection.is_open());
    const std::string line = R"({"type":"error","message":"no ? JSON"})";
    EXPECT_EQ(m_server.lines_to(line), std::vector<std::string>{line});
}

TEST_F(Adapter_connection_test, ItCanBeOpenedAgain) {
    m_connection.send("never sent");
    m_connection.close("enough");
    EXPECT_EQ(m_connection.fault(), "enough");
    ASSERT_TRUE(m_connection.open(later()));
    m_server.hang_up();
    m_server.accept_client();
    m_connection.send("fresh");
    m_server.say("x\n");
    EXPECT_EQ(next_line(), "x");
    EXPECT_EQ(m_server.lines_to("fresh"), std::vector<std::string>{"fresh"});
}

TEST_F(Adapter_connection_test, AStopFromAnotherThreadEndsItsWaiting) {
    std::thread other([this] { m_connection.stop(); });
    m_connection.serve(later());
    other.join();
    EXPECT_TRUE(m_connection.is_stopped());
    m_connection.serve(later());  // returns, too
    EXPECT_TRUE(m_connection.is_open());
}

}  // namespace
}  // namespace frontpanel
