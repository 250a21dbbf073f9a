#include "file/option_names.h"

#include <frontpanel_data/data_entry.h>

#include <gtest/gtest.h>

#include <map>
#include <vector>

namespace frontpanel {
namespace {

TEST(OptionNames, AnOptionWithTheLetterNIsPlain) {
    const is_static_value_s found = [] {
        Option_names names;
        names.declare("tone");
        Node_entry entry("", nullptr, nullptr, nullptr, Data_entry::VISIBLE_NONE,
                         Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr);
        entry.setProductOptions({{names.library_name("tone"), 1}});
        return entry.isOptionStatic(names.library_name("tone"), false);
    }();
    EXPECT_EQ(found.isStatic, 1);
    EXPECT_EQ(found.realValue, 1);
}

TEST(OptionNames, APatternStandsForNumbersOnly) {
    const std::map<std::string, unsigned int> product{
        {"slot{n}", 4}, {"zslot{n}", 9}, {"slot2b", 1}};
    Option_names names;
    std::map<std::string, unsigned int> values;
    for (const auto& [name, value] : product) {
        names.declare(name);
    }
    for (const auto& [name, value] : product) {
        values[names.library_name(name)] = value;
    }
    Node_entry entry("", nullptr, nullptr, nullptr, Data_entry::VISIBLE_NONE,
                     Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr);
    entry.setProductOptions(values);
    const auto judge = [&](const std::string& name) {
        const is_static_value_s found = entry.isOptionStatic(names.library_name(name), false);
        return std::vector<int>{found.isStatic, found.realValue, found.dynamicValue};
    };
    EXPECT_EQ(judge("slot3"), (std::vector<int>{0, 4, 3}));
    EXPECT_EQ(judge("slot5"), (std::vector<int>{0, 4, 5}));
    EXPECT_EQ(judge("slot{n}"), (std::vector<int>{0, 4, 4}));
    EXPECT_EQ(judge("zslot7"), (std::vector<int>{0, 9, 7}));
    EXPECT_EQ(judge("slot2b"), (std::vector<int>{1, 1, 1}));
    EXPECT_EQ(judge("myslot3"), (std::vector<int>{-1, 0, 0}));
    EXPECT_EQ(judge("slot"), (std::vector<int>{-1, 0, 0}));
    EXPECT_EQ(judge("slotcount"), (std::vector<int>{-1, 0, 0}));
    EXPECT_TRUE(names.knows("slot77"));
    EXPECT_FALSE(names.knows("slot"));
    EXPECT_FALSE(names.knows("myslot3"));
}

TEST(OptionNames, TheLibrarysNameLeadsBackToTheFiles) {
    Option_names names;
    names.declare("slot{n}");
    names.declare("tone");
    for (const char* const name : {"slot{n}", "slot12", "tone", "gain", "slot"}) {
        EXPECT_EQ(Option_names::file_name(names.library_name(name)), name);
    }
}

TEST(OptionNames, AHintExplainsNumberedOptions) {
    Option_names names;
    names.declare("slotn");
    names.declare("gps");
    EXPECT_EQ(names.hint("slot3"), "; numbered options are declared as \"slot{n}\"");
    EXPECT_EQ(names.hint("gsp"), "; did you mean \"gps\"?");
    EXPECT_EQ(names.hint("modem"), "");
}

}  // namespace
}  // namespace frontpanel
