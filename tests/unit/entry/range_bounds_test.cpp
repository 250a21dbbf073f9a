#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "range_fixture.h"
#include "support/capture.h"
#include "support/fake_binding.h"

using support::capture;
using support::Fake_binding;

namespace {

using Suggestion = std::vector<std::vector<int>>;

range_s range_of(int min_inclusive, int max_exclusive, std::vector<std::string> options = {}) {
    return {min_inclusive, max_exclusive, std::move(options)};
}

// A range entry with a binding that the test scripts.
struct Bound_range {
    Bound_range() { entry.Set_binding_object(binding); }

    Open_range entry;
    Fake_binding* binding = new Fake_binding;  // the entry owns it
};

std::string bounds_of(Open_range& entry) {
    return "[" + std::to_string(entry.Get_min()) + ", " + std::to_string(entry.Get_max()) + "]";
}

constexpr char NO_VALUE[] = "[2147483647, -2147483648]";

// --- Options

struct Option_case {
    const char* name;
    std::map<std::string, unsigned int> product;
    std::vector<std::string> options;
    bool valid;
};

TEST(Range_options, OneOptionThatHoldsIsEnough) {
    const std::vector<Option_case> cases = {
        {"no options", {{"gps", 0}}, {}, true},
        {"static", {{"gps", 1}}, {"gps"}, true},
        {"true value zero", {{"gps", 0}}, {"gps"}, false},
        {"second of two", {{"gps", 0}, {"ptp", 2}}, {"gps", "ptp"}, true},
        {"none of two", {{"gps", 0}, {"ptp", 0}}, {"gps", "ptp"}, false},
        {"not a product option", {{"gps", 1}}, {"ptp"}, false},
        {"no product options", {}, {"gps"}, false},
        {"an instance that exists", {{"slotn", 4}}, {"slot3"}, true},
        {"the last instance", {{"slotn", 4}}, {"slot4"}, true},
        {"an instance beyond the last", {{"slotn", 4}}, {"slot5"}, false},
        {"a later instance that exists", {{"slotn", 4}}, {"slot5", "slot2"}, true},
        {"a static option after a missing instance",
         {{"gps", 1}, {"slotn", 4}},
         {"slot5", "gps"},
         true},
        {"a pattern itself", {{"slotn", 4}}, {"slotn"}, true},
    };
    for (const Option_case& tried : cases) {
        SCOPED_TRACE(tried.name);
        Open_range entry;
        entry.setProductOptions(tried.product);
        EXPECT_EQ(entry.setValidRangeAndValues({range_of(2, 6, tried.options)}), 0);
        EXPECT_EQ(entry.valid_ranges_and_values.size(), tried.valid ? 1U : 0U);
        EXPECT_EQ(entry.valid_ranges_and_values_ANDED.size(), tried.valid ? 1U : 0U);
        EXPECT_EQ(bounds_of(entry), tried.valid ? "[2, 5]" : NO_VALUE);
    }
}

class Judged_range : public Open_range {
public:
    is_static_value_s isOptionStatic(std::string option, bool n_intact) override {
        EXPECT_FALSE(n_intact);
        asked.push_back(option);
        return verdicts.at(option);
    }

