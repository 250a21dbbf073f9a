// Every kind of suggestion through real entries, as the panel refreshes, edits and commits them.
#include <frontpanel_binding/caching_device.h>

#include <frontpanel_data/evaluator.h>
#include <gmock/gmock.h>

#include <limits>

#include "support/leaf.h"
#include "unit/binding/binding_fixture.h"

using namespace frontpanel;

namespace {

using binding_fixture::Binding_fixture;
using binding_fixture::Number_entry;
using binding_fixture::Option_entry;
using support::capture;
using support::index_of;
using support::key_of;
using support::Leaf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr unsigned int MODE = 100;
constexpr unsigned int GAIN = 101;
constexpr unsigned int LEVEL = 102;
constexpr unsigned int TITLE = 200;
constexpr const char* TRACE = "@@@@@@@@@@@@@@@@@@@@@ here 14\n";

class Suggested_entries : public Binding_fixture {
protected:
    Suggested_entries() {
        for (const unsigned int pid : {MODE, GAIN, LEVEL}) {
            device.add_integer(pid, 0, -1000, 1000, 0);
        }
        device.add_text(TITLE, 0, 16, "Studio");
        registry->set_warning_listener(
            [this](const std::string& warning) { shown_warnings.push_back(warning); });
    }

    String_entry text_entry() {
        return {"Title",
                "A text",
                TITLE,
                &no_level,
                16,
                nullptr,
                Data_entry::READ_WRITE,
                Data_entry::VISIBLE_ALL,
                true,
                Data_entry::SHORTCUT_NONE,
                nullptr,
                nullptr,
                nullptr};
    }
    // Without the refresh of the entry: only what is already suggested.
    std::string refresh_without_evaluation(Data_entry& entry, Data_interface* iface) {
        return capture(0x20, [&] { entry.Refresh(iface, false); }).out;
    }
    std::vector<unsigned int> written() const {
        std::vector<unsigned int> pids;
        for (const Memory_device::Write& write : device.writes()) {
            pids.push_back(write.pid);
        }
        return pids;
    }

