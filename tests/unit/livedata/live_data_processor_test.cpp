#include <frontpanel_data/live_data_processor.h>

#include <climits>
#include <cstring>
#include <deque>
#include <fstream>

#include "livedata_support.h"
#include "support/line_gates.h"

namespace {

using livedata_test::LIVE_DATA_MASK;
using livedata_test::output_of;
using livedata_test::take_system_log;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Texts = std::vector<std::string>;

// Tests run side by side, and the temporary files carry the variable's id.
const int OWN_VARIABLE = 100000 + static_cast<int>(getpid());
const std::string OWN_DOCUMENT = "/tmp/" + std::to_string(OWN_VARIABLE) + "-json";

// Stands in for `system`: records commands, answers with prepared statuses (0 when there is none).
struct Shell {
    Texts commands;
    std::deque<int> statuses;
    int throws_at = -1;  // the command, counted from 0, that raises
} shell;

const char* const LEAD = "[live_data_processor.cpp]";

}  // namespace

extern "C" __attribute__((visibility("default"))) int __wrap_system(const char* command) {
    shell.commands.push_back(command);
    if (static_cast<int>(shell.commands.size()) - 1 == shell.throws_at) {
        throw 7;
    }
    if (shell.statuses.empty()) {
        return 0;
    }
    const int status = shell.statuses.front();
    shell.statuses.pop_front();
    return status;
}

namespace {

class Live_data_processor : public ::testing::Test {
protected:
    Live_data_processor() {
        shell = Shell();
        take_system_log();
    }

    // What the fetch leaves for the parser.
    void card_answers(const std::string& document) { std::ofstream(OWN_DOCUMENT) << document; }
    ~Live_data_processor() override { unlink(OWN_DOCUMENT.c_str()); }

    struct Result {
        int ret;
        char** texts;
        uint32_t selection;
        uint32_t size;
    };
    Result get_data(int web_type) {
        Result result = {12345, reinterpret_cast<char**>(this), 77, 88};
        result.ret = m_processor.getData(OWN_VARIABLE, 's', web_type, 0, &result.texts,
                                         &result.selection, &result.size);
        return result;
    }
    static Texts take(const Result& result) {
        Texts texts;
        for (uint32_t i = 0; i < result.size; ++i) {
            texts.push_back(result.texts[i] != nullptr ? result.texts[i] : "<null>");
            delete[] result.texts[i];
        }
        delete[] result.texts;
        return texts;
    }

