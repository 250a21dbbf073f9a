#include <frontpanel_data/range_entry.h>
#include <frontpanel_data/string_entry.h>
#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

#include "support/capture.h"
#include "support/fake_device.h"
#include "support/line_gates.h"
#include "unit/entry/link_fixture.h"
#include "unit/entry/range_fixture.h"

namespace {

using support::capture;
using support::expect_line_gate;
using support::Gate;
using support::index_of;

const Index_t NO_LEVEL = index_of({});
const Index_t ONE_LEVEL = index_of({3});
const Index_t TWO_LEVELS = index_of({3, 1});
const Index_t THREE_LEVELS = index_of({3, 1, 2});

// --- construction

TEST(Link_entry, TakesOverWhatTheHousedEntryHas) {
    Menu parent("Input 1");
    Housed before("Before", &NO_LEVEL), after("After", &NO_LEVEL), below("Below", &NO_LEVEL);
    Housed housed("Gain", &ONE_LEVEL, &parent);
    housed.Set_next(&after);
    housed.Set_previous(&before);
    housed.Set_child(&below);
    Open_link link(&housed);
    const Data_entry& base = link;
    EXPECT_EQ(base.Get_pid(), 120u);
    EXPECT_EQ(base.Get_index(), &ONE_LEVEL);
    EXPECT_EQ(base.Get_visible(), 1);
    EXPECT_EQ(base.Get_shortcut(), 7);
    EXPECT_EQ(base.Get_next(), &after);
    EXPECT_EQ(base.Get_previous(), &before);
    EXPECT_EQ(base.Get_parent(), &parent);
    EXPECT_EQ(base.Get_child(), &below);
    EXPECT_STREQ(base.Get_description(), "A housed entry");
    EXPECT_EQ(link.Get_housed_entry(), &housed);
    EXPECT_EQ(parent.Get_child(), &housed) << "the link is no child of anything";
    EXPECT_EQ(housed.Get_next(), &after);
}

TEST(Link_entry, StartsWithoutARoleOrAPlace) {
    Housed housed;
    Open_link link(&housed);
    EXPECT_EQ(link.Get_entry_type(), Data_entry::LINK_ENTRY);
    EXPECT_FALSE(link.isBridgeLink());
    EXPECT_FALSE(link.isMountLink());
    EXPECT_FALSE(link.isHomescreenEntry());
    EXPECT_EQ(link.getBehaviour(), 1);
    EXPECT_EQ(link.GetToggleExpression(), "");
    EXPECT_EQ(link.Get_var_index_map(), nullptr);
    EXPECT_EQ(link.Get_parent_link(), nullptr);
    EXPECT_EQ(link.Get_child_link(), nullptr);
    EXPECT_EQ(link.next_link, nullptr);
    EXPECT_EQ(link.previous_link, nullptr);
    EXPECT_FALSE(link.valid_next_link || link.valid_previous_link || link.valid_parent_link ||
                 link.valid_child_link);
    EXPECT_TRUE(link.create_mount_menu.empty());
    EXPECT_TRUE(link.destroy_mount_menu.empty());
    EXPECT_TRUE(link.homescreen_keys.empty());
    for (const int code : {1, 2, 4}) {
        EXPECT_EQ(link.Get_escape_node(code), nullptr) << code;
    }
}

TEST(Link_entry, ToNothingIsNamedNone) {
    Open_link link(nullptr);
    const Data_entry& base = link;
    EXPECT_STREQ(link.Get_name(), "none");
    EXPECT_EQ(link.Get_entry_type(), Data_entry::LINK_ENTRY);
    EXPECT_EQ(link.Get_housed_entry(), nullptr);
    EXPECT_EQ(link.getBehaviour(), 1);
    EXPECT_TRUE(link.link_visible);
    EXPECT_STREQ(base.Get_description(), "");
    EXPECT_EQ(base.Get_pid(), 0u);
    EXPECT_EQ(base.Get_index(), nullptr);
    EXPECT_EQ(base.Get_visible(), -1);
    EXPECT_EQ(base.Get_shortcut(), -1);
    EXPECT_EQ(base.Get_next(), nullptr);
    EXPECT_EQ(base.Get_previous(), nullptr);
    EXPECT_EQ(base.Get_parent(), nullptr);
    EXPECT_EQ(base.Get_child(), nullptr);
}

TEST(Link_entry, IsVisibleOfItsOwnUnlessTheHousedEntrysVisibilityIsZero) {
    for (const int visible : {-1, 0, 1, 5}) {
        Housed housed("Gain", &ONE_LEVEL, nullptr, 120, visible);
        EXPECT_EQ(Open_link(&housed).link_visible, visible != 0) << visible;
    }
}

TEST(Link_entry, TellsThatItIsBuilt) {
    Housed housed("Gain");
    const auto build = [&] { Link_entry link(&housed); };
    const char* const line = "[Link_entry][link_entry.cpp][#] Creating Link entry named [Gain]\n";
    EXPECT_EQ(capture(0x400000, build).out, line);
    EXPECT_EQ(capture(0x80000, [] { Link_entry link(nullptr); }).out,
              "[Link_entry][link_entry.cpp][#] Creating Link entry named [none]\n");
    expect_line_gate(line, 0x480001, Gate::LEAF, build);
}

TEST(Link_entry, NeedsAnIndexToMakeItsName) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    Housed housed("Gain", nullptr, nullptr, 120, Data_entry::VISIBLE_NONE);
    EXPECT_DEATH(Link_entry link(&housed), "Assertion `housed_entry->Get_index\\(\\)' failed");
}

