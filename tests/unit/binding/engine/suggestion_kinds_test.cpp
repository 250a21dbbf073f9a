// Allowed keys, writes, warnings, access rights and computed ranges of an engine by itself.
#include <gmock/gmock.h>

#include <cstring>

#include "support/leaf.h"
#include "unit/binding/binding_fixture.h"

using namespace frontpanel;

namespace {

using binding_fixture::Binding_fixture;
using binding_fixture::number;
using binding_fixture::Option_entry;
using support::capture;
using support::index_of;
using support::key_of;
using support::Leaf;
using testing::ElementsAre;
using testing::IsEmpty;

using Lists = std::vector<std::vector<int>>;

constexpr unsigned int MODE = 100;
constexpr unsigned int LIMIT = 101;
constexpr unsigned int TITLE = 200;

class Suggestion_kinds : public Binding_fixture {
protected:
    Suggestion_kinds() {
        device.add_integer(MODE, 0, -2147483647 - 1, 2147483647, 0);
        device.add_integer(LIMIT, 0, -2147483647 - 1, 2147483647, 0);
        device.add_text(TITLE, 0, 256, "Studio");
    }

    void add(const std::string& source) { engine.addBindingList(compiled(source)); }
    int evaluate(int flags = Binding::EXECUTE_FLAG) {
        return Binding_fixture::evaluate(engine, flags);
    }
    template <typename Value>
    Value told(Suggestion_kind kind) {
        Value value{};
        engine.getSuggestion(kind, &value);
        return value;
    }
    Lists ranges() { return told<Lists>(SUGGESTION_RANGE); }
    Lists keys() { return told<Lists>(SUGGESTION_KEYS); }
    // "100=5 200=\"Hall\""
    std::string writes() {
        std::string text;
        for (const GetSetS& request : told<std::vector<GetSetS>>(SUGGESTION_SET)) {
            int32_t value = 0;
            std::memcpy(&value, request.buffer, sizeof value);
            const std::string written =
                request.rt == STRING
                    ? "\"" +
                          std::string(reinterpret_cast<const char*>(request.buffer),
                                      request.length) +
                          "\""
                    : std::to_string(value);
            text += (text.empty() ? "" : " ") + std::to_string(request.varid) + "/" +
                    std::to_string(request.varidx) + "=" + written;
        }
        return text;
    }

    Expression_binding engine{registry};
};

// ---- ranges whose ends are computed

TEST_F(Suggestion_kinds, EndsOfRangesAreExpressions) {
    device.set_integer(LIMIT, 0, 12);
    add("range [101] - 10..[101] * 2, 100..[101]");
    evaluate();
    EXPECT_EQ(ranges(), (Lists{{2, 100}}));

    device.set_integer(LIMIT, 0, 20);
    evaluate();
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_RANGE));
    EXPECT_EQ(ranges(), (Lists{{10, 100}}));
}

TEST_F(Suggestion_kinds, ARangeBeyondThirtyTwoBitsIsCutToThem) {
    add("range [101] - 5000000000..-3, 7..[101] + 5000000000");
    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(ranges(), (Lists{{-2147483647 - 1, -3}, {7, 2147483647}}));
}

TEST_F(Suggestion_kinds, ARangeWithoutANumberOfThirtyTwoBitsIsAMistake) {
    engine.set_fallback_range(0, 9);
    add("range 0..5");
    evaluate();
    engine.clearSuggestion(SUGGESTION_RANGE);
    add("range 3000000000 + [101]..4000000000 + [101]");

    EXPECT_EQ(evaluate(), -1);
    EXPECT_THAT(engine.errors(),
                ElementsAre("line 1, range 3000000000 + [101]..4000000000 + [101]: "
                            "3000000000..4000000000 holds no 32-bit number"));
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_RANGE));
    EXPECT_EQ(ranges(), (Lists{{0, 5}}));
}

TEST_F(Suggestion_kinds, AFaultNamesTheRuleAndItsLine) {
    add("visible if [100] == 0\n\nrange 0..10 / [101]");

    EXPECT_EQ(evaluate(), -1);
    EXPECT_THAT(engine.errors(), ElementsAre("line 3, range 0..10 / [101]: division by zero"));
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_VISIBILITY));
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_RANGE));
}

// ---- keys

