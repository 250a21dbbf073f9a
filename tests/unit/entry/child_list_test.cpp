#include "entry/child_list.h"

#include <frontpanel_data/link_entry.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "step_counter.h"
#include "support/capture.h"
#include "support/indexes.h"

namespace {

class Node : public Node_entry {
public:
    explicit Node(const char* name = "Node", Data_entry* parent = nullptr)
        : Node_entry(name, "A node", support::any_index(), parent, VISIBLE_ALL, SHORTCUT_NONE,
                     nullptr, nullptr, nullptr) {}
    using Data_entry::m_child;
    using Data_entry::m_next;
    using Data_entry::m_parent;
    using Data_entry::m_previous;
};

using Nodes = std::vector<std::unique_ptr<Node>>;

Nodes nodes(int count, Data_entry* parent = nullptr) {
    Nodes made;
    for (int i = 0; i < count; ++i) {
        made.push_back(std::make_unique<Node>("Node", parent));
    }
    return made;
}

template <class Operation>
std::size_t steps_of(Operation operation) {
    const std::size_t before = step_counter::children_walked;
    operation();
    return step_counter::children_walked - before;
}

// --- growth

TEST(Child_list, IsBuiltWithoutWalkingIt) {
    Node menu;
    Nodes children;
    EXPECT_EQ(steps_of([&] { children = nodes(1000, &menu); }), 0u);
}

TEST(Child_list, IsTakenApartInAnyOrderWithoutWalkingIt) {
    Node menu;
    const Nodes children = nodes(999, &menu);
    EXPECT_EQ(steps_of([&] {
                  for (const std::size_t start : {1u, 0u, 2u}) {
                      for (std::size_t i = start; i < children.size(); i += 3) {
                          menu.Remove(children[i].get());
                      }
                  }
              }),
              0u);
    EXPECT_EQ(menu.Get_child(), nullptr);
}

TEST(Child_list, LetsChildrenMoveToItsEndWithoutWalkingIt) {
    Node menu;
    const Nodes children = nodes(100, &menu);
    EXPECT_EQ(steps_of([&] {
                  for (const auto& child : children) {
                      menu.Add_child(*child);
                  }
              }),
              0u);
    EXPECT_EQ(menu.Get_child(), children.front().get());
}

TEST(Child_list, MissesAStrangerWithoutWalkingIt) {
    Node menu;
    const Nodes children = nodes(100, &menu);
    Node stranger;
    EXPECT_EQ(steps_of([&] { support::capture(0, [&] { menu.Remove(&stranger); }); }), 0u);
}

TEST(Child_list, OfEachLevelOfADeepTreeIsBuiltWithoutWalking) {
    Node root;
    Nodes below;
    EXPECT_EQ(steps_of([&] {
                  Node* parent = &root;
                  for (int level = 0; level < 1000; ++level) {
                      below.push_back(std::make_unique<Node>("Node", parent));
                      parent = below.back().get();
                  }
              }),
              0u);
}

TEST(Child_list, GrowsWithoutWalkingWhileLinksAreMadeOfItsChildren) {
    Node menu;
    const Nodes children = nodes(100, &menu);
    std::vector<std::unique_ptr<Link_entry>> links;
    EXPECT_EQ(steps_of([&] {
                  for (const auto& child : children) {
                      links.push_back(std::make_unique<Link_entry>(child.get()));
                      static_cast<Data_entry&>(*links.back()).Set_next(nullptr);
                      menu.Add_child(*links.back());
                  }
              }),
              0u);
}

TEST(Child_list, IsWalkedOnceMoreAfterAPlainSetterChangedAChild) {
    Node menu;
    const Nodes children = nodes(1000, &menu);
    Node last, more, again;
    children.back()->Set_next(&last);
    last.Set_previous(children.back().get());
    const std::size_t walked = steps_of([&] { menu.Add_child(more); });
    EXPECT_GE(walked, 1000u);
    EXPECT_LE(walked, 5000u);
    EXPECT_EQ(more.Get_previous(), &last);
    EXPECT_EQ(steps_of([&] { menu.Add_child(again); }), 0u);
}

// Classes of the application may write the links of their entries themselves.

TEST(Child_list, OfFewChildrenEndsWhereItsLinksSayWhoeverWroteThem) {
    Node menu;
    const Nodes children = nodes(4, &menu);
    children[1]->m_next = nullptr;
    Node more("More", &menu);
    EXPECT_EQ(more.Get_previous(), children[1].get());
    EXPECT_EQ(children[1]->Get_next(), &more);
    EXPECT_EQ(children[3]->Get_next(), nullptr);
}

TEST(Child_list, OfFewChildrenDoesNotHoldOneThatItsLinksLeaveOut) {
    Node menu;
    const Nodes children = nodes(3, &menu);
    children[0]->m_next = children[2].get();
    const std::string out =
        support::capture(0, [&] { EXPECT_EQ(menu.Remove(children[1].get()), 0); }).out;
    EXPECT_EQ(out.rfind("Could not find child named [Node]", 0), 0u) << out;
    EXPECT_EQ(children[1]->Get_parent(), &menu);
    EXPECT_EQ(children[2]->Get_previous(), children[1].get());
}

TEST(Child_list, StartsAtTheChildThatWasWritten) {
    Node menu, other;
    const Nodes children = nodes(3, &menu);
    menu.m_child = &other;
    Node more("More", &menu);
    EXPECT_EQ(other.Get_next(), &more);
    menu.m_child = nullptr;
    Node alone("Alone", &menu);
    EXPECT_EQ(menu.Get_child(), &alone);
    EXPECT_EQ(alone.Get_previous(), nullptr);
}

TEST(Child_list, OfManyChildrenEndsBehindOneThatWasWrittenThere) {
    Node menu;
    const Nodes children = nodes(100, &menu);
    Node written;
    children.back()->m_next = &written;
    Node more("More", &menu);
    EXPECT_EQ(more.Get_previous(), &written);
}

TEST(Child_list, IsNotForgottenWhenAPlainSetterChangesNothing) {
    Node menu;
    const Nodes children = nodes(100, &menu);
    Node more;
    EXPECT_EQ(steps_of([&] {
                  children[3]->Set_next(children[4].get());
                  menu.Set_child(children[0].get());
                  menu.Add_child(more);
              }),
              0u);
}

TEST(Child_list, IsWalkedWhenThereAreNoNumbersLeft) {
    const uint32_t latest = child_list::latest_number;
    const uint32_t forgotten = child_list::forgotten_up_to;
    child_list::latest_number = UINT32_MAX - 1;
    Node first, second;
    const Nodes of_first = nodes(3, &first);
    const Nodes of_second = nodes(3, &second);
    EXPECT_EQ(of_second[2]->Get_previous(), of_second[1].get());
    of_first[1]->Set_next(nullptr);
    Node more("More", &first);
    EXPECT_EQ(more.Get_previous(), of_first[1].get());
    second.Remove(of_second[2].get());
    EXPECT_EQ(of_second[1]->Get_next(), nullptr);
    EXPECT_GT(steps_of([&] { second.Add_child(*of_second[2]); }), 0u);
    child_list::latest_number = latest;
    child_list::forgotten_up_to = forgotten;
}

TEST(Child_list, OfMenusOfDifferentThreadsDoNotMeet) {
    const auto build = [] {
        for (int round = 0; round < 50; ++round) {
            Node menu;
            const Nodes children = nodes(20, &menu);
            children[10]->Set_next(nullptr);
            Node more("More", &menu);
            EXPECT_EQ(more.Get_previous(), children[10].get());
        }
    };
    std::thread other(build);
    build();
    other.join();
}

// --- the same links as by walking each time

// The rules of the list, by walks over plain records.
struct Record {
    int next = -1, previous = -1, parent = -1, child = -1;
};

class Walked_lists {
public:
    explicit Walked_lists(std::size_t size) : m_records(size) {}
    Record& at(int entry) { return m_records[static_cast<std::size_t>(entry)]; }

