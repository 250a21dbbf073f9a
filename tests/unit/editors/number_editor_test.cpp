#include <frontpanel_binding/expression_binding.h>
#include <frontpanel_editors/number_editor.h>
#include <frontpanel_simulator/memory_device.h>
#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <vector>

#include "support/indexes.h"

using namespace frontpanel;

namespace {

using support::any_index;

struct Range {
    Range(int min, int max, int start, std::string format = "", std::string value_format = "v")
        : entry("Gain", "Gain", 100, any_index(), min, max, start, format.data(),
                value_format.data(), nullptr, Data_entry::READ_WRITE, Data_entry::VISIBLE_ALL, true,
                Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr) {}

    int value() {
        int value = 0;
        entry.Get_value(&value, sizeof value);
        return value;
    }

    Range_entry entry;
};

TEST(NumberEditor, StartsClosed) {
    Number_editor editor;
    EXPECT_EQ(editor.entry(), nullptr);
    EXPECT_EQ(editor.press(Editor_key::UP), Editor_result::DISCARDED);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::DISCARDED);
    EXPECT_EQ(editor.view(20).text, "");
    EXPECT_FALSE(editor.view(20).edit_led);
    editor.Coarser_step();
    editor.Finer_step();
    EXPECT_EQ(editor.step_size(), 1);
}

TEST(NumberEditor, OpensOnTheEntrysValue) {
    Range range(-10, 10, 4);
    Number_editor editor;
    editor.Prepare(&range.entry);
    EXPECT_EQ(editor.entry(), &range.entry);
    EXPECT_EQ(editor.proposed_value(), 4);
    EXPECT_EQ(editor.view(20).text, "4");
    EXPECT_EQ(editor.view(20).cursor, 0);
    EXPECT_EQ(editor.view(20).step, "");
    EXPECT_TRUE(editor.view(20).edit_led);
}

TEST(NumberEditor, StaysClosedForAnotherKindOfEntry) {
    Node_entry node("Node", "Node", any_index(), nullptr, 1, -1, nullptr, nullptr, nullptr);
    Range range(0, 9, 4);
    Number_editor editor;
    editor.Prepare(&range.entry);
    editor.Prepare(&node);
    EXPECT_EQ(editor.entry(), nullptr);
    editor.Prepare(nullptr);
    EXPECT_EQ(editor.entry(), nullptr);
}

TEST(NumberEditor, StepsStayWithinTheRange) {
    Range range(0, 9, 8);
    Number_editor editor;
    editor.Prepare(&range.entry);
    for (const int expected : {9, 9, 9}) {
        EXPECT_EQ(editor.press(Editor_key::UP), Editor_result::OPEN);
        EXPECT_EQ(editor.proposed_value(), expected);
    }
    for (int i = 0; i < 12; ++i) {
        editor.press(Editor_key::DOWN);
    }
    EXPECT_EQ(editor.proposed_value(), 0);
}

TEST(NumberEditor, StepSizesArePowersOfTenUpToTheRange) {
    Range range(0, 500, 5);
    Number_editor editor;
    editor.Prepare(&range.entry);
    for (const int expected : {10, 100, 100}) {
        editor.press(Editor_key::COARSER);
        EXPECT_EQ(editor.step_size(), expected);
    }
    editor.press(Editor_key::UP);
    EXPECT_EQ(editor.proposed_value(), 105);
    EXPECT_EQ(editor.view(20).step, "step 100");
    for (const int expected : {10, 1, 1}) {
        editor.press(Editor_key::FINER);
        EXPECT_EQ(editor.step_size(), expected);
    }
}

TEST(NumberEditor, EveryOpeningStartsWithTheFinestStep) {
    Range range(0, 500, 5);
    Number_editor editor;
    editor.Prepare(&range.entry);
    editor.press(Editor_key::COARSER);
    editor.Prepare(&range.entry);
    EXPECT_EQ(editor.step_size(), 1);
}

TEST(NumberEditor, StepsSaturateAtTheLimitsOfInt) {
    Range range(INT_MIN, INT_MAX, INT_MAX - 3);
    Number_editor editor;
    editor.Prepare(&range.entry);
    for (int i = 0; i < 12; ++i) {
        editor.press(Editor_key::COARSER);
    }
    EXPECT_EQ(editor.step_size(), 1000000000);
    editor.press(Editor_key::UP);
    EXPECT_EQ(editor.proposed_value(), INT_MAX);
    for (int i = 0; i < 6; ++i) {
        editor.press(Editor_key::DOWN);
    }
    EXPECT_EQ(editor.proposed_value(), INT_MIN);
}

TEST(NumberEditor, EscapeLeavesTheEntryAsItWas) {
    Range range(0, 9, 4);
    Number_editor editor;
    editor.Prepare(&range.entry);
    editor.press(Editor_key::UP);
    EXPECT_EQ(range.value(), 4);
    EXPECT_EQ(editor.press(Editor_key::ESCAPE), Editor_result::DISCARDED);
    EXPECT_EQ(range.value(), 4);
}

