// Live data from end to end: the processor, the real tools and the cards' web service.
#include <dirent.h>
#include <fcntl.h>
#include <frontpanel_data/live_data_processor.h>
#include <frontpanel_simulator/card_service.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include "support/capture.h"
#include "support/live_data.h"

using namespace frontpanel;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Texts = std::vector<std::string>;

constexpr int COMBO_BOX = 0;
constexpr int TREE = 1;
constexpr int SLOT = 3;

// Exit statuses of curl, as `system` returns them.
constexpr int CURL_CANNOT_CONNECT = 7 * 256;
constexpr int CURL_PARTIAL_FILE = 18 * 256;
constexpr int CURL_TIMED_OUT = 28 * 256;
constexpr int GUNZIP_FAILED = 1 * 256;

bool exists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

std::string content_of(const std::string& path) {
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// Tests run side by side, and the temporary files carry the variable's id.
int variable_of_this_process() {
    return 100000 + static_cast<int>(getpid());
}

class Live_data : public ::testing::Test {
protected:
    struct Result {
        int ret = 0;
        uint32_t selection = 0;
        Texts texts;
        std::string out;
    };

    Live_data() { use_address(m_service.address()); }
    ~Live_data() override {
        for (const std::string& path : {m_document, m_document + ".gz", m_post}) {
            unlink(path.c_str());
        }
    }

    void use_address(std::string address) { m_processor.updateLDP(0, address.data(), SLOT); }

    void add_three_options(int selected) {
        m_service.add_combo_box(SLOT, m_varid, {{"0", "Off"}, {"1", "Slow"}, {"2", "Fast"}},
                                selected);
    }

    Result fetch(int web_type) {
        Result result;
        char** texts = nullptr;
        uint32_t size = 99;
        result.out = support::capture(0, [&] {
                         result.ret = m_processor.getData(m_varid, 's', web_type, 0, &texts,
                                                          &result.selection, &size);
                     }).out;
        EXPECT_EQ(texts == nullptr, size == 0);
        for (uint32_t i = 0; i < size; ++i) {
            result.texts.push_back(texts[i] != nullptr ? texts[i] : "<null>");
            delete[] texts[i];
        }
        delete[] texts;
        return result;
    }

    // Writes the commit document; its text is what the shell's echo left.
    int write_commit(std::string value) {
        int ret = -1;
        std::string path = m_post;
        support::capture(
            0, [&] { ret = m_processor.createLDCommitFile(m_varid, path.data(), value.data()); });
        return ret;
    }

    int post() {
        int ret = -1;
        std::string path = m_post;
        support::capture(0, [&] { ret = m_processor.Commit(m_varid, 's', path.data()); });
        return ret;
    }

    const int m_varid = variable_of_this_process();
    const std::string m_document = "/tmp/" + std::to_string(m_varid) + "-json";
    const std::string m_post = "/tmp/" + std::to_string(m_varid) + "-post";
    support::Work_folder m_folder;
    Card_service m_service;
    Live_Data_Processor m_processor{1, nullptr, SLOT};
};

class Live_data_post : public Live_data {
protected:
    void SetUp() override {
        if (!m_permit.granted()) {
            GTEST_SKIP() << "/dev is not writable, so the device's post command cannot run here";
        }
    }

private:
    support::Post_permit m_permit;
};

// Fetching

TEST_F(Live_data, FetchesAComboBox) {
    add_three_options(1);
    const Result result = fetch(COMBO_BOX);
    EXPECT_EQ(result.ret, 0);
    EXPECT_EQ(result.selection, 1u);
    EXPECT_THAT(result.texts, ElementsAre("Off", "Slow", "Fast"));
    EXPECT_EQ(result.out, "");
    const auto requests = m_service.requests();
    ASSERT_THAT(requests, SizeIs(1));
    EXPECT_EQ(requests[0].method, "GET");
    EXPECT_EQ(requests[0].status, 200);
    EXPECT_EQ(requests[0].target, "/slot/3/htdocs/cgi-bin/cfgjson?Get&slotid=3&" +
                                      std::to_string(m_varid) + "@s;time&1480088766084");
}

TEST_F(Live_data, FetchesATree) {
    m_service.add_tree(SLOT, m_varid,
                       R"({"label":"Top","children":[{"label":"Leaf","action":{"id":"x"}}]})");
    const Result result = fetch(TREE);
    EXPECT_EQ(result.ret, 0);
    EXPECT_EQ(result.selection, 0u);
    EXPECT_THAT(result.texts, ElementsAre("Top", "*Leaf"));
}

TEST_F(Live_data, LeavesThePlainDocumentUntilTheNextFetch) {
    add_three_options(0);
    fetch(COMBO_BOX);
    EXPECT_EQ(content_of(m_document),
              R"({"state":{"value":"0"},"options":[{"value":"0","label":"Off"},)"
              R"({"value":"1","label":"Slow"},{"value":"2","label":"Fast"}]})");
    EXPECT_FALSE(exists(m_document + ".gz"));
    std::ofstream(m_document + ".gz") << "left behind";
    EXPECT_EQ(fetch(COMBO_BOX).ret, 0);
    EXPECT_FALSE(exists(m_document + ".gz"));
}

TEST_F(Live_data, FetchesTextsOfAnyKind) {
    const Texts labels = {"",
                          "a\"b\\c",
                          "tab\tnewline\n",
                          "\xc3\xa9\xe2\x82\xac",
                          "$(id) `id`",
                          std::string(5000, 'x')};
    std::vector<Card_service::Option> options;
    for (const std::string& label : labels) {
        options.push_back({"v", label});
    }
    m_service.add_combo_box(SLOT, m_varid, options, 5);
    const Result result = fetch(COMBO_BOX);
    EXPECT_EQ(result.ret, 0);
    EXPECT_EQ(result.texts, labels);
}

TEST_F(Live_data, AStateOutsideTheOptionsIsAFailure) {
    for (const int state : {3, -1, 1000000}) {
        add_three_options(state);
        const Result result = fetch(COMBO_BOX);
        EXPECT_EQ(result.ret, -1) << state;
        EXPECT_THAT(result.texts, IsEmpty());
        EXPECT_EQ(result.out,
                  "Error: [live_data_processor.cpp][getData][#] Error in getting dynamic json "
                  "combobox data\n");
    }
}

TEST_F(Live_data, ACardThatIsNotThereIsAFailureOfCurl) {
    std::string address;
    {
        const Card_service gone;
        address = gone.address();
    }
    use_address(address);
    const Result result = fetch(COMBO_BOX);
    EXPECT_EQ(result.ret, CURL_CANNOT_CONNECT);
    EXPECT_THAT(result.texts, IsEmpty());
    EXPECT_EQ(result.out, "Error: [live_data_processor.cpp][getData][#] filename[" + m_document +
                              "] ret[1792] \n");
    EXPECT_FALSE(exists(m_document));
}

TEST_F(Live_data, AFetchThatFailsLeavesNoOlderDocument) {
    add_three_options(1);
    EXPECT_EQ(fetch(COMBO_BOX).ret, 0);
    ASSERT_TRUE(exists(m_document));
    m_service.set_fault(Card_service::Fault::CUT_OFF);
    EXPECT_NE(fetch(COMBO_BOX).ret, 0);
    EXPECT_FALSE(exists(m_document));
}

TEST_F(Live_data, EachFaultOfACardIsAFailureAndPasses) {
    using Fault = Card_service::Fault;
    const struct {
        Fault fault;
        int ret;
    } cases[] = {{Fault::CUT_OFF, CURL_PARTIAL_FILE},
                 {Fault::ERROR_STATUS, GUNZIP_FAILED},
                 {Fault::UNCOMPRESSED, GUNZIP_FAILED},
                 {Fault::GARBAGE, GUNZIP_FAILED},
                 {Fault::LATE, CURL_TIMED_OUT}};
    add_three_options(2);
    for (const auto& each : cases) {
        m_service.set_fault(each.fault, std::chrono::hours(1));
        const Result broken = fetch(COMBO_BOX);
        EXPECT_EQ(broken.ret, each.ret) << static_cast<int>(each.fault);
        EXPECT_THAT(broken.texts, IsEmpty());
        m_service.set_fault(Fault::NONE);
        const Result whole = fetch(COMBO_BOX);
        EXPECT_EQ(whole.ret, 0);
        EXPECT_THAT(whole.texts, ElementsAre("Off", "Slow", "Fast"));
    }
}

TEST_F(Live_data, AnAnswerWithinTheLimitIsTaken) {
    add_three_options(2);
    m_service.set_fault(Card_service::Fault::LATE, std::chrono::milliseconds(1));
    EXPECT_EQ(fetch(COMBO_BOX).ret, 0);
}

TEST_F(Live_data, ADocumentOfTheOtherKindIsAFailure) {
    m_service.add_tree(SLOT, m_varid, "[1,2]");
    EXPECT_EQ(fetch(TREE).ret, -1);
    EXPECT_EQ(fetch(COMBO_BOX).ret, -1);
    m_service.add_tree(SLOT, m_varid, std::string(100000, '['));
    EXPECT_EQ(fetch(TREE).ret, -1);
}

TEST_F(Live_data, CardsAreToldApartByTheirSlot) {
    add_three_options(0);
    m_service.add_combo_box(SLOT + 1, m_varid, {{"x", "Other"}}, 0);
    std::string address = m_service.address();
    m_processor.updateLDP(0, address.data(), SLOT + 1);
    EXPECT_THAT(fetch(COMBO_BOX).texts, ElementsAre("Other"));
    m_processor.updateLDP(0, address.data(), SLOT + 2);
    EXPECT_EQ(fetch(COMBO_BOX).ret, GUNZIP_FAILED);
}

// Posting

TEST_F(Live_data_post, APostedSelectionComesBackWithTheNextFetch) {
    add_three_options(0);
    EXPECT_EQ(fetch(COMBO_BOX).selection, 0u);
    EXPECT_EQ(write_commit("2"), 0);
    EXPECT_EQ(content_of(m_post), "{\"state\":{\"value\":\"2\"}}\n");
    EXPECT_EQ(post(), 0);
    EXPECT_EQ(m_service.selected(SLOT, m_varid), 2);
    const auto requests = m_service.requests();
    EXPECT_EQ(requests.back().method, "POST");
    EXPECT_EQ(requests.back().target, "/slot/3/htdocs/cgi-bin/cfgjson?Set&slotid=3&" +
                                          std::to_string(m_varid) + "@s;time&1481650582406");
    EXPECT_EQ(requests.back().body, "{\"state\":{\"value\":\"2\"}}");
    EXPECT_EQ(fetch(COMBO_BOX).selection, 2u);
}

TEST_F(Live_data_post, LeavesTheCardsAnswerInAFile) {
    add_three_options(0);
    write_commit("1");
    EXPECT_EQ(post(), 0);
    EXPECT_TRUE(exists(support::ANSWER_FILE));
}

TEST_F(Live_data_post, WhatTheCardRefusesIsNoFailureOfThePost) {
    add_three_options(1);
    write_commit("3");
    EXPECT_EQ(post(), 0);
    EXPECT_EQ(m_service.requests().back().status, 400);
    EXPECT_EQ(m_service.selected(SLOT, m_varid), 1);
}

TEST_F(Live_data_post, FailsWithTheCard) {
    add_three_options(1);
    write_commit("2");
    m_service.set_fault(Card_service::Fault::ERROR_STATUS);
    EXPECT_EQ(post(), 0);
    EXPECT_EQ(m_service.selected(SLOT, m_varid), 1);
    m_service.set_fault(Card_service::Fault::LATE, std::chrono::hours(1));
    EXPECT_EQ(post(), CURL_TIMED_OUT);
    m_service.set_fault(Card_service::Fault::CUT_OFF);
    EXPECT_EQ(post(), CURL_PARTIAL_FILE);
}

// Texts that a shell would execute or change

const char* const HOSTILE_TEXTS[] = {
    "$(touch hacked)",
    "`touch hacked`",
    "; touch hacked",
    "\"; touch hacked; \"",
    "\\\"; touch hacked; \\\"",
    "'; touch hacked; '",
    "'\"'\"; touch hacked",
    "a\ntouch hacked\n",
    "& touch hacked &",
    "| touch hacked",
    "> hacked",
    "}} > hacked; echo {{",
    "$HOME ${PATH} $$ $? $0",
    "a\\nb\\tc\\\\d\\0101\\c e",
    "trailing backslash\\",
    "\\",
    "two  blanks   three",
    " leading and trailing ",
    "\ttab",
    "-n",
    "-e \\n",
    "--help",
    "*",
    "/etc/*",
    "[a-z]?",
    "~ ~root",
    "# comment",
    "<(touch hacked)",
    "{a,b} {1..3}",
    "a,b",
    "!! !1 ^a^b",
    "%s %n %d",
    "\"quoted\"",
    "it's",
    "\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80",
    "\x01\x02\x1b[31m\x7f",
    "\xc2\x81\xc2\x88",
    "",
    "plain",
    "Two words, and more.",
};

// The value that a commit document holds.
std::string value_in(const std::string& text) {
    rapidjson::Document document;
    document.Parse(text.c_str(), text.size());
    if (document.HasParseError() || !document.IsObject() || document.MemberCount() != 1) {
        return "<broken: " + text + ">";
    }
    const rapidjson::Value& value = document["state"]["value"];
    return {value.GetString(), value.GetStringLength()};
}

TEST_F(Live_data, AnyTextBecomesTheValueAndNoneIsExecuted) {
    for (const char* text : HOSTILE_TEXTS) {
        EXPECT_EQ(write_commit(text), 0) << text;
        EXPECT_EQ(value_in(content_of(m_post)), text);
        EXPECT_EQ(support::names_in(m_folder.path()), (std::set<std::string>{".", "..", ".curlrc"}))
            << text;
    }
}

TEST_F(Live_data, TheCommitDocumentIsTheSameInAnotherShell) {
    if (!exists("/bin/bash")) {
        GTEST_SKIP() << "there is no bash";
    }
    for (const char* text : HOSTILE_TEXTS) {
        std::string path = "commit";
        std::string value = text;
        const std::string out = support::capture(0x1000000, [&] {
                                    m_processor.createLDCommitFile(1, path.data(), value.data());
                                }).out;
        const std::string first = content_of(path);
        const std::size_t begin = out.find("cmd[echo ") + 4;
        const std::size_t end = out.rfind(" > commit]");
        std::ofstream("script") << out.substr(begin, end - begin);
        ASSERT_EQ(std::system("bash --posix script > commit"), 0);
        EXPECT_EQ(content_of(path), first) << text;
        ASSERT_EQ(std::system("bash script > commit"), 0);
        EXPECT_EQ(content_of(path), first) << text;
        EXPECT_FALSE(exists("hacked")) << text;
    }
}

TEST_F(Live_data, ATextTooLongForTheCommandLeavesNoDocument) {
    EXPECT_EQ(write_commit("1"), 0);
    EXPECT_EQ(write_commit(std::string(300, 'x')), -1);
    EXPECT_FALSE(exists(m_post));
    EXPECT_EQ(write_commit("1"), 0);
    EXPECT_EQ(write_commit("not UTF-8: \xff"), -1);
    EXPECT_FALSE(exists(m_post));
}

TEST_F(Live_data, AHostileAddressRunsNothing) {
    for (const char* address : {"$(>hacked)", "`>hacked`", "1;>hacked;", "\";>hacked;\"",
                                "1.2.3.4>hacked", "127.0.0.1\n>h", "x|tee hacked"}) {
        use_address(address);
        EXPECT_EQ(fetch(COMBO_BOX).ret, -1) << address;
        EXPECT_EQ(support::names_in(m_folder.path()), (std::set<std::string>{".", "..", ".curlrc"}))
            << address;
    }
    EXPECT_THAT(m_service.requests(), IsEmpty());
}

TEST_F(Live_data, AHostileFileNameRunsNothing) {
    std::ofstream("precious") << "kept";
    const auto before = support::names_in(m_folder.path());
    for (const char* name : {"x;rm precious", "$(rm precious)", "precious *", "p*", "-f precious",
                             "x\nrm precious", "x>hacked", "`rm precious`", "prec?ous"}) {
        std::string path = name;
        std::string value = "1";
        support::capture(0, [&] {
            EXPECT_EQ(m_processor.createLDCommitFile(1, path.data(), value.data()), -1) << name;
            EXPECT_EQ(m_processor.Commit(1, 's', path.data()), -1) << name;
        });
        EXPECT_EQ(support::names_in(m_folder.path()), before) << name;
    }
}

// The service itself

TEST(Card_service, GivesAnAddressThatAProcessorCanKeep) {
    const Card_service service;
    EXPECT_GT(service.port(), 0);
    EXPECT_EQ(service.address(), "127.0.0.1:" + std::to_string(service.port()));
    EXPECT_LE(service.address().size(), 15u);
}

TEST(Card_service, TakesThePortThatItIsGivenUnlessItIsTaken) {
    int port = 0;
    {
        const Card_service first;
        port = first.port();
        EXPECT_THROW(Card_service second(port), std::runtime_error);
    }
    const Card_service third(port);
    EXPECT_EQ(third.port(), port);
}

TEST(Card_service, AnswersOnlyTheExactRequests) {
    const support::Work_folder folder;
    Card_service service;
    service.add_combo_box(1, 9000, {{"0", "Off"}}, 0);
    const std::string base = "curl -s -f -o answer \"http://" + service.address();
    const std::string path = base + "/slot/1/htdocs/cgi-bin/cfgjson";
    EXPECT_EQ(std::system((path + "?Get&slotid=1&9000@s;time&1480088766084\"").c_str()), 0);
    for (const std::string& target :
         {path + "?Get&slotid=1&9000@s;time&1480088766085\"",
          path + "?Get&slotid=2&9000@s;time&1480088766084\"",
          path + "?Get&slotid=1&9001@s;time&1480088766084\"",
          path + "?Get&slotid=1&9000@s;time&1480088766084&x\"",
          path + "?Set&slotid=1&9000@s;time&1480088766084\"",
          path + "?Get&slotid=01&9000@s;time&1480088766084\"",
          path + "?Get&slotid=99999999999999999999&9000@s;time&1480088766084\"", path + "\"",
          base + "/\""}) {
        EXPECT_EQ(std::system((target + " 2>/dev/null").c_str()), 22 * 256) << target;
    }
}

TEST(Card_service, RefusesPostsThatSelectNothing) {
    const support::Work_folder folder;
    Card_service service;
    service.add_combo_box(1, 9000, {{"0", "Off"}, {"1", "On"}}, 0);
    const std::string url = "\"http://" + service.address() +
                            "/slot/1/htdocs/cgi-bin/cfgjson?Set&slotid=1&9000@s;"
                            "time&1481650582406\"";
    const auto status_of = [&](const std::string& body) {
        std::ofstream("body") << body;
        return std::system(("curl -s -f -d @body " + url + " > answer").c_str()) / 256;
    };
    for (const char* body :
         {"", "1", "{", "[]", "{}", R"({"state":1})", R"({"state":{}})", R"({"state":{"value":1}})",
          R"({"state":{"value":"2"}})", R"({"state":{"value":"-1"}})", R"({"state":{"value":""}})",
          R"({"state":{"value":"1x"}})", R"({"state":{"value":"99999999999"}})"}) {
        EXPECT_EQ(status_of(body), 22) << body;
        EXPECT_EQ(service.selected(1, 9000), 0) << body;
    }
    EXPECT_EQ(status_of(R"({"state":{"value":"1"}})"), 0);
    EXPECT_EQ(service.selected(1, 9000), 1);
    EXPECT_EQ(service.selected(1, 9001), -1);
}

TEST(Card_service, KeepsTheNewestRequests) {
    const support::Work_folder folder;
    const Card_service service;
    std::ofstream script("script");
    for (std::size_t i = 0; i < Card_service::REMEMBERED + 2; ++i) {
        script << "url = \"http://" << service.address() << "/slot/" << i
               << "/htdocs/cgi-bin/cfgjson\"\noutput = answer\n";
    }
    script.close();
    std::ofstream(".curlrc") << "max-time = 60\n";
    EXPECT_EQ(std::system("curl -s -K script"), 0);
    const auto requests = service.requests();
    ASSERT_THAT(requests, SizeIs(Card_service::REMEMBERED));
    EXPECT_EQ(requests.front().target, "/slot/2/htdocs/cgi-bin/cfgjson");
}

TEST(Card_service, EndsWhileARequestWaits) {
    const support::Work_folder folder;
    auto service = std::make_unique<Card_service>();
    service->set_fault(Card_service::Fault::LATE, std::chrono::hours(1));
    const std::string command = "curl -s -o answer http://" + service->address() +
                                "/slot/1/htdocs/cgi-bin/cfgjson; echo $? > status";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(content_of("status"), "28\n");
    service.reset();
}

}  // namespace
