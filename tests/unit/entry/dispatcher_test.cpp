#include <frontpanel_data/entry.h>
#include <frontpanel_data/selection.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/fake_device.h"
#include "support/fake_editors.h"
#include "support/indexes.h"
#include "support/leaf.h"
#include "support/line_gates.h"

namespace {

using support::capture;
using support::expect_line_gate;
using support::Gate;
using support::Leaf;
using support::Leaf_options;

using Log = std::vector<std::string>;
using Entry = Data_entry;

constexpr int DYNAMIC = 0x400000;
constexpr unsigned int WARNING_PID = 65549;

// Links have rules of their own and are tested with their class.
const Entry::Entry_type PLAIN_TYPES[] = {Entry::NODE,        Entry::RANGE_LEAF, Entry::ENUM_LEAF,
                                         Entry::STRING_LEAF, Entry::IP_LEAF,    Entry::TIME_LEAF,
                                         Entry::SLOT_ENUM};

// An entry that logs which of its links are asked for and set.
class Traced : public Leaf {
public:
    Traced(const char* name, Leaf_options options)
        : Leaf(name, nullptr, options), m_trace(options.log) {}

    Data_entry* Get_parent() const override { return trace("Get_parent", Leaf::Get_parent()); }
    Data_entry* Get_child() const override { return trace("Get_child", Leaf::Get_child()); }
    Data_entry* Get_next() const override { return trace("Get_next", Leaf::Get_next()); }
    Data_entry* Get_previous() const override {
        return trace("Get_previous", Leaf::Get_previous());
    }
    Data_entry* Get_dynamic_next() override {
        return trace("Get_dynamic_next", Leaf::Get_dynamic_next());
    }
    Data_entry* Get_dynamic_previous() override {
        return trace("Get_dynamic_previous", Leaf::Get_dynamic_previous());
    }
    Data_entry* Set_parent(Data_entry* parent) override {
        return trace("Set_parent", Leaf::Set_parent(parent));
    }
    Data_entry* Set_child(Data_entry* child) override {
        return trace("Set_child", Leaf::Set_child(child));
    }

private:
    Data_entry* trace(const char* operation, Data_entry* result) const {
        m_trace->push_back(operation);
        return result;
    }

    Log* m_trace;
};

class Dispatcher : public testing::Test {
protected:
    void use_type(Entry::Entry_type type, unsigned int pid = 120) {
        Leaf_options options;
        options.type = type;
        options.log = &log;
        options.pid = pid;
        entry = std::make_unique<Traced>("Entry", options);
        entry->Set_parent(&parent);
        entry->Set_child(&child);
        entry->Set_next(&next);
        entry->Set_previous(&previous);
        entry->Set_dynamic_next(&dynamic_next);
        entry->Set_dynamic_previous(&dynamic_previous);
        log.clear();
        fetched = &untouched;
    }

    // Runs without an interface and with `fetched` behind the last argument.
    int run(int flags, void* editor = nullptr) {
        return Entry::EntryTypeSpecificOperation(entry.get(), nullptr, editor, false, flags,
                                                 &fetched);
    }
    // Runs without anything behind the last argument.
    int run_bare(int flags, void* editor = nullptr) {
        return Entry::EntryTypeSpecificOperation(entry.get(), nullptr, editor, false, flags,
                                                 nullptr);
    }

    void* editor_of(Entry::Entry_type type) {
        switch (type) {
            case Entry::RANGE_LEAF:
                return range_editor.pointer();
            case Entry::ENUM_LEAF:
            case Entry::SLOT_ENUM:
                return enum_editor.pointer();
            case Entry::STRING_LEAF:
                return string_editor.pointer();
            case Entry::IP_LEAF:
                return address_editor.pointer();
            case Entry::TIME_LEAF:
                return time_editor.pointer();
            default:
                return string_editor.pointer();
        }
    }

