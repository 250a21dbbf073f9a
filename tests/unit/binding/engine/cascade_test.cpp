// Rounds of refreshes: what they reach, in which order, and where they end.
#include <frontpanel_binding/caching_device.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <random>

#include "support/leaf.h"
#include "unit/binding/binding_fixture.h"

using namespace frontpanel;

namespace {

using binding_fixture::Binding_fixture;
using binding_fixture::Number_entry;
using binding_fixture::Option_entry;
using support::capture;
using support::Leaf;
using support::Leaf_options;
using testing::ElementsAre;
using testing::IsEmpty;

class Cascade_test : public Binding_fixture {
protected:
    Cascade_test() {
        for (unsigned int pid = 100; pid < 110; ++pid) {
            device.add_integer(pid, 0, -1000000, 1000000, 0);
        }
    }

    Binding_settlement settle() {
        Binding_settlement settlement;
        capture(0, [&] { settlement = registry->settle(&cache); });
        return settlement;
    }
    // What the panel does in a turn: look at the device, then let the menu follow.
    Binding_settlement turn() {
        registry->poll();
        return settle();
    }
    void write(unsigned int pid, int32_t value) { cache.Set(pid, 0, &value, sizeof value); }

    Caching_device cache{device, registry};
};

// A leaf that evaluates its binding when it is refreshed, and logs it.
class Logged_leaf : public Leaf {
public:
    Logged_leaf(const char* name, std::vector<std::string>& log, unsigned int pid = 120)
        : Leaf(name, nullptr, options(log, pid)) {
        refreshes_base = true;
    }
    std::function<void()> on_refresh;