    char m_ip[16] = "192.0.2.7";
    Live_Data_Processor m_processor{0, m_ip, 3};
};

// The class's members, for a look at what the constructor left.
struct Open_processor : Live_Data_Processor {
    using Live_Data_Processor::Live_Data_Processor;
    using Live_Data_Processor::m_ip;
    using Live_Data_Processor::m_local;
    using Live_Data_Processor::m_slot;
};

// Address and slot

TEST_F(Live_data_processor, KeepsTheAddressOfACard) {
    Open_processor processor(0, m_ip, 5);
    EXPECT_STREQ(processor.m_ip, "192.0.2.7");
    EXPECT_EQ(processor.m_slot, 5);
    EXPECT_FALSE(processor.m_local);
}

TEST_F(Live_data_processor, ALocalServiceIgnoresTheAddress) {
    Open_processor processor(2, m_ip, 5);
    EXPECT_STREQ(processor.m_ip, "127.0.0.1");
    EXPECT_TRUE(processor.m_local);
    processor.updateLDP(1, nullptr, 6);
    EXPECT_STREQ(processor.m_ip, "127.0.0.1");
    EXPECT_EQ(processor.m_slot, 6);
}

TEST_F(Live_data_processor, ANullAddressIsReportedAndClears) {
    Open_processor processor(0, m_ip, 5);
    EXPECT_EQ(output_of(LIVE_DATA_MASK, [&] { processor.updateLDP(0, nullptr, 9); }),
              "[live_data_processor.cpp][updateLDP][#] NULL IP Recieved in LDP for slot[9]\n");
    EXPECT_EQ(std::string(processor.m_ip, sizeof processor.m_ip), std::string(16, '\0'));
    EXPECT_EQ(output_of(0, [&] { processor.updateLDP(0, nullptr, 9); }), "");
}

TEST_F(Live_data_processor, FifteenCharactersFitAndSixteenLeaveNoAddress) {
    char fits[] = "127.0.0.1:65535";
    Open_processor processor(0, fits, 5);
    EXPECT_STREQ(processor.m_ip, fits);
    char longer[] = "192.168.100.100:8080";
    processor.updateLDP(0, longer, 5);
    EXPECT_EQ(std::string(processor.m_ip, sizeof processor.m_ip), std::string(16, '\0'));
}

TEST_F(Live_data_processor, ItsOwnAddressOrAPartOfItIsKept) {
    Open_processor processor(0, m_ip, 5);
    processor.updateLDP(0, processor.m_ip, 6);
    EXPECT_STREQ(processor.m_ip, "192.0.2.7");
    EXPECT_EQ(processor.m_slot, 6);
    processor.updateLDP(0, processor.m_ip + 1, 6);
    EXPECT_EQ(std::string(processor.m_ip, sizeof processor.m_ip),
              std::string("92.0.2.7") + std::string(8, '\0'));
    processor.updateLDP(1, processor.m_ip, 6);
    EXPECT_STREQ(processor.m_ip, "127.0.0.1");
}

// Fetching

TEST_F(Live_data_processor, FetchesByThreeCommands) {
    char path[256];
    const std::string out = output_of(
        LIVE_DATA_MASK, [&] { EXPECT_EQ(m_processor.getDataFromCard(9001, 's', path), 0); });
    EXPECT_STREQ(path, "/tmp/9001-json");
    const std::string download =
        "curl \"http://192.0.2.7/slot/3/htdocs/cgi-bin/cfgjson?Get&slotid=3&9001@s;"
        "time&1480088766084\" > /tmp/9001-json.gz 2>/dev/null";
    EXPECT_THAT(shell.commands,
                ElementsAre("rm -f /tmp/9001-json*", download, "gunzip -d /tmp/9001-json.gz"));
    EXPECT_EQ(out, std::string(LEAD) + "[getDataFromCard][#] filepath[/tmp/9001-json] Command[" +
                       download + "]\n");
    EXPECT_THAT(take_system_log(), IsEmpty());
}

TEST_F(Live_data_processor, StopsAtTheFirstCommandThatFails) {
    for (std::size_t failing = 0; failing < 3; ++failing) {
        shell = Shell();
        shell.statuses.assign(failing, 0);
        shell.statuses.push_back(1792);
        char path[256];
        EXPECT_EQ(
            output_of(0, [&] { EXPECT_EQ(m_processor.getDataFromCard(9001, 's', path), 1792); }),
            "");
        ASSERT_EQ(shell.commands.size(), failing + 1);
        EXPECT_THAT(take_system_log(),
                    ElementsAre("3 [live_data_processor.cpp][getDataFromCard][#] Command[" +
                                shell.commands[failing] + "] exited with error code [1792]\n"));
    }
}

TEST_F(Live_data_processor, NumbersOfAnySizeFit) {
    char longest[] = "255.255.255.255";
    Live_Data_Processor processor(0, longest, INT_MIN);
    char path[256];
    EXPECT_EQ(processor.getDataFromCard(INT_MIN, 'z', path), 0);
    EXPECT_THAT(shell.commands,
                ElementsAre("rm -f /tmp/-2147483648-json*",
                            "curl \"http://255.255.255.255/slot/-2147483648/htdocs/cgi-bin/"
                            "cfgjson?Get&slotid=-2147483648&-2147483648@z;time&1480088766084\" > "
                            "/tmp/-2147483648-json.gz 2>/dev/null",
                            "gunzip -d /tmp/-2147483648-json.gz"));
}

TEST_F(Live_data_processor, ReportsAnExceptionWhileFetching) {
    shell.throws_at = 1;
    char path[256];
    const std::string text =
        "[live_data_processor.cpp][getDataFromCard][#] An exception occurred while fetching the "
        "dynamic data. Exception Nr.[7]\n";
    EXPECT_EQ(output_of(0, [&] { EXPECT_EQ(m_processor.getDataFromCard(9001, 's', path), -1); }),
              "Error:" + text);
    EXPECT_THAT(take_system_log(), ElementsAre("3 " + text));
    shell.throws_at = 3;
    EXPECT_EQ(output_of(LIVE_DATA_MASK | 0x4000,
                        [&] { EXPECT_EQ(m_processor.getDataFromCard(9001, 's', path), -1); }),
              "Error:" + text)
        << "the first line is diagnostic output";
}

TEST_F(Live_data_processor, WhatIsNoAddressNeverReachesACommand) {
    for (const char* address :
         {"",          "$(reboot)", "1.2.3.4;reboot", "`id`",          "1.2.3.4\"",  "1.2.3",
          "1.2.3.4.5", "1.2.3.256", "1.2.3.4:",       "1.2.3.4:65536", "1.2.3.4:8o", "1.2.3.4:-1",
          ":80",       "localhost", "1.2.3.4/x",      "1.2.3.4 ",      " 1.2.3.4",   "1.2.3.4\n",
          "::1",       "a@1.2.3.4", "1.2.3.4:1:2"}) {
        shell = Shell();
        std::string text = address;
        Live_Data_Processor processor(0, text.data(), 3);
        char path[256];
        char file[] = "/tmp/post";
        EXPECT_EQ(processor.getDataFromCard(9001, 's', path), -1) << address;
        EXPECT_EQ(processor.Commit(9001, 's', file), -1) << address;
        EXPECT_THAT(shell.commands, ElementsAre("rm -f /tmp/9001-json*")) << address;
        EXPECT_EQ(take_system_log().size(), 2u) << address;
    }
}

TEST_F(Live_data_processor, AddressesWithAndWithoutPortReachTheCommand) {
    for (const char* address : {"1.2.3.4", "0.0.0.0", "127.0.0.1:1", "127.0.0.1:65535"}) {
        shell = Shell();
        std::string text = address;
        Live_Data_Processor processor(0, text.data(), 3);
        char path[256];
        EXPECT_EQ(processor.getDataFromCard(9001, 's', path), 0) << address;
        EXPECT_EQ(shell.commands[1].find("curl \"http://" + text + "/slot/3/"), 0u);
    }
}

TEST_F(Live_data_processor, WhatIsNoDataFormatNeverReachesACommand) {
    for (const char format : {'"', '$', '`', '\\', '\n', ' ', ';', '\0', '[', '\xe9'}) {
        shell = Shell();
        char path[256];
        char file[] = "/tmp/post";
        EXPECT_EQ(m_processor.getDataFromCard(9001, format, path), -1) << format;
        EXPECT_EQ(m_processor.Commit(9001, format, file), -1) << format;
        EXPECT_THAT(shell.commands, ElementsAre("rm -f /tmp/9001-json*")) << format;
    }
}

TEST_F(Live_data_processor, ACommandThatWasNotRunIsReportedLikeOneThatFailed) {
    Live_Data_Processor processor(0, nullptr, 3);
    char path[256];
    EXPECT_EQ(output_of(0, [&] { processor.getDataFromCard(1, 's', path); }), "");
    EXPECT_THAT(take_system_log(),
                ElementsAre("3 [live_data_processor.cpp][getDataFromCard][#] Command["
                            "curl \"http:///slot/3/htdocs/cgi-bin/cfgjson?Get&slotid=3&1@s;"
                            "time&1480088766084\" > /tmp/1-json.gz 2>/dev/null] exited with "
                            "error code [-1]\n"));
}

// Fetching and parsing

TEST_F(Live_data_processor, HandsOverTheOptionsOfAComboBox) {
    card_answers(R"({"state":{"value":"1"},"options":[{"value":"a","label":"First"},{},
                     {"value":"b","label":"Third"}]})");
    const Result result = get_data(0);
    EXPECT_EQ(result.ret, 0);
    EXPECT_EQ(result.selection, 1u);
    EXPECT_THAT(take(result), ElementsAre("First", "<null>", "Third"));
}

