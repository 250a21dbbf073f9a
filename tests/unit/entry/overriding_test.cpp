#include "entry/overriding.h"

#include <frontpanel_data/data_entry.h>
#include <gtest/gtest.h>

#include "support/indexes.h"

namespace {

using overriding::Version;

class Menu : public Node_entry {
public:
    Menu()
        : Node_entry("Menu", "A menu", support::any_index(), nullptr, VISIBLE_ALL, SHORTCUT_NONE,
                     nullptr, nullptr, nullptr) {}
};

class Own_print : public Menu {
public:
    void Print() override {}
};

class Own_visibility : public Menu {
public:
    using Menu::isVisible;
    int isVisible(bool, Data_interface*) override { return 1; }
};

class Inherited : public Own_visibility {};

// The entry is not the first base, and its operations are reached by way of another table.
class Listener {
public:
    virtual ~Listener() = default;
    virtual void notify() {}
};
class Second_base : public Listener, public Menu {};
class Second_base_with_print : public Listener, public Own_print {
public:
    void Print() override {}
};

class Own_link : public Link_entry {
public:
    using Link_entry::Link_entry;
    void Print() override {}
};

TEST(Overriding, NoneIsInTheLibrarysOwnClasses) {
    Menu menu;
    Time_entry time("Time", "A time", 1, support::any_index(), 8, nullptr, Data_entry::READ_WRITE,
                    1, true, -1, nullptr, nullptr, nullptr);
    for (const Data_entry* const entry :
         {static_cast<Data_entry*>(&menu), static_cast<Data_entry*>(&time)}) {
        EXPECT_EQ(overriding::of_print(*entry), Version::BASE);
        EXPECT_EQ(overriding::of_is_visible(*entry), Version::BASE);
    }
}

TEST(Overriding, ALinkHasItsOwnVersions) {
    Menu menu;
    const Link_entry link(&menu);
    EXPECT_EQ(overriding::of_print(link), Version::LINK);
    EXPECT_EQ(overriding::of_is_visible(link), Version::LINK);
    const Own_link own(&menu);
    EXPECT_EQ(overriding::of_print(own), Version::OTHER);
    EXPECT_EQ(overriding::of_is_visible(own), Version::LINK);
}

TEST(Overriding, OfAnApplicationIsFoundForEachOperation) {
    EXPECT_EQ(overriding::of_print(Own_print()), Version::OTHER);
    EXPECT_EQ(overriding::of_is_visible(Own_print()), Version::BASE);
    EXPECT_EQ(overriding::of_print(Own_visibility()), Version::BASE);
    EXPECT_EQ(overriding::of_is_visible(Own_visibility()), Version::OTHER);
    EXPECT_EQ(overriding::of_is_visible(Inherited()), Version::OTHER);
}

TEST(Overriding, IsFoundInASecondBase) {
    EXPECT_EQ(overriding::of_print(Second_base()), Version::BASE);
    EXPECT_EQ(overriding::of_print(Second_base_with_print()), Version::OTHER);
    EXPECT_EQ(overriding::of_is_visible(Second_base_with_print()), Version::BASE);
}

}  // namespace