TEST(NumberEditor, ShowsTheProposedValueInTheEntrysFormat) {
    Range range(-600, 120, -35, "%.1f dB", "v/10");
    Number_editor editor;
    editor.Prepare(&range.entry);
    EXPECT_EQ(editor.view(20).text, "-3.5 dB");
    EXPECT_EQ(editor.view(20).cursor, 3);
    editor.press(Editor_key::COARSER);
    EXPECT_EQ(editor.view(20).cursor, 1);
    editor.press(Editor_key::DOWN);
    EXPECT_EQ(editor.view(20).text, "-4.5 dB");
    editor.press(Editor_key::COARSER);
    EXPECT_EQ(editor.view(20).cursor, 1);
}

TEST(NumberEditor, TheCursorIsOnTheNumberAmongOtherDigits) {
    struct Case {
        const char* format;
        const char* text;
        int cursor;
        int coarser;
    };
    for (const Case& expected :
         {Case{"CH1 %d", "CH1 42", 5, 4}, Case{"%d of 10", "42 of 10", 1, 0},
          Case{"2x%d m2", "2x42 m2", 3, 2}, Case{"in 5: %d", "in 5: 42", 7, 6},
          Case{"CH1-%d", "CH1-42", 5, 4}}) {
        SCOPED_TRACE(expected.format);
        Range range(0, 99, 42, expected.format);
        Number_editor editor;
        editor.Prepare(&range.entry);
        EXPECT_EQ(editor.view(20).text, expected.text);
        EXPECT_EQ(editor.view(20).cursor, expected.cursor);
        editor.press(Editor_key::COARSER);
        EXPECT_EQ(editor.view(20).cursor, expected.coarser);
        editor.press(Editor_key::FINER);
        for (const char digit : std::string("57")) {
            editor.type(digit);
        }
        editor.press(Editor_key::SELECT);
        EXPECT_EQ(range.value(), 57);
    }
}

TEST(NumberEditor, ShowsNoCursorInATextWithoutNumber) {
    Range range(0, 1, 0, "0:Off,1:On,%d");
    Number_editor editor;
    editor.Prepare(&range.entry);
    EXPECT_EQ(editor.view(20).text, "Off");
    EXPECT_EQ(editor.view(20).cursor, Editor_view::NO_CURSOR);
    editor.press(Editor_key::UP);
    EXPECT_EQ(editor.view(20).text, "On");
}

TEST(NumberEditor, RefusesToAcceptWhileNoValueIsAllowed) {
    Range range(0, 9, 4);
    range.entry.setValidRangeAndValues({});
    Number_editor editor;
    editor.Prepare(&range.entry);
    editor.press(Editor_key::UP);
    EXPECT_EQ(editor.proposed_value(), 4);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::REFUSED);
    EXPECT_EQ(range.value(), 4);
}

TEST(NumberEditor, IsDrivenThroughTheDispatcher) {
    Range range(0, 500, 4);
    Number_editor editor;
    Selection* const selection = &editor;
    void* specific = &range.entry;
    Data_entry::EntryTypeSpecificOperation(&range.entry, nullptr, selection, false,
                                           Data_entry::OPERATION_SET_ESCAPE_ENTRY |
                                               Data_entry::OPERATION_SET_SELECT_ENTRY |
                                               Data_entry::OPERATION_PREPARE,
                                           &specific);
    EXPECT_EQ(editor.entry(), &range.entry);
    EXPECT_EQ(editor.escape_entry(), &range.entry);
    EXPECT_EQ(editor.select_entry(), &range.entry);
    Data_entry::EntryTypeSpecificOperation(&range.entry, nullptr, selection, false,
                                           Data_entry::OPERATION_COARSER_STEP, nullptr);
    EXPECT_EQ(editor.step_size(), 10);
    Data_entry::EntryTypeSpecificOperation(&range.entry, nullptr, selection, false,
                                           Data_entry::OPERATION_FINER_STEP, nullptr);
    EXPECT_EQ(editor.step_size(), 1);
    specific = nullptr;
    Data_entry::EntryTypeSpecificOperation(&range.entry, nullptr, selection, false,
                                           Data_entry::OPERATION_ESCAPE, &specific);
    EXPECT_EQ(specific, &range.entry);
    Data_entry::EntryTypeSpecificOperation(&range.entry, nullptr, selection, false,
                                           Data_entry::OPERATION_EXIT_LEDS, nullptr);
    EXPECT_EQ(editor.entry(), nullptr);
}

TEST(NumberEditor, StepsAreLimitedByWhatABindingSuggests) {
    Memory_device device;
    device.add_integer(100, 3, 0, 100, 7);
    device.add_integer(101, 0, 0, 1, 1);
    const auto registry = std::make_shared<Binding_registry>(&device);
    auto binding = std::make_unique<Expression_binding>(registry);
    binding->addBindingList(registry->compile("range 5..8 if [101] == 1").list);
    binding->set_fallback_range(0, 100);
    Range range(0, 100, 7);
    range.entry.setValidRangeAndValues({{0, 101, {}}});
    range.entry.Set_binding_object(binding.release());
    range.entry.Refresh(&device, true);
    Number_editor editor;
    editor.Prepare(&range.entry);
    editor.press(Editor_key::UP);
    editor.press(Editor_key::UP);
    EXPECT_EQ(editor.proposed_value(), 8);
}

