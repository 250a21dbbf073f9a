#include <frontpanel_data/entry.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/indexes.h"
#include "support/leaf.h"
#include "support/line_gates.h"

namespace {

using support::any_index;
using support::capture;
using support::expect_line_gate;
using support::Gate;
using support::index_of;
using support::Leaf;
using support::Leaf_options;

// A node under which tests build their trees.
class Menu : public Node_entry {
public:
    explicit Menu(const char* name = "Menu", Data_entry* parent = nullptr)
        : Node_entry(name, "A menu", any_index(), parent, VISIBLE_ALL, SHORTCUT_NONE, nullptr,
                     nullptr, nullptr) {}
};

Leaf_options visibility(int visible) {
    Leaf_options options;
    options.visible = visible;
    return options;
}

Leaf_options of_type(Data_entry::Entry_type type) {
    Leaf_options options;
    options.type = type;
    return options;
}

std::vector<Data_entry*> children_of(const Data_entry& parent) {
    std::vector<Data_entry*> children;
    for (Data_entry* child = parent.Get_child(); child != nullptr; child = child->Get_next()) {
        children.push_back(child);
    }
    return children;
}

using Entries = std::vector<Data_entry*>;

std::string address(const void* pointer) {
    char text[32];
    std::snprintf(text, sizeof text, "%p", pointer);
    return text;
}

// --- construction

class Plain_entry : public Data_entry {
public:
    using Data_entry::Data_entry;
    Entry_type Get_entry_type() const override { return RANGE_LEAF; }
    RETURN_TYPE Get_return_type_int_or_string() const override { return INTEGER; }
    int Get_value(void*, unsigned int) override { return OK; }
    int Inc_value(int, int) override { return OK; }
};

TEST(EntryConstruction, StoresItsArguments) {
    const Index_t index = index_of({3, 1});
    Leaf next("Next");
    Leaf previous("Previous");
    Leaf child("Child");
    const Plain_entry entry("Gain", "The gain", 120, &index, 0, 4, &next, &previous, nullptr,
                            &child);
    EXPECT_STREQ(entry.Get_name(), "Gain");
    EXPECT_STREQ(entry.Get_description(), "The gain");
    EXPECT_EQ(entry.Get_pid(), 120u);
    EXPECT_EQ(entry.Get_index(), &index);
    EXPECT_EQ(entry.Get_visible(), 0);
    EXPECT_EQ(entry.Get_shortcut(), 4);
    EXPECT_EQ(entry.Get_next(), &next);
    EXPECT_EQ(entry.Get_previous(), &previous);
    EXPECT_EQ(entry.Get_child(), &child);
    EXPECT_EQ(entry.Get_parent(), nullptr);
}

TEST(EntryConstruction, StartsWithNothingKnown) {
    Leaf leaf("Gain");
    EXPECT_EQ(leaf.Get_has_children(), -1);
    EXPECT_EQ(leaf.Get_entry_visible(), -1);
    EXPECT_EQ(leaf.getNodeLevel(), 0u);
    EXPECT_EQ(leaf.Get_hs_shortcut(), -1);
    EXPECT_EQ(leaf.Get_shortcuts_map(), nullptr);
    EXPECT_FALSE(leaf.Get_flag_access_type_chg());
    EXPECT_FALSE(leaf.GetBindRefreshIsLocked());
    EXPECT_EQ(leaf.Get_access_type(), Data_entry::READ_ONLY);
    EXPECT_EQ(leaf.Get_orig_access_type(), Data_entry::READ_ONLY);
    EXPECT_EQ(leaf.Get_bind_vis(), 1);
    EXPECT_TRUE(leaf.Get_options().empty());
    EXPECT_EQ(leaf.Get_dynamic_parent(), nullptr);
    EXPECT_EQ(leaf.Get_dynamic_child(), nullptr);
    EXPECT_EQ(leaf.Get_dynamic_next(), nullptr);
    EXPECT_EQ(leaf.Get_dynamic_previous(), nullptr);
}

TEST(EntryConstruction, TheNameEndsAtTheFirstColonAndAfter24Characters) {
    const std::pair<const char*, const char*> names[] = {
        {"Volume:dB", "Volume"},
        {"Volume:dB:more", "Volume"},
        {":dB", ""},
        {"", ""},
        {"123456789012345678901234", "123456789012345678901234"},
        {"123456789012345678901234567890", "123456789012345678901234"},
        {"1234567890123456789012345678:90", "123456789012345678901234"},
        {"123456789012345678901234:90", "123456789012345678901234"},
    };
    for (const auto& [given, stored] : names) {
        const Leaf leaf(given);
        EXPECT_STREQ(leaf.Get_name(), stored) << given;
    }
}

TEST(EntryConstruction, TheNameAndTheDescriptionAreCopies) {
    char name[] = "Gain";
    char description[] = "The gain";
    Node_entry node(name, description, any_index(), nullptr, 1, -1, nullptr, nullptr, nullptr);
    name[0] = 'X';
    description[0] = 'X';
    EXPECT_STREQ(node.Get_name(), "Gain");
    EXPECT_STREQ(node.Get_description(), "The gain");
}

TEST(EntryConstruction, TellsItsNamesAndShortcut) {
    Leaf_options options;
    options.shortcut = 7;
    const auto action = [&] { const Leaf leaf("Volume:dB", nullptr, options); };
    const char* const line =
        "[Data_entry][entry.cpp][#] m_name=[Volume] name=[Volume:dB] m_shortcut[7]\n";
    EXPECT_EQ(capture(0x1, action).out, line);
    expect_line_gate(line, 0x101, Gate::LEAF, action);
}

TEST(EntryConstructionDeathTest, AVisibleEntryNeedsNameDescriptionAndIndex) {
    const auto make = [](const char* name, const char* description, const Index_t* index,
                         int visible) {
        Node_entry node(name, description, index, nullptr, visible, -1, nullptr, nullptr, nullptr);
    };
    for (const int visible : {0, 1, 2}) {
        EXPECT_DEATH(make(nullptr, "d", any_index(), visible),
                     "Assertion `name&&description&&index' failed");
        EXPECT_DEATH(make("n", nullptr, any_index(), visible),
                     "Assertion `name&&description&&index' failed");
        EXPECT_DEATH(make("n", "d", nullptr, visible),
                     "Assertion `name&&description&&index' failed");
    }
}

TEST(EntryConstruction, AnInvisibleEntryMayLackDescriptionAndIndex) {
    Node_entry node("Hidden", nullptr, nullptr, nullptr, -1, -1, nullptr, nullptr, nullptr);
    EXPECT_STREQ(node.Get_name(), "Hidden");
    EXPECT_EQ(node.Get_description(), nullptr);
    EXPECT_EQ(node.Get_index(), nullptr);
    EXPECT_STREQ(node.Get_id_string(), "[[Hidden][-1].0.0 num_index_levels=[0]]");
}

TEST(EntryConstruction, AnInvisibleEntryWithoutANameHasAnEmptyOne) {
    Node_entry node(nullptr, nullptr, nullptr, nullptr, -1, -1, nullptr, nullptr, nullptr);
    EXPECT_STREQ(node.Get_name(), "");
    EXPECT_STREQ(node.Get_id_string(), "[[][-1].0.0 num_index_levels=[0]]");
}

TEST(EntryConstruction, TheIdentityHoldsNameParameterAndIndex) {
    const Index_t index = index_of({3, 65535});
    Leaf_options options;
    options.index = &index;
    Leaf leaf("Volume:dB", nullptr, options);
    EXPECT_STREQ(leaf.Get_id_string(), "[[Volume][120].3.65535 num_index_levels=[2]]");
    options.pid = Data_entry::PID_NONE;
    Leaf unbound("Volume", nullptr, options);
    EXPECT_STREQ(unbound.Get_id_string(), "[[Volume][-1].3.65535 num_index_levels=[2]]");
}

TEST(EntryConstruction, AVisibleEntryAttachesToItsParent) {
    Menu menu("Top:level");
    std::unique_ptr<Leaf> leaf;
    EXPECT_EQ(capture(0x1, [&] { leaf = std::make_unique<Leaf>("Volume:dB", &menu); }).out,
              "[Data_entry][entry.cpp][#] m_name=[Volume] name=[Volume:dB] m_shortcut[-1]\n"
              "Attach [Volume:dB] to parent [Top]\n");
    EXPECT_EQ(children_of(menu), Entries{leaf.get()});
    EXPECT_EQ(leaf->Get_parent(), &menu);
}

TEST(EntryConstruction, TheLineOfAnAttachedEntryIsAGeneralOne) {
    Menu menu;
    expect_line_gate("Attach [Gain] to parent [Menu]\n", 0x1, Gate::LEAF, [&] {
        Leaf leaf("Gain", &menu);
        menu.Remove(&leaf);
    });
}

// The entry only remembers its parent; the application attaches it when it is ready.
TEST(EntryConstruction, AnEntryOfAnotherVisibilityIsNotAttached) {
    Menu menu;
    for (const int visible : {0, 2, 7, -2}) {
        Leaf leaf("Gain", &menu, visibility(visible));
        EXPECT_EQ(leaf.Get_parent(), &menu) << visible;
        EXPECT_TRUE(children_of(menu).empty()) << visible;
    }
}

int count_after(const std::string& text) {
    const std::string start = "total so far[";
    return std::stoi(text.substr(text.find(start) + start.size()));
}

TEST(EntryConstruction, InvisibleEntriesAreAttachedAndCounted) {
    Menu menu;
    std::unique_ptr<Leaf> first;
    std::unique_ptr<Leaf> second;
    const std::string before =
        capture(0, [&] { first = std::make_unique<Leaf>("First", &menu, visibility(-1)); }).out;
    const std::string after =
        capture(0, [&] { second = std::make_unique<Leaf>("Second", &menu, visibility(-1)); }).out;
    EXPECT_EQ(children_of(menu), (Entries{first.get(), second.get()}));
    const int count = count_after(before);
    EXPECT_EQ(before, "Invisible entry <First> added to tree, but will not appear. total so far[" +
                          std::to_string(count) + "]\n");
    EXPECT_EQ(after, "Invisible entry <Second> added to tree, but will not appear. total so far[" +
                         std::to_string(count + 1) + "]\n");
}

TEST(EntryConstruction, InvisibleEntriesWithoutAParentAreNotCounted) {
    Menu menu;
    const auto count = [&] {
        return count_after(capture(0, [&] {
                               Leaf leaf("Hidden", &menu, visibility(-1));
                               menu.Remove(&leaf);
                           }).out);
    };
    const int before = count();
    EXPECT_EQ(capture(0, [&] { const Leaf leaf("Hidden", nullptr, visibility(-1)); }).out, "");
    EXPECT_EQ(count(), before + 1);
}

TEST(EntryConstruction, AttachingGoesThroughTheParentsOwnOperation) {
    class Redirecting : public Menu {
    public:
        int Add_child(Data_entry& child) override { return m_inner.Add_child(child); }
        Menu m_inner;
    };
    Redirecting menu;
    Leaf leaf("Gain", &menu);
    EXPECT_TRUE(children_of(menu).empty());
    EXPECT_EQ(children_of(menu.m_inner), Entries{&leaf});
    EXPECT_EQ(leaf.Get_parent(), &menu.m_inner);
}

TEST(EntryDestruction, DestroysTheBindingAndLeavesTheTreeAlone) {
    std::vector<std::string> log;
    Menu menu;
    auto* leaf = new Leaf("Gain", &menu);
    Leaf other("Other", &menu);
    leaf->Set_binding_object(new support::Fake_binding(&log));
    menu.Remove(leaf);
    log.clear();
    delete leaf;
    EXPECT_EQ(log, std::vector<std::string>{"~Binding"});
    EXPECT_EQ(children_of(menu), Entries{&other});
}

// --- plain queries and setters

TEST(Entry, LinkSettersReturnThePreviousValueAndTouchNoNeighbour) {
    Leaf entry("Entry");
    Leaf first("First");
    Leaf second("Second");
    const auto check = [&](Data_entry* (Data_entry::*set)(Data_entry*),
                           Data_entry* (Data_entry::*get)() const) {
        EXPECT_EQ((entry.*set)(&first), nullptr);
        EXPECT_EQ((entry.*get)(), &first);
        EXPECT_EQ((entry.*set)(&second), &first);
        EXPECT_EQ((entry.*get)(), &second);
        EXPECT_EQ((entry.*set)(nullptr), &second);
        EXPECT_EQ((entry.*get)(), nullptr);
    };
    check(&Data_entry::Set_parent, &Data_entry::Get_parent);
    check(&Data_entry::Set_child, &Data_entry::Get_child);
    check(&Data_entry::Set_next, &Data_entry::Get_next);
    check(&Data_entry::Set_previous, &Data_entry::Get_previous);
    for (const Leaf* leaf : {&first, &second}) {
        EXPECT_EQ(leaf->Get_parent(), nullptr);
        EXPECT_EQ(leaf->Get_child(), nullptr);
        EXPECT_EQ(leaf->Get_next(), nullptr);
        EXPECT_EQ(leaf->Get_previous(), nullptr);
    }
}

TEST(Entry, TheDynamicLinksAreApartFromTheStaticOnes) {
    Leaf entry("Entry");
    Leaf parent("Parent");
    Leaf child("Child");
    Leaf next("Next");
    Leaf previous("Previous");
    entry.Set_dynamic_parent(&parent);
    entry.Set_dynamic_child(&child);
    entry.Set_dynamic_next(&next);
    entry.Set_dynamic_previous(&previous);
    EXPECT_EQ(entry.Get_dynamic_parent(), &parent);
    EXPECT_EQ(entry.Get_dynamic_child(), &child);
    EXPECT_EQ(entry.Get_dynamic_next(), &next);
    EXPECT_EQ(entry.Get_dynamic_previous(), &previous);
    EXPECT_EQ(entry.Get_parent(), nullptr);
    EXPECT_EQ(entry.Get_child(), nullptr);
    EXPECT_EQ(entry.Get_next(), nullptr);
    EXPECT_EQ(entry.Get_previous(), nullptr);
}

TEST(Entry, TheOriginalAccessFollowsUntilTheFlagIsSet) {
    Leaf entry("Entry");
    entry.Set_access_type(Data_entry::READ_WRITE);
    EXPECT_EQ(entry.Get_access_type(), Data_entry::READ_WRITE);
    EXPECT_EQ(entry.Get_orig_access_type(), Data_entry::READ_WRITE);
    entry.Set_flag_access_type_chg(true);
    EXPECT_TRUE(entry.Get_flag_access_type_chg());
    entry.Set_access_type(Data_entry::WRITE_ONLY);
    EXPECT_EQ(entry.Get_access_type(), Data_entry::WRITE_ONLY);
    EXPECT_EQ(entry.Get_orig_access_type(), Data_entry::READ_WRITE);
    entry.Set_flag_access_type_chg(false);
    entry.Set_access_type(Data_entry::READ_ONLY);
    EXPECT_EQ(entry.Get_orig_access_type(), Data_entry::READ_ONLY);
}

TEST(Entry, OnlyANodeIsANode) {
    for (int type = -1; type <= 8; ++type) {
        const Leaf leaf("Leaf", nullptr, of_type(static_cast<Data_entry::Entry_type>(type)));
        EXPECT_EQ(leaf.Is_node_entry(), type == Data_entry::NODE) << type;
    }
}

TEST(Entry, BindingsSeeNumbersOfRangesAndEnumerationsOnly) {
    for (int type = -1; type <= 8; ++type) {
        Leaf leaf("Leaf", nullptr, of_type(static_cast<Data_entry::Entry_type>(type)));
        const bool number = type == Data_entry::RANGE_LEAF || type == Data_entry::ENUM_LEAF ||
                            type == Data_entry::SLOT_ENUM;
        EXPECT_EQ(leaf.bindingReturnType(), number ? INTEGER : STRING) << type;
    }
}

TEST(Entry, HidingSetsOnlyTheHighestBit) {
    Leaf entry("Entry");
    entry.Set_invisible();
    EXPECT_EQ(static_cast<uint32_t>(entry.Get_visible()), 0x80000001u);
    entry.Set_invisible();
    EXPECT_EQ(static_cast<uint32_t>(entry.Get_visible()), 0x80000001u);
    entry.Set_visible();
    EXPECT_EQ(entry.Get_visible(), 1);
    Leaf none("None", nullptr, visibility(Data_entry::VISIBLE_NONE));
    none.Set_visible();
    EXPECT_EQ(none.Get_visible(), 0x7FFFFFFF);
}

TEST(Entry, StoresWhatItIsTold) {
    Leaf entry("Entry");
    entry.Set_shortcut(5);
    EXPECT_EQ(entry.Get_shortcut(), 5);
    EXPECT_EQ(entry.Set_hs_shortcut(6), -1);
    EXPECT_EQ(entry.Set_hs_shortcut(7), 6);
    EXPECT_EQ(entry.Get_hs_shortcut(), 7);
    entry.setNodeLevel(3);
    EXPECT_EQ(entry.getNodeLevel(), 3u);
    entry.SetBindRefreshIsLocked(true);
    EXPECT_TRUE(entry.GetBindRefreshIsLocked());
    entry.SetBindRefreshIsLocked(false);
    EXPECT_FALSE(entry.GetBindRefreshIsLocked());
    entry.Set_has_children(1);
    EXPECT_EQ(entry.Get_has_children(), 1);
    entry.Set_entry_visible(0);
    EXPECT_EQ(entry.Get_entry_visible(), 0);
    std::map<int, ShortcutS> shortcuts;
    EXPECT_EQ(entry.setShortcuts(&shortcuts), 0);
    EXPECT_EQ(entry.Get_shortcuts_map(), &shortcuts);
}

TEST(Entry, TheBaseHasNoValue) {
    Leaf entry("Entry");
    EXPECT_TRUE(entry.Is_active());
    EXPECT_EQ(entry.Commit(), Data_entry::OK);
    EXPECT_EQ(entry.Get_value_visible_mask(), nullptr);
    EXPECT_EQ(entry.Get_min(), 0);
    EXPECT_EQ(entry.Get_max(), 0);
    EXPECT_EQ(entry.Get_final_value(), 0);
    entry.Set_final_value(5);
    EXPECT_EQ(entry.Get_final_value(), 0);
    entry.Update_value(nullptr, 3);
}

// --- tree

TEST(EntryTree, ChildrenAreAddedAtTheEnd) {
    Menu menu;
    Leaf a("A");
    Leaf b("B");
    Leaf c("C");
    for (Leaf* leaf : {&a, &b, &c}) {
        EXPECT_EQ(menu.Add_child(*leaf), 0);
        EXPECT_EQ(leaf->Get_parent(), &menu);
    }
    EXPECT_EQ(children_of(menu), (Entries{&a, &b, &c}));
    EXPECT_EQ(a.Get_previous(), nullptr);
    EXPECT_EQ(b.Get_previous(), &a);
    EXPECT_EQ(c.Get_previous(), &b);
    EXPECT_EQ(c.Get_next(), nullptr);
}

TEST(EntryTree, AddingClearsTheSiblingLinksThatAChildBrings) {
    Menu menu;
    Leaf stranger("Stranger");
    Leaf a("A");
    Leaf b("B");
    for (Leaf* leaf : {&a, &b}) {
        leaf->Set_next(&stranger);
        leaf->Set_previous(&stranger);
        menu.Add_child(*leaf);
    }
    EXPECT_EQ(children_of(menu), (Entries{&a, &b}));
    EXPECT_EQ(a.Get_previous(), nullptr);
    EXPECT_EQ(b.Get_previous(), &a);
}

TEST(EntryTree, AddingAChildAgainMovesItToTheEnd) {
    for (std::size_t again = 0; again < 3; ++again) {
        Menu menu;
        Leaf a("A", &menu);
        Leaf b("B", &menu);
        Leaf c("C", &menu);
        Entries expected = {&a, &b, &c};
        Data_entry* const child = expected[again];
        EXPECT_EQ(menu.Add_child(*child), 0);
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(again));
        expected.push_back(child);
        EXPECT_EQ(menu.Get_child(), expected[0]);
        EXPECT_EQ(expected[0]->Get_previous(), nullptr);
        EXPECT_EQ(expected[0]->Get_next(), expected[1]);
        EXPECT_EQ(expected[1]->Get_previous(), expected[0]);
        EXPECT_EQ(expected[1]->Get_next(), expected[2]);
        EXPECT_EQ(expected[2]->Get_previous(), expected[1]);
        EXPECT_EQ(expected[2]->Get_next(), nullptr) << "a walk ends";
        EXPECT_EQ(child->Get_parent(), &menu);
    }
}

