// The engine by itself: evaluation, suggestions, override and errors.
#include <frontpanel_binding/expression_binding.h>

#include <frontpanel_simulator/memory_device.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/indexes.h"
#include "support/leaf.h"

using namespace frontpanel;

namespace {

using support::capture;
using support::index_of;
using support::key_of;
using support::Leaf;
using testing::ElementsAre;
using testing::IsEmpty;

using Ranges = std::vector<std::vector<int>>;

constexpr unsigned int MODE = 100;
constexpr unsigned int SOURCE = 101;
constexpr unsigned int TITLE = 200;

return_s number(int32_t value) {
    return_s result;
    result.rt = INTEGER;
    result.i = value;
    return result;
}

return_s text(const std::string& value) {
    return_s result;
    result.rt = STRING;
    result.s = value;
    return result;
}

class Expression_binding_test : public testing::Test {
protected:
    Expression_binding_test() {
        device.add_integer(MODE, 0, -1000, 1000, 0);
        device.add_integer(MODE, 2, -1000, 1000, 0);
        device.add_integer(MODE, 0x102, -1000, 1000, 0);
        device.add_integer(SOURCE, 0, -1000, 1000, 0);
        device.add_text(TITLE, 0, 256, "Studio");
    }

    void add(const std::string& source) {
        const Compile_result compiled = registry->compile(source);
        ASSERT_TRUE(compiled.ok()) << compiled.error->text();
        binding.addBindingList(compiled.list);
    }
    int evaluate(int flags = Binding::EXECUTE_FLAG) {
        return binding.evaluateAllBindingExpressions(&flags);
    }
    int visibility() {
        int value = 12345;
        binding.getSuggestion(SUGGESTION_VISIBILITY, &value);
        return value;
    }
    std::vector<std::string> warnings() {
        std::vector<std::string> value = {"none was told"};
        binding.getSuggestion(SUGGESTION_WARNING, &value);
        return value;
    }
    std::vector<GetSetS> requests() {
        std::vector<GetSetS> value(3);
        binding.getSuggestion(SUGGESTION_SET, &value);
        return value;
    }
    Ranges keys() {
        Ranges value = {{12345}};
        binding.getSuggestion(SUGGESTION_KEYS, &value);
        return value;
    }
    Ranges ranges() {
        Ranges value = {{12345}};
        binding.getSuggestion(SUGGESTION_RANGE, &value);
        return value;
    }

