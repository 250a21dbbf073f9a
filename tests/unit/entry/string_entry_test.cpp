#include <frontpanel_data/data_entry.h>
#include <gtest/gtest.h>

#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/faulty_interface.h"
#include "support/indexes.h"
#include "support/leaf.h"
#include "support/line_gates.h"

namespace {

using support::capture;
using support::Fake_binding;
using support::Fake_device;
using support::index_of;
using support::key_of;
using support::Leaf;

constexpr unsigned int PID = 300;

class Text : public ::testing::Test {
protected:
    Index_t index = index_of({2});
    String_entry entry{"Label",
                       "A label",
                       PID,
                       &index,
                       64,
                       nullptr,
                       Data_entry::READ_WRITE,
                       Data_entry::VISIBLE_ALL,
                       true,
                       Data_entry::SHORTCUT_NONE,
                       nullptr,
                       nullptr,
                       nullptr};

    void store(const std::string& text) {
        entry.Set_value(text.c_str(), static_cast<unsigned int>(text.size()));
    }
    std::string stored() {
        char text[257] = {};
        entry.Get_value(text, sizeof text);
        return text;
    }
    // What a line of `length` characters shows on the next call.
    std::string shown(unsigned int length) {
        std::string buffer(length + 1, '\0');
        EXPECT_EQ(entry.Get_display_string(&buffer[0], length), 0);
        return buffer.c_str();
    }
};

TEST_F(Text, IsAStringLeaf) {
    EXPECT_EQ(entry.Get_entry_type(), Data_entry::STRING_LEAF);
    EXPECT_EQ(entry.Get_return_type_int_or_string(), STRING);
    EXPECT_EQ(entry.Get_access_type(), Data_entry::READ_WRITE);
    EXPECT_EQ(entry.Get_orig_access_type(), Data_entry::READ_WRITE);
}

TEST_F(Text, ReportsTheBaseLine) {
    EXPECT_EQ(entry.getProperties(4),
              "Label varid[300.2.0@s] num_index_levels=[1] type[3] vis[1] shortcut[-1] ");
    EXPECT_EQ(entry.getProperties(8), "Label ");
}

TEST_F(Text, IsActiveOnlyWhenBuiltActive) {
    String_entry inactive("Label", "", PID, &index, 8, nullptr, Data_entry::READ_ONLY, 1, false, -1,
                          nullptr, nullptr, nullptr);
    EXPECT_TRUE(entry.Is_active());
    EXPECT_FALSE(inactive.Is_active());
}

TEST_F(Text, DiesWhenTheMaximumExceedsTheLibrarys) {
    EXPECT_DEATH(String_entry("Label", "", PID, &index, 257, nullptr, Data_entry::READ_ONLY, 1,
                              true, -1, nullptr, nullptr, nullptr),
                 "max_length<=MAX_STRING_LENGTH");
}

TEST_F(Text, LongTextIsHeldTwiceThenMovesThroughTwoFullTurns) {
    const std::string text = "ABCDEFGHIJKLMNOPQRST";  // 20 characters on a line of 16
    const std::string held = "ABCDEFGHIJKLMNOP";
    const std::string around = text + ' ' + text;
    store(text);
    for (int turn = 0; turn < 2; ++turn) {
        EXPECT_EQ(shown(16), held) << "turn " << turn;
        EXPECT_EQ(shown(16), held) << "turn " << turn;
        for (std::size_t offset = 0; offset < text.size(); ++offset) {
            EXPECT_EQ(shown(16), around.substr(offset, 16))
                << "turn " << turn << " offset " << offset;
        }
    }
}

TEST_F(Text, EveryStepOfTheMarqueeEndsWithATerminatorBehindTheLine) {
    store("ABCDEFGHIJ");
    for (const char* const step : {"ABCD", "ABCD", "ABCD", "BCDE", "CDEF"}) {
        char buffer[] = "########";
        EXPECT_EQ(entry.Get_display_string(buffer, 4), 0);
        EXPECT_EQ(std::string(buffer, 8), step + std::string("\0###", 4));
    }
}

TEST_F(Text, LastStepShowsLastCharacterBlankAndStart) {
    store("ABCDEFGHIJKLMNOPQRST");
    std::string last;
    for (int call = 1; call <= 22; ++call) {
        last = shown(16);
    }
    EXPECT_EQ(last, "T ABCDEFGHIJKLMN");
    EXPECT_EQ(shown(16), "ABCDEFGHIJKLMNOP");
}

TEST_F(Text, TextAsLongAsTheLineIsCopiedWithoutTerminatorAndNeverScrolls) {
    store("ABCDEFGH");
    for (int call = 0; call < 30; ++call) {
        char buffer[10] = "#########";
        EXPECT_EQ(entry.Get_display_string(buffer, 8), 0);
        EXPECT_STREQ(buffer, "ABCDEFGH#");
    }
}

TEST_F(Text, ShortTextIsTerminatedAndTheScrollStateStays) {
    store("ABCDEFGHIJ");
    shown(4);  // one of the two held calls
    store("AB");
    EXPECT_EQ(shown(4), "AB");
    store("ABCDEFGHIJ");
    EXPECT_EQ(shown(4), "ABCD");
    EXPECT_EQ(shown(4), "ABCD");
    EXPECT_EQ(shown(4), "BCDE");
}

TEST_F(Text, TextThatShrinksBelowTheOffsetRestarts) {
    store("ABCDEFGHIJKL");
    for (int call = 0; call < 2 + 9; ++call) {
        shown(4);
    }
    store("ABCDEF");
    EXPECT_EQ(shown(4), "ABCD");  // offset 9 is beyond the text
    EXPECT_EQ(shown(4), "BCDE");
}

TEST_F(Text, LengthBelowTwoIsRefusedUntouched) {
    char buffer[4] = "###";
    EXPECT_EQ(entry.Get_display_string(buffer, 1), 1);
    EXPECT_EQ(entry.Get_display_string(buffer, 0), 1);
    EXPECT_STREQ(buffer, "###");
}

TEST_F(Text, NullDisplayBufferDies) {
    EXPECT_DEATH(entry.Get_display_string(nullptr, 16), "`buffer'");
    EXPECT_DEATH(entry.Get_display_string(nullptr, 0), "`buffer'");
}

TEST_F(Text, DisplayTellsItsLengthsUnderTheGeneralMask) {
    store("ABC");
    const auto line = [&] { shown(16); };
    EXPECT_EQ(capture(0x1, line).out,
              "String_entry::Get_display_string()::: m_model.Get_current_length()=[3] "
              "max_allowed_length=[16]\n");
    EXPECT_EQ(capture(0x4001, line).out, "");
    EXPECT_NE(capture(0xC001, line).out, "");
    EXPECT_EQ(capture(0x2, line).out, "");
}

TEST_F(Text, WindowGoesRoundTheText) {
    store("HELLO");
    char buffer[5] = {};
    EXPECT_EQ(entry.Get_value(buffer, 4, 3), 0);
    EXPECT_STREQ(buffer, "LO H");
}

TEST_F(Text, SetValueCutsAndTellsTheText) {
    String_entry shorter("Label", "", PID, &index, 4, nullptr, Data_entry::READ_ONLY, 1, true, -1,
                         nullptr, nullptr, nullptr);
    EXPECT_EQ(capture(0x1, [&] { EXPECT_EQ(shorter.Set_value("ABCDEFGH", 6), 0); }).out,
              "String_entry::Set_value = ABCDEF\n"
              "String_model::Set: value[ABCD], length[6]\n");
    char text[8] = {};
    shorter.Get_value(text, 7);
    EXPECT_STREQ(text, "ABCD");
}

TEST_F(Text, SetValueReadsNoFurtherThanItsLength) {
    const char unterminated[3] = {'A', 'B', 'C'};
    EXPECT_EQ(capture(0x1, [&] { entry.Set_value(unterminated, 3); }).out,
              "String_entry::Set_value = ABC\nString_model::Set: value[ABC], length[3]\n");
    EXPECT_EQ(stored(), "ABC");
}

TEST_F(Text, WarnedValueIsRefusedWithOneAndTheTextStays) {
    store("before");
    auto* const binding = new Fake_binding;
    binding->suggest_warnings({"too loud", "too long"});
    entry.Set_binding_object(binding);
    EXPECT_EQ(entry.Set_value("after", 5), 1);
    EXPECT_EQ(stored(), "before");
    EXPECT_EQ(binding->shown_warnings, (std::vector<std::string>{"too loud", "too long"}));
    EXPECT_EQ(binding->override_value.s, "after");
    EXPECT_EQ(binding->override_value.rt, STRING);
}

TEST_F(Text, RefreshReadsTheTextThenAppliesTheBinding) {
    auto* const binding = new Fake_binding;
    std::string text_seen;
    binding->on_evaluate = [&](Fake_binding&, int flags) {
        EXPECT_EQ(flags, 1);
        text_seen = stored();
    };
    entry.Set_binding_object(binding);
    Fake_device device;
    device.expect_get_text(PID, 2, "from the device");
    EXPECT_EQ(entry.Refresh(&device, true), 0);
    EXPECT_EQ(text_seen, "from the device");
}

TEST_F(Text, FailedReadIsReturnedAndTheBindingIsNotAsked) {
    auto* const binding = new Fake_binding;
    binding->on_evaluate = [](Fake_binding&, int) { FAIL() << "evaluated after a failed read"; };
    entry.Set_binding_object(binding);
    Fake_device device;
    device.expect_get_text(PID, 2, "half", 9);
    EXPECT_EQ(entry.Refresh(&device, true), 1);
}

TEST_F(Text, IncValueStepsOneCharacter) {
    store("AB");
    EXPECT_EQ(entry.Inc_value(1, 0), 0);
    EXPECT_EQ(stored(), "AC");
    EXPECT_EQ(entry.Inc_value(0, 64), 2);
}

TEST_F(Text, CommitWithoutABindingWritesTheTextOnly) {
    store("AB");
    Fake_device device;
    device.expect_set(PID, 2, "AB");
    const auto printed = capture(0xFFFF3FFF, [&] { EXPECT_EQ(entry.Commit(&device), 0); });
    EXPECT_EQ(printed.out,
              "[Commit][string_entry.cpp][#] Calling m_model commit...\n"
              "String_model::Commit: m_pid[300], m_varidx[2], m_value[AB]\n");
}

TEST_F(Text, CommitLineIsUnderTheCommitMask) {
    Fake_device device;
    for (const uint32_t mask : {0x1u, 0x4u}) {
        device.expect_set(PID, 2, "");
        EXPECT_EQ(capture(mask, [&] { entry.Commit(&device); }).out.find("[Commit]"), 0u) << mask;
    }
    device.expect_set(PID, 2, "");
    EXPECT_EQ(capture(0x2, [&] { entry.Commit(&device); }).out, "");
}

TEST_F(Text, CommitWithoutAMapSaysSo) {
    auto* const binding = new Fake_binding;
    binding->map = nullptr;
    entry.Set_binding_object(binding);
    Fake_device device;
    device.expect_set(PID, 2, "", 5);
    const auto printed = capture(0x20, [&] { EXPECT_EQ(entry.Commit(&device), 1); });
    EXPECT_EQ(printed.out,
              "[Get_var_index_map][entry_binding.cpp][#] [Label]\n"
              "[Commit][string_entry.cpp][#] Var index map is null. Cannot update dependant "
              "controls' binding expressions.\n");
}

TEST_F(Text, CommitRefreshesEachUnlockedDependantOnceInListOrderEvenAfterAFailedWrite) {
    auto* const binding = new Fake_binding;
    entry.Set_binding_object(binding);
    std::vector<std::string> log;
    Leaf first("First", nullptr, {Data_entry::RANGE_LEAF, &log});
    Leaf locked("Locked", nullptr, {Data_entry::RANGE_LEAF, &log});
    Leaf last("Last", nullptr, {Data_entry::RANGE_LEAF, &log});
    locked.SetBindRefreshIsLocked(true);
    binding->own_map[key_of(STRING, PID, index)].binding_dependant_entries = {&last, &locked,
                                                                              &first};
    Fake_device device;
    device.expect_set(PID, 2, "", 5);
    const auto printed = capture(0x20, [&] { EXPECT_EQ(entry.Commit(&device), 1); });
    EXPECT_EQ(log, (std::vector<std::string>{"Refresh Last interface=1 eval=1",
                                             "Refresh First interface=1 eval=1"}));
    const std::string trace = "@@@@@@@@@@@@@@@@@@@@@ here 14\n";
    EXPECT_FALSE(entry.GetBindRefreshIsLocked());
    EXPECT_NE(printed.out.find("[Commit][string_entry.cpp][#] About to see if I have any "
                               "dependants...\n"),
              std::string::npos);
    EXPECT_NE(printed.out.find("[Commit][string_entry.cpp][#] Bind expression of entry [Last] "
                               "depends on [Label][300.2.0]@s num index levels = [1]\n" +
                               trace),
              std::string::npos);
    std::size_t traces = 0;
    for (std::size_t at = printed.out.find(trace); at != std::string::npos;
         at = printed.out.find(trace, at + 1)) {
        ++traces;
    }
    EXPECT_EQ(traces, 4u);
}

TEST_F(Text, TraceOfDependantsIsPrintedWhateverTheMask) {
    auto* const binding = new Fake_binding;
    entry.Set_binding_object(binding);
    Leaf dependant("First");
    binding->own_map[key_of(STRING, PID, index)].binding_dependant_entries = {&dependant};
    Fake_device device;
    device.expect_set(PID, 2, "");
    EXPECT_EQ(capture(0, [&] { entry.Commit(&device); }).out,
              "@@@@@@@@@@@@@@@@@@@@@ here 14\n@@@@@@@@@@@@@@@@@@@@@ here 14\n");
}

TEST_F(Text, LinesHaveTheirCategoriesAndTheLeafGate) {
    using support::Gate;
    support::expect_line_gate("String_entry::Get_display_string()::: ", 0x1, Gate::LEAF,
                              [&] { shown(16); });
    support::expect_line_gate("String_entry::Set_value = AB\n", 0x1, Gate::LEAF,
                              [&] { store("AB"); });
    auto* const binding = new Fake_binding;
    entry.Set_binding_object(binding);
    Leaf dependant("Follower");
    binding->own_map[key_of(STRING, PID, index)].binding_dependant_entries = {&dependant};
    Fake_device device;
    const auto commit = [&] {
        device.expect_set(PID, 2, "AB");
        entry.Commit(&device);
    };
    support::expect_line_gate("Calling m_model commit...\n", 0x5, Gate::LEAF, commit);
    support::expect_line_gates({"About to see if I have any dependants...\n",
                                "Bind expression of entry [Follower] depends on [Label]"},
                               0x21, Gate::LEAF, commit);
    support::expect_line_gate("here 14\n", 0, Gate::ALWAYS, commit);
    binding->map = nullptr;
    support::expect_line_gate("Var index map is null. ", 0x21, Gate::LEAF, commit);
}

TEST_F(Text, CommitLeavesTheMapOfTheApplicationAsItIs) {
    Ip_entry address("Address", "An address", PID, &index, nullptr, Data_entry::READ_WRITE,
                     Data_entry::VISIBLE_ALL, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr,
                     nullptr);
    Time_entry time("Time", "A time", PID, &index, 16, nullptr, Data_entry::READ_WRITE,
                    Data_entry::VISIBLE_ALL, true, Data_entry::SHORTCUT_NONE, nullptr, nullptr,
                    nullptr);
    for (String_entry* const text :
         {static_cast<String_entry*>(&entry), static_cast<String_entry*>(&address),
          static_cast<String_entry*>(&time)}) {
        SCOPED_TRACE(text->Get_name());
        auto* const binding = new Fake_binding;
        text->Set_binding_object(binding);
        binding->own_map[key_of(STRING, PID + 1, index)].value_int = 7;
        Fake_device device;
        device.expect_set(PID, 2, "");
        text->Commit(&device);
        EXPECT_EQ(binding->own_map.size(), 1u);
        EXPECT_EQ(binding->own_map.count(key_of(STRING, PID + 1, index)), 1u);
    }
}

TEST_F(Text, NewOperationsAreNotTheBases) {
    Data_entry& base = entry;
    EXPECT_EQ(base.Commit(), 0);  // writes nothing: there is no device
    EXPECT_EQ(base.Get_min(), 0);
}

}  // namespace