TEST(EntryTree, AddingTheOnlyChildAgainChangesNothing) {
    Menu menu;
    Leaf a("A", &menu);
    EXPECT_EQ(a.Attach(menu), 0);
    EXPECT_EQ(menu.Get_child(), &a);
    EXPECT_EQ(a.Get_next(), nullptr);
    EXPECT_EQ(a.Get_previous(), nullptr);
    EXPECT_EQ(a.Get_parent(), &menu);
}

TEST(EntryTree, AttachReturnsWhatTheParentReturns) {
    class Refusing : public Menu {
    public:
        int Add_child(Data_entry&) override { return 42; }
    };
    Refusing refusing;
    Menu menu;
    Leaf leaf("Leaf");
    EXPECT_EQ(leaf.Attach(refusing), 42);
    EXPECT_EQ(leaf.Attach(menu), 0);
    EXPECT_EQ(children_of(menu), Entries{&leaf});
}

TEST(EntryTreeDeathTest, AnEntryIsNeverAttachedToItself) {
    Menu menu;
    EXPECT_DEATH(menu.Attach(menu), "Assertion");
}

// In a release build the child ends the list of its other parent.
TEST(EntryTreeDeathTest, AChildOfAnotherParentIsRemovedThereFirst) {
    Menu other("Other");
    Leaf first("First", &other);
    Leaf second("Second", &other);
    Menu menu;
#ifdef NDEBUG
    menu.Add_child(first);
    EXPECT_EQ(children_of(menu), (Entries{&first}));
    EXPECT_EQ(children_of(other), (Entries{&first}));
#else
    EXPECT_DEATH(menu.Add_child(first), "Assertion `!child.m_parent->holds\\(child\\)' failed");
    EXPECT_DEATH(first.Attach(menu), "Assertion `!child.m_parent->holds\\(child\\)' failed");
#endif
}

