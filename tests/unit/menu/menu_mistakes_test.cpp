// What the check of a menu reports of each mistake that an author makes: the message and its place.
#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

struct Mistake {
    const char* what;
    std::string text;     // of a menu file, on one line
    std::string at;       // the place is the first byte of this part of the text
    std::string message;  // an error, or "warning: ..."
};

// All that is reported of a menu, errors and warnings.
Lines reports_of(const std::string& text) {
    try {
        return simulated_text(text, 40).warnings;
    } catch (const Input_errors& errors) {
        return errors.lines();
    }
}

std::string expected_of(const Mistake& mistake) {
    return "menu.json:1:" + std::to_string(mistake.text.find(mistake.at) + 1) + ": " +
           mistake.message;
}

void expect_reports(const std::vector<Mistake>& mistakes) {
    for (const Mistake& mistake : mistakes) {
        ASSERT_NE(mistake.text.find(mistake.at), std::string::npos) << mistake.what;
        EXPECT_EQ(reports_of(mistake.text), Lines{expected_of(mistake)}) << mistake.what;
    }
}

std::string with_parameters(const std::string& parameters, const std::string& items) {
    return menu_text(parameters, items, R"({"gps": 1})");
}

constexpr const char* GAIN =
    R"({"name": "gain", "pid": 5, "type": "integer", "min": 0, "max": 100, "value": 7})";
constexpr const char* GAIN_ITEM = R"({"type": "range", "name": "Gain", "parameter": "gain"})";

std::string gain_with(const std::string& members) {
    return with_parameters(
        GAIN, R"({"type": "range", "name": "Gain", "parameter": "gain", )" + members + "}");
}

// The same beside another parameter that rules may read.
std::string with_mode(const std::string& members) {
    return with_parameters(
        std::string(GAIN) +
            R"(, {"name": "mode", "pid": 6, "type": "integer", "min": 0, "max": 3, "value": 0})",
        R"({"type": "range", "name": "Gain", "parameter": "gain", )" + members + "}");
}

std::string text_with(const std::string& type, const std::string& value) {
    return with_parameters(
        R"({"name": "text", "pid": 6, "type": "text", "length": 20, "value": ")" + value + "\"}",
        R"({"type": ")" + type + R"(", "name": "Shown", "parameter": "text"})");
}

TEST(MenuMistakes, OfTheNumberThatIsShown) {
    expect_reports({
        {"an expression without v", gain_with(R"("value_format": "10*2")"), R"("10*2")",
         "warning: the expression does not name v, so that every value shows the same"},
        {"an expression in another name", gain_with(R"("value_format": "vv/2", "format": "%.1f")"),
         R"("vv/2")",
         "warning: the expression does not name v, so that every value shows the same"},
        {"a division behind %d", gain_with(R"("value_format": "v/10", "format": "%d V")"),
         R"("%d V")",
         "warning: \"%d\" hides the decimals of \"v/10\": %.1f shows them, %.0f rounds"},
        {"a division behind a table",
         gain_with(R"("value_format": "v*1.5", "format": "0:off,%d V")"), R"("0:off)",
         "warning: \"%d\" hides the decimals of \"v*1.5\": %.1f shows them, %.0f rounds"},
        {"a division without a format", gain_with(R"("value_format": "v/10")"), R"("v/10")",
         "warning: \"%d\" hides the decimals of \"v/10\": %.1f shows them, %.0f rounds"},
        {"a per cent sign", gain_with(R"("format": "%d %")"), R"("%d %")",
         "more than one conversion in \"%d %\"; a per cent sign is written %%"},
        {"a parenthesis that is open", gain_with(R"-("value_format": "(v+1", "format": "%.1f")-"),
         R"(", "format")", "not an expression in v: Missing ')'"},
        {"an operator too many", gain_with(R"("value_format": "v+*2", "format": "%.1f")"), "*2",
         "not an expression in v: Unexpected '*'"},
        {"a character that is none", gain_with(R"("value_format": "v # 2")"), "# 2",
         "not an expression in v: Unexpected '#'"},
        {"an unknown function", gain_with(R"-("value_format": "half(v)")-"), R"-("})-",
         "not an expression in v: Unknown Function"},
    });
}