    Log log;
    Leaf parent{"Parent"};
    Leaf child{"Child"};
    Leaf next{"Next"};
    Leaf previous{"Previous"};
    Leaf dynamic_next{"Dynamic_next"};
    Leaf dynamic_previous{"Dynamic_previous"};
    Leaf untouched{"Untouched"};
    std::unique_ptr<Traced> entry;
    void* fetched = nullptr;
    support::Fake_device device;
    support::Fake_range_editor range_editor{&log};
    support::Fake_enum_editor enum_editor{&log};
    support::Fake_string_editor string_editor{&log};
    support::Fake_warning_editor warning_editor{&log};
    support::Fake_address_editor address_editor{&log};
    support::Fake_time_editor time_editor{&log};
};

TEST_F(Dispatcher, ANullEntryFails) {
    const auto action = [&] {
        EXPECT_EQ(Entry::EntryTypeSpecificOperation(nullptr, &device, nullptr, true, 0x1, &fetched),
                  -1);
        EXPECT_EQ(Entry::EntryTypeSpecificOperation(nullptr, nullptr, nullptr, true, 0, nullptr),
                  -1);
    };
    const auto printed = capture(0xFFFFFFFF, action);
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(fetched, nullptr);
}

TEST_F(Dispatcher, AnUnhandledTypeIsReportedAndNothingIsDone) {
    for (const int type : {8, -1, 9}) {
        use_type(static_cast<Entry::Entry_type>(type));
        int result = -1;
        const auto printed = capture(0, [&] {
            result = Entry::EntryTypeSpecificOperation(entry.get(), &device, range_editor.pointer(),
                                                       true, -1, &fetched);
        });
        EXPECT_EQ(result, 0) << type;
        EXPECT_EQ(printed.err, "Refresher::Refresh, unhandled type " + std::to_string(type) + "\n");
        EXPECT_EQ(printed.out, "");
        EXPECT_EQ(fetched, &untouched);
        EXPECT_EQ(log, Log{}) << type;
    }
}

TEST_F(Dispatcher, WithoutAFlagNothingIsDone) {
    for (const auto type : PLAIN_TYPES) {
        use_type(type);
        EXPECT_EQ(run(0, editor_of(type)), 0);
        EXPECT_EQ(fetched, &untouched);
        EXPECT_EQ(log, Log{});
    }
}

// --- refresh

TEST_F(Dispatcher, RefreshReturnsWhatTheEntryReturns) {
    for (const auto type : PLAIN_TYPES) {
        for (const int result : {0, 1, 2, -1, 77}) {
            for (const bool eval : {false, true}) {
                use_type(type);
                entry->refresh_result = result;
                EXPECT_EQ(Entry::EntryTypeSpecificOperation(entry.get(), &device, nullptr, eval,
                                                            0x1, nullptr),
                          result);
                EXPECT_EQ(log, Log{"Refresh Entry interface=1 eval=" + std::to_string(eval)});
            }
        }
    }
}

TEST_F(Dispatcher, RefreshWithoutAnInterfaceFailsAndEndsTheOperation) {
    for (const auto type : PLAIN_TYPES) {
        use_type(type);
        EXPECT_EQ(run(-1, editor_of(type)), -1);
        EXPECT_EQ(log, Log{});
        EXPECT_EQ(fetched, &untouched);
    }
}

TEST_F(Dispatcher, AFailedRefreshDoesNotStopTheOtherSteps) {
    use_type(Entry::RANGE_LEAF);
    entry->refresh_result = 5;
    EXPECT_EQ(Entry::EntryTypeSpecificOperation(entry.get(), &device, range_editor.pointer(), true,
                                                0x1 | 0x8 | 0x2, &fetched),
              5);
    EXPECT_EQ(log, (Log{"Refresh Entry interface=1 eval=1", "Get_parent", "Prepare Entry"}));
    EXPECT_EQ(fetched, &parent);
}

// --- links

TEST_F(Dispatcher, EachBitDeliversItsNeighbour) {
    const struct {
        int flags;
        Data_entry* with_dynamic_links;
        Data_entry* without;
    } cases[] = {
        {0x8, &parent, &parent},
        {0x10, &parent, &parent},
        {0x18, &parent, &parent},
        {0x20, &child, &child},
        {0x40, &child, &child},
        {0x60, &child, &child},
        {0x80, &previous, &previous},
        {0x80 | DYNAMIC, &dynamic_previous, &previous},
        {0x100, &next, &next},
        {0x100 | DYNAMIC, &dynamic_next, &next},
        {0x8 | DYNAMIC, &parent, &parent},
        {0x20 | DYNAMIC, &child, &child},
    };
    for (const auto type : PLAIN_TYPES) {
        for (const auto& expected : cases) {
            use_type(type);
            EXPECT_EQ(run(expected.flags), 0);
            EXPECT_EQ(fetched,
                      type == Entry::TIME_LEAF ? expected.without : expected.with_dynamic_links)
                << "type " << type << " flags 0x" << std::hex << expected.flags;
            EXPECT_EQ(log.size(), 1u) << "asked once";
        }
    }
}

TEST_F(Dispatcher, TheModifierAloneDoesNothing) {
    for (const auto type : PLAIN_TYPES) {
        use_type(type);
        EXPECT_EQ(run(DYNAMIC, editor_of(type)), 0);
        EXPECT_EQ(fetched, &untouched);
        EXPECT_EQ(log, Log{});
    }
}

TEST_F(Dispatcher, ANeighbourThatIsNotThereIsNull) {
    for (const int flags : {0x8, 0x20, 0x80, 0x100, 0x80 | DYNAMIC, 0x100 | DYNAMIC}) {
        Leaf alone("Alone");
        void* found = &untouched;
        Entry::EntryTypeSpecificOperation(&alone, nullptr, nullptr, false, flags, &found);
        EXPECT_EQ(found, nullptr) << std::hex << flags;
    }
}

TEST_F(Dispatcher, LinksAreSetFromWhatIsHandedIn) {
    for (const auto type : PLAIN_TYPES) {
        use_type(type);
        EXPECT_EQ(run(0x200), 0);
        EXPECT_EQ(entry->Get_parent(), &untouched) << type;
        use_type(type);
        EXPECT_EQ(run(0x400), 0);
        EXPECT_EQ(entry->Get_child(), &untouched) << type;
        use_type(type);
        fetched = nullptr;
        EXPECT_EQ(run(0x600), 0);
        EXPECT_EQ(entry->Get_parent(), nullptr) << type;
        EXPECT_EQ(entry->Get_child(), nullptr) << type;
    }
}

// An earlier step of the same call hands its neighbour to a later one.
TEST_F(Dispatcher, AFetchedNeighbourIsWhatIsSet) {
    use_type(Entry::RANGE_LEAF);
    EXPECT_EQ(run(0x100 | 0x400), 0);
    EXPECT_EQ(entry->Get_child(), &next);
}

TEST_F(Dispatcher, StepsWithoutAPlaceForAnEntryAreSkipped) {
    const int flags = 0x8 | 0x10 | 0x20 | 0x40 | 0x80 | 0x100 | 0x200 | 0x400 | 0x2000 | 0x8000 |
                      0x10000 | 0x20000 | 0x40000 | 0x80000;
    for (const auto type : PLAIN_TYPES) {
        for (const int dynamic : {0, DYNAMIC}) {
            use_type(type);
            EXPECT_EQ(run_bare(flags | dynamic, editor_of(type)), 0);
            EXPECT_EQ(log, Log{}) << type;
            EXPECT_EQ(entry->Get_parent(), &parent);
            EXPECT_EQ(entry->Get_child(), &child);
        }
    }
}

TEST_F(Dispatcher, AMissingPlaceDoesNotStopTheOtherSteps) {
    use_type(Entry::RANGE_LEAF);
    EXPECT_EQ(run_bare(0x8 | 0x1000 | 0x2, range_editor.pointer()), 0);
    EXPECT_EQ(log, (Log{"ExitLEDs", "Prepare Entry"}));
}

// --- editors

TEST_F(Dispatcher, EachTypeOpensItsEditor) {
    for (const auto type : PLAIN_TYPES) {
        use_type(type);
        EXPECT_EQ(run_bare(0x2, editor_of(type)), 0);
        EXPECT_EQ(log, type == Entry::NODE ? Log{} : Log{"Prepare Entry"}) << type;
    }
}

TEST_F(Dispatcher, NumbersTextsAndAddressesCloseTheirEditor) {
    for (const auto type : PLAIN_TYPES) {
        use_type(type);
        EXPECT_EQ(run_bare(0x1000, editor_of(type)), 0);
        const bool closes =
            type == Entry::RANGE_LEAF || type == Entry::STRING_LEAF || type == Entry::IP_LEAF;
        EXPECT_EQ(log, closes ? Log{"ExitLEDs"} : Log{}) << type;
    }
}

// This parameter is kept for warnings.
TEST_F(Dispatcher, AWarningTextOpensTheWarningEditor) {
    use_type(Entry::STRING_LEAF, WARNING_PID);
    run_bare(0x2, warning_editor.pointer());
    EXPECT_EQ(log, Log{"Prepare Entry"});
    log.clear();
    run_bare(0x2, string_editor.pointer());
    EXPECT_EQ(log, Log{});
    for (const unsigned int pid : {WARNING_PID - 1, WARNING_PID + 1}) {
        use_type(Entry::STRING_LEAF, pid);
        run_bare(0x2, warning_editor.pointer());
        EXPECT_EQ(log, Log{}) << pid;
        run_bare(0x2, string_editor.pointer());
        EXPECT_EQ(log, Log{"Prepare Entry"}) << pid;
    }
}

TEST_F(Dispatcher, TheWarningParameterMeansNothingToOtherTypes) {
    use_type(Entry::RANGE_LEAF, WARNING_PID);
    run_bare(0x2, range_editor.pointer());
    EXPECT_EQ(log, Log{"Prepare Entry"});
}

TEST_F(Dispatcher, AWarningTextIsLeftThroughTheWarningEditor) {
    use_type(Entry::STRING_LEAF, WARNING_PID);
    run(0x8000 | 0x10000, warning_editor.pointer());
    EXPECT_EQ(log, (Log{"Set_escape_entry Untouched", "Set_select_entry Untouched"}));
    warning_editor.escapes = true;
    run(0x2000, warning_editor.pointer());
    EXPECT_EQ(fetched, &parent);
    log.clear();
    run_bare(0x1000, warning_editor.pointer());
    EXPECT_EQ(log, Log{"ExitLEDs"});
}

TEST_F(Dispatcher, AnEditorForAnotherTypeIsNotUsed) {
    const int flags = 0x1000 | 0x2000 | 0x8000 | 0x10000 | 0x100000 | 0x200000 | 0x20000 | 0x40000 |
                      0x80000 | 0x2;
    void* const editors[] = {range_editor.pointer(), enum_editor.pointer(), string_editor.pointer(),
                             address_editor.pointer(), time_editor.pointer()};
    for (const auto type : PLAIN_TYPES) {
        for (void* const editor : editors) {
            if (type != Entry::NODE && editor == editor_of(type)) {
                continue;
            }
            use_type(type);
            EXPECT_EQ(run(flags, editor), 0);
            EXPECT_EQ(log, Log{}) << type;
            EXPECT_EQ(fetched, &untouched) << type;
        }
    }
}

TEST_F(Dispatcher, WithoutAnEditorItsStepsAreSkipped) {
    const int flags = 0x1000 | 0x2000 | 0x8000 | 0x10000 | 0x100000 | 0x200000 | 0x20000 | 0x40000 |
                      0x80000 | 0x2;
    for (const auto type : PLAIN_TYPES) {
        use_type(type);
        EXPECT_EQ(run(flags), 0);
        EXPECT_EQ(log, Log{}) << type;
        EXPECT_EQ(fetched, &untouched) << type;
    }
}

TEST_F(Dispatcher, LeavingTheEditorStaysOnTheEntryUnlessItEscapes) {
    for (const auto type : PLAIN_TYPES) {
        use_type(type);
        range_editor.escapes = enum_editor.escapes = string_editor.escapes = false;
        address_editor.escapes = time_editor.escapes = false;
        EXPECT_EQ(run(0x2000, editor_of(type)), 0);
        if (type == Entry::NODE) {
            EXPECT_EQ(fetched, &untouched);
            EXPECT_EQ(log, Log{});
            continue;
        }
        EXPECT_EQ(fetched, static_cast<Data_entry*>(entry.get())) << type;
        EXPECT_EQ(log, Log{"Escape"}) << type;
        use_type(type);
        range_editor.escapes = enum_editor.escapes = string_editor.escapes = true;
        address_editor.escapes = time_editor.escapes = true;
        EXPECT_EQ(run(0x2000, editor_of(type)), 0);
        EXPECT_EQ(fetched, &parent) << type;
        EXPECT_EQ(log, (Log{"Escape", "Get_parent"})) << type;
    }
}

TEST_F(Dispatcher, LeavesTellTheirEditorWhereToGo) {
    for (const auto type : PLAIN_TYPES) {
        use_type(type);
        run(0x8000, editor_of(type));
        EXPECT_EQ(log, type == Entry::NODE ? Log{} : Log{"Set_escape_entry Untouched"});
        use_type(type);
        run(0x10000, editor_of(type));
        EXPECT_EQ(log, type == Entry::NODE ? Log{} : Log{"Set_select_entry Untouched"});
        use_type(type);
        fetched = nullptr;
        run(0x18000, editor_of(type));
        EXPECT_EQ(log, type == Entry::NODE
                           ? Log{}
                           : (Log{"Set_escape_entry (null)", "Set_select_entry (null)"}));
    }
}

TEST_F(Dispatcher, OnlyNumbersHaveSteps) {
    for (const auto type : PLAIN_TYPES) {
        use_type(type);
        EXPECT_EQ(run_bare(0x200000 | 0x100000, editor_of(type)), 0);
        EXPECT_EQ(log, type == Entry::RANGE_LEAF ? (Log{"Coarser_step", "Finer_step"}) : Log{});
        use_type(type);
        EXPECT_EQ(run_bare(0x200000, editor_of(type)), 0);
        EXPECT_EQ(log, type == Entry::RANGE_LEAF ? Log{"Finer_step"} : Log{});
    }
}

TEST_F(Dispatcher, EnumerationsTellTheirEditorWhatIsChosen) {
    for (const int32_t number : {0, 1, -1, INT_MAX, INT_MIN}) {
        for (const auto type : PLAIN_TYPES) {
            const bool chooses = type == Entry::ENUM_LEAF || type == Entry::SLOT_ENUM;
            int32_t value = number;
            use_type(type);
            fetched = &value;
            run(0x20000, editor_of(type));
            EXPECT_EQ(log, chooses ? Log{"Set_selected " + std::to_string(number)} : Log{});
            log.clear();
            run(0x40000, editor_of(type));
            EXPECT_EQ(log, chooses ? Log{"Set_selected_line " + std::to_string(number)} : Log{});
            EXPECT_EQ(value, number);
        }
    }
}

TEST_F(Dispatcher, TheLineFlagIsOneByte) {
    for (const char byte : {'\0', '\1', '\2', '\xff'}) {
        char around[3] = {7, byte, 7};
        use_type(Entry::ENUM_LEAF);
        fetched = &around[1];
        run(0x80000, enum_editor.pointer());
        EXPECT_EQ(log, Log{byte != 0 ? "Set_use_line_info 1" : "Set_use_line_info 0"});
    }
}

TEST_F(Dispatcher, TheLineFlagArrivesBeforeTheNumbers) {
    int32_t value = 0x01010101;
    use_type(Entry::SLOT_ENUM);
    fetched = &value;
    run(0x20000 | 0x40000 | 0x80000 | 0x2, enum_editor.pointer());
    EXPECT_EQ(log, (Log{"Set_use_line_info 1", "Set_selected 16843009",
                        "Set_selected_line 16843009", "Prepare Entry"}));
}

TEST_F(Dispatcher, AMissingValueIsNotPassed) {
    use_type(Entry::ENUM_LEAF);
    fetched = nullptr;
    run(0x20000 | 0x40000 | 0x80000, enum_editor.pointer());
    EXPECT_EQ(log, Log{});
}

// --- order

constexpr int ALL_STEPS = 0x1 | 0x2 | 0x8 | 0x20 | 0x80 | 0x100 | 0x200 | 0x400 | 0x1000 | 0x2000 |
                          0x8000 | 0x10000 | 0x100000 | 0x200000 | DYNAMIC;

TEST_F(Dispatcher, StepsRunInTheirOwnOrder) {
    const Log links = {"Refresh Entry interface=1 eval=1",
                       "Get_parent",
                       "Get_child",
                       "Get_dynamic_previous",
                       "Get_dynamic_next",
                       "Set_parent",
                       "Set_child"};
    const std::map<Entry::Entry_type, Log> expected = {
        {Entry::NODE, {}},
        {Entry::RANGE_LEAF,
         {"ExitLEDs", "Escape", "Set_escape_entry Entry", "Set_select_entry Entry", "Coarser_step",
          "Finer_step", "Prepare Entry"}},
        {Entry::ENUM_LEAF,
         {"Escape", "Set_escape_entry Entry", "Set_select_entry Entry", "Prepare Entry"}},
        {Entry::SLOT_ENUM,
         {"Escape", "Set_escape_entry Entry", "Set_select_entry Entry", "Prepare Entry"}},
        {Entry::STRING_LEAF,
         {"ExitLEDs", "Escape", "Set_escape_entry Entry", "Set_select_entry Entry",
          "Prepare Entry"}},
        {Entry::IP_LEAF,
         {"ExitLEDs", "Escape", "Set_escape_entry Entry", "Set_select_entry Entry",
          "Prepare Entry"}},
        {Entry::TIME_LEAF,
         {"Escape", "Set_escape_entry Entry", "Set_select_entry Entry", "Prepare Entry"}},
    };
    for (const auto& [type, editor_steps] : expected) {
        use_type(type);
        Entry::EntryTypeSpecificOperation(entry.get(), &device, editor_of(type), true, ALL_STEPS,
                                          &fetched);
        Log whole = links;
        if (type == Entry::TIME_LEAF) {
            whole[3] = "Get_previous";
            whole[4] = "Get_next";
        }
        whole.insert(whole.end(), editor_steps.begin(), editor_steps.end());
        EXPECT_EQ(log, whole) << type;
    }
}

TEST_F(Dispatcher, OtherBitsDoNothing) {
    const int named = ALL_STEPS | 0x10 | 0x40 | 0x20000 | 0x40000 | 0x80000;
    for (const auto type : PLAIN_TYPES) {
        for (int bit = 0; bit < 32; ++bit) {
            const int flag = static_cast<int>(1u << bit);
            if ((flag & named) != 0) {
                continue;
            }
            use_type(type);
            EXPECT_EQ(run(flag, editor_of(type)), 0);
            EXPECT_EQ(log, Log{}) << type << " bit " << bit;
            EXPECT_EQ(fetched, &untouched) << type << " bit " << bit;
        }
    }
}

// --- lines

TEST_F(Dispatcher, TellsWhatItIsAskedWithTheFileFirst) {
    use_type(Entry::RANGE_LEAF);
    char line[256];
    std::snprintf(line, sizeof line,
                  "[dispatcher.cpp][EntryTypeSpecificOperation][#] Entry[Entry] type[1] "
                  "m_pDataAccessInf[%p] specific_selection_obj[%p] flags[8]\n",
                  static_cast<void*>(static_cast<Data_interface*>(&device)),
                  range_editor.pointer());
    const auto action = [&] {
        Entry::EntryTypeSpecificOperation(entry.get(), &device, range_editor.pointer(), true, 0x8,
                                          &fetched);
    };
    EXPECT_EQ(capture(0x1, action).out, line);
    expect_line_gate(line, 0x10431, Gate::LEAF, action);
}

TEST_F(Dispatcher, TellsARefresh) {
    use_type(Entry::RANGE_LEAF);
    const auto action = [&] {
        Entry::EntryTypeSpecificOperation(entry.get(), &device, nullptr, true, 0x1, nullptr);
    };
    const char* const line = "[dispatcher.cpp][EntryTypeSpecificOperation][#] Refresh [Entry]\n";
    expect_line_gate(line, 0x10001, Gate::LEAF, action);
    const std::string all = capture(0x1, action).out;
    EXPECT_EQ(all.find('\n') + 1, all.find(line)) << all;
}

TEST_F(Dispatcher, TellsARefreshThatHasNoInterface) {
    use_type(Entry::NODE);
    EXPECT_NE(capture(0x1, [&] { run_bare(0x1); })
                  .out.find("[dispatcher.cpp][EntryTypeSpecificOperation][#] Refresh [Entry]\n"),
              std::string::npos);
}

TEST_F(Dispatcher, AnAddressFirstTellsThatItIsNotInRefreshYet) {
    for (const auto type : PLAIN_TYPES) {
        use_type(type);
        const std::string all = capture(0x1, [&] {
                                    Entry::EntryTypeSpecificOperation(entry.get(), &device, nullptr,
                                                                      true, 0x1, nullptr);
                                }).out;
        const std::string prefix = "[dispatcher.cpp][EntryTypeSpecificOperation][#] ";
        const std::string expected =
            (type == Entry::IP_LEAF ? prefix + "Not in Refresh yet [Entry]\n" : "") + prefix +
            "Refresh [Entry]\n";
        EXPECT_EQ(all.substr(all.find('\n') + 1), expected) << type;
    }
}

}  // namespace