TEST_F(Live_data_processor, ReportsTheFileNameBeforeItParses) {
    card_answers(R"({"state":{"value":"0"},"options":[{"value":"a","label":"First"}]})");
    const std::string out = output_of(LIVE_DATA_MASK, [&] { take(get_data(0)); });
    EXPECT_NE(out.find(std::string(LEAD) + "[getData][#] Filename received[" + OWN_DOCUMENT +
                       "] firstChar[/] \nParsing JSON file (\"" + OWN_DOCUMENT + "\")...\n"),
              std::string::npos)
        << out;
}

TEST_F(Live_data_processor, RefusesAListWhoseStateSelectsNone) {
    const char* const option = R"("options":[{"value":"a","label":"First"}])";
    for (const std::string& document :
         {std::string(R"({"state":{"value":"1"},)") + option + "}",
          std::string(R"({"state":{"value":"-1"},)") + option + "}",
          std::string(R"({"state":{"value":"4294967296"},)") + option + "}",
          std::string("{") + option + "}", std::string(R"({"state":{"value":"0"},"options":[]})"),
          std::string(R"({"state":{"value":"0"}})"), std::string("[]"), std::string()}) {
        card_answers(document);
        Result result{};
        EXPECT_EQ(output_of(0, [&] { result = get_data(0); }),
                  "Error: [live_data_processor.cpp][getData][#] Error in getting dynamic json "
                  "combobox data\n")
            << document;
        EXPECT_EQ(result.ret, -1) << document;
        EXPECT_EQ(result.texts, nullptr) << document;
        EXPECT_EQ(result.size, 0u) << document;
        EXPECT_EQ(result.selection, 77u) << document;
    }
}

