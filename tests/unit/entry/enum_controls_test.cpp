// Which options of an enumerated entry are visible.
#include <climits>

#include "enum_fixture.h"
#include "support/capture.h"
#include "support/fake_binding.h"

namespace {

using support::capture;
using support::Fake_binding;

using Options = std::map<int, std::vector<std::string>>;
using Positions = Open_enum::Positions;

constexpr uint32_t GENERAL = 0x1;
// The general mask shares its bit with the product-option lines, so these are taken out of the captures.
std::string without_option_lookups(const std::string& text) {
    std::string kept;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        const std::string line = text.substr(at, end - at);
        if (line.find("[isOptionStatic]") == std::string::npos) {
            kept += line;
        }
        at = end;
    }
    return kept;
}

// A binding whose allowed keys are announced as a range and read as keys.
class Key_binding : public Fake_binding {
public:
    using Fake_binding::Fake_binding;
    void allow(std::vector<std::vector<int>> keys) {
        suggest_keys(std::move(keys));
        clearSuggestion(SUGGESTION_KEYS);
        offer(SUGGESTION_RANGE);
        update_without_offer(SUGGESTION_RANGE);
    }
};

Key_binding* bind(Open_enum& entry, std::vector<std::string>* log = nullptr) {
    auto* binding = new Key_binding(log);
    entry.Set_binding_object(binding);
    return binding;
}

TEST(EnumControls, ShowEveryOptionWithoutAnySource) {
    Open_enum entry;
    EXPECT_EQ(entry.updateControlOptionMap(), 0);
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{0, 0}, {1, 1}, {2, 2}, {3, 3}}));
    EXPECT_EQ(entry.m_min, 0);
    EXPECT_EQ(entry.m_max, 3);
    EXPECT_EQ(entry.m_size, 4);
}

TEST(EnumControls, HideAKeyWhoseOnlyOptionTheProductHasNoneOf) {
    Open_enum entry;
    entry.setProductOptions({{"gps", 1}, {"modem", 0}});
    entry.Set_control_options({{0, {"gps"}}, {1, {"gps"}}, {2, {"modem"}}, {3, {"gps"}}});
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{0, 0}, {1, 1}, {2, -1}, {3, 2}}));
    EXPECT_EQ(entry.m_min, 0);
    EXPECT_EQ(entry.m_max, 2);
    EXPECT_EQ(entry.m_size, 3);
    EXPECT_EQ(entry.m_size_visible, 3);
    EXPECT_EQ(entry.max_map_size, 3);
}

TEST(EnumControls, OneOptionThatHoldsIsEnough) {
    struct Case {
        const char* what;
        std::vector<std::string> options;
        bool shown;
    };
    const Case cases[] = {
        {"static", {"gps"}, true},
        {"no option", {}, false},
        {"none of it", {"modem"}, false},
        {"not a product option", {"fax"}, false},
        {"an instance that the product has", {"slot4"}, true},
        {"an instance beyond", {"slot5"}, false},
        {"the pattern itself", {"slotn"}, true},
        {"a pattern of which the product has none", {"port1"}, false},
        {"the second holds", {"slot5", "gps"}, true},
        {"the third holds", {"fax", "modem", "slot1"}, true},
        {"none of three holds", {"fax", "modem", "slot9"}, false},
    };
    for (const Case& expected : cases) {
        SCOPED_TRACE(expected.what);
        Open_enum entry;
        entry.setProductOptions({{"gps", 1}, {"modem", 0}, {"portn", 0}, {"slotn", 4}});
        entry.Set_control_options({{1, expected.options}});
        EXPECT_EQ(entry.optionControls(), expected.shown ? ControlsT{1} : ControlsT{});
    }
}

TEST(EnumControls, StopAtTheFirstOptionThatHolds) {
    Open_enum entry;
    entry.setProductOptions({{"gps", 1}, {"rtc", 1}});
    entry.Set_control_options({{0, {"gps", "rtc"}}});
    const std::string out = capture(GENERAL, [&] { entry.optionControls(); }).out;
    EXPECT_NE(out.find("Option: [gps]"), std::string::npos);
    EXPECT_EQ(out.find("Option: [rtc]"), std::string::npos);
}

