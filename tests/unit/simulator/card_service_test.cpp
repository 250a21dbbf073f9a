#include <frontpanel_simulator/card_service.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <set>
#include <string>
#include <vector>

using namespace frontpanel;

namespace {

constexpr const char* DOCUMENT =
    "/slot/3/htdocs/cgi-bin/cfgjson?Get&slotid=3&9071@d;time&1480088766084";

// What each of so many requests meets.
std::vector<std::string> answers(const Card_service& service, int requests) {
    std::vector<std::string> met;
    for (int i = 0; i < requests; ++i) {
        httplib::Client client("127.0.0.1", service.port());
        client.set_decompress(false);
        client.set_url_encode(false);
        const httplib::Result result = client.Get(DOCUMENT);
        if (!result) {
            met.emplace_back("cut off");
        } else if (result->status != 200) {
            met.push_back(std::to_string(result->status));
        } else {
            met.push_back(result->body.substr(0, 2) == "\x1f\x8b" ? "whole"
                          : result->body.substr(0, 1) == "{"      ? "plain"
                                                                  : "garbage");
        }
    }
    return met;
}

class Card_service_test : public testing::Test {
protected:
    Card_service_test() { m_service.add_combo_box(3, 9071, {{"0", "25 Hz"}, {"1", "30 Hz"}}, 1); }

    Card_service m_service;
};

TEST_F(Card_service_test, OfAllKindsAreDrawn) {
    m_service.set_random_faults(1, 0.8);
    const std::vector<std::string> met = answers(m_service, 60);
    EXPECT_EQ(std::set<std::string>(met.begin(), met.end()),
              (std::set<std::string>{"whole", "cut off", "503", "plain", "garbage"}));
}

TEST_F(Card_service_test, AreTheSameForTheSameSeed) {
    m_service.set_random_faults(7, 0.5);
    const std::vector<std::string> first = answers(m_service, 30);
    m_service.set_random_faults(7, 0.5);
    EXPECT_EQ(answers(m_service, 30), first);
    m_service.set_random_faults(8, 0.5);
    EXPECT_NE(answers(m_service, 30), first);
}

TEST_F(Card_service_test, NeverAndAlwaysAreExact) {
    m_service.set_random_faults(1, 0);
    EXPECT_THAT(answers(m_service, 20), testing::Each("whole"));
    m_service.set_random_faults(1, 1);
    // A late answer is whole.
    EXPECT_THAT(answers(m_service, 20),
                testing::Contains(testing::Ne("whole")).Times(testing::Ge(10)));
}

TEST_F(Card_service_test, EndWithAnotherOrder) {
    m_service.set_random_faults(1, 1, std::chrono::hours(1));
    m_service.set_fault(Card_service::Fault::NONE);
    EXPECT_THAT(answers(m_service, 10), testing::Each("whole"));
}

constexpr const char* POST =
    "/slot/3/htdocs/cgi-bin/cfgjson?Set&slotid=3&9071@s;time&1481650582406";

int post(const Card_service& service, int option) {
    httplib::Client client("127.0.0.1", service.port());
    client.set_url_encode(false);
    const httplib::Result result =
        client.Post(POST, R"({"state":{"value":")" + std::to_string(option) + "\"}}", "text/plain");
    return result ? result->status : 0;
}

// A connection that sends what a test wants to.
class Raw_client {
public:
    explicit Raw_client(int port) : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<uint16_t>(port));
        EXPECT_EQ(connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        const timeval patience{20, 0};
        setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    }
    ~Raw_client() { close(m_socket); }
    Raw_client(const Raw_client&) = delete;
    Raw_client& operator=(const Raw_client&) = delete;

    // How much was taken before the service closed the connection.
    size_t send_some(const std::string& text) const {
        size_t sent = 0;
        while (sent < text.size()) {
            const ssize_t size =
                ::send(m_socket, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (size <= 0) {
                break;
            }
            sent += static_cast<size_t>(size);
        }
        return sent;
    }
    // The first line of the answer; empty for none.
    std::string status_line() const {
        std::string text;
        char bytes[4096];
        ssize_t size = 0;
        while ((size = recv(m_socket, bytes, sizeof bytes, 0)) > 0) {
            text.append(bytes, static_cast<size_t>(size));
        }
        return text.substr(0, text.find("\r\n"));
    }

private:
    int m_socket;
};

constexpr const char* SELECTION = R"({"state":{"value":"0"}})";

std::string post_text(const std::string& headers, const std::string& body) {
    return "POST " + std::string(POST) + " HTTP/1.1\r\n" + headers + "\r\n" + body;
}

