#include <frontpanel_base/json_value.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace frontpanel {
namespace {

using testing::ElementsAre;

const Source SOURCE{"menu.json", 0};

class Json_value_test : public testing::Test {
protected:
    Json_value value(const std::string& text) {
        document = std::make_unique<Json_document>(SOURCE, text);
        return {document->root(), problems};
    }
    std::string error_of(const std::function<void()>& work) {
        try {
            work();
        } catch (const Placed_error& error) {
            return error.what();
        }
        return "";
    }

    std::unique_ptr<Json_document> document;
    Problems problems;
};

TEST_F(Json_value_test, MembersAreFoundByName) {
    const Json_value object = value(R"({"a": 1})");
    EXPECT_EQ(object.member("a").integer(0, 9), 1);
    EXPECT_FALSE(object.find("b"));
    EXPECT_EQ(error_of([&] { object.member("b"); }), "menu.json:1:1: expected a member \"b\"");
    EXPECT_EQ(error_of([&] { object.member("a").member("b"); }),
              "menu.json:1:7: expected an object, found a whole number");
}

TEST_F(Json_value_test, UnknownAndRepeatedMembersAreReported) {
    value(R"({"a": 1, "x": 2, "a": 3})").expect_members({"a"});
    EXPECT_EQ(problems.errors().size(), 2U);
    EXPECT_EQ(problems.errors()[0].rfind("menu.json:1:10: ", 0), 0U) << problems.errors()[0];
    EXPECT_EQ(problems.errors()[1].rfind("menu.json:1:18: ", 0), 0U) << problems.errors()[1];
}

TEST_F(Json_value_test, NumbersHaveBounds) {
    EXPECT_EQ(value("9").integer(0, 9), 9);
    EXPECT_EQ(value("true").boolean(), true);
    for (const char* const bad : {"10", "-1", "1.5", "\"1\"", "null"}) {
        EXPECT_NE(error_of([&] { value(bad).integer(0, 9); }), "") << bad;
    }
    EXPECT_NE(error_of([&] { value("1").boolean(); }), "");
}

TEST_F(Json_value_test, TextsArePrintableAndOfTheirLength) {
    EXPECT_EQ(value("\"Gain\"").text(), "Gain");
    EXPECT_EQ(value("\"a\\nb\"").text_with_lines(), "a\nb");
    EXPECT_NE(error_of([&] { value("\"a\\nb\"").text(); }), "");
    EXPECT_NE(error_of([&] { value("\"\xC3\xA4\"").text(); }), "");
    EXPECT_EQ(value("\"Gain\"").text_of_length(1, 4), "Gain");
    EXPECT_NE(error_of([&] { value("\"Gain\"").text_of_length(1, 3); }), "");
    EXPECT_NE(error_of([&] { value("\"\"").text_of_length(1, 3); }), "");
}

TEST_F(Json_value_test, AChoiceIsAPlaceAmongTheKnown) {
    EXPECT_EQ(value("\"b\"").choice({"a", "b"}), 1U);
    EXPECT_NE(error_of([&] { value("\"c\"").choice({"a", "b"}); }), "");
}

TEST_F(Json_value_test, ListsHaveALargestLength) {
    EXPECT_EQ(value("[1, 2]").some_items(2, "numbers").size(), 2U);
    EXPECT_NE(error_of([&] { value("[1, 2]").some_items(1, "numbers"); }), "");
    EXPECT_NE(error_of([&] { value("[]").some_items(1, "numbers"); }), "");
    EXPECT_TRUE(value("[]").items().empty());
}

TEST_F(Json_value_test, APlaceInATextCountsItsEscapes) {
    const Json_value text = value("  \"a\\\"b\"");
    EXPECT_EQ(text.place_in_text(0).column, 4U);
    EXPECT_EQ(text.place_in_text(2).column, 7U);
}

TEST_F(Json_value_test, IsWrittenAsJsonAgain) {
    const std::string text = R"({"a":[1,true,null,"x\"y"],"b":{}})";
    EXPECT_EQ(value(text).json(), text);
}

TEST_F(Json_value_test, WarnsAndReportsAtItsPlace) {
    const Json_value number = value("[\n7]").items()[0];
    number.warn("odd");
    number.report("wrong");
    EXPECT_THAT(problems.warnings(), ElementsAre("menu.json:2:1: warning: odd"));
    EXPECT_THAT(problems.errors(), ElementsAre("menu.json:2:1: wrong"));
}

}  // namespace
}  // namespace frontpanel
