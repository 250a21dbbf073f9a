#include "check/widest_value.h"

#include <frontpanel_base/json_document.h>
#include <gtest/gtest.h>

#include "support/panel_fixture.h"

namespace frontpanel {
namespace {

struct Width_case {
    std::string members;  // of a range
    std::string widest;
};

// The widest text of a range with these members.
std::string widest_of(const std::string& members) {
    const std::string item = R"({"type": "range", "name": "G", "parameter": "g")" +
                             (members.empty() ? "" : ", " + members) + "}";
    Simulated_menu loaded = simulated_text(menu_text(
        R"({"name": "g", "pid": 1, "type": "integer", "min": -2147483647, "max": 2147483646, "value": 0})",
        item));
    Problems problems;
    const Source source{"item.json", 0};
    const Json_document document(source, item);
    Widest_values widest;
    const std::string* const text =
        widest.of(*loaded.menu->root().Get_child(), Json_value(document.root(), problems));
    return text != nullptr ? *text : "nothing";
}

TEST(WidestValue, IsThatOfTheBoundsInTheirFormat) {
    for (const auto& [members, widest] : {
             Width_case{"", "-2147483647"},
             Width_case{R"("min": 0, "max": 100)", "100"},
             Width_case{R"("min": -99, "max": 100)", "-99"},
             Width_case{R"("min": 0, "max": 1234567890, "format": "%d Hz")", "1234567890 Hz"},
             Width_case{R"("min": 0, "max": 9, "format": "Frequency %d Hz now")",
                        "Frequency 0 Hz now"},
             Width_case{R"("min": -990, "max": 0, "format": "%.1f dBFS", "value_format": "v/10")",
                        "-10.0 dBFS"},
             Width_case{R"("min": 0, "max": 255, "format": "%02X")", "00"},
         }) {
        EXPECT_EQ(width_of(widest_of(members)), width_of(widest)) << members << widest_of(members);
    }
}

TEST(WidestValue, CountsTheRowsOfATableThatAreWithinTheBounds) {
    EXPECT_EQ(widest_of(R"("min": 0, "max": 2, "format": "0:off,1:searching,7:never at all,%d")"),
              "searching");
    EXPECT_EQ(widest_of(R"("min": 0, "max": 2000000, "format": "0:off,54321:tuned to it,%d")"),
              "tuned to it");
}

TEST(WidestValue, IsFoundBetweenTheBoundsOfAConversionThatIsNotMonotone) {
    EXPECT_EQ(
        widest_of(
            R"("min": 0, "max": 400, "format": "%d", "value_format": "v == 123 ? 1000000 : v")"),
        "1000000");
    EXPECT_EQ(
        widest_of(
            R"("min": -1000000, "max": 1000000, "format": "%d", "value_format": "1000000 / v")"),
        "-1000000");
    EXPECT_EQ(
        width_of(widest_of(
            R"("min": 0, "max": 2000000, "format": "%d", "value_format": "v > 1000000 ? 0 : v * 100")")),
        9);
}

TEST(WidestValue, IsNothingForAValueOfNoBoundWidth) {
    Problems problems;
    const Source source{"item.json", 0};
    const Json_document document(source, R"({"type": "text", "name": "T", "pid": 1})");
    Simulated_menu loaded =
        simulated_text(menu_text(R"({"pid": 1, "type": "text", "length": 8, "value": ""})",
                                 R"({"type": "text", "name": "T", "pid": 1})"));
    Widest_values widest;
    EXPECT_EQ(widest.of(*loaded.menu->root().Get_child(), Json_value(document.root(), problems)),
              nullptr);
}

TEST(WidestValue, TakesBoundedWork) {
    // Ten thousand formats, each with a conversion over all integers.
    Widest_values widest;
    Simulated_menu loaded = simulated_text(menu_text(
        R"({"pid": 1, "type": "integer", "min": -1000000, "max": 1000000, "value": 0})",
        R"({"type": "range", "name": "G", "pid": 1, "format": "%d", "value_format": "v*v"})"));
    for (int i = 0; i < 10000; ++i) {
        Problems problems;
        const Source source{"item.json", 0};
        const Json_document document(
            source, R"({"format": "%d", "value_format": "v*)" + std::to_string(i) + "\"}");
        const std::string* const text =
            widest.of(*loaded.menu->root().Get_child(), Json_value(document.root(), problems));
        ASSERT_NE(text, nullptr);
        ASSERT_EQ(*text, "2147483647");
    }
}

}  // namespace
}  // namespace frontpanel
