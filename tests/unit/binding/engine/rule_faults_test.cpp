// Rules that cannot be evaluated: who is told, and how often.
#include <frontpanel_binding/caching_device.h>

#include "unit/binding/binding_fixture.h"

namespace binding_fixture {
namespace {

class Rule_faults : public Binding_fixture {
protected:
    void SetUp() override {
        device.add_integer(5, 0, -100, 100, 0);
        device.add_integer(6, 0, 0, 300, 0);
        device.add_text(7, 0, 4, "");
        registry->parameters().declare("z", {INTEGER, 5, no_level, -100, 100});
        registry->parameters().declare("limit", {INTEGER, 6, no_level, 0, 300});
        Parameter title{STRING, 7, no_level};
        title.length = 4;
        registry->parameters().declare("title", title);
        listen();
    }
    void listen() {
        registry->set_fault_listener([this](const Rule_fault& fault) {
            told.push_back(fault.text());
            last = fault;
        });
    }
    void refuse_writes(uint32_t pid) {
        device.set_fault([pid](const Memory_device::Operation& operation) {
            const bool is_write = operation.kind == Memory_device::Operation_kind::WRITE;
            return is_write && operation.pid == pid ? 42 : 0;
        });
    }
    // What is told of while the device holds `z`.
    std::vector<std::string> told_with(int z) {
        told.clear();
        device.set_integer(5, 0, z);
        registry->poll();
        refresh(entry, &cache);
        return told;
    }