    std::map<std::string, is_static_value_s> verdicts;
    std::vector<std::string> asked;
};

TEST(Range_options, OptionsAreAskedInOrderUntilOneHolds) {
    Judged_range entry;
    entry.verdicts = {{"zero", {1, 0, 0}},    {"undecided", {-1, 3, 3}}, {"beyond", {0, 3, 4}},
                      {"unknown", {2, 3, 3}}, {"holds", {1, 3, 3}},      {"after", {1, 3, 3}}};
    entry.setValidRangeAndValues(
        {range_of(1, 2, {"zero", "undecided", "beyond", "unknown", "holds", "after"})});
    EXPECT_EQ(entry.asked,
              (std::vector<std::string>{"zero", "undecided", "beyond", "unknown", "holds"}));
    EXPECT_EQ(text_of(entry.valid_ranges_and_values),
              "[1, 2) zero undecided beyond unknown holds after");
}

TEST(Range_options, NoneOfTheFailingVerdictsKeepsARange) {
    for (const is_static_value_s verdict :
         {is_static_value_s{1, 0, 0}, is_static_value_s{0, 0, 0}, is_static_value_s{-1, 3, 3},
          is_static_value_s{0, 3, 4}, is_static_value_s{2, 3, 3}}) {
        Judged_range entry;
        entry.verdicts = {{"option", verdict}};
        entry.setValidRangeAndValues({range_of(1, 2, {"option"})});
        EXPECT_TRUE(entry.valid_ranges_and_values.empty()) << verdict.isStatic;
    }
}

TEST(Range_options, TheBoundsSpanTheRangesThatAreLeft) {
    Open_range entry;
    entry.setProductOptions({{"gps", 1}, {"ptp", 0}});
    entry.setValidRangeAndValues({range_of(20, 30), range_of(-50, 0, {"ptp"}),
                                  range_of(0, 10, {"gps"}), range_of(40, 50, {"ptp"})});
    EXPECT_EQ(text_of(entry.valid_ranges_and_values), "[20, 30) [0, 10) gps");
    EXPECT_EQ(text_of(entry.valid_ranges_and_values_ANDED), "[20, 30) [0, 10) gps");
    EXPECT_EQ(bounds_of(entry), "[0, 29]");
    EXPECT_EQ(entry.m_min_from_constructor, 0);
    EXPECT_EQ(entry.m_max_from_constructor, 100);
}

TEST(Range_options, WithoutARangeNoValueIsAllowed) {
    Open_range entry;
    EXPECT_EQ(entry.setValidRangeAndValues({}), 0);
    EXPECT_EQ(bounds_of(entry), NO_VALUE);
}

TEST(Range_options, ADroppedRangeDoesNotComeBack) {
    Open_range entry;
    entry.setProductOptions({{"gps", 0}});
    entry.setValidRangeAndValues({range_of(0, 10), range_of(20, 30, {"gps"})});
    entry.setProductOptions({{"gps", 1}});
    EXPECT_EQ(entry.evaluateOptions(), 0);
    EXPECT_EQ(text_of(entry.valid_ranges_and_values), "[0, 10)");
}

TEST(Range_options, EvaluatingAgainUndoesTheBindingsCut) {
    Bound_range bound;
    bound.entry.setValidRangeAndValues({range_of(0, 10)});
    bound.binding->suggest_range({{3, 5}});
    bound.entry.updateRange();
    EXPECT_EQ(bounds_of(bound.entry), "[3, 5]");
    bound.entry.evaluateOptions();
    EXPECT_EQ(bounds_of(bound.entry), "[0, 9]");
    EXPECT_EQ(text_of(bound.entry.valid_ranges_and_values_ANDED), "[0, 10)");
}

TEST(Range_options, InstallingRangesAppliesAWaitingSuggestion) {
    Bound_range bound;
    bound.binding->suggest_range({{5, 25}});
    EXPECT_EQ(bound.entry.setValidRangeAndValues({range_of(0, 10), range_of(20, 30)}), 0);
    EXPECT_EQ(text_of(bound.entry.valid_ranges_and_values), "[0, 10) [20, 30)");
    EXPECT_EQ(text_of(bound.entry.valid_ranges_and_values_ANDED), "[5, 10) [20, 26)");
    EXPECT_EQ(bounds_of(bound.entry), "[5, 25]");
}

class Counting_range : public Open_range {
public:
    int evaluateOptions() override {
        calls += "evaluateOptions ";
        return 5;
    }
    int updateRange() override {
        calls += "updateRange ";
        return 6;
    }
    std::string calls;
};

TEST(Range_options, InstallingRangesGoesThroughTheSlots) {
    Counting_range entry;
    EXPECT_EQ(entry.setValidRangeAndValues({range_of(1, 2)}), 6);
    EXPECT_EQ(entry.calls, "evaluateOptions updateRange ");
    EXPECT_EQ(text_of(entry.valid_ranges_and_values), "[1, 2)");
    EXPECT_EQ(text_of(entry.valid_ranges_and_values_ANDED), "[1, 2)");
}

TEST(Range_options, EveryVerdictIsReported) {
    Judged_range entry;
    entry.verdicts = {{"zero", {1, 0, 0}},    {"undecided", {-1, 3, 3}}, {"beyond", {0, 3, 4}},
                      {"unknown", {2, 3, 3}}, {"fixed", {1, 3, 3}},      {"instance", {0, 3, 2}}};
    entry.valid_ranges_and_values = {range_of(0, 10),
                                     range_of(20, 30, {"zero", "undecided", "fixed"}),
                                     range_of(40, 50, {"beyond", "unknown", "instance"})};
    std::string out = capture(0x1, [&] { entry.evaluateOptions(); }).out;
    out = std::regex_replace(out, std::regex(R"(line\[\d+\])"), "line[#]");
    EXPECT_EQ(
        out,
        "[evaluateOptions][range_entry.cpp][#] Range Control Option: ranges before [3]\n"
        "Saving range.min[0] range.max[9]\n"
        "Range option [zero], is not considered because its true value is zero\n"
        "Range option [undecided], for range [20,29] will not be considered for range changes for "
        "[Gain]\n"
        "pushing back range...line[#] [20, 30)\n"
        "need another option (not [beyond]) to make it valid...line[#] [40, 50)\n"
        "pushing back range...line[#] [40, 50)\n"
        "[evaluateOptions][range_entry.cpp][#] Range Control Option: ranges after [3]\n");
}

// --- The binding's suggestion

TEST(Range_suggestion, IsEmptyWithoutABinding) {
    Open_range entry;
    EXPECT_TRUE(entry.getBindingRange().empty());
}

TEST(Range_suggestion, IsEmptyUntilItIsUpdated) {
    std::vector<std::string> log;
    Open_range entry;
    auto* binding = new Fake_binding(&log);
    entry.Set_binding_object(binding);
    binding->offer(SUGGESTION_RANGE);
    log.clear();
    EXPECT_TRUE(entry.getBindingRange().empty());
    EXPECT_TRUE(log.empty()) << "nothing is fetched or cleared";
}

TEST(Range_suggestion, IsFetchedAndThenConsumed) {
    std::vector<std::string> log;
    Open_range entry;
    auto* binding = new Fake_binding(&log);
    entry.Set_binding_object(binding);
    binding->suggest_range({{1, 2}});
    log.clear();
    EXPECT_EQ(text_of(entry.getBindingRange()), "[1, 3)");
    EXPECT_EQ(log, (std::vector<std::string>{"getSuggestion 2", "clearSuggestion 2"}));
    EXPECT_TRUE(entry.getBindingRange().empty());
}

TEST(Range_suggestion, PairsBecomeHalfOpenWhateverTheirOrder) {
    Bound_range bound;
    bound.binding->suggest_range({{9, 3}, {4, 4}, {-2, 7}, {INT_MIN, INT_MAX}, {INT_MAX, INT_MAX}});
    EXPECT_EQ(text_of(bound.entry.getBindingRange()),
              "[3, 10) [4, 5) [-2, 8) [-2147483648, 2147483647) [2147483647, 2147483647)");
}

// Intended: the number is how many ranges were suggested, not the size of the odd one.
TEST(Range_suggestion, WhatIsNoPairIsReportedAndLeftOut) {
    Bound_range bound;
    bound.binding->suggest_range({{1, 2}, {}, {7}, {1, 2, 3}, {4, 6}});
    std::vector<range_s> ranges;
    const std::string line =
        "[getBindingRange][range_entry.cpp][#] Returned bind_range_controls must be of size two. "
        "size[5] Returning a zero-range.\n";
    EXPECT_EQ(capture(0x1, [&] { ranges = bound.entry.getBindingRange(); }).out,
              line + line + line);
    EXPECT_EQ(text_of(ranges), "[1, 3) [4, 7)");
    EXPECT_FALSE(bound.binding->is_updated(SUGGESTION_RANGE));
}

// --- Allowed ranges cut to the suggestion

struct Cut {
    const char* name;
    std::vector<range_s> allowed;
    Suggestion suggested;
    const char* left;
    const char* bounds;
};

TEST(Range_cut, AllowedRangesAreCutToTheSuggestion) {
    const std::vector<Cut> cuts = {
        {"over a gap",
         {range_of(0, 10), range_of(20, 30)},
         {{5, 25}},
         "[5, 10) [20, 26)",
         "[5, 25]"},
        {"within", {range_of(0, 10)}, {{3, 5}}, "[3, 6)", "[3, 5]"},
        {"around", {range_of(3, 6)}, {{0, 10}}, "[3, 6)", "[3, 5]"},
        {"the same", {range_of(3, 6)}, {{3, 5}}, "[3, 6)", "[3, 5]"},
        {"the first value", {range_of(3, 6)}, {{0, 3}}, "[3, 4)", "[3, 3]"},
        {"the last value", {range_of(3, 6)}, {{5, 9}}, "[5, 6)", "[5, 5]"},
        {"just below", {range_of(3, 6)}, {{0, 2}}, "", NO_VALUE},
        {"just above", {range_of(3, 6)}, {{6, 9}}, "", NO_VALUE},
        {"far away", {range_of(3, 6)}, {{100, 200}}, "", NO_VALUE},
        {"in the gap", {range_of(0, 10), range_of(20, 30)}, {{10, 19}}, "", NO_VALUE},
        {"reversed", {range_of(0, 100)}, {{9, 3}}, "[3, 10)", "[3, 9]"},
        {"suggestions come first in order",
         {range_of(0, 10), range_of(20, 30)},
         {{22, 40}, {0, 21}},
         "[22, 30) [0, 10) [20, 22)",
         "[0, 29]"},
        {"overlapping suggestions", {range_of(0, 10)}, {{1, 4}, {3, 6}}, "[1, 5) [3, 7)", "[1, 6]"},
        {"no allowed range", {}, {{0, 10}}, "", NO_VALUE},
        {"an empty range within the suggestion", {range_of(5, 5)}, {{0, 9}}, "[5, 5)", "[5, 4]"},
        {"the lowest value",
         {range_of(INT_MIN, 0)},
         {{INT_MIN, INT_MIN}},
         "[-2147483648, -2147483647)",
         "[-2147483648, -2147483648]"},
        {"all values",
         {range_of(INT_MIN, INT_MAX)},
         {{INT_MIN, INT_MAX}},
         "[-2147483648, 2147483647)",
         "[-2147483648, 2147483646]"},
    };
    for (const Cut& cut : cuts) {
        SCOPED_TRACE(cut.name);
        Bound_range bound;
        bound.entry.setValidRangeAndValues(cut.allowed);
        bound.binding->suggest_range(cut.suggested);
        EXPECT_EQ(bound.entry.updateRange(), 0);
        EXPECT_EQ(text_of(bound.entry.valid_ranges_and_values_ANDED), cut.left);
        EXPECT_EQ(text_of(bound.entry.valid_ranges_and_values), text_of(cut.allowed));
        EXPECT_EQ(bounds_of(bound.entry), cut.bounds);
    }
}

// Intended: nothing in common leaves no value at all, and every value reads as out of range.
TEST(Range_cut, WithoutACommonValueEveryValueIsOutOfRange) {
    Bound_range bound;
    bound.entry.setValidRangeAndValues({range_of(0, 10)});
    bound.binding->suggest_range({{50, 60}});
    bound.entry.updateRange();
    for (const int value : {INT_MIN, -1, 0, 5, 55, INT_MAX}) {
        bound.entry.put(value);
        int read = 0;
        EXPECT_EQ(bound.entry.Get_value(&read, 4), Data_entry::OUT_OF_RANGE) << value;
        EXPECT_EQ(read, value);
    }
}

TEST(Range_cut, WithoutInstalledRangesASuggestionLeavesNoValue) {
    Bound_range bound;
    bound.binding->suggest_range({{0, 10}});
    bound.entry.updateRange();
    EXPECT_EQ(bounds_of(bound.entry), NO_VALUE) << "no ranges were installed";
}

TEST(Range_cut, TheCutRangesCarryNoOptions) {
    Bound_range bound;
    bound.entry.setProductOptions({{"gps", 1}});
    bound.entry.setValidRangeAndValues({range_of(0, 10, {"gps"})});
    bound.binding->suggest_range({{0, 9}});
    bound.entry.updateRange();
    EXPECT_EQ(text_of(bound.entry.valid_ranges_and_values_ANDED), "[0, 10)");
    EXPECT_EQ(text_of(bound.entry.valid_ranges_and_values), "[0, 10) gps");
}

TEST(Range_cut, WithoutANewSuggestionEverythingStays) {
    Bound_range bound;
    bound.entry.setValidRangeAndValues({range_of(0, 10)});
    bound.binding->suggest_range({{3, 5}});
    bound.entry.updateRange();
    EXPECT_EQ(
        capture(0x1, [&] { EXPECT_EQ(bound.entry.updateRange(), 0); }).out,
        "[updateRange][range_entry.cpp][#] No bindings, so the total range stays the way it is. "
        "m_min[3] m_max[5] entry[Gain]\n");
    EXPECT_EQ(text_of(bound.entry.valid_ranges_and_values_ANDED), "[3, 6)");
    EXPECT_EQ(bounds_of(bound.entry), "[3, 5]");
}

TEST(Range_cut, ASuggestionWithoutAPairCountsAsNone) {
    Bound_range bound;
    bound.entry.setValidRangeAndValues({range_of(0, 10)});
    bound.binding->suggest_range({{3}});
    bound.entry.updateRange();
    EXPECT_EQ(bounds_of(bound.entry), "[0, 9]");
    EXPECT_FALSE(bound.binding->is_updated(SUGGESTION_RANGE));
}

TEST(Range_cut, ALaterSuggestionCutsTheInstalledRangesAnew) {
    Bound_range bound;
    bound.entry.setValidRangeAndValues({range_of(0, 10)});
    bound.binding->suggest_range({{3, 5}});
    bound.entry.updateRange();
    bound.binding->suggest_range({{7, 8}});
    bound.entry.updateRange();
    EXPECT_EQ(text_of(bound.entry.valid_ranges_and_values_ANDED), "[7, 9)");
}

// Intended: the line shows the last value in front of a bracket that leaves it out.
TEST(Range_cut, IsReported) {
    Bound_range bound;
    bound.entry.setValidRangeAndValues({range_of(0, 10), range_of(20, 30)});
    bound.binding->suggest_range({{5, 25}});
    EXPECT_EQ(
        capture(0x1, [&] { bound.entry.updateRange(); }).out,
        "[updateRange][range_entry.cpp][#] Adding a chopped/extended range to total range: [5, 9)\n"
        "[updateRange][range_entry.cpp][#] Adding a chopped/extended range to total range: [20, 25)\n"
        "[updateRange][range_entry.cpp][#] final min[5] max[25]\n");
}

// --- Steps

struct Step {
    int old_value;
    int new_value;
    int result;
};

TEST(Range_step, IsLimitedToTheBounds) {
    Open_range entry({0, 10, 5});
    for (const Step& step :
         {Step{5, 12, 10}, Step{5, 11, 10}, Step{5, 10, 10}, Step{5, -1, 0}, Step{5, 0, 0},
          Step{5, 7, 7}, Step{5, 5, 5}, Step{0, INT_MAX, 10}, Step{0, INT_MIN, 0}}) {
        EXPECT_EQ(entry.increment(step.old_value, step.new_value), step.result)
            << step.old_value << " to " << step.new_value;
    }
}

// Intended: no bound replaces a value in a gap, so that an editor steps through gaps value by value.
TEST(Range_step, AValueInAGapIsTaken) {
    Open_range entry;
    entry.setValidRangeAndValues({range_of(0, 6), range_of(20, 30), range_of(50, 51)});
    for (const Step& step : {Step{5, 7, 7}, Step{5, 6, 6}, Step{20, 19, 19}, Step{20, 7, 7},
                             Step{7, 7, 7}, Step{30, 49, 49}, Step{50, 30, 30}, Step{29, 30, 30}}) {
        EXPECT_EQ(entry.increment(step.old_value, step.new_value), step.result)
            << step.old_value << " to " << step.new_value;
        int read = 0;
        entry.put(step.result);
        EXPECT_EQ(entry.Get_value(&read, 4), Data_entry::OK);
    }
}

TEST(Range_step, UsesAFreshSuggestion) {
    Bound_range bound;
    bound.entry.setValidRangeAndValues({range_of(0, 100)});
    bound.binding->suggest_range({{0, 20}});
    EXPECT_EQ(bound.entry.increment(10, 50), 20);
}

TEST(Range_step, CrossedBoundsGiveTheLowerLimitOfInt) {
    Open_range entry;
    entry.setValidRangeAndValues({});
    EXPECT_EQ(entry.increment(5, 6), INT_MIN);
    EXPECT_EQ(entry.increment(5, INT_MIN), INT_MAX);
}

constexpr char NO_SUGGESTION[] =
    "[updateRange][range_entry.cpp][#] No bindings, so the total range stays the way it is. m_min[0] "
    "m_max[29] entry[Gain]\n";

std::string lines_of_step(int old_value, int new_value) {
    Open_range entry;
    entry.setValidRangeAndValues({range_of(0, 6), range_of(20, 30)});
    return capture(0x1, [&] { entry.increment(old_value, new_value); }).out;
}

TEST(Range_step, IntoARangeIsReported) {
    EXPECT_EQ(lines_of_step(5, 21),
              std::string(NO_SUGGESTION) +
                  "[increment][range_entry.cpp][#] Range or Value: [0, 6) \n"
                  "[increment][range_entry.cpp][#] [21] < [0] ? \n"
                  "[increment][range_entry.cpp][#] Range or Value: [20, 30) \n"
                  "return range new_value[21]\n");
}

TEST(Range_step, UpIntoAGapComparesTheLowerEnds) {
    EXPECT_EQ(lines_of_step(5, 8),
              std::string(NO_SUGGESTION) +
                  "[increment][range_entry.cpp][#] Range or Value: [0, 6) \n"
                  "[increment][range_entry.cpp][#] [8] < [0] ? \n"
                  "[increment][range_entry.cpp][#] Range or Value: [20, 30) \n"
                  "[increment][range_entry.cpp][#] [12] < [0] ? \n"
                  "[increment][range_entry.cpp][#] return closest_allowed_value[8]\n");
}

TEST(Range_step, DownIntoAGapComparesTheUpperEnds) {
    const std::string lines = std::string(NO_SUGGESTION) +
                              "[increment][range_entry.cpp][#] Range or Value: [0, 6) \n"
                              "[increment][range_entry.cpp][#] [3] < [0] ? \n"
                              "[increment][range_entry.cpp][#] Range or Value: [20, 30) \n"
                              "[increment][range_entry.cpp][#] [21] < [0] ? \n"
                              "[increment][range_entry.cpp][#] return closest_allowed_value[8]\n";
    EXPECT_EQ(lines_of_step(20, 8), lines);
    EXPECT_EQ(lines_of_step(8, 8), lines) << "no move counts as down";
}

TEST(Range_step, BeyondTheBoundsIsNotReported) {
    EXPECT_EQ(lines_of_step(20, 30), NO_SUGGESTION);
    EXPECT_EQ(lines_of_step(0, -1), NO_SUGGESTION);
}

TEST(Range_step, DistancesSaturate) {
    Open_range entry;
    entry.setValidRangeAndValues({range_of(INT_MIN, INT_MIN + 1), range_of(INT_MAX - 1, INT_MAX)});
    const std::string lines = capture(0x1, [&] { EXPECT_EQ(entry.increment(5, 6), 6); }).out;
    EXPECT_NE(lines.find("] [2147483647] < [0] ? \n"), std::string::npos) << lines;
    EXPECT_NE(lines.find("] [2147483640] < [0] ? \n"), std::string::npos) << lines;
}

// --- The report

constexpr char BASE_LINE[] =
    "Gain varid[120.3.0@i] num_index_levels=[1] type[1] vis[1] shortcut[-1] ";

TEST(Range_report, HasNoRangesBeforeAnyAreInstalled) {
    Open_range entry;
    EXPECT_EQ(entry.getProperties(0), std::string(BASE_LINE) + "range={ }");
}

TEST(Range_report, ShowsInclusiveEnds) {
    Open_range entry;
    entry.setValidRangeAndValues({range_of(0, 101)});
    EXPECT_EQ(entry.getProperties(0), std::string(BASE_LINE) + "range={  [0, 100] }");
    EXPECT_EQ(entry.getProperties(8), "Gain range={  [0, 100] }");
}

TEST(Range_report, ShowsEveryRangeWithItsOptions) {
    Open_range entry;
    entry.setProductOptions({{"gps", 1}, {"ptp", 1}});
    entry.setValidRangeAndValues(
        {range_of(0, 10, {"gps", "ptp"}), range_of(-7, -6), range_of(20, 30, {"ptp"})});
    EXPECT_EQ(entry.getProperties(8),
              "Gain range={  [0, 9] options:gps ptp  [-7, -7]  [20, 29] options:ptp }");
}

TEST(Range_report, AppliesAFreshSuggestion) {
    Bound_range bound;
    bound.entry.setValidRangeAndValues({range_of(0, 10), range_of(20, 30)});
    bound.binding->suggest_range({{5, 25}});
    EXPECT_EQ(bound.entry.getProperties(8), "Gain range={  [5, 9]  [20, 25] }");
    EXPECT_FALSE(bound.binding->is_updated(SUGGESTION_RANGE));
}

}  // namespace
