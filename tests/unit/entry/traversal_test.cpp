#include <frontpanel_data/entry.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/indexes.h"
#include "support/leaf.h"
#include "support/small_stack.h"

namespace {

using support::any_index;
using support::capture;
using support::Leaf;

using Log = std::vector<std::string>;

class Node : public Node_entry {
public:
    Node(const char* name, Data_entry* parent, Log* log)
        : Node_entry(name, "A node", any_index(), parent, VISIBLE_ALL, SHORTCUT_NONE, nullptr,
                     nullptr, nullptr),
          m_log(log) {}
    int setShortcuts(std::map<int, ShortcutS>* shortcuts) override {
        m_log->push_back(Get_name());
        return Node_entry::setShortcuts(shortcuts);
    }

private:
    Log* m_log;
};

class Traversal : public testing::Test {
protected:
    Log log;
    Node top{"Top", nullptr, &log};
    Node first{"First", &top, &log};
    Node inner{"Inner", &first, &log};
    Node deep{"Deep", &inner, &log};
    Node inner_last{"InnerLast", &first, &log};
    Node second{"Second", &top, &log};
    std::map<int, ShortcutS> table;
};

std::string line(const char* name, int depth) {
    return std::string(static_cast<std::size_t>(depth), '\t') + name +
           " varid[-1.3.0@s] num_index_levels=[1] type[0] vis[1] shortcut[-1] \n";
}

TEST_F(Traversal, HandsTheShortcutTableToAllBelow) {
    Data_entry::TraverseMenuTree(&top, 0x1, &table);
    EXPECT_EQ(log, (Log{"First", "Inner", "Deep", "InnerLast", "Second"}));
    EXPECT_EQ(top.Get_shortcuts_map(), nullptr) << "not to the entry itself";
    for (Node* node : {&first, &inner, &deep, &inner_last, &second}) {
        EXPECT_EQ(node->Get_shortcuts_map(), &table);
    }
}

TEST_F(Traversal, TakesTheShortcutTableAway) {
    Data_entry::TraverseMenuTree(&top, 0x1, &table);
    Data_entry::TraverseMenuTree(&top, 0x1, nullptr);
    EXPECT_EQ(deep.Get_shortcuts_map(), nullptr);
}

TEST_F(Traversal, StaysBelowItsEntry) {
    Data_entry::TraverseMenuTree(&first, 0x1, &table);
    EXPECT_EQ(log, (Log{"Inner", "Deep", "InnerLast"}));
}

TEST_F(Traversal, PrintsParentsBeforeChildrenIndentedByTheirDepth) {
    for (const int flags : {0x4, 0x8, 0xC}) {
        int depth = 0;
        const std::string text =
            capture(0x1, [&] { Data_entry::TraverseMenuTree(&top, flags, &depth); }).out;
        std::string lines;  // without what the dispatcher tells
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find('\n', at) + 1;
            const std::string one = text.substr(at, end - at);
            if (one.rfind("[dispatcher.cpp]", 0) == std::string::npos) {
                lines += one;
            }
            at = end;
        }
        EXPECT_EQ(lines, line("First", 0) + line("Inner", 1) + line("Deep", 2) +
                             line("InnerLast", 1) + line("Second", 0))
            << flags;
        EXPECT_EQ(depth, 0) << "the caller's counter is as before";
        EXPECT_TRUE(log.empty());
    }
}

TEST_F(Traversal, StartsAtTheCallersDepth) {
    int depth = 2;
    const std::string text =
        capture(0x1, [&] { Data_entry::TraverseMenuTree(&inner, 0x4, &depth); }).out;
    EXPECT_NE(text.find("\n" + line("Deep", 2)), std::string::npos) << text;
    EXPECT_EQ(depth, 2);
}

// Starts a section of the dump: the entries after it are indented anew.
class Section : public Node_entry {
public:
    Section(Data_entry* parent, int* depth, int next_depth)
        : Node_entry("Section", "A node", any_index(), parent, VISIBLE_ALL, SHORTCUT_NONE, nullptr,
                     nullptr, nullptr),
          m_depth(depth),
          m_next_depth(next_depth) {}
    std::string getProperties(int flags) override {
        *m_depth = m_next_depth;
        return Node_entry::getProperties(flags);
    }

private:
    int* m_depth;
    int m_next_depth;
};