TEST_F(Live_data_processor, HandsOverTheLinesOfATree) {
    card_answers(R"({"label":"Top","children":[{"label":"Leaf"}]})");
    const Result result = get_data(1);
    EXPECT_EQ(result.ret, 0);
    EXPECT_EQ(result.selection, 0u);
    EXPECT_THAT(take(result), ElementsAre("Top", "*Leaf"));
}

TEST_F(Live_data_processor, AnEmptyTreeIsReportedButNoFailure) {
    card_answers("{}");
    Result result{};
    const std::string out = output_of(0, [&] { result = get_data(1); });
    EXPECT_TRUE(
        std::regex_match(out, std::regex(R"(Error: \[live_data_processor\.cpp\]\[getData\]\[#\] )"
                                         R"(Error in getting tree dlistStruct\[0x[0-9a-f]+\] \n)")))
        << out;
    EXPECT_EQ(result.ret, 0);
    EXPECT_EQ(result.texts, nullptr);
    EXPECT_EQ(result.size, 0u);
}

TEST_F(Live_data_processor, ABrokenTreeIsAFailure) {
    card_answers("[]");
    Result result{};
    EXPECT_EQ(output_of(0, [&] { result = get_data(1); }),
              "Error: [live_data_processor.cpp][getData][#] Error in getting dynamic json tree "
              "data\n");
    EXPECT_EQ(result.ret, -1);
    EXPECT_EQ(result.texts, nullptr);
    EXPECT_EQ(result.size, 0u);
}

TEST_F(Live_data_processor, AnUnknownTypeSucceedsAndTouchesNothing) {
    for (const int type : {2, -1, 100}) {
        Result result{};
        EXPECT_EQ(output_of(0, [&] { result = get_data(type); }),
                  "Error: [live_data_processor.cpp][getData][#] Unknown webType JsonFormat [" +
                      std::to_string(type) + "]\n");
        EXPECT_EQ(result.ret, 0);
        EXPECT_EQ(result.texts, reinterpret_cast<char**>(this));
        EXPECT_EQ(result.selection, 77u);
        EXPECT_EQ(result.size, 88u);
    }
}

TEST_F(Live_data_processor, AnUnsupportedPanelTypeIsAFailure) {
    card_answers(R"({"state":{"value":"0"},"options":[{"value":"a","label":"First"}]})");
    char** texts = nullptr;
    uint32_t selection = 0;
    uint32_t size = 1;
    EXPECT_EQ(m_processor.getData(OWN_VARIABLE, 's', 0, 1, &texts, &selection, &size), -1);
    EXPECT_EQ(size, 0u);
}

TEST_F(Live_data_processor, AFailedFetchLeavesNothing) {
    shell.statuses = {0, 1792};
    Result result{};
    EXPECT_EQ(
        output_of(0, [&] { result = get_data(0); }),
        "Error: [live_data_processor.cpp][getData][#] filename[" + OWN_DOCUMENT + "] ret[1792] \n");
    EXPECT_EQ(result.ret, 1792);
    EXPECT_EQ(result.texts, nullptr);
    EXPECT_EQ(result.size, 0u);
}

// The commit document