    Memory_device device;
    std::shared_ptr<Binding_registry> registry = std::make_shared<Binding_registry>(&device);
    Expression_binding binding{registry};
};

// ---- conditions

TEST_F(Expression_binding_test, ConditionsCompareNumbersAndTexts) {
    device.set_integer(MODE, 0, 5);
    device.set_integer(SOURCE, 0, -1);
    struct Case {
        const char* condition;
        bool holds;
    };
    for (const Case& each : {
             Case{"[100] == 5", true},
             Case{"[100] == 4", false},
             Case{"[100] != 5", false},
             Case{"[100] != 4", true},
             Case{"[100] < 5", false},
             Case{"[100] < 6", true},
             Case{"[100] <= 5", true},
             Case{"[100] <= 4", false},
             Case{"[100] > 5", false},
             Case{"[100] > 4", true},
             Case{"[100] >= 5", true},
             Case{"[100] >= 6", false},
             Case{"[101] < 0", true},
             Case{"[101] == -0x1", true},
             Case{"[200@s] == \"Studio\"", true},
             Case{"[200@s] == \"studio\"", false},
             Case{"[200@s] == \"Studio \"", false},
             Case{"[200@s] != \"\"", true},
             Case{"[100] == 5 and [101] == -1", true},
             Case{"[100] == 5 and [101] == 0", false},
             Case{"[100] == 0 or [101] == -1", true},
             Case{"[100] == 0 or [101] == 0", false},
             // "and" binds more tightly than "or"
             Case{"[100] == 5 or [100] == 0 and [101] == 0", true},
             Case{"[100] == 0 and [101] == 0 or [100] == 5", true},
             Case{"[100] == 0 and [101] == -1 or [100] == 6", false},
         }) {
        SCOPED_TRACE(each.condition);
        Expression_binding engine(registry);
        engine.addBindingList(registry->compile(std::string("visible if ") + each.condition).list);
        int flags = Binding::EXECUTE_FLAG;
        EXPECT_EQ(engine.evaluateAllBindingExpressions(&flags), 0);
        int value = 0;
        engine.getSuggestion(SUGGESTION_VISIBILITY, &value);
        EXPECT_EQ(value, each.holds ? VIS_TRUE : VIS_FALSE);
    }
}

TEST_F(Expression_binding_test, EscapesStandForQuoteAndBackslash) {
    device.set_text(TITLE, 0, "a\"b\\c");
    add("visible if [200@s] == \"a\\\"b\\\\c\"");
    evaluate();

    EXPECT_EQ(visibility(), VIS_TRUE);
}

TEST_F(Expression_binding_test, TheLongestTextOfTheDeviceIsRead) {
    device.set_text(TITLE, 0, std::string(256, 'x'));
    add("visible if [200@s] == \"" + std::string(256, 'x') + "\"");

    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(visibility(), VIS_TRUE);
}

TEST_F(Expression_binding_test, LevelsSelectTheVariableOfTheDevice) {
    device.set_integer(MODE, 2, 1);
    device.set_integer(MODE, 0x102, 2);
    add("visible if [100] == 0 and [100.0] == 0 and [100.2] == 1 and [100.2.1] == 2");

    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(visibility(), VIS_TRUE);
}

// ---- offering

TEST_F(Expression_binding_test, AnEngineWithoutListsOffersNothing) {
    EXPECT_EQ(evaluate(), 0);
    for (const int mask : {1, 2, 4, 8, 16, 32, 63}) {
        SCOPED_TRACE(mask);
        EXPECT_FALSE(binding.offersSuggestion(mask));
        EXPECT_FALSE(binding.suggestionUpdated(mask));
    }
}

TEST_F(Expression_binding_test, AnEngineOffersTheKindsOfItsRules) {
    add("visible if [100] == 1");
    EXPECT_TRUE(binding.offersSuggestion(SUGGESTION_VISIBILITY));
    EXPECT_FALSE(binding.offersSuggestion(SUGGESTION_RANGE));

    add("range 0..40 if [100] == 1");
    EXPECT_TRUE(binding.offersSuggestion(SUGGESTION_RANGE));
    for (const int mask : {4, 8, 16, 32}) {
        EXPECT_FALSE(binding.offersSuggestion(mask)) << mask;
    }
    EXPECT_TRUE(binding.offersSuggestion(SUGGESTION_RANGE | SUGGESTION_WARNING));
}

TEST_F(Expression_binding_test, OfferingNeedsNoEvaluation) {
    add("range 0..40 if [999] == 1");

    EXPECT_TRUE(binding.offersSuggestion(SUGGESTION_RANGE));
}

TEST_F(Expression_binding_test, BeforeAnEvaluationTheEntryIsVisibleAndUnlimited) {
    add("visible if [100] == 1; range 0..40");

    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_VISIBILITY | SUGGESTION_RANGE));
    EXPECT_EQ(visibility(), VIS_TRUE);
    EXPECT_EQ(ranges(), Ranges());
}

TEST_F(Expression_binding_test, AKindThatIsNotKnownLeavesTheAnswerAsItWas) {
    add("visible if [100] == 1");
    evaluate();
    Ranges keys = {{7}};
    binding.getSuggestion(64, &keys);
    binding.getSuggestion(0, &keys);

    EXPECT_EQ(keys, (Ranges{{7}}));
}

// ---- visibility

TEST_F(Expression_binding_test, TheFirstEvaluationCountsAsAnUpdate) {
    add("visible if [100] == 0");
    evaluate();

    EXPECT_TRUE(binding.suggestionUpdated(SUGGESTION_VISIBILITY));
    EXPECT_EQ(visibility(), VIS_TRUE);
}

