// Source texts of binding rules, and what the engines of a menu share.
#include <frontpanel_binding/binding_registry.h>

#include <frontpanel_binding/expression_binding.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/indexes.h"
#include "support/leaf.h"

namespace {

using support::index_of;
using support::key_of;
using support::Leaf;
using testing::ElementsAre;
using testing::IsEmpty;

// ---- accepted texts: the parameters and kinds that they yield

std::string shown(const var_index_s& key) {
    std::string text = key.rt == STRING ? "s" : "i";
    text += std::to_string(key.var);
    for (uint32_t level = 0; level < key.index.m_index_num; ++level) {
        text += "." + std::to_string(key.index.m_index[level]);
    }
    return text;
}

// The parameters of a text in key order, then the number of its rules.
std::string compiled(const std::string& source) {
    const auto registry = std::make_shared<Binding_registry>();
    const Compile_result result = registry->compile(source);
    if (!result.ok()) {
        return result.error->text();
    }
    Expression_binding binding(registry);
    binding.addBindingList(result.list);
    std::string text;
    for (const var_index_s& key : binding.getVarIndexMapKeys(0)) {
        text += shown(key) + " ";
    }
    return text + std::to_string(result.list.size());
}

TEST(Binding_rules, AcceptedTextsNameTheirParameters) {
    struct Case {
        const char* source;
        const char* parameters_and_rules;
    };
    for (const Case& each : {
             Case{"visible if 100 == 1", "i100 1"},
             Case{"visible if 100.2 == 1", "i100.2 1"},
             Case{"visible if 100.0.7 == 1", "i100.0.7 1"},
             Case{"visible if 0x64.0x1F == 1", "i100.31 1"},
             Case{"visible if 4294967294.65535.65535 == 1", "i4294967294.65535.65535 1"},
             Case{"visible if 100 == \"on\"", "s100 1"},
             Case{"visible if 100 == \"\"", "s100 1"},
             Case{"visible if 100 == \"on\" or 100 == 1", "i100 s100 1"},
             Case{"visible if 100 == 1 and 101.2 != 0", "i100 i101.2 1"},
             Case{"visible if 3 < 3", "i3 1"},
             Case{"range 0..40", "1"},
             Case{"range -5..-1", "1"},
             Case{"range -0x10 .. 0X10", "1"},
             Case{"range 40..0", "1"},
             Case{"range -2147483648..2147483647", "1"},
             Case{"range 0..4, 10..14, 20..20 if 102>=1", "i102 1"},
             Case{"visible if 100==1;range 0..1 if 101==1", "i100 i101 2"},
             Case{"\n\n;visible if 100 == 1\r\n;;# a comment; range\nrange 0..1\n# end", "i100 2"},
             Case{"visible\tif 100 == 1 # why", "i100 1"},
             Case{"visible if 100 == \"a#b;c\" ", "s100 1"},
         }) {
        SCOPED_TRACE(each.source);
        EXPECT_EQ(compiled(each.source), each.parameters_and_rules);
    }
}

// ---- refused texts: where, and what was expected

TEST(Binding_rules, RefusedTextsNameThePlaceAndWhatWasExpected) {
    struct Case {
        std::string source;
        std::string error;
    };
    const std::string int_bounds = " is not a number from -2147483648 to 2147483647";
    for (const Case& each : {
             Case{"", "line 1, column 1: expected \"visible\" or \"range\", found end of text"},
             Case{" ;\n# nothing",
                  "line 2, column 10: expected \"visible\" or \"range\", found end of text"},
             Case{"visble if 100 == 1",
                  "line 1, column 1: expected \"visible\" or \"range\", found \"visble\""},
             Case{"Visible if 100 == 1",
                  "line 1, column 1: expected \"visible\" or \"range\", found \"Visible\""},
             Case{"visible 100 == 1", "line 1, column 9: expected \"if\", found \"100\""},
             Case{"visible", "line 1, column 8: expected \"if\", found end of text"},
             Case{"visible if", "line 1, column 11: expected a parameter, found end of text"},
             Case{"visible if\n100 == 1",
                  "line 1, column 11: expected a parameter, found end of line"},
             Case{"visible if gain == 1",
                  "line 1, column 12: expected a parameter, found \"gain\""},
             Case{"visible if \"a\" == 1", "line 1, column 12: expected a parameter, found a text"},
             Case{"visible if -1 == 1",
                  "line 1, column 12: \"-1\" is not a number from 0 to 4294967294"},
             Case{"visible if 4294967295 == 1",
                  "line 1, column 12: \"4294967295\" is not a number from 0 to 4294967294"},
             Case{"visible if 99999999999999999999 == 1",
                  "line 1, column 12: \"99999999999999999999\" is not a number from 0 to "
                  "4294967294"},
             Case{"visible if 100a == 1",
                  "line 1, column 12: \"100a\" is not a number from 0 to 4294967294"},
             Case{"visible if 0x == 1",
                  "line 1, column 12: \"0x\" is not a number from 0 to 4294967294"},
             Case{"visible if 100. == 1",
                  "line 1, column 17: expected an index level, found \"==\""},
             Case{"visible if 100.65536 == 1",
                  "line 1, column 16: \"65536\" is not a number from 0 to 65535"},
             Case{"visible if 100.1.2.3 == 1",
                  "line 1, column 20: a parameter has at most two index levels"},
             Case{"visible if 100",
                  "line 1, column 15: expected a comparison (== != < <= > >=), found end of text"},
             Case{"visible if 100 = 1", "line 1, column 16: unexpected character \"=\""},
             Case{"visible if 100 3",
                  "line 1, column 16: expected a comparison (== != < <= > >=), found \"3\""},
             Case{"visible if 100 .. 3",
                  "line 1, column 16: expected a comparison (== != < <= > >=), found \"..\""},
             Case{"visible if 100 == on",
                  "line 1, column 19: expected an integer or a text in quotes, found \"on\""},
             Case{"visible if 100 == ;",
                  "line 1, column 19: expected an integer or a text in quotes, found \";\""},
             Case{"visible if 100 == - 1",
                  "line 1, column 19: expected an integer or a text in quotes, found \"-\""},
             Case{"visible if 100 == 2147483648", "line 1, column 19: \"2147483648\"" + int_bounds},
             Case{"visible if 100 == -2147483649",
                  "line 1, column 19: \"-2147483649\"" + int_bounds},
             Case{"visible if 100 == 1 101 == 2",
                  "line 1, column 21: expected \"and\", \"or\" or end of rule, found \"101\""},
             Case{"visible if 100 == 1.5",
                  "line 1, column 20: expected \"and\", \"or\" or end of rule, found \".\""},
             Case{"visible if 100 == 1 and",
                  "line 1, column 24: expected a parameter, found end of text"},
             Case{"visible if 100 == 1 or or",
                  "line 1, column 24: expected a parameter, found \"or\""},
             Case{"visible if 100 < \"a\"",
                  "line 1, column 16: a text is compared with == or != only"},
             Case{"visible if 100 == \"a", "line 1, column 19: text without closing quote"},
             Case{"visible if 100 == \"a\nb\"", "line 1, column 19: text without closing quote"},
             Case{"visible if 100 == \"a\\",
                  "line 1, column 21: only \\\" and \\\\ are escapes in a text"},
             Case{"visible if 100 == \"a\\n\"",
                  "line 1, column 21: only \\\" and \\\\ are escapes in a text"},
             Case{std::string("visible if 100 == \"a\0\"", 22),
                  "line 1, column 21: a text cannot hold a zero byte"},
             Case{"visible if 100 == \"" + std::string(257, 'x') + "\"",
                  "line 1, column 19: text longer than 256 characters"},
             Case{"range if 100 == 1", "line 1, column 7: expected an integer, found \"if\""},
             Case{"range 5", "line 1, column 8: expected \"..\", found end of text"},
             Case{"range 5.10", "line 1, column 8: expected \"..\", found \".\""},
             Case{"range 5...10", "line 1, column 10: expected an integer, found \".\""},
             Case{"range 5..", "line 1, column 10: expected an integer, found end of text"},
             Case{"range 5..10,", "line 1, column 13: expected an integer, found end of text"},
             Case{"range 5..40if 100 == 1", "line 1, column 10: \"40if\"" + int_bounds},
             Case{"range 0..1 2..3",
                  "line 1, column 12: expected \",\", \"if\" or end of rule, found \"2\""},
             Case{"range 0..1 if", "line 1, column 14: expected a parameter, found end of text"},
             Case{"visible if 100 == 1\n  range 0,1",
                  "line 2, column 10: expected \"..\", found \",\""},
             Case{"\xef\xbb\xbfvisible if 1 == 1",
                  "line 1, column 1: unexpected character \"\\xef\""},
             Case{std::string("visible\0if", 10),
                  "line 1, column 8: unexpected character \"\\x00\""},
             Case{"visible if (100 == 1)", "line 1, column 12: unexpected character \"(\""},
             Case{std::string(1000, 'v'),
                  "line 1, column 1: expected \"visible\" or \"range\", found \"" +
                      std::string(40, 'v') + "...\""},
         }) {
        SCOPED_TRACE(each.source);
        EXPECT_EQ(compiled(each.source), each.error);
    }
}

TEST(Binding_rules, ATextOfTheLongestParameterIsAccepted) {
    EXPECT_EQ(compiled("visible if 100 == \"" + std::string(256, 'x') + "\""), "s100 1");
}

TEST(Binding_rules, AVeryLongConditionCompiles) {
    std::string source = "visible if 0 == 1";
    for (int i = 0; i < 20000; ++i) {
        source += " or 0 == 1";
    }
    EXPECT_EQ(compiled(source), "i0 1");
}

TEST(Binding_rules, TheRangesOfATextAreTold) {
    Binding_registry registry;
    const Compile_result result =
        registry.compile("range 5..2, 7..7; visible if 100 == 1; range -4..-1 if 100 == 2");
    ASSERT_EQ(result.intervals.size(), 3U);
    const std::pair<int, int> RANGES[] = {{2, 5}, {7, 7}, {-4, -1}};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(result.intervals[i].min, RANGES[i].first) << i;
        EXPECT_EQ(result.intervals[i].max, RANGES[i].second) << i;
    }
    EXPECT_TRUE(registry.compile("range 1..2; range").intervals.empty());
}