TEST(EnumControls, AddAnEmptyListForEveryKeyWithoutOne) {
    Open_enum entry;
    EXPECT_TRUE(entry.optionControls().empty());
    EXPECT_TRUE(entry.control_options.empty()) << "not without any control option";
    entry.Set_control_options({{2, {"gps"}}});
    entry.optionControls();
    EXPECT_EQ(entry.control_options, (Options{{0, {}}, {1, {}}, {2, {"gps"}}, {3, {}}}));
}

TEST(EnumControls, ShowEveryOptionWhenNoControlOptionHolds) {
    Open_enum entry;
    entry.setProductOptions({{"modem", 0}});
    entry.Set_control_options({{0, {"modem"}}, {1, {"modem"}}});
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{0, 0}, {1, 1}, {2, 2}, {3, 3}}));
}

// When neither source yields a key the counts are those of the map before, and its other keys stay.
TEST(EnumControls, CountTheOldMapWhenNeitherSourceYieldsAKey) {
    Open_enum entry;
    entry.map_enum_to_options = {{0, 0}, {1, -1}, {9, 1}};
    entry.m_size_visible = 77;
    entry.max_map_size = 78;
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.m_min, 0);
    EXPECT_EQ(entry.m_max, 1);
    EXPECT_EQ(entry.m_size, 2);
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{0, 0}, {1, 1}, {2, 2}, {3, 3}, {9, 1}}));
    EXPECT_EQ(entry.m_size_visible, 77);
    EXPECT_EQ(entry.max_map_size, 78);
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.m_size, 5);
}

TEST(EnumControls, TakeTheKeysOfTheBinding) {
    Open_enum entry(Enum_arguments().default_value(1));
    bind(entry)->allow({{3, 1}});
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{0, -1}, {1, 0}, {2, -1}, {3, 1}}));
    EXPECT_EQ(entry.m_min, 0);
    EXPECT_EQ(entry.m_max, 1);
    EXPECT_EQ(entry.m_size, 2);
    EXPECT_EQ(entry.m_size_visible, 2);
}

TEST(EnumControls, ShowOnlyWhatBothSourcesAllow) {
    Open_enum entry;
    entry.setProductOptions({{"gps", 1}});
    entry.Set_control_options({{0, {"gps"}}, {1, {"gps"}}, {3, {"gps"}}});
    bind(entry)->allow({{3, 2, 0}});
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{0, 0}, {1, -1}, {2, -1}, {3, 1}}));
}

// Only the current option gets a position: it can thus be shown and left again.
TEST(EnumControls, KeepTheCurrentOptionWhenTheSourcesHaveNothingInCommon) {
    Open_enum entry(Enum_arguments().default_value(2));
    entry.setProductOptions({{"gps", 1}});
    entry.Set_control_options({{0, {"gps"}}});
    bind(entry)->allow({{3}});
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{2, 0}}));
    EXPECT_EQ(entry.m_min, 0);
    EXPECT_EQ(entry.m_max, 0);
    EXPECT_EQ(entry.m_size, 1);
    EXPECT_EQ(entry.max_map_size, 0);
}

TEST(EnumControls, HideOptionsOfTheProductThatABindingWithoutKeysOffers) {
    Open_enum entry(Enum_arguments().default_value(1));
    entry.setProductOptions({{"gps", 1}});
    entry.Set_control_options({{0, {"gps"}}, {1, {"gps"}}});
    bind(entry)->allow({});
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{1, 0}}));
}

// An engine that offers keys may not have evaluated its rules yet.
TEST(EnumControls, ShowEveryOptionOfABindingThatAllowsNoKeyAlone) {
    Open_enum entry(Enum_arguments().default_value(1));
    bind(entry)->allow({});
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{0, 0}, {1, 1}, {2, 2}, {3, 3}}));
    EXPECT_EQ(entry.m_size, 4);
}