TEST_F(Expression_binding_test, AClearedSuggestionIsUpdatedOnlyByAChange) {
    add("visible if [100] == 0");
    evaluate();
    binding.clearSuggestion(SUGGESTION_VISIBILITY);
    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_VISIBILITY));
    evaluate();
    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_VISIBILITY));

    device.set_integer(MODE, 0, 1);
    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_VISIBILITY));
    evaluate();
    EXPECT_TRUE(binding.suggestionUpdated(SUGGESTION_VISIBILITY));
    EXPECT_EQ(visibility(), VIS_FALSE);
}

TEST_F(Expression_binding_test, AnUpdateStaysUntilItIsCleared) {
    add("visible if [100] == 0");
    evaluate();
    visibility();
    evaluate();

    EXPECT_TRUE(binding.suggestionUpdated(SUGGESTION_VISIBILITY));
}

TEST_F(Expression_binding_test, TheSuggestionCanStillBeReadAfterItIsCleared) {
    add("visible if [100] == 1");
    evaluate();
    binding.clearSuggestion(SUGGESTION_VISIBILITY);

    EXPECT_EQ(visibility(), VIS_FALSE);
}

TEST_F(Expression_binding_test, AnyOfTheVisibleRulesShowsTheEntry) {
    add("visible if [100] == 1; visible if [101] == 1");
    evaluate();
    EXPECT_EQ(visibility(), VIS_FALSE);
    device.set_integer(SOURCE, 0, 1);
    evaluate();
    EXPECT_EQ(visibility(), VIS_TRUE);
}

TEST_F(Expression_binding_test, TheRulesOfAllListsCount) {
    add("visible if [100] == 1");
    add("visible if [101] == 0");
    evaluate();

    EXPECT_EQ(binding.numBindingLists(), 2);
    EXPECT_EQ(visibility(), VIS_TRUE);
}

// ---- ranges

TEST_F(Expression_binding_test, TheRangesOfAllRulesThatHoldAreSuggested) {
    device.set_integer(MODE, 0, 1);
    add("range 20..30 if [100] == 1; range 0..4, 40..50 if [101] == 0; range 60..70 if [100] == 2");
    evaluate();

    EXPECT_TRUE(binding.suggestionUpdated(SUGGESTION_RANGE));
    EXPECT_EQ(ranges(), (Ranges{{0, 4}, {20, 30}, {40, 50}}));
}

TEST_F(Expression_binding_test, RangesThatTouchBecomeOne) {
    add("range 8..3, 9..12, 0..1, 10..11, 14..15");
    evaluate();

    EXPECT_EQ(ranges(), (Ranges{{0, 1}, {3, 12}, {14, 15}}));
}

TEST_F(Expression_binding_test, RangesAtTheLimitsOfIntegersDoNotWrap) {
    add("range 5..2147483647, -2147483648..-7, 2147483647..2147483647");
    evaluate();

    EXPECT_EQ(ranges(), (Ranges{{-2147483647 - 1, -7}, {5, 2147483647}}));
}

// An empty suggestion would leave the entry with the narrower range of before.
TEST_F(Expression_binding_test, WhenNoConditionHoldsTheFallbackRangeIsSuggested) {
    binding.set_fallback_range(100, 0);
    device.set_integer(MODE, 0, 1);
    add("range 0..40 if [100] == 1");
    evaluate();
    EXPECT_EQ(ranges(), (Ranges{{0, 40}}));
    binding.clearSuggestion(SUGGESTION_RANGE);

    device.set_integer(MODE, 0, 0);
    EXPECT_EQ(evaluate(), 0);

    EXPECT_TRUE(binding.suggestionUpdated(SUGGESTION_RANGE));
    EXPECT_EQ(ranges(), (Ranges{{0, 100}}));
}

