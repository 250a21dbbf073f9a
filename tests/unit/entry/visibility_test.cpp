#include <frontpanel_data/binding.h>
#include <frontpanel_data/entry.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "support/allocation_counter.h"
#include "support/capture.h"
#include "support/fake_binding.h"
#include "support/fake_device.h"
#include "support/indexes.h"
#include "support/leaf.h"
#include "support/line_gates.h"
#include "support/small_stack.h"

namespace {

using support::any_index;
using support::capture;
using support::Fake_binding;
using support::Fake_device;
using support::Gate;
using support::Leaf;
using support::Leaf_options;

using Log = std::vector<std::string>;

class Node : public Node_entry {
public:
    explicit Node(const char* name, Data_entry* parent = nullptr, int visible = VISIBLE_ALL)
        : Node_entry(name, "A node", any_index(), parent, visible, SHORTCUT_NONE, nullptr, nullptr,
                     nullptr) {}
};

class Visibility : public testing::Test {
protected:
    ~Visibility() override {
        setup_link = nullptr;
        link_dummy = nullptr;
    }

    Leaf& add(const char* name, Data_entry::Entry_type type = Data_entry::RANGE_LEAF) {
        Leaf_options options;
        options.type = type;
        options.log = &log;
        leaves.push_back(std::make_unique<Leaf>(name, &node, options));
        return *leaves.back();
    }
    Leaf& add_hidden(const char* name, Data_entry::Entry_type type = Data_entry::RANGE_LEAF) {
        Leaf& leaf = add(name, type);
        leaf.Set_invisible();
        return leaf;
    }

