// Circles among the bindings of a menu.
#include <gmock/gmock.h>

#include <deque>

#include "support/leaf.h"
#include "unit/binding/binding_fixture.h"

using namespace frontpanel;

namespace {

using binding_fixture::Binding_fixture;
using support::index_of;
using support::Leaf;
using support::Leaf_options;
using testing::ElementsAre;
using testing::IsEmpty;

class Dependency_cycles : public Binding_fixture {
protected:
    Leaf& entry(const char* name, unsigned int pid, const std::string& source) {
        Leaf_options options;
        options.pid = pid;
        options.index = &no_level;
        m_entries.emplace_back(name, nullptr, options);
        bind(m_entries.back(), source);
        return m_entries.back();
    }
    // "writes: Gain -> Level -> Gain"
    std::vector<std::string> cycles() {
        std::vector<std::string> all;
        for (const Binding_cycle& cycle : registry->find_cycles()) {
            const bool writes = cycle.kind == Binding_cycle::Kind::WRITES;
            all.push_back((writes ? "writes: " : "limits: ") + cycle.text());
        }
        return all;
    }

private:
    std::deque<Leaf> m_entries;
};

TEST_F(Dependency_cycles, AMenuThatFlowsOneWayHasNone) {
    entry("Gain", 100, "set [101] = [102] + 1; range 0..[102]");
    entry("Level", 101, "set [103] = value; visible if [103] == 1");
    entry("Mode", 103, "warn \"w\" if [100] > 3; access read-only if [101] == 1");
    EXPECT_THAT(cycles(), IsEmpty());
}

TEST_F(Dependency_cycles, WritesThatDriveEachOtherAreAPathOfNames) {
    entry("Gain", 100, "set [101] = value");
    Leaf& level = entry("Level", 101, "visible if [100] == 1\nset [100] = value if [105] == 1");
    EXPECT_THAT(cycles(), ElementsAre("writes: Gain -> Level -> Gain"));

    const Binding_cycle cycle = registry->find_cycles().front();
    EXPECT_THAT(cycle.path, ElementsAre("Gain", "Level", "Gain"));
    ASSERT_EQ(cycle.steps.size(), 2u);
    EXPECT_EQ(cycle.steps[1].entry, &level);
    EXPECT_EQ(cycle.steps[1].line, 2);
}

TEST_F(Dependency_cycles, RangesThatLimitEachOtherAreToldApart) {
    entry("Lowest", 100, "range 0..[101]");
    entry("Highest", 101, "range [100]..100");
    EXPECT_THAT(cycles(), ElementsAre("limits: Lowest -> Highest -> Lowest"));
}

TEST_F(Dependency_cycles, KeysThatLimitEachOtherAreLimits) {
    entry("Left", 100, "keys 0..2 if [101] == 1");
    entry("Right", 101, "keys 0..2 if [100] == 1");
    EXPECT_THAT(cycles(), ElementsAre("limits: Left -> Right -> Left"));
}

TEST_F(Dependency_cycles, AWriteAmongLimitsMakesACircleOfWrites) {
    entry("Gain", 100, "range 0..[101]");
    entry("Mode", 102, "set [101] = [100]");
    EXPECT_THAT(cycles(), ElementsAre("writes: Gain -> [101] -> Gain"));
}

TEST_F(Dependency_cycles, ARuleThatWritesWhatItReadsIsACircle) {
    entry("Mode", 102, "set [100] = [100] + 1");
    EXPECT_THAT(cycles(), ElementsAre("writes: [100] -> [100]"));
}

TEST_F(Dependency_cycles, ARangeByTheOwnValueIsALimit) {
    entry("Gain", 100, "range value - 1..value + 1");
    EXPECT_THAT(cycles(), ElementsAre("limits: Gain -> Gain"));
}

TEST_F(Dependency_cycles, OneVariableUnderSeveralNamesIsOne) {
    entry("Gain", 100, "set [101.0] = value");
    entry("Level", 101, "set [100.0.0] = [101]");
    EXPECT_THAT(cycles(), ElementsAre("writes: Gain -> Level -> Gain"));
}

TEST_F(Dependency_cycles, NumbersAndTextsOfOneAddressAreTwo) {
    entry("Gain", 100, "set [101] = length([102@s])");
    entry("Level", 103, "set [102] = [101]");
    EXPECT_THAT(cycles(), IsEmpty());
}

TEST_F(Dependency_cycles, EachGroupIsToldOnceWithWritesFirst) {
    entry("A", 100, "range 0..[101]");
    entry("B", 101, "range 0..[100]");
    entry("C", 102, "set [103] = value; set [104] = value");
    entry("D", 103, "set [102] = value");
    entry("E", 104, "set [102] = value");
    const std::vector<std::string> all = cycles();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_THAT(all[0], testing::AnyOf("writes: C -> D -> C", "writes: C -> E -> C"));
    EXPECT_EQ(all[1], "limits: A -> B -> A");
}

TEST_F(Dependency_cycles, ALongCircleIsFoundWithoutRecursion) {
    std::vector<std::unique_ptr<Expression_binding>> engines;
    constexpr int LENGTH = 5000;
    for (int i = 0; i < LENGTH; ++i) {
        engines.push_back(std::make_unique<Expression_binding>(registry));
        engines.back()->addBindingList(compiled("set [" + std::to_string(1000 + (i + 1) % LENGTH) +
                                                "] = [" + std::to_string(1000 + i) + "]"));
    }
    const std::vector<Binding_cycle> all = registry->find_cycles();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].path.size(), LENGTH + 1u);
}

TEST_F(Dependency_cycles, AnEngineThatIsGoneLeavesNoCircle) {
    entry("Gain", 100, "set [101] = value");
    {
        Expression_binding passing(registry);
        passing.addBindingList(compiled("set [100] = [101]"));
        EXPECT_EQ(cycles().size(), 1u);
    }
    EXPECT_THAT(cycles(), IsEmpty());
}

}  // namespace