std::string length_header(size_t length) {
    return "Content-Length: " + std::to_string(length) + "\r\n";
}

TEST_F(Card_service_test, ABodyOfSixtyFourKilobytesIsTakenAndNoLongerOne) {
    constexpr size_t LONGEST = size_t{64} * 1024;
    const auto status_of = [this](size_t length) {
        const Raw_client client(m_service.port());
        std::string body = SELECTION;
        body.resize(length, ' ');
        client.send_some(post_text(length_header(length), body));
        return client.status_line();
    };
    EXPECT_EQ(status_of(LONGEST + 1), "HTTP/1.1 413 Content Too Large");
    EXPECT_EQ(status_of(LONGEST * 100), "HTTP/1.1 413 Content Too Large");
    EXPECT_EQ(m_service.selected(3, 9071), 1);
    EXPECT_EQ(status_of(LONGEST), "HTTP/1.1 200 OK");
    EXPECT_EQ(m_service.selected(3, 9071), 0);
}

TEST_F(Card_service_test, ABodyWithoutUsableLengthIsRefused) {
    const std::pair<const char*, const char*> CASES[] = {
        {"Transfer-Encoding: chunked\r\n", "HTTP/1.1 411 Length Required"},
        {"Content-Length: -1\r\n", "HTTP/1.1 400 Bad Request"},
        {"Content-Length: 9x\r\n", "HTTP/1.1 400 Bad Request"},
        {"Content-Length:\r\n", "HTTP/1.1 400 Bad Request"},
        {"no header\r\n", "HTTP/1.1 400 Bad Request"},
        {"Origin : http://127.0.0.1\r\n", "HTTP/1.1 400 Bad Request"},
        {" Origin: http://127.0.0.1\r\n", "HTTP/1.1 400 Bad Request"},
        {"Origin: http://a\r\norigin: http://b\r\n", "HTTP/1.1 400 Bad Request"},
        {"Host: a\r\nHost: b\r\n", "HTTP/1.1 400 Bad Request"},
        {"Content-Length: 99999999999999999999999\r\n", "HTTP/1.1 413 Content Too Large"},
    };
    for (const auto& [headers, status] : CASES) {
        const Raw_client client(m_service.port());
        client.send_some(post_text(headers, SELECTION));
        EXPECT_EQ(client.status_line(), status) << headers;
    }
    EXPECT_EQ(m_service.selected(3, 9071), 1);
}

TEST_F(Card_service_test, AHeadIsBounded) {
    const std::string lines = "X-Long: " + std::string(1000, 'x') + "\r\n";
    std::string many;
    for (int i = 0; i < 20; ++i) {
        many += lines;
    }
    {
        const Raw_client client(m_service.port());
        client.send_some(post_text(many, ""));
        EXPECT_EQ(client.status_line(), "HTTP/1.1 431 Request Header Fields Too Large");
    }
    // One that never ends.
    const Raw_client client(m_service.port());
    client.send_some("GET /" + std::string(size_t{1} * 1024 * 1024, 'x'));
    EXPECT_EQ(client.status_line(), "HTTP/1.1 431 Request Header Fields Too Large");
}

TEST_F(Card_service_test, WhatIsRememberedIsCut) {
    httplib::Client client("127.0.0.1", m_service.port());
    client.set_url_encode(false);
    const std::string target = std::string(POST) + "&" + std::string(5000, 't');
    const httplib::Result result = client.Post(target, std::string(60000, 'b'), "text/plain");
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 404);
    const std::vector<Card_service::Request> requests = m_service.requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].target, target.substr(0, Card_service::LONGEST_REMEMBERED));
    EXPECT_EQ(requests[0].body, std::string(Card_service::LONGEST_REMEMBERED, 'b'));
}

TEST_F(Card_service_test, IdleAndSlowClientsHoldUpNobody) {
    std::vector<std::unique_ptr<Raw_client>> idle;
    for (int i = 0; i < 300; ++i) {
        idle.push_back(std::make_unique<Raw_client>(m_service.port()));
        const char* const beginnings[] = {"", "GET /sl",
                                          "POST / HTTP/1.1\r\nContent-Length: 9\r\n\r\nx"};
        idle.back()->send_some(beginnings[i % 3]);
    }
    EXPECT_THAT(answers(m_service, 20), testing::Each("whole"));
    EXPECT_EQ(post(m_service, 0), 200);
}

