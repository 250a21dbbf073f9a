#include <frontpanel_data/entry.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <new>
#include <string>
#include <vector>

#include "support/allocation_counter.h"
#include "support/capture.h"
#include "support/indexes.h"

namespace {

// Takes and releases of the mutexes that a test names, in order.
struct Watched {
    pthread_mutex_t* mutex;
    std::string name;
};
std::vector<Watched> watched;
std::vector<std::string> order;

void note(const pthread_mutex_t* mutex, const char* what) {
    for (const Watched& one : watched) {
        if (one.mutex == mutex) {
            order.push_back(what + one.name);
        }
    }
}

}  // namespace

extern "C" {
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
    note(mutex, "+");
    return __real_pthread_mutex_lock(mutex);
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
    note(mutex, "-");
    return __real_pthread_mutex_unlock(mutex);
}
}

namespace {

using Order = std::vector<std::string>;

class Watched_node : public Node_entry {
public:
    explicit Watched_node(const char* name)
        : Node_entry(name, "A node", support::any_index(), nullptr, VISIBLE_ALL, SHORTCUT_NONE,
                     nullptr, nullptr, nullptr) {
        watched.push_back({&m_entry_mutex, name});
        watched.push_back({&m_data_mutex, std::string(name) + ".data"});
    }
};

class Tree_locking : public testing::Test {
protected:
    Tree_locking() {
        parent.Add_child(first);
        parent.Add_child(second);
        order.clear();
    }
    ~Tree_locking() override { watched.clear(); }

    Watched_node parent{"Parent"};
    Watched_node first{"First"};
    Watched_node second{"Second"};
    Watched_node added{"Added"};
};

TEST_F(Tree_locking, AddingLocksTheParent) {
    parent.Add_child(added);
    EXPECT_EQ(order, (Order{"+Parent", "-Parent"}));
}

TEST_F(Tree_locking, AttachingLocksTheChildBeforeTheParent) {
    added.Attach(parent);
    EXPECT_EQ(order, (Order{"+Added", "+Parent", "-Parent", "-Added"}));
}

TEST_F(Tree_locking, RemovingLocksTheParent) {
    parent.Remove(&first);
    EXPECT_EQ(order, (Order{"+Parent", "-Parent"}));
}

TEST_F(Tree_locking, RemovingAStrangerUnlocksTheParent) {
    support::capture(0, [&] { parent.Remove(&added); });
    EXPECT_EQ(order, (Order{"+Parent", "-Parent"}));
}

TEST_F(Tree_locking, RemovingNullLocksNothing) {
    support::capture(0, [&] { parent.Remove(nullptr); });
    EXPECT_EQ(order, Order{});
}

TEST_F(Tree_locking, PrintingHoldsTheParentWhileChildrenLockThemselves) {
    support::capture(0, [&] { parent.Print(); });
    EXPECT_EQ(order, (Order{"+Parent", "+First", "-First", "+Second", "-Second", "-Parent"}));
}

// The first allocation fails, then the second, and so on, until all succeed.
TEST_F(Tree_locking, PrintingWithoutMemoryUnlocksWhatItLocked) {
    order.reserve(100);
    bool is_thrown = true;
    std::size_t number = 0;
    while (is_thrown) {
        ++number;
        order.clear();
        support::capture(0, [&] {
            support::fail_allocation(number);
            try {
                parent.Print();
                is_thrown = false;
            } catch (const std::bad_alloc&) {
            }
            support::fail_allocation(0);
        });
        Order held;
        for (const std::string& step : order) {
            if (step[0] == '+') {
                held.push_back(step.substr(1));
                continue;
            }
            ASSERT_FALSE(held.empty()) << step << " at allocation " << number;
            EXPECT_EQ(held.back(), step.substr(1)) << "at allocation " << number;
            held.pop_back();
        }
        EXPECT_EQ(held, Order{}) << "at allocation " << number;
    }
    EXPECT_GT(number, 3u);
}

// Every line of a removal names the child, so asking for its name stands for printing.
class Named_leaf : public Watched_node {
public:
    using Watched_node::Watched_node;
    const char* Get_name() const override {
        ++asked;
        asked_under_mutex += !order.empty() && order.back() == "+Menu" ? 1 : 0;
        return Watched_node::Get_name();
    }
    static int asked;
    static int asked_under_mutex;
};

int Named_leaf::asked = 0;
int Named_leaf::asked_under_mutex = 0;

TEST_F(Tree_locking, NoLineOfARemovalIsPrintedUnderTheMutex) {
    Watched_node menu("Menu");
    Named_leaf one("One");
    Named_leaf two("Two");
    Named_leaf three("Three");
    Named_leaf four("Four");
    Named_leaf stranger("Stranger");
    for (Named_leaf* const child : {&one, &two, &three, &four}) {
        menu.Add_child(*child);
    }
    const std::string out =
        support::capture(0x1, [&] {
            for (Named_leaf* const child : {&two, &one, &four, &three, &stranger}) {
                menu.Remove(child);
            }
        }).out;
    for (const char* const line :
         {"Must sow two children together to remove child [Two] from parent [Menu]\n",
          "Getting rid of first child named [One] from parent [Menu]\n",
          "[Four] may be the last or only child of parent... Last child\n",
          "[Three] may be the last or only child of parent... Only child\n",
          "Could not find child named [Stranger]["}) {
        EXPECT_NE(out.find(line), std::string::npos) << line;
    }
    EXPECT_GE(Named_leaf::asked, 10);
    EXPECT_EQ(Named_leaf::asked_under_mutex, 0);
}

TEST_F(Tree_locking, ReadingAndSettingLinksLocksNothing) {
    parent.Get_child();
    first.Get_next();
    second.Get_previous();
    first.Get_parent();
    added.Set_parent(&parent);
    added.Set_child(nullptr);
    added.Set_next(&first);
    added.Set_previous(&second);
    added.Set_dynamic_next(&first);
    EXPECT_EQ(order, Order{});
}

TEST_F(Tree_locking, RefreshingAndAskingForVisibilityLocksNothing) {
    parent.Refresh(nullptr, true);
    parent.isVisible(true, nullptr);
    Data_entry::TraverseMenuTree(&parent, 0x1, nullptr);
    EXPECT_EQ(order, Order{});
}

}  // namespace
