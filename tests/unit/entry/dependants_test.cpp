#include "entry/dependants.h"

#include <frontpanel_data/binding.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "step_counter.h"
#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/indexes.h"
#include "support/leaf.h"
#include "support/line_gates.h"

namespace {

using support::capture;
using support::Fake_binding;
using support::Gate;
using support::index_of;
using support::key_of;
using support::Leaf;
using support::Leaf_options;

using Log = std::vector<std::string>;

const std::string TRACE = "@@@@@@@@@@@@@@@@@@@@@ here 14\n";
const std::string PREFIX = "[Commit][range_entry.cpp][#] ";

class Refreshing : public Leaf {
public:
    using Leaf::Leaf;
    int Refresh(Data_interface* interface, bool eval_binding) override {
        const int result = Leaf::Refresh(interface, eval_binding);
        if (on_refresh) {
            on_refresh();
        }
        return result;
    }
    std::function<void()> on_refresh;
};

class Dependants : public testing::Test {
protected:
    Dependants() {
        binding = new Fake_binding();
        committed.Set_binding_object(binding);
        key = binding->self_control_info;
    }

    static Leaf_options logged(Log* log) {
        Leaf_options options;
        options.log = log;
        return options;
    }

    std::vector<Data_entry*>& listed() { return binding->own_map[key].binding_dependant_entries; }
    void refresh() { dependants::refresh(committed, binding, &device, lines); }