TEST_F(Live_data_processor, WritesTheCommitDocumentByTwoCommands) {
    char file[] = "/tmp/9001-post";
    char value[] = "12";
    const std::string out = output_of(
        LIVE_DATA_MASK, [&] { EXPECT_EQ(m_processor.createLDCommitFile(9001, file, value), 0); });
    EXPECT_THAT(shell.commands,
                ElementsAre("rm -f /tmp/9001-post",
                            R"(echo {\"state\":{\"value\":\"12\"}} > /tmp/9001-post)"));
    EXPECT_EQ(out, std::string(LEAD) +
                       "[createLDCommitFile][#] varId[9001],filename[/tmp/9001-post], "
                       "cmd[rm -f /tmp/9001-post]\n" +
                       LEAD +
                       "[createLDCommitFile][#] varId[9001],filename[/tmp/9001-post], "
                       "cmd[echo {\\\"state\\\":{\\\"value\\\":\\\"12\\\"}} > /tmp/9001-post]\n");
    EXPECT_THAT(take_system_log(), IsEmpty());
}

TEST_F(Live_data_processor, TheConversionTypeChangesNothing) {
    char file[] = "/tmp/9001-post";
    char value[] = "12";
    m_processor.createLDCommitFile(9001, file, value, 3);
    EXPECT_EQ(shell.commands[1], R"(echo {\"state\":{\"value\":\"12\"}} > /tmp/9001-post)");
}

TEST_F(Live_data_processor, HarmlessTextsStandInTheCommandAsTheyAre) {
    char file[] = "f";
    for (const char* text : {"", "a", "Two words", "1.5", "10:30", "50%", "a_b-c", "-n", "a/b",
                             "x=1", "+3", "me@home", "one two three"}) {
        shell = Shell();
        std::string value = text;
        EXPECT_EQ(m_processor.createLDCommitFile(1, file, value.data()), 0);
        EXPECT_EQ(shell.commands[1], R"(echo {\"state\":{\"value\":\")" + value + R"(\"}} > f)");
    }
}

TEST_F(Live_data_processor, OtherTextsAreQuotedAndEscapedByNumber) {
    const struct {
        const char* value;
        const char* body;
    } cases[] = {{"$(id)", "$(id)"},  {"a  b", "a  b"},        {" a", " a"},
                 {"a ", "a "},        {"a,b", "a,b"},          {"it's", "it\\u0027s"},
                 {"\"", "\\u0022"},   {"\\n", "\\u005cn"},     {"a\nb\t", "a\\u000ab\\u0009"},
                 {"\x7f", "\\u007f"}, {"\xc3\xa9", "\xc3\xa9"}};
    char file[] = "f";
    for (const auto& each : cases) {
        shell = Shell();
        std::string value = each.value;
        EXPECT_EQ(m_processor.createLDCommitFile(1, file, value.data()), 0);
        EXPECT_EQ(shell.commands[1],
                  "echo '{\"state\":{\"value\":\"" + std::string(each.body) + "\"}}' > f");
    }
}

TEST_F(Live_data_processor, AValueThatIsNotUtf8IsRefused) {
    char file[] = "f";
    for (const char* text :
         {"\xff", "\xc3", "\xc3(", "\xc0\xaf", "\xed\xa0\x80", "ok\xe2\x82", "\xf5\x80\x80\x80"}) {
        shell = Shell();
        std::string value = text;
        EXPECT_EQ(m_processor.createLDCommitFile(1, file, value.data()), -1);
        EXPECT_THAT(shell.commands, ElementsAre("rm -f f"));
    }
}

TEST_F(Live_data_processor, ReportsTheCommitDocumentsFailures) {
    char file[] = "/tmp/9001-post";
    char value[] = "12";
    for (const std::size_t failing : {0u, 1u}) {
        shell = Shell();
        shell.statuses.assign(failing, 0);
        shell.statuses.push_back(256);
        const std::string out = output_of(
            0, [&] { EXPECT_EQ(m_processor.createLDCommitFile(9001, file, value), 256); });
        const std::string text = std::string(LEAD) + "[createLDCommitFile][#] Command[" +
                                 shell.commands[failing] + "] exited with error code [256]\n";
        EXPECT_EQ(out, (failing == 0 ? "Error: " : "Error:") + text);
        EXPECT_THAT(take_system_log(), ElementsAre("3 " + text));
        EXPECT_EQ(shell.commands.size(), failing + 1);
    }
}