TEST(Link_entry, TakesTheIdentityOfTheHousedParameter) {
    Housed housed("Gain", &TWO_LEVELS);
    Link_entry link(&housed);
    EXPECT_STREQ(link.Get_id_string(), "[[Gain][120].3.1 num_index_levels=[2]]");
}

TEST(Link_entry, ReportsItselfUnderItsOwnNameAndType) {
    Menu parent("Input 1");
    Housed housed("Gain", &ONE_LEVEL, &parent);
    Link_entry link(&housed);
    EXPECT_EQ(link.getProperties(4),
              "Input 1.Gain varid[120.3.0@s] num_index_levels=[1] type[7] "
              "vis[1] shortcut[7] ");
    EXPECT_EQ(link.getProperties(8), "Input 1.Gain ");
}

// --- names

struct Name_case {
    const char* grandparent;
    const char* parent;
    const Index_t* index;
    const char* name;
    const char* expected;
};

std::string link_name_of(const Name_case& test) {
    Menu grandparent(test.grandparent);
    Menu parent(test.parent, &grandparent);
    Housed housed(test.name, test.index, &parent);
    Link_entry link(&housed);
    return link.Get_name();
}

TEST(Link_name, IsPrefixedWithTheNamesOfTheIndexParents) {
    const Name_case cases[] = {
        {"Card 2", "Input 1", &NO_LEVEL, "Gain", "Gain"},
        {"Card 2", "Input 1", &ONE_LEVEL, "Gain", "Input 1.Gain"},
        {"Card 2", "Ch 3", &TWO_LEVELS, "Gain", "Ch 3.Card 2.Gain"},
        {"Card 2", "Ch 3", &THREE_LEVELS, "Gain", "Gain"},
        {"", "", &TWO_LEVELS, "Gain", "..Gain"},
        {"Card 2", "Input 1", &ONE_LEVEL, "Gain:dB", "Input 1.Gain"},
        {"Card 2", "Input 1", &ONE_LEVEL, "", "Input 1."},
    };
    for (const Name_case& test : cases) {
        EXPECT_EQ(link_name_of(test), test.expected);
    }
}

// Together they may have one character more than a link's name holds, and the last is cut then. Beyond that
// the name is lost and the mark of an over-long name takes its place.
TEST(Link_name, ThatDoesNotFitIsCutOrLost) {
    const Name_case cases[] = {
        {"G", "Ten chars.", &ONE_LEVEL, "Thirteen char", "Ten chars..Thirteen char"},   // 24
        {"G", "Ten chars.", &ONE_LEVEL, "Fourteen chars", "Ten chars..Fourteen char"},  // 25
        {"G", "Ten chars.", &ONE_LEVEL, "Fifteen chars..", "Ten chars..(null)"},        // 26
        {"Grand", "Parent", &TWO_LEVELS, "Thirteen char", "Parent.Grand.(null)"},
    };
    for (const Name_case& test : cases) {
        EXPECT_EQ(link_name_of(test), test.expected);
    }
}

