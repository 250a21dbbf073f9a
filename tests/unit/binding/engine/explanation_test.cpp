// Why an entry is as it is: every rule with what it saw.
#include <gmock/gmock.h>

#include "support/leaf.h"
#include "unit/binding/binding_fixture.h"

using namespace frontpanel;

namespace {

using binding_fixture::Binding_fixture;
using support::key_of;
using support::Leaf;
using support::Leaf_options;

class Explanation : public Binding_fixture {
protected:
    Explanation() {
        device.add_integer(100, 0, 0, 100, 7);
        device.add_integer(101, 0, 0, 100, 0);
        device.add_text(200, 0, 16, "Hall");
        options.pid = 100;
        options.index = &no_level;
    }

    Leaf_options options;
};

TEST_F(Explanation, EveryRuleIsToldWithTheValuesThatItSaw) {
    Leaf leaf("Gain", nullptr, options);
    registry->set_product_options({{"gps", 1}});
    bind(leaf,
         "visible if value > 3 and value < 9\n"
         "range 0..[100] * 2 if has_option(\"gps\") and [200@s] == \"Hall\"\n"
         "keys 1, 3..5 if [101] == 1\n"
         "set [101] = [100] + 1; set [200@s] = \"n {value}\"\n"
         "warn \"at {value}\"; access read-only if [100] == 7\n"
         "range 0..1 if 1 / [101] == 2\n"
         "visible if [999] == 1 or [100] == 1");
    const std::optional<Binding_explanation> explanation = registry->explain(leaf);

    ASSERT_TRUE(explanation);
    EXPECT_EQ(explanation->text(),
              "Gain\n"
              "  line 1: visible if value > 3 and value < 9\n"
              "    value is 7\n"
              "    holds: visible\n"
              "  line 2: range 0..[100] * 2 if has_option(\"gps\") and [200@s] == \"Hall\"\n"
              "    has_option(\"gps\") is 1\n"
              "    [200@s] is \"Hall\"\n"
              "    [100] is 7\n"
              "    holds: 0..14\n"
              "  line 3: keys 1, 3..5 if [101] == 1\n"
              "    [101] is 0\n"
              "    does not hold\n"
              "  line 4: set [101] = [100] + 1\n"
              "    [100] is 7\n"
              "    holds: [101] = 8\n"
              "  line 4: set [200@s] = \"n {value}\"\n"
              "    value is 7\n"
              "    holds: [200@s] = \"n 7\"\n"
              "  line 5: warn \"at {value}\"\n"
              "    value is 7\n"
              "    holds: \"at 7\"\n"
              "  line 5: access read-only if [100] == 7\n"
              "    [100] is 7\n"
              "    holds: read-only\n"
              "  line 6: range 0..1 if 1 / [101] == 2\n"
              "    [101] is 0\n"
              "    failed: division by zero\n"
              "  line 7: visible if [999] == 1 or [100] == 1\n"
              "    [999] is unreadable\n"
              "    failed: cannot read [999]: device result 1\n");
}

TEST_F(Explanation, TheSuggestionsThatStandAreTold) {
    Leaf leaf("Gain", nullptr, options);
    leaf.refreshes_base = true;
    bind(leaf, "visible if value > 9; range 0..4 if [101] == 0");
    refresh(leaf);
    const Binding_explanation explanation = *registry->explain(leaf);

    EXPECT_EQ(explanation.entry, "Gain");
    ASSERT_EQ(explanation.rules.size(), 2u);
    EXPECT_EQ(explanation.rules[0].outcome, Rule_explanation::Outcome::DOES_NOT_HOLD);
    EXPECT_EQ(explanation.rules[0].kind, SUGGESTION_VISIBILITY);
    EXPECT_EQ(explanation.rules[1].outcome, Rule_explanation::Outcome::HOLDS);
    EXPECT_THAT(explanation.suggestions, testing::ElementsAre("hidden (new)", "range 0..4 (new)"));
}

TEST_F(Explanation, AnExplanationChangesNothing) {
    Leaf leaf("Gain", nullptr, options);
    Expression_binding* const engine = bind(leaf, "visible if value == 1; set [101] = 5 if [999]");
    registry->explain(leaf);

    EXPECT_FALSE(engine->suggestionUpdated(63));
    EXPECT_TRUE(engine->errors().empty());
    EXPECT_EQ(device.integer(101, 0), 0);
    evaluate(*engine);
    const std::vector<std::string> errors = engine->errors();
    registry->explain(leaf);
    EXPECT_EQ(engine->errors(), errors);
}

TEST_F(Explanation, AnEntryWithoutEngineHasNone) {
    Leaf bound("Gain", nullptr, options);
    bind(bound, "visible if 1");
    Leaf leaf("Plain", nullptr, options);
    EXPECT_FALSE(registry->explain(leaf));
}

TEST_F(Explanation, OfSeveralEnginesOfAnEntryTheFirstThatLivesAnswers) {
    Leaf leaf("Gain", nullptr, options);
    bind(leaf, "range 0..1");
    Expression_binding second(registry);
    second.addBindingList(compiled("range 0..2"));
    second.setDataEntry(&leaf);
    EXPECT_EQ(registry->explain(leaf)->rules.at(0).source, "range 0..1");
    Leaf other("Other", nullptr, options);
    EXPECT_FALSE(registry->explain(other));
    second.setDataEntry(&other);
    EXPECT_EQ(registry->explain(other)->rules.at(0).source, "range 0..2");
    second.setDataEntry(nullptr);
    EXPECT_FALSE(registry->explain(other));
    EXPECT_EQ(registry->explain(leaf)->rules.at(0).source, "range 0..1");
}

}  // namespace