TEST_F(Live_data_processor, ReportsAnExceptionWhileWritingTheCommitDocument) {
    shell.throws_at = 1;
    char file[] = "f";
    char value[] = "12";
    const std::string text =
        "[live_data_processor.cpp][createLDCommitFile][#] An exception occurred while creating "
        "live data commit file. Exception Nr.[7]\n";
    EXPECT_EQ(output_of(0, [&] { EXPECT_EQ(m_processor.createLDCommitFile(1, file, value), -1); }),
              "Error:" + text);
    EXPECT_THAT(take_system_log(), ElementsAre("3 " + text));
}

TEST_F(Live_data_processor, ACommandThatDoesNotFitNeverRuns) {
    char file[] = "f";
    const std::size_t room = 255 - std::strlen(R"(echo {\"state\":{\"value\":\"\"}} > f)");
    std::string fits(room, 'x');
    EXPECT_EQ(m_processor.createLDCommitFile(1, file, fits.data()), 0);
    EXPECT_EQ(shell.commands[1].size(), 255u);
    shell = Shell();
    std::string longer(room + 1, 'x');
    const std::string out = output_of(
        0, [&] { EXPECT_EQ(m_processor.createLDCommitFile(1, file, longer.data()), -1); });
    EXPECT_THAT(shell.commands, ElementsAre("rm -f f"));
    EXPECT_EQ(out.find("Error:[live_data_processor.cpp][createLDCommitFile][#] Command[echo "), 0u);
    EXPECT_NE(out.find("] exited with error code [-1]\n"), std::string::npos);
    std::string path(300, 'p');
    shell = Shell();
    EXPECT_EQ(m_processor.createLDCommitFile(1, path.data(), fits.data()), -1);
    EXPECT_EQ(m_processor.Commit(1, 's', path.data()), -1);
    EXPECT_THAT(shell.commands, IsEmpty());
}

TEST_F(Live_data_processor, WhatIsNoPlainPathNeverReachesACommand) {
    char value[] = "12";
    for (const char* path : {"",     "-rf",  "a b", "a;b",   "$x",  "`id`", "a\nb",    "a'b",
                             "a\"b", "a\\b", "a*",  "a?",    "[a]", "~/a",  "a|b",     "a&b",
                             "a>b",  "a<b",  "(a)", "{a,b}", "#a",  "a!b",  "\xc3\xa9"}) {
        shell = Shell();
        std::string name = path;
        EXPECT_EQ(m_processor.createLDCommitFile(1, name.data(), value), -1) << path;
        EXPECT_EQ(m_processor.Commit(1, 's', name.data()), -1) << path;
        EXPECT_THAT(shell.commands, IsEmpty()) << path;
    }
}

TEST_F(Live_data_processor, NullArgumentsOfTheCommitDocumentAreRefused) {
    char file[] = "f";
    char value[] = "12";
    EXPECT_EQ(m_processor.createLDCommitFile(1, nullptr, value), -1);
    EXPECT_THAT(shell.commands, IsEmpty());
    EXPECT_EQ(m_processor.createLDCommitFile(1, file, nullptr), -1);
    EXPECT_THAT(shell.commands, ElementsAre("rm -f f"));
}

// Posting

TEST_F(Live_data_processor, PostsByOneCommand) {
    char file[] = "/tmp/9001-post";
    const std::string out =
        output_of(LIVE_DATA_MASK, [&] { EXPECT_EQ(m_processor.Commit(9001, 's', file), 0); });
    const std::string command =
        "curl -X POST -d @/tmp/9001-post \"http://192.0.2.7/slot/3/htdocs/cgi-bin/"
        "cfgjson?Set&slotid=3&9001@s;time&1481650582406\" --header "
        "\"Content-Type:application/json\" >/dev/NULL 2>&1";
    EXPECT_THAT(shell.commands, ElementsAre(command));
    EXPECT_EQ(out, std::string(LEAD) +
                       "[Commit][#] varId[9001], filename[/tmp/9001-post], dataformat[s]\n" + LEAD +
                       "[Commit][#] cmd[" + command + "] \n");
}

TEST_F(Live_data_processor, ANullFileIsNotPosted) {
    EXPECT_EQ(
        output_of(LIVE_DATA_MASK, [&] { EXPECT_EQ(m_processor.Commit(9001, 's', nullptr), -1); }),
        "[live_data_processor.cpp][Commit][#] varId[9001], filename[(null)], "
        "dataformat[s]\n");
    EXPECT_THAT(shell.commands, IsEmpty());
    EXPECT_THAT(take_system_log(), IsEmpty());
}

