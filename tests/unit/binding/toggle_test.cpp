// Conditions of the homescreen: the library's toggle and the engine's rule agree on every value.
#include <frontpanel_binding/caching_device.h>

#include <array>
#include <random>

#include "unit/binding/binding_fixture.h"

class FPData {};

namespace {

using namespace binding_fixture;

class Toggle_test : public Binding_fixture {
protected:
    struct Declared {
        const char* name;
        uint32_t pid;
        int min;
        int max;
    };
    static constexpr Declared PARAMETERS[] = {{"a", 701, -4, 4},
                                              {"b", 702, 0, 9},
                                              {"wide", 703, INT32_MIN, INT32_MAX},
                                              {"zero", 704, -1, 1}};

    void SetUp() override {
        for (const Declared& each : PARAMETERS) {
            toggle_registry->parameters().declare(each.name,
                                                  {INTEGER, each.pid, {}, each.min, each.max, 0});
            toggle_registry->watch({INTEGER, each.pid, {}});
            memory.add_integer(each.pid, 0, each.min, each.max, 0);
        }
        toggle_registry->set_product_options({{"gps", 1}, {"ptp", 0}});
    }
    void set(const std::array<int, 4>& values) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            memory.set_integer(PARAMETERS[i].pid, 0, values[i]);
        }
        toggle_registry->poll();
    }
    std::array<int, 4> random_values() {
        std::array<int, 4> values{};
        for (std::size_t i = 0; i < values.size(); ++i) {
            const bool is_end = pick(4) == 0;
            const Declared& each = PARAMETERS[i];
            values[i] = is_end ? (pick(2) == 0 ? each.min : each.max)
                               : std::uniform_int_distribution<int>(each.min, each.max)(random);
        }
        return values;
    }
    int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); }

    std::string number() {
        static const std::vector<std::string> LEAVES{"[a]",
                                                     "[b]",
                                                     "[zero]",
                                                     "[wide]",
                                                     "0",
                                                     "1",
                                                     "-2",
                                                     "3",
                                                     "7",
                                                     "2147483648",
                                                     "[a]",
                                                     "[b]",
                                                     "has_option(\"gps\")",
                                                     "has_option(\"ptp\")"};
        return LEAVES[static_cast<std::size_t>(pick(static_cast<int>(LEAVES.size())))];
    }
    std::string sum(int depth) {
        if (depth == 0) {
            return number();
        }
        const auto part = [&] { return sum(depth - 1); };
        switch (pick(12)) {
            case 0:
                return "(" + part() + " + " + part() + ")";
            case 1:
                return part() + " - (" + part() + ")";
            case 2:
                return "(" + part() + ") * (" + part() + ")";
            case 3:
                return "(" + part() + ") / (" + part() + ")";
            case 4:
                return "(" + part() + ") % (" + part() + ")";
            case 5:
                return "min(" + part() + ", " + part() + ", " + part() + ")";
            case 6:
                return "max(" + part() + ", " + part() + ")";
            case 7:
                return "abs(" + part() + ")";
            case 8:
                return "-(" + part() + ")";
            case 9:
                return "!(" + part() + ")";
            case 10:
                return "(" + condition(depth - 1) + " ? " + part() + " : " + part() + ")";
            default:
                return number();
        }
    }
    std::string condition(int depth) {
        static const std::vector<std::string> SIGNS{" == ", " != ", " < ", " <= ", " > ", " >= "};
        const auto part = [&] { return sum(std::max(depth - 1, 0)); };
        const auto truth = [&] { return "(" + condition(depth - 1) + ")"; };
        switch (depth == 0 ? 0 : pick(8)) {
            case 1:
                return truth() + (pick(2) == 0 ? " and " : " && ") + truth();
            case 2:
                return truth() + (pick(2) == 0 ? " or " : " || ") + truth();
            case 3:
                return "not " + truth();
            case 4:
                return "(" + part() + ") in " + part() + ".." + part();
            case 5:
                return "(" + part() + ") in {" + part() + ", " + part() + ".." + part() + ", " +
                       part() + "}";
            case 6:
                return part();
            default:
                return part() + SIGNS[static_cast<std::size_t>(pick(6))] + part();
        }
    }

    // 1 or 0; 0 for a fault.
    int by_rule(const std::string& condition) {
        const Index_t no_index{};
        Number_entry entry("Ruled", 799, no_index, 0, 1);
        auto* const engine = new Expression_binding(toggle_registry);
        engine->addBindingList(toggle_registry->compile("visible if " + condition).list);
        entry.Set_binding_object(engine);
        const auto explanation = toggle_registry->explain(entry);
        return explanation->rules.at(0).outcome == Rule_explanation::Outcome::HOLDS ? 1 : 0;
    }
    int by_toggle(const std::string& expression) {
        static const Index_t NO_INDEX{};
        Node_entry housed("Housed", "Housed", &NO_INDEX, nullptr, Data_entry::VISIBLE_ALL,
                          Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr);
        Link_entry link(&housed);
        link.setAsHomescreenEntry(expression, toggle_registry->var_index_map(), &application);
        return link.CheckToggleState();
    }

    Memory_device memory;
    std::shared_ptr<Binding_registry> toggle_registry = std::make_shared<Binding_registry>(&memory);
    FPData application;
    std::mt19937 random{20240517};
};

