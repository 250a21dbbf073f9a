// What write rules have done, over a restart.
#include <frontpanel_binding/caching_device.h>

#include "unit/binding/binding_fixture.h"

namespace binding_fixture {
namespace {

// A menu of two entries, started anew over the same device.
struct Started {
    Started(Memory_device& memory, const std::string& rules, const std::string& other_rules = "")
        : registry(std::make_shared<Binding_registry>(&memory)), device(memory, registry) {
        bind(entry, rules);
        if (!other_rules.empty()) {
            bind(other, other_rules);
        }
    }
    void bind(Data_entry& bound, const std::string& rules) {
        auto* const engine = new Expression_binding(registry);
        engine->addBindingList(registry->compile(rules).list);
        bound.Set_binding_object(engine);
    }
    void settle() {
        support::capture(0, [&] {
            registry->poll();
            registry->settle(&device);
        });
    }

    std::shared_ptr<Binding_registry> registry;
    Caching_device device;
    const Index_t no_index = support::index_of({});
    Number_entry entry{"Mode", 1, no_index, 0, 9};
    Number_entry other{"Other", 2, no_index, 0, 9};
};

class Done_writes_test : public testing::Test {
protected:
    void SetUp() override {
        memory.add_integer(1, 0, 0, 9, 1);
        memory.add_integer(2, 0, 0, 9, 2);
        memory.add_integer(3, 0, 0, 99, 3);
        memory.add_text(4, 0, 16, "none");
    }
    // The user's own value after the rules have acted, and what the rules have done by then.
    std::vector<Done_writes> done_before(const std::string& rules) {
        Started first(memory, rules);
        first.settle();
        memory.set_integer(3, 0, 60);
        memory.set_text(4, 0, "mine");
        first.settle();
        return first.registry->done_writes();
    }
    int value() { return memory.integer(3, 0).value(); }

    Memory_device memory;
};

constexpr const char* RULES = "set [3] = 50 if [1] == 1; set [4@s] = \"mode {[1]}\"";

TEST_F(Done_writes_test, ARestartIsNoChange) {
    const std::vector<Done_writes> done = done_before(RULES);
    ASSERT_EQ(done.size(), 1U);
    EXPECT_EQ(done[0].writes.size(), 2U);
    EXPECT_LE(done[0].rules.size(), 64U);
    Started second(memory, RULES);
    second.registry->set_done_writes(done);
    second.settle();
    EXPECT_EQ(value(), 60);
    EXPECT_EQ(memory.text(4, 0), "mine");
}

TEST_F(Done_writes_test, WithoutWhatWasDoneTheRulesActAtTheStart) {
    done_before(RULES);
    Started second(memory, RULES);
    second.settle();
    EXPECT_EQ(value(), 50);
}

TEST_F(Done_writes_test, ARuleActsAgainWhenWhatItWritesChanges) {
    const std::vector<Done_writes> done = done_before(RULES);
    memory.set_integer(1, 0, 2);
    Started second(memory, RULES);
    second.registry->set_done_writes(done);
    second.settle();
    EXPECT_EQ(value(), 60) << "its condition has ended";
    EXPECT_EQ(memory.text(4, 0), "mode 2");
    memory.set_integer(1, 0, 1);
    second.settle();
    EXPECT_EQ(value(), 50);
}

TEST_F(Done_writes_test, RulesThatSayAnotherThingActAtTheStart) {
    const std::vector<Done_writes> done = done_before("set [3] = 50 if [1] == 1");
    Started second(memory, "set [3] = 50 if [1] > 0");
    second.registry->set_done_writes(done);
    second.settle();
    EXPECT_EQ(value(), 50);
}

TEST_F(Done_writes_test, RulesOfOtherKindsMayChange) {
    const std::vector<Done_writes> done = done_before("set [3] = 50 if [1] == 1");
    Started second(memory, "visible if [2] == 2; set [3] = 50 if [1] == 1; range 0..5");
    second.registry->set_done_writes(done);
    second.settle();
    EXPECT_EQ(value(), 60);
}

TEST_F(Done_writes_test, EqualRulesOfOtherParametersAreOthers) {
    Started first(memory, "set [3] = value * 10", "set [3] = value * 10");
    first.settle();
    EXPECT_EQ(first.registry->done_writes().size(), 2U);
}

TEST_F(Done_writes_test, AWriteThatTheDeviceRefusedIsNotDone) {
    memory.set_fault([](const Memory_device::Operation& operation) {
        return operation.kind == Memory_device::Operation_kind::WRITE ? 9 : 0;
    });
    Started first(memory, "set [3] = 50 if [1] == 1");
    first.settle();
    memory.set_fault(nullptr);
    Started second(memory, "set [3] = 50 if [1] == 1");
    second.registry->set_done_writes(first.registry->done_writes());
    second.settle();
    EXPECT_EQ(value(), 50);
}

TEST_F(Done_writes_test, TheListenerHearsOfChangesOnly) {
    Started first(memory, "set [3] = 50 if [1] == 1");
    int calls = 0;
    first.registry->set_done_listener([&calls] { ++calls; });
    first.settle();
    EXPECT_EQ(calls, 1);
    first.settle();
    EXPECT_EQ(calls, 1);
    memory.set_integer(1, 0, 2);
    first.settle();
    EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace binding_fixture
