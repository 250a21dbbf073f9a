// Refresh, commit and report of enumerated entries whose options are fixed.
#include <climits>

#include "enum_fixture.h"
#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/leaf.h"

namespace {

using support::capture;
using support::Fake_binding;
using support::Fake_device;
using support::Leaf;

constexpr uint32_t GENERAL = 0x1;
constexpr unsigned int PID = 120;
constexpr unsigned int VARIDX = 3;
constexpr char TRACE[] = "@@@@@@@@@@@@@@@@@@@@@ here 14\n";

TEST(EnumRefresh, ReadsTheKey) {
    Fake_device device;
    device.expect_get_integer(PID, VARIDX, 2);
    Open_enum entry;
    EXPECT_EQ(entry.Refresh(&device, false), 0);
    EXPECT_EQ(entry.stored(), 2);
    EXPECT_EQ(entry.shown(), "High");
}

TEST(EnumRefresh, IsReachedThroughTheDispatcher) {
    Fake_device device;
    device.expect_get_integer(PID, VARIDX, 3);
    Open_enum entry;
    EXPECT_EQ(Data_entry::EntryTypeSpecificOperation(&entry, &device, nullptr, false,
                                                     Data_entry::OPERATION_REFRESH, nullptr),
              0);
    EXPECT_EQ(entry.stored(), 3);
}

TEST(EnumRefresh, ReportsAFailedReadAndSkipsTheBinding) {
    std::vector<std::string> log;
    Fake_device device;
    device.expect_get_integer(PID, VARIDX, 2, -5);
    Open_enum entry;
    entry.Set_binding_object(new Fake_binding(&log));
    log.clear();
    EXPECT_EQ(capture(GENERAL, [&] { EXPECT_EQ(entry.Refresh(&device, true), 1); }).out,
              "[Refresh][enum_entry.cpp][#] Enum Entry Refresh name=[Mode]\n"
              "Integer_model::Refresh before:m_pid=120, m_varidx=3, m_value=0 m_max=[4] "
              "m_min=[0]\n"
              "Integer_model::Refresh after:m_pid=120, m_varidx=3, m_value=2 m_max=[4] m_min=[0]\n"
              "Error with enum[Mode] refreshing.\n");
    EXPECT_TRUE(log.empty());
}

TEST(EnumRefresh, EvaluatesTheBindingAfterTheRead) {
    std::vector<std::string> log;
    Fake_device device;
    device.expect_get_integer(PID, VARIDX, 2);
    Open_enum entry;
    auto* binding = new Fake_binding(&log);
    entry.Set_binding_object(binding);
    int key_at_evaluation = -1;
    binding->on_evaluate = [&](Fake_binding&, int) { key_at_evaluation = entry.stored(); };
    log.clear();
    EXPECT_EQ(entry.Refresh(&device, true), 0);
    EXPECT_EQ(key_at_evaluation, 2);
    EXPECT_EQ(log.front(), "evaluate flags=1");
    log.clear();
    device.expect_get_integer(PID, VARIDX, 2);
    entry.Refresh(&device, false);
    EXPECT_EQ(log.front(), "printBindErrors");
}

// The application asks for the new map itself, once for any number of updates.
TEST(EnumRefresh, LeavesTheVisibleOptionsAlone) {
    Fake_device device;
    device.expect_get_integer(PID, VARIDX, 2);
    Open_enum entry;
    auto* binding = new Fake_binding();
    binding->suggest_range({{1, 1}});
    binding->suggest_keys({{1}});
    entry.Set_binding_object(binding);
    entry.Refresh(&device, true);
    EXPECT_TRUE(binding->is_updated(SUGGESTION_RANGE));
    EXPECT_EQ(entry.map_enum_to_options.size(), 4U);
    EXPECT_EQ(entry.position(), 2);
}

TEST(EnumRefresh, ReplacesAHiddenOptionByTheFirstVisibleAndCommitsIt) {
    Fake_device device;
    device.expect_get_integer(PID, VARIDX, 1);
    device.expect_set_integer(PID, VARIDX, 2);
    Open_enum entry;
    entry.show_only({2, 3});
    EXPECT_EQ(capture(GENERAL, [&] { EXPECT_EQ(entry.Refresh(&device, false), 0); }).out,
              "[Refresh][enum_entry.cpp][#] Enum Entry Refresh name=[Mode]\n"
              "Integer_model::Refresh before:m_pid=120, m_varidx=3, m_value=0 m_max=[4] "
              "m_min=[0]\n"
              "Integer_model::Refresh after:m_pid=120, m_varidx=3, m_value=1 m_max=[4] m_min=[0]\n"
              "Integer_model::Get: value[1], length[4] m_value[1]\n"
              "[Refresh][enum_entry.cpp][#] Value of the key =[1] name=[Mode]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[-1] value=[0] name=[Mode]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[-1] value=[0] name=[Mode]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[0] value=[0] name=[Mode]\n"
              "\t[valueToKey][enum_entry.cpp][#] Returning it->second=[0]=value\n"
              "[Refresh][enum_entry.cpp][#] Will commit a new and safe value for enum. new enum "
              "key[2] \n"
              "Integer_model::Set: value[2], length[4]\n"
              "[Commit][enum_entry.cpp][#] Calling m_model commit...\n"
              "Integer_model::Commit:m_pid=120, m_varidx=3, m_value=2\n");
    EXPECT_EQ(entry.stored(), 2);
}

TEST(EnumRefresh, SucceedsEvenIfTheSafeOptionIsRefused) {
    Fake_device device;
    device.expect_get_integer(PID, VARIDX, 1);
    device.expect_set_integer(PID, VARIDX, 2, -1);
    Open_enum entry;
    entry.show_only({2, 3});
    EXPECT_EQ(entry.Refresh(&device, false), 0);
}

TEST(EnumRefresh, CommitsThroughTheOperationOfTheClass) {
    class Counting : public Open_enum {
    public:
        int Commit(Data_interface*) override { return ++commits; }
        int commits = 0;
    } entry;
    Fake_device device;
    device.expect_get_integer(PID, VARIDX, 1);
    entry.show_only({2, 3});
    EXPECT_EQ(entry.Refresh(&device, false), 0);
    EXPECT_EQ(entry.commits, 1);
}

TEST(EnumRefresh, WritesNothingWhenEveryOptionIsHidden) {
    Fake_device device;
    device.expect_get_integer(PID, VARIDX, 1);
    Open_enum entry;
    entry.map_enum_to_options = {{0, -1}, {1, -1}, {2, -1}, {3, -1}};
    EXPECT_EQ(entry.Refresh(&device, false), 0);
    EXPECT_EQ(entry.stored(), 1);
}

// What replaces a hidden option must be one that the device knows.
TEST(EnumRefresh, NeverCommitsAKeyThatNamesNoOption) {
    for (const int stray : {77, 4, -5}) {
        SCOPED_TRACE(stray);
        Fake_device device;
        device.expect_get_integer(PID, VARIDX, 1);
        Open_enum entry;
        entry.map_enum_to_options = {{0, -1}, {1, -1}, {2, -1}, {3, -1}, {stray, 0}};
        EXPECT_EQ(entry.Refresh(&device, false), 0);
        EXPECT_EQ(entry.stored(), 1);
    }
}

// The smallest position is that of key 3 above the allowed keys, then of key 0 below them.
TEST(EnumRefresh, NeverCommitsAVisibleOptionThatIsNotAllowed) {
    const std::map<int, int> cases[] = {{{0, 0}, {1, -1}, {2, -1}, {3, 1}},
                                        {{0, 1}, {1, -1}, {2, 2}, {3, 3}}};
    for (const auto& positions : cases) {
        SCOPED_TRACE(positions.at(0));
        Fake_device device;
        device.expect_get_integer(PID, VARIDX, 1);
        Open_enum entry(Enum_arguments().min(1).max(2).default_value(1));
        entry.map_enum_to_options = positions;
        EXPECT_EQ(entry.Refresh(&device, false), 0);
        EXPECT_EQ(entry.stored(), 1);
    }
}

TEST(EnumRefresh, CommitsTheAllowedOptionsAtBothEnds) {
    for (const int safe_key : {1, 2}) {
        SCOPED_TRACE(safe_key);
        const int hidden = 3 - safe_key;
        Fake_device device;
        device.expect_get_integer(PID, VARIDX, hidden);
        device.expect_set_integer(PID, VARIDX, safe_key);
        Open_enum entry(Enum_arguments().min(1).max(2).default_value(1));
        entry.map_enum_to_options = {{0, 0}, {hidden, -1}, {safe_key, 1}, {3, 2}};
        EXPECT_EQ(entry.Refresh(&device, false), 0);
    }
}

TEST(EnumRefresh, WritesNothingWhenNoVisibleOptionHasTheSmallestPosition) {
    Fake_device device;
    device.expect_get_integer(PID, VARIDX, 2);
    Open_enum entry(Enum_arguments().min(1).default_value(1));
    entry.map_enum_to_options = {{1, 0}, {2, -1}, {3, -1}};
    EXPECT_EQ(entry.Refresh(&device, false), 0);
    EXPECT_EQ(entry.stored(), 2);
}

// The lookup takes the key as the device stores it.
TEST(EnumRefresh, GivesAKeyThatIsNotAllowedPositionZero) {
    Fake_device device;
    Open_enum entry;
    device.expect_get_integer(PID, VARIDX, 77);
    EXPECT_EQ(capture(GENERAL, [&] { EXPECT_EQ(entry.Refresh(&device, false), 0); }).out,
              "[Refresh][enum_entry.cpp][#] Enum Entry Refresh name=[Mode]\n"
              "Integer_model::Refresh before:m_pid=120, m_varidx=3, m_value=0 m_max=[4] "
              "m_min=[0]\n"
              "Integer_model::Refresh after:m_pid=120, m_varidx=3, m_value=77 m_max=[4] m_min=[0]\n"
              "Integer_model::Get: value[77], length[4] m_value[77]\n"
              "[Refresh][enum_entry.cpp][#] Value of the key =[77] name=[Mode]\n");
    EXPECT_EQ(entry.map_enum_to_options,
              (Open_enum::Positions{{0, 0}, {1, 1}, {2, 2}, {3, 3}, {77, 0}}));
    EXPECT_EQ(entry.stored(), 77);
    EXPECT_EQ(entry.shown(), "Off");
    EXPECT_EQ(entry.set(0), 0);
    EXPECT_EQ(entry.stored(), 0);
}

// Such a key is not hidden, so the device keeps it even where the smallest key is hidden.
TEST(EnumRefresh, LeavesAKeyThatIsNotAllowedToTheDevice) {
    for (const int key : {77, -5}) {
        SCOPED_TRACE(key);
        Fake_device device;
        device.expect_get_integer(PID, VARIDX, key);
        Open_enum entry;
        entry.show_only({2, 3});
        EXPECT_EQ(entry.Refresh(&device, false), 0);
        EXPECT_EQ(entry.stored(), key);
    }
}

TEST(EnumRefresh, GivesANegativeNumberNoPosition) {
    Fake_device device;
    Open_enum entry;
    for (const int key : {-1, -5, INT_MIN}) {
        SCOPED_TRACE(key);
        device.expect_get_integer(PID, VARIDX, key);
        EXPECT_EQ(entry.Refresh(&device, false), 0);
        EXPECT_EQ(entry.shown(), "Off");
        EXPECT_EQ(entry.shown(20, 0), "Off");
        EXPECT_EQ(entry.set(0), 0) << "the first option can still be selected";
    }
    EXPECT_EQ(entry.map_enum_to_options.size(), 4U);
}

TEST(EnumRefresh, GivesAnUnknownKeyPositionZero) {
    Fake_device device;
    device.expect_get_integer(PID, VARIDX, 2);
    Open_enum entry;
    entry.map_enum_to_options = {{0, -1}};
    EXPECT_EQ(entry.Refresh(&device, false), 0);
    EXPECT_EQ(entry.map_enum_to_options, (Open_enum::Positions{{0, -1}, {2, 0}}));
}

TEST(EnumCommit, WritesTheKey) {
    Fake_device device;
    device.expect_set_integer(PID, VARIDX, 3);
    Open_enum entry;
    entry.show_only({0, 3});
    entry.set(1);
    EXPECT_EQ(entry.Commit(&device), 0);
}

TEST(EnumCommit, ReportsAFailedWrite) {
    Fake_device device;
    device.expect_set_integer(PID, VARIDX, 0, 77);
    EXPECT_EQ(Open_enum().Commit(&device), 1);
}

TEST(EnumCommit, SaysNothingOfAMissingBinding) {
    Fake_device device;
    device.expect_set_integer(PID, VARIDX, 0);
    Open_enum entry;
    EXPECT_EQ(capture(0x21, [&] { entry.Commit(&device); }).out,
              "[Commit][enum_entry.cpp][#] Calling m_model commit...\n"
              "Integer_model::Commit:m_pid=120, m_varidx=3, m_value=0\n");
}

TEST(EnumCommit, ReportsAMissingMap) {
    Fake_device device;
    device.expect_set_integer(PID, VARIDX, 0, -1);
    Open_enum entry;
    auto* binding = new Fake_binding();
    binding->map = nullptr;
    entry.Set_binding_object(binding);
    EXPECT_EQ(
        capture(GENERAL, [&] { EXPECT_EQ(entry.Commit(&device), 1); }).out,
        "[Commit][enum_entry.cpp][#] Calling m_model commit...\n"
        "Integer_model::Commit:m_pid=120, m_varidx=3, m_value=0\n"
        "[Get_var_index_map][entry_binding.cpp][#] [Mode]\n"
        "[Commit][enum_entry.cpp][#] Var index map is null. Cannot update dependant controls' "
        "binding expressions.\n");
}

TEST(EnumCommit, RefreshesTheDependantsThatAreNotLocked) {
    std::vector<std::string> log;
    Fake_device device;
    device.expect_set_integer(PID, VARIDX, 0, -1);
    Open_enum entry;
    auto* binding = new Fake_binding();
    entry.Set_binding_object(binding);
    Leaf first("First", nullptr, {Data_entry::RANGE_LEAF, &log});
    Leaf locked("Locked", nullptr, {Data_entry::RANGE_LEAF, &log});
    Leaf last("Last", nullptr, {Data_entry::RANGE_LEAF, &log});
    locked.SetBindRefreshIsLocked(true);
    binding->own_map[binding->self_control_info].binding_dependant_entries = {&first, &locked,
                                                                              &entry, &last};
    EXPECT_EQ(capture(0, [&] { EXPECT_EQ(entry.Commit(&device), 1); }).out,
              std::string(TRACE) + TRACE + TRACE + TRACE);
    EXPECT_EQ(log, (std::vector<std::string>{"Refresh First interface=1 eval=1",
                                             "Refresh Last interface=1 eval=1"}));
    EXPECT_FALSE(entry.GetBindRefreshIsLocked());

    device.expect_set_integer(PID, VARIDX, 0);
    const std::string out = capture(0x2E, [&] { entry.Commit(&device); }).out;
    EXPECT_EQ(out.find("depends on"), std::string::npos) << "the line is under the general mask";
    device.expect_set_integer(PID, VARIDX, 0);
    const std::string all = capture(GENERAL, [&] { entry.Commit(&device); }).out;
    EXPECT_NE(all.find("[Commit][enum_entry.cpp][#] Bind expression of entry [First] depends on "
                       "[Mode][120.3.0]@i num index levels = [1]\n" +
                       std::string(TRACE)),
              std::string::npos);
    EXPECT_EQ(all.find("About to see if I have any dependants"), std::string::npos);
}

TEST(EnumCommit, AddsARecordForAParameterThatNothingDependsOn) {
    Fake_device device;
    device.expect_set_integer(PID, VARIDX, 0);
    Open_enum entry;
    auto* binding = new Fake_binding();
    entry.Set_binding_object(binding);
    entry.Commit(&device);
    EXPECT_EQ(binding->own_map.count(binding->self_control_info), 1U);
}

constexpr char BASE[] = "Mode varid[120.3.0@i] num_index_levels=[1] type[2] vis[1] shortcut[-1] ";

TEST(EnumProperties, ListEveryKeyWithItsText) {
    Open_enum entry;
    EXPECT_EQ(entry.getProperties(0),
              std::string(BASE) + "enum={  0(Off)  1(Low)  2(High)  3(Auto)  }");
    EXPECT_EQ(entry.getProperties(0x8), "Mode enum={  0(Off)  1(Low)  2(High)  3(Auto)  }");
}

TEST(EnumProperties, ListControlOptions) {
    Open_enum entry;
    entry.Set_control_options({{1, {"gps", "slotn"}}});
    EXPECT_EQ(entry.getProperties(0x8),
              "Mode enum={  0(Off)  1(Low) options:gps slotn  2(High)  3(Auto)  }");
    EXPECT_EQ(entry.control_options, (std::map<int, std::vector<std::string>>{
                                         {0, {}}, {1, {"gps", "slotn"}}, {2, {}}, {3, {}}}))
        << "a key without options gets an empty list";
}

TEST(EnumProperties, ListKeysWithoutText) {
    Texts texts({"Off", "Low"});
    texts.remove(1);
    Open_enum entry(Enum_arguments().texts(&texts).max(1));
    entry.map_enum_to_options[-3] = 0;
    entry.map_enum_to_options[9] = 0;
    EXPECT_EQ(entry.getProperties(0x8), "Mode enum={  -3()  0(Off)  1()  9()  }");
}

}  // namespace