TEST_F(Card_service_test, RequestsThatWaitHoldUpNobody) {
    m_service.set_fault(Card_service::Fault::LATE, std::chrono::hours(1));
    std::vector<std::unique_ptr<Raw_client>> late;
    for (int i = 0; i < 30; ++i) {
        late.push_back(std::make_unique<Raw_client>(m_service.port()));
        late.back()->send_some("GET " + std::string(DOCUMENT) + " HTTP/1.1\r\n\r\n");
    }
    EXPECT_EQ(httplib::Client("127.0.0.1", m_service.port()).Get("/")->status, 404);
    m_service.set_fault(Card_service::Fault::NONE);
    for (const auto& client : late) {
        EXPECT_EQ(client->status_line(), "HTTP/1.1 200 OK");
    }
}

TEST_F(Card_service_test, APostOfAForeignOriginSelectsNothing) {
    const std::string port = ":" + std::to_string(m_service.port());
    const auto status_of = [this](const std::string& header) {
        const Raw_client client(m_service.port());
        const std::string body = SELECTION;
        client.send_some(post_text(header + "\r\n" + length_header(body.size()), body));
        return client.status_line();
    };
    for (const std::string& header :
         {std::string("Origin: http://pages.example"), std::string("oRiGiN: null"),
          std::string("Origin: http://127.0.0.1:1"), "Origin: https://127.0.0.1" + port,
          "Origin: http://127.0.0.1" + port + ".pages.example", std::string("Origin:"),
          "Host: pages.example" + port, std::string("Host: 127.0.0.1")}) {
        EXPECT_EQ(status_of(header), "HTTP/1.1 403 Forbidden") << header;
        EXPECT_EQ(m_service.selected(3, 9071), 1) << header;
    }
    for (const std::string& header :
         {"Origin: http://127.0.0.1" + port, "Origin: http://localhost" + port,
          "Host: 127.0.0.1" + port}) {
        m_service.select(3, 9071, 1);
        EXPECT_EQ(status_of(header), "HTTP/1.1 200 OK") << header;
        EXPECT_EQ(m_service.selected(3, 9071), 0) << header;
    }
}

TEST_F(Card_service_test, ARequestIsUnderstoodToTheLetter) {
    httplib::Client client("127.0.0.1", m_service.port());
    client.set_url_encode(false);
    const std::string begin = "/slot/3/htdocs/cgi-bin/cfgjson?Get&slotid=3&";
    const std::string end = "@d;time&1480088766084";
    ASSERT_EQ(client.Get(begin + "9071" + end)->status, 200);
    EXPECT_EQ(client.Get(begin + "9071@s;time&1480088766084")->status, 200);
    for (const std::string& target :
         {std::string("/slot/"), std::string("/slot/3"), std::string("/slot/3/"),
          std::string("/slot/3/htdocs/cgi-bin/cfgjson?Get&slotid=3&9071@"), begin, begin + "9071",
          begin + "09071" + end, begin + "+9071" + end, begin + " 9071" + end, begin + "" + end,
          begin + "9071x" + end, begin + "4294976367" + end, begin + "9071" + end + " ",
          begin + "9071@dd;time&1480088766084", begin + "9071@d;time&1481650582406",
          "/slot/03/htdocs/cgi-bin/cfgjson?Get&slotid=3&9071" + end,
          "/slot/3/htdocs/cgi-bin/cfgjson?Get&slotid=4&9071" + end,
          "/slot/3/htdocs/cgi-bin/cfgjson?Set&slotid=3&9071" + end,
          "/slot/3/slot/3/htdocs/cgi-bin/cfgjson?Get&slotid=3&9071" + end}) {
        const httplib::Result result = client.Get(target);
        EXPECT_TRUE(result && result->status != 200) << target;
    }
}

TEST_F(Card_service_test, AListenerIsToldOfEachOtherSelection) {
    int changes = 0;
    m_service.set_change_listener([&changes] { ++changes; });
    EXPECT_EQ(post(m_service, 0), 200);
    EXPECT_EQ(post(m_service, 0), 200);
    EXPECT_EQ(post(m_service, 2), 400);
    m_service.set_change_listener(nullptr);
    EXPECT_EQ(post(m_service, 1), 200);
    EXPECT_EQ(changes, 1);
}

TEST_F(Card_service_test, ASelectionIsSetOnlyToAnOptionThatIsThere) {
    EXPECT_TRUE(m_service.has_document(3, 9071));
    EXPECT_FALSE(m_service.has_document(3, 9072));
    EXPECT_TRUE(m_service.select(3, 9071, 0));
    EXPECT_FALSE(m_service.select(3, 9071, 2));
    EXPECT_FALSE(m_service.select(3, 9071, -1));
    EXPECT_FALSE(m_service.select(3, 9072, 0));
    EXPECT_EQ(m_service.selected(3, 9071), 0);
    EXPECT_EQ(m_service.selections().size(), 1U);
}

}  // namespace
