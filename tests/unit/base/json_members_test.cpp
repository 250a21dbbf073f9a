#include <frontpanel_base/json_members.h>

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(JsonMembers, AMissingMemberHasItsDefault) {
    const Source source{"menu.json", 0};
    Problems problems;
    const Json_document document(source, R"({"n": 3, "t": "x", "b": true, "l": [1, 2]})");
    const Json_value value(document.root(), problems);
    EXPECT_EQ(integer_or(value, "n", 0, 9, 7), 3);
    EXPECT_EQ(integer_or(value, "none", 0, 9, 7), 7);
    EXPECT_EQ(text_or(value, "t", "y"), "x");
    EXPECT_EQ(text_or(value, "none", "y"), "y");
    EXPECT_TRUE(boolean_or(value, "b", false));
    EXPECT_FALSE(boolean_or(value, "none", false));
    EXPECT_EQ(list_or_none(value, "l").size(), 2U);
    EXPECT_TRUE(list_or_none(value, "none").empty());
    EXPECT_THROW(integer_or(value, "n", 5, 9, 7), Placed_error);
}

}  // namespace
}  // namespace frontpanel