TEST(EnumControls, IgnoreKeysThatDoNotExist) {
    Open_enum entry;
    bind(entry)->allow({{-7, 1, 1, 4, INT_MAX, INT_MIN}});
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{0, -1}, {1, 0}, {2, -1}, {3, -1}}));
}

TEST(EnumControls, ShowEveryOptionOnceTheBindingOffersNoKeysAnyMore) {
    Open_enum entry;
    Key_binding* const binding = bind(entry);
    binding->allow({{1}});
    entry.updateControlOptionMap();
    binding->withdraw(SUGGESTION_RANGE);
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{0, 0}, {1, 1}, {2, 2}, {3, 3}}));
    EXPECT_EQ(entry.max_map_size, 4);
    EXPECT_EQ(entry.m_size_visible, 4);
}

// A report fills in empty lists of control options; they are no source of their own.
TEST(EnumControls, AReportHidesNothing) {
    Open_enum entry;
    bind(entry)->allow({{1, 2}});
    entry.updateControlOptionMap();
    const Positions before = entry.map_enum_to_options;
    entry.getProperties(0);
    EXPECT_EQ(entry.control_options.size(), 4U);
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, before);
}

// Unlike those that a report adds, installed lists are a source, and empty ones allow no key.
TEST(EnumControls, InstalledEmptyListsAllowNoKey) {
    for (const bool reported : {false, true}) {
        SCOPED_TRACE(reported);
        Open_enum entry(Enum_arguments().default_value(2));
        bind(entry)->allow({{1, 2}});
        if (reported) {
            entry.getProperties(0);
        }
        entry.Set_control_options({{0, {}}, {1, {}}});
        entry.getProperties(0);
        entry.updateControlOptionMap();
        EXPECT_EQ(entry.map_enum_to_options, (Positions{{2, 0}}));
    }
}

TEST(EnumControls, AReportLeavesInstalledOptionsASource) {
    Open_enum entry(Enum_arguments().default_value(2));
    entry.setProductOptions({{"gps", 1}});
    bind(entry)->allow({{1, 2}});
    entry.getProperties(0);
    entry.Set_control_options({{2, {"gps"}}, {3, {"gps"}}});
    entry.getProperties(0);
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{0, -1}, {1, -1}, {2, 0}, {3, -1}}));
}

TEST(EnumControls, AReportHidesNothingOnceTheBindingOffersNoKeysAnyMore) {
    Open_enum entry;
    Key_binding* const binding = bind(entry);
    binding->allow({{1}});
    entry.getProperties(0);
    binding->withdraw(SUGGESTION_RANGE);
    entry.updateControlOptionMap();
    entry.updateControlOptionMap();
    EXPECT_EQ(entry.map_enum_to_options, (Positions{{0, 0}, {1, 1}, {2, 2}, {3, 3}}));
}

TEST(EnumBindingControls, AreReadAsKeysButAnnouncedAndConsumedAsRange) {
    std::vector<std::string> log;
    Open_enum entry;
    Key_binding* const binding = bind(entry, &log);
    binding->allow({{2, 0}, {3}});
    log.clear();
    bool used = false;
    EXPECT_EQ(entry.bindingControls(used), (ControlsT{2, 0})) << "the first list, as it is";
    EXPECT_TRUE(used);
    EXPECT_EQ(log, (std::vector<std::string>{"getSuggestion 4", "clearSuggestion 2"}));
    EXPECT_EQ(entry.cached_binding_controls, (ControlsT{2, 0}));
}

TEST(EnumBindingControls, AreNotReadForAnUpdateOfTheirOwnKind) {
    std::vector<std::string> log;
    Open_enum entry;
    Key_binding* const binding = bind(entry, &log);
    binding->suggest_keys({{2}});
    log.clear();
    bool used = true;
    EXPECT_TRUE(entry.bindingControls(used).empty());
    EXPECT_FALSE(used);
    EXPECT_TRUE(log.empty());
    EXPECT_TRUE(binding->is_updated(SUGGESTION_KEYS));
}