TEST(Binding_rules, NothingIsKeptOfARefusedText) {
    Binding_registry registry;
    const Compile_result refused = registry.compile("visible if 100 == 1; range 3");

    EXPECT_FALSE(refused.ok());
    EXPECT_THAT(refused.list, IsEmpty());
    EXPECT_EQ(registry.rule(0), nullptr);
}

TEST(Binding_rules, EachTextHasAListOfItsOwn) {
    Binding_registry registry;
    const BindingListT first = registry.compile("range 0..1; range 2..3").list;
    const BindingListT second = registry.compile("range 0..1").list;

    EXPECT_THAT(first, ElementsAre(0, 1));
    EXPECT_THAT(second, ElementsAre(2));
    EXPECT_NE(registry.rule(2), nullptr);
    EXPECT_EQ(registry.rule(3), nullptr);
    EXPECT_EQ(registry.rule(-1), nullptr);
}

// ---- what the engines share

TEST(Binding_registry_test, ADependantIsListedOnce) {
    Binding_registry registry;
    Leaf leaf("Gain");
    const var_index_s key = key_of(INTEGER, 100, index_of({2}));

    EXPECT_TRUE(registry.add_dependant(key, &leaf));
    EXPECT_FALSE(registry.add_dependant(key, &leaf));

    ASSERT_EQ(registry.var_index_map()->count(key), 1u);
    EXPECT_THAT(registry.var_index_map()->at(key).binding_dependant_entries, ElementsAre(&leaf));
    EXPECT_EQ(registry.var_index_map()->at(key).model_type, INTEGER);
}

TEST(Binding_registry_test, TakingOutADependantLeavesTheOthers) {
    Binding_registry registry;
    Leaf first("First");
    Leaf second("Second");
    const var_index_s key = key_of(INTEGER, 100, index_of({2}));
    registry.add_dependant(key, &first);
    registry.add_dependant(key, &second);

    registry.remove_dependant(key, &first);
    registry.remove_dependant(key, &first);
    registry.remove_dependant(key_of(STRING, 100, index_of({2})), &second);

    EXPECT_THAT(registry.var_index_map()->at(key).binding_dependant_entries, ElementsAre(&second));
    EXPECT_EQ(registry.var_index_map()->size(), 1u);
}

TEST(Binding_registry_test, WarningsGoToTheListener) {
    Binding_registry registry;
    std::vector<std::string> shown_warnings;
    registry.show_warning("lost");
    registry.set_warning_listener([&](const std::string& text) { shown_warnings.push_back(text); });
    registry.show_warning("Output is muted");
    registry.set_warning_listener(nullptr);
    registry.show_warning("lost");

    EXPECT_THAT(shown_warnings, ElementsAre("Output is muted"));
}

}  // namespace
