#include <frontpanel_data/binding.h>
#include <frontpanel_data/entry.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/faulty_interface.h"
#include "support/indexes.h"
#include "support/leaf.h"
#include "support/line_gates.h"

namespace {

using support::capture;
using support::expect_line_gate;
using support::Fake_binding;
using support::Fake_device;
using support::Gate;
using support::Leaf;
using support::Leaf_options;
using support::set_request;

using Log = std::vector<std::string>;

// A leaf with a scripted binding, and what has been asked of the binding.
class EntryBinding : public testing::Test {
protected:
    EntryBinding() { make_leaf(Data_entry::RANGE_LEAF); }

    void make_leaf(Data_entry::Entry_type type) {
        Leaf_options options;
        options.type = type;
        leaf = std::make_unique<Leaf>("Gain", nullptr, options);
        leaf->refreshes_base = true;
        binding = new Fake_binding(&log);
        leaf->Set_binding_object(binding);
        log.clear();
    }

    int refresh(Data_interface* interface = nullptr, bool eval_binding = false) {
        return leaf->Data_entry::Refresh(interface, eval_binding);
    }

    Log log;
    std::unique_ptr<Leaf> leaf;
    Fake_binding* binding = nullptr;  // the leaf's
};

// --- attaching

TEST_F(EntryBinding, IsToldItsParameterAndThenItsEntry) {
    const Index_t index = support::index_of({3, 1});
    Leaf_options options;
    options.type = Data_entry::ENUM_LEAF;
    options.index = &index;
    Leaf other("Other", nullptr, options);
    auto* given = new Fake_binding(&log);
    other.Set_binding_object(given);
    EXPECT_EQ(log, (Log{"setControlInfo pid=120 type=2", "setDataEntry"}));
    EXPECT_EQ(given->entry, &other);
    EXPECT_EQ(given->control_index, &index);
}

TEST_F(EntryBinding, AttachingIsReported) {
    Leaf other("Other");
    expect_line_gate("[Set_binding_object][entry_binding.cpp][#] [Other]\n", 0x21, Gate::LEAF,
                     [&] { other.Set_binding_object(nullptr); });
    auto* given = new Fake_binding();
    EXPECT_EQ(capture(0x1, [&] { other.Set_binding_object(given); }).out,
              "[Set_binding_object][entry_binding.cpp][#] [Other]\n");
}

TEST_F(EntryBinding, ANullBindingIsAcceptedAndReported) {
    Leaf other("Other");
    EXPECT_EQ(capture(0x1, [&] { other.Set_binding_object(nullptr); }).out,
              "[Set_binding_object][entry_binding.cpp][#] [Other]\n"
              "[Set_binding_object][entry_binding.cpp][#] [Other] has been given a NULL binding "
              "object.\n");
    expect_line_gate("[Other] has been given a NULL binding object.\n", 0x21, Gate::LEAF,
                     [&] { other.Set_binding_object(nullptr); });
    EXPECT_EQ(other.Refresh(nullptr, true), Data_entry::OK);
    EXPECT_EQ(other.isVisible(), 1);
}

// Lists are added to the binding before it is handed over; the test is the wrong way round on purpose.
TEST_F(EntryBinding, AnEntryThatHasABindingRefusesLists) {
    int result = 0;
    const auto action = [&] { result = leaf->Add_binding_list({1, 2, 3}); };
    EXPECT_EQ(capture(0x1, action).out,
              "[Add_binding_list][entry_binding.cpp][#] [Gain]\n"
              "[Add_binding_list][entry_binding.cpp][#] [Gain] Binding object is NULL. Cannot add "
              "a binding list to it.\n");
    EXPECT_EQ(result, -1);
    EXPECT_TRUE(binding->lists.empty());
    EXPECT_TRUE(log.empty());
    expect_line_gate("[Add_binding_list][entry_binding.cpp][#] [Gain]\n", 0x21, Gate::LEAF, action);
    expect_line_gate("Binding object is NULL. Cannot add a binding list to it.\n", 0x21, Gate::LEAF,
                     action);
}

TEST_F(EntryBinding, AnEntryWithoutABindingHasNowhereToPutAList) {
    Leaf other("Other");
    int result = 0;
    EXPECT_EQ(capture(0x1,
                      [&] {
                          result = other.Add_binding_list({1, 2, 3});
                      })
                  .out,
              "[Add_binding_list][entry_binding.cpp][#] [Other]\n");
    EXPECT_EQ(result, -1);
}

// --- forwarding

TEST_F(EntryBinding, ReportsAndMapsComeFromTheBinding) {
    binding->print_bind_errors_result = 7;
    binding->map_keys = {support::key_of(INTEGER, 120, support::index_of({3}))};
    EXPECT_EQ(leaf->Print_binding_errors(), 7);
    leaf->Print_suggestions();
    EXPECT_EQ(leaf->Get_var_index_map(), &binding->own_map);
    const std::vector<var_index_s> keys = leaf->Get_var_index_map_keys(3);
    ASSERT_EQ(keys.size(), 1u);
    EXPECT_EQ(keys[0].var, 120u);
    EXPECT_EQ(log, (Log{"printBindErrors", "printSuggestions", "getVarIndexMap",
                        "getVarIndexMapKeys 3"}));
}

TEST_F(EntryBinding, WithoutABindingReportsAndMapsAreEmpty) {
    Leaf other("Other");
    EXPECT_EQ(other.Print_binding_errors(), 0);
    other.Print_suggestions();
    EXPECT_EQ(other.Get_var_index_map(), nullptr);
    EXPECT_TRUE(other.Get_var_index_map_keys(3).empty());
}

TEST_F(EntryBinding, ForwardingIsReportedWithAndWithoutABinding) {
    Leaf other("Gain");
    for (Leaf* entry : {leaf.get(), &other}) {
        expect_line_gate("[Print_binding_errors][entry_binding.cpp][#] [Gain]\n", 0x21, Gate::LEAF,
                         [&] { entry->Print_binding_errors(); });
        expect_line_gate("[Print_suggestions][entry_binding.cpp][#] [Gain]\n", 0x21, Gate::LEAF,
                         [&] { entry->Print_suggestions(); });
        expect_line_gate("[Get_var_index_map][entry_binding.cpp][#] [Gain]\n", 0x21, Gate::LEAF,
                         [&] { entry->Get_var_index_map(); });
        expect_line_gate("[Get_var_index_map_keys][entry_binding.cpp][#] [Gain]\n", 0x21,
                         Gate::LEAF, [&] { entry->Get_var_index_map_keys(0); });
    }
}

// --- refresh

TEST_F(EntryBinding, RefreshWithoutSuggestionsPrintsAndClearsTheErrors) {
    EXPECT_EQ(refresh(), Data_entry::OK);
    EXPECT_EQ(log, (Log{"printBindErrors", "clearBindErrors"}));
}

TEST_F(EntryBinding, RefreshEvaluatesOnRequestBeforeItAppliesSuggestions) {
    binding->on_evaluate = [](Fake_binding& engine, int) {
        engine.suggest_access(Data_entry::READ_WRITE);
    };
    EXPECT_EQ(refresh(nullptr, true), Data_entry::OK);
    EXPECT_EQ(log, (Log{"evaluate flags=1", "printBindErrors", "getSuggestion 32",
                        "clearSuggestion 32", "clearBindErrors"}));
    EXPECT_EQ(leaf->Get_access_type(), Data_entry::READ_WRITE);
}

TEST_F(EntryBinding, TheEngineMayChangeItsCopyOfTheFlags) {
    class Changing : public Fake_binding {
    public:
        using Fake_binding::Fake_binding;
        int evaluateAllBindingExpressions(int* flags) override {
            const int result = Fake_binding::evaluateAllBindingExpressions(flags);
            *flags = 0;
            return result;
        }
    };
    leaf = std::make_unique<Leaf>("Gain");
    leaf->Set_binding_object(new Changing(&log));
    log.clear();
    refresh(nullptr, true);
    refresh(nullptr, true);
    EXPECT_EQ(log[0], "evaluate flags=1");
    EXPECT_EQ(log[3], "evaluate flags=1");
    EXPECT_EQ(Binding::EXECUTE_FLAG, 1);
}

TEST_F(EntryBinding, ASuggestedAccessIsAppliedOnceByTheEntrysOwnOperation) {
    class Watching : public Leaf {
    public:
        using Leaf::Leaf;
        void Set_access_type(Data_access access) override {
            ++m_calls;
            Leaf::Set_access_type(access);
        }
        int m_calls = 0;
    };
    Watching watching("Gain");
    binding = new Fake_binding(&log);
    watching.Set_binding_object(binding);
    binding->suggest_access(Data_entry::WRITE_ONLY);
    watching.Data_entry::Refresh(nullptr, false);
    watching.Data_entry::Refresh(nullptr, false);
    EXPECT_EQ(watching.m_calls, 1);
    EXPECT_EQ(watching.Get_access_type(), Data_entry::WRITE_ONLY);
    EXPECT_EQ(watching.Get_orig_access_type(), Data_entry::WRITE_ONLY);
}

TEST_F(EntryBinding, ASuggestedAccessKeepsTheOriginalOnceItIsMarked) {
    leaf->Set_access_type(Data_entry::READ_WRITE);
    leaf->Set_flag_access_type_chg(true);
    binding->suggest_access(Data_entry::READ_ONLY);
    refresh();
    EXPECT_EQ(leaf->Get_access_type(), Data_entry::READ_ONLY);
    EXPECT_EQ(leaf->Get_orig_access_type(), Data_entry::READ_WRITE);
}

TEST_F(EntryBinding, ASuggestionThatIsNotOfferedOrNotUpdatedIsNotFetched) {
    binding->offer(SUGGESTION_ACCESS);
    binding->offer(SUGGESTION_SET);
    refresh();
    EXPECT_EQ(log, (Log{"printBindErrors", "clearBindErrors"}));
    log.clear();
    binding->withdraw(SUGGESTION_ACCESS);
    binding->withdraw(SUGGESTION_SET);
    binding->update_without_offer(SUGGESTION_ACCESS);
    binding->update_without_offer(SUGGESTION_SET);
    refresh();
    EXPECT_EQ(log, (Log{"printBindErrors", "clearBindErrors"}));
}

TEST_F(EntryBinding, RefreshLeavesOtherSuggestionsAlone) {
    binding->suggest_visibility(1);
    binding->suggest_range({{1, 2}});
    binding->suggest_keys({{1}});
    binding->suggest_warnings({"Careful"});
    refresh();
    EXPECT_EQ(log, (Log{"printBindErrors", "clearBindErrors"}));
}

TEST_F(EntryBinding, SuggestedWritesAreMadeInOrder) {
    Fake_device device;
    device.expect_set_integer(500, 2, 42);
    device.expect_set(501, 0x103, "HELLO");
    device.expect_set(502, 0, "");
    binding->suggest_sets(
        {set_request(500, 2, 42), set_request(501, 0x103, "HELLO"), set_request(502, 0, "")});
    EXPECT_EQ(refresh(&device), Data_entry::OK);
    EXPECT_EQ(log,
              (Log{"printBindErrors", "getSuggestion 8", "clearSuggestion 8", "clearBindErrors"}));
}

TEST_F(EntryBinding, ErrorsAreClearedAfterTheWrites) {
    class Logging : public Fake_device {
    public:
        explicit Logging(Log& log) : m_log(log) {}
        int Set(unsigned int pid, unsigned int, const void*, unsigned int) override {
            m_log.push_back("Set " + std::to_string(pid));
            return 0;
        }
        Log& m_log;
    };
    Logging device(log);
    binding->suggest_sets({set_request(500, 2, 42), set_request(501, 2, 43)});
    binding->suggest_access(Data_entry::READ_WRITE);
    refresh(&device, true);
    EXPECT_EQ(log, (Log{"evaluate flags=1", "printBindErrors", "getSuggestion 32",
                        "clearSuggestion 32", "getSuggestion 8", "clearSuggestion 8", "Set 500",
                        "Set 501", "clearBindErrors"}));
}

TEST_F(EntryBinding, AFailedWriteDoesNotStopTheNext) {
    Fake_device device;
    device.expect_set_integer(500, 2, 42, -1);
    device.expect_set_integer(501, 2, 43);
    binding->suggest_sets({set_request(500, 2, 42), set_request(501, 2, 43)});
    EXPECT_EQ(refresh(&device), Data_entry::OK);
    EXPECT_EQ(log.back(), "clearBindErrors");
}

TEST_F(EntryBinding, WithoutAnInterfaceWritesAreDroppedAndTheErrorsStay) {
    binding->suggest_sets({set_request(500, 2, 42)});
    EXPECT_EQ(refresh(), Data_entry::OK);
    EXPECT_EQ(log, (Log{"printBindErrors", "getSuggestion 8", "clearSuggestion 8"}));
    Fake_device device;
    EXPECT_EQ(refresh(&device), Data_entry::OK);
    EXPECT_TRUE(device.calls().empty()) << "dropped, not put off";
}

TEST_F(EntryBinding, WritesOfTheWholeBufferStayWithinIt) {
    Fake_device device;
    device.expect_set(500, 2, std::string(128, 'a'));
    binding->suggest_sets({set_request(500, 2, std::string(128, 'a'))});
    EXPECT_EQ(refresh(&device), Data_entry::OK);
}

TEST_F(EntryBinding, AWriteThatClaimsMoreThanItsBufferIsCutToIt) {
    Fake_device device;
    GetSetS request = set_request(500, 2, std::string(128, 'a'));
    request.length = 0xFFFFFFFF;
    device.expect_set(500, 2, std::string(128, 'a'));
    binding->suggest_sets({request});
    EXPECT_EQ(refresh(&device), Data_entry::OK);
}

TEST_F(EntryBinding, RefreshTellsWhatItApplies) {
    Fake_device device;
    device.expect_set_integer(500, 2, 42);
    binding->suggest_access(Data_entry::READ_WRITE);
    binding->suggest_sets({set_request(500, 2, 42)});
    EXPECT_EQ(capture(0x8001, [&] { refresh(&device); }).out,
              "[Refresh][entry_binding.cpp][#] [Gain]\n"
              "[Refresh][entry_binding.cpp][#] getting updated Access permissions "
              "suggestion...\n"
              "[Refresh][entry_binding.cpp][#] set suggestionUpdated\n"
              "[Refresh][entry_binding.cpp][#] About to start setting...\n");
}

TEST_F(EntryBinding, TheLinesOfARefreshNeedAVerbosityBit) {
    const auto action = [&] {
        binding->suggest_access(Data_entry::READ_WRITE);
        binding->suggest_sets({});
        refresh();
    };
    expect_line_gate("[Refresh][entry_binding.cpp][#] [Gain]\n", 0x35, Gate::ENTRY, action);
    expect_line_gate("getting updated Access permissions suggestion...\n", 0x21, Gate::ENTRY,
                     action);
    expect_line_gate("set suggestionUpdated\n", 0x21, Gate::ENTRY, action);
    expect_line_gate("About to start setting...\n", 0x21, Gate::ENTRY, action);
}

TEST_F(EntryBinding, RefreshWithoutABindingTellsOnlyTheName) {
    Leaf other("Other");
    EXPECT_EQ(capture(0xFFFFFFFF, [&] { other.Data_entry::Refresh(nullptr, true); }).out,
              "[Refresh][entry_binding.cpp][#] [Other]\n");
}

// --- warnings

TEST_F(EntryBinding, AValueIsTriedAsAnOverrideOfTheEntrysOwnParameter) {
    const int32_t value = 42;
    binding->offer(SUGGESTION_WARNING);
    binding->on_evaluate = [](Fake_binding& engine, int flags) {
        EXPECT_EQ(flags, 5);
        EXPECT_TRUE(engine.override_in_force);
        EXPECT_TRUE(engine.override_key.index == *support::any_index());
    };
    EXPECT_EQ(leaf->Set_value(&value, sizeof value), 0);
    EXPECT_EQ(log, (Log{"setOverrideVarid pid=120 rt=1 value: rt=1 i=42 s=[]", "evaluate flags=5",
                        "printBindErrors", "clearOverrideVarid"}));
}

TEST_F(EntryBinding, ATextIsTriedAsAText) {
    make_leaf(Data_entry::STRING_LEAF);
    binding->offer(SUGGESTION_WARNING);
    EXPECT_EQ(leaf->Set_value("HELLO", 6), 0);
    EXPECT_EQ(log[0], "setOverrideVarid pid=120 rt=2 value: rt=2 i=0 s=[HELLO]");
}

TEST_F(EntryBinding, ATextWithoutATerminatorIsReadOnlyToItsLength) {
    make_leaf(Data_entry::STRING_LEAF);
    binding->offer(SUGGESTION_WARNING);
    EXPECT_EQ(leaf->Set_value("HELLO WORLD", 5), 0);
    EXPECT_EQ(log[0], "setOverrideVarid pid=120 rt=2 value: rt=2 i=0 s=[HELLO]");
}

TEST_F(EntryBinding, OfANumberAtMostFourBytesAreRead) {
    const int32_t values[2] = {42, 43};
    binding->offer(SUGGESTION_WARNING);
    EXPECT_EQ(leaf->Set_value(values, sizeof values), 0);
    EXPECT_EQ(log[0], "setOverrideVarid pid=120 rt=1 value: rt=1 i=42 s=[]");
}

TEST_F(EntryBinding, OfAShortNumberOnlyItsBytesAreRead) {
    const int32_t value = 0x01020304;
    int32_t expected = 0;
    std::memcpy(&expected, &value, 2);
    binding->offer(SUGGESTION_WARNING);
    EXPECT_EQ(leaf->Set_value(&value, 2), 0);
    EXPECT_EQ(log[0],
              "setOverrideVarid pid=120 rt=1 value: rt=1 i=" + std::to_string(expected) + " s=[]");
}

TEST_F(EntryBinding, AValueOfNoKnownTypeIsTriedAsMinusOne) {
    class Untyped : public Leaf {
    public:
        using Leaf::Leaf;
        RETURN_TYPE bindingReturnType() override { return INVALID_TYPE; }
    };
    Untyped untyped("Gain");
    binding = new Fake_binding(&log);
    binding->offer(SUGGESTION_WARNING);
    untyped.Set_binding_object(binding);
    log.clear();
    const int32_t value = 42;
    EXPECT_EQ(untyped.Set_value(&value, sizeof value), 0);
    EXPECT_EQ(log[0], "setOverrideVarid pid=120 rt=0 value: rt=0 i=-1 s=[]");
}

TEST_F(EntryBinding, WarningsAreShownInOrderAfterTheyAreConsumed) {
    const int32_t value = 42;
    binding->offer(SUGGESTION_WARNING);
    binding->on_evaluate = [](Fake_binding& engine, int) {
        engine.suggest_warnings({"First", "Second"});
    };
    EXPECT_EQ(leaf->Set_value(&value, sizeof value), 1);
    EXPECT_EQ(log, (Log{"setOverrideVarid pid=120 rt=1 value: rt=1 i=42 s=[]", "evaluate flags=5",
                        "printBindErrors", "clearOverrideVarid", "getSuggestion 16",
                        "clearSuggestion 16", "displayWarning First", "displayWarning Second"}));
}

TEST_F(EntryBinding, AnUpdateWithoutAnyTextIsAWarningToo) {
    const int32_t value = 42;
    binding->suggest_warnings({});
    EXPECT_EQ(leaf->Set_value(&value, sizeof value), 1);
    EXPECT_TRUE(binding->shown_warnings.empty());
}

TEST_F(EntryBinding, AnEngineThatNeverWarnsIsNotAsked) {
    const int32_t value = 42;
    binding->update_without_offer(SUGGESTION_WARNING);
    EXPECT_EQ(leaf->Set_value(&value, sizeof value), 0);
    EXPECT_TRUE(log.empty());
}

TEST_F(EntryBinding, WithoutABindingEveryValueIsFine) {
    Leaf other("Other");
    const int32_t value = 42;
    EXPECT_EQ(other.Set_value(&value, sizeof value), 0);
}

TEST_F(EntryBinding, TryingAValueIsReported) {
    const int32_t value = 42;
    binding->offer(SUGGESTION_WARNING);
    const auto action = [&] {
        binding->suggest_warnings({"Careful"});
        leaf->Set_value(&value, sizeof value);
    };
    EXPECT_EQ(capture(0x8001, action).out,
              "[Set_value][entry_binding.cpp][#] \n"
              "[Set_value][entry_binding.cpp][#] warn suggestionUpdated\n");
    expect_line_gate("[Set_value][entry_binding.cpp][#] \n", 0x25, Gate::ENTRY, action);
    expect_line_gate("[Set_value][entry_binding.cpp][#] warn suggestionUpdated\n", 0x21,
                     Gate::ENTRY, action);
}

// --- visibility suggestion

TEST_F(EntryBinding, AVisibilityBelowOneIsHidden) {
    const std::pair<int, int> visibilities[] = {{1, 1},   {2, 2},   {INT_MAX, INT_MAX}, {0, -1},
                                                {-1, -1}, {-7, -1}, {INT_MIN, -1}};
    for (const auto& [suggested, expected] : visibilities) {
        binding->suggest_visibility(suggested);
        EXPECT_EQ(leaf->Get_bind_vis(), expected) << suggested;
    }
}

TEST_F(EntryBinding, AVisibilityStaysUpdatedAndIsCached) {
    binding->suggest_visibility(0);
    EXPECT_EQ(leaf->Get_bind_vis(), -1);
    EXPECT_TRUE(binding->is_updated(SUGGESTION_VISIBILITY));
    EXPECT_EQ(log, Log{"getSuggestion 1"});
    binding->clearSuggestion(SUGGESTION_VISIBILITY);
    EXPECT_EQ(leaf->Get_bind_vis(), -1);
    binding->suggest_visibility(3);
    EXPECT_EQ(leaf->Get_bind_vis(), 3);
    binding->clearSuggestion(SUGGESTION_VISIBILITY);
    EXPECT_EQ(leaf->Get_bind_vis(), 3);
}

TEST_F(EntryBinding, AVisibilityNeedsNoOffer) {
    binding->suggest_visibility(0);
    binding->withdraw(SUGGESTION_VISIBILITY);
    EXPECT_EQ(leaf->Get_bind_vis(), -1);
}

TEST_F(EntryBinding, TellsWhereTheVisibilityComesFrom) {
    const auto action = [&] { leaf->Get_bind_vis(); };
    EXPECT_EQ(capture(0x8001, action).out, "[Get_bind_vis] using cached vis. vis=[1]\n");
    expect_line_gate("[Get_bind_vis] using cached vis. vis=[1]\n", 0x421, Gate::ENTRY, action);
    binding->suggest_visibility(0);
    EXPECT_EQ(capture(0x8001, action).out, "[Get_bind_vis] new vis suggestion. vis=[-1]\n");
    expect_line_gate("[Get_bind_vis] new vis suggestion. vis=[-1]\n", 0x421, Gate::ENTRY, action);
}

}  // namespace
