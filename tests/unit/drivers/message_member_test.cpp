#include "message_member.h"

#include <gtest/gtest.h>

#include <string>

#include "support/made_of_json.h"

namespace frontpanel {
namespace {

support::Made_of_json<Message_member> read_member(const std::string& json) {
    return {json, [](const Json_value& value) { return Message_member(value); }};
}

TEST(MessageMember, AreFoundByNameOrByPointer) {
    const Source source{"message", 0};
    const Json_document message(
        source,
        R"({"a.b": 1, "a": {"b": 2, "/": 3, "~1": 4, "": 5}, "list": [6, {"x": 7}], "": 8})");
    const struct {
        const char* member;
        int number;  // 0: there is none
    } cases[] = {
        {R"("a.b")", 1},     {R"("/a.b")", 1},    {R"("/a/b")", 2},     {R"("/a/~1")", 3},
        {R"("/a/~01")", 4},  {R"("/a/")", 5},     {R"("/list/0")", 6},  {R"("/list/1/x")", 7},
        {R"("/")", 8},       {R"("b")", 0},       {R"("a/b")", 0},      {R"("/a/b/c")", 0},
        {R"("/list/2")", 0}, {R"("/list/-")", 0}, {R"("/list/00")", 0}, {R"("/list/01")", 0},
        {R"("/list/")", 0},  {R"("/list/x")", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.member);
        const auto read = read_member(c.member);
        EXPECT_EQ(read.error, "");
        const Json_node* const found = read.result.find(message.root());
        EXPECT_EQ(found == nullptr ? 0 : found->integer().value_or(-1), c.number);
    }
}

TEST(MessageMember, AMessageHasOnlyTheMember) {
    EXPECT_EQ(read_member(R"("level")").result.message_with("5"), R"({"level":5})");
    EXPECT_EQ(read_member(R"("/set/a~1b/0")").result.message_with("5"),
              R"({"set":{"a/b":{"0":5}}})");
    EXPECT_EQ(read_member(R"("a\"\u0001b")").result.name(), "");
}

TEST(MessageMember, TextsAreWrittenAsJson) {
    EXPECT_EQ(json_text("a\"b\\c\n\x7F"), "\"a\\\"b\\\\c\\u000a\x7F\"");
}

TEST(MessageMember, MistakesAreReported) {
    const std::string expected = "expected a name or a JSON pointer such as \"/a/b\", found ";
    EXPECT_EQ(read_member(R"("/a~")").error, expected + "\"/a~\"");
    EXPECT_EQ(read_member(R"("/~2/a")").error, expected + "\"/~2/a\"");
    EXPECT_EQ(read_member(R"("")").error, "expected a text of 1 to 200 characters, found 0");
    EXPECT_EQ(read_member(R"("a~")").error, "");
}

}  // namespace
}  // namespace frontpanel
