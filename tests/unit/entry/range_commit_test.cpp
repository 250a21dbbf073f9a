#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "range_fixture.h"
#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/leaf.h"

using support::capture;
using support::Fake_binding;
using support::Fake_device;
using support::Leaf;

namespace {

using Log = std::vector<std::string>;

constexpr char HERE[] = "@@@@@@@@@@@@@@@@@@@@@ here 14\n";

range_s range_of(int min_inclusive, int max_exclusive) {
    return {min_inclusive, max_exclusive, {}};
}

std::string commit_lines(const std::string& text) {
    return "[Commit][range_entry.cpp][#] " + text + "\n";
}

// A range entry with a binding, a device and three entries that depend on its parameter.
struct Range_commit : testing::Test {
    Range_commit() {
        entry.Set_binding_object(binding);
        record().binding_dependant_entries = {&first, &second, &third};
        log.clear();
    }

    EntryModelCache& record() { return binding->own_map[binding->self_control_info]; }

    Log log;
    Leaf first{"First", nullptr, {Data_entry::RANGE_LEAF, &log}};
    Leaf second{"Second", nullptr, {Data_entry::ENUM_LEAF, &log}};
    Leaf third{"Third", nullptr, {Data_entry::STRING_LEAF, &log}};
    Fake_device device;
    Open_range entry;
    Fake_binding* binding = new Fake_binding(nullptr);  // the entry owns it
};

TEST_F(Range_commit, WritesTheValueAndThenRefreshesTheDependants) {
    device.expect_set_integer(120, 3, 10);
    EXPECT_EQ(capture(0, [&] { EXPECT_EQ(entry.Commit(&device), Data_entry::OK); }).out,
              std::string(HERE) + HERE + HERE + HERE + HERE + HERE);
    EXPECT_EQ(log, (Log{"Refresh First interface=1 eval=1", "Refresh Second interface=1 eval=1",
                        "Refresh Third interface=1 eval=1"}));
}

TEST_F(Range_commit, RefreshesTheDependantsOfAFailedWrite) {
    device.expect_set_integer(120, 3, 10, 7);
    capture(0, [&] { EXPECT_EQ(entry.Commit(&device), Data_entry::ERROR); });
    EXPECT_EQ(log.size(), 3U);
}

TEST_F(Range_commit, PassesOverDependantsThatAreLocked) {
    second.SetBindRefreshIsLocked(true);
    device.expect_set_integer(120, 3, 10);
    EXPECT_EQ(capture(0, [&] { entry.Commit(&device); }).out,
              std::string(HERE) + HERE + HERE + HERE);
    EXPECT_EQ(log, (Log{"Refresh First interface=1 eval=1", "Refresh Third interface=1 eval=1"}));
}

TEST_F(Range_commit, DoesNotRefreshItself) {
    record().binding_dependant_entries = {&entry, &third};
    device.expect_set_integer(120, 3, 10);
    EXPECT_EQ(capture(0, [&] { entry.Commit(&device); }).out, std::string(HERE) + HERE);
    EXPECT_EQ(log, Log{"Refresh Third interface=1 eval=1"});
}

class Watching_leaf : public Leaf {
public:
    explicit Watching_leaf(Data_entry& watched) : Leaf("Watching"), m_watched(watched) {}
    int Refresh(Data_interface*, bool) override {
        saw_lock = m_watched.GetBindRefreshIsLocked();
        return OK;
    }
    bool saw_lock = false;

private:
    Data_entry& m_watched;
};

TEST_F(Range_commit, IsLockedOnlyWhileItsDependantsAreRefreshed) {
    Watching_leaf watching(entry);
    record().binding_dependant_entries = {&watching};
    device.expect_set_integer(120, 3, 10);
    EXPECT_FALSE(entry.GetBindRefreshIsLocked());
    capture(0, [&] { entry.Commit(&device); });
    EXPECT_TRUE(watching.saw_lock);
    EXPECT_FALSE(entry.GetBindRefreshIsLocked());
}

TEST_F(Range_commit, AddsARecordForAParameterWithoutOne) {
    binding->own_map.clear();
    device.expect_set_integer(120, 3, 10);
    EXPECT_EQ(capture(0, [&] { entry.Commit(&device); }).out, "");
    EXPECT_EQ(binding->own_map.count(binding->self_control_info), 1U);
}

TEST_F(Range_commit, WithoutAMapOnlyWrites) {
    binding->map = nullptr;
    device.expect_set_integer(120, 3, 10, -1);
    EXPECT_EQ(capture(0x1,
                      [&] {
                          EXPECT_EQ(entry.Commit(&device), Data_entry::ERROR);
                          EXPECT_FALSE(entry.GetBindRefreshIsLocked());
                      })
                  .out,
              commit_lines("Calling m_model commit...") +
                  "Integer_model::Commit:m_pid=120, m_varidx=3, m_value=10\n"
                  "[Get_var_index_map][entry_binding.cpp][#] [Gain]\n" +
                  commit_lines("Var index map is null. Cannot update dependant controls' binding "
                               "expressions."));
}

TEST_F(Range_commit, WithoutABindingOnlyWrites) {
    Open_range bare;
    device.expect_set_integer(120, 3, 10);
    EXPECT_EQ(capture(0x1, [&] { EXPECT_EQ(bare.Commit(&device), Data_entry::OK); }).out,
              commit_lines("Calling m_model commit...") +
                  "Integer_model::Commit:m_pid=120, m_varidx=3, m_value=10\n" +
                  commit_lines(
                      "Binding is null. Cannot update dependant controls' binding expressions."));
}

TEST_F(Range_commit, ReportsEveryStep) {
    record().binding_dependant_entries = {&first};
    device.expect_set_integer(120, 3, 10);
    EXPECT_EQ(capture(0x1, [&] { entry.Commit(&device); })
                  .out.find(commit_lines("Calling m_model commit...")),
              0U);
    device.expect_set_integer(120, 3, 10);
    // Bit 0x2 of the model's read and bits of the dispatcher keep other lines apart from the entry's.
    const std::string out = capture(0x1, [&] { entry.Commit(&device); }).out;
    EXPECT_NE(
        out.find(
            commit_lines("About to see if I have any dependants...") +
            commit_lines("Bind expression of entry [First] depends on [Gain][120.3.0]@i num index "
                         "levels = [1]") +
            HERE),
        std::string::npos)
        << out;
}

TEST_F(Range_commit, NamesAWrittenTextParameterWithItsLetter) {
    const Index_t index = support::index_of({4, 5});
    binding->self_control_info = {STRING, 999, index};
    record().binding_dependant_entries = {&first};
    device.expect_set_integer(120, 3, 10);
    const std::string out = capture(0x1, [&] { entry.Commit(&device); }).out;
    EXPECT_NE(
        out.find("Bind expression of entry [First] depends on [Gain][999.4.5]@s num index levels = "
                 "[2]\n"),
        std::string::npos)
        << out;
}

TEST_F(Range_commit, IsSilentUnderTheQuietBitButForTheTrace) {
    record().binding_dependant_entries = {&first};
    device.expect_set_integer(120, 3, 10);
    const std::string out = capture(0x4001, [&] { entry.Commit(&device); }).out;
    EXPECT_EQ(out.find("[Commit]"), std::string::npos) << out;
    EXPECT_NE(out.find(HERE), std::string::npos);
}

// A dependant whose refresh takes another one out of the record.
class Removing_leaf : public Leaf {
public:
    Removing_leaf(EntryModelCache& cache) : Leaf("Removing"), m_cache(cache) {}
    int Refresh(Data_interface*, bool) override {
        m_cache.binding_dependant_entries.clear();
        return OK;
    }

private:
    EntryModelCache& m_cache;
};

TEST_F(Range_commit, PassesOverDependantsThatHaveLeftMeanwhile) {
    Removing_leaf removing(record());
    record().binding_dependant_entries = {&first, &removing, &third};
    device.expect_set_integer(120, 3, 10);
    EXPECT_EQ(capture(0, [&] { entry.Commit(&device); }).out,
              std::string(HERE) + HERE + HERE + HERE);
    EXPECT_EQ(log, Log{"Refresh First interface=1 eval=1"});
}

// --- Refresh

TEST(Range_refresh, ReadsTheValue) {
    Fake_device device;
    Open_range entry({0, 100, 10});
    device.expect_get_integer(120, 3, 100);
    EXPECT_EQ(entry.Refresh(&device, true), Data_entry::OK);
    EXPECT_EQ(entry.value(), 100);
}

TEST(Range_refresh, PassesOnAFailedReadAndDoesNothingElse) {
    Fake_device device;
    Log log;
    Open_range entry({0, 100, 10});
    auto* binding = new Fake_binding(&log);
    binding->suggest_range({{50, 60}});
    entry.Set_binding_object(binding);
    log.clear();
    device.expect_get(120, 3, 4, "", -5);
    EXPECT_EQ(entry.Refresh(&device, true), Data_entry::ERROR);
    EXPECT_EQ(log, Log{});
    EXPECT_EQ(entry.value(), 10);
    EXPECT_EQ(entry.Get_max(), 100);
}

TEST(Range_refresh, CorrectsAValueToTheNearerBoundAndCommitsIt) {
    struct Correction {
        int stored;
        int corrected;
    };
    for (const Correction& correction : {Correction{101, 100}, Correction{INT_MAX, 100},
                                         Correction{-1, 0}, Correction{INT_MIN, 0}}) {
        SCOPED_TRACE(correction.stored);
        Fake_device device;
        Open_range entry({0, 100, 10});
        device.expect_get_integer(120, 3, correction.stored);
        device.expect_set_integer(120, 3, correction.corrected);
        EXPECT_EQ(entry.Refresh(&device, true), 1);
        EXPECT_EQ(entry.value(), correction.corrected);
    }
}

TEST(Range_refresh, ReportsACorrectionAsOneEvenWhenTheWriteFails) {
    Fake_device device;
    Open_range entry({0, 100, 10});
    device.expect_get_integer(120, 3, 101);
    device.expect_set_integer(120, 3, 100, -1);
    EXPECT_EQ(entry.Refresh(&device, true), 1);
    EXPECT_EQ(entry.value(), 100);
}

// Intended: without an allowed value the device is set to the lower limit of int, since every value lies
// above the crossed upper bound.
TEST(Range_refresh, WithoutAnAllowedValueWritesTheLowerLimitOfInt) {
    Fake_device device;
    Open_range entry({0, 100, 10});
    auto* binding = new Fake_binding;
    binding->suggest_range({{0, 100}});
    entry.Set_binding_object(binding);
    device.expect_get_integer(120, 3, 10);
    device.expect_set_integer(120, 3, INT_MIN);
    EXPECT_EQ(entry.Refresh(&device, true), 1);
    device.expect_get_integer(120, 3, INT_MIN);
    device.expect_set_integer(120, 3, INT_MAX);
    EXPECT_EQ(entry.Refresh(&device, true), 1) << "only the limit itself is not above";
}

TEST(Range_refresh, UsesWhatTheBindingSuggestsWhileItIsEvaluated) {
    Fake_device device;
    Log log;
    Open_range entry({0, 100, 10});
    entry.setValidRangeAndValues({range_of(0, 101)});
    auto* binding = new Fake_binding(&log);
    binding->on_evaluate = [&](Fake_binding& self, int) {
        EXPECT_EQ(device.calls().size(), 1U) << "the value is read first";
        self.suggest_range({{20, 30}});
    };
    entry.Set_binding_object(binding);
    log.clear();
    device.expect_get_integer(120, 3, 10);
    device.expect_set_integer(120, 3, 20);
    EXPECT_EQ(entry.Refresh(&device, true), 1);
    EXPECT_EQ(log, (Log{"evaluate flags=1", "printBindErrors", "clearBindErrors", "getSuggestion 2",
                        "clearSuggestion 2", "getVarIndexMap"}));
}

TEST(Range_refresh, DoesNotEvaluateTheBindingUnasked) {
    Fake_device device;
    Log log;
    Open_range entry({0, 100, 10});
    entry.Set_binding_object(new Fake_binding(&log));
    log.clear();
    device.expect_get_integer(120, 3, 10);
    EXPECT_EQ(entry.Refresh(&device, false), 0);
    EXPECT_EQ(log, (Log{"printBindErrors", "clearBindErrors"}));
}

// Intended: a correction that the binding warns of is not stored, and the value as it is goes back.
TEST(Range_refresh, CommitsTheStoredValueWhenTheBindingWarnsOfTheCorrection) {
    Fake_device device;
    Open_range entry({0, 100, 10});
    auto* binding = new Fake_binding;
    binding->suggest_warnings({"Not now"});
    entry.Set_binding_object(binding);
    device.expect_get_integer(120, 3, 101);
    device.expect_set_integer(120, 3, 101);
    EXPECT_EQ(entry.Refresh(&device, true), 1);
    EXPECT_EQ(binding->shown_warnings, Log{"Not now"});
}

TEST(Range_refresh, OfTheParameterThatIsNeverReadChecksTheStoredValue) {
    Fake_device device;
    Range_arguments arguments;
    arguments.pid = 65547;
    Open_range entry(arguments);
    EXPECT_EQ(entry.Refresh(&device, true), 0);
    entry.put(101);
    device.expect_set_integer(65547, 3, 100);
    EXPECT_EQ(entry.Refresh(&device, true), 1);
}

class Overridden_steps : public Open_range {
public:
    int updateRange() override {
        steps += "updateRange ";
        return 0;
    }
    int Get_value(void* buffer, unsigned int length) override {
        steps += "Get_value ";
        return Open_range::Get_value(buffer, length);
    }
    int Set_value(const void* buffer, unsigned int length) override {
        steps += "Set_value ";
        return Open_range::Set_value(buffer, length);
    }
    int Commit(Data_interface*) override {
        steps += "Commit ";
        return 9;
    }
    std::string steps;
};

TEST(Range_refresh, GoesThroughTheSlotsInOrder) {
    Fake_device device;
    Overridden_steps entry;
    device.expect_get_integer(120, 3, 50);
    EXPECT_EQ(entry.Refresh(&device, true), 0);
    EXPECT_EQ(entry.steps, "updateRange Get_value ");
    entry.steps.clear();
    device.expect_get_integer(120, 3, 101);
    EXPECT_EQ(entry.Refresh(&device, true), 1);
    EXPECT_EQ(entry.steps, "updateRange Get_value Set_value Commit ");
}

TEST(Range_refresh, ReportsACorrection) {
    Fake_device device;
    Open_range entry({0, 100, 10});
    device.expect_get_integer(120, 3, 101);
    device.expect_set_integer(120, 3, 100);
    EXPECT_EQ(
        capture(0x1, [&] { entry.Refresh(&device, true); }).out,
        "Integer_model::Refresh before:m_pid=120, m_varidx=3, m_value=10 m_max=[100] m_min=[0]\n"
        "Integer_model::Refresh after:m_pid=120, m_varidx=3, m_value=101 m_max=[100] m_min=[0]\n"
        "[updateRange][range_entry.cpp][#] No bindings, so the total range stays the way it is. m_min[0] "
        "m_max[100] entry[Gain]\n"
        "Integer_model::Get: value[101], length[4] m_value[101]\n"
        "[Get_value][range_entry.cpp][#] Returning range value [101]. \n"
        "[Refresh][range_entry.cpp][#] Value stored on product[101] is not in range [0,100]. "
        "Setting/Commiting product to the value [100]\n"
        "Integer_model::Set: value[100], length[4]\n"
        "[Commit][range_entry.cpp][#] Calling m_model commit...\n"
        "Integer_model::Commit:m_pid=120, m_varidx=3, m_value=100\n"
        "[Commit][range_entry.cpp][#] Binding is null. Cannot update dependant controls' binding "
        "expressions.\n");
}

TEST(Range_refresh, ThroughTheDispatcherNeedsAnInterface) {
    Open_range entry;
    EXPECT_EQ(Data_entry::EntryTypeSpecificOperation(&entry, nullptr, nullptr, true,
                                                     Data_entry::OPERATION_REFRESH, nullptr),
              -1);
    Fake_device device;
    device.expect_get_integer(120, 3, 42);
    EXPECT_EQ(Data_entry::EntryTypeSpecificOperation(&entry, &device, nullptr, true,
                                                     Data_entry::OPERATION_REFRESH, nullptr),
              0);
    EXPECT_EQ(entry.value(), 42);
}

// Two ranges that follow each other: what the first commits narrows the second, whose value is corrected.
TEST(Range_refresh, ACommitNarrowsADependantRangeWhoseValueIsThenCorrected) {
    Fake_device device;
    Open_range limit({0, 100, 30});
    Range_arguments dependant_arguments;
    dependant_arguments.name = "Level";
    dependant_arguments.pid = 121;
    Open_range level(dependant_arguments);
    level.setValidRangeAndValues({range_of(0, 101)});
    auto* limits = new Fake_binding;
    auto* levels = new Fake_binding;
    limit.Set_binding_object(limits);
    level.Set_binding_object(levels);
    limits->own_map[limits->self_control_info].binding_dependant_entries = {&level};
    levels->on_evaluate = [&](Fake_binding& self, int) {
        self.suggest_range({{0, limit.value()}});
    };

    device.expect_set_integer(120, 3, 30);
    device.expect_get_integer(121, 3, 80);
    device.expect_set_integer(121, 3, 30);
    EXPECT_EQ(capture(0, [&] { limit.Commit(&device); }).out, std::string(HERE) + HERE);
    EXPECT_EQ(level.value(), 30);
    EXPECT_EQ(level.Get_max(), 30);
}

}  // namespace