TEST(Link_name, HasAPrefixOfAtMostNineteenCharacters) {
    EXPECT_EQ(link_name_of({"G", "Eighteen chars....", &ONE_LEVEL, "Sixchr", ""}),
              "Eighteen chars.....Sixch")
        << "19 and 6 make 25";
    EXPECT_EQ(link_name_of({"G", "Twenty-four characters..", &ONE_LEVEL, "Gain", ""}),
              "Twenty-four charactGain");
    EXPECT_EQ(link_name_of({"Card 2", "Sixteen chars...", &TWO_LEVELS, "Gain", ""}),
              "Sixteen chars....CaGain");
}

TEST(Link_name, OfALongPrefixCutsTheMarkOfALostName) {
    EXPECT_EQ(link_name_of({"G", "Twenty-four characters..", &ONE_LEVEL, "Seven..", ""}),
              "Twenty-four charact(null");
}

TEST(Link_name, LeavesOutParentsThatAreNotThere) {
    Housed alone("Gain", &TWO_LEVELS);
    EXPECT_STREQ(Link_entry(&alone).Get_name(), "Gain");
    Menu parent("Ch 3");
    Housed below("Gain", &TWO_LEVELS, &parent);
    EXPECT_STREQ(Link_entry(&below).Get_name(), "Ch 3.Gain");
}

TEST(Link_name, HoldsPercentSignsAsTheyAre) {
    EXPECT_EQ(link_name_of({"G", "100%s", &ONE_LEVEL, "%n%d", ""}), "100%s.%n%d");
}

TEST(Link_name, OfALinkIsItsOwnNamePrefixedAgain) {
    Menu parent("In");
    Housed housed("Gain", &ONE_LEVEL, &parent);
    Link_entry inner(&housed);
    EXPECT_STREQ(Link_entry(&inner).Get_name(), "In.In.Gain");
}

// --- ownership

class Counted : public Housed {
public:
    Counted(const char* name, const Index_t* index, int* destroyed)
        : Housed(name, index), m_destroyed(destroyed) {}
    ~Counted() override { ++*m_destroyed; }

private:
    int* m_destroyed;
};