    void add(int parent, int child) {
        if (holds(parent, child)) {
            join(parent, child);
        }
        const int last = last_child(parent);
        at(child).parent = parent;
        at(child).next = -1;
        at(child).previous = last;
        (last != -1 ? at(last).next : at(parent).child) = child;
    }

    bool remove(int parent, int child) {
        if (!holds(parent, child)) {
            return false;
        }
        join(parent, child);
        at(child).parent = -1;
        return true;
    }

private:
    // The children in order, each once.
    std::vector<int> list_of(int parent) {
        std::vector<int> list;
        for (int at_child = at(parent).child;
             at_child != -1 && std::find(list.begin(), list.end(), at_child) == list.end();
             at_child = at(at_child).next) {
            list.push_back(at_child);
        }
        return list;
    }
    bool holds(int parent, int child) {
        const std::vector<int> list = list_of(parent);
        return std::find(list.begin(), list.end(), child) != list.end();
    }
    int last_child(int parent) {
        const std::vector<int> list = list_of(parent);
        return list.empty() ? -1 : list.back();
    }
    void join(int parent, int child) {
        const Record gone = at(child);
        (gone.previous != -1 ? at(gone.previous).next : at(parent).child) = gone.next;
        if (gone.next != -1) {
            at(gone.next).previous = gone.previous;
        }
    }