TEST_F(Suggestion_kinds, KeysAreOfferedAndUpdatedUnderTheKindThatEntriesAskFor) {
    add("keys 1, 3 if [100] == 0; keys 2 if [101] == 0");
    EXPECT_TRUE(engine.offersSuggestion(SUGGESTION_RANGE));
    EXPECT_TRUE(engine.offersSuggestion(SUGGESTION_KEYS));
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_RANGE | SUGGESTION_KEYS));

    evaluate();
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_RANGE));
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_KEYS));
    EXPECT_EQ(keys(), (Lists{{1, 2, 3}}));
    EXPECT_EQ(ranges(), Lists());

    engine.clearSuggestion(SUGGESTION_RANGE);
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_RANGE));
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_KEYS));
    evaluate();
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_RANGE | SUGGESTION_KEYS));

    device.set_integer(MODE, 0, 1);
    evaluate();
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_RANGE));
    EXPECT_EQ(keys(), (Lists{{2}}));
}

TEST_F(Suggestion_kinds, ClearingTheKeysThemselvesLeavesTheAnnouncement) {
    add("keys 1");
    evaluate();
    engine.clearSuggestion(SUGGESTION_KEYS);

    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_KEYS));
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_RANGE));
}

TEST_F(Suggestion_kinds, KeysThatDoNotChangeStayUpdatedUntilTheyAreCleared) {
    add("keys 1");
    evaluate();
    evaluate();

    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_RANGE));
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_KEYS));
}

TEST_F(Suggestion_kinds, WithoutARuleThatHoldsAllKeysOfTheEntryAreAllowed) {
    Option_entry entry("Source", 120, no_level);
    device.set_integer(MODE, 0, 1);
    add("keys 1 if [100] == 0");
    engine.setDataEntry(&entry);
    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(keys(), (Lists{{0, 1, 2, 3}}));
    engine.setDataEntry(nullptr);
}

TEST_F(Suggestion_kinds, KeysThatTheEntryDoesNotHaveAreLeftOut) {
    Option_entry entry("Source", 120, no_level);
    engine.setDataEntry(&entry);
    add("keys [101] - 7..1, 3..2000000000, 1");
    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(keys(), (Lists{{0, 1, 3}}));
    engine.setDataEntry(nullptr);
}

// An empty list would allow all of them.
TEST_F(Suggestion_kinds, OfKeysThatTheEntryDoesNotHaveAtAllOneStays) {
    Option_entry entry("Source", 120, no_level);
    engine.setDataEntry(&entry);
    add("keys 7..9");
    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(keys(), (Lists{{7}}));
    engine.setDataEntry(nullptr);
}

TEST_F(Suggestion_kinds, WithoutAnEntryTheNumberOfKeysIsBounded) {
    add("keys 0..4095");
    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(keys()[0].size(), 4096u);
    add("keys 0..2000000000");
    EXPECT_EQ(evaluate(), -1);
    EXPECT_THAT(engine.errors(), ElementsAre("line 1, keys 0..2000000000: more than 4096 keys"));
}

// However often a text names them, in however many rules.
TEST_F(Suggestion_kinds, KeysThatAreNamedAgainTakeNoRoom) {
    std::string source = "keys 0..4000";
    for (int i = 0; i < 1000; ++i) {
        source += ", 5..4000, [100] + 5..[100] + 4005";
    }
    add(source);
    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(keys()[0].size(), 4006u);
    EXPECT_EQ(keys()[0].back(), 4005);
    add("keys 4000..4095; keys 4096");
    EXPECT_EQ(evaluate(), -1);
    EXPECT_THAT(engine.errors(), ElementsAre("the rules allow more than 4096 keys"));
    EXPECT_EQ(keys()[0].size(), 4006u);
}

TEST_F(Suggestion_kinds, KeysFromLimitToLimitAreTooMany) {
    add("keys [100] - 9223372036854775807 - 1..[100] + 9223372036854775807");
    EXPECT_EQ(evaluate(), -1);
    EXPECT_THAT(engine.errors(), ElementsAre(testing::HasSubstr(": more than 4096 keys")));
}

// ---- writes

