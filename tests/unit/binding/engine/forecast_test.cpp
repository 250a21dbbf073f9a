// What rules would say and write by values that the device does not hold.
#include <frontpanel_binding/caching_device.h>
#include <frontpanel_binding/device_value.h>

#include "unit/binding/binding_fixture.h"

namespace binding_fixture {
namespace {

class Forecast : public Binding_fixture {
protected:
    void SetUp() override {
        for (unsigned int pid = 1; pid <= 5; ++pid) {
            device.add_integer(pid, 0, -1000, 1000, static_cast<int>(pid));
        }
    }
    static Proposed_values values(std::initializer_list<std::pair<uint32_t, int>> wanted) {
        Proposed_values all;
        for (const auto& [pid, value] : wanted) {
            all[{pid, 0}] = number(value);
        }
        return all;
    }
    Rule_verdict verdict(Data_entry& judged, const Proposed_values& proposed) {
        return registry->judge(judged, proposed).value();
    }
    int foreseen(const Proposed_values& proposed, uint32_t pid) {
        const Proposed_values all = registry->foresee(proposed);
        const auto found = all.find({pid, 0});
        return found != all.end() ? found->second.i : -1;
    }

    Number_entry entry{"Gain", 1, no_level, -1000, 1000};
    Number_entry other{"Other", 5, no_level, -1000, 1000};
    using Ranges = Rule_verdict::Ranges;
};

TEST_F(Forecast, JudgesByProposedValuesAndChangesNothing) {
    bind(entry, "visible if [2] > 5; range 0..[2], 50..60; access read-only if [2] == 7");
    refresh(entry);
    const Rule_verdict now = verdict(entry, {});
    EXPECT_EQ(now.is_visible, false);
    EXPECT_EQ(now.ranges, (Ranges{{0, 2}, {50, 60}}));
    EXPECT_EQ(now.access, std::nullopt);
    const Rule_verdict then = verdict(entry, values({{2, 7}}));
    EXPECT_EQ(then.is_visible, true);
    EXPECT_EQ(then.ranges, (Ranges{{0, 7}, {50, 60}}));
    EXPECT_EQ(then.access, Data_entry::READ_ONLY);
    EXPECT_EQ(then.failed_kinds, 0);
    EXPECT_LT(entry.Get_bind_vis(), 1);
    EXPECT_EQ(entry.Get_max(), 60);
    EXPECT_EQ(device.integer(2, 0), 2);
}

TEST_F(Forecast, VisibilityIsSaidAheadOfAnEntryThatWaitsToSettle) {
    Caching_device caching(device, registry);
    bind(entry, "visible if [2] > 5");
    EXPECT_EQ(registry->visibility_ahead(entry), std::nullopt);
    EXPECT_LT(entry.Get_bind_vis(), 1) << "its rules were evaluated, without a refresh";
    EXPECT_EQ(registry->visibility_ahead(other), std::nullopt);
    device.set_integer(2, 0, 6);
    registry->poll();
    EXPECT_EQ(registry->visibility_ahead(entry), true);
    EXPECT_LT(entry.Get_bind_vis(), 1);
    registry->settle(&caching);
    EXPECT_EQ(registry->visibility_ahead(entry), std::nullopt);
    EXPECT_EQ(entry.Get_bind_vis(), 1);
}

TEST_F(Forecast, AKindWithoutARuleThatHoldsSaysNothing) {
    bind(entry, "range 0..5 if [2] == 9");
    EXPECT_EQ(verdict(entry, {}).ranges, std::nullopt);
    EXPECT_EQ(verdict(entry, {}).is_visible, std::nullopt);
    EXPECT_EQ(registry->judge(other, {}), std::nullopt);
}

TEST_F(Forecast, AFaultIsMarkedAndNotReported) {
    int faults = 0;
    registry->set_fault_listener([&faults](const Rule_fault&) { ++faults; });
    bind(entry, "range 0..10 / [2]; visible if [3] == 3");
    const Rule_verdict then = verdict(entry, values({{2, 0}}));
    EXPECT_EQ(then.failed_kinds, SUGGESTION_RANGE);
    EXPECT_EQ(then.ranges, std::nullopt);
    EXPECT_EQ(then.is_visible, true);
    EXPECT_EQ(faults, 0);
    EXPECT_TRUE(registry->faults().empty());
}

TEST_F(Forecast, OnlyAWarningSeesTheProposedValueOfItsOwnEntry) {
    bind(entry, "warn \"{value} was {[1]} by {[2]}\"; range 0..value; visible if [1] == 1");
    const Rule_verdict then = verdict(entry, values({{1, 40}, {2, 9}}));
    EXPECT_EQ(then.warnings, (std::vector<std::string>{"40 was 1 by 9"}));
    EXPECT_EQ(then.ranges, (Ranges{{0, 1}}));
    EXPECT_EQ(then.is_visible, true);
}

TEST_F(Forecast, KeysAreThoseOfTheRulesThatHold) {
    Option_entry options("Source", 4, no_level);
    bind(options, "keys 0, 2..3 if [2] == 8");
    EXPECT_EQ(verdict(options, {}).keys, std::nullopt);
    EXPECT_EQ(verdict(options, values({{2, 8}})).keys, (Ranges{{0, 0}, {2, 3}}));
}

TEST_F(Forecast, WritesOfRulesFollowEachOther) {
    bind(entry, "set [3] = 30 if [2] == 9");
    bind(other, "set [4] = [3] + 1");
    registry->settle(&device);
    EXPECT_EQ(device.integer(4, 0), 4);
    EXPECT_EQ(foreseen(values({{2, 9}}), 3), 30);
    EXPECT_EQ(foreseen(values({{2, 9}}), 4), 31);
    EXPECT_EQ(foreseen(values({{2, 9}, {3, 5}}), 3), 5) << "what is wanted stays";
    EXPECT_EQ(foreseen(values({{2, 9}, {3, 5}}), 4), 6);
    EXPECT_EQ(foreseen(values({{2, 8}}), 3), -1);
    EXPECT_EQ(device.integer(3, 0), 3);
}

TEST_F(Forecast, ARuleThatHasWrittenDoesNotWriteAgain) {
    bind(entry, "set [3] = 30 if [2] == 2");
    registry->settle(&device);
    device.set_integer(3, 0, 7);
    EXPECT_EQ(foreseen(values({{5, 1}}), 3), -1);
}

TEST_F(Forecast, ACircleEnds) {
    bind(entry, "set [3] = [4] + 1");
    bind(other, "set [4] = [3] + 1");
    EXPECT_GT(registry->foresee(values({{3, 1}})).size(), 0U);
    EXPECT_GT(registry->foresee(values({{2, 1}})).size(), 1U);
}

}  // namespace
}  // namespace binding_fixture