TEST(EntryTree, AnEntryThatOnlyRemembersAParentIsAddedToAnother) {
    Menu remembered("Remembered");
    Leaf child("Child", &remembered, visibility(0));
    Menu menu;
    menu.Add_child(child);
    EXPECT_EQ(child.Get_parent(), &menu);
    EXPECT_EQ(children_of(menu), (Entries{&child}));
}

TEST(EntryTree, RemovingTheOnlyChildLeavesNone) {
    Menu menu;
    Leaf a("A", &menu);
    EXPECT_EQ(menu.Remove(&a), 0);
    EXPECT_EQ(menu.Get_child(), nullptr);
    EXPECT_EQ(a.Get_parent(), nullptr);
}

// A walk that stands on a removed child still finds its former siblings.
TEST(EntryTree, ARemovedChildKeepsItsSiblingLinks) {
    for (std::size_t removed = 0; removed < 3; ++removed) {
        Menu menu;
        Leaf a("A", &menu);
        Leaf b("B", &menu);
        Leaf c("C", &menu);
        Entries left = {&a, &b, &c};
        Data_entry* const child = left[removed];
        Data_entry* const next = child->Get_next();
        Data_entry* const previous = child->Get_previous();
        EXPECT_EQ(menu.Remove(child), 0);
        left.erase(left.begin() + static_cast<std::ptrdiff_t>(removed));
        EXPECT_EQ(children_of(menu), left);
        EXPECT_EQ(left[0]->Get_previous(), nullptr);
        EXPECT_EQ(left[1]->Get_previous(), left[0]);
        EXPECT_EQ(child->Get_parent(), nullptr);
        EXPECT_EQ(child->Get_next(), next);
        EXPECT_EQ(child->Get_previous(), previous);
    }
}