TEST_F(Suggestion_kinds, WritesOfTheRulesThatHoldAreToldInOrder) {
    add("set [101] = [100] + 5; set [7.3.1] = 1 if [100] == 9\n"
        "set [200@s] = \"Hall {[100]}\"; set [8.2] = -1");
    EXPECT_TRUE(engine.offersSuggestion(SUGGESTION_SET));
    EXPECT_EQ(evaluate(), 0);

    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_SET));
    EXPECT_EQ(writes(), "101/0=5 200/0=\"Hall 0\" 8/2=-1");
    const auto requests = told<std::vector<GetSetS>>(SUGGESTION_SET);
    EXPECT_EQ(requests[0].rt, INTEGER);
    EXPECT_EQ(requests[0].length, 4u);
    EXPECT_EQ(requests[1].rt, STRING);
    EXPECT_EQ(requests[1].length, 6u);

    device.set_integer(MODE, 0, 9);
    evaluate();
    EXPECT_EQ(writes(), "101/0=14 7/259=1 200/0=\"Hall 9\" 8/2=-1");
}

TEST_F(Suggestion_kinds, WritesAreNewOnlyWhenTheListDiffers) {
    add("set [101] = 1 if [100] > 3");
    evaluate();
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_SET)) << "nothing to write is no news";

    device.set_integer(MODE, 0, 4);
    evaluate();
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_SET));
    engine.clearSuggestion(SUGGESTION_SET);
    device.set_integer(MODE, 0, 5);
    evaluate();
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_SET));

    device.set_integer(MODE, 0, 0);
    evaluate();
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_SET));
    EXPECT_EQ(writes(), "");
    engine.clearSuggestion(SUGGESTION_SET);
    device.set_integer(MODE, 0, 4);
    evaluate();
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_SET));
}

TEST_F(Suggestion_kinds, ANumberBeyondThirtyTwoBitsIsNotWritten) {
    add("set [101] = 5\nset [101] = 2147483647 + [100]");
    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(writes(), "101/0=5 101/0=2147483647");
    engine.clearSuggestion(SUGGESTION_SET);

    device.set_integer(MODE, 0, 1);
    EXPECT_EQ(evaluate(), -1);
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_SET));
    EXPECT_THAT(engine.errors(), ElementsAre("line 2, set [101] = 2147483647 + [100]: 2147483648 "
                                             "is not a 32-bit number"));
}

TEST_F(Suggestion_kinds, ATextThatDoesNotFitAWriteIsNotWritten) {
    device.set_text(TITLE, 0, std::string(128, 'x'));
    add("set [201@s] = [200@s]");
    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(told<std::vector<GetSetS>>(SUGGESTION_SET)[0].length, 128u);
    engine.clearSuggestion(SUGGESTION_SET);

    device.set_text(TITLE, 0, std::string(129, 'x'));
    EXPECT_EQ(evaluate(), -1);
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_SET));
    EXPECT_THAT(engine.errors(),
                ElementsAre("line 1, set [201@s] = [200@s]: a text of 129 bytes cannot be written, "
                            "at most 128"));
}

TEST_F(Suggestion_kinds, AnEmptyTextIsAWriteOfNoBytes) {
    add("set [200@s] = \"\"");
    evaluate();

    ASSERT_EQ(told<std::vector<GetSetS>>(SUGGESTION_SET).size(), 1u);
    EXPECT_EQ(told<std::vector<GetSetS>>(SUGGESTION_SET)[0].length, 0u);
}

TEST_F(Suggestion_kinds, AnEntryDoesNotDependOnWhatItOnlyWrites) {
    Leaf leaf("Gain");
    add("set [101] = [100]");
    engine.setDataEntry(&leaf);

    EXPECT_EQ(engine.getVarIndexMapKeys(0).size(), 1u);
    EXPECT_EQ(registry->var_index_map()->count(key_of(INTEGER, LIMIT, no_level)), 0u);
    engine.setDataEntry(nullptr);
}

// ---- warnings

TEST_F(Suggestion_kinds, EveryWarningThatHoldsIsToldWithItsValues) {
    add("warn \"Gain {[100]} of {[200@s]}\" if [100] > 80; warn \"{{none}}\" if [100] > 90; "
        "warn \"Always\"");
    engine.setOverrideVarid(key_of(INTEGER, MODE, no_level), number(85));
    EXPECT_TRUE(engine.offersSuggestion(SUGGESTION_WARNING));
    EXPECT_EQ(evaluate(5), 0);

    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_WARNING));
    EXPECT_THAT(told<std::vector<std::string>>(SUGGESTION_WARNING),
                ElementsAre("Gain 85 of Studio", "Always"));
}