TEST(MenuMistakes, AnExpressionThatShowsWholeNumbersHidesNothing) {
    for (const char* const members :
         {R"-("value_format": "(v-fmod(v,10))/10", "format": "%d")-",
          R"("value_format": "v/10", "format": "%.0f")",
          R"("value_format": "50+v", "format": "%d")", R"("value_format": "", "format": "%d")",
          R"("value_format": "v/0", "format": "%.1f")"}) {
        const Lines reports = reports_of(gain_with(members));
        EXPECT_TRUE(reports.empty() || reports[0].find("Divide by Zero") != std::string::npos)
            << reports[0];
    }
}

TEST(MenuMistakes, OfBoundsAndSteps) {
    expect_reports({
        {"a bound below the parameter's", gain_with(R"("min": -10)"), "-10",
         "the parameter holds 0 to 100, not -10"},
        {"a bound above the parameter's", gain_with(R"("max": 120)"), "120",
         "the parameter holds 0 to 100, not 120"},
        {"a step beyond the range", gain_with(R"("max": 40, "editor": {"step": 50})"), "50",
         "warning: a step of 50 is larger than the whole range, 0 to 40"},
        {"a number with decimals", gain_with(R"("max": 40.5)"), "40.5",
         "expected a whole number from 0 to 2147483646, found 40.5"},
        {"a number that is too large", gain_with(R"("max": 99999999999)"), "99999999999",
         "expected a whole number from 0 to 2147483646, found 99999999999"},
    });
}

TEST(MenuMistakes, OfTextsThatATimeOrAddressStartsWith) {
    expect_reports({
        {"a time", text_with("time", "noon"), R"("noon")",
         "warning: item \"Shown\" shows this value: expected a time such as 12:30, 12:30:05, "
         "2024-05-01 or 2024-05-01 12:30:05"},
        {"an address", text_with("address", "localhost"), R"("localhost")",
         "warning: item \"Shown\" shows this value: expected an address such as 192.168.0.1"},
    });
    EXPECT_EQ(reports_of(text_with("time", "12:30")), Lines{});
    EXPECT_EQ(reports_of(text_with("address", "10.0.0.1")), Lines{});
    EXPECT_EQ(reports_of(text_with("text", "noon")), Lines{});
}

TEST(MenuMistakes, OfRules) {
    expect_reports({
        {"a rule that sets its own parameter",
         with_mode(R"("binding": "set [gain] = 5 if [mode] == 1")"), "5 if",
         "warning: this rule sets the parameter of its own item"},
        {"a comparison that is never true", with_mode(R"("binding": "visible if [mode] > 3")"),
         "[mode] > 3", "warning: \"[mode] > 3\" is never true: [mode] is 0 to 3"},
        {"a comparison that is always true",
         with_mode(R"("binding": "visible if [mode] == 1 or [mode] + 1 >= 1")"), "[mode] + 1 >= 1",
         "warning: \"[mode] + 1 >= 1\" is always true: [mode] + 1 is 1 to 4"},
        {"a condition that is always true", with_mode(R"("binding": "visible if [mode] + 1")"),
         "[mode] + 1", "warning: \"[mode] + 1\" is always true"},
        {"a value that no one can enter", with_mode(R"-("binding": "warn \"x\" if value > 100")-"),
         "value > 100", "warning: \"value > 100\" is never true: value is 0 to 100"},
        {"an option that is not declared",
         with_mode(R"-("binding": "visible if has_option(\"gsp\")")-"), R"(gsp)",
         "warning: no product option \"gsp\" is declared; did you mean \"gps\"?"},
    });
}

TEST(MenuMistakes, OfCopies) {
    const auto repeated = [](const std::string& repeat) {
        return with_parameters(GAIN, R"({"type": "range", "name": "Gain", "parameter": "gain",
            "options": ["gps"], "repeat": )" +
                                         repeat + "}");
    };
    EXPECT_EQ(reports_of(repeated(R"({"counter": "i", "from": 1, "to": 2})")),
              Lines{"menu.json:2:55: warning: nothing that is repeated names \"{i}\", so that all "
                    "copies are the same"});
    EXPECT_EQ(reports_of(repeated(R"({"counter": "i", "from": 1, "to": 1})")),
              Lines{"menu.json:2:55: warning: nothing that is repeated names \"{i}\""});
}