TEST(EntryTree, ARemovedChildCanBeAddedAgain) {
    Menu menu;
    Leaf a("A", &menu);
    Leaf b("B", &menu);
    menu.Remove(&a);
    EXPECT_EQ(a.Attach(menu), 0);
    EXPECT_EQ(children_of(menu), (Entries{&b, &a}));
}

TEST(EntryTree, RemovingNullFailsAndIsAlwaysReported) {
    Menu menu;
    int result = 0;
    const std::string line =
        "Child sent for removal for parent [Menu][" + address(&menu) + "] is null\n";
    const auto action = [&] { result = menu.Remove(nullptr); };
    EXPECT_EQ(capture(0, action).out, line);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(capture(0x4000, action).out, line);
}

TEST(EntryTree, RemovingAStrangerChangesNothingAndIsAlwaysReported) {
    Menu menu;
    Menu other("Other");
    Leaf a("A", &menu);
    Leaf stranger("Stranger", &other);
    int result = -1;
    const std::string report = "Could not find child named [Stranger][" + address(&stranger) +
                               "] from parent [Menu][" + address(&menu) + "]\n";
    const auto action = [&] { result = menu.Remove(&stranger); };
    EXPECT_EQ(capture(0, action).out, report);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(capture(0x1, action).out, "Child named [Stranger][" + address(&stranger) +
                                            "] sent for removal from parent [Menu][" +
                                            address(&menu) + "] \n" + report);
    EXPECT_EQ(children_of(menu), Entries{&a});
    EXPECT_EQ(stranger.Get_parent(), &other);
    EXPECT_EQ(children_of(other), Entries{&stranger});
}

