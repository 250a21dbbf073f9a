// JSON texts with places, and what is refused of them.
#include <gtest/gtest.h>

#include <limits>
#include <set>

#include <frontpanel_base/json_document.h>

namespace frontpanel {
namespace {

using Kind = Json_node::Kind;

const Source SOURCE{"file.json", 0};

std::string error_of(const std::string& text) {
    try {
        const Json_document document(SOURCE, text);
    } catch (const Placed_error& error) {
        return error.what();
    }
    return "";
}

std::string place_text(const Place& place) {
    return std::to_string(place.line) + ":" + std::to_string(place.column);
}

// "line:column" of every value in the order of the file, a member's name before its value.
std::string places_of(const Json_node& node) {
    std::string places = place_text(node.place());
    for (const Json_node& element : node.elements()) {
        places += " " + places_of(element);
    }
    for (const Json_member& member : node.members()) {
        places += " " + place_text(member.place()) + "=" + places_of(member.value);
    }
    return places;
}

TEST(JsonDocument, EveryValueKnowsItsPlace) {
    const Json_document document(
        SOURCE,
        "[1,\n null , true,false,\n\n  {\"a\\n\\u0041\": \"x\\ty\", \"b\": [\n-2.5e3, {}]}]\n");
    EXPECT_EQ(places_of(document.root()), "1:1 1:2 2:2 2:9 2:14 4:3 4:4=4:17 4:25=4:30 5:1 5:9");
    EXPECT_EQ(document.value_count(), 10U);
}

TEST(JsonDocument, KnowsWhichNamesItsMembersMayHave) {
    const Json_document document(SOURCE, R"({"": 1, "a": [{"repea\u0074": {}}]})");
    for (const char* const name : {"", "a", "repeat"}) {
        EXPECT_TRUE(document.names().may_have(name)) << name;
    }
    for (const char* const name : {"b", "aa", "template", "repeats"}) {
        EXPECT_FALSE(document.names().may_have(name)) << name;
    }
}

TEST(JsonDocument, WhatStandsAroundReleasedElementsStays) {
    const auto repeated = [](const std::string& text, size_t times) {
        std::string all = text;
        for (size_t i = 1; i < times; ++i) {
            all += "," + text;
        }
        return all;
    };
    const std::string large = "[" + repeated("7", 10000) + "]";
    const std::string before = R"({"before": [{"a": 1}, )" + large + R"(], "list": [)";
    const std::string behind = R"(], "behind": [{"b": 2}, )" + large + "]}";
    for (const std::string& element : {std::string(R"({"x": {"y": [1, 2]}})"), std::string("{}"),
                                       std::string("3"), R"({"x": )" + large + "}"}) {
        Json_document document(SOURCE,
                               before + repeated(element, 20000 * 20 / element.size()) + behind);
        document.release_elements(*document.root().member("list"));
        EXPECT_TRUE(document.root().member("list")->elements().empty());
        for (const auto& [name, value] :
             {std::pair<const char*, std::string_view>("before", "a"), {"behind", "b"}}) {
            const Json_span<Json_node> around = document.root().member(name)->elements();
            ASSERT_EQ(around.size(), 2U);
            EXPECT_NE(around[0].member(value), nullptr);
            EXPECT_EQ(around[1].elements().size(), 10000U);
            EXPECT_EQ(around[1].elements()[9999].integer(), 7);
        }
    }
}

TEST(JsonDocument, TheTextOfTheFileIsReleasedBehindWhatIsRead) {
    const std::string text =
        R"({"name": "a\u0041", "": ["", 1.50, {"name": "x", "eman": "name", "deep": [["aA", 7]]}]})";
    Json_document document(SOURCE, text);
    const Json_node& list = document.root().members()[1].value;
    const std::string places = places_of(document.root());
    document.release_text();
    EXPECT_EQ(places_of(document.root()), places);
    EXPECT_EQ(document.root().member("name")->text(), "aA");
    EXPECT_EQ(&document.root().members()[1].value, &list);
    EXPECT_EQ(document.root().members()[1].name(), "");
    EXPECT_EQ(list.elements()[0].text(), "");
    EXPECT_EQ(list.elements()[1].text(), "1.50");
    EXPECT_EQ(list.elements()[2].member("name")->text(), "x");
    EXPECT_EQ(list.elements()[2].member("eman")->text(), "name");
    const Json_node& deepest = list.elements()[2].member("deep")->elements()[0];
    EXPECT_EQ(deepest.elements()[0].text(), "aA");
    EXPECT_EQ(deepest.elements()[1].integer(), 7);
}

TEST(JsonDocument, OfEqualTextsFewAreKept) {
    std::string text = "[";
    for (int i = 0; i < 1000; ++i) {
        text += std::string(i == 0 ? "" : ",") + R"({"name": "Gain )" + std::to_string(i) +
                R"(", "type": "range"})";
    }
    Json_document document(SOURCE, text + "]");
    document.release_text();
    std::set<const char*> kept;
    for (int i = 0; i < 1000; ++i) {
        const Json_node& item = document.root().elements()[static_cast<size_t>(i)];
        EXPECT_EQ(item.member("name")->text(), "Gain " + std::to_string(i));
        EXPECT_EQ(item.member("type")->text(), "range");
        for (const Json_member& member : item.members()) {
            kept.insert(member.name().data());
        }
        kept.insert(item.member("type")->text().data());
    }
    EXPECT_LT(kept.size(), 100U);
}

