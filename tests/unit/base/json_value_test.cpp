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
    const std::vector<Place> places = text.places_in_text({0, 2, 2});
    EXPECT_EQ(places.at(0).column, 4U);
    EXPECT_EQ(places.at(1).column, 7U);
    EXPECT_EQ(places.at(2).column, 7U);
}

TEST_F(Json_value_test, WarnsAndReportsAtItsPlace) {
    const Json_value number = value("[\n7]").items()[0];
    number.warn("odd");
    number.report("wrong");
    EXPECT_THAT(problems.warnings(), ElementsAre("menu.json:2:1: warning: odd"));
    EXPECT_THAT(problems.errors(), ElementsAre("menu.json:2:1: wrong"));
}

TEST(JsonValue, ANumberThatDoesNotFitIsShown) {
    const Json_document document(
        SOURCE, "[2.5, 1e3, 12345678901234567890, 300, \"x\", " + std::string(50, '1') + "]");
    Problems problems;
    for (const Json_value& value : Json_value(document.root(), problems).items()) {
        problems.attempt([&value] { value.integer(0, 255); });
    }
    const std::string expected = "expected a whole number from 0 to 255, found ";
    EXPECT_EQ(problems.errors(),
              (std::vector<std::string>{
                  "menu.json:1:2: " + expected + "2.5", "menu.json:1:7: " + expected + "1e3",
                  "menu.json:1:12: " + expected + "12345678901234567890",
                  "menu.json:1:34: " + expected + "300", "menu.json:1:39: " + expected + "a text",
                  "menu.json:1:44: " + expected + std::string(40, '1') + "..."}));
}

TEST(JsonValue, DuplicatesAreReportedInLargeObjectsAsInSmallOnes) {
    for (const int size : {3, 100}) {
        std::string text = "{\"a\": 1";
        for (int i = 1; i < size; ++i) {
            text += ", \"m" + std::to_string(i) + "\": 1";
        }
        const Json_document document(SOURCE, text + ",\n\"a\": 2}");
        Problems problems;
        const auto members = Json_value(document.root(), problems).members();
        EXPECT_EQ(members.size(), static_cast<size_t>(size));
        EXPECT_EQ(problems.errors(),
                  std::vector<std::string>{"menu.json:2:1: duplicate member \"a\""});
    }
}

TEST(JsonValue, AValueIsWrittenAsItWasRead) {
    const std::string text = R"({"a":[1,-2.50,true,false,null,"x\ny"],"b":{}})";
    const Json_document document(SOURCE, text);
    Problems problems;
    EXPECT_EQ(Json_value(document.root(), problems).json(), text);
}

}  // namespace
}  // namespace frontpanel