TEST_F(Expression_binding_test, WithoutAFallbackRangeTheLastRangeStaysAndAnErrorTells) {
    device.set_integer(MODE, 0, 1);
    add("range 0..40 if [100] == 1");
    evaluate();
    binding.clearSuggestion(SUGGESTION_RANGE);

    device.set_integer(MODE, 0, 0);
    EXPECT_EQ(evaluate(), -1);

    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_RANGE));
    EXPECT_EQ(ranges(), (Ranges{{0, 40}}));
    EXPECT_THAT(binding.errors(),
                ElementsAre("no range rule holds, and there is no fallback range"));
}

TEST_F(Expression_binding_test, OneKindIsClearedWithoutTheOther) {
    add("visible if [100] == 0; range 0..40");
    evaluate();

    binding.clearSuggestion(SUGGESTION_VISIBILITY);
    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_VISIBILITY));
    EXPECT_TRUE(binding.suggestionUpdated(SUGGESTION_RANGE));
    EXPECT_TRUE(binding.suggestionUpdated(SUGGESTION_VISIBILITY | SUGGESTION_RANGE));
    binding.clearSuggestion(SUGGESTION_RANGE);
    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_VISIBILITY | SUGGESTION_RANGE));
}

// ---- flags and override

TEST_F(Expression_binding_test, WithoutTheExecuteFlagSuggestionsStay) {
    add("visible if [100] == 1");

    EXPECT_EQ(evaluate(0), 0);
    EXPECT_EQ(binding.evaluateAllBindingExpressions(nullptr), 0);
    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_VISIBILITY));
    EXPECT_EQ(visibility(), VIS_TRUE);

    evaluate();
    EXPECT_EQ(visibility(), VIS_FALSE);
}

TEST_F(Expression_binding_test, WithoutTheExecuteFlagErrorsAreStillFound) {
    add("visible if [999] == 1");

    EXPECT_EQ(evaluate(0), -1);
    EXPECT_THAT(binding.errors(),
                ElementsAre("line 1, visible if [999] == 1: cannot read [999]: device result 1"));
}

TEST_F(Expression_binding_test, ATryEvaluatesWarningsAgainstTheOverrideAndNothingElse) {
    add("warn \"seven\" if [100.2] == 7; visible if [100.2] == 7");
    binding.setOverrideVarid(key_of(INTEGER, MODE, index_of({2})), number(7));

    evaluate(Binding::EXECUTE_FLAG);
    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_WARNING));
    EXPECT_EQ(visibility(), VIS_FALSE);
    evaluate(Binding::EXECUTE_FLAG | Expression_binding::OVERRIDE_FLAG);
    EXPECT_TRUE(binding.suggestionUpdated(SUGGESTION_WARNING));
    EXPECT_THAT(warnings(), ElementsAre("seven"));
    EXPECT_EQ(visibility(), VIS_FALSE);
    EXPECT_EQ(device.integer(MODE, 2), 0);

    binding.clearOverrideVarid();
    evaluate(Binding::EXECUTE_FLAG | Expression_binding::OVERRIDE_FLAG);
    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_WARNING));
    EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(Expression_binding_test, TheFlagsOfATriedValueAreFive) {
    EXPECT_EQ(Binding::EXECUTE_FLAG | Expression_binding::OVERRIDE_FLAG, 5);
}

TEST_F(Expression_binding_test, ATryWithoutTheExecuteFlagSuggestsNothing) {
    add("warn \"seven\" if [100] == 7");
    binding.setOverrideVarid(key_of(INTEGER, MODE, index_of({})), number(7));
    evaluate(Expression_binding::OVERRIDE_FLAG);

    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_WARNING));
}

TEST_F(Expression_binding_test, TheOverrideIsOneParameterOnly) {
    add("warn \"w\" if [100] == 7 or [100.2.1] == 7 or [200@s] == \"Hall\"");
    binding.setOverrideVarid(key_of(INTEGER, MODE, index_of({2})), number(7));
    evaluate(5);
    EXPECT_THAT(warnings(), IsEmpty());

    binding.setOverrideVarid(key_of(STRING, TITLE, index_of({})), text("Hall"));
    evaluate(5);
    EXPECT_THAT(warnings(), ElementsAre("w"));
}