// The index goes with it: a run with the leak check proves both.
TEST(Bridge_link, OwnsTheHousedEntryAndItsIndex) {
    int destroyed = 0;
    Menu parent("Input 1");
    {
        Link_entry link(new Counted("Bridge Entry", new Index_t(ONE_LEVEL), &destroyed));
        EXPECT_STREQ(link.Get_name(), "Bridge Entry") << "never prefixed";
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(Bridge_link, MayHouseAnEntryWithoutAnIndex) {
    auto* const housed =
        new Housed("Bridge Entry", nullptr, nullptr, 120, Data_entry::VISIBLE_NONE);
    EXPECT_STREQ(Link_entry(housed).Get_name(), "Bridge Entry");
}

TEST(Bridge_link, IsKnownByItsNameAlone) {
    int destroyed = 0;
    Counted housed("Bridge", &ONE_LEVEL, &destroyed);
    {
        Link_entry link(&housed);
        link.setAsBridgeLink();
        EXPECT_TRUE(link.isBridgeLink());
    }
    EXPECT_EQ(destroyed, 0);
    Link_entry owning(new Counted("Bridge Entry", new Index_t(ONE_LEVEL), &destroyed));
    EXPECT_FALSE(owning.isBridgeLink()) << "until it is marked";
}

// --- behaviour

TEST(Link_behaviour, IsOneOfTwo) {
    EXPECT_EQ(Link_entry::LINK_STAY, 1);
    EXPECT_EQ(Link_entry::LINK_SKIP, 2);
    Housed housed;
    Link_entry link(&housed);
    EXPECT_EQ(link.setBehaviour(2), 1);
    EXPECT_EQ(link.getBehaviour(), 2);
    EXPECT_EQ(link.setBehaviour(1), 2);
    EXPECT_EQ(link.getBehaviour(), 1);
}

TEST(Link_behaviour, RefusesEverythingElse) {
    Housed housed;
    Link_entry link(&housed);
    link.setBehaviour(2);
    for (const int value : {3, 0, -1, 1000}) {
        EXPECT_EQ(link.setBehaviour(value), 2) << value;
        EXPECT_EQ(link.getBehaviour(), 2) << value;
    }
    const auto refuse = [&] { link.setBehaviour(3); };
    const char* const line =
        "[setBehaviour][link_entry.cpp][#] [3] is not a valid link behaviour. "
        "Try LINK_STAY or LINK_SKIP.\n";
    EXPECT_EQ(capture(0x80000, refuse).out, line);
    EXPECT_EQ(capture(0xFFFFFFFF, [&] { link.setBehaviour(1); }).out, "");
    expect_line_gate(line, 0x80001, Gate::LEAF, refuse);
}

// --- visibility

TEST(Link_visibility, IsThatOfTheHousedEntryReducedToTwoValues) {
    Housed housed;
    Link_entry link(&housed);
    for (const int visibility : {-77, -1, 0, 1, 5}) {
        housed.visibility = visibility;
        EXPECT_EQ(link.isVisible(), visibility < 0 ? -1 : 1) << visibility;
        EXPECT_EQ(link.Get_visible(), visibility < 0 ? -1 : 1) << visibility;
    }
}

TEST(Link_visibility, IsAskedWithTheCallersRefresh) {
    Log log;
    Housed housed;
    Link_entry link(&housed);
    support::Fake_device device;
    Data_interface* const interface = &device;
    std::ostringstream address;
    address << interface;
    housed.log = &log;
    link.isVisible();
    link.Get_visible();
    link.isVisible(false, interface);
    link.isVisible(true, interface);
    EXPECT_EQ(log, (Log{"isVisible 0 0", "isVisible 0 0", "isVisible 0 " + address.str(),
                        "isVisible 1 " + address.str()}));
}

// The flag is the application's: it asks for it back and decides by itself.
TEST(Link_visibility, DoesNotFollowTheLinksOwnFlag) {
    Housed housed;
    Open_link link(&housed);
    EXPECT_TRUE(link.Set_visible(false));
    EXPECT_EQ(link.isVisible(), 1);
    EXPECT_FALSE(link.Set_visible(false));
    EXPECT_FALSE(link.Set_visible(true));
    EXPECT_TRUE(link.link_visible);
    EXPECT_EQ(link.m_visible, 1);
    EXPECT_EQ(housed.Data_entry::Get_visible(), 1);
}

TEST(Link_visibility, IsTold) {
    Menu parent("Input 1");
    Housed housed("Gain", &ONE_LEVEL, &parent);
    Link_entry link(&housed);
    const auto ask = [&] { link.isVisible(); };
    const char* const line =
        "[isVisible][link_entry.cpp][#] name[Input 1.Gain] toggle_vis[1] && "
        "link_visible[1] && link_entry->isVisible()[1]   =  [1]\n";
    EXPECT_EQ(capture(0x400000, ask).out, line);
    expect_line_gate(line, 0x400001, Gate::LEAF, ask);
    link.Set_visible(false);
    housed.visibility = -9;
    EXPECT_EQ(capture(0x400000, ask).out,
              "[isVisible][link_entry.cpp][#] name[Input 1.Gain] toggle_vis[1] && "
              "link_visible[0] && link_entry->isVisible()[-1]   =  [0]\n")
        << "the last number is the link's flag again";
}

TEST(Link_visibility, OfALinkToNothingIsHidden) {
    Link_entry link(nullptr);
    EXPECT_EQ(link.isVisible(), -1);
    EXPECT_EQ(link.Get_visible(), -1);
}

TEST(Link_visibility, OfTheSetupLinkIsGiven) {
    Housed housed;
    Link_entry link(&housed);
    housed.visibility = -1;
    setup_link = &link;
    EXPECT_EQ(link.isVisible(), 1);
    EXPECT_EQ(static_cast<Data_entry&>(link).isVisible(true, nullptr), 1);
    setup_link = nullptr;
    EXPECT_EQ(link.isVisible(), -1);
}

// --- display

TEST(Link_display, IsThatOfTheHousedEntry) {
    for (const auto type : {Data_entry::ENUM_LEAF, Data_entry::STRING_LEAF, Data_entry::IP_LEAF,
                            Data_entry::TIME_LEAF, Data_entry::SLOT_ENUM}) {
        Log log;
        Housed housed;
        housed.type = type;
        Link_entry link(&housed);
        housed.log = &log;
        char buffer[17] = {};
        EXPECT_EQ(link.Get_display_string(buffer, 16), Housed::RESULT) << type;
        EXPECT_STREQ(buffer, "42 dB");
        EXPECT_EQ(log, Log{"Get_display_string 16"});
    }
}

TEST(Link_display, OfANumberIsItsValueAndNotItsName) {
    Open_range range({0, 100, 10, "0:Mute,%d dB", "v"});
    range.put(42);
    Link_entry link(&range);
    char buffer[17] = {};
    EXPECT_EQ(link.Get_display_string(buffer, 16), 0);
    EXPECT_STREQ(buffer, "42 dB");
}

TEST(Link_display, OfANodeIsEmpty) {
    Menu menu("Menu");
    Link_entry link(&menu);
    char buffer[17] = "before";
    EXPECT_EQ(link.Get_display_string(buffer, 16), 0);
    EXPECT_STREQ(buffer, "");
}

TEST(Link_display, OfALinkToNothingIsNotWritten) {
    Link_entry link(nullptr);
    char buffer[17] = "before";
    EXPECT_EQ(link.Get_display_string(buffer, 16), 0);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ(link.Get_display_string(nullptr, 0), 0);
}

TEST(Link_display, OfATypeThatShowsNothingIsReported) {
    for (const int type : {-1, 7, 8}) {
        Housed housed;
        housed.type = static_cast<Data_entry::Entry_type>(type);
        Link_entry link(&housed);
        char buffer[17] = "before";
        int result = 0;
        const auto printed = capture(0, [&] { result = link.Get_display_string(buffer, 16); });
        EXPECT_EQ(printed.err, "LinkEntry::, unhandled type " + std::to_string(type) + "\n");
        EXPECT_EQ(result, static_cast<int>(printed.err.size())) << "the characters it took";
        EXPECT_EQ(printed.out, "");
        EXPECT_STREQ(buffer, "before");
    }
}

// --- keys

std::vector<unsigned int> pids_of(const std::vector<var_index_s>& keys) {
    std::vector<unsigned int> pids;
    for (const var_index_s& key : keys) {
        pids.push_back(key.var);
    }
    return pids;
}

TEST(Link_keys, AreThoseOfTheHousedEntry) {
    Log log;
    Housed housed;
    housed.type = Data_entry::ENUM_LEAF;
    housed.keys = {support::key_of(INTEGER, 5, ONE_LEVEL), support::key_of(STRING, 3, NO_LEVEL)};
    Open_link link(&housed);
    link.homescreen_keys["9"] = support::key_of(INTEGER, 9, NO_LEVEL);
    housed.log = &log;
    EXPECT_EQ(pids_of(link.Get_var_index_map_keys(6)), (std::vector<unsigned int>{5, 3}))
        << "names count for homescreen entries only";
    EXPECT_EQ(log, Log{"Get_var_index_map_keys 6"});
}

// A binding that looks back at its entry meets the link with the type of what it houses.
TEST(Link_keys, AreCollectedUnderTheTypeOfTheHousedEntry) {
    Housed housed;
    housed.type = Data_entry::ENUM_LEAF;
    Open_link link(&housed);
    housed.watched = &link;
    link.Get_var_index_map_keys(0);
    EXPECT_EQ(housed.watched_type, Data_entry::ENUM_LEAF);
    EXPECT_EQ(link.Get_entry_type(), Data_entry::LINK_ENTRY);
}

TEST(Link_keys, OfALinkToNothingAreNone) {
    EXPECT_TRUE(Link_entry(nullptr).Get_var_index_map_keys(0).empty());
}

static_assert(!std::is_copy_constructible<Link_entry>::value, "a bridge link owns its entry");

}  // namespace
