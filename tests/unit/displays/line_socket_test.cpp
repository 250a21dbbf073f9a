#include "line_socket.h"

#include <gtest/gtest.h>

#include "support/fake_server.h"

namespace frontpanel {
namespace {

using State = Line_socket::State;

class Line_socket_test : public testing::Test {
protected:
    void open() {
        socket.connect("127.0.0.1", server.port());
        server.accept_client();
        while (socket.state() == State::CONNECTING) {
            serve();
        }
        ASSERT_EQ(socket.state(), State::OPEN);
    }
    // Serves what is there, or arrives.
    void serve() {
        const pollfd source = socket.source();
        ASSERT_TRUE(is_ready(source.fd, source.events));
        socket.service();
    }
    std::string line() { return socket.next_line().value_or("(none)"); }

    Fake_server server;
    Line_socket socket;
};

TEST_F(Line_socket_test, CarriesLinesBothWays) {
    open();
    socket.send("one");
    socket.send("two words");
    EXPECT_TRUE(server.is_silent());
    socket.service();
    EXPECT_EQ(server.lines_to("two words"), (std::vector<std::string>{"one", "two words"}));
    server.say("three\n\nfo");
    serve();
    EXPECT_EQ(line(), "three");
    EXPECT_EQ(line(), "");
    EXPECT_FALSE(socket.has_line());
    EXPECT_EQ(line(), "(none)");
    server.say("ur\n");
    serve();
    EXPECT_TRUE(socket.has_line());
    EXPECT_EQ(line(), "four");
}

TEST_F(Line_socket_test, TellsWhyThereIsNoConnection) {
    server.stop_listening();
    socket.connect("127.0.0.1", server.port());
    while (socket.state() == State::CONNECTING) {
        serve();
    }
    EXPECT_EQ(socket.state(), State::CLOSED);
    EXPECT_EQ(socket.reason(), "Connection refused");
    EXPECT_EQ(socket.source().fd, -1);
    socket.connect("display.invalid", 1);
    EXPECT_EQ(socket.state(), State::CLOSED);
    EXPECT_EQ(socket.reason(), "no address");
}

TEST_F(Line_socket_test, WhatIsSentWithoutAConnectionIsDropped) {
    socket.send("lost");
    open();
    socket.send("kept");
    socket.service();
    EXPECT_EQ(server.lines_to("kept"), std::vector<std::string>{"kept"});
}

TEST_F(Line_socket_test, LinesBeforeTheEndAreDelivered) {
    open();
    server.say("last\nhal");
    server.hang_up();
    while (socket.state() == State::OPEN) {
        serve();
    }
    EXPECT_EQ(socket.reason(), "it closed the connection");
    EXPECT_EQ(line(), "last");
    EXPECT_EQ(line(), "(none)");
}

TEST_F(Line_socket_test, ALineThatIsTooLongIsDroppedWholly) {
    open();
    const std::string longest(Line_socket::LONGEST_LINE, 'x');
    server.say(longest + "\n" + longest + "y\nnext\n");
    serve();
    while (socket.has_line()) {
        const std::string arrived = line();
        EXPECT_TRUE(arrived == longest || arrived == "next") << arrived.size();
        socket.service();
    }
    server.say(std::string(3000, 'z'));
    serve();
    server.say("tail\nafter\n");
    serve();
    EXPECT_EQ(line(), "after");
}

TEST_F(Line_socket_test, SomebodyWhoDoesNotReadIsLeft) {
    open();
    const std::string text(1000, 'x');
    // The system takes some megabytes for a connection that is not read.
    for (int i = 0; i < 100000 && socket.state() == State::OPEN; ++i) {
        socket.send(text);
        socket.service();
    }
    EXPECT_EQ(socket.state(), State::CLOSED);
    EXPECT_EQ(socket.reason(), "it does not read");
}

TEST_F(Line_socket_test, ANewConnectionStartsEmpty) {
    open();
    server.say("old\nhalf");
    serve();
    server.hang_up();
    open();
    EXPECT_FALSE(socket.has_line());
    server.say("new\n");
    serve();
    EXPECT_EQ(line(), "new");
}

}  // namespace
}  // namespace frontpanel
