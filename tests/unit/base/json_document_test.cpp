#include <frontpanel_base/json_document.h>

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

using Kind = Json_node::Kind;

const Source SOURCE{"menu.json", 0};

std::string error_of(const std::string& text) {
    try {
        parse_json(SOURCE, text);
    } catch (const Placed_error& error) {
        return error.what();
    }
    return "";
}

std::string place_of(const Place& place) {
    return std::to_string(place.line) + ":" + std::to_string(place.column);
}

TEST(JsonDocument, KeepsEachKindOfValue) {
    const Json_node list =
        parse_json(SOURCE, R"([null, true, -5, 1.5, 99999999999999999999, "a\nb", [], {}])");
    ASSERT_EQ(list.kind, Kind::LIST);
    const Kind KINDS[] = {Kind::NOTHING, Kind::BOOLEAN, Kind::INTEGER, Kind::REAL,
                          Kind::REAL,    Kind::TEXT,    Kind::LIST,    Kind::OBJECT};
    ASSERT_EQ(list.elements.size(), std::size(KINDS));
    for (size_t i = 0; i < std::size(KINDS); ++i) {
        EXPECT_EQ(list.elements[i].kind, KINDS[i]) << i;
    }
    EXPECT_TRUE(list.elements[1].boolean);
    EXPECT_EQ(list.elements[2].number, -5);
    EXPECT_EQ(list.elements[5].text, "a\nb");
}

TEST(JsonDocument, EveryValueAndNameKnowsItsPlace) {
    const Json_node root = parse_json(SOURCE, "{\n  \"a\": [1,\n   \"x,y\", 2],\n  \"b\": {}\n}");
    EXPECT_EQ(place_of(root.place), "1:1");
    EXPECT_EQ(place_of(root.members[0].place), "2:3");
    EXPECT_EQ(place_of(root.members[0].value.place), "2:8");
    EXPECT_EQ(place_of(root.members[0].value.elements[1].place), "3:4");
    EXPECT_EQ(place_of(root.members[0].value.elements[2].place), "3:11");
    EXPECT_EQ(place_of(root.members[1].value.place), "4:8");
}

TEST(JsonDocument, FindsTheFirstMemberOfAName) {
    const Json_node root = parse_json(SOURCE, R"({"a": 1, "b": 2, "a": 3})");
    EXPECT_EQ(root.members.size(), 3U);
    EXPECT_EQ(root.member("a")->number, 1);
    EXPECT_EQ(root.member("c"), nullptr);
    EXPECT_EQ(root.member("a")->member("a"), nullptr);
}

TEST(JsonDocument, WhatIsNoJsonIsToldWithItsPlace) {
    EXPECT_EQ(error_of("{}"), "");
    for (const char* const bad : {"", "{", "{\"a\" 1}", "[1,]", "{}x", "'a'"}) {
        EXPECT_EQ(error_of(bad).rfind("menu.json:1:", 0), 0U) << bad << ": " << error_of(bad);
    }
    EXPECT_EQ(error_of("{\n \"a\": tru}").rfind("menu.json:2:", 0), 0U);
}

TEST(JsonDocument, NestingHasALimitWhateverTheSizeOfTheFile) {
    EXPECT_EQ(error_of(std::string(100, '[') + std::string(100, ']')), "");
    EXPECT_EQ(error_of(std::string(100000, '[')),
              "menu.json:1:101: values are nested more than 100 deep");
}

}  // namespace
}  // namespace frontpanel