    Log log;
    support::Fake_device device;
    Refreshing committed{"Committed", nullptr, logged(&log)};
    Refreshing a{"A", nullptr, logged(&log)};
    Refreshing b{"B", nullptr, logged(&log)};
    Refreshing c{"C", nullptr, logged(&log)};
    Fake_binding* binding = nullptr;  // the committed entry's
    var_index_s key;
    dependants::Commit_lines lines = {
        "Commit",
        "range_entry.cpp",
        diagnostics::place<diagnostics::Prefix::FUNCTION_FIRST, diagnostics::GENERAL>(1),
        true,
        true,
        true};
};

TEST_F(Dependants, AreRefreshedInOrderWithTheirBindings) {
    listed() = {&b, &a, &c};
    const auto printed = capture(0, [&] { refresh(); });
    EXPECT_EQ(log, (Log{"Refresh B interface=1 eval=1", "Refresh A interface=1 eval=1",
                        "Refresh C interface=1 eval=1"}));
    EXPECT_EQ(printed.out, TRACE + TRACE + TRACE + TRACE + TRACE + TRACE);
}

TEST_F(Dependants, ATraceStandsBeforeAndBehindEachRefreshWhateverTheMask) {
    listed() = {&a};
    a.on_refresh = [] { std::printf("refreshing\n"); };
    for (const uint32_t mask : {0x0u, 0x4000u}) {
        EXPECT_EQ(capture(mask, [&] { refresh(); }).out, TRACE + "refreshing\n" + TRACE);
    }
}

TEST_F(Dependants, OfOtherParametersAreNotRefreshed) {
    binding->own_map[key_of(STRING, 120, index_of({3}))].binding_dependant_entries = {&a};
    binding->own_map[key_of(INTEGER, 120, index_of({4}))].binding_dependant_entries = {&b};
    binding->own_map[key_of(INTEGER, 121, index_of({3}))].binding_dependant_entries = {&c};
    EXPECT_EQ(capture(0, [&] { refresh(); }).out, "");
    EXPECT_EQ(log, Log{});
}

TEST_F(Dependants, AMissingRecordIsInsertedForAClassThatAddsRecords) {
    refresh();
    EXPECT_EQ(binding->own_map.count(key), 1u);
    EXPECT_TRUE(listed().empty());
}

TEST_F(Dependants, AMissingRecordStaysMissingForAClassThatAddsNone) {
    lines.adds_record = false;
    const std::string text = capture(0x1, [&] { refresh(); }).out;
    EXPECT_TRUE(binding->own_map.empty());
    EXPECT_NE(text.find("About to see if I have any dependants...\n"), std::string::npos);
}

TEST_F(Dependants, OfAKnownRecordAreRefreshedByAClassThatAddsNone) {
    lines.adds_record = false;
    listed() = {&a, &b};
    capture(0, [&] { refresh(); });
    EXPECT_EQ(log, (Log{"Refresh A interface=1 eval=1", "Refresh B interface=1 eval=1"}));
}

TEST_F(Dependants, ALockedEntryIsPassedOver) {
    listed() = {&a, &b};
    a.SetBindRefreshIsLocked(true);
    EXPECT_EQ(capture(0, [&] { refresh(); }).out, TRACE + TRACE);
    EXPECT_EQ(log, Log{"Refresh B interface=1 eval=1"});
}

TEST_F(Dependants, TheCommittedEntryIsLockedMeanwhile) {
    listed() = {&a, &committed};
    bool locked = false;
    a.on_refresh = [&] { locked = committed.GetBindRefreshIsLocked(); };
    capture(0, [&] { refresh(); });
    EXPECT_TRUE(locked);
    EXPECT_FALSE(committed.GetBindRefreshIsLocked());
    EXPECT_EQ(log, Log{"Refresh A interface=1 eval=1"}) << "it is not its own dependant";
}

TEST_F(Dependants, AnEntryThatLeavesTheListBeforeItsTurnIsPassedOver) {
    listed() = {&a, &b, &c};
    a.on_refresh = [&] { listed() = {&a, &c}; };
    capture(0, [&] { refresh(); });
    EXPECT_EQ(log, (Log{"Refresh A interface=1 eval=1", "Refresh C interface=1 eval=1"}));
}

TEST_F(Dependants, AnEntryThatIsAddedMeanwhileWaitsForTheNextCommit) {
    listed() = {&a};
    a.on_refresh = [&] {
        for (int i = 0; i < 100; ++i) {
            listed().push_back(&b);
        }
    };
    capture(0, [&] { refresh(); });
    EXPECT_EQ(log, Log{"Refresh A interface=1 eval=1"});
}

TEST_F(Dependants, AMapThatIsEmptiedMeanwhileEndsTheWalk) {
    listed() = {&a, &b};
    a.on_refresh = [&] { binding->own_map.clear(); };
    capture(0, [&] { refresh(); });
    EXPECT_EQ(log, Log{"Refresh A interface=1 eval=1"});
    EXPECT_FALSE(committed.GetBindRefreshIsLocked());
}

TEST_F(Dependants, ARefreshThatFailsDoesNotStopTheOthers) {
    listed() = {&a, &b};
    a.refresh_result = 5;
    capture(0, [&] { refresh(); });
    EXPECT_EQ(log.size(), 2u);
}

TEST_F(Dependants, WithoutAMapNothingIsDone) {
    binding->map = nullptr;
    const auto action = [&] { refresh(); };
    EXPECT_EQ(capture(0, action).out, "");
    const char* const line =
        "Var index map is null. Cannot update dependant controls' binding expressions.\n";
    EXPECT_NE(capture(0x1, action).out.find(PREFIX + line), std::string::npos);
    support::expect_line_gate(line, 0x1, Gate::LEAF, action);
    EXPECT_FALSE(committed.GetBindRefreshIsLocked());
}

TEST_F(Dependants, WithoutABindingNothingIsDone) {
    const auto action = [&] { dependants::refresh(committed, nullptr, &device, lines); };
    const std::string line =
        "Binding is null. Cannot update dependant controls' binding expressions.\n";
    EXPECT_EQ(capture(0x1, action).out, PREFIX + line);
    support::expect_line_gate(line, 0x1, Gate::LEAF, action);
    lines.reports_missing_binding = false;
    EXPECT_EQ(capture(0x1, action).out, "");
}

TEST_F(Dependants, TheLinesNameBothEntriesAndTheParameter) {
    listed() = {&a};
    const std::string text = capture(0x1, [&] { refresh(); }).out;
    EXPECT_NE(text.find(PREFIX + "About to see if I have any dependants...\n" + PREFIX +
                        "Bind expression of entry [A] depends on [Committed][120.3.0]@i num index "
                        "levels = [1]\n" +
                        TRACE),
              std::string::npos)
        << text;
}

TEST_F(Dependants, TheLineOfATextParameterSaysSo) {
    binding->self_control_info = key_of(STRING, 77, index_of({1, 2}));
    binding->own_map[binding->self_control_info].binding_dependant_entries = {&a};
    const std::string text = capture(0x1, [&] { refresh(); }).out;
    EXPECT_NE(text.find("Bind expression of entry [A] depends on [Committed][77.1.2]@s num index "
                        "levels = [2]\n"),
              std::string::npos)
        << text;
}

// Whatever is no number counts as a text in this line.
TEST_F(Dependants, TheLineOfAParameterWithoutTypeCallsItAText) {
    binding->self_control_info = key_of(INVALID_TYPE, 77, index_of({1}));
    binding->own_map[binding->self_control_info].binding_dependant_entries = {&a};
    const std::string text = capture(0x1, [&] { refresh(); }).out;
    EXPECT_NE(text.find("[77.1.0]@s num"), std::string::npos) << text;
}

TEST_F(Dependants, TheSearchIsAnnouncedOnlyByWhoDoesSo) {
    lines.announces_walk = false;
    EXPECT_EQ(capture(0x1, [&] { refresh(); }).out.find("About to see"), std::string::npos);
}

// A menu may have as many dependants of one parameter as it has entries.
class Many_dependants : public Dependants {
protected:
    void build(int count) {
        for (int i = 0; i < count; ++i) {
            entries.push_back(std::make_unique<Refreshing>("Many"));
            listed().push_back(entries.back().get());
        }
    }
    std::size_t comparisons() {
        const std::size_t before = step_counter::dependants_compared;
        capture(0, [&] { refresh(); });
        return step_counter::dependants_compared - before;
    }
    void take_out(const Data_entry* entry) {
        listed().erase(std::remove(listed().begin(), listed().end(), entry), listed().end());
    }