TEST_F(Traversal, IndentsEachEntryBelowTheStartByTheCountersValueAtThatTime) {
    int depth = 1;
    Section section(&top, &depth, 3);
    Node below("Below", &section, &log);
    Node last("Last", &top, &log);
    const std::string out =
        capture(0, [&] { Data_entry::TraverseMenuTree(&top, 0x4, &depth); }).out;
    EXPECT_EQ(out, line("First", 1) + line("Inner", 2) + line("Deep", 3) + line("InnerLast", 2) +
                       line("Second", 1) + line("Section", 1) + line("Below", 2) + line("Last", 3));
}

TEST_F(Traversal, DoesNothingForANullEntryOrWithoutChildren) {
    Leaf leaf("Leaf");
    const auto printed = capture(0, [&] {
        int depth = 0;
        Data_entry::TraverseMenuTree(nullptr, 0x1, &table);
        Data_entry::TraverseMenuTree(nullptr, 0x4, &depth);
        Data_entry::TraverseMenuTree(&leaf, 0x1, &table);
        Data_entry::TraverseMenuTree(&leaf, 0x4, &depth);
    });
    EXPECT_EQ(printed.out, "");
    EXPECT_EQ(printed.err, "");
    EXPECT_EQ(leaf.Get_shortcuts_map(), nullptr);
}

TEST_F(Traversal, WithoutAFlagChangesAndPrintsNothing) {
    const auto printed = capture(0, [&] { Data_entry::TraverseMenuTree(&top, 0, nullptr); });
    EXPECT_EQ(printed.out, "");
    EXPECT_TRUE(log.empty());
}

TEST_F(Traversal, ClearsNoChildLinkOfAnEntryThatIsNoLink) {
    Data_entry::TraverseMenuTree(&top, 0x2, nullptr);
    EXPECT_EQ(top.Get_child(), &first);
    EXPECT_EQ(first.Get_child(), &inner);
    EXPECT_EQ(inner.Get_child(), &deep);
}

TEST_F(Traversal, FollowsTheStaticTreeOnly) {
    Leaf dynamic("Dynamic");
    top.Set_dynamic_child(&dynamic);
    first.Set_dynamic_next(&dynamic);
    Data_entry::TraverseMenuTree(&top, 0x1, &table);
    EXPECT_EQ(dynamic.Get_shortcuts_map(), nullptr);
    EXPECT_EQ(log.size(), 5u);
}

// The sibling is fetched first, so an entry may leave the menu while its own children are visited.
TEST_F(Traversal, AnEntryThatIsRelinkedBelowItselfLosesNoSibling) {
    class Detaching : public Node {
    public:
        Detaching(Data_entry* parent, Log* log, Data_entry* detached)
            : Node("Detaching", parent, log), m_detached(detached) {}
        int setShortcuts(std::map<int, ShortcutS>* shortcuts) override {
            m_detached->Set_next(nullptr);
            return Node::setShortcuts(shortcuts);
        }

    private:
        Data_entry* m_detached;
    };
    Detaching detaching(&deep, &log, &first);
    Data_entry::TraverseMenuTree(&top, 0x1, &table);
    EXPECT_EQ(log, (Log{"First", "Inner", "Deep", "Detaching", "InnerLast", "Second"}));
}

// A menu of one entry on each level, as deep as a damaged or generated menu may be.
class Deep_menu : public testing::Test {
protected:
    Deep_menu() {
        for (int level = 0; level < support::DEEP; ++level) {
            Data_entry* const above =
                level == 0 ? &top : static_cast<Data_entry*>(below.back().get());
            below.push_back(std::make_unique<Node>("Node", above, &log));
        }
    }

    Log log;
    Node top{"Top", nullptr, &log};
    std::vector<std::unique_ptr<Node>> below;
    std::map<int, ShortcutS> table;
};

TEST_F(Deep_menu, IsWalkedWithoutAStackForItsLevels) {
    support::run_on_small_stack([&] { Data_entry::TraverseMenuTree(&top, 0x1, &table); });
    EXPECT_EQ(log.size(), below.size());
    EXPECT_EQ(below.back()->Get_shortcuts_map(), &table);
}

TEST_F(Deep_menu, IsIndentedByItsDepth) {
    Data_entry& start = *below[below.size() - 101];
    int depth = 2;
    const std::string text =
        capture(0, [&] { Data_entry::TraverseMenuTree(&start, 0x4, &depth); }).out;
    std::string expected;
    for (int level = 0; level < 100; ++level) {
        expected += line("Node", level + 2);
    }
    EXPECT_EQ(text, expected);
}

}  // namespace
