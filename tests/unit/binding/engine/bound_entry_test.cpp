// Entries that are driven by the engine, refreshed as the panel refreshes them.
#include <frontpanel_binding/expression_binding.h>
#include <frontpanel_data/data_entry.h>
#include <frontpanel_simulator/memory_device.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/capture.h"
#include "support/indexes.h"
#include "support/leaf.h"
#include "unit/binding/binding_fixture.h"

using namespace frontpanel;

namespace {

using binding_fixture::Number_entry;
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
    bind(leaf, "visible if [100.2] == 1");

    EXPECT_EQ(leaf.isVisible(true, &device), 1);
    device.set_integer(MODE, 2, 0);
    EXPECT_EQ(leaf.isVisible(true, &device), -1);
    device.set_integer(MODE, 2, 1);
    EXPECT_EQ(leaf.isVisible(true, &device), 1);
}

TEST_F(Bound_entry_test, AnUnreadableParameterLeavesTheEntryAsItWas) {
    Leaf leaf("Gain");
    leaf.refreshes_base = true;
    bind(leaf, "visible if [100.2] == 0");
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
    bind(leaf, "visible if [999] == 0");

    EXPECT_EQ(leaf.isVisible(true, &device), 1);
}

TEST_F(Bound_entry_test, ARefreshPrintsTheErrorsAndForgetsThem) {
    Leaf leaf("Gain");
    leaf.refreshes_base = true;
    Expression_binding* const engine = bind(leaf, "visible if [999] == 0");

    const std::string printed = capture(0x20, [&] { refresh(leaf); }).out;

    EXPECT_THAT(printed,
                testing::HasSubstr(
                    "Binding error in [Gain]: line 1, visible if [999] == 0: cannot read [999]: "
                    "device result 1\n"));
    EXPECT_TRUE(engine->errors().empty());
}

TEST_F(Bound_entry_test, TheEntryAnswersWithTheEnginesParameters) {
    Leaf leaf("Gain");
    bind(leaf, "visible if [100.2] == 0");

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
    const Expression_binding* const engine = bind(leaf, "visible if [100.2] == 0");

    EXPECT_EQ(engine->self_control_info.var, 120u);
    EXPECT_EQ(engine->self_control_info.rt, INTEGER);
    EXPECT_EQ(engine->self_control_info.index, index_of({3}));
}

TEST_F(Bound_entry_test, ATriedValueRaisesNoWarningWithoutWarningRules) {
    Leaf leaf("Gain");
    Expression_binding* const engine = bind(leaf, "visible if [120.3] == 7");
    const int value = 7;

    EXPECT_EQ(leaf.Data_entry::Set_value(&value, sizeof value), 0);
    EXPECT_FALSE(engine->suggestionUpdated(SUGGESTION_VISIBILITY));
}

// ---- range entries: a commit reaches the device, and what depends on it follows

class Bound_range_test : public Bound_entry_test {
protected:
    Bound_range_test() {
        bind(mode, "visible if [100.2] >= 0");
        bind(gain, "range 10..40 if [100.2] == 1; visible if [100.2] != 9")
            ->set_fallback_range(0, 100);
        refresh(mode);
        refresh(gain);
    }

    void commit(Range_entry& entry, int value) {
        entry.Set_value(&value, sizeof value);
        capture(0, [&] { EXPECT_EQ(entry.Commit(&device), Data_entry::OK); });
    }

    const Index_t mode_index = index_of({2});
    const Index_t gain_index = index_of({3});
    Number_entry mode{"Mode", MODE, mode_index, 0, 10};
    Number_entry gain{"Gain", 120, gain_index, 0, 100};
};

TEST_F(Bound_range_test, TheFirstRefreshNarrowsTheRangeAndCorrectsTheDevice) {
    EXPECT_EQ(gain.Get_min(), 10);
    EXPECT_EQ(gain.Get_max(), 40);
    EXPECT_EQ(gain.value(), 40);
    EXPECT_EQ(device.integer(120, 3), 40);
}

TEST_F(Bound_range_test, ACommitWidensAndNarrowsTheDependantsRange) {
    commit(mode, 2);
    EXPECT_EQ(gain.Get_min(), 0);
    EXPECT_EQ(gain.Get_max(), 100);
    commit(gain, 77);
    EXPECT_EQ(device.integer(120, 3), 77);

    commit(mode, 1);
    EXPECT_EQ(gain.Get_min(), 10);
    EXPECT_EQ(gain.Get_max(), 40);
    EXPECT_EQ(device.integer(120, 3), 40);
}