std::string removal_lines(Menu& menu, Leaf& child) {
    const std::string text = capture(0x1, [&] { menu.Remove(&child); }).out;
    const std::string first = "Child named [" + std::string(child.Get_name()) + "][" +
                              address(&child) + "] sent for removal from parent [Menu][" +
                              address(&menu) + "] \n";
    EXPECT_EQ(text.substr(0, first.size()), first);
    return text.substr(first.size());
}

TEST(EntryTree, RemovalTellsWhereTheChildStood) {
    Menu menu;
    Leaf a("A", &menu);
    Leaf b("B", &menu);
    Leaf c("C", &menu);
    Leaf d("D", &menu);
    EXPECT_EQ(removal_lines(menu, b),
              "Must sow two children together to remove child [B] from parent [Menu]\n");
    EXPECT_EQ(removal_lines(menu, a), "Getting rid of first child named [A] from parent [Menu]\n");
    EXPECT_EQ(removal_lines(menu, d),
              "[D] may be the last or only child of parent... Last child\n");
    EXPECT_EQ(removal_lines(menu, c),
              "[C] may be the last or only child of parent... Only child\n");
}

TEST(EntryTree, TheLinesOfARemovalAreGeneralOnes) {
    Menu menu;
    Leaf a("A");
    Leaf b("B");
    Leaf c("C");
    const auto remove = [&](Leaf& leaf) {
        return [&] {
            menu.Set_child(nullptr);
            a.Attach(menu);
            b.Attach(menu);
            c.Attach(menu);
            menu.Remove(&leaf);
        };
    };
    expect_line_gate("sent for removal from parent", 0x1, Gate::LEAF, remove(a));
    expect_line_gate("Getting rid of first child", 0x1, Gate::LEAF, remove(a));
    expect_line_gate("Must sow two children together", 0x1, Gate::LEAF, remove(b));
    expect_line_gate("may be the last or only child", 0x1, Gate::LEAF, remove(c));
    expect_line_gate("Last child\n", 0x1, Gate::LEAF, remove(c));
    expect_line_gate("Only child\n", 0x1, Gate::LEAF, [&] {
        menu.Set_child(nullptr);
        a.Attach(menu);
        menu.Remove(&a);
    });
}