TEST_F(Toggle_test, AConditionIsWrittenInTheLanguageOfToggles) {
    const std::pair<const char*, const char*> CASES[] = {
        {"[a] == 1 and [b] > 3", "A=[701]==1&&[702]>3"},
        {"[a] == 1 or not [b] > 3 && [b]", "A=[701]==1||[702]>3==0&&[702]!=0"},
        {"[a] - ([b] - 1) != 0", "A=[701]-([702]-1)!=0"},
        {"[a] in {1, 3}", "A=[701]==1||[701]==3"},
        {"[a] % 2 == 1", "A=fmod([701],2)==1"},
        {"has_option(\"gps\") and [a]", "A=1&&[701]!=0"},
        {"abs([a]) > 2", "A=fabs([701])>2"},
        {"6 / [zero] == 6", "A_1=([704]+([704]==0));A=!([704]==0)&&(6-fmod(6,A_1))/A_1==6"},
        {"[a] ? [b] : [zero]", "A=([701]?[702]:[704])"},
    };
    for (const auto& [condition, expression] : CASES) {
        const Toggle_result toggle = toggle_registry->compile_toggle(condition);
        ASSERT_FALSE(toggle.error) << condition << ": " << toggle.error->text();
        EXPECT_EQ(toggle.expression, expression) << condition;
    }
}

TEST_F(Toggle_test, WhatATogglesLanguageCannotHoldIsRefusedAtItsPlace) {
    toggle_registry->parameters().declare("label", {STRING, 710, {}, 0, 0, 8});
    const std::pair<const char*, const char*> CASES[] = {
        {"[a] == 1 and [label] == \"x\"",
         "line 1, column 14: a condition of the homescreen compares numbers, not texts"},
        {"[wide] * [wide] > 3",
         "line 1, column 1: this number may be beyond 9007199254740992, the largest in a condition "
         "of the homescreen"},
        {"[a] < 9007199254740993",
         "line 1, column 7: this number may be beyond 9007199254740992, the largest in a condition "
         "of the homescreen"},
        {"[gps] == 1", "line 1, column 1: unknown parameter \"[gps]\""},
        {"[a] == 1; [b] == 2",
         "line 1, column 9: expected one condition; \"and\" and \"or\" join several, found \";\""},
        {"value > 3", "line 1, column 1: this entry has no value of its own"},
        {"visible if [a]",
         "line 1, column 1: expected a number, a text, a [parameter], \"value\", a function or "
         "\"(\", found \"visible\""},
    };
    for (const auto& [condition, error] : CASES) {
        const Toggle_result toggle = toggle_registry->compile_toggle(condition);
        ASSERT_TRUE(toggle.error) << condition;
        EXPECT_EQ(toggle.error->text(), error) << condition;
    }
}

TEST_F(Toggle_test, AFaultThatTheRuleNeverMeetsIsNoneOfTheToggle) {
    set({0, 0, 0, 0});
    for (const auto& [condition, expected] :
         {std::pair("[zero] == 0 or 5 / [zero] > 1", 1),
          std::pair("[zero] != 0 and 5 / [zero] > 1", 0), std::pair("5 / [zero] > -100", 0),
          std::pair("[b] in {0, 5 / [zero]}", 1), std::pair("[b] in {5 / [zero], 0}", 0),
          std::pair("[zero] ? 5 / [zero] : 1", 1)}) {
        const Toggle_result toggle = toggle_registry->compile_toggle(condition);
        ASSERT_FALSE(toggle.error) << condition;
        const support::Captured captured =
            support::capture(0, [&, text = condition, state = expected] {
                EXPECT_EQ(by_toggle(toggle.expression), state) << text;
            });
        EXPECT_EQ(captured.err, "") << condition;
    }
}

TEST_F(Toggle_test, AToggleAndARuleAgreeOnRandomConditionsAndValues) {
    constexpr int CONDITIONS = 1500;
    constexpr int VALUES = 8;
    int compared = 0;
    for (int i = 0; i < CONDITIONS; ++i) {
        const std::string condition = this->condition(1 + pick(3));
        const Toggle_result toggle = toggle_registry->compile_toggle(condition);
        if (toggle.error) {
            EXPECT_TRUE(toggle.error->message.find("may be beyond") != std::string::npos ||
                        toggle.error->message.find("too large") != std::string::npos)
                << condition << ": " << toggle.error->message;
            continue;
        }
        for (int j = 0; j < VALUES; ++j) {
            set(random_values());
            ASSERT_EQ(by_toggle(toggle.expression), by_rule(condition)) << condition << "\n"
                                                                        << toggle.expression;
            ++compared;
        }
    }
    EXPECT_GT(compared, CONDITIONS * VALUES / 2);
}

}  // namespace
