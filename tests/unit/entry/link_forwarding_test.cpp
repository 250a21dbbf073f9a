// Each operation of a link that belongs to the entry it houses, one test a row.
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

#include "support/capture.h"
#include "support/fake_device.h"
#include "unit/entry/link_fixture.h"

namespace {

using support::capture;

class Link_forwarding : public testing::Test {
protected:
    Link_forwarding() { housed.log = &log; }

    template <class... Arguments>
    static Log line(const char* operation, const Arguments&... arguments) {
        std::ostringstream text;
        text << operation;
        ((text << ' ' << arguments), ...);
        return {text.str()};
    }

    Log log;
    Housed housed;
    Open_link link{&housed};
    Data_entry& base = link;
    support::Fake_device device;
};

TEST_F(Link_forwarding, AsksForTheTypeOfTheValue) {
    EXPECT_EQ(base.Get_return_type_int_or_string(), STRING);
    EXPECT_EQ(log, Log{"Get_return_type_int_or_string"});
}

TEST_F(Link_forwarding, HidesAndShowsTheHousedEntry) {
    base.Set_invisible();
    base.Set_visible();
    EXPECT_EQ(log, (Log{"Set_invisible", "Set_visible"}));
    EXPECT_EQ(link.m_visible, 1) << "the link's own field is left alone";
}

TEST_F(Link_forwarding, AsksTheQueriesOfTheHousedEntry) {
    EXPECT_EQ(link.Get_access_type(), Data_entry::WRITE_ONLY);
    EXPECT_TRUE(link.Is_node_entry());
    EXPECT_FALSE(link.Is_active());
    EXPECT_EQ(link.Get_shortcut(), 7);
    EXPECT_STREQ(link.Get_description(), "A housed entry");
    EXPECT_EQ(link.Get_index(), support::any_index());
    EXPECT_EQ(link.Get_pid(), 120u);
    EXPECT_EQ(log, (Log{"Get_access_type", "Is_node_entry", "Is_active", "Get_shortcut",
                        "Get_description", "Get_index", "Get_pid"}));
}

// A caller that does not know the link as one is answered by the link's base: applications rely on it to
// tell the place of the link from that of the housed entry.
TEST_F(Link_forwarding, ACallerThatHoldsTheBaseGetsTheBasesQueries) {
    EXPECT_EQ(base.Get_access_type(), Data_entry::READ_ONLY);
    EXPECT_FALSE(base.Is_node_entry());
    EXPECT_TRUE(base.Is_active());
    EXPECT_EQ(base.Get_shortcut(), 7);
    EXPECT_STREQ(base.Get_description(), "A housed entry");
    EXPECT_NE(base.Get_description(), housed.Get_description()) << "a copy";
    log.clear();
    EXPECT_EQ(base.Get_index(), support::any_index());
    EXPECT_EQ(base.Get_pid(), 120u);
    EXPECT_EQ(base.Get_visible(), 1);
    EXPECT_EQ(base.Get_value_visible_mask(), nullptr);
    EXPECT_EQ(base.Get_min(), 0);
    EXPECT_EQ(base.Get_max(), 0);
    EXPECT_EQ(log, Log{});
}

TEST_F(Link_forwarding, ChildrenAreThoseOfTheHousedEntry) {
    Housed child("Child");
    Data_entry* const child_pointer = &child;
    EXPECT_EQ(base.Add_child(child), Housed::RESULT);
    EXPECT_EQ(base.Attach(child), Housed::RESULT);
    EXPECT_EQ(base.Remove(&child), Housed::RESULT);
    EXPECT_EQ(log, (Log{line("Add_child", child_pointer)[0], line("Attach", child_pointer)[0],
                        line("Remove", child_pointer)[0]}));
    EXPECT_EQ(child.Get_parent(), nullptr);
}

TEST_F(Link_forwarding, AnEntryBuiltBelowALinkBecomesAChildOfTheHousedEntry) {
    Menu menu("Menu");
    Link_entry to_menu(&menu);
    Menu inner("Inner", &to_menu);
    EXPECT_EQ(menu.Get_child(), &inner);
    EXPECT_EQ(inner.Get_parent(), &menu);
}

TEST_F(Link_forwarding, AsksTheBindingForTheVisibility) {
    EXPECT_EQ(base.Get_bind_vis(), Housed::RESULT);
    EXPECT_EQ(log, Log{"Get_bind_vis"});
}

TEST_F(Link_forwarding, ReadsAndWritesTheValue) {
    char buffer[4] = {};
    const void* const address = buffer;
    EXPECT_EQ(base.Get_value(buffer, 3), Housed::RESULT);
    EXPECT_EQ(base.Set_value(buffer, 4), Housed::RESULT);
    EXPECT_EQ(base.bindingReturnType(), STRING);
    EXPECT_EQ(log, (Log{line("Get_value", address, 3)[0], line("Set_value", address, 4)[0],
                        "bindingReturnType"}));
}

TEST_F(Link_forwarding, CommitsWithoutAnInterface) {
    EXPECT_EQ(base.Commit(), Housed::RESULT);
    EXPECT_EQ(log, Log{"Commit"});
}

TEST_F(Link_forwarding, StepsTheValue) {
    EXPECT_EQ(base.Inc_value(-3, 2), Housed::RESULT);
    EXPECT_EQ(log, Log{"Inc_value -3 2"});
}

TEST_F(Link_forwarding, Prints) {
    base.Print();
    EXPECT_EQ(log, Log{"Print"});
}

TEST_F(Link_forwarding, ReplacesTheTexts) {
    char text[] = "One";
    char* texts[] = {text};
    base.Update_value(texts, 1);
    EXPECT_EQ(log, line("Update_value", static_cast<char**>(texts), 1));
}

TEST_F(Link_forwarding, AsksForTheLimits) {
    EXPECT_NE(link.Get_value_visible_mask(), nullptr);
    EXPECT_EQ(link.Get_min(), -5);
    EXPECT_EQ(link.Get_max(), 5);
    EXPECT_EQ(log, (Log{"Get_value_visible_mask", "Get_min", "Get_max"}));
}

TEST_F(Link_forwarding, AsksForTheOptions) {
    EXPECT_EQ(base.Get_options(), std::vector<std::string>{"gps"});
    EXPECT_EQ(base.isOptionStatic("slot3", true).dynamicValue, 3);
    EXPECT_EQ(log, (Log{"Get_options", "isOptionStatic slot3 1"}));
}

TEST_F(Link_forwarding, HandsOnTheFinalValue) {
    EXPECT_EQ(base.Get_final_value(), Housed::RESULT);
    base.Set_final_value(9);
    EXPECT_EQ(log, (Log{"Get_final_value", "Set_final_value 9"}));
}

TEST_F(Link_forwarding, HandsOnTheBinding) {
    base.Set_binding_object(nullptr);
    EXPECT_EQ(base.Add_binding_list({8, 9}), Housed::RESULT);
    EXPECT_EQ(base.Print_binding_errors(), Housed::RESULT);
    EXPECT_EQ(log, (Log{line("Set_binding_object", static_cast<Binding*>(nullptr))[0],
                        "Add_binding_list 2 8", "Print_binding_errors"}));
}

TEST_F(Link_forwarding, HandsOnTheOptions) {
    EXPECT_EQ(base.setOrOptions({"gps", "rds"}), Housed::RESULT);
    EXPECT_EQ(base.setProductOptions({{"slotn", 4}}), Housed::RESULT);
    EXPECT_EQ(log, (Log{"setOrOptions 2 gps", "setProductOptions 1 slotn"}));
}

// The crossed row: whoever asks a link for suggestions is told the errors.
TEST_F(Link_forwarding, PrintsTheBindingErrorsWhenAskedForTheSuggestions) {
    base.Print_suggestions();
    EXPECT_EQ(log, Log{"Print_binding_errors"});
}

TEST_F(Link_forwarding, KeepsTheShortcutItHandsOn) {
    base.Set_shortcut(3);
    EXPECT_EQ(log, Log{"Set_shortcut 3"});
    EXPECT_EQ(link.m_shortcut, 3);
    EXPECT_EQ(base.Get_shortcut(), 3);
}

TEST_F(Link_forwarding, RefreshesThroughTheDispatcher) {
    Data_interface* const interface = &device;
    for (const bool eval : {false, true}) {
        log.clear();
        EXPECT_EQ(base.Refresh(interface, eval), Housed::RESULT);
        EXPECT_EQ(log, line("Refresh", interface, eval));
    }
    const std::string out = capture(0x10000, [&] { base.Refresh(interface, true); }).out;
    EXPECT_NE(out.find("[dispatcher.cpp][EntryTypeSpecificOperation][#] Refresh [Gain]\n"),
              std::string::npos);
}

TEST_F(Link_forwarding, ARefreshWithoutAnInterfaceFailsWithoutReachingTheHousedEntry) {
    EXPECT_EQ(base.Refresh(nullptr, true), -1);
    EXPECT_EQ(log, Log{});
}

TEST_F(Link_forwarding, ALinkToALinkReachesTheLastEntry) {
    Link_entry outer(&link);
    EXPECT_EQ(outer.Inc_value(1, 0), Housed::RESULT);
    EXPECT_EQ(static_cast<Data_entry&>(outer).Refresh(&device, true), Housed::RESULT);
    EXPECT_EQ(log.size(), 2u);
}

// What is not in the table above stays with the link.
TEST_F(Link_forwarding, PlaceShortcutTableAndLevelAreTheLinksOwn) {
    std::map<int, ShortcutS> table;
    EXPECT_EQ(base.setShortcuts(&table), 0);
    base.setNodeLevel(3);
    base.Set_hs_shortcut(4);
    base.Set_has_children(5);
    base.Set_entry_visible(6);
    EXPECT_EQ(base.Get_shortcuts_map(), &table);
    EXPECT_EQ(housed.Get_shortcuts_map(), nullptr);
    EXPECT_EQ(housed.getNodeLevel(), 0u);
    EXPECT_EQ(housed.Get_hs_shortcut(), -1);
    EXPECT_EQ(housed.Get_has_children(), -1);
    EXPECT_EQ(housed.Get_entry_visible(), -1);
    EXPECT_EQ(log, Log{});
}

TEST(Link_to_nothing, TakesNoForwardedOperation) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    Link_entry nowhere(nullptr);
    EXPECT_DEATH(nowhere.Inc_value(1, 0), "Assertion `link_entry' failed");
    EXPECT_DEATH(nowhere.Get_pid(), "Assertion `link_entry' failed");
}

TEST(Link_to_nothing, IsPassedOverByWalksOverTheTree) {
    Link_entry nowhere(nullptr);
    const auto printed = capture(0, [&] {
        static_cast<Data_entry&>(nowhere).Print();
        EXPECT_EQ(nowhere.getProperties(0),
                  "none varid[0.0.0@s] num_index_levels=[0] type[7] "
                  "vis[-1] shortcut[-1] ");
    });
    EXPECT_EQ(printed.out, "");
    support::Fake_device device;
    EXPECT_EQ(static_cast<Data_entry&>(nowhere).Refresh(&device, true), -1);
}

}  // namespace