// 0 to 80 and 120 to 240.
struct Gapped_range : Range {
    explicit Gapped_range(int start) : Range(0, 240, start) {
        entry.setValidRangeAndValues({{0, 81, {}}, {120, 241, {}}});
    }
};

std::vector<int> turned(Number_editor& editor, Editor_key key, int times, int steps = 1) {
    std::vector<int> values;
    for (int i = 0; i < times; ++i) {
        EXPECT_EQ(editor.press(key, steps), Editor_result::OPEN);
        values.push_back(editor.proposed_value());
    }
    return values;
}

TEST(NumberEditor, StepsGoOnToTheNextRangeInTheirDirection) {
    Gapped_range range(79);
    Number_editor editor;
    editor.Prepare(&range.entry);
    EXPECT_EQ(turned(editor, Editor_key::UP, 3), (std::vector<int>{80, 120, 121}));
    EXPECT_EQ(turned(editor, Editor_key::DOWN, 3), (std::vector<int>{120, 80, 79}));
}

TEST(NumberEditor, LargeAndQuickStepsEndInNoGap) {
    Gapped_range range(75);
    Number_editor editor;
    editor.Prepare(&range.entry);
    editor.press(Editor_key::COARSER);
    EXPECT_EQ(turned(editor, Editor_key::UP, 3), (std::vector<int>{120, 130, 140}));
    EXPECT_EQ(turned(editor, Editor_key::DOWN, 4), (std::vector<int>{130, 120, 80, 70}));
    EXPECT_EQ(turned(editor, Editor_key::UP, 2, 4), (std::vector<int>{120, 160}));
    EXPECT_EQ(turned(editor, Editor_key::UP, 2, 1000), (std::vector<int>{240, 240}));
    EXPECT_EQ(turned(editor, Editor_key::DOWN, 2, 1000), (std::vector<int>{0, 0}));
}

TEST(NumberEditor, StepsGoRoundFromEndToEndOverAGap) {
    Gapped_range range(240);
    Number_editor editor;
    Editor_settings settings;
    settings.wrap = true;
    settings.step = 50;
    editor.configure(settings);
    editor.Prepare(&range.entry);
    EXPECT_EQ(turned(editor, Editor_key::UP, 4), (std::vector<int>{0, 50, 120, 170}));
    EXPECT_EQ(turned(editor, Editor_key::DOWN, 4), (std::vector<int>{120, 70, 20, 0}));
    EXPECT_EQ(turned(editor, Editor_key::DOWN, 1), (std::vector<int>{240}));
}

TEST(NumberEditor, AValueInAGapIsShownAsItIsAndStepsLeaveTheGap) {
    Gapped_range range(100);
    Number_editor editor;
    editor.Prepare(&range.entry);
    EXPECT_EQ(editor.proposed_value(), 100);
    EXPECT_EQ(editor.follow(), Editor_change::NONE);
    EXPECT_EQ(editor.view(10).text, "100");
    EXPECT_EQ(turned(editor, Editor_key::UP, 1), (std::vector<int>{120}));
    editor.propose_held();
    EXPECT_EQ(turned(editor, Editor_key::DOWN, 1), (std::vector<int>{80}));
}

TEST(NumberEditor, AValueInAGapIsNotStoredTheNearestIsProposed) {
    Gapped_range range(101);
    Number_editor editor;
    editor.Prepare(&range.entry);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::MOVED);
    EXPECT_EQ(editor.proposed_value(), 120);
    EXPECT_EQ(range.value(), 101);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
    EXPECT_EQ(range.value(), 120);
}

TEST(NumberEditor, AProposedValueThatFallsIntoANewGapMovesToTheNearest) {
    Gapped_range range(10);
    range.entry.setValidRangeAndValues({{0, 241, {}}});
    Number_editor editor;
    editor.Prepare(&range.entry);
    turned(editor, Editor_key::UP, 80);
    EXPECT_EQ(editor.proposed_value(), 90);
    range.entry.setValidRangeAndValues({{0, 81, {}}, {120, 241, {}}});
    EXPECT_EQ(editor.follow(), Editor_change::MOVED);
    EXPECT_EQ(editor.proposed_value(), 80);
}

TEST(NumberEditor, HasChangesOnceAnotherValueIsProposed) {
    Range range(0, 9, 4);
    Number_editor editor;
    EXPECT_FALSE(editor.has_changes());
    editor.Prepare(&range.entry);
    EXPECT_FALSE(editor.has_changes());
    editor.press(Editor_key::UP);
    EXPECT_TRUE(editor.has_changes());
    editor.press(Editor_key::DOWN);
    EXPECT_FALSE(editor.has_changes());
    Editor_settings preview;
    preview.preview = true;
    editor.configure(preview);
    editor.press(Editor_key::UP);
    EXPECT_TRUE(editor.has_changes());
}

}  // namespace
