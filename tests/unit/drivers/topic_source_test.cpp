#include "topic_source.h"

#include <gtest/gtest.h>

#include <string>

#include "support/made_of_json.h"

namespace frontpanel {
namespace {

// A source of its members beside "topic".
support::Made_of_json<Topic_source> read_source(const std::string& members, bool is_text = false) {
    return {R"({"topic": "a/b")" + members + "}",
            [is_text](const Json_value& value) { return topic_source_of(value, {}, is_text); }};
}

Topic_source source_of(const std::string& members, bool is_text = false) {
    const auto read = read_source(members, is_text);
    EXPECT_EQ(read.error, "");
    return read.result;
}

std::string shown(const std::variant<Parameter_value, No_value>& value) {
    if (const auto* const none = std::get_if<No_value>(&value)) {
        return none->reason;
    }
    const auto& found = std::get<Parameter_value>(value);
    const auto* const number = std::get_if<std::int32_t>(&found);
    return number != nullptr ? std::to_string(*number) : "'" + std::get<std::string>(found) + "'";
}

std::string shown_value(const Topic_source& source, const std::string& text) {
    Topic_message message(text);
    return shown(value_in(source, message));
}

constexpr const char* POWER = R"(, "member": "/ENERGY/Power", "scale": "10")";
constexpr const char* SWITCH = R"(, "words": ["OFF", "ON"])";

TEST(TopicSource, NumbersAreReadFromMessages) {
    const struct {
        const char* members;
        const char* message;
        const char* value;
    } cases[] = {
        {"", "21", "21"},
        {"", " -7\r\n", "-7"},
        {R"(, "scale": "10")", "21.55", "216"},
        {R"(, "scale": "1/1000")", "36600", "37"},
        {"", "", "not a number: \"\""},
        {"", "unavailable", "not a number: \"unavailable\""},
        {"", "2147483648", "the number does not fit 32 bits: \"2147483648\""},
        {"", "true", "not a number: \"true\""},
        {"", "Kellertemperatur 1 \u00B0C", "not a number: \"Kellertemperatur 1 ...\""},
        {POWER, R"({"ENERGY": {"Power": 23.4, "Today": 1}})", "234"},
        {POWER, R"({"ENERGY": {"Power": "5"}})", "50"},
        {POWER, R"({"ENERGY": {"Today": 1}})", "the message has no member \"/ENERGY/Power\""},
        {POWER, R"({"ENERGY": 7})", "the message has no member \"/ENERGY/Power\""},
        {POWER, R"({"ENERGY": {"Power": []}})", "\"/ENERGY/Power\" is neither a number nor a text"},
        {POWER, R"({"ENERGY": {"Power": null}})",
         "\"/ENERGY/Power\" is neither a number nor a text"},
        {POWER, R"({"ENERGY": {"Power": 2)", "the message is not JSON"},
        {POWER, R"({"ENERGY": {"Power": 1.25e1}})", "125"},
        {POWER, R"({"ENERGY": {"Power": 2.5E-03}})", "0"},
        {POWER, R"({"ENERGY": {"Power": -1e+2}})", "-1000"},
        {POWER, R"({"ENERGY": {"Power": 1.2345678901234567e-05}})", "0"},
        {POWER, R"({"ENERGY": {"Power": 12345678901234567e-15}})", "123"},
        {POWER, R"({"ENERGY": {"Power": 1e99}})", "the number has too many digits: \"1e99\""},
        {POWER, R"({"ENERGY": {"Power": 99999999999999999999}})",
         "the number has too many digits: \"99999999999999999999\""},
        {"", "e5", "not a number: \"e5\""},
        {"", "1.xe-18", "not a number: \"1.xe-18\""},
        {"", "1e2.5", "not a number: \"1e2.5\""},
        {POWER, "23", "the message has no member \"/ENERGY/Power\""},
        {R"(, "member": "on")", R"({"on": true})", "1"},
        {R"(, "member": "on")", R"({"on": false})", "0"},
        {SWITCH, "ON", "1"},
        {SWITCH, "OFF\n", "0"},
        {SWITCH, "on", "\"on\" is none of the words"},
        {R"(, "member": "s", "words": ["closed", "open"])", R"({"s": "open"})", "1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message);
        EXPECT_EQ(shown_value(source_of(c.members), c.message), c.value);
    }
}

TEST(TopicSource, TextsAreReadAsTheyAre) {
    EXPECT_EQ(shown_value(source_of("", true), "two words"), "'two words'");
    EXPECT_EQ(shown_value(source_of(R"(, "member": "t")", true), R"({"t": "Ger\u00e4t"})"),
              "'Ger\xC3\xA4t'");
    EXPECT_EQ(shown_value(source_of(R"(, "member": "t")", true), R"({"t": 1.50})"), "'1.50'");
    EXPECT_EQ(shown_value(source_of("", true), "a line\r\n"), "'a line'");
    EXPECT_EQ(shown_value(source_of("", true), ""), "''");
}

TEST(TopicSource, ATextThatIsNotUtf8IsNoValue) {
    EXPECT_EQ(shown_value(source_of("", true), "Ger\xE4t"), "the text is not UTF-8");
    EXPECT_EQ(shown_value(source_of(R"(, "member": "t")", true), "{\"t\": \"Ger\xE4t\"}"),
              "the text is not UTF-8");
    const auto message =
        message_for(source_of(R"(, "write": "w")", true), Parameter_value("Ger\xE4t"));
    EXPECT_EQ(std::get<No_value>(message).reason, "the text is not UTF-8");
}

TEST(TopicSource, AMessageWithAZeroByteIsNotJson) {
    const std::string message = R"({"ENERGY": {"Power": 1}})";
    EXPECT_EQ(shown_value(source_of(POWER), message), "10");
    EXPECT_EQ(shown_value(source_of(POWER), message + '\0'), "the message is not JSON");
}

TEST(TopicSource, AMessageBeyond64KiBIsNoValue) {
    EXPECT_EQ(shown_value(source_of(""), std::string(Topic_message::LARGEST + 1, '1')),
              "the message has more than 64 KiB");
    const std::string deep(Topic_message::LARGEST, '[');
    EXPECT_EQ(shown_value(source_of(POWER), deep), "the message is not JSON");
}

TEST(TopicSource, ValuesAreWrittenAsTheyAreRead) {
    const struct {
        const char* members;
        Parameter_value value;
        const char* message;
    } cases[] = {
        {R"(, "write": "w")", 7, "7"},
        {R"(, "write": "w", "scale": "10")", 215, "21.5"},
        {R"(, "write": "w", "scale": "1/1000")", 37, "37000"},
        {R"(, "write": "w", "words": ["OFF", "ON"])", 1, "ON"},
        {R"(, "write": "w", "words": ["OFF", "ON"])", 2, "2 has no word"},
        {R"(, "write": "w", "words": ["OFF", "ON"])", -1, "-1 has no word"},
        {R"(, "write": "w", "write-member": "/set/level", "scale": "10")", 5,
         R"({"set":{"level":0.5}})"},
        {R"(, "write": "w", "write-member": "state", "words": ["OFF", "ON"])", 0,
         R"({"state":"OFF"})"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.members);
        const auto message = message_for(source_of(c.members), c.value);
        const auto* const none = std::get_if<No_value>(&message);
        EXPECT_EQ(none != nullptr ? none->reason : std::get<std::string>(message), c.message);
    }
    const Topic_source text = source_of(R"(, "write": "w", "write-member": "name")", true);
    EXPECT_EQ(std::get<std::string>(message_for(text, Parameter_value("a\"b\\c\n"))),
              R"({"name":"a\"b\\c\u000a"})");
}

TEST(TopicSource, MistakesAreReported) {
    const struct {
        const char* members;
        const char* error;
    } cases[] = {
        {R"(, "member": "/a~2")",
         R"(expected a name or a JSON pointer such as "/a/b", found "/a~2")"},
        {R"(, "member": "")", "expected a text of 1 to 200 characters, found 0"},
        {R"(, "retain": true)", R"("retain" needs "write")"},
        {R"(, "write": "a/+")", R"(expected a topic without "+" and "#", found "a/+")"},
        {R"(, "words": ["a", "a"])", R"("a" is there already)"},
        {R"(, "words": ["a", "b"], "scale": "2")", R"("scale" does not go with "words")"},
        {R"(, "qos": 3)", "expected a whole number from 0 to 2, found 3"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.members);
        EXPECT_EQ(read_source(c.members).error, c.error);
    }
    EXPECT_EQ(read_source(R"(, "scale": "2")", true).error, R"("scale" is for numbers)");
}

}  // namespace
}  // namespace frontpanel