// --- locks

class Lockable : public Menu {
public:
    using Menu::Menu;
    // Whether somebody holds the mutex of the child list.
    bool is_locked() {
        if (pthread_mutex_trylock(&m_entry_mutex) != 0) {
            return true;
        }
        pthread_mutex_unlock(&m_entry_mutex);
        return false;
    }
    bool data_is_locked() {
        if (pthread_mutex_trylock(&m_data_mutex) != 0) {
            return true;
        }
        pthread_mutex_unlock(&m_data_mutex);
        return false;
    }
};

TEST(EntryLocks, AttachLocksTheChildBeforeTheParent) {
    class Watching : public Lockable {
    public:
        int Add_child(Data_entry& child) override {
            EXPECT_TRUE(static_cast<Lockable&>(child).is_locked());
            EXPECT_FALSE(is_locked());
            ++m_calls;
            return Lockable::Add_child(child);
        }
        int m_calls = 0;
    };
    Watching parent;
    Lockable child("Child");
    child.Attach(parent);
    EXPECT_EQ(parent.m_calls, 1);
    EXPECT_FALSE(child.is_locked());
    EXPECT_FALSE(parent.is_locked());
}

TEST(EntryLocks, PrintLocksTheEntryAroundItsChildren) {
    class Watching : public Lockable {
    public:
        Watching(Lockable& parent) : Lockable("Child", &parent), m_above(parent) {}
        void Print() override {
            EXPECT_TRUE(m_above.is_locked());
            EXPECT_FALSE(m_above.data_is_locked());
            EXPECT_FALSE(is_locked());
            ++m_calls;
            Lockable::Print();
        }
        Lockable& m_above;
        int m_calls = 0;
    };
    Lockable parent;
    Watching child(parent);
    capture(0, [&] { parent.Print(); });
    EXPECT_EQ(child.m_calls, 1);
    EXPECT_FALSE(parent.is_locked());
    EXPECT_FALSE(child.is_locked());
}