    using Texts = std::vector<std::string>;
    Caching_device cache{device, registry};
    Number_entry entry{"Gain", 6, no_level, 0, 300};
    Texts told;
    Rule_fault last{};
};

TEST_F(Rule_faults, AreToldOnceUntilTheyAreMended) {
    bind(entry, "visible if 10 / [z] > 1");
    const Texts fault{"Gain: line 1, visible if 10 / [z] > 1: division by zero"};
    EXPECT_EQ(told_with(0), fault);
    EXPECT_EQ(told_with(0), Texts());
    EXPECT_EQ(registry->faults().size(), 1U);
    EXPECT_EQ(told_with(3), Texts());
    EXPECT_TRUE(registry->faults().empty());
    EXPECT_EQ(told_with(0), fault);
}

TEST_F(Rule_faults, NameEntryRuleAndPlace) {
    Expression_binding* const engine = bind(entry, "");
    engine->addBindingList(compiled("visible if [z] < 99\nrange 0..10 / [z]"));
    engine->set_rule_places(
        {std::make_shared<const std::string>("menu.json"), {{3, 17}, {3, 40}}, true});
    EXPECT_EQ(told_with(0), (Texts{"menu.json:3:40: Gain: range 0..10 / [z]: division by zero"}));
    EXPECT_EQ(last.entry, &entry);
    EXPECT_EQ(last.rule, 1U);
    EXPECT_EQ(last.cause, Rule_fault::Cause::RULE);
}

TEST_F(Rule_faults, AreNumberedOverAllLists) {
    Expression_binding* const engine = bind(entry, "visible if [z] < 99; range 0..9");
    engine->addBindingList(compiled("range 0..10; range 0..10 / [z]"));
    EXPECT_EQ(told_with(0).size(), 1U);
    EXPECT_EQ(last.rule, 3U);
}

TEST_F(Rule_faults, EachRuleHasItsOwn) {
    bind(entry, "visible if 10 / [z] > 1; range 0..10 / [z]; set [limit] = 1 / [z]");
    EXPECT_EQ(told_with(0).size(), 3U);
    EXPECT_EQ(registry->faults().size(), 3U);
    EXPECT_EQ(told_with(1), Texts());
    EXPECT_TRUE(registry->faults().empty());
}

TEST_F(Rule_faults, ARuleThatNoLongerAppliesIsMended) {
    bind(entry, "set [limit] = 301 if [z] == 1");
    const Texts fault{
        "Gain: line 1, set [limit] = 301 if [z] == 1: 301 is beyond the limits of [limit], 0..300"};
    EXPECT_EQ(told_with(1), fault);
    EXPECT_EQ(told_with(2), Texts());
    EXPECT_EQ(told_with(1), fault);
}

TEST_F(Rule_faults, AWriteBeyondTheDeclaredLimitsIsNotMade) {
    bind(entry, "set [limit] = [z] * 10");
    EXPECT_EQ(told_with(3), Texts());
    EXPECT_EQ(device.integer(6, 0), 30);
    EXPECT_EQ(told_with(-1), (Texts{"Gain: line 1, set [limit] = [z] * 10: -10 is beyond the "
                                    "limits of [limit], 0..300"}));
    EXPECT_EQ(told_with(40), Texts());
    EXPECT_EQ(device.integer(6, 0), 30);
    for (const Memory_device::Write& write : device.writes()) {
        EXPECT_EQ(write.result, Memory_device::DONE);
    }
}

TEST_F(Rule_faults, ATextThatIsTooLongIsNotWritten) {
    bind(entry, "set [title] = \"at {[z]}\"");
    EXPECT_EQ(told_with(1), Texts());
    EXPECT_EQ(device.text(7, 0), "at 1");
    EXPECT_EQ(told_with(10),
              (Texts{"Gain: line 1, set [title] = \"at {[z]}\": a text of 5 bytes is "
                     "too long for [title], at most 4"}));
    EXPECT_EQ(device.text(7, 0), "at 1");
}

TEST_F(Rule_faults, AParameterThatCannotBeReadIsTheDevicesFault) {
    bind(entry, "visible if [z] > 1");
    told_with(2);
    device.set_fault([](const Memory_device::Operation& operation) {
        return operation.kind == Memory_device::Operation_kind::READ && operation.pid == 5 ? 9 : 0;
    });
    EXPECT_EQ(told_with(3),
              (Texts{"Gain: line 1, visible if [z] > 1: cannot read [z]: device result 9"}));
    EXPECT_EQ(last.cause, Rule_fault::Cause::DEVICE);
    device.set_fault(nullptr);
    EXPECT_EQ(told_with(3), Texts());
    EXPECT_TRUE(registry->faults().empty());
}

// The entry asks for the write at each refresh.
TEST_F(Rule_faults, ARefusedWriteIsToldOnceUntilTheDeviceTakesIt) {
    Expression_binding* const engine = bind(entry, "visible if [z] < 99");
    engine->addBindingList(compiled("set [title] = \"a\" if [z] < 0\nset [limit] = 7"));
    refuse_writes(6);
    EXPECT_EQ(told_with(1), (Texts{"Gain: line 2, set [limit] = 7: cannot write [limit] = 7: "
                                   "device result 42"}));
    EXPECT_EQ(last.cause, Rule_fault::Cause::WRITE);
    EXPECT_EQ(last.rule, 2U);
    const std::size_t tries = device.writes().size();
    EXPECT_EQ(told_with(2), Texts());
    EXPECT_GT(device.writes().size(), tries);
    EXPECT_EQ(registry->faults().size(), 1U);
    device.set_fault(nullptr);
    EXPECT_EQ(told_with(3), Texts());
    EXPECT_EQ(device.integer(6, 0), 7);
    EXPECT_TRUE(registry->faults().empty());
}

TEST_F(Rule_faults, ARefusedWriteThatIsNoLongerAskedForIsMended) {
    bind(entry, "set [limit] = 7 if [z] > 0");
    refuse_writes(6);
    EXPECT_EQ(told_with(1).size(), 1U);
    EXPECT_EQ(told_with(0), Texts());
    EXPECT_TRUE(registry->faults().empty());
    EXPECT_EQ(told_with(1).size(), 1U);
}

TEST_F(Rule_faults, EachRefusedWriteOfAListIsTold) {
    bind(entry, "set [limit] = 7\nset [title] = \"a\"");
    device.set_fault([](const Memory_device::Operation& operation) {
        return operation.kind == Memory_device::Operation_kind::WRITE ? 42 : 0;
    });
    EXPECT_EQ(told_with(1),
              (Texts{"Gain: line 1, set [limit] = 7: cannot write [limit] = 7: device result 42",
                     "Gain: line 2, set [title] = \"a\": cannot write [title] = \"a\": device "
                     "result 42"}));
    EXPECT_EQ(told_with(2), Texts());
}

TEST_F(Rule_faults, AnExplanationMarksTheRuleWithPlaceAndReason) {
    Expression_binding* const engine = bind(entry, "");
    engine->addBindingList(compiled("visible if 10 / [z] > 1; set [limit] = 7"));
    engine->set_rule_places(
        {std::make_shared<const std::string>("menu.json"), {{3, 17}, {3, 40}}, true});
    refuse_writes(6);
    told_with(0);
    EXPECT_EQ(engine->explain().text(),
              "Gain\n"
              "  line 1: visible if 10 / [z] > 1\n"
              "    [z] is 0\n"
              "    failed: division by zero\n"
              "    fault: menu.json:3:17: division by zero\n"
              "  line 1: set [limit] = 7\n"
              "    holds: [limit] = 7\n"
              "    fault: menu.json:3:40: cannot write [limit] = 7: device result 42\n");
}

TEST_F(Rule_faults, OfAWarningAreToldWhenAValueIsTried) {
    bind(entry, "warn \"small\" if 10 / value > 5\nwarn \"some\" if value > 0");
    EXPECT_EQ(told_with(0), Texts());
    const int zero = 0;
    entry.Set_value(&zero, sizeof zero);
    EXPECT_EQ(told, (Texts{"Gain: line 1, warn \"small\" if 10 / value > 5: division by zero"}));
    entry.Set_value(&zero, sizeof zero);
    EXPECT_EQ(told.size(), 1U);
    const int three = 3;
    entry.Set_value(&three, sizeof three);
    EXPECT_TRUE(registry->faults().empty());
}

TEST_F(Rule_faults, AnExplanationTellsNothingButMarksTheRule) {
    Expression_binding* const engine = bind(entry, "visible if 10 / [z] > 1");
    const Binding_explanation explanation = engine->explain();
    EXPECT_EQ(explanation.rules.at(0).outcome, Rule_explanation::Outcome::FAILED);
    EXPECT_NE(explanation.text().find("failed: division by zero"), std::string::npos);
    EXPECT_TRUE(told.empty());
    EXPECT_TRUE(registry->faults().empty());
}

TEST_F(Rule_faults, ThatStandAreToldToANewListener) {
    bind(entry, "visible if 10 / [z] > 1");
    told_with(0);
    told.clear();
    listen();
    EXPECT_EQ(told.size(), 1U);
}

TEST_F(Rule_faults, StandWithoutAListenerAndEndWithTheirEntry) {
    registry->set_fault_listener(nullptr);
    {
        Number_entry other{"Other", 5, no_level, -100, 100};
        bind(other, "visible if 10 / [z] > 1");
        refresh(other);
        EXPECT_EQ(registry->faults().size(), 1U);
    }
    EXPECT_TRUE(registry->faults().empty());
}

}  // namespace
}  // namespace binding_fixture