TEST(EnumBindingControls, AreKeptUntilTheNextSuggestion) {
    Open_enum entry;
    Key_binding* const binding = bind(entry);
    bool used = false;
    binding->allow({{2}});
    entry.bindingControls(used);
    EXPECT_EQ(entry.bindingControls(used), (ControlsT{2}));
    EXPECT_TRUE(used);
    binding->withdraw(SUGGESTION_RANGE);
    EXPECT_EQ(entry.bindingControls(used), (ControlsT{2}));
    EXPECT_FALSE(used);
    binding->allow({{3}});
    EXPECT_EQ(entry.bindingControls(used), (ControlsT{3}));
}

TEST(EnumBindingControls, AnEmptySuggestionIsAnEmptyList) {
    Open_enum entry;
    Key_binding* const binding = bind(entry);
    bool used = false;
    binding->allow({{2}});
    entry.bindingControls(used);
    binding->allow({});
    EXPECT_TRUE(entry.bindingControls(used).empty());
    EXPECT_TRUE(used);
    EXPECT_FALSE(binding->is_updated(SUGGESTION_RANGE));
}

TEST(EnumBindingControls, WithoutABindingAreTheCachedOnes) {
    Open_enum entry;
    entry.cached_binding_controls = {1, 3};
    bool used = true;
    EXPECT_EQ(entry.bindingControls(used), (ControlsT{1, 3}));
    EXPECT_FALSE(used);
}

TEST(EnumCommonControls, AreThoseInEveryListThatIsUsed) {
    Open_enum entry;
    const ControlsT op = {3, 1, 2}, bind = {2, 5, 3, 0};
    EXPECT_EQ(entry.commonControls(op, false, bind, false), ControlsT());
    EXPECT_EQ(entry.commonControls(op, true, bind, false), (ControlsT{1, 2, 3}));
    EXPECT_EQ(entry.commonControls(op, false, bind, true), (ControlsT{0, 2, 3, 5}));
    EXPECT_EQ(entry.commonControls(op, true, bind, true), (ControlsT{2, 3}));
    EXPECT_EQ(entry.commonControls({}, true, bind, true), ControlsT());
    EXPECT_EQ(entry.commonControls({1, 1, 2}, true, {1, 1, 1, 2}, true), (ControlsT{1, 1, 2}));
}

TEST(EnumControlLines, TellEveryOptionAndItsOutcome) {
    Open_enum entry;
    entry.setProductOptions({{"gps", 1}, {"modem", 0}, {"slotn", 4}});
    entry.Set_control_options({{0, {"fax", "gps"}}, {1, {"modem", "slot9"}}, {2, {"slot2"}}});
    EXPECT_EQ(
        without_option_lookups(capture(GENERAL, [&] { entry.optionControls(); }).out),
        "\t[optionControls][enum_controls.cpp][#] Enum Control Option: [0] max_map_size=[0]\n"
        "\t\t[optionControls][enum_controls.cpp][#] Option: [fax]\n"
        "\t\t[optionControls][enum_controls.cpp][#] Option: [gps]\n"
        "\t[optionControls][enum_controls.cpp][#] option [gps] is static and will be visible\n"
        "\t[optionControls][enum_controls.cpp][#] Enum Control Option: [1] max_map_size=[0]\n"
        "\t\t[optionControls][enum_controls.cpp][#] Option: [modem]\n"
        "\t\t[optionControls][enum_controls.cpp][#] Option: [slot9]\n"
        "\t[optionControls][enum_controls.cpp][#] option [slot9] is dynamic, but  will not be "
        "visible."
        "\t[optionControls][enum_controls.cpp][#] Enum Control Option: [2] max_map_size=[0]\n"
        "\t\t[optionControls][enum_controls.cpp][#] Option: [slot2]\n"
        "\t[optionControls][enum_controls.cpp][#] option [slot2] is dynamicand will be "
        "visible."
        "\t[optionControls][enum_controls.cpp][#] Enum Control Option: [3] max_map_size=[0]\n"
        "[optionControls][enum_controls.cpp][#] Size of option controls [2]\n");
}