TEST(JsonDocument, AByteOrderMarkIsSkipped) {
    const Json_document document(SOURCE, "\xEF\xBB\xBF[7]");
    EXPECT_EQ(places_of(document.root()), "1:4 1:5");
}

TEST(JsonDocument, TextsAndNamesAreDecoded) {
    const Json_document document(SOURCE, R"({"a\"\\\u0042": "\u00e4\n", "": ""})");
    const Json_span<Json_member> members = document.root().members();
    ASSERT_EQ(members.size(), 2U);
    EXPECT_EQ(members[0].name(), "a\"\\B");
    EXPECT_EQ(members[0].value.text(), "\xC3\xA4\n");
    EXPECT_EQ(members[1].name(), "");
    EXPECT_EQ(members[1].value.text(), "");
}

TEST(JsonDocument, NumbersOf64BitsAreIntegersAndOthersKeepTheirText) {
    const Json_document document(
        SOURCE, "[9223372036854775807, -9223372036854775808, -0, 9223372036854775808, 1.0, 1e2]");
    const Json_span<Json_node> numbers = document.root().elements();
    EXPECT_EQ(numbers[0].integer(), std::numeric_limits<int64_t>::max());
    EXPECT_EQ(numbers[1].integer(), std::numeric_limits<int64_t>::min());
    EXPECT_EQ(numbers[2].integer(), 0);
    for (size_t i = 3; i < 6; ++i) {
        EXPECT_EQ(numbers[i].kind(), Kind::REAL);
        EXPECT_EQ(numbers[i].integer(), std::nullopt);
    }
    EXPECT_EQ(numbers[3].text(), "9223372036854775808");
    EXPECT_EQ(numbers[4].text(), "1.0");
    EXPECT_EQ(numbers[5].text(), "1e2");
}

TEST(JsonDocument, AMemberIsFoundByItsNameAndTheFirstOfTwoCounts) {
    const Json_document document(SOURCE, R"({"a": 1, "b": 2, "a": 3})");
    EXPECT_EQ(document.root().member("a")->integer(), 1);
    EXPECT_EQ(document.root().member("c"), nullptr);
    EXPECT_EQ(document.root().members().size(), 3U);
    EXPECT_EQ(document.root().member("b")->member("a"), nullptr);
}

TEST(JsonDocument, AnErrorNamesItsPlaceAndReason) {
    const struct {
        std::string text;
        std::string error;
    } CASES[] = {
        {"[1,\n 2,\n]", "file.json:2:3: unexpected comma before ']'"},
        {"{\"a\": 1 ,\n\n }", "file.json:1:9: unexpected comma before '}'"},
        {"{\"a\": [\"x\\n\", {\"b\": 2},]}", "file.json:1:23: unexpected comma before ']'"},
        {"[,]", "file.json:1:2: Invalid value."},
        {"[1 2]", "file.json:1:4: Missing a comma or ']' after an array element."},
        {"", "file.json:1:1: The document is empty."},
        {"[1e999]", "file.json:1:2: the number 1e999 is too large"},
        {"[\n 5" + std::string(400, '0') + ".0]",
         "file.json:2:2: the number 5" + std::string(39, '0') + "... is too large"},
        {std::string("[1]\n\0 2", 7), "file.json:2:1: unexpected zero byte"},
        {"[" + std::string(100, '[') + "]",
         "file.json:1:101: values are nested more than 100 deep"},
        {std::string(4000000, '['), "file.json:1:101: values are nested more than 100 deep"},
        {"[1,\n\"" + std::string(65537, 'a') + "\"]",
         "file.json:2:1: a text is longer than 65536 bytes"},
        {"{\"" + std::string(65537, 'a') + "\": 1}",
         "file.json:1:2: a text is longer than 65536 bytes"},
    };
    for (const auto& expected : CASES) {
        EXPECT_EQ(error_of(expected.text), expected.error);
    }
}

TEST(JsonDocument, ValuesBeyondAnyMenuAreRefused) {
    std::string text = "[1";
    for (size_t i = 2; i < Json_document::MOST_VALUES; ++i) {
        text += ",1";
    }
    EXPECT_EQ(error_of(text + "]"), "");
    EXPECT_EQ(error_of(text + ",1]"), "file.json:1:1000000: more than 500000 values");
}

TEST(JsonDocument, StoredContentStaysWhereItIs) {
    Json_storage storage;
    const std::string_view first = storage.keep("first");
    std::vector<Json_node> many(20000, Json_node::of_integer(3, {}));
    const Json_span<Json_node> large = storage.keep(many.data(), many.size());
    for (int i = 0; i < 100000; ++i) {
        (void)storage.keep("between");
    }
    Json_storage moved = std::move(storage);
    EXPECT_EQ(first, "first");
    EXPECT_EQ(large.size(), many.size());
    EXPECT_EQ(large[19999].integer(), 3);
    EXPECT_TRUE(moved.keep("").empty());
}

}  // namespace
}  // namespace frontpanel