TEST_F(Expression_binding_test, ASecondOverrideReplacesTheFirst) {
    add("warn \"w\" if [100] == 7");
    binding.setOverrideVarid(key_of(INTEGER, MODE, index_of({})), number(7));
    binding.setOverrideVarid(key_of(INTEGER, SOURCE, index_of({})), number(7));
    evaluate(5);

    EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(Expression_binding_test, AnOverrideStandsForAllNamesOfItsVariable) {
    add("warn \"w\" if [100] == 7 and [100.0] == 7 and [100.0.0] == 7");
    Index_t index = index_of({0});
    index.m_index[1] = 9;  // a level that is not in use
    binding.setOverrideVarid(key_of(INTEGER, MODE, index), number(7));
    evaluate(5);

    EXPECT_THAT(warnings(), ElementsAre("w"));
}

TEST_F(Expression_binding_test, AnOverrideOfAnotherTypeIsNotSeen) {
    add("warn \"w\" if [100] == 0");
    return_s none;
    none.i = -1;
    binding.setOverrideVarid(key_of(INVALID_TYPE, MODE, index_of({})), none);
    evaluate(5);

    EXPECT_THAT(warnings(), ElementsAre("w"));
}

TEST_F(Expression_binding_test, AnOverriddenParameterIsNotReadFromTheDevice) {
    add("warn \"w\" if [999] == 7");
    binding.setOverrideVarid(key_of(INTEGER, 999, index_of({})), number(7));

    EXPECT_EQ(evaluate(5), 0);
    EXPECT_THAT(warnings(), ElementsAre("w"));
}

// ---- reading the device

TEST_F(Expression_binding_test, AFailedReadKeepsThePreviousSuggestions) {
    binding.set_fallback_range(0, 100);
    device.set_integer(MODE, 0, 1);
    add("visible if [100] == 0; range 0..40 if [100] == 1");
    evaluate();
    binding.clearSuggestion(SUGGESTION_VISIBILITY | SUGGESTION_RANGE);

    device.set_integer(MODE, 0, 0);
    device.set_fault([](const Memory_device::Operation&) { return 42; });
    EXPECT_EQ(evaluate(), -1);

    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_VISIBILITY | SUGGESTION_RANGE));
    EXPECT_EQ(visibility(), VIS_FALSE);
    EXPECT_EQ(ranges(), (Ranges{{0, 40}}));
    EXPECT_THAT(
        binding.errors(),
        ElementsAre("line 1, visible if [100] == 0: cannot read [100]: device result 42",
                    "line 1, range 0..40 if [100] == 1: cannot read [100]: device result 42"));

    device.set_fault(nullptr);
    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(visibility(), VIS_TRUE);
    EXPECT_EQ(ranges(), (Ranges{{0, 100}}));
}

TEST_F(Expression_binding_test, AFailedReadKeepsOnlyTheSuggestionThatNeedsIt) {
    add("visible if [999.1.2] == 0; range 0..40 if [100] == 0");

    EXPECT_EQ(evaluate(), -1);

    EXPECT_FALSE(binding.suggestionUpdated(SUGGESTION_VISIBILITY));
    EXPECT_TRUE(binding.suggestionUpdated(SUGGESTION_RANGE));
    EXPECT_THAT(
        binding.errors(),
        ElementsAre("line 1, visible if [999.1.2] == 0: cannot read [999.1.2]: device result 1"));
}

TEST_F(Expression_binding_test, AFailureThatNoAnswerNeedsIsNotMet) {
    add("visible if [100] == 0 or [999] == 1; range 0..40 if [100] == 1 and [999] == 1");
    binding.set_fallback_range(0, 100);

    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(visibility(), VIS_TRUE);
    EXPECT_EQ(ranges(), (Ranges{{0, 100}}));
}

TEST_F(Expression_binding_test, ATextAskedAsANumberIsAFailedRead) {
    add("visible if [200] == 1 or [100@s] == \"1\"");

    EXPECT_EQ(evaluate(), -1);
    EXPECT_THAT(binding.errors(),
                ElementsAre("line 1, visible if [200] == 1 or [100@s] == \"1\": cannot read [200]: "
                            "device result 3"));
}