// A condition that holds for one copy and not for others is what a template is for.
TEST(MenuMistakes, AConditionIsDoubtfulOnlyWhenItIsSoInAllCopies) {
    const auto repeated = [](const std::string& condition, int last) {
        return with_parameters(
            std::string(GAIN) +
                R"(, {"name": "count", "pid": 6, "type": "integer", "min": 1, "max": 4, "value": 1})",
            R"({"type": "range", "name": "Gain {i}", "parameter": "gain", "binding": "visible if )" +
                condition + R"(", "repeat": {"counter": "i", "from": 1, "to": )" +
                std::to_string(last) + "}}");
    };
    EXPECT_EQ(reports_of(repeated("[count] >= {i}", 6)), Lines{});
    EXPECT_EQ(reports_of(repeated("[count] >= {i}", 1)), Lines{});
    EXPECT_EQ(reports_of(repeated("[count] > 4 or [gain] == {i}", 2)).size(), 1U);
}

TEST(MenuMistakes, OfNames) {
    expect_reports({
        {"a member", gain_with(R"("fromat": "%d")"), R"("fromat")",
         "unknown member \"fromat\"; did you mean \"format\"?"},
        {"the kind of an item",
         with_parameters(GAIN, std::string(GAIN_ITEM) + R"(, {"type": "rnage", "name": "G"})"),
         R"("rnage")",
         "expected one of \"node\", \"range\", \"text\", \"address\", \"time\", \"enum\", \"slot\", "
         "\"warning\", \"link\", \"bridge\", \"mount\", found \"rnage\"; did you mean \"range\"?"},
        {"a parameter",
         with_parameters(GAIN, R"({"type": "range", "name": "G", "parameter": "gian"})"),
         R"("gian")", "the device has no parameter \"gian\"; did you mean \"gain\"?"},
        {"the target of a link",
         with_parameters(GAIN, std::string(GAIN_ITEM) + R"(, {"type": "link", "target": "Gian"})"),
         R"("Gian")", "there is no item \"Gian\"; did you mean \"Gain\"?"},
        {"two items of one name",
         with_parameters(GAIN, std::string(GAIN_ITEM) +
                                   R"(, {"type": "range", "parameter": "gain", "name": "Gain"})"),
         R"("Gain"}])", "warning: another item of this menu is named \"Gain\""},
    });
}

TEST(MenuMistakes, ItemsThatStandInForEachOtherMayShareAName) {
    EXPECT_EQ(
        reports_of(with_parameters(GAIN, R"({"type": "range", "name": "Gain", "parameter": "gain",
                            "binding": "visible if [gain] > 3"},
                           {"type": "range", "name": "Gain", "parameter": "gain",
                            "binding": "visible if [gain] <= 3"})")),
        Lines{});
}

TEST(MenuMistakes, OfJson) {
    expect_reports({
        {"a comma too many", R"({"menu": {"name": "Main", "items": [1, 2,]}})", ",]",
         "unexpected comma before ']'"},
    });
    EXPECT_EQ(reports_of(R"({"mneu": {}, "device": {"parameters": []}})"),
              (Lines{"menu.json:1:1: expected a member \"menu\"",
                     "menu.json:1:2: unknown member \"mneu\"; did you mean \"menu\"?"}));
}

}  // namespace
}  // namespace frontpanel
