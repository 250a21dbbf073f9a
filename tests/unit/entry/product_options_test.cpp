#include <frontpanel_data/entry.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/indexes.h"
#include "support/leaf.h"
#include "support/line_gates.h"

namespace {

using support::capture;
using support::expect_line_gate;
using support::Gate;
using support::index_of;
using support::Leaf;

using Options = std::map<std::string, unsigned int>;

std::string text_of(const is_static_value_s& value) {
    return "{" + std::to_string(value.isStatic) + ", " + std::to_string(value.realValue) + ", " +
           std::to_string(value.dynamicValue) + "}";
}

struct Classification {
    Options product;
    const char* option;
    const char* result;
};

const Classification CLASSIFICATIONS[] = {
    // A pattern among the product options and the options that fill it in.
    {{{"slotn", 4}}, "slot3", "{0, 4, 3}"},
    {{{"slotn", 4}}, "slot4", "{0, 4, 4}"},
    {{{"slotn", 4}}, "slot5", "{0, 4, 5}"},
    {{{"slotn", 4}}, "slot12", "{0, 4, 12}"},
    {{{"slotn", 4}}, "slotn", "{0, 4, 4}"},
    {{{"slotn", 0}}, "slot3", "{0, 0, 3}"},
    // A plain option.
    {{{"gps", 1}}, "gps", "{1, 1, 1}"},
    {{{"gps", 0}}, "gps", "{1, 0, 0}"},
    {{{"gps", 9}}, "gps", "{1, 9, 9}"},
    // Not decided.
    {{}, "gps", "{-1, 0, 0}"},
    {{{"gps", 1}}, "clock", "{-1, 0, 0}"},
    {{{"gps", 1}}, "gps1", "{-1, 0, 0}"},
    {{{"gps", 1}}, "", "{-1, 0, 0}"},
    {{{"slotn", 4}}, "slo", "{-1, 0, 0}"},
    {{{"slotn", 4}}, "", "{-1, 0, 0}"},
    // The prefix may stand anywhere in the option; the number follows it.
    {{{"slotn", 4}}, "rearslot7", "{0, 4, 7}"},
    {{{"slotn", 4}}, "slotslot7", "{0, 4, 0}"},
    {{{"slotn", 4}}, "slot", "{0, 4, 0}"},
    {{{"slotn", 4}}, "slotx", "{0, 4, 0}"},
    {{{"slotn", 4}}, "slot3rear", "{0, 4, 3}"},
    {{{"slotn", 4}}, "slot 3", "{0, 4, 3}"},
    {{{"slotn", 4}}, "slot-3", "{0, 4, -3}"},
    // A letter n anywhere makes a pattern, and what is cut off is always the last character.
    {{{"fan", 2}}, "fa2", "{0, 2, 2}"},
    {{{"net", 3}}, "net", "{0, 3, 3}"},
    {{{"net", 3}}, "ne7", "{0, 3, 7}"},
    {{{"n", 3}}, "7", "{0, 3, 7}"},
    {{{"n", 3}}, "gps", "{0, 3, 0}"},
    // The first pattern in the order of names decides, and an exact name comes before all patterns.
    {{{"an", 1}, {"slotn", 4}}, "slota5", "{0, 1, 5}"},
    {{{"sln", 1}, {"slotn", 4}}, "slot5", "{0, 1, 0}"},
    {{{"slot3", 9}, {"slotn", 4}}, "slot3", "{1, 9, 9}"},
    {{{"gps", 1}, {"slotn", 4}}, "slot2", "{0, 4, 2}"},
    // Numbers beyond an int stay at its limits.
    {{{"slotn", 4}}, "slot99999999999999999999", "{0, 4, 2147483647}"},
    {{{"slotn", 4}}, "slot-99999999999999999999", "{0, 4, -2147483648}"},
};

TEST(ProductOptions, ClassifyAnOptionByItsName) {
    for (const Classification& expected : CLASSIFICATIONS) {
        Leaf leaf("Gain");
        EXPECT_EQ(leaf.setProductOptions(expected.product), 0);
        for (const bool n_intact : {false, true}) {
            EXPECT_EQ(text_of(leaf.isOptionStatic(expected.option, n_intact)), expected.result)
                << "[" << expected.option << "]";
        }
    }
}

TEST(ProductOptions, AreReplacedAsAWhole) {
    Leaf leaf("Gain");
    leaf.setProductOptions({{"gps", 1}, {"clock", 1}});
    leaf.setProductOptions({{"gps", 2}});
    EXPECT_EQ(text_of(leaf.isOptionStatic("gps", false)), "{1, 2, 2}");
    EXPECT_EQ(text_of(leaf.isOptionStatic("clock", false)), "{-1, 0, 0}");
}

TEST(ProductOptions, AreNotChangedByAQuestion) {
    Leaf leaf("Gain");
    leaf.setProductOptions({{"gps", 1}});
    leaf.isOptionStatic("clock", false);
    EXPECT_EQ(text_of(leaf.isOptionStatic("clock", false)), "{-1, 0, 0}");
}

std::string classification_lines(const Options& product, const char* option) {
    Leaf leaf("Gain");
    leaf.setProductOptions(product);
    return capture(0x1, [&] { leaf.isOptionStatic(option, false); }).out;
}

const std::string PREFIX = "[isOptionStatic][product_options.cpp][#] ";

TEST(ProductOptionLines, TellHowAnOptionWasClassified) {
    EXPECT_EQ(classification_lines({}, "gps"), PREFIX + "Size of real_option_map is zero. \n");
    EXPECT_EQ(classification_lines({{"gps", 1}}, "gps"),
              "Option is in map." + PREFIX + "Static option was found. [gps] value=[1]\n");
    EXPECT_EQ(classification_lines({{"slotn", 4}}, "slotn"),
              "Option is in map." + PREFIX +
                  "Dynamic option was found, with n intact.[slotn] value=[4]\n");
    EXPECT_EQ(classification_lines({{"gps", 1}, {"slotn", 4}, {"zoom", 2}}, "slot3"),
              PREFIX + "Compare [slot3] with Real Option:[gps] that has Value:[1] \n" + PREFIX +
                  "Compare [slot3] with Real Option:[slotn] that has Value:[4] \n" + PREFIX +
                  "Dynamic option was found, with n replaced. option[slot3] "
                  "extracted_value=[3][3]\n");
    EXPECT_EQ(classification_lines({{"gps", 1}, {"slotn", 4}}, "clock"),
              PREFIX + "Compare [clock] with Real Option:[gps] that has Value:[1] \n" + PREFIX +
                  "Compare [clock] with Real Option:[slotn] that has Value:[4] \n" + PREFIX +
                  "Could not decide if option [clock] was static or dynamic. Did not find it in "
                  "option map.\n");
}

TEST(ProductOptionLines, AreInTheCategoryOfOptions) {
    Leaf leaf("Gain");
    const auto ask = [&](const char* option) {
        return [&leaf, option] { leaf.isOptionStatic(option, false); };
    };
    expect_line_gate("Size of real_option_map is zero. \n", 0x11, Gate::LEAF, ask("gps"));
    leaf.setProductOptions({{"gps", 1}, {"slotn", 4}});
    expect_line_gate("Option is in map.", 0x11, Gate::LEAF, ask("gps"));
    expect_line_gate("Static option was found.", 0x11, Gate::LEAF, ask("gps"));
    expect_line_gate("with n intact.", 0x11, Gate::LEAF, ask("slotn"));
    expect_line_gate("Compare [slot3]", 0x11, Gate::LEAF, ask("slot3"));
    expect_line_gate("with n replaced.", 0x11, Gate::LEAF, ask("slot3"));
    expect_line_gate("Could not decide", 0x11, Gate::LEAF, ask("clock"));
}

// --- or-options

struct Or_case {
    Options product;
    std::vector<std::string> options;
    bool holds;
};

const Or_case OR_CASES[] = {
    {{}, {}, true},
    {{}, {"gps"}, false},
    {{{"gps", 1}}, {}, true},
    {{{"gps", 1}}, {"gps"}, true},
    {{{"gps", 0}}, {"gps"}, false},
    {{{"gps", 1}}, {"clock"}, false},
    {{{"slotn", 4}}, {"slot3"}, true},
    {{{"slotn", 4}}, {"slot4"}, true},
    {{{"slotn", 4}}, {"slot5"}, false},
    {{{"slotn", 4}}, {"slotn"}, true},
    {{{"slotn", 0}}, {"slotn"}, false},
    {{{"slotn", 0}}, {"slot0"}, false},
    {{{"gps", 1}}, {"a", "b"}, false},
    {{{"gps", 1}}, {"a", "gps"}, true},
    {{{"gps", 1}}, {"gps", "a"}, true},
    {{{"gps", 0}, {"clock", 1}}, {"gps", "clock"}, true},
};

TEST(OrOptions, HideAnEntryUnlessOneHolds) {
    for (const Or_case& expected : OR_CASES) {
        Leaf leaf("Gain");
        leaf.setProductOptions(expected.product);
        EXPECT_EQ(leaf.setOrOptions(expected.options), 0);
        EXPECT_EQ(leaf.isVisible(), expected.holds ? 1 : -1)
            << testing::PrintToString(expected.options) << " of "
            << testing::PrintToString(expected.product);
        EXPECT_EQ(leaf.Get_options(), expected.options);
    }
}

TEST(OrOptions, HideWhateverTheBindingSays) {
    Leaf leaf("Gain");
    auto* binding = new support::Fake_binding();
    binding->suggest_visibility(1);
    leaf.Set_binding_object(binding);
    leaf.setProductOptions({{"gps", 1}});
    leaf.setOrOptions({"a", "b"});
    EXPECT_EQ(leaf.isVisible(), -1);
    leaf.setOrOptions({});
    EXPECT_EQ(leaf.isVisible(), 1);
}

TEST(OrOptions, AreDecidedWhenTheyAreSet) {
    Leaf leaf("Gain");
    leaf.setOrOptions({"gps"});
    leaf.setProductOptions({{"gps", 1}});
    EXPECT_EQ(leaf.isVisible(), -1);
    leaf.setOrOptions(leaf.Get_options());
    EXPECT_EQ(leaf.isVisible(), 1);
}

TEST(OrOptions, AreHandedOutAsACopy) {
    Leaf leaf("Gain");
    leaf.setOrOptions({"gps"});
    leaf.Get_options().push_back("clock");
    EXPECT_EQ(leaf.Get_options(), std::vector<std::string>{"gps"});
}

// Answers with what a test says.
class Judging : public Leaf {
public:
    using Leaf::Leaf;
    is_static_value_s isOptionStatic(std::string option, bool n_intact) override {
        EXPECT_FALSE(n_intact);
        asked.push_back(option);
        return answer;
    }
    is_static_value_s answer = {-1, 0, 0};
    std::vector<std::string> asked;
};

TEST(OrOptions, HoldByTheirClassification) {
    const std::pair<is_static_value_s, bool> cases[] = {
        {{1, 1, 1}, true},   {{1, 1, 9}, true},  {{1, 0, 0}, false},  {{1, -1, 5}, true},
        {{-1, 1, 9}, true},  {{2, 1, 9}, true},  {{-1, 0, 0}, false}, {{0, 4, 4}, true},
        {{0, 4, 5}, false},  {{0, 4, -9}, true}, {{0, 0, 0}, false},  {{0, 0, -5}, false},
        {{0, -3, -4}, true},
    };
    for (const auto& [answer, holds] : cases) {
        Judging leaf("Gain");
        leaf.answer = answer;
        leaf.setOrOptions({"gps"});
        EXPECT_EQ(leaf.isVisible(), holds ? 1 : -1) << text_of(answer);
    }
}

TEST(OrOptions, TheFirstThatHoldsEndsTheSearch) {
    Judging leaf("Gain");
    leaf.answer = {1, 1, 1};
    leaf.setOrOptions({"a", "b"});
    EXPECT_EQ(leaf.asked, std::vector<std::string>{"a"});
    leaf.asked.clear();
    leaf.answer = {1, 0, 0};
    leaf.setOrOptions({"a", "b"});
    EXPECT_EQ(leaf.asked, (std::vector<std::string>{"a", "b"}));
}

struct Instance_case {
    Index_t index;
    unsigned int level;
    const char* option;
    bool holds;
};

// The product has four slots.
const Instance_case INSTANCE_CASES[] = {
    {index_of({3}), 0, "slotn", true},       {index_of({4}), 0, "slotn", true},
    {index_of({5}), 0, "slotn", false},      {index_of({5}), 1, "slot2", false},
    {index_of({3}), 0, "slot5", false},      {index_of({5, 9}), 0, "slotn", true},
    {index_of({5, 1}), 1, "slotn", false},   {index_of({4, 9}), 1, "slotn", true},
    {index_of({9, 5}), 2, "slotn", false},   {index_of({9, 4}), 2, "slotn", true},
    {index_of({9, 9}), 3, "slotn", true},    {index_of({}), 1, "slotn", true},
    {index_of({9, 9, 9}), 1, "slotn", true}, {index_of({5}), 0, "gps", true},
};

class Instance_node : public Node_entry {
public:
    explicit Instance_node(const Index_t* index)
        : Node_entry("Slot", "A slot", index, nullptr, VISIBLE_ALL, SHORTCUT_NONE, nullptr, nullptr,
                     nullptr) {}
    bool options_hold() const { return cached_option_vis == 1; }
};

TEST(OrOptions, ANodeStandsForAnInstanceThatTheProductMustHave) {
    for (const Instance_case& expected : INSTANCE_CASES) {
        Instance_node node(&expected.index);
        node.setProductOptions({{"slotn", 4}, {"gps", 1}});
        node.setNodeLevel(expected.level);
        node.setOrOptions({expected.option});
        EXPECT_EQ(node.options_hold(), expected.holds)
            << expected.option << " with " << expected.index.m_index_num << " levels "
            << expected.index.m_index[0] << "." << expected.index.m_index[1] << " at node level "
            << expected.level;
    }
}

TEST(OrOptions, ALeafStandsForNoInstance) {
    const Index_t index = index_of({5});
    support::Leaf_options options;
    options.index = &index;
    Leaf leaf("Gain", nullptr, options);
    leaf.setProductOptions({{"slotn", 4}});
    leaf.setOrOptions({"slotn"});
    EXPECT_EQ(leaf.isVisible(), 1);
}

TEST(OrOptions, ANodeWithoutAnIndexStandsForNoInstance) {
    class Unindexed : public Node_entry {
    public:
        Unindexed()
            : Node_entry("Slot", nullptr, nullptr, nullptr, VISIBLE_NONE, SHORTCUT_NONE, nullptr,
                         nullptr, nullptr) {}
        bool options_hold() const { return cached_option_vis == 1; }
    };
    Unindexed node;
    node.setProductOptions({{"slotn", 4}});
    node.setOrOptions({"slotn"});
    EXPECT_TRUE(node.options_hold());
}

TEST(OrOptionLines, TellEachOptionTwiceAndTheOneThatHolds) {
    Judging leaf("Gain");
    leaf.answer = {1, 1, 1};
    const std::string line = "\t[setOrOptions][product_options.cpp][#] Options for [Gain] = ";
    EXPECT_EQ(capture(0x1,
                      [&] {
                          leaf.setOrOptions({"a", "b"});
                      })
                  .out,
              line + "[a]\n" + line + "[b]\n" + line +
                  "[a]\n\t\t[setOrOptions][product_options.cpp][#] Options [a] is DEFINED.\n");
    leaf.answer = {1, 0, 0};
    EXPECT_EQ(capture(0x1,
                      [&] {
                          leaf.setOrOptions({"a", "b"});
                      })
                  .out,
              line + "[a]\n" + line + "[b]\n" + line + "[a]\n" + line + "[b]\n");
    EXPECT_EQ(capture(0x1, [&] { leaf.setOrOptions({}); }).out, "");
}

TEST(OrOptionLines, AreGeneralOnes) {
    Judging leaf("Gain");
    leaf.answer = {1, 1, 1};
    const auto action = [&] { leaf.setOrOptions({"a"}); };
    expect_line_gate("Options for [Gain] = [a]\n", 0x1, Gate::LEAF, action);
    expect_line_gate("Options [a] is DEFINED.\n", 0x1, Gate::LEAF, action);
}

}  // namespace