    Log log;
    Fake_device device;
    Node node{"Node"};
    std::vector<std::unique_ptr<Leaf>> leaves;
};

// --- one leaf

TEST_F(Visibility, AVisibleAnswerWithoutARefreshIsNotRemembered) {
    Leaf& leaf = add("A");
    EXPECT_EQ(leaf.isVisible(), 1);
    EXPECT_EQ(leaf.Get_entry_visible(), -1);
    leaf.Set_invisible();
    EXPECT_LT(leaf.isVisible(), 0) << "asked anew";
    EXPECT_EQ(leaf.refresh_count, 0);
}

TEST_F(Visibility, AVisibleAnswerWithARefreshIsRemembered) {
    Leaf& leaf = add("A");
    EXPECT_EQ(leaf.isVisible(true, &device), 1);
    EXPECT_EQ(leaf.Get_entry_visible(), 1);
    leaf.Set_invisible();
    EXPECT_EQ(leaf.isVisible(), 1) << "taken from the cache";
    EXPECT_LT(leaf.isVisible(true, &device), 0) << "a refresh asks anew";
    EXPECT_LT(leaf.Get_entry_visible(), 0);
}

TEST_F(Visibility, AHiddenAnswerIsRememberedButAskedAnew) {
    Leaf& leaf = add_hidden("A");
    leaf.Set_entry_visible(-5);
    EXPECT_EQ(leaf.isVisible(), -1);
    EXPECT_EQ(leaf.Get_entry_visible(), -1);
    leaf.Set_visible();
    EXPECT_EQ(leaf.isVisible(), 1);
}

TEST_F(Visibility, ACachedZeroCountsAsKnown) {
    Leaf& leaf = add("A");
    leaf.Set_entry_visible(0);
    EXPECT_EQ(leaf.isVisible(), 0);
}

TEST_F(Visibility, TheAnswerIsTheVisibilityOfTheConstructor) {
    for (const int visible : {0, 1, 2, 77}) {
        Leaf_options options;
        options.visible = visible;
        Leaf leaf("A", nullptr, options);
        EXPECT_EQ(leaf.isVisible(), visible);
        EXPECT_EQ(leaf.isVisible(true, &device), visible);
    }
    Leaf_options options;
    options.visible = Data_entry::VISIBLE_NONE;
    Leaf none("None", nullptr, options);
    EXPECT_EQ(none.isVisible(), -1);
}

TEST_F(Visibility, ALeafCountsAsHavingSomethingToShow) {
    Leaf& leaf = add("A");
    leaf.isVisible();
    EXPECT_EQ(leaf.Get_has_children(), 1);
}

TEST_F(Visibility, ALeafIsRefreshedWithItsBindingOnRequest) {
    Leaf& leaf = add("A");
    leaf.isVisible(true, &device);
    EXPECT_EQ(log, (Log{"isVisible A refresh=1 interface=1", "Refresh A interface=1 eval=1"}));
}

TEST_F(Visibility, ALeafIsRefreshedEvenWhenItsOptionsHideIt) {
    Leaf& leaf = add("A");
    leaf.setOrOptions({"missing"});
    EXPECT_EQ(leaf.isVisible(true, &device), -1);
    EXPECT_EQ(leaf.refresh_count, 1);
}

TEST_F(Visibility, TheBindingIsAskedAfterTheRefresh) {
    Leaf& leaf = add("A");
    leaf.refreshes_base = true;
    auto* binding = new Fake_binding(&log);
    binding->on_evaluate = [](Fake_binding& engine, int) { engine.suggest_visibility(0); };
    leaf.Set_binding_object(binding);
    EXPECT_EQ(leaf.isVisible(), 1);
    EXPECT_EQ(leaf.isVisible(true, &device), -1);
    EXPECT_EQ(leaf.isVisible(), -1);
}

TEST_F(Visibility, TheBindingIsNotAskedWhenOptionsHideTheEntry) {
    Leaf& leaf = add("A");
    auto* binding = new Fake_binding(&log);
    binding->suggest_visibility(1);
    leaf.Set_binding_object(binding);
    leaf.setOrOptions({"missing"});
    log.clear();
    EXPECT_EQ(leaf.isVisible(), -1);
    EXPECT_EQ(log, Log{"isVisible A refresh=0 interface=0"});
}

TEST_F(Visibility, ThePositiveSuggestionDoesNotReplaceTheVisibility) {
    Leaf& leaf = add("A");
    auto* binding = new Fake_binding();
    binding->suggest_visibility(5);
    leaf.Set_binding_object(binding);
    EXPECT_EQ(leaf.isVisible(), 1);
}

TEST_F(Visibility, AFailedRefreshIsReportedAndDoesNotHide) {
    Leaf& leaf = add("A");
    leaf.refresh_result = 5;
    const auto action = [&] { EXPECT_EQ(leaf.isVisible(true, &device), 1); };
    const char* const line = "[isVisible][visibility.cpp][#] Error refreshing entry [A] vis=[1]\n";
    EXPECT_NE(capture(0x8400, action).out.find(line), std::string::npos);
    support::expect_line_gate(line, 0x401, Gate::ENTRY, action);
}

std::vector<std::string> g_told;

// Says when it is asked for its visibility in the short form.
class Asked_leaf : public Leaf {
public:
    using Leaf::isVisible;
    using Leaf::Leaf;
    int isVisible() override {
        g_told.emplace_back("asked");
        return Leaf::isVisible();
    }
};

TEST_F(Visibility, TheLineOfAFailedRefreshIsAnnouncedBeforeTheEntryIsAsked) {
    Asked_leaf leaf("A", &node);
    leaf.refresh_result = 5;
    g_told.clear();
    debug_listener = [](uint32_t mask) { g_told.push_back(std::to_string(mask)); };
    capture(0x8400, [&] { leaf.isVisible(true, &device); });
    debug_listener = nullptr;
    const std::vector<std::string> line = {std::to_string(DIAGNOSTIC_VISIBILITY), "asked"};
    EXPECT_NE(std::search(g_told.begin(), g_told.end(), line.begin(), line.end()), g_told.end())
        << testing::PrintToString(g_told);
}

TEST_F(Visibility, ARefreshWithoutAnInterfaceFailsWithoutReachingTheEntry) {
    Leaf& leaf = add("A");
    const auto action = [&] { EXPECT_EQ(leaf.isVisible(true, nullptr), 1); };
    EXPECT_NE(capture(0x8400, action)
                  .out.find("[isVisible][visibility.cpp][#] Error refreshing entry [A] vis=[1]\n"),
              std::string::npos);
    EXPECT_EQ(leaf.refresh_count, 0);
    EXPECT_EQ(leaf.Get_entry_visible(), 1);
}

TEST_F(Visibility, TheShortFormAsksWithoutARefresh) {
    Leaf& leaf = add("A");
    leaf.isVisible();
    EXPECT_EQ(log, Log{"isVisible A refresh=0 interface=0"});
}

// --- nodes

TEST_F(Visibility, ANodeWithoutChildrenIsHidden) {
    EXPECT_EQ(node.isVisible(), -1);
    EXPECT_EQ(node.isVisible(true, &device), -1);
    EXPECT_EQ(node.Get_has_children(), -1) << "left unchanged";
    node.Set_has_children(7);
    EXPECT_EQ(node.isVisible(), -1);
    EXPECT_EQ(node.Get_has_children(), 7);
    EXPECT_EQ(node.Get_entry_visible(), -1);
}

TEST_F(Visibility, ANodeIsVisibleByItsFirstChild) {
    add("A");
    add("B");
    node.Set_has_children(7);
    EXPECT_EQ(node.isVisible(), 1);
    EXPECT_EQ(log, Log{"isVisible A refresh=0 interface=0"}) << "the others are not asked";
    EXPECT_EQ(node.Get_has_children(), 7) << "left unchanged";
    EXPECT_EQ(node.Get_entry_visible(), -1);
}

TEST_F(Visibility, TheFirstChildIsAskedWithTheCallersRefresh) {
    add("A");
    EXPECT_EQ(node.isVisible(true, &device), 1);
    EXPECT_EQ(log, (Log{"isVisible A refresh=1 interface=1", "Refresh A interface=1 eval=1"}));
    EXPECT_EQ(node.Get_entry_visible(), 1);
}

// Only the first child is spared: what the others say must be fresh.
TEST_F(Visibility, TheOtherChildrenAreAlwaysAskedWithARefresh) {
    add_hidden("A");
    add("B");
    add("C");
    node.Set_has_children(7);
    EXPECT_EQ(node.isVisible(false, &device), 1);
    EXPECT_EQ(log, (Log{"isVisible A refresh=0 interface=1", "isVisible B refresh=1 interface=1",
                        "Refresh B interface=1 eval=1"}));
    EXPECT_EQ(node.Get_has_children(), 7) << "left unchanged";
}

TEST_F(Visibility, ANodeOfHiddenChildrenIsHiddenAndKnowsIt) {
    add_hidden("A");
    add_hidden("B");
    add_hidden("C");
    node.Set_has_children(7);
    EXPECT_EQ(node.isVisible(true, &device), -1);
    EXPECT_EQ(node.Get_has_children(), 0);
    EXPECT_EQ(node.Get_entry_visible(), -1);
    EXPECT_EQ(log, (Log{"isVisible A refresh=1 interface=1", "Refresh A interface=1 eval=1",
                        "isVisible B refresh=1 interface=1", "Refresh B interface=1 eval=1",
                        "isVisible C refresh=1 interface=1", "Refresh C interface=1 eval=1"}));
}

TEST_F(Visibility, ASingleHiddenChildEndsTheWalkToo) {
    add_hidden("A");
    EXPECT_EQ(node.isVisible(), -1);
    EXPECT_EQ(node.Get_has_children(), 0);
}

// What a link houses lies in another menu, so links count without being asked.
TEST_F(Visibility, LinksAmongTheSiblingsCountWithoutBeingAsked) {
    add_hidden("A");
    Leaf& link = add_hidden("Link", Data_entry::LINK_ENTRY);
    add_hidden("B");
    EXPECT_EQ(node.isVisible(false, &device), 1);
    EXPECT_EQ(node.Get_has_children(), 1) << "the walk went to the end";
    EXPECT_EQ(log, (Log{"isVisible A refresh=0 interface=1", "isVisible B refresh=1 interface=1",
                        "Refresh B interface=1 eval=1"}));
    EXPECT_EQ(link.refresh_count, 0);
}

TEST_F(Visibility, AVisibleSiblingBehindALinkEndsTheWalk) {
    add_hidden("A");
    add_hidden("Link", Data_entry::LINK_ENTRY);
    add("B");
    add("C");
    node.Set_has_children(7);
    EXPECT_EQ(node.isVisible(false, &device), 1);
    EXPECT_EQ(node.Get_has_children(), 7) << "left unchanged";
    EXPECT_EQ(log.size(), 3u);
}

TEST_F(Visibility, AFirstChildThatIsALinkIsAskedAndCountsAnyway) {
    Leaf& link = add_hidden("Link", Data_entry::LINK_ENTRY);
    EXPECT_EQ(node.isVisible(), 1);
    EXPECT_EQ(log, Log{"isVisible Link refresh=0 interface=0"});
    EXPECT_EQ(node.Get_has_children(), 1);
    EXPECT_EQ(link.refresh_count, 0);
}

TEST_F(Visibility, ASiblingWithoutAnInterfaceIsAskedAndNotReached) {
    add_hidden("A");
    Leaf& sibling = add("B");
    EXPECT_EQ(node.isVisible(), 1);
    EXPECT_EQ(sibling.refresh_count, 0);
    EXPECT_EQ(sibling.Get_entry_visible(), 1) << "asked with a refresh, so it is remembered";
}

TEST_F(Visibility, ANodeIsNotRefreshedItself) {
    add("A");
    auto* binding = new Fake_binding(&log);
    node.Set_binding_object(binding);
    log.clear();
    EXPECT_EQ(node.isVisible(true, &device), 1);
    EXPECT_EQ(log, (Log{"isVisible A refresh=1 interface=1", "Refresh A interface=1 eval=1"}));
}

TEST_F(Visibility, ANodesOwnBindingHidesIt) {
    add("A");
    auto* binding = new Fake_binding();
    binding->suggest_visibility(0);
    node.Set_binding_object(binding);
    EXPECT_EQ(node.isVisible(), -1);
}

TEST_F(Visibility, ANodesOwnHidingHidesIt) {
    add("A");
    node.Set_invisible();
    EXPECT_LT(node.isVisible(), 0);
    node.Set_visible();
    EXPECT_EQ(node.isVisible(), 1);
}

TEST_F(Visibility, ANodesOptionsHideItButItsChildrenAreAsked) {
    add("A");
    node.setOrOptions({"missing"});
    EXPECT_EQ(node.isVisible(), -1);
    EXPECT_EQ(log, Log{"isVisible A refresh=0 interface=0"});
}

TEST_F(Visibility, NestedNodesAreAskedToTheFirstVisibleLeaf) {
    Node top("Top");
    Node empty("Empty", &top);
    node.Attach(top);
    add_hidden("A");
    add("B");
    EXPECT_EQ(top.isVisible(false, &device), 1);
    EXPECT_EQ(log, (Log{"isVisible A refresh=1 interface=1", "Refresh A interface=1 eval=1",
                        "isVisible B refresh=1 interface=1", "Refresh B interface=1 eval=1"}));
}

TEST_F(Visibility, ACachedNodeAsksNobody) {
    add("A");
    node.Set_entry_visible(1);
    EXPECT_EQ(node.isVisible(), 1);
    EXPECT_TRUE(log.empty());
}

// --- entries that the application sets apart

TEST_F(Visibility, TheSetupLinkIsAlwaysVisible) {
    Leaf& leaf = add_hidden("Setup");
    leaf.setOrOptions({"missing"});
    setup_link = &leaf;
    EXPECT_EQ(leaf.isVisible(), 1);
    EXPECT_EQ(leaf.isVisible(true, &device), 1);
    EXPECT_EQ(leaf.refresh_count, 0);
    EXPECT_EQ(leaf.Get_entry_visible(), -1);
    EXPECT_EQ(leaf.Get_has_children(), -1);
}

TEST_F(Visibility, ThePlaceholderCountsAsHavingChildren) {
    link_dummy = &node;
    EXPECT_EQ(node.isVisible(), 1);
    EXPECT_EQ(node.Get_has_children(), 1);
    Node other("Other");
    EXPECT_EQ(other.isVisible(), -1);
}

TEST_F(Visibility, ThePlaceholderDoesNotAskItsChildren) {
    link_dummy = &node;
    add_hidden("A");
    EXPECT_EQ(node.isVisible(true, &device), 1);
    EXPECT_TRUE(log.empty());
}

// As a binding does that looks at its own entry.
TEST_F(Visibility, AnEntryThatAsksForItselfWhileItIsRefreshedIsRefreshedOnce) {
    class Asking : public Leaf {
    public:
        using Leaf::Leaf;
        int Refresh(Data_interface* interface, bool eval_binding) override {
            const int result = Leaf::Refresh(interface, eval_binding);
            answer = refresh_count < 5 ? isVisible(true, interface) : VIS_FALSE;
            return result;
        }
        int answer = 0;
    };
    Asking leaf("A");
    EXPECT_EQ(leaf.isVisible(true, &device), 1);
    EXPECT_EQ(leaf.refresh_count, 1);
    EXPECT_EQ(leaf.answer, 1);
}

// The end of a circle is an assumption, and one that nobody vouches for later.
TEST_F(Visibility, AnAnswerThatClosesACircleIsNotRemembered) {
    add_hidden("A");
    Node inner("Inner", &node);
    inner.Set_child(&node);
    EXPECT_EQ(node.isVisible(false, &device), 1);
    EXPECT_EQ(node.Get_entry_visible(), -1);
    inner.Set_invisible();
    EXPECT_EQ(node.isVisible(false, &device), -1);
}

TEST_F(Visibility, ACircleOfNodesEnds) {
    Node inner("Inner", &node);
    inner.Set_child(&node);
    EXPECT_EQ(node.isVisible(), 1);
    EXPECT_EQ(node.isVisible(true, &device), 1);
}

// The first allocation fails, then the second, and so on, until all succeed.
TEST_F(Visibility, AQuestionThatRunsOutOfMemoryLeavesNoEntryAsked) {
    std::vector<std::unique_ptr<Node>> chain;
    for (int level = 0; level < 12; ++level) {
        chain.push_back(std::make_unique<Node>("Level", level == 0 ? nullptr : chain.back().get()));
    }
    Leaf_options options;
    Leaf leaf("Hidden", chain.back().get(), options);
    leaf.Set_invisible();
    bool is_thrown = true;
    std::size_t number = 0;
    while (is_thrown) {
        support::fail_allocation(++number);
        try {
            chain.front()->isVisible();
            is_thrown = false;
        } catch (const std::bad_alloc&) {
        }
        support::fail_allocation(0);
        for (const std::unique_ptr<Node>& level : chain) {
            EXPECT_EQ(level->isVisible(), -1) << "at allocation " << number;
        }
    }
    EXPECT_GT(number, 3u);
}

TEST_F(Visibility, OfADeepMenuNeedsNoStackForItsLevels) {
    std::vector<std::unique_ptr<Node>> below;
    for (int level = 0; level < support::DEEP; ++level) {
        below.push_back(std::make_unique<Node>("Node", level == 0 ? &node : below.back().get()));
    }
    Leaf last("Last", below.back().get());
    support::run_on_small_stack([&] {
        EXPECT_EQ(node.isVisible(true, &device), 1);
        node.Set_entry_visible(-1);
        EXPECT_EQ(node.isVisible(), 1);
    });
    EXPECT_EQ(below.front()->Get_entry_visible(), 1);
    EXPECT_EQ(below.back()->Get_entry_visible(), 1);
}

TEST_F(Visibility, OfADeepMenuOfHiddenEntriesNeedsNoStackForItsLevels) {
    std::vector<std::unique_ptr<Node>> below;
    for (int level = 0; level < support::DEEP; ++level) {
        below.push_back(std::make_unique<Node>("Node", level == 0 ? &node : below.back().get()));
    }
    support::run_on_small_stack([&] { EXPECT_EQ(node.isVisible(true, &device), -1); });
    EXPECT_EQ(below.front()->Get_has_children(), 0);
    EXPECT_EQ(below.back()->Get_has_children(), -1) << "it has no children to ask";
}

}  // namespace