TEST(EntryLocks, EveryEndOfARemovalUnlocks) {
    Lockable parent;
    Leaf a("A", &parent);
    Leaf stranger("Stranger");
    capture(0, [&] {
        parent.Remove(nullptr);
        EXPECT_FALSE(parent.is_locked());
        parent.Remove(&stranger);
        EXPECT_FALSE(parent.is_locked());
        parent.Remove(&a);
        EXPECT_FALSE(parent.is_locked());
    });
}

TEST(EntryLocks, RefreshingAndAskingTakeNoLock) {
    class Held : public Lockable {
    public:
        Held() { pthread_mutex_lock(&m_entry_mutex); }
        ~Held() override { pthread_mutex_unlock(&m_entry_mutex); }
    };
    Held held;
    Leaf child("Child");
    held.Set_child(&child);
    EXPECT_EQ(held.Refresh(nullptr, true), Data_entry::OK);
    EXPECT_EQ(held.isVisible(), 1);
    EXPECT_EQ(held.Get_child(), &child);
}

// --- display

TEST(EntryDisplay, AShortNameIsCopiedWithItsTerminator) {
    Leaf entry("Network");
    for (const unsigned int length : {8u, 9u, 20u}) {
        char buffer[24];
        std::memset(buffer, 'e', sizeof buffer);
        EXPECT_EQ(entry.Get_display_string(buffer, length), Data_entry::OK);
        EXPECT_EQ(std::string(buffer, 9), std::string("Network\0e", 9));
    }
}

// Callers pass one less than the size of their buffer and look for the terminator at its last byte.
TEST(EntryDisplay, ALongNameIsTerminatedOnePastTheLength) {
    Leaf entry("Network");
    char buffer[8];
    std::memset(buffer, 'e', sizeof buffer);
    EXPECT_EQ(entry.Get_display_string(buffer, 4), Data_entry::OK);
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string("Nete\0eee", 8));
    std::memset(buffer, 'e', sizeof buffer);
    EXPECT_EQ(entry.Get_display_string(buffer, 7), Data_entry::OK);
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string("Networe\0", 8));
    std::memset(buffer, 'e', sizeof buffer);
    EXPECT_EQ(entry.Get_display_string(buffer, 2), Data_entry::OK);
    EXPECT_EQ(std::string(buffer, 4), std::string("Ne\0e", 4));
}

TEST(EntryDisplay, ALineBelowTwoCharactersIsAnErrorAndUntouched) {
    Leaf entry("Network");
    Leaf unnamed("");
    for (const unsigned int length : {0u, 1u}) {
        char buffer[4] = {'e', 'e', 'e', 'e'};
        EXPECT_EQ(entry.Get_display_string(buffer, length), Data_entry::ERROR);
        EXPECT_EQ(unnamed.Get_display_string(buffer, length), Data_entry::ERROR);
        EXPECT_EQ(std::string(buffer, 4), "eeee");
    }
}

TEST(EntryDisplay, AnEmptyNameIsATerminator) {
    Leaf entry("");
    char buffer[4] = {'e', 'e', 'e', 'e'};
    EXPECT_EQ(entry.Get_display_string(buffer, 2), Data_entry::OK);
    EXPECT_EQ(std::string(buffer, 4), std::string("\0eee", 4));
}