// Product options give an option that they do not decide the value 0, so only an entry with a test of its
// own can have one that is undecided and counts.
TEST(EnumControlLines, TellAnUndecidedOption) {
    class Deciding : public Open_enum {
    public:
        is_static_value_s isOptionStatic(std::string option, bool) override {
            return option == "fax" ? is_static_value_s{-1, 5, 0} : is_static_value_s{7, 5, 5};
        }
    } entry;
    entry.Set_control_options({{0, {"fax", "telex"}}});
    entry.m_size_enum = 1;
    EXPECT_EQ(capture(GENERAL, [&] { EXPECT_TRUE(entry.optionControls().empty()); }).out,
              "\t[optionControls][enum_controls.cpp][#] Enum Control Option: [0] max_map_size=[0]\n"
              "\t\t[optionControls][enum_controls.cpp][#] Option: [fax]\n"
              "Control number [0], [fax], MAY not appear (since this option was not processed) for "
              "enum [Mode]\n"
              "\t\t[optionControls][enum_controls.cpp][#] Option: [telex]\n"
              "[optionControls][enum_controls.cpp][#] Size of option controls [0]\n");
}

TEST(EnumControlLines, TellTheBindingAndTheResult) {
    Open_enum entry(Enum_arguments().default_value(1));
    bind(entry)->allow({{1, 2}});
    EXPECT_EQ(capture(GENERAL, [&] { entry.updateControlOptionMap(); }).out,
              "[bindingControls][enum_controls.cpp][#] suggestionUpdated\n"
              "[bindingControls][enum_controls.cpp][#] Size of binding controls [2]\n"
              "[commonControls][enum_controls.cpp][#] op.size()[0] bind.size()[2]\n"
              "[commonControls][enum_controls.cpp][#] Size of common controls  [2]\n"
              "Integer_model::Get: value[1], length[4] m_value[1]\n"
              "[updateControlOptionMap][enum_controls.cpp][#] m_min[0] m_max[1] m_size[2]\n"
              "\t[updateControlOptionMap][enum_controls.cpp][#] map_enum_to_options [0]=[-1]\n"
              "\t[updateControlOptionMap][enum_controls.cpp][#] map_enum_to_options [1]=[0]\n"
              "\t[updateControlOptionMap][enum_controls.cpp][#] map_enum_to_options [2]=[1]\n"
              "\t[updateControlOptionMap][enum_controls.cpp][#] map_enum_to_options [3]=[-1]\n");
}

TEST(EnumControlLines, AreQuietWithoutASource) {
    Open_enum entry;
    EXPECT_EQ(capture(GENERAL, [&] { entry.updateControlOptionMap(); }).out, "");
}

TEST(EnumControlLines, AreUnderTheLeafGate) {
    Open_enum entry;
    bind(entry)->allow({{1, 2}});
    const auto update = [&] { entry.updateControlOptionMap(); };
    EXPECT_EQ(capture(0, update).out, "");
    EXPECT_EQ(capture(GENERAL | 0x4000, update).out, "");
    EXPECT_NE(capture(GENERAL | 0xC000, update).out, "");
    EXPECT_NE(capture(GENERAL | 0x8000, update).out, "");
}

// What an option means does not depend on the order in which keys are numbered, for any set of keys.
TEST(EnumControls, NumberEverySubsetInKeyOrder) {
    for (unsigned int subset = 1; subset < 16; ++subset) {
        SCOPED_TRACE(subset);
        Open_enum entry;
        ControlsT keys;
        Positions expected;
        for (int key = 0; key < 4; ++key) {
            const bool shown = (subset >> key & 1U) != 0;
            expected[key] = shown ? static_cast<int>(keys.size()) : -1;
            if (shown) {
                keys.push_back(key);
            }
        }
        entry.show_only(keys);
        EXPECT_EQ(entry.map_enum_to_options, expected);
        EXPECT_EQ(entry.Get_size(), static_cast<int>(keys.size()));
    }
}

}  // namespace
