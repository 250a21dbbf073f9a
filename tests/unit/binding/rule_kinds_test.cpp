#include "rule_kinds.h"

#include <frontpanel_binding/expression_binding.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace frontpanel;

namespace {

std::string words() {
    std::string all;
    for (const Rule_kind& kind : rule_kinds()) {
        all += std::string(kind.word) + " ";
    }
    return all;
}

TEST(Rule_kinds_test, KindsAreInTheOrderOfTheirEvaluation) {
    EXPECT_EQ(words(), "visible range keys set warn access ");
}

TEST(Rule_kinds_test, EachKindIsFoundByItsSuggestion) {
    for (const Rule_kind& kind : rule_kinds()) {
        EXPECT_EQ(find_rule_kind(kind.suggestion), &kind);
        EXPECT_EQ(rule_word(kind.suggestion), kind.word);
        EXPECT_EQ(rule_entries(kind.suggestion), kind.entries);
    }
    for (const int number : {-1, 0, 3, 64}) {
        EXPECT_EQ(find_rule_kind(number), nullptr) << number;
    }
}

// One rule of each kind, as short as its row allows.
std::string rule_of(const Rule_kind& kind) {
    static const char* const OPERANDS[] = {"", "0..1", "0", "\"text\"", "[101] = 1"};
    std::string rule = std::string(kind.word) + " " + OPERANDS[static_cast<int>(kind.operands)];
    if (kind.choices != nullptr) {
        rule += kind.choices->word;
    }
    return rule + (kind.needs_condition ? " if [100]" : "");
}

TEST(Rule_kinds_test, AnEngineOffersTheSuggestionOfEachKind) {
    const auto registry = std::make_shared<Binding_registry>();
    for (const Rule_kind& kind : rule_kinds()) {
        SCOPED_TRACE(rule_of(kind));
        const Compile_result compiled = registry->compile(rule_of(kind));
        ASSERT_TRUE(compiled.ok()) << compiled.error->text();
        EXPECT_EQ(compiled.notes.at(0).kind, kind.suggestion);
        Expression_binding binding(registry);
        EXPECT_FALSE(binding.offersSuggestion(kind.suggestion));
        binding.addBindingList(compiled.list);
        EXPECT_TRUE(binding.offersSuggestion(kind.suggestion));
        EXPECT_TRUE(binding.errors().empty());
    }
}

TEST(Rule_kinds_test, AKindNamesTheEntriesThatItIsFor) {
    EXPECT_EQ(rule_entries(SUGGESTION_VISIBILITY), Rule_entries::ALL);
    EXPECT_EQ(rule_entries(SUGGESTION_RANGE), Rule_entries::RANGES);
    EXPECT_EQ(rule_entries(SUGGESTION_KEYS), Rule_entries::ENUMERATIONS);
    EXPECT_EQ(rule_entries(SUGGESTION_SET), Rule_entries::ALL);
    EXPECT_EQ(rule_entries(SUGGESTION_WARNING), Rule_entries::WITH_VALUE);
    EXPECT_EQ(rule_entries(SUGGESTION_ACCESS), Rule_entries::WITH_VALUE);
}

}  // namespace