    std::vector<std::string> shown_warnings;
};

// ---- access

TEST_F(Suggested_entries, ARefreshAppliesTheAccessRightAndKeepsTheOriginal) {
    Number_entry gain("Gain", GAIN, no_level, 0, 100);
    bind(gain, "access read-only if [100] == 1; access write-only if [100] == 2");
    refresh(gain);
    EXPECT_EQ(gain.Get_access_type(), Data_entry::READ_WRITE);

    device.set_integer(MODE, 0, 1);
    refresh(gain);
    EXPECT_EQ(gain.Get_access_type(), Data_entry::READ_ONLY);
    EXPECT_EQ(gain.Get_orig_access_type(), Data_entry::READ_WRITE);
    device.set_integer(MODE, 0, 2);
    refresh(gain);
    EXPECT_EQ(gain.Get_access_type(), Data_entry::WRITE_ONLY);
    device.set_integer(MODE, 0, 3);
    refresh(gain);
    EXPECT_EQ(gain.Get_access_type(), Data_entry::READ_WRITE);
}

TEST_F(Suggested_entries, AnAccessRightThatIsSetOtherwiseStaysUntilTheSuggestionChanges) {
    Number_entry gain("Gain", GAIN, no_level, 0, 100);
    bind(gain, "access read-only if [100] == 1");
    refresh(gain);
    gain.Set_access_type(Data_entry::WRITE_ONLY);
    refresh(gain);

    EXPECT_EQ(gain.Get_access_type(), Data_entry::WRITE_ONLY);
    EXPECT_EQ(gain.Get_orig_access_type(), Data_entry::READ_WRITE);
}

// ---- writes

TEST_F(Suggested_entries, ARefreshMakesTheWritesInOrderAndOnce) {
    Number_entry gain("Gain", GAIN, no_level, 0, 100);
    bind(gain, "set [102] = value + 1 if [100] == 1; set [200@s] = \"Hall {value}\" if [100] == 1");
    device.set_integer(GAIN, 0, 41);
    device.set_integer(MODE, 0, 1);
    refresh(gain);

    EXPECT_THAT(written(), ElementsAre(LEVEL, TITLE));
    EXPECT_EQ(device.integer(LEVEL, 0), 42);
    EXPECT_EQ(device.text(TITLE, 0), "Hall 41");
    refresh(gain);
    EXPECT_EQ(written().size(), 2u);
}

TEST_F(Suggested_entries, WithoutAnInterfaceTheWritesAreDroppedAndTheErrorsStay) {
    Leaf leaf("Gain");
    Expression_binding* const engine = bind(leaf, "set [102] = 5; visible if [999] == 1");
    evaluate(*engine);
    EXPECT_THAT(refresh_without_evaluation(leaf, nullptr), HasSubstr(""));
    leaf.Data_entry::Refresh(nullptr, false);
    EXPECT_THAT(written(), IsEmpty());

    evaluate(*engine);
    engine->clearSuggestion(SUGGESTION_SET);
    EXPECT_FALSE(engine->errors().empty());
    leaf.Data_entry::Refresh(&device, false);
    EXPECT_TRUE(engine->errors().empty());
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(Suggested_entries, ARefreshWithoutEvaluationAppliesOnlyWhatIsAlreadySuggested) {
    Leaf leaf("Gain");
    Expression_binding* const engine = bind(leaf, "set [102] = [100]");
    device.set_integer(MODE, 0, 5);
    leaf.Data_entry::Refresh(&device, false);
    EXPECT_THAT(written(), IsEmpty());

    evaluate(*engine);
    leaf.Data_entry::Refresh(&device, false);
    EXPECT_EQ(device.integer(LEVEL, 0), 5);
}

// ---- warnings

TEST_F(Suggested_entries, AValueThatIsWarnedOfIsRefusedAndNothingIsStored) {
    Number_entry gain("Gain", GAIN, no_level, 0, 100);
    bind(gain, "warn \"{value} is high\" if value > 80; warn \"in mode {[100]}\" if value > 90");
    refresh(gain);
    const auto attempt = [&](int value) { return gain.Set_value(&value, sizeof value); };

    EXPECT_EQ(attempt(80), 0);
    EXPECT_THAT(shown_warnings, IsEmpty());
    EXPECT_EQ(gain.value(), 80);
    EXPECT_NE(attempt(95), 0);
    EXPECT_THAT(shown_warnings, ElementsAre("95 is high", "in mode 0"));
    EXPECT_EQ(gain.value(), 80);
    EXPECT_EQ(attempt(95), 0) << "who tries again has agreed";
    EXPECT_EQ(gain.value(), 95);
    EXPECT_NE(attempt(85), 0);
    EXPECT_EQ(attempt(79), 0) << "a warning that ends is no news";
    EXPECT_NE(attempt(95), 0) << "a value without warning in between arms them again";
    EXPECT_EQ(shown_warnings.size(), 5u);
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(Suggested_entries, AWarningComparesTheTriedValueWithTheDevices) {
    Number_entry gain("Gain", GAIN, no_level, 0, 100);
    bind(gain, "warn \"from {[101]} to {value}\" if value != [101]");
    device.set_integer(GAIN, 0, 40);
    refresh(gain);
    const auto attempt = [&](int value) { return gain.Set_value(&value, sizeof value); };

    EXPECT_EQ(attempt(40), 0);
    EXPECT_NE(attempt(55), 0);
    EXPECT_THAT(shown_warnings, ElementsAre("from 40 to 55"));
    EXPECT_EQ(attempt(55), 0);
    EXPECT_EQ(gain.value(), 55) << "stored in the entry, and still 40 in the device";
    EXPECT_NE(attempt(60), 0);
    EXPECT_EQ(shown_warnings.back(), "from 40 to 60");
}

TEST_F(Suggested_entries, ATriedTextIsSeenByTheWarnings) {
    String_entry title = text_entry();
    const BindingListT list =
        registry->compile("warn \"{value} is taken\" if value == \"Hall\"", STRING).list;
    auto* const engine = new Expression_binding(registry);
    engine->addBindingList(list);
    title.Set_binding_object(engine);
    refresh(title);

    EXPECT_EQ(title.Set_value("Room", 4), 0);
    EXPECT_NE(title.Set_value("Hall", 4), 0);
    EXPECT_THAT(shown_warnings, ElementsAre("Hall is taken"));
}

TEST_F(Suggested_entries, ATriedOptionIsSeenByItsKey) {
    Option_entry source("Source", GAIN, no_level);
    bind(source, "warn \"key {value}\" if value >= 2");
    refresh(source);
    const auto attempt = [&](int position) { return source.Set_value(&position, sizeof position); };

    EXPECT_EQ(attempt(1), 0);
    EXPECT_NE(attempt(3), 0);
    EXPECT_THAT(shown_warnings, ElementsAre("key 3"));
    EXPECT_EQ(source.Get_integer(), 1);
}

TEST_F(Suggested_entries, ARefreshRaisesNoWarning) {
    Number_entry gain("Gain", GAIN, no_level, 0, 100);
    bind(gain, "warn \"always\"");
    refresh(gain);

    EXPECT_THAT(shown_warnings, IsEmpty());
}

// ---- visibility

TEST_F(Suggested_entries, ANodeIsHiddenWithAllThatIsBelowIt) {
    Node_entry menu("Menu", "A menu", &no_level, nullptr, Data_entry::VISIBLE_ALL,
                    Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr);
    Leaf below("Below", &menu);
    bind(menu, "visible if [100] == 1");
    refresh(menu);
    EXPECT_EQ(menu.isVisible(true, &device), -1);
    EXPECT_EQ(menu.Get_bind_vis(), -1);

    device.set_integer(MODE, 0, 1);
    refresh(menu);
    EXPECT_EQ(menu.isVisible(true, &device), 1);
}

// ---- ranges

TEST_F(Suggested_entries, SuggestedRangesAreCutToTheAllowedOnes) {
    Number_entry gain("Gain", GAIN, no_level, 0, 100);
    gain.setValidRangeAndValues({{0, 10, {}}, {20, 30, {}}});
    bind(gain, "range 5..25 if [100] == 1; range 25..5 if [100] == 2; range 50..60 if [100] == 3");
    device.set_integer(GAIN, 0, 7);
    refresh(gain);
    EXPECT_EQ(gain.Get_min(), 0);
    EXPECT_EQ(gain.Get_max(), 29);

    for (const int mode : {1, 2}) {
        device.set_integer(MODE, 0, mode);
        refresh(gain);
        EXPECT_EQ(gain.Get_min(), 5);
        EXPECT_EQ(gain.Get_max(), 25);
        EXPECT_EQ(gain.increment(9, 15), 15) << "a value in a gap stays";
        EXPECT_EQ(gain.increment(25, 26), 25);
    }
    device.set_integer(MODE, 0, 3);
    refresh(gain);
    EXPECT_EQ(gain.Get_min(), std::numeric_limits<int>::max()) << "no common value";
    device.set_integer(MODE, 0, 0);
    refresh(gain);
    EXPECT_EQ(gain.Get_max(), 29);
}

TEST_F(Suggested_entries, ACommitRefreshesItsDependantsBetweenTwoTraces) {
    Number_entry mode("Mode", MODE, no_level, 0, 10);
    Number_entry gain("Gain", GAIN, no_level, 0, 100);
    Number_entry level("Level", LEVEL, no_level, 0, 100);
    bind(mode, "visible if value >= 0");
    bind(level, "range 0..[100]");
    bind(gain, "range 0..[100] * 2");
    const int value = 4;
    mode.Set_value(&value, sizeof value);
    const std::string out = capture(0, [&] { mode.Commit(&device); }).out;

    EXPECT_EQ(out, std::string(TRACE) + TRACE + TRACE + TRACE)
        << "two dependants, and not the entry itself";
    EXPECT_EQ(level.Get_max(), 4);
    EXPECT_EQ(gain.Get_max(), 8);
}

TEST_F(Suggested_entries, ACommitTellsWhoDependsOnIt) {
    const Index_t index = index_of({2, 1});
    device.add_integer(300, 0x102, 0, 10, 0);
    Number_entry mode("Mode", 300, index, 0, 10);
    Number_entry gain("Gain", GAIN, no_level, 0, 100);
    bind(mode, "");
    bind(gain, "range 0..[300.2.1]");
    const std::string out = capture(0x1, [&] { mode.Commit(&device); }).out;

    EXPECT_THAT(out, HasSubstr("Bind expression of entry [Gain] depends on [Mode][300.2.1]@i num "
                               "index levels = [2]\n"));
}

// ---- keys

TEST_F(Suggested_entries, AnOptionEntryShowsTheAllowedKeys) {
    Option_entry source("Source", GAIN, no_level);
    bind(source, "keys 1..2, 3 if [100] == 1; keys 0 if [100] >= 1");
    refresh(source);
    source.updateControlOptionMap();
    EXPECT_THAT(source.shown(), ElementsAre(0, 1, 2, 3));

    device.set_integer(MODE, 0, 2);
    device.set_integer(GAIN, 0, 3);
    refresh(source);
    source.updateControlOptionMap();
    EXPECT_THAT(source.shown(), ElementsAre(0));
    refresh(source);
    EXPECT_EQ(device.integer(GAIN, 0), 0) << "the hidden key is left";
    source.updateControlOptionMap();
    EXPECT_THAT(source.shown(), ElementsAre(0)) << "the last keys stay while nothing is new";

    device.set_integer(MODE, 0, 1);
    refresh(source);
    source.updateControlOptionMap();
    EXPECT_THAT(source.shown(), ElementsAre(0, 1, 2, 3));
}

TEST_F(Suggested_entries, OnlyKeysThatBothSourcesAllowAreShown) {
    Option_entry source("Source", GAIN, no_level);
    source.setProductOptions({{"a", 1}, {"b", 0}});
    source.Set_control_options({{0, {"a"}}, {1, {"b"}}, {2, {"a"}}, {3, {"a"}}});
    bind(source, "keys 1..2 if [100] == 1");
    device.set_integer(MODE, 0, 1);
    device.set_integer(GAIN, 0, 2);
    refresh(source);
    source.updateControlOptionMap();
    EXPECT_THAT(source.shown(), ElementsAre(2));

    // Without a rule that holds the binding must not hide what the options allow.
    device.set_integer(MODE, 0, 0);
    refresh(source);
    source.updateControlOptionMap();
    EXPECT_THAT(source.shown(), ElementsAre(0, 2, 3));
}

// ---- homescreen toggles

class Toggled : public Suggested_entries {
protected:
    int m_token = 0;
    FPData* token() { return reinterpret_cast<FPData*>(&m_token); }
};

TEST_F(Toggled, AToggleReadsTheValuesThatTheMenuKeeps) {
    Caching_device cache(device, registry);
    Leaf housed("Gain");
    Link_entry link(&housed);
    registry->watch(key_of(INTEGER, MODE, no_level));
    registry->watch(key_of(INTEGER, LEVEL, index_of({0})));
    const std::string errors = capture(0, [&] {
                                   link.setAsHomescreenEntry("a = [100] == 1 && [102.0] > 5",
                                                             registry->var_index_map(), token());
                               }).err;
    EXPECT_EQ(errors, "");
    registry->poll();
    EXPECT_EQ(link.CheckToggleState(), 0);

    device.set_integer(MODE, 0, 1);
    device.set_integer(LEVEL, 0, 6);
    EXPECT_EQ(link.CheckToggleState(), 0);
    registry->poll();
    EXPECT_EQ(link.CheckToggleState(), 1);
    const int32_t off = 0;
    cache.Set(MODE, 0, &off, sizeof off);
    EXPECT_EQ(link.CheckToggleState(), 0);
}

TEST_F(Toggled, AnEntryWhoseLinkIsRefreshedIsEvaluated) {
    Number_entry gain("Gain", GAIN, no_level, 0, 100);
    bind(gain, "range 0..40 if [100] == 1");
    device.set_integer(MODE, 0, 1);
    Link_entry link(&gain);
    refresh(link);

    EXPECT_EQ(gain.Get_max(), 40);
    EXPECT_EQ(link.Get_var_index_map_keys(0).size(), 1u);
}

// ---- slot entries

TEST_F(Suggested_entries, ASlotEntrySelectsItsSocketThroughTheCache) {
    Caching_device cache(device, registry);
    std::vector<std::string> texts(3, std::string(31, ' '));
    char* array[] = {texts[0].data(), texts[1].data(), texts[2].data()};
    const Index_t socket = index_of({2});
    device.add_integer(500, 2, 0, 15, 1);
    PROD_LIST_S product = {};
    product.prod_id = 7;
    std::string("Amp").copy(product.prod_string, sizeof product.prod_string);
    std::string("Audio").copy(product.prod_family, sizeof product.prod_family);
    device.set_product(1, product, 2);
    std::vector<int> selected;
    device.set_fault([&](const Memory_device::Operation& asked) {
        if (asked.kind == Memory_device::Operation_kind::SELECT_SOCKET) {
            selected.push_back(asked.socket);
        }
        return 0;
    });
    Slot_enum_entry slots("Slot", "The slots", 500, &socket, 0, 2, 0, nullptr, array, 3, nullptr,
                          nullptr, Data_entry::READ_WRITE, nullptr, Data_entry::VISIBLE_ALL, true,
                          Data_entry::SHORTCUT_NONE, nullptr, nullptr, nullptr);
    EXPECT_EQ(refresh(slots, &cache), 0);

    EXPECT_THAT(selected, ElementsAre(2, 0));
    EXPECT_EQ(texts[0].substr(0, 5), "1:Amp");
}

}  // namespace