TEST_F(Live_data_processor, ReportsAFailedPost) {
    shell.statuses = {1792};
    char file[] = "/tmp/9001-post";
    const std::string out =
        output_of(0, [&] { EXPECT_EQ(m_processor.Commit(9001, 's', file), 1792); });
    const std::string text = std::string(LEAD) + "[Commit][#] Command[" + shell.commands[0] +
                             "] exited with error code [1792]\n";
    EXPECT_EQ(out, "Error:" + text);
    EXPECT_THAT(take_system_log(), ElementsAre("3 " + text));
}

TEST_F(Live_data_processor, ReportsAnExceptionWhilePostingWithTwoBlanks) {
    shell.throws_at = 0;
    char file[] = "/tmp/9001-post";
    const std::string text =
        "[live_data_processor.cpp][Commit][#]  An exception occurred while committing live data. "
        "Exception Nr.[7]\n";
    EXPECT_EQ(output_of(0, [&] { EXPECT_EQ(m_processor.Commit(9001, 's', file), -1); }),
              "Error:" + text);
    EXPECT_THAT(take_system_log(), ElementsAre("3 " + text));
}

// Which lines show

TEST_F(Live_data_processor, DiagnosticLinesAreInTheLiveDataCategoryWithTheLeafGate) {
    const auto expect_live_data_lines = [](const Texts& lines, auto&& action) {
        support::expect_line_gates(lines, 0x1000001, support::Gate::LEAF, action);
    };
    char path[256];
    char file[] = "/tmp/9001-post";
    char value[] = "12";
    expect_live_data_lines({"NULL IP Recieved in LDP for slot[9]"},
                           [] { Live_Data_Processor(0, nullptr, 9); });
    expect_live_data_lines({"filepath[/tmp/9001-json] Command[curl "},
                           [&] { m_processor.getDataFromCard(9001, 's', path); });
    expect_live_data_lines({"Filename received[" + OWN_DOCUMENT}, [&] { get_data(2); });
    expect_live_data_lines({"cmd[rm -f /tmp/9001-post]", "cmd[echo "},
                           [&] { m_processor.createLDCommitFile(9001, file, value); });
    expect_live_data_lines({"filename[/tmp/9001-post], dataformat[s]", "cmd[curl -X POST"},
                           [&] { m_processor.Commit(9001, 's', file); });
    // Behind "Error:" the same text stands whatever the mask.
    const auto throwing = [](auto&& action) {
        return [action] {
            shell = Shell();
            shell.throws_at = 0;
            action();
        };
    };
    expect_live_data_lines({"\n[live_data_processor.cpp][Commit][#]  An exception occurred"},
                           throwing([&] { m_processor.Commit(9001, 's', file); }));
    expect_live_data_lines(
        {"\n[live_data_processor.cpp][createLDCommitFile][#] An exception occurred"},
        throwing([&] { m_processor.createLDCommitFile(9001, file, value); }));
    expect_live_data_lines({"[live_data_processor.cpp][getDataFromCard][#] An exception occurred "
                            "while fetching the dynamic data. Exception Nr.[7]\nError:"},
                           throwing([&] { m_processor.getDataFromCard(9001, 's', path); }));
}

TEST_F(Live_data_processor, ErrorLinesShowWhateverTheMask) {
    char file[] = "/tmp/9001-post";
    char value[] = "12";
    const auto expect_always = [](const std::string& line, auto&& action) {
        support::expect_line_gate("Error:" + line, 0, support::Gate::ALWAYS, [action] {
            shell = Shell();
            shell.statuses = {256};
            action();
        });
    };
    expect_always(" [live_data_processor.cpp][getData][#] filename[", [this] { get_data(0); });
    expect_always(" [live_data_processor.cpp][createLDCommitFile][#] Command[rm",
                  [&] { m_processor.createLDCommitFile(9001, file, value); });
    expect_always("[live_data_processor.cpp][Commit][#] Command[curl",
                  [&] { m_processor.Commit(9001, 's', file); });
    support::expect_line_gate("Error: [live_data_processor.cpp][getData][#] Unknown webType", 0,
                              support::Gate::ALWAYS, [this] { get_data(7); });
    for (const int type : {0, 1}) {
        card_answers("[]");
        support::expect_line_gate("Error: [live_data_processor.cpp][getData][#] Error in getting ",
                                  0, support::Gate::ALWAYS, [&] { get_data(type); });
    }
}

}  // namespace
