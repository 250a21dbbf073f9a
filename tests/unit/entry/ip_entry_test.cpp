#include <frontpanel_data/data_entry.h>
#include <gtest/gtest.h>

#include "support/capture.h"
#include "support/indexes.h"

namespace {

using support::index_of;

class Address : public ::testing::Test {
protected:
    Index_t index = index_of({1});
    Ip_entry entry{"Gateway",
                   "The gateway's address",
                   301,
                   &index,
                   nullptr,
                   Data_entry::READ_WRITE,
                   Data_entry::VISIBLE_ALL,
                   true,
                   Data_entry::SHORTCUT_NONE,
                   nullptr,
                   nullptr,
                   nullptr};

    void store(const std::string& text) {
        entry.Set_value(text.c_str(), static_cast<unsigned int>(text.size()));
    }
    std::string shown(unsigned int length) {
        std::string buffer(length + 1, '\0');
        EXPECT_EQ(entry.Get_display_string(&buffer[0], length), 0);
        return buffer.c_str();
    }
};

TEST_F(Address, IsAnIpLeafWithTheFixedLimits) {
    EXPECT_EQ(entry.Get_entry_type(), Data_entry::IP_LEAF);
    EXPECT_EQ(entry.Get_return_type_int_or_string(), STRING);
    EXPECT_EQ(Ip_entry::IP_STRING_MAX_LENGTH, 19);
    EXPECT_EQ(Ip_entry::IP_STRING_MIN_LENGTH, 7);
    EXPECT_EQ(Ip_entry::IP_STRING_MAX_BLOCK, 4);
    EXPECT_EQ(Ip_entry::IP_VALUE_MAX, 255);
    EXPECT_EQ(Ip_entry::IP_VALUE_MIN, 0);
    EXPECT_STREQ(Ip_entry::DEFAULT_IP, "0.0.0.0");
}

TEST_F(Address, ReportsTheBaseLine) {
    EXPECT_EQ(entry.getProperties(4),
              "Gateway varid[301.1.0@s] num_index_levels=[1] type[4] vis[1] shortcut[-1] ");
}

TEST_F(Address, HoldsNineteenCharacters) {
    store("123456789012345678901234");
    char text[32] = {};
    entry.Get_value(text, sizeof text);
    EXPECT_STREQ(text, "1234567890123456789");
}

TEST_F(Address, AsLongAsTheLineScrollsThroughTwoFullTurns) {
    const std::string text = "10.11.12.13";
    const std::string around = text + ' ' + text;
    store(text);
    for (int turn = 0; turn < 2; ++turn) {
        EXPECT_EQ(shown(11), text) << "held, turn " << turn;
        EXPECT_EQ(shown(11), text) << "held, turn " << turn;
        for (std::size_t offset = 0; offset < text.size(); ++offset) {
            EXPECT_EQ(shown(11), around.substr(offset, 11))
                << "turn " << turn << " offset " << offset;
        }
    }
}

TEST_F(Address, ShorterThanTheLineStands) {
    store("10.11.12.13");
    for (int call = 0; call < 30; ++call) {
        EXPECT_EQ(shown(12), "10.11.12.13");
    }
}

TEST_F(Address, LengthOfOneIsShown) {
    store("10.11.12.13");
    EXPECT_EQ(shown(1), "1");
}

TEST_F(Address, DisplayPrintsNothing) {
    EXPECT_EQ(support::capture(0x1, [&] { shown(16); }).out, "");
}

TEST_F(Address, NullBufferAndZeroLengthDie) {
    char buffer[4];
    EXPECT_DEATH(entry.Get_display_string(nullptr, 16), "buffer&&length");
    EXPECT_DEATH(entry.Get_display_string(buffer, 0), "buffer&&length");
}

TEST_F(Address, IncValueStepsCharactersNotAddresses) {
    store("10.0.0.9");
    EXPECT_EQ(entry.Inc_value(1, 0), 0);
    char text[20] = {};
    entry.Get_value(text, sizeof text);
    EXPECT_STREQ(text, "10.0.0.:");
}

TEST_F(Address, NameIsPlainThroughTheBase) {
    const Data_entry& base = entry;
    EXPECT_STREQ(base.Get_name(), "Gateway");
}

TEST_F(Address, NameMarksAnAddressThatDoesNotAnswer) {
    store("0.0.0.0");
    EXPECT_STREQ(entry.Get_name(), "[ ]Gateway");
}

TEST_F(Address, LongestNameFitsBehindItsMark) {
    Ip_entry longest("ABCDEFGHIJKLMNOPQRSTUVWXYZ", "", 301, &index, nullptr, Data_entry::READ_ONLY,
                     1, true, -1, nullptr, nullptr, nullptr);
    EXPECT_STREQ(longest.Get_name(), "[ ]ABCDEFGHIJKLMNOPQRSTUVWX");
}

TEST_F(Address, NameTakesAStepOfTheMarquee) {
    store("255.255.255.2550");  // 16 characters, as long as the name's line; refused by ping
    entry.Get_name();
    entry.Get_name();
    entry.Get_name();
    EXPECT_EQ(shown(16), "55.255.255.2550 ");
}

struct Ip_case {
    const char* text;
    bool valid;
};

constexpr Ip_case IP_CASES[] = {{"1.2.3.4", true},
                                {"0.0.0.0", true},
                                {"255.255.255.255", true},
                                {"127.0.0.1", true},
                                {"10.1.1.0", true},
                                {"192.168.100.200", true},
                                {"99.99.99.99", true},
                                {"1.22.333.4", false},
                                {"100.1.1.1", true},
                                // block counts
                                {"1.2.3", false},
                                {"111.222", false},
                                {"1111111", false},
                                {"111.222.33", false},
                                {"1.2.3.4.5", false},
                                {"1.2.3.4.5.6", false},
                                {".......", false},
                                {"1......", false},
                                // runs of dots vanish
                                {"1..2.3.4", true},
                                {"10..0.1.2", true},
                                {".1.2.3.4", true},
                                {"1.2.3.4.", true},
                                {"..1..2..3..4..", true},
                                {"1...2.3", false},
                                {"1.2.3.4......................", true},
                                {"1.2.3.4.....................5", false},
                                // leading zeros
                                {"01.2.3.4", false},
                                {"1.02.3.4", false},
                                {"1.2.003.4", false},
                                {"1.2.3.00", false},
                                {"1.2.3.04", false},
                                {"000.0.0.0", false},
                                // values
                                {"256.1.1.1", false},
                                {"1.256.1.1", false},
                                {"1.1.1.256", false},
                                {"999.1.1.1", false},
                                {"255.1.1.1", true},
                                {"1.1.1.255", true},
                                {"1000.1.1.1", false},
                                {"1.1.1.1000", false},
                                {"1.1.1.99999999999", false},
                                {"4294967297.1.1", false},
                                // signs
                                {"-1.2.3.4", true},
                                {"1.-2.3.4", true},
                                {"-99.1.1.1", true},
                                {"-100.1.1.1", false},
                                {"+1.2.3.4", false},
                                {"-0.2.3.4", false},
                                {"--1.2.3.4", false},
                                {"-.1.2.3.4", false},
                                {"-01.2.3.4", false},
                                // other characters
                                {"1.2.3.4a", false},
                                {"a.b.c.d", false},
                                {"1.2.3.4 ", false},
                                {" 1.2.3.4", false},
                                {"1. 2.3.4", false},
                                {"1.2.3.4\n", false},
                                {"0x1.2.3.4", false},
                                {"1,2,3,4", false},
                                {"1.2.3.4/8", false},
                                {"1e1.2.3.4", false},
                                {"localhost", false},
                                {"::1.2.3.4", false},
                                {"1.2.3.4;ls", false},
                                {"1.2.3.$4", false},
                                // lengths
                                {"", false},
                                {"1", false},
                                {"1.2.3.", false},
                                {"1.2..3", false},
                                {"1.1.1.1........................", true},
                                {"1.1.1.1.........................", false},
                                {"1.1.1.1.............................................x", false}};

TEST(Ip_syntax, IsJudged) {
    for (const Ip_case& ip : IP_CASES) {
        EXPECT_EQ(Ip_entry::Valid_ip(ip.text), ip.valid) << ip.text;
    }
}

TEST(Ip_syntax, NullDies) {
    EXPECT_DEATH(Ip_entry::Valid_ip(nullptr), "`ip'");
}

}  // namespace
