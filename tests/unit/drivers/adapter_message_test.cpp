#include "adapter_message.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(Adapter_message, RequestsAreOneLineEach) {
    EXPECT_EQ(hello_line(), R"({"type":"hello","version":1})");
    EXPECT_EQ(read_line(1, "a \"name\""), R"({"type":"read","id":1,"name":"a \"name\""})");
    EXPECT_EQ(subscribe_line(2, "n"), R"({"type":"subscribe","id":2,"name":"n"})");
    EXPECT_EQ(write_number_line(3, "n", "-0.5"),
              R"({"type":"write","id":3,"name":"n","value":-0.5})");
    EXPECT_EQ(write_text_line(4, "n", "two\nlines"),
              R"({"type":"write","id":4,"name":"n","value":"two\nlines"})");
    EXPECT_EQ(write_text_line(5, "n", "\x80"), std::nullopt);
    EXPECT_EQ(error_line("no\x1bway"), R"({"type":"error","message":"no?way"})");
}

TEST(Adapter_message, TheLongestRequestIsNoLongerThanALine) {
    const auto line = write_text_line(INT64_MAX, std::string(LONGEST_ADAPTER_NAME, '"'),
                                      std::string(LONGEST_ADAPTER_TEXT, '\x01'));
    ASSERT_TRUE(line);
    EXPECT_LE(line->size(), LONGEST_ADAPTER_LINE);
}

TEST(Adapter_message, AnAnswerHasItsIdAndValue) {
    const auto message = parse_adapter_message(R"( {"value":-1.50,"id":7,"type":"result"} )");
    EXPECT_EQ(message.kind, Adapter_message::RESULT);
    EXPECT_EQ(message.id, 7);
    EXPECT_EQ(message.value.kind, Adapter_value::NUMBER);
    EXPECT_EQ(message.value.text, "-1.50");
}

TEST(Adapter_message, OnlyTheOutermostMembersCount) {
    const auto message = parse_adapter_message(
        R"({"type":"changed","more":{"type":"result","value":1},"name":"n","list":[{"value":2}],"value":"x"})");
    EXPECT_EQ(message.kind, Adapter_message::CHANGED);
    EXPECT_EQ(message.name, "n");
    EXPECT_EQ(message.value.kind, Adapter_value::TEXT);
    EXPECT_EQ(message.value.text, "x");
}

TEST(Adapter_message, AValueMayBeOfAnyKind) {
    const struct {
        const char* value;
        Adapter_value::Kind kind;
        const char* text;
    } cases[] = {{"true", Adapter_value::NUMBER, "1"},
                 {"false", Adapter_value::NUMBER, "0"},
                 {"null", Adapter_value::NOTHING, ""},
                 {"[1]", Adapter_value::OTHER, ""},
                 {"{}", Adapter_value::OTHER, ""},
                 {"1e5", Adapter_value::NUMBER, "1e5"},
                 {R"("\u00e4")", Adapter_value::TEXT, "\xC3\xA4"}};
    for (const auto& [value, kind, text] : cases) {
        SCOPED_TRACE(value);
        const auto message =
            parse_adapter_message(std::string(R"({"type":"result","id":1,"value":)") + value + "}");
        EXPECT_EQ(message.value.kind, kind);
        EXPECT_EQ(message.value.text, text);
    }
    EXPECT_EQ(parse_adapter_message(R"({"type":"result","id":1})").value.kind,
              Adapter_value::MISSING);
}

TEST(Adapter_message, ANumberBeyondAllLimitsIsALargeOne) {
    const struct {
        std::string value;
        const char* text;
    } cases[] = {{"1e999", "1e300"},
                 {"-1.5E+399", "-1e300"},
                 {std::string(400, '9'), "1e300"},
                 {"1e" + std::string(400, '9'), "1e300"},
                 {"0.0e999", "0"},
                 {"-0e309", "0"}};
    for (const auto& [value, text] : cases) {
        SCOPED_TRACE(value);
        const auto message = parse_adapter_message(
            R"({"more":[1e999,{"x":-1e999}],"type":"result","id":1,"value":)" + value + "}");
        EXPECT_EQ(message.kind, Adapter_message::RESULT);
        EXPECT_EQ(message.value.kind, Adapter_value::NUMBER);
        EXPECT_EQ(message.value.text, text);
    }
    EXPECT_EQ(parse_adapter_message(R"({"type":"result","id":1e999,"value":1})").text,
              "a message \"result\" has no valid \"id\"");
}

TEST(Adapter_message, AnyNumberOfNumbersBeyondAllLimitsLeavesTheRestOfTheLine) {
    std::string list = R"("1e999 \\\" -1e999", 1e-999, 1e308)";
    for (int i = 0; i < 600; ++i) {
        list += i % 2 == 0 ? ",1e999" : ",-1e309";
    }
    const std::string line =
        R"({"more":[)" + list + R"(],"type":"changed","value":-1e999,"name":"\"1e999"})";
    ASSERT_LE(line.size(), LONGEST_ADAPTER_LINE);
    const auto message = parse_adapter_message(line);
    EXPECT_EQ(message.kind, Adapter_message::CHANGED);
    EXPECT_EQ(message.value.text, "-1e300");
    EXPECT_EQ(message.name, "\"1e999");
    EXPECT_EQ(parse_adapter_message(line + "1e999").kind, Adapter_message::FAULTY);
}

TEST(Adapter_message, AnErrorMayAnswerNoRequest) {
    const auto message = parse_adapter_message(R"({"type":"error","message":"no bus"})");
    EXPECT_EQ(message.kind, Adapter_message::ERROR);
    EXPECT_EQ(message.id, std::nullopt);
    EXPECT_EQ(message.text, "no bus");
    EXPECT_EQ(parse_adapter_message(R"({"type":"error","id":"7"})").kind, Adapter_message::FAULTY);
}

TEST(Adapter_message, OneOfALaterVersionIsUnknown) {
    EXPECT_EQ(parse_adapter_message(R"({"type":"weather","id":1})").kind, Adapter_message::UNKNOWN);
}

// The heap ends with the text: a sanitizer sees what is read behind it.
TEST(Adapter_message, ATextThatEndsWithinACharacterIsNotReadBeyondItsEnd) {
    for (const char* const text : {"{\"type\":\"hello and more\xF2", "a text that ends\xF0\x9F"}) {
        const std::string cut(text);
        EXPECT_EQ(parse_adapter_message(cut).kind, Adapter_message::FAULTY);
        EXPECT_EQ(write_text_line(1, "name", cut), std::nullopt);
    }
}

TEST(Adapter_message, WhatIsNoMessageIsFaulty) {
    for (const std::string& line :
         {std::string(), std::string("text"), std::string("[]"), std::string("1"), std::string("{"),
          std::string("{}{}"), std::string("{\"type\":\"result\"}"),
          std::string("{\"type\":\"result\",\"id\":1.5}"), std::string("{\"type\":[]}"),
          std::string("{\"type\":\"hello\",\"version\":\"1\"}"),
          std::string("{\"type\":\"changed\",\"value\":1}"), std::string("{}\0", 3),
          std::string("{\"type\":\"\xFF\"}"), std::string(4096, '['), std::string(4096, '{'),
          std::string("{\"type\":NaN}")}) {
        SCOPED_TRACE(line.substr(0, 60));
        const auto message = parse_adapter_message(line);
        EXPECT_EQ(message.kind, Adapter_message::FAULTY);
        EXPECT_LT(message.text.size(), 100U);
    }
}

}  // namespace
}  // namespace frontpanel