TEST(EntryDisplayDeathTest, ANullBufferIsAProgrammingError) {
    Leaf entry("Network");
    EXPECT_DEATH(entry.Get_display_string(nullptr, 4), "Assertion `buffer' failed");
    EXPECT_DEATH(entry.Get_display_string(nullptr, 0), "Assertion `buffer' failed");
}

TEST(EntryPrint, GoesDepthFirstWithParentsBeforeChildren) {
    Menu top("Top");
    Menu first("First", &top);
    Leaf inner("Inner", &first);
    Leaf second("Second", &top);
    EXPECT_EQ(capture(0x1, [&] { top.Print(); }).out,
              "----- data entry (Top) -----\nDescription:\nA menu\n"
              "----- data entry (First) -----\nDescription:\nA menu\n"
              "----- data entry (Inner) -----\nDescription:\nA leaf\n"
              "----- data entry (Second) -----\nDescription:\nA leaf\n");
}

TEST(EntryPrint, ManagesWithoutADescription) {
    Node_entry node("Hidden", nullptr, nullptr, nullptr, -1, -1, nullptr, nullptr, nullptr);
    const std::string text = capture(0x1, [&] { node.Print(); }).out;
    EXPECT_EQ(text.find("----- data entry (Hidden) -----\nDescription:\n"), 0u);
}

// --- the report

TEST(EntryReport, HoldsTheFieldsInOneLine) {
    Leaf leaf("Gain");
    const char* const line =
        "Gain varid[120.3.0@i] num_index_levels=[1] type[1] vis[1] shortcut[-1] ";
    for (const int flags : {0, 1, 2, 4, 7, 0x10}) {
        EXPECT_EQ(leaf.getProperties(flags), line) << flags;
    }
}

TEST(EntryReport, IsTheNameAndABlankOnRequest) {
    Leaf leaf("Gain");
    for (const int flags : {8, 0xC, 0xF, -1}) {
        EXPECT_EQ(leaf.getProperties(flags), "Gain ") << flags;
    }
}

TEST(EntryReport, WhatIsNoNumberIsAText) {
    const Index_t index = index_of({3, 65535});
    Leaf_options options = of_type(Data_entry::TIME_LEAF);
    options.index = &index;
    options.visible = 0;
    options.shortcut = 12;
    options.pid = Data_entry::PID_NONE;
    Leaf leaf("Clock", nullptr, options);
    EXPECT_EQ(leaf.getProperties(4),
              "Clock varid[-1.3.65535@s] num_index_levels=[2] type[5] vis[0] shortcut[12] ");
    Menu menu;
    EXPECT_EQ(menu.getProperties(4),
              "Menu varid[-1.3.0@s] num_index_levels=[1] type[0] vis[1] shortcut[-1] ");
}

TEST(EntryReport, TellsAHiddenEntry) {
    Leaf leaf("Gain");
    leaf.Set_invisible();
    EXPECT_EQ(leaf.getProperties(0),
              "Gain varid[120.3.0@i] num_index_levels=[1] type[1] vis[-2147483647] "
              "shortcut[-1] ");
}

TEST(EntryReport, ManagesWithoutAnIndex) {
    Node_entry node("Hidden", nullptr, nullptr, nullptr, -1, -1, nullptr, nullptr, nullptr);
    EXPECT_EQ(node.getProperties(0),
              "Hidden varid[-1.0.0@s] num_index_levels=[0] type[0] vis[-1] shortcut[-1] ");
}

TEST(EntryEnumerators, HaveTheValuesThatClientsWereBuiltWith) {
    EXPECT_EQ(Data_entry::INVALID_ENTRY_TYPE, -1);
    EXPECT_EQ(Data_entry::NODE, 0);
    EXPECT_EQ(Data_entry::RANGE_LEAF, 1);
    EXPECT_EQ(Data_entry::ENUM_LEAF, 2);
    EXPECT_EQ(Data_entry::STRING_LEAF, 3);
    EXPECT_EQ(Data_entry::IP_LEAF, 4);
    EXPECT_EQ(Data_entry::TIME_LEAF, 5);
    EXPECT_EQ(Data_entry::SLOT_ENUM, 6);
    EXPECT_EQ(Data_entry::LINK_ENTRY, 7);
    EXPECT_EQ(Data_entry::PANEL_HS, 8);
    EXPECT_EQ(Data_entry::READ_ONLY, 0);
    EXPECT_EQ(Data_entry::READ_WRITE, 1);
    EXPECT_EQ(Data_entry::WRITE_ONLY, 2);
    EXPECT_EQ(Data_entry::OK, 0);
    EXPECT_EQ(Data_entry::ERROR, 1);
    EXPECT_EQ(Data_entry::INVALID, 2);
    EXPECT_EQ(Data_entry::OUT_OF_RANGE, 3);
}

}  // namespace