TEST_F(Expression_binding_test, EachParameterIsReadOnceInAnEvaluation) {
    std::map<unsigned int, int> reads;
    device.set_fault([&](const Memory_device::Operation& asked) {
        ++reads[asked.pid];
        return asked.pid == SOURCE ? 42 : 0;
    });
    add("visible if [100] == 1 or [100] == 2; visible if [101] == 1; range 0..40 if [100] != 1 and [101] == 1");
    evaluate();

    EXPECT_EQ(reads, (std::map<unsigned int, int>{{MODE, 1}, {SOURCE, 1}}));
    EXPECT_EQ(binding.errors().size(), 2u);
}

TEST_F(Expression_binding_test, WithoutAnInterfaceOfItsOwnTheProcessWideOneIsRead) {
    const auto unbound = std::make_shared<Binding_registry>();
    Expression_binding engine(unbound);
    engine.addBindingList(unbound->compile("visible if [100] == 1").list);
    int flags = Binding::EXECUTE_FLAG;
    ASSERT_EQ(VarIdDataInfStore::m_pDataAccessInf, nullptr);

    EXPECT_EQ(engine.evaluateAllBindingExpressions(&flags), -1);
    EXPECT_THAT(engine.errors(),
                ElementsAre("line 1, visible if [100] == 1: cannot read [100]: no data interface"));
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_VISIBILITY));

    VarIdDataInfStore::m_pDataAccessInf = &device;
    EXPECT_EQ(engine.evaluateAllBindingExpressions(&flags), 0);
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_VISIBILITY));
    VarIdDataInfStore::m_pDataAccessInf = nullptr;
}

// ---- errors, prints and warnings

TEST_F(Expression_binding_test, ErrorsAreThoseOfTheLastEvaluation) {
    add("visible if [998] == 1; range 0..1 if [999] == 1");
    evaluate();
    evaluate();
    EXPECT_THAT(
        binding.errors(),
        ElementsAre("line 1, visible if [998] == 1: cannot read [998]: device result 1",
                    "line 1, range 0..1 if [999] == 1: cannot read [999]: device result 1"));
    binding.clearBindErrors();
    EXPECT_THAT(binding.errors(), IsEmpty());
}

TEST_F(Expression_binding_test, ErrorsArePrintedUnderTheBindingMaskAndKept) {
    add("visible if [998] == 1; range 0..1 if [999] == 1");
    evaluate();
    int count = 0;
    const char* const LINES =
        "Binding error in [an entry]: line 1, visible if [998] == 1: cannot read [998]: device result 1\n"
        "Binding error in [an entry]: line 1, range 0..1 if [999] == 1: cannot read [999]: device result "
        "1\n";

    EXPECT_EQ(capture(0x21, [&] { count = binding.printBindErrors(); }).out, LINES);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(capture(0x20, [&] { binding.printBindErrors(); }).out, LINES);
    EXPECT_EQ(capture(0x12, [&] { count = binding.printBindErrors(); }).out, "");
    EXPECT_EQ(count, 2);
    binding.clearBindErrors();
    EXPECT_EQ(capture(0x21, [&] { count = binding.printBindErrors(); }).out, "");
    EXPECT_EQ(count, 0);
}

TEST_F(Expression_binding_test, SuggestionsArePrintedUnderTheBindingMask) {
    const auto printed = [&](uint32_t mask) {
        return capture(mask, [&] { binding.printSuggestions(); }).out;
    };
    add("visible if [100] == 1; range 0..4, 10..14");
    EXPECT_EQ(printed(0x21), "");
    evaluate();
    EXPECT_EQ(printed(0x21),
              "Suggested for [an entry]: hidden (new)\n"
              "Suggested for [an entry]: range 0..4, 10..14 (new)\n");
    binding.clearSuggestion(SUGGESTION_VISIBILITY | SUGGESTION_RANGE);
    EXPECT_EQ(printed(0x21),
              "Suggested for [an entry]: hidden\nSuggested for [an entry]: range 0..4, 10..14\n");
    EXPECT_EQ(printed(0x12), "");
}