    std::vector<Record> m_records;
};

class Random_links {
public:
    static constexpr int SIZE = 9;

    Random_links(unsigned int seed, int raw_in) : m_random(seed), m_raw_in(raw_in) {}

    // Empty, or what was done until a link differed.
    std::string play(int steps) {
        for (int step = 0; step < steps; ++step) {
            edit();
            for (int entry = 0; entry < SIZE; ++entry) {
                if (!is_same(entry)) {
                    return m_done + "entry " + std::to_string(entry) + " differs";
                }
            }
        }
        return "";
    }

private:
    int below(int count) { return static_cast<int>(m_random() % static_cast<unsigned int>(count)); }
    Node* real(int entry) { return entry < 0 ? nullptr : &m_real[static_cast<std::size_t>(entry)]; }

    bool is_same(int entry) {
        const Record& record = m_walked.at(entry);
        const Node& node = *real(entry);
        return node.m_next == real(record.next) && node.m_previous == real(record.previous) &&
               node.m_parent == real(record.parent) && node.m_child == real(record.child);
    }

    void edit() {
        const int entry = below(SIZE);
        const int other = below(SIZE + 1) - 1;
        if (below(m_raw_in) == 0) {
            below(2) == 0 ? set_raw(below(4), entry, other) : write_link(below(4), entry, other);
        } else if (other != entry && other >= 0 && below(3) != 0) {
            add(entry, other);
        } else if (other >= 0) {
            m_done += "remove " + std::to_string(other) + " from " + std::to_string(entry) + "\n";
            m_walked.remove(entry, other);
            support::capture(0, [&] { real(entry)->Remove(real(other)); });
        }
    }

    // Of another parent a child is mostly removed first, as the operation requires.
    void add(int parent, int child) {
        const bool removes = below(4) != 0;
        for (int holder = 0; removes && holder < SIZE; ++holder) {
            if (holder != parent && m_walked.remove(holder, child)) {
                support::capture(0, [&] { real(holder)->Remove(real(child)); });
                m_done +=
                    "remove " + std::to_string(child) + " from " + std::to_string(holder) + "\n";
            }
        }
        real(child)->m_parent = nullptr;
        m_walked.at(child).parent = -1;
        m_done += "add " + std::to_string(child) + " to " + std::to_string(parent) + "\n";
        m_walked.add(parent, child);
        real(parent)->Add_child(*real(child));
    }

    // As a class of the application may do that has a place for its children of its own.
    void write_link(int direction, int entry, int other) {
        m_done += "written: ";
        Node& node = *real(entry);
        Node* const link = real(other);
        switch (direction) {
            case 0:
                node.m_next = link;
                break;
            case 1:
                node.m_previous = link;
                break;
            case 2:
                node.m_parent = link;
                break;
            default:
                node.m_child = link;
                break;
        }
        set_raw(direction, entry, other);
    }

    void set_raw(int direction, int entry, int other) {
        static const char* const NAMES[] = {"next", "previous", "parent", "child"};
        m_done += std::string(NAMES[direction]) + " of " + std::to_string(entry) + " is " +
                  std::to_string(other) + "\n";
        Record& record = m_walked.at(entry);
        switch (direction) {
            case 0:
                record.next = other;
                real(entry)->Set_next(real(other));
                return;
            case 1:
                record.previous = other;
                real(entry)->Set_previous(real(other));
                return;
            case 2:
                record.parent = other;
                real(entry)->Set_parent(real(other));
                return;
            default:
                record.child = other;
                real(entry)->Set_child(real(other));
                return;
        }
    }

    std::mt19937 m_random;
    int m_raw_in;  // one in so many edits is a plain setter
    Walked_lists m_walked{SIZE};
    std::array<Node, SIZE> m_real;
    std::string m_done;
};

TEST(Child_list, HasTheLinksThatWalkingGivesWhateverPlainSettersChange) {
    for (unsigned int seed = 0; seed < 100; ++seed) {
        for (const int raw_in : {2, 5, 40}) {
            Random_links links(seed, raw_in);
            const std::string difference = links.play(150);
            ASSERT_EQ(difference, "") << "seed " << seed << ", raw in " << raw_in;
        }
    }
}

}  // namespace