TEST_F(Bound_range_test, WithoutAFallbackRangeTheEntrysOwnRangeComesBack) {
    Number_entry level("Level", 120, gain_index, -5, 90);
    bind(level, "range 10..40 if [100.2] == 1");
    refresh(level);
    EXPECT_EQ(level.Get_max(), 40);

    device.set_integer(MODE, 2, 2);
    refresh(level);
    EXPECT_EQ(level.Get_min(), -5);
    EXPECT_EQ(level.Get_max(), 90);
}

TEST_F(Bound_range_test, AFallbackRangeStandsForTheEntrysOwnWheneverItIsTold) {
    device.set_integer(MODE, 2, 2);
    Number_entry level("Level", 120, gain_index, 0, 100);
    Expression_binding* const engine = bind(level, "range 10..40 if [100.2] == 1");
    engine->set_fallback_range(0, 50);
    refresh(level);
    EXPECT_EQ(level.Get_max(), 50);
}

TEST_F(Bound_range_test, AnEngineForgetsTheRangeOfAFormerEntry) {
    device.set_integer(MODE, 2, 2);
    Expression_binding engine(registry);
    engine.addBindingList(registry->compile("range 10..40 if [100.2] == 1").list);
    engine.setDataEntry(&gain);
    engine.setDataEntry(nullptr);
    int flags = Binding::EXECUTE_FLAG;
    EXPECT_EQ(engine.evaluateAllBindingExpressions(&flags), -1);
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_RANGE));
}

TEST_F(Bound_range_test, ACommitHidesAndShowsItsDependant) {
    commit(mode, 9);
    EXPECT_EQ(gain.isVisible(true, &device), -1);
    commit(mode, 8);
    EXPECT_EQ(gain.isVisible(true, &device), 1);
}

TEST_F(Bound_range_test, AnUnreadableParameterKeepsTheNarrowedRange) {
    device.set_integer(MODE, 2, 2);
    device.set_fault([](const Memory_device::Operation& asked) {
        return asked.kind == Memory_device::Operation_kind::READ && asked.pid == MODE ? 42 : 0;
    });
    refresh(gain);
    EXPECT_EQ(gain.Get_max(), 40);

    device.set_fault(nullptr);
    refresh(gain);
    EXPECT_EQ(gain.Get_max(), 100);
}

TEST_F(Bound_range_test, AnEntryThatIsGoneIsNotRefreshedByACommit) {
    {
        Number_entry passing("Passing", 120, gain_index, 0, 100);
        bind(passing, "visible if [100.2] == 3");
    }
    commit(mode, 3);

    EXPECT_EQ(device.integer(MODE, 2), 3);
}

TEST_F(Bound_range_test, EntriesThatDependOnEachOtherComeToRest) {
    Number_entry left("Left", 121, gain_index, 0, 10);
    Number_entry right("Right", 122, gain_index, 0, 10);
    device.add_integer(121, 3, 0, 10, 8);
    device.add_integer(122, 3, 0, 10, 8);
    bind(left, "range 0..5 if [122.3] < 6")->set_fallback_range(0, 10);
    bind(right, "range 0..5 if [121.3] < 6")->set_fallback_range(0, 10);
    refresh(left);
    refresh(right);
    ASSERT_EQ(right.value(), 8);

    commit(left, 3);

    EXPECT_EQ(device.integer(121, 3), 3);
    EXPECT_EQ(device.integer(122, 3), 5);
    commit(left, 9);
    EXPECT_EQ(device.integer(121, 3), 9);
    EXPECT_EQ(right.Get_max(), 10);
}

TEST_F(Bound_range_test, ATextCommitReachesTheEntriesThatCompareTheText) {
    device.add_text(200, 0, 16, "Studio");
    const Index_t no_level = index_of({});
    String_entry title("Title", "A text", 200, &no_level, 16, nullptr, Data_entry::READ_WRITE,
                       Data_entry::VISIBLE_ALL, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr,
                       nullptr);
    bind(title, "visible if [100.2] >= 0");
    Number_entry level("Level", 120, gain_index, 0, 100);
    bind(level, "visible if [200@s] == \"Hall\"");
    EXPECT_EQ(level.isVisible(true, &device), -1);

    title.Set_value("Hall", 4);
    capture(0, [&] { EXPECT_EQ(title.Commit(&device), Data_entry::OK); });

    EXPECT_EQ(device.text(200, 0), "Hall");
    EXPECT_EQ(level.Get_bind_vis(), VIS_TRUE);
}

}  // namespace