TEST_F(Expression_binding_test, AWarningIsShownByTheRegistrysListener) {
    std::string shown;
    registry->set_warning_listener([&](const std::string& warning) { shown = warning; });
    binding.displayWarning("Output is muted");

    EXPECT_EQ(shown, "Output is muted");
}

TEST_F(Expression_binding_test, ADamagedListIsNotAdded) {
    add("visible if [100] == 1");
    BindingListT damaged = registry->compile("range 0..1 if [101] == 1").list;
    damaged[damaged.size() / 2] ^= 1;
    binding.addBindingList(damaged);
    binding.addBindingList({0, 7});
    binding.addBindingList({});

    EXPECT_EQ(binding.numBindingLists(), 1);
    EXPECT_THAT(binding.errors(), testing::Each(testing::StartsWith("binding list not added: ")));
    EXPECT_EQ(binding.printBindErrors(), 3);
    EXPECT_EQ(binding.getVarIndexMapKeys(0).size(), 1u);
    EXPECT_FALSE(binding.offersSuggestion(SUGGESTION_RANGE));
}

// ---- the controlled parameter and the dependants

TEST_F(Expression_binding_test, TheControlInfoIsTheKeyOfTheEntrysParameter) {
    const Index_t index = index_of({3, 1});
    struct Case {
        Data_entry::Entry_type type;
        RETURN_TYPE expected;
    };
    for (const Case& each :
         {Case{Data_entry::RANGE_LEAF, INTEGER}, Case{Data_entry::ENUM_LEAF, INTEGER},
          Case{Data_entry::SLOT_ENUM, INTEGER}, Case{Data_entry::STRING_LEAF, STRING},
          Case{Data_entry::IP_LEAF, STRING}, Case{Data_entry::TIME_LEAF, STRING},
          Case{Data_entry::NODE, STRING}}) {
        SCOPED_TRACE(each.type);
        binding.setControlInfo(MODE, &index, each.type);
        EXPECT_EQ(binding.self_control_info.rt, each.expected);
        EXPECT_EQ(binding.self_control_info.var, MODE);
        EXPECT_EQ(binding.self_control_info.index, index);
    }
}

TEST_F(Expression_binding_test, AMissingIndexHasNoLevels) {
    const Index_t index = index_of({3, 1});
    binding.setControlInfo(MODE, &index, Data_entry::RANGE_LEAF);
    binding.setControlInfo(MODE, nullptr, Data_entry::RANGE_LEAF);

    EXPECT_EQ(binding.self_control_info.index, index_of({}));
    EXPECT_EQ(binding.self_control_info.index.m_index[0], 0);
}

TEST_F(Expression_binding_test, TheKeyOfACommitMeetsTheKeyOfAnExpression) {
    struct Case {
        const char* parameter;
        Index_t index;
    };
    Index_t stale = index_of({2});
    stale.m_index[1] = 9;  // a level that is not in use
    for (const Case& each : {Case{"[100]", index_of({})}, Case{"[100.2]", index_of({2})},
                             Case{"[100.2]", stale}, Case{"[100.2.1]", index_of({2, 1})}}) {
        SCOPED_TRACE(each.parameter);
        const auto shared = std::make_shared<Binding_registry>(&device);
        Leaf dependant("Dependant");
        Expression_binding engine(shared);
        engine.addBindingList(
            shared->compile("visible if " + std::string(each.parameter) + " == 1").list);
        engine.setDataEntry(&dependant);
        Expression_binding committing(shared);
        committing.setControlInfo(MODE, &each.index, Data_entry::RANGE_LEAF);

        EXPECT_THAT(
            (*shared->var_index_map())[committing.self_control_info].binding_dependant_entries,
            ElementsAre(&dependant));
        EXPECT_EQ(shared->var_index_map()->size(), 1u);
    }
}

std::map<unsigned int, std::size_t> dependants_by_pid(Binding_registry& registry) {
    std::map<unsigned int, std::size_t> counts;
    for (const auto& [key, record] : *registry.var_index_map()) {
        counts[key.var] += record.binding_dependant_entries.size();
    }
    return counts;
}