    std::vector<std::unique_ptr<Refreshing>> entries;
};

TEST_F(Many_dependants, AreEachFoundAtOnce) {
    build(2000);
    EXPECT_EQ(comparisons(), 2000u);
}

TEST_F(Many_dependants, AreFoundAtOnceWhileEachLeavesTheListAndComesBack) {
    build(500);
    for (const auto& entry : entries) {
        entry->on_refresh = [this, &entry] {
            take_out(entry.get());
            listed().push_back(entry.get());
        };
    }
    EXPECT_LE(comparisons(), 2000u);
}

TEST_F(Many_dependants, AreFoundAtOnceWhileOthersComeBeforeThem) {
    build(500);
    for (const auto& entry : entries) {
        entry->on_refresh = [this] { listed().insert(listed().begin(), {&b, &c}); };
    }
    EXPECT_LE(comparisons(), 3000u);
}

// The same entries are refreshed as when each is looked for in the whole list.
TEST_F(Many_dependants, AreRefreshedAsTheListIsByTheirTurn) {
    build(12);
    for (unsigned int seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](std::size_t count) { return random() % count; };
        std::vector<Data_entry*> expected;
        std::vector<Data_entry*> refreshed;
        listed().clear();
        for (int i = 0; i < 16; ++i) {
            listed().push_back(entries[below(entries.size())].get());
        }
        const std::vector<Data_entry*> snapshot = listed();
        std::size_t turn = 0;
        // What is looked for next, up to the next entry that is refreshed.
        const auto expect_next = [&] {
            while (turn < snapshot.size() &&
                   std::find(listed().begin(), listed().end(), snapshot[turn]) == listed().end()) {
                ++turn;
            }
            if (turn < snapshot.size()) {
                expected.push_back(snapshot[turn++]);
            }
        };
        for (const auto& entry : entries) {
            entry->on_refresh = [&, at = entry.get()] {
                refreshed.push_back(at);
                for (std::size_t edits = below(4); edits > 0 && !listed().empty(); --edits) {
                    if (below(3) != 0) {
                        take_out(listed()[below(listed().size())]);
                    } else {
                        const auto place = listed().begin() +
                                           static_cast<std::ptrdiff_t>(below(listed().size() + 1));
                        listed().insert(place, entries[below(entries.size())].get());
                    }
                }
                expect_next();
            };
        }
        expect_next();
        capture(0, [&] { refresh(); });
        ASSERT_EQ(refreshed, expected) << "seed " << seed;
    }
}

TEST_F(Dependants, TheLinesAreInTheCommittingClasssCategory) {
    listed() = {&a};
    lines.place = diagnostics::place<diagnostics::Prefix::FUNCTION_FIRST, diagnostics::WRITE>(1);
    const auto action = [&] { refresh(); };
    support::expect_line_gate("About to see if I have any dependants...\n", 0x25, Gate::LEAF,
                              action);
    support::expect_line_gate("Bind expression of entry [A]", 0x25, Gate::LEAF, action);
    support::expect_line_gate(TRACE, 0, Gate::ALWAYS, action);
}

}  // namespace
