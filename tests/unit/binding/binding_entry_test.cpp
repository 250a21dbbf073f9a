// Entries that are driven by the engine, refreshed as the panel refreshes them.
#include <frontpanel_binding/expression_binding.h>
#include <frontpanel_device/memory_device.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/capture.h"
#include "support/indexes.h"
#include "support/leaf.h"

namespace {

using support::capture;
using support::index_of;
using support::Leaf;
using testing::ElementsAre;

constexpr unsigned int MODE = 100;

class Bound_entry_test : public testing::Test {
protected:
    Bound_entry_test() {
        device.add_integer(MODE, 2, 0, 10, 1);
        device.add_integer(120, 3, 0, 100, 50);
    }

    // The entry owns the engine.
    Expression_binding* bind(Data_entry& entry, const std::string& source) {
        const Compile_result compiled = registry->compile(source);
        EXPECT_TRUE(compiled.ok());
        auto* const engine = new Expression_binding(registry);
        engine->addBindingList(compiled.list);
        entry.Set_binding_object(engine);
        return engine;
    }
    int refresh(Data_entry& entry) {
        return Data_entry::EntryTypeSpecificOperation(&entry, &device, nullptr, true,
                                                      Data_entry::OPERATION_REFRESH, nullptr);
    }

    Memory_device device;
    std::shared_ptr<Binding_registry> registry = std::make_shared<Binding_registry>(&device);
};

TEST_F(Bound_entry_test, AnEntryHidesAndAppearsWithTheDevice) {
    Leaf leaf("Gain");
    leaf.refreshes_base = true;
    bind(leaf, "visible if 100.2 == 1");

    EXPECT_EQ(leaf.isVisible(true, &device), 1);
    device.set_integer(MODE, 2, 0);
    EXPECT_EQ(leaf.isVisible(true, &device), -1);
    device.set_integer(MODE, 2, 1);
    EXPECT_EQ(leaf.isVisible(true, &device), 1);
}

TEST_F(Bound_entry_test, AnUnreadableParameterLeavesTheEntryAsItWas) {
    Leaf leaf("Gain");
    leaf.refreshes_base = true;
    bind(leaf, "visible if 100.2 == 0");
    EXPECT_EQ(leaf.isVisible(true, &device), -1);

    device.set_integer(MODE, 2, 0);
    device.set_fault([](const Memory_device::Operation&) { return 42; });
    EXPECT_EQ(leaf.isVisible(true, &device), -1);
    device.set_fault(nullptr);
    EXPECT_EQ(leaf.isVisible(true, &device), 1);
}

TEST_F(Bound_entry_test, AnEntryThatWasNeverReadIsVisible) {
    Leaf leaf("Gain");
    leaf.refreshes_base = true;
    bind(leaf, "visible if 999 == 0");

    EXPECT_EQ(leaf.isVisible(true, &device), 1);
}

TEST_F(Bound_entry_test, ARefreshPrintsTheErrorsAndForgetsThem) {
    Leaf leaf("Gain");
    leaf.refreshes_base = true;
    Expression_binding* const engine = bind(leaf, "visible if 999 == 0");

    const std::string printed = capture(0x20, [&] { refresh(leaf); }).out;

    EXPECT_THAT(printed,
                testing::HasSubstr("Binding error: cannot read parameter 999: device result 1\n"));
    EXPECT_TRUE(engine->errors().empty());
}

TEST_F(Bound_entry_test, TheEntryAnswersWithTheEnginesParameters) {
    Leaf leaf("Gain");
    bind(leaf, "visible if 100.2 == 0");

    ASSERT_EQ(leaf.Get_var_index_map(), registry->var_index_map());
    const std::vector<var_index_s> keys = leaf.Get_var_index_map_keys(0);
    ASSERT_EQ(keys.size(), 1u);
    EXPECT_EQ(keys[0].var, MODE);
    EXPECT_EQ(keys[0].index, index_of({2}));
    EXPECT_THAT(registry->var_index_map()->at(keys[0]).binding_dependant_entries,
                ElementsAre(&leaf));
}

TEST_F(Bound_entry_test, AnAttachedEngineKnowsItsEntrysParameter) {
    Leaf leaf("Gain");
    const Expression_binding* const engine = bind(leaf, "visible if 100.2 == 0");

    EXPECT_EQ(engine->self_control_info.var, 120u);
    EXPECT_EQ(engine->self_control_info.rt, INTEGER);
    EXPECT_EQ(engine->self_control_info.index, index_of({3}));
}

TEST_F(Bound_entry_test, ATriedValueRaisesNoWarningWithoutWarningRules) {
    Leaf leaf("Gain");
    Expression_binding* const engine = bind(leaf, "visible if 120.3 == 7");
    const int value = 7;

    EXPECT_EQ(leaf.Data_entry::Set_value(&value, sizeof value), 0);
    EXPECT_FALSE(engine->suggestionUpdated(SUGGESTION_VISIBILITY));
}

}  // namespace