using Counts = std::map<unsigned int, std::size_t>;

TEST_F(Expression_binding_test, AnEntryDependsOnEachParameterOnce) {
    Leaf leaf("Gain");
    add("visible if [100] == 1 and [101] == 2 or [100] == 3; range 0..1 if [100] == 1");
    add("visible if [100] == 5");
    EXPECT_EQ(dependants_by_pid(*registry), (Counts{{MODE, 0}, {SOURCE, 0}}));

    binding.setDataEntry(&leaf);
    EXPECT_EQ(dependants_by_pid(*registry), (Counts{{MODE, 1}, {SOURCE, 1}}));
    binding.setDataEntry(&leaf);
    EXPECT_EQ(dependants_by_pid(*registry), (Counts{{MODE, 1}, {SOURCE, 1}}));
}

TEST_F(Expression_binding_test, ListsAddedLaterRegisterTheirParameters) {
    Leaf leaf("Gain");
    add("visible if [100] == 1");
    binding.setDataEntry(&leaf);
    add("visible if [200@s] == \"x\"");

    EXPECT_EQ(dependants_by_pid(*registry), (Counts{{MODE, 1}, {TITLE, 1}}));
}

TEST_F(Expression_binding_test, AnotherEntryTakesThePlaceOfTheFirst) {
    Leaf first("First");
    Leaf second("Second");
    add("visible if [100] == 1");
    binding.setDataEntry(&first);
    binding.setDataEntry(&second);
    EXPECT_THAT(registry->var_index_map()->begin()->second.binding_dependant_entries,
                ElementsAre(&second));
    binding.setDataEntry(nullptr);
    EXPECT_EQ(dependants_by_pid(*registry), (Counts{{MODE, 0}}));
}

TEST_F(Expression_binding_test, TheDestructorTakesTheEntryOut) {
    Leaf staying("Staying");
    add("visible if [100] == 1");
    binding.setDataEntry(&staying);
    {
        Leaf leaving("Leaving");
        auto* engine = new Expression_binding(registry);
        engine->addBindingList(registry->compile("visible if [100] == 1").list);
        leaving.Set_binding_object(engine);
        EXPECT_EQ(dependants_by_pid(*registry), (Counts{{MODE, 2}, {120, 0}}));
    }
    EXPECT_THAT(registry->var_index_map()->begin()->second.binding_dependant_entries,
                ElementsAre(&staying));
}

TEST_F(Expression_binding_test, TheKeysAreTheEnginesOwnInOrder) {
    Expression_binding other(registry);
    other.addBindingList(registry->compile("visible if [50] == 1").list);
    add("visible if [200@s] == \"x\" or [100.2] == 1 or [100] == 1 or [100@s] == \"x\"");
    std::vector<std::string> keys;
    for (const var_index_s& key : binding.getVarIndexMapKeys(0)) {
        keys.push_back(std::to_string(key.var) + "/" + std::to_string(key.index.m_index_num) + "/" +
                       std::to_string(key.rt));
    }

    EXPECT_THAT(keys, ElementsAre("100/0/1", "100/0/2", "100/1/1", "200/0/2"));
}

TEST_F(Expression_binding_test, TheMapIsSharedByTheEnginesOfARegistry) {
    Expression_binding other(registry);

    EXPECT_EQ(binding.getVarIndexMap(), registry->var_index_map());
    EXPECT_EQ(other.getVarIndexMap(), registry->var_index_map());
}

TEST_F(Expression_binding_test, TheRegistryLivesAsLongAsItsLastEngine) {
    auto shared = std::make_shared<Binding_registry>(&device);
    Expression_binding engine(shared);
    engine.addBindingList(shared->compile("visible if [100] == 1").list);
    shared.reset();
    int flags = Binding::EXECUTE_FLAG;

    EXPECT_EQ(engine.evaluateAllBindingExpressions(&flags), 0);
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_VISIBILITY));
}

}  // namespace
