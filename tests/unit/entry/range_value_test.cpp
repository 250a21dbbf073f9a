#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "range_fixture.h"
#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/leaf.h"
#include "support/line_gates.h"

using support::capture;
using support::Fake_binding;
using support::Fake_device;

namespace {

template <class Action>
void expect_general_leaf_line(const char* line, Action&& action) {
    support::expect_line_gate(line, 0x1, support::Gate::LEAF, action);
}

TEST(Range_construction, TakesItsArguments) {
    Open_range entry({-5, 5, 3, "%d", "v", true, Data_entry::READ_ONLY, "Gain", 77});
    EXPECT_EQ(entry.Get_entry_type(), Data_entry::RANGE_LEAF);
    EXPECT_EQ(entry.Get_return_type_int_or_string(), INTEGER);
    EXPECT_EQ(entry.bindingReturnType(), INTEGER);
    EXPECT_EQ(entry.Get_pid(), 77U);
    EXPECT_EQ(entry.Get_min(), -5);
    EXPECT_EQ(entry.Get_max(), 5);
    EXPECT_EQ(entry.m_min_from_constructor, -5);
    EXPECT_EQ(entry.m_max_from_constructor, 5);
    EXPECT_EQ(entry.value(), 3);
    EXPECT_EQ(entry.Get_final_value(), 3);
    EXPECT_EQ(entry.Get_access_type(), Data_entry::READ_ONLY);
    EXPECT_EQ(entry.Get_orig_access_type(), Data_entry::READ_ONLY);
    EXPECT_TRUE(entry.min_max_mutex.IsInitialized());
}

TEST(Range_construction, StartsWithoutRanges) {
    Open_range entry;
    EXPECT_TRUE(entry.valid_ranges_and_values.empty());
    EXPECT_TRUE(entry.valid_ranges_and_values_ANDED.empty());
    EXPECT_FALSE(entry.optionMinAndMaxProcessed);
    EXPECT_EQ(text_of({entry.bindRange, entry.optionRangeOutcome}), "[0, 0) [0, 0)");
}

TEST(Range_construction, AttachesToItsParent) {
    const Index_t index = support::index_of({1});
    Node_entry parent("Audio", "Audio settings", &index, nullptr, 1, -1, nullptr, nullptr, nullptr);
    char none[] = "";
    Range_entry entry("Gain", "", 1, &index, 0, 1, 0, none, none, &parent, Data_entry::READ_WRITE,
                      1, true, 7, nullptr, nullptr, nullptr);
    EXPECT_EQ(parent.Get_child(), &entry);
    EXPECT_EQ(entry.Get_shortcut(), 7);
}

TEST(Range_construction_death, RefusesADefaultOutsideTheBounds) {
    EXPECT_DEATH(Open_range({0, 10, 11}), "Assertion `default_value<=max' failed");
    EXPECT_DEATH(Open_range({0, 10, -1}), "Assertion `min<=default_value' failed");
}

TEST(Range_construction_death, RefusesMissingFormats) {
    char none[] = "";
    const auto construct = [](char* format, char* value_format) {
        Range_entry("Gain", "", 1, support::any_index(), 0, 1, 0, format, value_format, nullptr,
                    Data_entry::READ_WRITE, 1, true, -1, nullptr, nullptr, nullptr);
    };
    EXPECT_DEATH(construct(nullptr, none), "Assertion `fmt&&val_fmt' failed");
    EXPECT_DEATH(construct(none, nullptr), "Assertion `fmt&&val_fmt' failed");
}

TEST(Range_value, BothBoundsAreInRange) {
    Open_range entry({-3, 100, 10});
    int value = 0;
    for (const int allowed : {-3, -2, 0, 99, 100}) {
        entry.put(allowed);
        EXPECT_EQ(entry.Get_value(&value, 4), Data_entry::OK) << allowed;
        EXPECT_EQ(value, allowed);
    }
}

TEST(Range_value, AValueOutOfRangeIsReportedAndDelivered) {
    Open_range entry({-3, 100, 10});
    int value = 0;
    for (const int refused : {-4, 101, INT_MIN, INT_MAX}) {
        entry.put(refused);
        EXPECT_EQ(entry.Get_value(&value, 4), Data_entry::OUT_OF_RANGE) << refused;
        EXPECT_EQ(value, refused);
    }
}

TEST(Range_value, NoMoreThanTheBufferHoldsIsDelivered) {
    Open_range entry({0, INT_MAX, 0x01020304});
    unsigned char buffer[8];
    std::memset(buffer, 0xEE, sizeof buffer);
    EXPECT_EQ(entry.Get_value(buffer, 2), Data_entry::OK);
    const int value = 0x01020304;
    EXPECT_EQ(std::memcmp(buffer, &value, 2), 0);
    EXPECT_EQ(buffer[2], 0xEE);

    EXPECT_EQ(entry.Get_value(buffer, 8), Data_entry::OK);
    EXPECT_EQ(std::memcmp(buffer, &value, 4), 0);
    EXPECT_EQ(buffer[4], 0xEE);
}

TEST(Range_value, TheWholeValueIsCheckedWhateverTheBufferHolds) {
    Open_range entry({0, 10, 10});
    entry.put(0x10000);
    unsigned char low = 0xEE;
    EXPECT_EQ(entry.Get_value(&low, 1), Data_entry::OUT_OF_RANGE);
    EXPECT_EQ(low, 0);
}

TEST(Range_value_death, NeedsABuffer) {
    Open_range entry;
    int value = 0;
    EXPECT_DEATH(entry.Get_value(nullptr, 4), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(entry.Get_value(&value, 0), "Assertion `buffer&&length' failed");
}

TEST(Range_value, IsStoredWithoutARangeCheck) {
    Open_range entry({0, 10, 5});
    const int value = 5000;
    EXPECT_EQ(entry.Set_value(&value, sizeof value), Data_entry::OK);
    EXPECT_EQ(entry.value(), 5000);
}

TEST(Range_value, ALongBufferDoesNotRunOverTheModel) {
    Open_range entry({0, 10, 5});
    const int values[4] = {7, -1000, -1000, -1000};
    EXPECT_EQ(entry.Set_value(values, sizeof values), Data_entry::OK);
    EXPECT_EQ(entry.value(), 7);
    entry.Inc_value(1, 0);
    EXPECT_EQ(entry.value(), 8) << "the model's bounds are untouched";
}

TEST(Range_value, AShortBufferChangesItsBytesOnly) {
    Open_range entry({0, INT_MAX, 0x01020304});
    const unsigned char bytes[] = {0x11, 0x12, 0x13, 0x14};
    int expected = 0x01020304;
    std::memcpy(&expected, bytes, 2);
    EXPECT_EQ(entry.Set_value(bytes, 2), Data_entry::OK);
    EXPECT_EQ(entry.value(), expected);
}

TEST(Range_value, IsNotStoredWhenTheBindingWarns) {
    std::vector<std::string> log;
    Open_range entry({0, 10, 5});
    auto* binding = new Fake_binding(&log);
    entry.Set_binding_object(binding);
    log.clear();
    binding->offer(SUGGESTION_WARNING);
    binding->on_evaluate = [](Fake_binding& self, int) { self.suggest_warnings({"Too loud"}); };
    const int value = 9;
    EXPECT_EQ(entry.Set_value(&value, sizeof value), Data_entry::ERROR);
    EXPECT_EQ(entry.value(), 5);
    EXPECT_EQ(binding->shown_warnings, std::vector<std::string>{"Too loud"});
    EXPECT_EQ(log.front(), "setOverrideVarid pid=120 rt=1 value: rt=1 i=9 s=[]");
}

TEST(Range_value, IsStoredWhenTheBindingHasNothingToWarnOf) {
    Open_range entry({0, 10, 5});
    auto* binding = new Fake_binding;
    binding->offer(SUGGESTION_WARNING);
    entry.Set_binding_object(binding);
    const int value = 9;
    EXPECT_EQ(entry.Set_value(&value, sizeof value), Data_entry::OK);
    EXPECT_EQ(entry.value(), 9);
}

TEST(Range_value, StepsSaturateAtTheConstructorsBounds) {
    Open_range entry({0, 10, 9});
    EXPECT_EQ(entry.Inc_value(5, 0), Data_entry::OK);
    EXPECT_EQ(entry.value(), 10);
    EXPECT_EQ(entry.Inc_value(-20, 3), Data_entry::OK);
    EXPECT_EQ(entry.value(), 0);
}

TEST(Range_value, StepsAtTheLimitsOfIntDoNotWrap) {
    Open_range entry({INT_MIN, INT_MAX, 0});
    entry.Inc_value(INT_MAX, 0);
    entry.Inc_value(INT_MAX, 0);
    EXPECT_EQ(entry.value(), INT_MAX);
    entry.put(-2);
    entry.Inc_value(INT_MIN, 0);
    EXPECT_EQ(entry.value(), INT_MIN);
}

TEST(Range_value, StepsForwardPositionAndStepToTheModel) {
    Open_range entry;
    EXPECT_EQ(capture(0x1, [&] { entry.Inc_value(-7, 2); }).out,
              "Integer_model::Inc_value: value[-7], position[2]\n");
}

TEST(Range_value, IsActiveAsConstructed) {
    Range_arguments inactive;
    inactive.active = false;
    EXPECT_TRUE(Open_range().Is_active());
    EXPECT_FALSE(Open_range(inactive).Is_active());
}

TEST(Range_value, TheFinalValueIsKeptApart) {
    Open_range entry({0, 10, 5});
    entry.Set_final_value(5000);
    EXPECT_EQ(entry.Get_final_value(), 5000);
    EXPECT_EQ(entry.value(), 5);
}

TEST(Range_value, ReadingIsReported) {
    Open_range entry;
    int value = 0;
    EXPECT_EQ(capture(0x1, [&] { entry.Get_value(&value, 4); }).out,
              "Integer_model::Get: value[10], length[4] m_value[10]\n"
              "[Get_value][range_entry.cpp][#] Returning range value [10]. \n");
}

TEST(Range_value, StoringIsReportedByTheModel) {
    Open_range entry;
    const int value = 42;
    EXPECT_EQ(capture(0x24, [&] { entry.Set_value(&value, 4); }).out,
              "Integer_model::Set: value[42], length[4]\n");
}

// Every line of this class is a leaf line of the general category.
TEST(Range_lines, FollowTheGeneralMaskAndTheLeafGate) {
    Open_range entry;
    auto* binding = new Fake_binding;
    entry.Set_binding_object(binding);
    entry.setValidRangeAndValues({{0, 6, {}}, {20, 30, {}}});
    const auto read = [&] {
        int value = 0;
        entry.Get_value(&value, 4);
    };
    const auto suggest = [&] {
        binding->suggest_range({{0}, {0, 25}});
        entry.updateRange();
    };
    const auto step_into_a_gap = [&] { entry.increment(5, 8); };
    const auto step_into_a_range = [&] { entry.increment(5, 21); };
    const auto evaluate = [&] { entry.evaluateOptions(); };
    expect_general_leaf_line("Returning range value", read);
    expect_general_leaf_line("ranges before", evaluate);
    expect_general_leaf_line("Saving range.min", evaluate);
    expect_general_leaf_line("ranges after", evaluate);
    expect_general_leaf_line("must be of size two", suggest);
    expect_general_leaf_line("Adding a chopped/extended range", suggest);
    expect_general_leaf_line("final min[0]", suggest);
    expect_general_leaf_line("No bindings, so the total range", step_into_a_gap);
    expect_general_leaf_line("Range or Value", step_into_a_gap);
    expect_general_leaf_line("] < [0] ?", step_into_a_gap);
    expect_general_leaf_line("return closest_allowed_value", step_into_a_gap);
    expect_general_leaf_line("return range new_value", step_into_a_range);
}

TEST(Range_lines, OfOptionsFollowTheGeneralMaskAndTheLeafGate) {
    Open_range entry;
    entry.setProductOptions({{"gps", 0}, {"ptp", 1}, {"slotn", 2}});
    const auto evaluate = [&] { entry.setValidRangeAndValues({{0, 1, {"gps", "slot3", "ptp"}}}); };
    expect_general_leaf_line("its true value is zero", evaluate);
    expect_general_leaf_line("need another option", evaluate);
    expect_general_leaf_line("pushing back range", evaluate);
}

// The base judges no option so; a class derived from it may.
class Undecided_range : public Open_range {
public:
    is_static_value_s isOptionStatic(std::string, bool) override { return {-1, 3, 3}; }
};

TEST(Range_lines, OfAnUndecidedOptionFollowTheGeneralMaskAndTheLeafGate) {
    Undecided_range entry;
    expect_general_leaf_line("[gps], for range [0,0] will not be considered", [&] {
        entry.setValidRangeAndValues({{0, 1, {"gps"}}});
    });
}

TEST(Range_lines, OfACommitFollowTheGeneralMaskAndTheLeafGate) {
    Fake_device device;
    Open_range entry;
    auto* binding = new Fake_binding;
    entry.Set_binding_object(binding);
    support::Leaf dependant("Follower");
    binding->own_map[binding->self_control_info].binding_dependant_entries = {&dependant};
    const auto commit = [&] {
        device.expect_set_integer(120, 3, 10);
        entry.Commit(&device);
    };
    expect_general_leaf_line("About to see if I have any dependants", commit);
    expect_general_leaf_line("Bind expression of entry [Follower]", commit);
    support::expect_line_gate("here 14\n", 0, support::Gate::ALWAYS, commit);
    binding->map = nullptr;
    expect_general_leaf_line("Var index map is null", commit);
}

TEST(Range_lines, OfACorrectionFollowTheGeneralMaskAndTheLeafGate) {
    Fake_device device;
    Open_range entry;
    const auto correct = [&] {
        device.expect_get_integer(120, 3, 101);
        device.expect_set_integer(120, 3, 100);
        entry.Refresh(&device, false);
    };
    expect_general_leaf_line("is not in range [0,100]", correct);
    expect_general_leaf_line("Calling m_model commit", correct);
    expect_general_leaf_line("Binding is null", correct);
}

// The base's slots of these names stay the base's: a caller that holds a Data_entry gets its answers.
TEST(Range_slots, TheBasesDisplayIsTheName) {
    Open_range entry;
    Data_entry& base = entry;
    char line[17];
    EXPECT_EQ(base.Get_display_string(line, 16), Data_entry::OK);
    EXPECT_STREQ(line, "Gain");
}

TEST(Range_slots, TheBasesCommitDoesNothing) {
    Open_range entry;
    Data_entry& base = entry;
    EXPECT_EQ(capture(0x1, [&] { EXPECT_EQ(base.Commit(), Data_entry::OK); }).out, "");
}

TEST(Range_slots, TheBasesBoundsAreZero) {
    Open_range entry({5, 9, 7});
    const Data_entry& base = entry;
    EXPECT_EQ(base.Get_min(), 0);
    EXPECT_EQ(base.Get_max(), 0);
    EXPECT_EQ(entry.Get_min(), 5);
    EXPECT_EQ(entry.Get_max(), 9);
}

TEST(Range_slots, ValueOperationsAreReachedThroughTheBase) {
    Open_range entry({0, 10, 5});
    Data_entry& base = entry;
    int value = 6;
    EXPECT_EQ(base.Set_value(&value, 4), Data_entry::OK);
    EXPECT_EQ(base.Inc_value(1, 0), Data_entry::OK);
    EXPECT_EQ(base.Get_value(&value, 4), Data_entry::OK);
    EXPECT_EQ(value, 7);
    base.Set_final_value(8);
    EXPECT_EQ(base.Get_final_value(), 8);
    EXPECT_TRUE(base.Is_active());
    EXPECT_EQ(base.Get_entry_type(), Data_entry::RANGE_LEAF);
}

class Delegate : public Open_range {
public:
    using Open_range::Get_display_string;
    using Open_range::Open_range;

    int Get_display_string(char*, unsigned int length, bool use_override, int value) override {
        seen = std::to_string(length) + " " + std::to_string(use_override) + " " +
               std::to_string(value);
        return 42;
    }

    std::string seen;
};

TEST(Range_slots, TheShortDisplayCallsTheFullOneThroughItsSlot) {
    Delegate entry;
    char line[17];
    EXPECT_EQ(static_cast<Range_entry&>(entry).Get_display_string(line, 16, 7), 42);
    EXPECT_EQ(entry.seen, "16 1 7");
}

}  // namespace