TEST_F(Suggestion_kinds, TheSameWarningIsNoNewsUntilATryWithout) {
    add("warn \"High\" if [100] > 80; warn \"Very\" if [100] > 90");
    const auto is_news = [&](int value) {
        engine.setOverrideVarid(key_of(INTEGER, MODE, no_level), number(value));
        evaluate(5);
        const bool updated = engine.suggestionUpdated(SUGGESTION_WARNING);
        engine.clearSuggestion(SUGGESTION_WARNING);
        EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_WARNING));
        return updated;
    };
    EXPECT_TRUE(is_news(85));
    EXPECT_FALSE(is_news(85));
    EXPECT_FALSE(is_news(86)) << "the texts count, not the value";
    EXPECT_TRUE(is_news(95));
    EXPECT_TRUE(is_news(85));
    EXPECT_FALSE(is_news(80)) << "that they end is no news";
    EXPECT_TRUE(is_news(85));
}

TEST_F(Suggestion_kinds, ArmedWarningsAreNewsAgain) {
    add("warn \"Always\"");
    evaluate(5);
    engine.clearSuggestion(SUGGESTION_WARNING);
    evaluate(5);
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_WARNING));
    registry->arm_warnings();
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_WARNING));
    evaluate(5);
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_WARNING));
    engine.clearSuggestion(SUGGESTION_WARNING);
    evaluate(5);
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_WARNING));
}

// Who has not taken the warnings has not shown them.
TEST_F(Suggestion_kinds, WarningsStayNewUntilTheyAreCleared) {
    add("warn \"High\" if [100] > 80");
    engine.setOverrideVarid(key_of(INTEGER, MODE, no_level), number(85));
    evaluate(5);
    evaluate(5);
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_WARNING));
    engine.setOverrideVarid(key_of(INTEGER, MODE, no_level), number(80));
    evaluate(5);
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_WARNING));
}

TEST_F(Suggestion_kinds, AWarningThatCannotBeJudgedSilencesNoOther) {
    add("warn \"Lost\" if [999] > 1\nwarn \"High\" if [100] > 80\nwarn \"Part {1 / [101]}\"");
    engine.setOverrideVarid(key_of(INTEGER, MODE, no_level), number(85));

    EXPECT_EQ(evaluate(5), -1);
    EXPECT_THAT(told<std::vector<std::string>>(SUGGESTION_WARNING), ElementsAre("High"));
    EXPECT_THAT(
        engine.errors(),
        ElementsAre("line 1, warn \"Lost\" if [999] > 1: cannot read [999]: device result 1",
                    "line 3, warn \"Part {1 / [101]}\": division by zero"));
}

// ---- access

TEST_F(Suggestion_kinds, TheFirstAccessRuleThatHoldsCounts) {
    add("access read-only if [100] == 1; access write-only if [100] >= 1");
    const auto access = [&] { return told<Data_entry::Data_access>(SUGGESTION_ACCESS); };
    EXPECT_TRUE(engine.offersSuggestion(SUGGESTION_ACCESS));

    device.set_integer(MODE, 0, 1);
    evaluate();
    EXPECT_TRUE(engine.suggestionUpdated(SUGGESTION_ACCESS));
    EXPECT_EQ(access(), Data_entry::READ_ONLY);
    engine.clearSuggestion(SUGGESTION_ACCESS);
    evaluate();
    EXPECT_FALSE(engine.suggestionUpdated(SUGGESTION_ACCESS));
    device.set_integer(MODE, 0, 2);
    evaluate();
    EXPECT_EQ(access(), Data_entry::WRITE_ONLY);
}

TEST_F(Suggestion_kinds, BeforeAnEvaluationTheAccessRightIsLeftAsItIs) {
    add("access read-only");
    Data_entry::Data_access access = Data_entry::WRITE_ONLY;
    engine.getSuggestion(SUGGESTION_ACCESS, &access);

    EXPECT_EQ(access, Data_entry::WRITE_ONLY);
    EXPECT_EQ(keys(), (Lists{{}}));
    EXPECT_THAT(told<std::vector<std::string>>(SUGGESTION_WARNING), IsEmpty());
    EXPECT_EQ(writes(), "");
}