    int Refresh(Data_interface* iface, bool eval_binding) override {
        const int result = Leaf::Refresh(iface, eval_binding);
        if (on_refresh) {
            on_refresh();
        }
        return result;
    }

private:
    static Leaf_options options(std::vector<std::string>& log, unsigned int pid) {
        Leaf_options options;
        options.log = &log;
        options.pid = pid;
        return options;
    }
};

std::string refreshed(const std::string& name) {
    return "Refresh " + name + " interface=1 eval=1";
}

TEST_F(Cascade_test, AChangeOfTheDeviceReachesWhoDependsOnIt) {
    std::vector<std::string> log;
    Logged_leaf gain("Gain", log);
    Logged_leaf level("Level", log);
    bind(gain, "visible if [100] == 1");
    bind(level, "visible if [101] == 1");
    refresh(gain, &cache);
    refresh(level, &cache);
    log.clear();

    EXPECT_EQ(turn().refreshes, 0u);
    device.set_integer(100, 0, 1);
    const Binding_settlement settlement = turn();

    EXPECT_TRUE(settlement.at_rest);
    EXPECT_EQ(settlement.refreshes, 1u);
    EXPECT_THAT(log, ElementsAre(refreshed("Gain")));
    EXPECT_EQ(gain.Get_bind_vis(), VIS_TRUE);
    EXPECT_EQ(turn().refreshes, 0u);
}

TEST_F(Cascade_test, AnEntryThatWasNeverRefreshedWaitsUntilItIs) {
    std::vector<std::string> log;
    Logged_leaf gain("Gain", log);
    bind(gain, "visible if [100] == 1");
    device.set_integer(100, 0, 1);

    EXPECT_EQ(turn().refreshes, 0u);
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(Cascade_test, AnEntryFollowsItsOwnValueWhoeverChangesIt) {
    Number_entry gain("Gain", 100, no_level, -9, 9);
    bind(gain, "set [101] = 7 if value == 3");
    refresh(gain, &cache);
    device.set_integer(100, 0, 3);
    EXPECT_EQ(turn().refreshes, 1u);
    EXPECT_EQ(device.integer(101, 0), 7);
    write(100, 4);
    EXPECT_EQ(settle().refreshes, 1u);
}

// The value that is tried is not the device's: nothing has to be asked for before.
TEST_F(Cascade_test, AWarningDoesNotLetAnEntryFollowItsOwnValue) {
    Number_entry gain("Gain", 100, no_level, -9, 9);
    bind(gain, "warn \"high\" if value > 2");
    refresh(gain, &cache);
    device.set_integer(100, 0, 3);
    EXPECT_THAT(registry->poll(), IsEmpty());
    EXPECT_EQ(settle().refreshes, 0u);
}

// Whoever refreshes an entry for its value need not know that it has options.
TEST_F(Cascade_test, OptionsFollowEachRefresh) {
    Option_entry source("Source", 100, no_level);
    bind(source, "keys 0..1 if [101] == 1");
    write(101, 1);
    refresh(source, &cache);
    EXPECT_THAT(source.shown(), ElementsAre(0, 1));
    EXPECT_FALSE(registry->has_unsettled());
}

// Its old keys would let it leave the value.
TEST_F(Cascade_test, AKeyThatIsAllowedAgainIsNotLeft) {
    Option_entry source("Source", 100, no_level);
    bind(source, "keys 0 if [101] == 1");
    device.set_integer(101, 0, 1);
    refresh(source, &cache);
    EXPECT_TRUE(turn().at_rest);
    EXPECT_THAT(source.shown(), ElementsAre(0));
    device.set_integer(100, 0, 2);
    device.set_integer(101, 0, 0);
    EXPECT_TRUE(turn().at_rest);
    EXPECT_THAT(source.shown(), ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(device.integer(100, 0), 2);
}

// A list refreshes the entries that it shows before their turn in a round.
TEST_F(Cascade_test, ARefreshKeepsAnOptionThatHasJustBecomeAllowed) {
    Option_entry source("Source", 100, no_level);
    bind(source, "keys 0..1 if [101] == 0; keys 2..3 if [101] == 1");
    refresh(source, &cache);
    settle();
    device.set_integer(100, 0, 3);
    device.set_integer(101, 0, 1);
    registry->poll();
    refresh(source, &cache);
    EXPECT_EQ(device.integer(100, 0), 3);
    EXPECT_THAT(source.shown(), ElementsAre(2, 3));
}

// A large menu is polled in turns.
TEST_F(Cascade_test, ARefreshDecidesByWhatTheDeviceHoldsSinceTheLastPoll) {
    Number_entry gain("Gain", 104, no_level, 0, 100);
    bind(gain, "range 0..[101]; visible if [100] == 0");
    device.set_integer(101, 0, 10);
    refresh(gain, &cache);
    settle();
    registry->poll(1);
    device.set_integer(101, 0, 100);
    device.set_integer(104, 0, 50);
    registry->poll(0);
    refresh(gain, &cache);
    EXPECT_EQ(device.integer(104, 0), 50);
}

TEST_F(Cascade_test, APollWithALimitGoesOnWhereTheLastOneEnded) {
    std::vector<std::string> log;
    Logged_leaf gain("Gain", log);
    bind(gain, "visible if [100] + [101] + [102] == 0");
    refresh(gain, &cache);
    for (unsigned int pid = 100; pid < 103; ++pid) {
        device.set_integer(pid, 0, 5);
    }
    const auto changed = [&](std::size_t at_most) {
        std::vector<uint32_t> pids;
        for (const var_index_s& key : registry->poll(at_most)) {
            pids.push_back(key.var);
        }
        return pids;
    };
    EXPECT_THAT(changed(0), IsEmpty());
    EXPECT_THAT(changed(2), ElementsAre(100, 101));
    device.set_integer(100, 0, 6);
    EXPECT_THAT(changed(2), ElementsAre(102, 100));
    device.set_integer(101, 0, 6);
    EXPECT_THAT(changed(9), ElementsAre(101)) << "each once";
}

TEST_F(Cascade_test, WritesDoNotWaitUntilTheirEntryIsShown) {
    std::vector<std::string> log;
    Logged_leaf gain("Gain", log);
    bind(gain, "set [101] = [100] * 2");
    device.set_integer(100, 0, 21);

    EXPECT_EQ(turn().refreshes, 1u);
    EXPECT_EQ(device.integer(101, 0), 42);
}

TEST_F(Cascade_test, AWriteReachesWhoDependsOnWhatItWrote) {
    std::vector<std::string> log;
    Logged_leaf first("First", log);
    Logged_leaf second("Second", log);
    Logged_leaf third("Third", log);
    bind(third, "visible if [102] == 3");
    bind(second, "set [102] = [101] + 1");
    bind(first, "set [101] = [100] + 1");
    settle();
    refresh(third, &cache);
    log.clear();

    write(100, 1);
    EXPECT_EQ(settle().refreshes, 3u);

    EXPECT_EQ(device.integer(102, 0), 3);
    EXPECT_EQ(third.Get_bind_vis(), VIS_TRUE);
    EXPECT_EQ(log.size(), 3u);
    EXPECT_EQ(log.back(), refreshed("Third"));
}

TEST_F(Cascade_test, AnEntryWithoutEngineIsFollowedToo) {
    std::vector<std::string> log;
    Logged_leaf gain("Gain", log);
    bind(gain, "visible if [100] == 1");
    refresh(gain, &cache);
    Number_entry mode("Mode", 100, no_level, 0, 10);
    commit(mode, 1, &cache);

    EXPECT_EQ(settle().refreshes, 1u);
    EXPECT_EQ(gain.Get_bind_vis(), VIS_TRUE);
}

TEST_F(Cascade_test, WhatACommitRefreshedIsAtRest) {
    Number_entry mode("Mode", 100, no_level, 0, 10);
    Number_entry gain("Gain", 103, no_level, 0, 100);
    bind(mode, "");
    bind(gain, "range 0..40 if [100] == 1");
    refresh(mode, &cache);
    refresh(gain, &cache);
    commit(mode, 1, &cache);

    EXPECT_EQ(gain.Get_max(), 40);
    EXPECT_EQ(settle().refreshes, 0u);
}

TEST_F(Cascade_test, ACommitReachesDependantsThatNameTheVariableOtherwise) {
    Number_entry mode("Mode", 100, no_level, 0, 10);
    Number_entry gain("Gain", 103, no_level, 0, 100);
    bind(mode, "");
    bind(gain, "range 0..40 if [100.0] == 1");
    refresh(gain, &cache);
    commit(mode, 1, &cache);

    EXPECT_EQ(gain.Get_max(), 40);
}

TEST_F(Cascade_test, AllowedKeysThatChangeRebuildTheOptionsAndLeaveAHiddenOne) {
    Option_entry source("Source", 103, no_level);
    bind(source, "keys 0, 2 if [100] == 1");
    device.set_integer(103, 0, 3);
    refresh(source, &cache);
    settle();
    EXPECT_THAT(source.shown(), ElementsAre(0, 1, 2, 3));

    write(100, 1);
    settle();
    EXPECT_THAT(source.shown(), ElementsAre(0, 2));
    EXPECT_EQ(device.integer(103, 0), 0);
    write(100, 0);
    settle();
    EXPECT_THAT(source.shown(), ElementsAre(0, 1, 2, 3));
}

// Parameters 100 to 104 are changed by the device and by commits, the others follow from those before them.
TEST_F(Cascade_test, RandomChangesLeaveEveryWriteAsItsRuleSays) {
    constexpr unsigned int SOURCES = 105;
    constexpr unsigned int END = 140;
    std::mt19937 random(20240229);
    const auto any = [&](unsigned int first, unsigned int end) {
        return first + static_cast<unsigned int>(random() % (end - first));
    };
    struct Follower {
        unsigned int pid, left, right;
    };
    std::vector<std::string> log;
    std::vector<Follower> followers;
    std::deque<Logged_leaf> leaves;
    for (unsigned int pid = SOURCES; pid < END; ++pid) {
        device.add_integer(pid, 0, -1000, 1000, -1);
        followers.push_back({pid, any(100, pid), any(100, pid)});
    }
    std::shuffle(followers.begin(), followers.end(), random);
    for (const Follower& each : followers) {
        leaves.emplace_back("Follower", log);
        bind(leaves.back(), "set [" + std::to_string(each.pid) + "] = ([" +
                                std::to_string(each.left) + "] * 2 + [" +
                                std::to_string(each.right) + ".0]) % 100");
    }
    for (int turns = 0; turns < 200; ++turns) {
        const auto value = static_cast<int32_t>(any(0, 50));
        if (any(0, 2) == 0) {
            device.set_integer(any(100, SOURCES), 0, value);
        } else {
            write(any(100, SOURCES), value);
        }
        ASSERT_TRUE(turn().at_rest);
        for (const Follower& each : followers) {
            ASSERT_EQ(device.integer(each.pid, 0),
                      (*device.integer(each.left, 0) * 2 + *device.integer(each.right, 0)) % 100);
        }
        for (auto& [key, record] : *registry->var_index_map()) {
            if (key.var < END && key.var != 120) {
                ASSERT_EQ(record.getInt(), *device.integer(key.var, 0)) << key.var;
            }
        }
    }
    EXPECT_TRUE(registry->find_cycles().empty());
}

// ---- in parts

// Leaves that are visible while parameter 100 is below their number, refreshed once.
class Cascade_in_parts : public Cascade_test {
protected:
    static constexpr int COUNT = 10;

    Cascade_in_parts() {
        for (int i = 0; i < COUNT; ++i) {
            leaves.emplace_back("Leaf", log);
            bind(leaves.back(), "visible if [100] < " + std::to_string(i));
            refresh(leaves.back(), &cache);
        }
        log.clear();
    }

    Binding_settlement settle_part(std::size_t at_most) {
        Binding_settlement settlement;
        capture(0, [&] { settlement = registry->settle(&cache, at_most); });
        return settlement;
    }

    std::vector<std::string> log;
    std::deque<Logged_leaf> leaves;
};

TEST_F(Cascade_in_parts, TheRestWaitsForTheNextCall) {
    device.set_integer(100, 0, 5);
    registry->poll();
    for (const std::size_t expected : {4U, 4U}) {
        const Binding_settlement part = settle_part(4);
        EXPECT_EQ(part.refreshes, expected);
        EXPECT_FALSE(part.is_complete);
        EXPECT_TRUE(part.at_rest);
        EXPECT_TRUE(registry->has_unsettled());
    }
    const Binding_settlement last = settle_part(4);
    EXPECT_EQ(last.refreshes, 2U);
    EXPECT_TRUE(last.is_complete);
    EXPECT_FALSE(registry->has_unsettled());
    EXPECT_EQ(log.size(), 10U);
    EXPECT_EQ(leaves[5].Get_bind_vis(), VIS_FALSE);
    EXPECT_EQ(leaves[6].Get_bind_vis(), VIS_TRUE);
}

TEST_F(Cascade_in_parts, WhoWaitsIsRefreshedOnceHoweverManyChangesCome) {
    for (int change = 1; change <= 50; ++change) {
        device.set_integer(100, 0, change % 9);
        registry->poll();
    }
    while (registry->has_unsettled()) {
        settle_part(3);
    }
    EXPECT_EQ(log.size(), 10U);
}

TEST_F(Cascade_in_parts, ChangesThatNeverEndAreNoCircle) {
    for (int change = 1; change <= 2000; ++change) {
        device.set_integer(100, 0, change % 9);
        registry->poll();
        const Binding_settlement part = settle_part(7);
        ASSERT_TRUE(part.at_rest) << part.path;
        ASSERT_EQ(part.refreshes, 7U) << "nobody is left out";
    }
}

TEST_F(Cascade_in_parts, AThousandReadersAndMoreAreMarkedByAndBy) {
    for (int i = COUNT; i < 3000; ++i) {
        leaves.emplace_back("Leaf", log);
        bind(leaves.back(), "visible if [100] < 5");
        refresh(leaves.back(), &cache);
    }
    log.clear();
    device.set_integer(100, 0, 5);
    registry->poll();
    EXPECT_TRUE(registry->has_unsettled());
    EXPECT_EQ(settle_part(100).refreshes, 100U);
    device.set_integer(100, 0, 6);
    registry->poll();
    leaves.pop_front();
    while (registry->has_unsettled()) {
        settle_part(100);
    }
    for (std::size_t i = 0; i < leaves.size(); ++i) {
        ASSERT_EQ(leaves[i].Get_bind_vis(), i > 5 && i < 9 ? VIS_TRUE : VIS_FALSE) << i;
    }
    EXPECT_GE(log.size(), leaves.size());
    EXPECT_LE(log.size(), 2 * leaves.size());
}

// Each of them reads the parameter.
class Cascade_of_many : public Cascade_in_parts {
protected:
    static constexpr std::size_t MANY = 1500;

    void add_readers(std::size_t count, const std::string& rule) {
        for (std::size_t i = 0; i < count; ++i) {
            leaves.emplace_back("Leaf", log);
            bind(leaves.back(), rule);
            refresh(leaves.back(), &cache);
        }
    }
    // In a hundred parts, before each of which parameter 100 changes.
    void settle_under_load() {
        for (int part = 0; part < 100; ++part) {
            device.set_integer(100, 0, 1 - part % 2);
            registry->poll();
            settle_part(100);
        }
    }
};

TEST_F(Cascade_of_many, AParameterThatChangesWithoutEndDoesNotHoldAnother) {
    add_readers(MANY, "visible if [100] < 5");
    add_readers(MANY, "visible if [101] < 5");
    device.set_integer(101, 0, 5);
    settle_under_load();
    EXPECT_EQ(leaves.back().Get_bind_vis(), VIS_FALSE);
}

TEST_F(Cascade_of_many, ReadersThatWaitWithoutEndDoNotHoldThoseOfAnotherParameter) {
    add_readers(200, "visible if [100] < 5");
    add_readers(MANY, "visible if [101] < 5");
    device.set_integer(101, 0, 5);
    settle_under_load();
    EXPECT_EQ(leaves.back().Get_bind_vis(), VIS_FALSE);
}

TEST_F(Cascade_in_parts, WritesThatFollowChangesWithoutEndAreNoCircle) {
    Logged_leaf first("First", log);
    Logged_leaf second("Second", log);
    Number_entry last("Last", 104, no_level, 0, 100);
    bind(first, "set [102] = [100]");
    bind(second, "set [103] = [102]");
    bind(last, "range [103]..100");
    refresh(last, &cache);
    for (int change = 1; change <= 500; ++change) {
        device.set_integer(100, 0, change % 9);
        registry->poll();
        const Binding_settlement part = settle_part(6);
        ASSERT_TRUE(part.at_rest) << part.path;
    }
    while (registry->has_unsettled()) {
        settle_part(6);
    }
    EXPECT_EQ(last.Get_min(), 500 % 9);
}

// Shown entries are refreshed between the parts: they must see the writes of rules.
TEST_F(Cascade_in_parts, WritesDoNotWaitForEntriesThatWriteNothing) {
    Number_entry limit("Limit", 104, no_level, 0, 100);
    Number_entry gain("Gain", 105, no_level, 0, 100);
    bind(limit, "set [102] = [100] * 10");
    bind(gain, "range 0..[102]");
    refresh(limit, &cache);
    refresh(gain, &cache);
    settle();
    device.set_integer(100, 0, 5);
    device.set_integer(105, 0, 50);
    registry->poll();
    EXPECT_FALSE(settle_part(1).is_complete);
    EXPECT_EQ(device.integer(102, 0), 50);
    refresh(gain, &cache);
    EXPECT_EQ(device.integer(105, 0), 50);
}

TEST_F(Cascade_of_many, WritesDoNotWaitUntilManyReadersAreMarked) {
    add_readers(MANY, "visible if [100] < 5");
    Number_entry limit("Limit", 104, no_level, 0, 100);
    bind(limit, "set [102] = [100] * 10");
    settle();
    device.set_integer(100, 0, 5);
    registry->poll();
    EXPECT_FALSE(settle_part(1).is_complete);
    EXPECT_EQ(device.integer(102, 0), 50);
}

TEST_F(Cascade_in_parts, ACircleOfWritesIsFoundAcrossThem) {
    Logged_leaf gain("Gain", log);
    Logged_leaf level("Level", log);
    bind(gain, "set [102] = [101] + 1");
    bind(level, "set [101] = [102] + 1");
    Binding_settlement part;
    for (int parts = 0; parts < 100 && part.at_rest; ++parts) {
        part = settle_part(3);
    }
    EXPECT_FALSE(part.at_rest);
    EXPECT_THAT(part.path, testing::AnyOf("Gain -> Level -> Gain", "Level -> Gain -> Level"));
    while (registry->has_unsettled()) {
        settle_part(3);
    }
    EXPECT_LE(log.size(), 64U);
}

// Two limits of which each wants to be above the other, and a sensor that both read.
class Cascade_of_limits : public Cascade_in_parts {
protected:
    // Until a circle is found; how many parts it took.
    int settle_while_the_sensor_changes(const std::string& low_rule, const std::string& high_rule,
                                        std::size_t at_most = 1) {
        bind(low, low_rule);
        bind(high, high_rule);
        refresh(low, &cache);
        refresh(high, &cache);
        int parts = 0;
        for (Binding_settlement part; part.at_rest && parts < MOST_PARTS; ++parts) {
            device.set_integer(100, 0, parts % 9);
            registry->poll();
            part = settle_part(at_most);
            path = part.path;
        }
        return parts;
    }

    // More than a part refreshes.
    void add_readers_of_the_sensor() {
        for (int i = 0; i < 150; ++i) {
            bind(readers.emplace_back("Reader", 103, no_level, 0, 1000), "visible if [100] >= 0");
            refresh(readers.back(), &cache);
        }
    }

    void bind_to_each_other() {
        bind(low, "range 0..[102] + 100");
        bind(high, "range [101] + 1..1000000");
        write(101, 0);
        write(102, 0);
        refresh(low, &cache);
        refresh(high, &cache);
        settle();
    }

    // After a person has pressed keys 200 times.
    void expect_rest_after_a_part() {
        const Binding_settlement part = settle_part(100);
        EXPECT_TRUE(part.at_rest) << part.path;
        EXPECT_EQ(device.integer(102, 0), 200);
    }

    static constexpr int MOST_PARTS = 5000;
    std::deque<Number_entry> readers;
    Number_entry low{"Low", 101, no_level, 0, 1000000};
    Number_entry high{"High", 102, no_level, 0, 1000000};
    std::string path;
};

TEST_F(Cascade_of_limits, ACircleIsFoundThoughTheDeviceChangesBetweenItsParts) {
    EXPECT_LT(settle_while_the_sensor_changes("range [102] + 1..1000000 if [100] >= 0",
                                              "range [101] + 1..1000000 if [100] >= 0"),
              MOST_PARTS);
    EXPECT_THAT(path, testing::AnyOf("Low -> High -> Low", "High -> Low -> High"));
}

TEST_F(Cascade_of_limits, ACircleIsFoundThoughManyOthersWaitForEachPart) {
    add_readers_of_the_sensor();
    EXPECT_LT(settle_while_the_sensor_changes("range [102] + 1..1000000 if [100] >= 0",
                                              "range [101] + 1..1000000 if [100] >= 0", 100),
              MOST_PARTS);
}

TEST_F(Cascade_of_limits, LimitsThatFollowADeviceWithoutEndAreNoCircle) {
    EXPECT_EQ(settle_while_the_sensor_changes("range [100]..[100]", "range [101]..[101] + 1"),
              MOST_PARTS)
        << path;
}

TEST_F(Cascade_of_limits, LimitsOfEachOtherThatComeToRestAreNoCircle) {
    EXPECT_EQ(settle_while_the_sensor_changes("range [100]..[102]", "range [101]..[100] + 9"),
              MOST_PARTS)
        << path;
}

TEST_F(Cascade_of_limits, LimitsOfEachOtherThatFollowARisingDeviceAreNoCircle) {
    add_readers_of_the_sensor();
    bind(low, "range [100]..[102] + 5");
    bind(high, "range [101] + 1..1000000");
    refresh(low, &cache);
    refresh(high, &cache);
    for (int change = 1; change <= 500; ++change) {
        device.set_integer(100, 0, change);
        registry->poll();
        const Binding_settlement part = settle_part(100);
        ASSERT_TRUE(part.at_rest) << change << ": " << part.path;
    }
    while (registry->has_unsettled()) {
        settle_part(100);
    }
    EXPECT_EQ(device.integer(101, 0), 500);
    EXPECT_EQ(device.integer(102, 0), 501);
}

TEST_F(Cascade_of_limits, ManyChangesOfAPersonBetweenTwoPartsAreNoCircle) {
    bind_to_each_other();
    for (int press = 0; press < 200; ++press) {
        commit(low, press, &cache);
    }
    expect_rest_after_a_part();
}

TEST_F(Cascade_of_limits, ManyChangesOfAPersonThatAreShownBetweenTwoPartsAreNoCircle) {
    bind_to_each_other();
    for (int press = 0; press < 200; ++press) {
        commit(low, press, &cache);
        refresh(high, &cache);
        refresh(low, &cache);
    }
    expect_rest_after_a_part();
}

// ---- circles end

TEST_F(Cascade_test, WritesThatGoInACircleEndAndNameTheirPath) {
    std::vector<std::string> log;
    Logged_leaf gain("Gain", log);
    Logged_leaf level("Level", log);
    bind(gain, "set [101] = [100] + 1");
    Expression_binding* const engine = bind(level, "set [100] = [101] + 1");
    const Binding_settlement settlement = settle();

    EXPECT_FALSE(settlement.at_rest);
    EXPECT_THAT(settlement.path, testing::AnyOf("Gain -> Level -> Gain", "Level -> Gain -> Level"));
    EXPECT_LE(log.size(), 64u);
    EXPECT_GE(log.size(), 32u);
    EXPECT_TRUE(settle().at_rest);
    EXPECT_THAT(engine->errors().size() + log.size(), testing::Gt(0u));
}

TEST_F(Cascade_test, AWriteThatDrivesItselfEnds) {
    std::vector<std::string> log;
    Logged_leaf gain("Gain", log);
    Expression_binding* const engine = bind(gain, "set [100] = [100] + 1");
    const Binding_settlement settlement = settle();

    EXPECT_FALSE(settlement.at_rest);
    EXPECT_EQ(settlement.path, "Gain -> Gain");
    EXPECT_EQ(settlement.refreshes, 32u);
    EXPECT_EQ(device.integer(100, 0), 32);
    EXPECT_THAT(engine->errors(), ElementsAre("the writes do not settle: Gain -> Gain"));
}

TEST_F(Cascade_test, ACircleDoesNotKeepOthersFromTheirRefresh) {
    std::vector<std::string> log;
    Logged_leaf gain("Gain", log);
    Logged_leaf last("Last", log);
    bind(gain, "set [100] = [100] + 1; set [101] = [100] / 10");
    bind(last, "set [102] = [101]");
    EXPECT_FALSE(settle().at_rest);

    EXPECT_EQ(device.integer(102, 0), device.integer(101, 0));
}

TEST_F(Cascade_test, AWriteThatFindsItsValueComesToRest) {
    std::vector<std::string> log;
    Logged_leaf gain("Gain", log);
    bind(gain, "set [100] = min([100] + 1, 5)");
    const Binding_settlement settlement = settle();

    EXPECT_TRUE(settlement.at_rest);
    EXPECT_EQ(settlement.path, "");
    EXPECT_EQ(device.integer(100, 0), 5);
}

// Each wants to be larger by one than another, up to a limit, then all start again: without an end to it the
// commits within commits would try every order of the entries.
TEST_F(Cascade_test, EntriesThatLimitEachOtherWithoutEndAreFrozen) {
    constexpr unsigned int COUNT = 9;
    std::vector<std::unique_ptr<Number_entry>> entries;
    for (unsigned int i = 0; i < COUNT; ++i) {
        entries.push_back(std::make_unique<Number_entry>(("E" + std::to_string(i)).c_str(), 100 + i,
                                                         no_level, 0, 9));
        std::string sum = "0";
        for (unsigned int other = 0; other < COUNT; ++other) {
            sum += other != i ? " + [" + std::to_string(100 + other) + "]" : "";
        }
        bind(*entries.back(), "range (" + sum + ") % 10..(" + sum + ") % 10");
    }
    int writes = 0;
    device.set_write_listener([&](const Memory_device::Write&) { ++writes; });
    commit(*entries[0], 1, &cache);

    EXPECT_LT(writes, 2000);
    const Binding_settlement settlement = settle();
    EXPECT_FALSE(settlement.at_rest);
    EXPECT_THAT(settlement.path, testing::HasSubstr(" -> "));
    EXPECT_LT(writes, 20000);
}

TEST_F(Cascade_test, ManyEntriesThatFollowOneCommitAreNotFrozen) {
    Number_entry mode("Mode", 100, no_level, 0, 10);
    bind(mode, "");
    std::vector<std::unique_ptr<Number_entry>> entries;
    for (unsigned int i = 0; i < 200; ++i) {
        device.add_integer(1000 + i, 0, 0, 100, 50);
        entries.push_back(std::make_unique<Number_entry>("Gain", 1000 + i, no_level, 0, 100));
        bind(*entries.back(), "range 0..40 if [100] == 1");
        refresh(*entries.back(), &cache);
    }
    for (const int value : {1, 0, 1}) {
        commit(mode, value, &cache);
    }
    EXPECT_EQ(device.integer(1199, 0), 40);
    EXPECT_TRUE(settle().at_rest);
}

// Each correction commits within the commit before it: all of them at once would take the whole stack.
TEST_F(Cascade_test, ALongRowOfLimitsFollowsOneCommit) {
    constexpr unsigned int COUNT = 10000;
    std::deque<Number_entry> entries;
    for (unsigned int i = 0; i < COUNT; ++i) {
        device.add_integer(1000 + i, 0, 0, 100, 50);
        entries.emplace_back("Gain", 1000 + i, no_level, 0, 100);
        bind(entries.back(), i == 0 ? "" : "range 0..[" + std::to_string(999 + i) + "]");
    }
    capture(0, [&] {
        for (Number_entry& entry : entries) {
            entry.Refresh(&cache, true);
        }
    });
    commit(entries.front(), 10, &cache);
    EXPECT_EQ(device.integer(1000 + 10, 0), 10);
    const Binding_settlement settlement = settle();
    EXPECT_TRUE(settlement.at_rest);
    EXPECT_LT(settlement.refreshes, 2 * COUNT);
    EXPECT_EQ(device.integer(1000 + COUNT - 1, 0), 10);
    EXPECT_EQ(entries.back().Get_max(), 10);
}

TEST_F(Cascade_test, ARoundWithinARoundDoesNothing) {
    std::vector<std::string> log;
    Logged_leaf gain("Gain", log);
    bind(gain, "set [100] = [100] + 1");
    std::size_t inner = 0;
    gain.on_refresh = [&] { inner += registry->settle(&cache).refreshes; };

    EXPECT_EQ(settle().refreshes, 32u);
    EXPECT_EQ(inner, 0u);
    EXPECT_EQ(device.integer(100, 0), 32);
}

// ---- writes that fail

TEST_F(Cascade_test, AWriteThatTheDeviceRefusesIsMadeAgainAtTheNextRefresh) {
    std::vector<std::string> log;
    Logged_leaf gain("Gain", log);
    bind(gain, "set [101] = 5; set [102] = 6");
    device.set_fault([](const Memory_device::Operation& asked) {
        return asked.kind == Memory_device::Operation_kind::WRITE && asked.pid == 101 ? 42 : 0;
    });
    const std::string printed = capture(0x20, [&] { registry->settle(&cache); }).out;
    EXPECT_THAT(
        printed,
        testing::HasSubstr("Binding error in [Gain]: cannot write [101] = 5: device result 42\n"));
    EXPECT_EQ(device.integer(102, 0), 6);

    device.set_fault(nullptr);
    refresh(gain, &cache);
    EXPECT_EQ(device.integer(101, 0), 5);
    device.set_integer(101, 0, 1);
    refresh(gain, &cache);
    EXPECT_EQ(device.integer(101, 0), 1) << "what was written is not written again";
}

// ---- the structure changes meanwhile

TEST_F(Cascade_test, AnEntryThatEndsMeanwhileIsNotRefreshed) {
    std::vector<std::string> log;
    Logged_leaf first("First", log);
    auto second = std::make_unique<Logged_leaf>("Second", log);
    Logged_leaf third("Third", log);
    bind(first, "visible if [100] == 1");
    bind(*second, "visible if [100] == 1");
    bind(third, "visible if [100] == 1");
    refresh(first, &cache);
    refresh(*second, &cache);
    refresh(third, &cache);
    log.clear();
    first.on_refresh = [&] { second.reset(); };
    write(100, 1);

    EXPECT_EQ(settle().refreshes, 2u);
    EXPECT_THAT(log, ElementsAre(refreshed("First"), refreshed("Third")));
}

TEST_F(Cascade_test, AnEngineThatEndsDuringItsOwnRefreshIsLeftAlone) {
    std::vector<std::string> log;
    Logged_leaf first("First", log);
    Expression_binding* const engine = bind(first, "visible if [100] == 1");
    refresh(first, &cache);
    first.on_refresh = [&] {
        first.on_refresh = nullptr;
        first.Set_binding_object(nullptr);
        delete engine;
    };
    write(100, 1);

    EXPECT_EQ(settle().refreshes, 1u);
    EXPECT_TRUE(settle().at_rest);
}

TEST_F(Cascade_test, EntriesThatEndWaitingLeaveNothingBehind) {
    std::vector<std::string> log;
    for (int visit = 0; visit < 1000; ++visit) {
        Logged_leaf passing("Passing", log);
        bind(passing, "set [101] = [100]");
        EXPECT_TRUE(registry->has_unsettled());
    }
    EXPECT_FALSE(registry->has_unsettled());
    EXPECT_EQ(settle().refreshes, 0u);
}

TEST_F(Cascade_test, AnEntryThatMakesAnotherMeanwhileGetsItRefreshed) {
    std::vector<std::string> log;
    Logged_leaf first("First", log);
    std::unique_ptr<Logged_leaf> mounted;
    bind(first, "visible if [100] == 1");
    refresh(first, &cache);
    first.on_refresh = [&] {
        if (!mounted) {
            mounted = std::make_unique<Logged_leaf>("Mounted", log);
            bind(*mounted, "set [101] = 7");
        }
    };
    write(100, 1);
    settle();

    EXPECT_EQ(device.integer(101, 0), 7);
}

}  // namespace
