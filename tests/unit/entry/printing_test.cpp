#include <frontpanel_data/link_entry.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/indexes.h"
#include "support/small_stack.h"

namespace {

class Menu : public Node_entry {
public:
    explicit Menu(const char* name, Data_entry* parent = nullptr)
        : Node_entry(name, "A menu", support::any_index(), parent, VISIBLE_ALL, SHORTCUT_NONE,
                     nullptr, nullptr, nullptr) {}
};

// Prints in a way of its own, around the base's.
class Framed : public Menu {
public:
    using Menu::Menu;
    void Print() override {
        std::printf("<%s>\n", Get_name());
        Menu::Print();
        std::printf("</%s>\n", Get_name());
    }
};

std::string heading(const char* name) {
    return std::string("----- data entry (") + name + ") -----\nDescription:\nA menu\n";
}

std::string printed(Data_entry& entry) {
    return support::capture(0, [&] { entry.Print(); }).out;
}

TEST(Printing, IsParentsFirstAndInOrder) {
    Menu top("Top"), first("First", &top), below("Below", &first), second("Second", &top);
    EXPECT_EQ(printed(top),
              heading("Top") + heading("First") + heading("Below") + heading("Second"));
}

TEST(Printing, LeavesAnApplicationsClassItsOwnWay) {
    Menu top("Top");
    Framed framed("Framed", &top);
    Menu below("Below", &framed);
    Framed inner("Inner", &below);
    Menu last("Last", &top);
    EXPECT_EQ(printed(top), heading("Top") + "<Framed>\n" + heading("Framed") + heading("Below") +
                                "<Inner>\n" + heading("Inner") + "</Inner>\n</Framed>\n" +
                                heading("Last"));
}

TEST(Printing, NamesAMenuThatAnApplicationsClassReachesAgain) {
    Menu top("Top");
    Framed framed("Framed", &top);
    Link_entry to_top(&top);
    framed.Add_child(to_top);
    EXPECT_EQ(printed(top),
              heading("Top") + "<Framed>\n" + heading("Framed") + heading("Top") + "</Framed>\n");
}

TEST(Printing, NeedsNoStackForTheLevelsOfAMenu) {
    Menu top("Top");
    std::vector<std::unique_ptr<Menu>> below;
    for (int level = 0; level < support::DEEP; ++level) {
        below.push_back(std::make_unique<Menu>("Menu", level == 0 ? &top : below.back().get()));
    }
    std::string text;
    support::run_on_small_stack([&] { text = printed(top); });
    EXPECT_EQ(text.size(),
              heading("Top").size() + heading("Menu").size() * std::size_t{support::DEEP});
}

TEST(Printing, NeedsNoStackForLinksFromMenuToMenu) {
    std::vector<std::unique_ptr<Menu>> menus;
    std::vector<std::unique_ptr<Link_entry>> links;
    menus.push_back(std::make_unique<Menu>("Menu"));
    for (int level = 1; level < support::DEEP; ++level) {
        Menu& above = *menus.back();
        menus.push_back(std::make_unique<Menu>("Menu"));
        links.push_back(std::make_unique<Link_entry>(menus.back().get()));
        above.Add_child(*links.back());
    }
    std::string text;
    support::run_on_small_stack([&] { text = printed(*menus.front()); });
    EXPECT_EQ(text.size(), heading("Menu").size() * std::size_t{support::DEEP});
}

}  // namespace