// ---- the entry's own value

TEST_F(Suggestion_kinds, TheOwnValueIsTheParameterOfTheEntry) {
    const Index_t index = no_level;
    engine.setControlInfo(MODE, &index, Data_entry::RANGE_LEAF);
    add("range value - 1..value + 1");
    device.set_integer(MODE, 0, 50);
    EXPECT_EQ(evaluate(), 0);
    EXPECT_EQ(ranges(), (Lists{{49, 51}}));
}

TEST_F(Suggestion_kinds, AnEntryWithoutParameterHasNoValue) {
    add("visible if value == 1");
    EXPECT_EQ(evaluate(), -1);
    EXPECT_THAT(engine.errors(),
                ElementsAre("line 1, visible if value == 1: the entry has no value"));
}

TEST_F(Suggestion_kinds, AnEntryDependsOnItsOwnValueWhenItsRulesReadIt) {
    Leaf leaf("Gain");
    const var_index_s own = key_of(INTEGER, MODE, no_level);
    engine.setControlInfo(MODE, &no_level, Data_entry::RANGE_LEAF);
    add("visible if [101] == 0");
    engine.setDataEntry(&leaf);
    EXPECT_THAT(registry->var_index_map()->at(own).binding_dependant_entries, IsEmpty());

    add("visible if value == 1");
    EXPECT_THAT(registry->var_index_map()->at(own).binding_dependant_entries, ElementsAre(&leaf));
    EXPECT_EQ(engine.getVarIndexMapKeys(0).size(), 2u);
    engine.setDataEntry(nullptr);
    EXPECT_THAT(registry->var_index_map()->at(own).binding_dependant_entries, IsEmpty());
}

// ---- product options

TEST_F(Suggestion_kinds, ProductOptionsAreJudgedAsEntriesJudgeThem) {
    struct Case {
        const char* option;
        bool has;
    };
    registry->set_product_options({{"gps", 1}, {"ptp", 0}, {"slotn", 4}});
    for (const Case& each : {Case{"gps", true}, Case{"ptp", false}, Case{"slot4", true},
                             Case{"slot5", false}, Case{"slotn", true}, Case{"unheard", false}}) {
        SCOPED_TRACE(each.option);
        Expression_binding judge(registry);
        judge.addBindingList(
            compiled(std::string("visible if has_option(\"") + each.option + "\")"));
        Binding_fixture::evaluate(judge);
        int visibility = 0;
        judge.getSuggestion(SUGGESTION_VISIBILITY, &visibility);
        EXPECT_EQ(visibility, each.has ? VIS_TRUE : VIS_FALSE);
    }
}

TEST_F(Suggestion_kinds, OptionsThatAreToldLaterAreSeen) {
    add("visible if has_option(\"gps\")");
    evaluate();
    EXPECT_EQ(told<int>(SUGGESTION_VISIBILITY), VIS_FALSE);
    registry->set_product_options({{"gps", 1}});
    evaluate();
    EXPECT_EQ(told<int>(SUGGESTION_VISIBILITY), VIS_TRUE);
}

// ---- prints

TEST_F(Suggestion_kinds, EveryKindIsPrintedInALine) {
    Leaf leaf("Gain");
    engine.setDataEntry(&leaf);
    add("visible if 1; range 0..4, 9..9; keys 0, 2..4, 7; set [101] = 5; set [200@s] = \"a\\\"b\"; "
        "access read-only; warn \"High\"");
    evaluate();
    evaluate(5);
    engine.clearSuggestion(SUGGESTION_VISIBILITY);

    EXPECT_EQ(capture(0x20, [&] { engine.printSuggestions(); }).out,
              "Suggested for [Gain]: visible\n"
              "Suggested for [Gain]: range 0..4, 9..9 (new)\n"
              "Suggested for [Gain]: keys 0, 2..4, 7 (new)\n"
              "Suggested for [Gain]: set [101] = 5, [200@s] = \"a\\\"b\" (new)\n"
              "Suggested for [Gain]: warn \"High\" (new)\n"
              "Suggested for [Gain]: access read-only (new)\n");
    engine.setDataEntry(nullptr);
}

}  // namespace
