// What the engines of a menu share.
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

TEST(Binding_registry_test, ATextUsesTheDeclaredParameters) {
    Binding_registry registry;
    registry.parameters().declare("gain", key_of(INTEGER, 100, index_of({2})));

    EXPECT_TRUE(registry.compile("visible if [gain] > value").ok());
    EXPECT_TRUE(registry.compile("visible if value == \"on\"", STRING).ok());
    EXPECT_EQ(registry.compile("visible if [level] > 3").error->text(),
              "line 1, column 12: unknown parameter \"[level]\"");
}

TEST(Binding_registry_test, AListDependsOnNoRegistry) {
    BindingListT list;
    {
        Binding_registry registry;
        list = registry.compile("visible if [100.2] == 1").list;
    }
    Expression_binding binding(std::make_shared<Binding_registry>());
    binding.addBindingList(list);

    EXPECT_EQ(binding.numBindingLists(), 1);
    EXPECT_EQ(binding.getVarIndexMapKeys(0).size(), 1u);
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
