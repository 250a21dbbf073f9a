// Keys and visible positions: construction, reading, selecting and stepping.
#include <climits>
#include <cstring>

#include "enum_fixture.h"
#include "support/capture.h"
#include "support/fake_binding.h"

namespace {

using support::capture;
using support::Fake_binding;

constexpr uint32_t GENERAL = 0x1;

TEST(EnumConstruction, StartsWithEveryOptionVisible) {
    Open_enum entry(Enum_arguments().default_value(2));
    EXPECT_EQ(entry.map_enum_to_options, (Open_enum::Positions{{0, 0}, {1, 1}, {2, 2}, {3, 3}}));
    EXPECT_EQ(entry.m_min, 0);
    EXPECT_EQ(entry.m_max, 3);
    EXPECT_EQ(entry.m_size, 4);
    EXPECT_EQ(entry.m_size_enum, 4);
    EXPECT_EQ(entry.m_size_visible, -1);
    EXPECT_EQ(entry.max_map_size, 0);
    EXPECT_EQ(entry.m_scroll_offset, 0U);
    EXPECT_EQ(entry.m_scroll_delay, 0U);
    EXPECT_EQ(entry.stored(), 2);
    EXPECT_TRUE(entry.cached_binding_controls.empty());
    EXPECT_TRUE(entry.control_options.empty());
    EXPECT_EQ(entry.m_value, four_texts().array());
}

TEST(EnumConstruction, AnswersWhatItIs) {
    Open_enum entry(Enum_arguments().min(1).max(2).default_value(1));
    EXPECT_EQ(entry.Get_entry_type(), Data_entry::ENUM_LEAF);
    EXPECT_EQ(entry.Get_return_type_int_or_string(), INTEGER);
    EXPECT_EQ(entry.Get_min(), 1);
    EXPECT_EQ(entry.Get_max(), 2);
    EXPECT_EQ(entry.Get_min_enum(), 1);
    EXPECT_EQ(entry.Get_max_enum(), 2);
    EXPECT_EQ(entry.Get_size(), 4);
    EXPECT_EQ(entry.Get_size_enum(), 4);
    EXPECT_EQ(entry.GetLiveDataProcessor(), nullptr);
    EXPECT_EQ(entry.Get_access_type(), Data_entry::READ_WRITE);
    EXPECT_EQ(entry.Get_orig_access_type(), Data_entry::READ_WRITE);
    entry.setNodeLevel(3);
    EXPECT_EQ(entry.Get_menu_level(), 3U);
}

TEST(EnumConstruction, IsActiveOnlyIfToldSo) {
    EXPECT_TRUE(Open_enum().Is_active());
    EXPECT_FALSE(Open_enum(Enum_arguments().active(false)).Is_active());
}

TEST(EnumConstruction, ActivityAndBoundsAreSeenThroughTheBase) {
    Open_enum entry(Enum_arguments().min(1).default_value(1).active(false));
    const Data_entry& base = entry;
    EXPECT_FALSE(base.Is_active());
    EXPECT_EQ(base.Get_min(), 1);
    EXPECT_EQ(base.Get_max(), 3);
}

TEST(EnumConstruction, CommitThroughTheBaseDoesNothing) {
    Open_enum entry;
    Data_entry& base = entry;
    EXPECT_EQ(base.Commit(), Data_entry::OK);
}

using EnumConstructionDeathTest = ::testing::Test;

TEST(EnumConstructionDeathTest, RefusesInconsistentArguments) {
    Texts no_first({"Off"});
    no_first.remove(0);
    EXPECT_DEATH(Open_enum(Enum_arguments().min(1)), "Assertion `min<=default_value' failed");
    EXPECT_DEATH(Open_enum(Enum_arguments().default_value(5)),
                 "Assertion `default_value<=max' failed");
    EXPECT_DEATH(Open_enum(Enum_arguments().min(-1)), "Assertion `min>=0' failed");
    EXPECT_DEATH(Open_enum(Enum_arguments().max(5)),
                 "Assertion `\\(unsigned\\)max<=enum_size' failed");
    EXPECT_DEATH(Open_enum(Enum_arguments().max(-1)),
                 "Assertion `\\(unsigned\\)max<=enum_size' failed");
    EXPECT_DEATH(Open_enum(Enum_arguments().texts(&no_first).max(1)),
                 "Assertion `\\*enum_array' failed");
    EXPECT_DEATH(Enum_entry("Mode", "An option", 120, support::any_index(), 0, 4, 0, nullptr, 4,
                            nullptr, Data_entry::READ_WRITE, 1, true, -1, nullptr, nullptr, nullptr,
                            nullptr, nullptr, nullptr),
                 "Assertion `enum_array' failed");
}

TEST(EnumConstructionDeathTest, ChecksTheSmallestKeyFirst) {
    EXPECT_DEATH(Open_enum(Enum_arguments().min(-1).max(9)), "Assertion `min>=0' failed");
}

TEST(EnumConstruction, AcceptsAsManyKeysAsThereAreTexts) {
    Open_enum entry(Enum_arguments().max(4).default_value(4));
    EXPECT_EQ(entry.Get_max(), 4);
    EXPECT_EQ(entry.shown(20, -1, 1), "-");
}

TEST(EnumKeys, ReadsAKeyThatIsNotAllowedAsTheSmallest) {
    for (const int key : {0, 3, 77, -1, INT_MIN, INT_MAX}) {
        SCOPED_TRACE(key);
        Open_enum entry(Enum_arguments().min(1).max(2).default_value(1));
        entry.put(key);
        EXPECT_EQ(entry.Get_integer(), 1);
        EXPECT_EQ(entry.Get_integer_enum(), 1);
        int read = -99;
        EXPECT_EQ(entry.Get_key_enum(&read, sizeof read), 0);
        EXPECT_EQ(read, 1);
        EXPECT_EQ(entry.stored(), key) << "reading stores nothing";
    }
}

TEST(EnumKeys, ReportsAKeyThatIsNotAllowed) {
    Open_enum entry(Enum_arguments().min(1).max(2).default_value(1));
    entry.put(77);
    int key = 0;
    EXPECT_EQ(capture(GENERAL, [&] { entry.Get_key_enum(&key, sizeof key); }).out,
              "Integer_model::Get: value[77], length[4] m_value[77]\n"
              "enum too small or large. min[1] get_returned[77] max[2]\n");
}

TEST(EnumKeys, AnUnknownKeyGetsPositionZeroWheneverItIsLookedUp) {
    const std::pair<const char*, void (*)(Open_enum&)> lookups[] = {
        {"Get_key_enum",
         [](Open_enum& entry) {
             int key = 0;
             entry.Get_key_enum(&key, sizeof key);
         }},
        {"Get_integer", [](Open_enum& entry) { entry.Get_integer(); }},
        {"Get_integer_enum", [](Open_enum& entry) { entry.Get_integer_enum(); }},
        {"Get_value", [](Open_enum& entry) { entry.position(); }},
        {"Inc_value", [](Open_enum& entry) { entry.Inc_value(9, 0); }},
        {"Get_display_string", [](Open_enum& entry) { entry.shown(); }},
    };
    for (const auto& [name, look_up] : lookups) {
        SCOPED_TRACE(name);
        Open_enum entry(Enum_arguments().default_value(2));
        entry.map_enum_to_options.clear();
        look_up(entry);
        EXPECT_EQ(entry.map_enum_to_options, (Open_enum::Positions{{2, 0}}));
    }
}

TEST(EnumKeys, NamesTheOperationThatWasAsked) {
    Open_enum entry(Enum_arguments().default_value(2));
    EXPECT_EQ(capture(GENERAL & ~0x2U, [&] { entry.Get_integer(); }).out,
              "Integer_model::Get: value[2], length[4] m_value[2]\n"
              "[Get_integer][enum_entry.cpp][#] int=[2]\n");
    EXPECT_EQ(capture(GENERAL, [&] { entry.Get_integer_enum(); }).out,
              "Integer_model::Get: value[2], length[4] m_value[2]\n"
              "[Get_integer_enum][enum_entry.cpp][#] int=[2]\n");
}

// Its bytes have the order of the processor.
constexpr int TWO = 2;

TEST(EnumKeys, DeliversAtMostTheBytesAskedFor) {
    Open_enum entry(Enum_arguments().default_value(2));
    unsigned char bytes[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    unsigned char key[sizeof(int)];
    std::memcpy(key, &TWO, sizeof key);
    EXPECT_EQ(entry.Get_key_enum(bytes, 1), 0);
    EXPECT_EQ(bytes[0], key[0]);
    EXPECT_EQ(bytes[1], 9);
    EXPECT_EQ(entry.Get_value(bytes, 8), 0);
    EXPECT_EQ(std::memcmp(bytes, key, sizeof key), 0);
    EXPECT_EQ(bytes[4], 9);
}

using EnumKeysDeathTest = ::testing::Test;

TEST(EnumKeysDeathTest, NeedsABuffer) {
    Open_enum entry;
    int value = 0;
    EXPECT_DEATH(entry.Get_key_enum(nullptr, 4), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(entry.Get_key_enum(&value, 0), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(entry.Get_value(nullptr, 4), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(entry.Get_value(nullptr, 4, 1), "Assertion `buffer&&length' failed");
    EXPECT_DEATH(entry.Set_value(nullptr, 4), "Assertion `buffer&&length' failed");
}

TEST(EnumValueToKey, FindsTheFirstKeyOfAPosition) {
    Open_enum entry;
    const std::map<int, int> map = {{0, 0}, {1, -1}, {2, 1}, {3, -1}, {4, 1}};
    EXPECT_EQ(entry.valueToKey(map, 0), 0);
    EXPECT_EQ(entry.valueToKey(map, 1), 2);
    EXPECT_EQ(entry.valueToKey(map, -1), 1) << "hidden keys are found by position -1";
    EXPECT_EQ(entry.valueToKey(map, 2), -1);
    EXPECT_EQ(entry.valueToKey({}, 0), -1);
}

TEST(EnumValueToKey, ReportsEveryKeyItLooksAt) {
    Open_enum entry;
    EXPECT_EQ(capture(GENERAL,
                      [&] {
                          entry.valueToKey({{0, -1}, {4, 5}, {6, 7}}, 5);
                      })
                  .out,
              "[valueToKey][enum_entry.cpp][#] it->second=[-1] value=[5] name=[Mode]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[5] value=[5] name=[Mode]\n"
              "\t[valueToKey][enum_entry.cpp][#] Returning it->second=[5]=value\n");
}

TEST(EnumGetValue, DeliversTheVisiblePosition) {
    Open_enum entry;
    entry.show_only({0, 2, 3});
    entry.put(2);
    EXPECT_EQ(entry.position(), 1);
    entry.put(3);
    EXPECT_EQ(entry.position(), 2);
}

TEST(EnumGetValue, DeliversTheSmallestKeyForAHiddenOption) {
    Open_enum entry(Enum_arguments().min(1).default_value(2));
    entry.map_enum_to_options = {{1, 1}, {2, -1}, {3, 2}};
    EXPECT_EQ(entry.position(), 1);
}

TEST(EnumGetValue, DeliversTheSmallestKeyForAPositionBelowIt) {
    Open_enum entry(Enum_arguments().min(2).default_value(3));
    entry.map_enum_to_options = {{2, 0}, {3, 1}};
    EXPECT_EQ(entry.position(), 2);
}

TEST(EnumGetValue, NeverDeliversTheMarkOfAHiddenOption) {
    class Shifted : public Open_enum {
    public:
        int Get_min() const override { return -2; }
    } entry;
    entry.map_enum_to_options[0] = -1;
    EXPECT_EQ(entry.position(), -2);
}

TEST(EnumGetValue, Reports) {
    Open_enum entry(Enum_arguments().default_value(1));
    int value = 0;
    EXPECT_EQ(capture(GENERAL, [&] { entry.Get_value(&value, sizeof value); }).out,
              "Integer_model::Get: value[1], length[4] m_value[1]\n"
              "[Get_integer_enum][enum_entry.cpp][#] int=[1]\n"
              "[Get_value][enum_entry.cpp][#] key=[1] value=[1]\n");
    entry.map_enum_to_options[1] = -1;
    EXPECT_EQ(capture(GENERAL, [&] { entry.Get_value(&value, sizeof value); }).out,
              "Integer_model::Get: value[1], length[4] m_value[1]\n"
              "[Get_integer_enum][enum_entry.cpp][#] int=[1]\n"
              "[Get_value][enum_entry.cpp][#] did not pass check, returning min=[0]\n"
              "[Get_value][enum_entry.cpp][#] key=[1] value=[0]\n");
}

TEST(EnumGetValueOfPosition, DeliversTheKey) {
    Open_enum entry;
    entry.show_only({0, 2, 3});
    const std::pair<int, int> cases[] = {{0, 0}, {1, 2}, {2, 3}, {-1, 0}, {-5, 0}, {99, 0}};
    for (const auto& [position, expected] : cases) {
        SCOPED_TRACE(position);
        int key = -99;
        EXPECT_EQ(entry.Get_value(&key, sizeof key, position), 0);
        EXPECT_EQ(key, expected);
    }
}

TEST(EnumGetValueOfPosition, TakesThePositionAsKeyWithoutAMap) {
    Open_enum entry;
    entry.map_enum_to_options.clear();
    int key = -99;
    EXPECT_EQ(entry.Get_value(&key, sizeof key, 3), 0);
    EXPECT_EQ(key, 3);
    EXPECT_TRUE(entry.map_enum_to_options.empty());
}

TEST(EnumGetValueOfPosition, SelectsTheFirstOptionWhenThereIsNoSuchPosition) {
    Open_enum entry(Enum_arguments().default_value(3));
    entry.show_only({1, 3});
    int key = -99;
    EXPECT_EQ(entry.Get_value(&key, sizeof key, 2), 1);
    EXPECT_EQ(key, -99) << "nothing is delivered";
    EXPECT_EQ(entry.stored(), 1);
}

TEST(EnumGetValueOfPosition, SelectsNothingWhenEveryOptionIsHidden) {
    Open_enum entry(Enum_arguments().default_value(3));
    entry.map_enum_to_options = {{0, -1}, {1, -1}, {2, -1}, {3, -1}};
    int key = -99;
    EXPECT_EQ(entry.Get_value(&key, sizeof key, 2), 1);
    EXPECT_EQ(key, -99);
    EXPECT_EQ(entry.stored(), 3);
}

// The next commit would write it to the device.
TEST(EnumGetValueOfPosition, NeverSelectsAKeyThatNamesNoOption) {
    for (const int stray : {77, 4, -5}) {
        SCOPED_TRACE(stray);
        Open_enum entry(Enum_arguments().default_value(3));
        entry.map_enum_to_options = {{1, 1}, {stray, 0}};
        int key = -99;
        EXPECT_EQ(entry.Get_value(&key, sizeof key, 2), 1);
        EXPECT_EQ(entry.stored(), 3);
    }
}

TEST(EnumGetValueOfPosition, NeverSelectsAKeyThatIsNotAllowed) {
    for (const int outside : {0, 3}) {
        SCOPED_TRACE(outside);
        Open_enum entry(Enum_arguments().min(1).max(2).default_value(2));
        entry.map_enum_to_options = {{outside, 1}, {2, 0}};
        int key = -99;
        EXPECT_EQ(entry.Get_value(&key, sizeof key, 2), 1);
        EXPECT_EQ(entry.stored(), 2);
    }
}

TEST(EnumGetValueOfPosition, RefusesAKeyThatIsNotAllowed) {
    Open_enum entry(Enum_arguments().min(1).max(2).default_value(1));
    entry.map_enum_to_options = {{0, 1}, {1, 0}, {2, 2}};
    int key = -99;
    EXPECT_EQ(entry.Get_value(&key, sizeof key, 1), 1);
    EXPECT_EQ(key, -99);
}

TEST(EnumGetValueOfPosition, Reports) {
    Open_enum entry(Enum_arguments().default_value(2));
    entry.map_enum_to_options = {{2, 0}};
    int key = 0;
    EXPECT_EQ(capture(GENERAL, [&] { entry.Get_value(&key, sizeof key, 9); }).out,
              "[Get_value][enum_entry.cpp][#] index[9] is not in range [0,3]. Using min for "
              "request.\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[0] value=[0] name=[Mode]\n"
              "\t[valueToKey][enum_entry.cpp][#] Returning it->second=[0]=value\n");
    EXPECT_EQ(capture(GENERAL, [&] { entry.Get_value(&key, sizeof key, 1); }).out,
              "[valueToKey][enum_entry.cpp][#] it->second=[0] value=[1] name=[Mode]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[0] value=[0] name=[Mode]\n"
              "\t[valueToKey][enum_entry.cpp][#] Returning it->second=[0]=value\n"
              "[Get_value][enum_entry.cpp][#] Error. No match for value [1] in map. Returning "
              "min=[0]->[2]\n"
              "Integer_model::Set: value[2], length[4]\n");
}

TEST(EnumSetValue, SelectsTheOptionAtAPosition) {
    Open_enum entry;
    entry.show_only({0, 2, 3});
    EXPECT_EQ(entry.set(1), 0);
    EXPECT_EQ(entry.stored(), 2);
    EXPECT_EQ(entry.set(2), 0);
    EXPECT_EQ(entry.stored(), 3);
    EXPECT_EQ(entry.set(0), 0);
    EXPECT_EQ(entry.stored(), 0);
}

TEST(EnumSetValue, RefusesAPositionThatNoOptionHas) {
    for (const int position : {3, 99, -1, -2, INT_MIN, INT_MAX}) {
        SCOPED_TRACE(position);
        Open_enum entry(Enum_arguments().default_value(2));
        entry.show_only({0, 2, 3});
        EXPECT_EQ(entry.set(position), 1);
        EXPECT_EQ(entry.stored(), 2);
    }
}

TEST(EnumSetValue, RefusesAKeyThatIsNotAllowed) {
    Open_enum entry(Enum_arguments().min(1).max(2).default_value(1));
    EXPECT_EQ(entry.set(3), 1);
    EXPECT_EQ(entry.set(0), 1);
    EXPECT_EQ(entry.stored(), 1);
}

TEST(EnumSetValue, StoresThePositionAsKeyWithoutAMap) {
    Open_enum entry(Enum_arguments().default_value(1));
    entry.map_enum_to_options.clear();
    for (const int key : {2, 3, 0}) {
        EXPECT_EQ(entry.set(key), 0);
        EXPECT_EQ(entry.stored(), key);
        EXPECT_TRUE(entry.map_enum_to_options.empty()) << "setting looks up no key";
    }
}

TEST(EnumSetValue, ReportsWithoutAMap) {
    Open_enum entry(Enum_arguments().default_value(1));
    entry.map_enum_to_options.clear();
    EXPECT_EQ(capture(GENERAL, [&] { entry.set(2); }).out,
              "Integer_model::Get: value[1], length[4] m_value[1]\n"
              "enum set Set_value [2] current_selection=[1]\n"
              "Integer_model::Set: value[2], length[4]\n"
              "enum set rval 0\n");
}

TEST(EnumSetValue, ReadsAtMostTheBytesThatItIsGiven) {
    Open_enum entry;
    unsigned char bytes[2 * sizeof TWO];
    std::memset(bytes, 0xFF, sizeof bytes);
    std::memcpy(bytes, &TWO, sizeof TWO);
    EXPECT_EQ(entry.Set_value(bytes, sizeof bytes), 0);
    EXPECT_EQ(entry.stored(), TWO);

    int leading = 0;
    std::memcpy(&leading, bytes, 1);
    bytes[1] = 0xFF;
    Open_enum other;
    EXPECT_EQ(other.Set_value(bytes, 1), 0);
    EXPECT_EQ(other.stored(), leading);
}

TEST(EnumSetValue, RefusesAValueThatTheBindingWarnsOf) {
    std::vector<std::string> log;
    Open_enum entry;
    auto* binding = new Fake_binding(&log);
    binding->offer(SUGGESTION_WARNING);
    binding->on_evaluate = [](Fake_binding& engine, int) {
        engine.suggest_warnings({"Radio will restart"});
    };
    entry.Set_binding_object(binding);
    EXPECT_EQ(entry.set(2), 1);
    EXPECT_EQ(entry.stored(), 0);
    EXPECT_EQ(binding->shown_warnings, (std::vector<std::string>{"Radio will restart"}));
    EXPECT_EQ(binding->override_value.i, 2) << "the binding is asked about the position";
}

TEST(EnumSetValue, Reports) {
    Open_enum entry(Enum_arguments().default_value(1));
    entry.map_enum_to_options = {{0, -1}, {1, 0}};
    EXPECT_EQ(capture(GENERAL, [&] { entry.set(0); }).out,
              "Integer_model::Get: value[1], length[4] m_value[1]\n"
              "[Get_integer_enum][enum_entry.cpp][#] int=[1]\n"
              "[Get_value][enum_entry.cpp][#] key=[1] value=[0]\n"
              "enum set Set_value [0] current_selection=[0]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[-1] value=[0] name=[Mode]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[0] value=[0] name=[Mode]\n"
              "\t[valueToKey][enum_entry.cpp][#] Returning it->second=[0]=value\n"
              "Integer_model::Set: value[1], length[4]\n");
    EXPECT_EQ(capture(GENERAL, [&] { entry.set(-1); }).out,
              "Integer_model::Get: value[1], length[4] m_value[1]\n"
              "[Get_integer_enum][enum_entry.cpp][#] int=[1]\n"
              "[Get_value][enum_entry.cpp][#] key=[1] value=[0]\n"
              "enum set Set_value [-1] current_selection=[0]\n"
              "enum too small or large. min[0] set[-1] max[3]\n");
}

TEST(EnumIncValue, StepsThroughVisibleOptions) {
    Open_enum entry;
    entry.show_only({0, 2, 3});
    EXPECT_EQ(entry.map_enum_to_options, (Open_enum::Positions{{0, 0}, {1, -1}, {2, 1}, {3, 2}}));
    EXPECT_EQ(entry.Inc_value(1, 0), 0);
    EXPECT_EQ(entry.stored(), 2);
    EXPECT_EQ(entry.Inc_value(1, 7), 0);
    EXPECT_EQ(entry.stored(), 3);
    EXPECT_EQ(entry.Inc_value(-2, 0), 0);
    EXPECT_EQ(entry.stored(), 0);
    EXPECT_EQ(entry.Inc_value(0, 0), 0);
    EXPECT_EQ(entry.stored(), 0);
}

TEST(EnumIncValue, DoesNotWrap) {
    for (const auto& [key, step] :
         std::vector<std::pair<int, int>>{{3, 1}, {0, -1}, {0, 3}, {3, INT_MAX}, {0, INT_MIN}}) {
        SCOPED_TRACE(testing::Message() << key << " by " << step);
        Open_enum entry;
        entry.show_only({0, 2, 3});
        entry.put(key);
        EXPECT_EQ(entry.Inc_value(step, 0), -1);
        EXPECT_EQ(entry.stored(), key);
    }
}

// From a hidden option, which has position -1, one step up reaches the first visible one, and a step that
// stays hidden must not name a hidden key.
TEST(EnumIncValue, LeavesAHiddenOptionUpwardsOnly) {
    Open_enum entry;
    entry.show_only({2, 3});
    entry.put(1);
    EXPECT_EQ(entry.Inc_value(0, 0), -1);
    EXPECT_EQ(entry.Inc_value(-1, 0), -1);
    EXPECT_EQ(entry.stored(), 1);
    EXPECT_EQ(entry.Inc_value(1, 0), 0);
    EXPECT_EQ(entry.stored(), 2);
}

TEST(EnumIncValue, RefusesAKeyThatIsNotAllowed) {
    Open_enum entry(Enum_arguments().max(1));
    entry.put(1);
    EXPECT_EQ(capture(GENERAL, [&] { EXPECT_EQ(entry.Inc_value(1, 0), -1); }).out,
              "Integer_model::Get: value[1], length[4] m_value[1]\n"
              "[Get_integer][enum_entry.cpp][#] int=[1]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[0] value=[2] name=[Mode]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[1] value=[2] name=[Mode]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[2] value=[2] name=[Mode]\n"
              "\t[valueToKey][enum_entry.cpp][#] Returning it->second=[2]=value\n"
              "[Inc_value][enum_entry.cpp][#] new enum value [2] for [Mode] is not in enum control "
              "range [0,1]\n");
    EXPECT_EQ(entry.stored(), 1);
}

TEST(EnumIncValue, Reports) {
    Open_enum entry;
    entry.map_enum_to_options = {{0, 0}, {1, -1}, {2, 1}};
    EXPECT_EQ(
        capture(GENERAL, [&] { entry.Inc_value(-1, 0); }).out,
        "Integer_model::Get: value[0], length[4] m_value[0]\n"
        "[Get_integer][enum_entry.cpp][#] int=[0]\n"
        "[Inc_value][enum_entry.cpp][#] Current enum position + supplied value[-1] results in "
        "overrun in [Mode].\n");
    EXPECT_EQ(capture(GENERAL, [&] { entry.Inc_value(1, 0); }).out,
              "Integer_model::Get: value[0], length[4] m_value[0]\n"
              "[Get_integer][enum_entry.cpp][#] int=[0]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[0] value=[1] name=[Mode]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[-1] value=[1] name=[Mode]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[1] value=[1] name=[Mode]\n"
              "\t[valueToKey][enum_entry.cpp][#] Returning it->second=[1]=value\n"
              "[Inc_value][enum_entry.cpp][#] Incremented enum one visible unit. Enum [Mode] has "
              "value [0], + [1] = newkeyindex[2]. This will be the new value.\n"
              "Integer_model::Set: value[2], length[4]\n");
}

TEST(EnumMinMaxSize, CountsTheVisibleOptions) {
    struct Case {
        Open_enum::Positions map;
        int min, max, size;
    };
    const Case cases[] = {
        {{{0, 0}, {1, 1}, {2, 2}}, 0, 2, 3},
        {{{0, -1}, {1, 0}, {2, -1}, {3, 1}}, 0, 1, 2},
        {{{0, -1}, {1, -1}}, INT_MAX, 0, 0},
        {{{0, 4}}, 4, 4, 1},
        {{}, 1, 2, 4},
    };
    for (const Case& expected : cases) {
        Open_enum entry(Enum_arguments().min(1).max(2).default_value(1));
        entry.map_enum_to_options = expected.map;
        int min = -9, max = -9, size = -9;
        EXPECT_EQ(entry.minMaxSize(&min, &max, &size), 0);
        EXPECT_EQ(min, expected.min);
        EXPECT_EQ(max, expected.max);
        EXPECT_EQ(size, expected.size);
    }
}

TEST(EnumMinMaxSize, ReportsAnEmptyMap) {
    Open_enum entry;
    entry.map_enum_to_options.clear();
    int min = 0, max = 0, size = 0;
    EXPECT_EQ(capture(GENERAL, [&] { entry.minMaxSize(&min, &max, &size); }).out,
              "[minMaxSize][enum_entry.cpp][#] Size of option map is 0. min[0] max[3] size[4]\n");
}

TEST(EnumSetters, StoreWhatTheyAreGiven) {
    Open_enum entry;
    entry.Set_min(5);
    entry.Set_max(6);
    entry.Set_size(7);
    EXPECT_EQ(entry.m_min, 5);
    EXPECT_EQ(entry.m_max, 6);
    EXPECT_EQ(entry.Get_size(), 7);
    EXPECT_EQ(entry.Get_min(), 0);
    EXPECT_EQ(entry.Get_max(), 3);
}

TEST(EnumUpdateValue, ReplacesTheTextsButNotTheKeys) {
    Open_enum entry;
    Texts other({"Slow", "Fast", "Fastest", "Still", "Stop"});
    entry.Update_value(other.array(), 5);
    EXPECT_EQ(entry.m_value, other.array());
    EXPECT_EQ(entry.Get_size(), 5);
    EXPECT_EQ(entry.m_max, 4);
    EXPECT_EQ(entry.Get_size_enum(), 4);
    EXPECT_EQ(entry.Get_max(), 3);
    EXPECT_EQ(entry.shown(), "Slow");
    entry.Update_value(other.array(), 3);
    entry.m_model.Inc_value(99, 0);
    EXPECT_EQ(entry.stored(), 2) << "the model's upper bound";
}

TEST(EnumUpdateValue, ShowsAKeyBeyondAShorterListWithoutText) {
    Open_enum entry(Enum_arguments().default_value(3));
    Texts two({"Slow", "Fast"});
    entry.Update_value(two.array(), 2);
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.Get_size(), 4);
    EXPECT_EQ(entry.shown(20, -1, 1), "-");
    entry.put(1);
    EXPECT_EQ(entry.shown(), "Fast");
}

TEST(EnumUpdateValue, SurvivesAnEmptyList) {
    Open_enum entry;
    entry.Update_value(nullptr, 3);
    EXPECT_EQ(entry.shown(20, -1, 1), "-");
    EXPECT_NE(entry.getProperties(0x8).find("0()"), std::string::npos);
    entry.Update_value(four_texts().array(), -1);
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.shown(20, -1, 1), "-");
}

}  // namespace
