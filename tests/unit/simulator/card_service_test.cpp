#include <frontpanel_simulator/card_service.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <set>
#include <string>

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
