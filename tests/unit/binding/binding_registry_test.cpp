// What the engines of a menu share.
#include <frontpanel_binding/binding_registry.h>

#include <frontpanel_binding/expression_binding.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/indexes.h"
#include "support/leaf.h"

using namespace frontpanel;

namespace {

using support::index_of;
using support::key_of;
using support::Leaf;
using testing::ElementsAre;

// ---- what the engines share

Expression_binding& bound(Expression_binding& engine, Binding_registry& registry,
                          const std::string& source) {
    engine.addBindingList(registry.compile(source).list);
    return engine;
}

TEST(Binding_registry_test, TakingOutADependantLeavesTheOthers) {
    const auto registry = std::make_shared<Binding_registry>();
    const var_index_s key = key_of(INTEGER, 100, index_of({2}));
    Leaf first("First");
    Leaf second("Second");
    Expression_binding one(registry);
    Expression_binding other(registry);
    bound(one, *registry, "visible if [100.2] == 1").setDataEntry(&first);
    bound(other, *registry, "visible if [100.2] == 2").setDataEntry(&second);
    EXPECT_THAT(registry->var_index_map()->at(key).binding_dependant_entries,
                ElementsAre(&first, &second));
    EXPECT_EQ(registry->var_index_map()->at(key).model_type, INTEGER);

    one.setDataEntry(nullptr);
    EXPECT_THAT(registry->var_index_map()->at(key).binding_dependant_entries, ElementsAre(&second));
    EXPECT_EQ(registry->var_index_map()->size(), 1u);
}

TEST(Binding_registry_test, ForgottenDependantsAreNeitherListedNorPolledFor) {
    const auto registry = std::make_shared<Binding_registry>();
    const var_index_s key = key_of(INTEGER, 100, index_of({2}));
    const var_index_s watched = key_of(INTEGER, 7, index_of({0}));
    Leaf leaf("First");
    {
        Expression_binding engine(registry);
        bound(engine, *registry, "visible if [100.2] == 1").setDataEntry(&leaf);
        registry->watch(watched);
        registry->forget_dependants();
        EXPECT_THAT(registry->var_index_map()->at(key).binding_dependant_entries, ElementsAre());
    }
    Expression_binding engine(registry);
    bound(engine, *registry, "visible if [100.2] == 1").setDataEntry(&leaf);
    EXPECT_THAT(registry->var_index_map()->at(key).binding_dependant_entries, ElementsAre(&leaf));
}

TEST(Binding_registry_test, AllNamesOfAVariableListTheSameDependants) {
    const auto registry = std::make_shared<Binding_registry>();
    Leaf leaf("Gain");
    Expression_binding engine(registry);
    bound(engine, *registry, "visible if [100] == 1 and [100.0] == 1").setDataEntry(&leaf);
    registry->watch(key_of(INTEGER, 100, index_of({0, 0})));

    ASSERT_EQ(registry->var_index_map()->size(), 3u);
    for (const auto& [key, record] : *registry->var_index_map()) {
        EXPECT_THAT(record.binding_dependant_entries, ElementsAre(&leaf));
    }
}

TEST(Binding_registry_test, ARecordKnowsTheEntryOfItsParameter) {
    const auto registry = std::make_shared<Binding_registry>();
    const Index_t index = index_of({2});
    const var_index_s key = key_of(INTEGER, 100, index);
    {
        Leaf leaf("Gain");
        Expression_binding engine(registry);
        engine.setControlInfo(100, &index, Data_entry::ENUM_LEAF);
        engine.setDataEntry(&leaf);
        EXPECT_EQ(registry->var_index_map()->at(key).Get_entry(), &leaf);
        EXPECT_EQ(registry->var_index_map()->at(key).entry_type, Data_entry::ENUM_LEAF);
        EXPECT_EQ(registry->var_index_map()->at(key).Get_entry_name(), "Gain");
    }
    EXPECT_EQ(registry->var_index_map()->at(key).Get_entry(), nullptr);
}

TEST(Binding_registry_test, AnEntryWithoutParameterIsInNoRecord) {
    const auto registry = std::make_shared<Binding_registry>();
    const Index_t none = index_of({});
    Node_entry node("Menu", "A menu", &none, nullptr, Data_entry::VISIBLE_ALL,
                    Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr);
    node.Set_binding_object(new Expression_binding(registry));

    EXPECT_TRUE(registry->var_index_map()->empty());
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
