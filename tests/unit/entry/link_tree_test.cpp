// Links among other entries: the dispatcher, the traversal and the visibility of menus that hold them.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include <memory>

#include "support/capture.h"
#include "support/fake_device.h"
#include "support/fake_editors.h"
#include "support/line_gates.h"
#include "support/small_stack.h"
#include "unit/entry/link_fixture.h"

namespace {

using support::capture;

// --- the dispatcher

class Dispatched_link : public testing::Test {
protected:
    Dispatched_link() {
        housed.Set_next(&housed_next);
        housed.Set_previous(&housed_previous);
        housed.Set_child(&housed_child);
    }

    int run(int flags, Data_interface* interface = nullptr) {
        return Data_entry::EntryTypeSpecificOperation(&link, interface, nullptr, true, flags,
                                                      &fetched);
    }
    void place() {
        base.Set_next(&next);
        base.Set_previous(&previous);
        base.Set_parent(&parent);
        base.Set_child(&child);
    }

    Log log;
    support::Fake_device device;
    Menu menu{"Menu"};
    Housed housed_next{"Housed_next"}, housed_previous{"Housed_previous"};
    Housed housed_child{"Housed_child"}, untouched{"Untouched"};
    Housed next{"Next"}, previous{"Previous"}, parent{"Parent"}, child{"Child"};
    Housed housed{"Gain", support::any_index(), &menu};
    Open_link link{&housed};
    Data_entry& base = link;
    void* fetched = &untouched;
};

TEST_F(Dispatched_link, RefreshesTheHousedEntry) {
    housed.log = &log;
    EXPECT_EQ(run(0x1, &device), Housed::RESULT);
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0].rfind("Refresh 0x", 0), 0u) << log[0];
    EXPECT_EQ(fetched, &untouched);
}

TEST_F(Dispatched_link, WithoutAnInterfaceFailsAndEndsTheOperation) {
    place();
    housed.log = &log;
    EXPECT_EQ(run(0x1 | 0x8 | 0x100 | 0x400), -1);
    EXPECT_EQ(fetched, &untouched);
    EXPECT_EQ(link.Get_child_link(), &child);
    EXPECT_EQ(log, Log{});
}

TEST_F(Dispatched_link, WithoutAnInterfaceFailsWhateverItHouses) {
    housed.type = Data_entry::PANEL_HS;
    EXPECT_EQ(support::capture(0, [&] { EXPECT_EQ(run(0x1 | 0x8), -1); }).err,
              "Refresher::Refresh, unhandled type 8\n");
    EXPECT_EQ(fetched, &untouched);
    EXPECT_EQ(support::capture(0, [&] { EXPECT_EQ(run(0x1 | 0x8, &device), 0); }).err,
              "Refresher::Refresh, unhandled type 8\n");
}

// The editor is that of the housed entry, which is what it edits.
TEST_F(Dispatched_link, RunsTheWholeOperationOnTheHousedEntry) {
    support::Fake_range_editor editor(&log);
    housed.log = &log;
    EXPECT_EQ(Data_entry::EntryTypeSpecificOperation(&link, &device, editor.pointer(), true,
                                                     0x1 | 0x2 | 0x1000 | 0x100000, &fetched),
              Housed::RESULT);
    ASSERT_EQ(log.size(), 4u);
    EXPECT_EQ(log[1], "ExitLEDs");
    EXPECT_EQ(log[2], "Coarser_step");
    EXPECT_EQ(log[3], "Prepare Gain");
}

TEST_F(Dispatched_link, AfterARefreshTheNeighbourIsTheLinks) {
    place();
    EXPECT_EQ(run(0x1 | 0x100, &device), Housed::RESULT);
    EXPECT_EQ(fetched, &next);
    run(0x1 | 0x8, &device);
    EXPECT_EQ(fetched, &parent);
}

TEST_F(Dispatched_link, WithoutARefreshTheHousedEntryIsNotOperated) {
    support::Fake_range_editor editor(&log);
    housed.log = &log;
    EXPECT_EQ(Data_entry::EntryTypeSpecificOperation(&link, &device, editor.pointer(), true,
                                                     0x2 | 0x1000 | 0x2000 | 0x8000, &fetched),
              0);
    EXPECT_EQ(log, Log{});
    EXPECT_EQ(fetched, &untouched);
}

TEST_F(Dispatched_link, ToNothingFailsToRefreshAndMakesItsOtherSteps) {
    Open_link nowhere(nullptr);
    static_cast<Data_entry&>(nowhere).Set_parent(&parent);
    EXPECT_EQ(Data_entry::EntryTypeSpecificOperation(&nowhere, &device, nullptr, true, 0x1 | 0x10,
                                                     &fetched),
              -1);
    EXPECT_EQ(fetched, &parent);
}

TEST_F(Dispatched_link, EachBitDeliversANeighbourOfItsOwnLookup) {
    const struct {
        int flags;
        Data_entry* before;
        Data_entry* placed;
    } cases[] = {{0x8, &menu, &parent},
                 {0x10, nullptr, &parent},
                 {0x20, &housed_child, &child},
                 {0x40, nullptr, &child},
                 {0x80, &housed_previous, &previous},
                 {0x100, &housed_next, &next},
                 {0x80 | 0x400000, &housed_previous, &previous},
                 {0x100 | 0x400000, &housed_next, &next}};
    base.Set_dynamic_next(&untouched);
    base.Set_dynamic_previous(&untouched);
    for (const auto& test : cases) {
        fetched = &untouched;
        EXPECT_EQ(run(test.flags), 0);
        EXPECT_EQ(fetched, test.before) << std::hex << test.flags;
    }
    place();
    for (const auto& test : cases) {
        fetched = &untouched;
        EXPECT_EQ(run(test.flags), 0);
        EXPECT_EQ(fetched, test.placed) << std::hex << test.flags;
    }
}

TEST_F(Dispatched_link, WithoutAPlaceForAnEntryNothingIsDelivered) {
    place();
    EXPECT_EQ(Data_entry::EntryTypeSpecificOperation(
                  &link, nullptr, nullptr, true,
                  0x8 | 0x10 | 0x20 | 0x40 | 0x80 | 0x100 | 0x200 | 0x400, nullptr),
              0);
    EXPECT_EQ(link.Get_parent_link(), &parent);
    EXPECT_EQ(link.Get_child_link(), &child);
}

TEST_F(Dispatched_link, ParentAndChildAreSetOnTheLink) {
    run(0x200);
    EXPECT_EQ(link.Get_parent_link(), &untouched);
    run(0x400);
    EXPECT_EQ(link.Get_child_link(), &untouched);
    EXPECT_EQ(housed.Get_parent(), &menu);
    EXPECT_EQ(housed.Get_child(), &housed_child);
}

TEST_F(Dispatched_link, ThePlainLookupsEnterAndLeaveAMountedMenu) {
    int built = 0, destroyed = 0;
    link.setAsMountLink(
        [&](MenuControl*) {
            ++built;
            return &untouched;
        },
        [&](MenuControl*) {
            ++destroyed;
            return nullptr;
        });
    place();
    run(0x10);
    EXPECT_EQ(fetched, &parent);
    run(0x40);
    EXPECT_EQ(fetched, &child);
    run(0x1 | 0x80, &device);
    EXPECT_EQ(built + destroyed, 0);
    run(0x20);
    EXPECT_EQ(fetched, &untouched);
    EXPECT_EQ(built, 1);
    run(0x8);
    EXPECT_EQ(fetched, &parent);
    EXPECT_EQ(destroyed, 1);
}

TEST_F(Dispatched_link, IsToldUnderTheLinksNameAndType) {
    const std::string out = capture(0x10, [&] { run(0x100); }).out;
    EXPECT_EQ(
        out.rfind("[dispatcher.cpp][EntryTypeSpecificOperation][#] Entry[Menu.Gain] type[7] ", 0),
        0u)
        << out;
}

// --- the traversal

class Menus_with_links : public testing::Test {
protected:
    static Log lines_of(const std::string& text) {
        Log lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line.substr(0, line.find(" varid")));
        }
        return lines;
    }
    static Log dump(Data_entry& top) {
        int depth = 0;
        return lines_of(capture(0, [&] { Data_entry::TraverseMenuTree(&top, 0x4, &depth); }).out);
    }
    // Places a link as the only or last of a list that ends with `previous`.
    static void place(Link_entry& link, Data_entry* parent, Data_entry* previous,
                      Data_entry* next = nullptr) {
        Data_entry& base = link;
        base.Set_parent(parent);
        base.Set_previous(previous);
        base.Set_next(next);
        if (previous != nullptr) {
            previous->Set_next(&link);
        }
    }

    support::Fake_device device;
    Menu top{"Top"};
    Menu audio{"Audio", &top};
    Housed gain{"Gain", support::any_index(), &audio};
    Menu setup{"Setup", &top};
};

TEST_F(Menus_with_links, LinksAreWalkedByTheirOwnPlace) {
    Housed last("Last");
    Link_entry to_gain(&gain), to_audio(&audio);
    place(to_gain, &top, &setup, &to_audio);
    place(to_audio, &top, &to_gain, &last);
    EXPECT_EQ(dump(top), (Log{"Audio", "\tGain", "Setup", "Audio.Gain", "Top.Audio", "Last"}))
        << "what is housed is not walked through the link";
}

TEST_F(Menus_with_links, AChildThatWasSetIsWalked) {
    Link_entry to_setup(&setup);
    Housed below("Below");
    place(to_setup, &top, &setup);
    static_cast<Data_entry&>(to_setup).Set_child(&below);
    EXPECT_EQ(dump(top), (Log{"Audio", "\tGain", "Setup", "Top.Setup", "\tBelow"}));
}

TEST_F(Menus_with_links, AMenuThatIsReachedTwiceIsWalkedTwice) {
    Link_entry first(&setup), second(&setup);
    place(first, &top, &setup, &second);
    place(second, &top, &first);
    static_cast<Data_entry&>(first).Set_child(&gain);
    static_cast<Data_entry&>(second).Set_child(&gain);
    EXPECT_EQ(dump(top),
              (Log{"Audio", "\tGain", "Setup", "Top.Setup", "\tGain", "Top.Setup", "\tGain"}));
}

TEST_F(Menus_with_links, AWalkIsNotEndlessBelowALinkToAnAncestor) {
    Link_entry to_top(&top);
    place(to_top, &audio, &gain);
    static_cast<Data_entry&>(to_top).Set_child(&audio);
    EXPECT_EQ(dump(top), (Log{"Audio", "\tGain", "\tTop", "\t\tAudio", "\t\tSetup", "Setup"}))
        << "what is being walked is named again and not entered";
    std::map<int, ShortcutS> table;
    Data_entry::TraverseMenuTree(&top, 0x1, &table);
    EXPECT_EQ(static_cast<Data_entry&>(to_top).Get_shortcuts_map(), &table);
    EXPECT_EQ(setup.Get_shortcuts_map(), &table);
}

TEST_F(Menus_with_links, AWalkIsNotEndlessBelowALinkToItself) {
    Link_entry link(&setup);
    place(link, &top, &setup);
    static_cast<Data_entry&>(link).Set_child(&link);
    EXPECT_EQ(dump(top), (Log{"Audio", "\tGain", "Setup", "Top.Setup", "\tTop.Setup"}));
}

// Without a next entry of its own a link goes on behind the entry that it houses.
TEST_F(Menus_with_links, AWalkIsNotEndlessAlongALinkThatLeadsBackIntoItsList) {
    Link_entry to_audio(&audio);
    setup.Set_next(&to_audio);
    EXPECT_EQ(dump(top), (Log{"Audio", "\tGain", "Setup", "Top.Audio"}));
    std::map<int, ShortcutS> table;
    Data_entry::TraverseMenuTree(&top, 0x1, &table);
    EXPECT_EQ(gain.Get_shortcuts_map(), &table);
}

TEST_F(Menus_with_links, AWalkNeitherBuildsNorDestroysAMountedMenu) {
    int calls = 0;
    const auto count = [&](MenuControl*) -> Data_entry* {
        ++calls;
        return &gain;
    };
    Link_entry mount(&setup);
    mount.setAsMountLink(count, count);
    place(mount, &top, &setup);
    std::map<int, ShortcutS> table;
    for (const int flags : {0x0, 0x1, 0x2}) {
        Data_entry::TraverseMenuTree(&top, flags, flags == 0x1 ? &table : nullptr);
    }
    EXPECT_EQ(dump(top), (Log{"Audio", "\tGain", "Setup", "Top.Setup"}));
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(mount.isValidParentLink());
    EXPECT_EQ(static_cast<Data_entry&>(mount).Get_shortcuts_map(), &table);
}

TEST_F(Menus_with_links, TheChildLinksOfMountLinksAreCleared) {
    Open_link mount(&setup), plain(&setup), below_plain(&setup);
    mount.setAsMountLink(FunctionT1(), FunctionT1());
    below_plain.setAsMountLink(FunctionT1(), FunctionT1());
    place(mount, &top, &setup, &plain);
    place(plain, &top, &mount);
    static_cast<Data_entry&>(mount).Set_child(&gain);
    static_cast<Data_entry&>(plain).Set_child(&below_plain);
    static_cast<Data_entry&>(below_plain).Set_child(&gain);
    static_cast<Data_entry&>(below_plain).Set_next(nullptr);
    for (const int flags : {0x0, 0x1, 0x4, 0x8}) {
        capture(0, [&] { Data_entry::TraverseMenuTree(&top, flags, nullptr); });
        EXPECT_EQ(mount.Get_child_link(), &gain) << "left alone by flag " << flags;
    }
    Data_entry::TraverseMenuTree(&top, 0x2, nullptr);
    EXPECT_EQ(mount.Get_child_link(), nullptr);
    EXPECT_TRUE(mount.valid_child_link);
    EXPECT_EQ(plain.Get_child_link(), &below_plain) << "a link that mounts nothing";
    EXPECT_EQ(below_plain.Get_child_link(), nullptr) << "at any depth";
    EXPECT_EQ(setup.Get_child(), nullptr);
    EXPECT_EQ(audio.Get_child(), &gain);
}

TEST_F(Menus_with_links, TheStartIsNotCleared) {
    Open_link mount(&setup);
    mount.setAsMountLink(FunctionT1(), FunctionT1());
    static_cast<Data_entry&>(mount).Set_child(&gain);
    Data_entry::TraverseMenuTree(&mount, 0x2, nullptr);
    EXPECT_EQ(mount.Get_child_link(), &gain);
}

TEST_F(Menus_with_links, ALinkToNothingIsPrintedAndEndsItsList) {
    Link_entry nowhere(nullptr);
    place(nowhere, &top, &setup, &gain);
    EXPECT_EQ(dump(top), (Log{"Audio", "\tGain", "Setup", "none"}));
}

// How an application places links, as the documentation shows it.
void append(Data_entry& menu, Link_entry& link, Data_entry* last) {
    menu.Add_child(link);
    Data_entry& base = link;
    base.Set_parent(&menu);
    base.Set_previous(last);
    base.Set_next(nullptr);
    if (last != nullptr) {
        last->Set_next(&link);
    }
}

TEST_F(Menus_with_links, FavouritesAreWalkedBothWaysAndLeftUpwards) {
    Menu favourites("Favourites", &top), plain("Plain", &favourites);
    Housed level("Level", support::any_index(), &audio);
    Link_entry first(&gain), second(&setup), third(&level);
    append(favourites, first, &plain);
    append(favourites, second, &first);
    append(favourites, third, &second);
    EXPECT_EQ(dump(favourites), (Log{"Plain", "Audio.Gain", "Top.Setup", "Audio.Level"}));
    EXPECT_EQ(third.Get_previous(), &second);
    EXPECT_EQ(first.Get_previous(), &plain);
    EXPECT_EQ(third.Get_next(), nullptr);
    for (Link_entry* const link : {&first, &second, &third}) {
        EXPECT_EQ(link->Get_parent(), &favourites);
        EXPECT_EQ(static_cast<Data_entry*>(link)->Get_parent(), &favourites) << "in the base too";
    }
    EXPECT_EQ(dump(audio), (Log{"Gain", "Level"})) << "as before";
}

void take_out(Data_entry& menu, Link_entry& link) {
    Data_entry* const previous = link.Get_previous();
    Data_entry* const next = link.Get_next();
    menu.Remove(&link);
    if (previous != nullptr) {
        previous->Set_next(next);
    }
    if (next != nullptr) {
        next->Set_previous(previous);
    }
}

TEST_F(Menus_with_links, AFavouriteThatIsTakenOutIsReachedFromNowhere) {
    Menu favourites("Favourites", &top), plain("Plain", &favourites);
    Housed level("Level", support::any_index(), &audio);
    Link_entry first(&gain), third(&level);
    Menu last("Last");
    {
        Link_entry second(&setup);
        append(favourites, first, &plain);
        append(favourites, second, &first);
        append(favourites, third, &second);
        favourites.Add_child(last);
        static_cast<Data_entry&>(third).Set_next(&last);
        EXPECT_EQ(dump(favourites),
                  (Log{"Plain", "Audio.Gain", "Top.Setup", "Audio.Level", "Last"}));
        take_out(favourites, second);
    }
    EXPECT_EQ(dump(favourites), (Log{"Plain", "Audio.Gain", "Audio.Level", "Last"}));
    EXPECT_EQ(third.Get_previous(), &first);
    take_out(favourites, first);
    take_out(favourites, third);
    EXPECT_EQ(dump(favourites), (Log{"Plain", "Last"}));
    EXPECT_EQ(last.Get_previous(), &plain);
    EXPECT_EQ(dump(audio), (Log{"Gain", "Level"})) << "as before";
}

// --- the static list, in which links stand by their base links

class Children_with_links : public Menus_with_links {
protected:
    static std::string heading(const char* name, const char* description) {
        return std::string("----- data entry (") + name + ") -----\nDescription:\n" + description +
               "\n";
    }
    static std::string printed(Data_entry& entry) {
        return capture(0, [&] { entry.Print(); }).out;
    }
    static Log names_below(const Data_entry& menu) {
        Log names;
        for (const Data_entry* at = menu.Get_child(); at != nullptr; at = at->Get_next()) {
            names.push_back(at->Get_name());
        }
        return names;
    }

    // Three children, and a link that only the last of them knows: behind it, by what it took over from the
    // first, the second comes again.
    Menu list{"List"};
    Menu first{"First", &list}, second{"Second", &list}, third{"Third", &list};
    Link_entry to_first{&first};
};

TEST_F(Children_with_links, ALinkAddedToAMenuStandsInItsList) {
    EXPECT_EQ(list.Add_child(to_first), 0);
    Menu fourth("Fourth", &list);
    EXPECT_EQ(names_below(list), (Log{"First", "Second", "Third", "List.First", "Fourth"}));
    EXPECT_EQ(list.Remove(&to_first), 0);
    EXPECT_EQ(names_below(list), (Log{"First", "Second", "Third", "Fourth"}));
    EXPECT_EQ(to_first.Get_next(), &second) << "where it leads is what it houses leads to";
}

TEST_F(Children_with_links, AChildIsAddedBehindALinkThatLeadsBack) {
    third.Set_next(&to_first);
    Menu fourth("Fourth", &list);
    EXPECT_EQ(names_below(list), (Log{"First", "Second", "Third", "List.First", "Fourth"}));
    EXPECT_EQ(fourth.Get_previous(), &to_first);
}

TEST_F(Children_with_links, AChildIsFoundOrMissedBeforeALinkThatLeadsBack) {
    third.Set_next(&to_first);
    Menu stranger("Stranger");
    capture(0, [&] { EXPECT_EQ(list.Remove(&stranger), 0); });
    EXPECT_EQ(list.Remove(&second), 0);
    EXPECT_EQ(first.Get_next(), &third);
}

TEST_F(Children_with_links, AListThatIsACircleFromItsStartHasAnEnd) {
    Menu circle("Circle");
    Menu only("Only", &circle);
    only.Set_next(&only);
    Menu more("More", &circle);
    EXPECT_EQ(names_below(circle), (Log{"Only", "More"}));
}

TEST_F(Children_with_links, EachChildIsPrintedOnce) {
    third.Set_next(&to_first);
    EXPECT_EQ(printed(list), heading("List", "A menu") + heading("First", "A menu") +
                                 heading("Second", "A menu") + heading("Third", "A menu") +
                                 heading("First", "A menu"))
        << "the link prints what it houses";
}

// The menu's mutex is locked while its children are printed.
TEST_F(Children_with_links, AMenuBelowItselfIsNamedAndNotEnteredAgain) {
    Link_entry to_list(&list);
    first.Add_child(to_list);
    EXPECT_EQ(printed(list), heading("List", "A menu") + heading("First", "A menu") +
                                 heading("List", "A menu") + heading("Second", "A menu") +
                                 heading("Third", "A menu"));
    EXPECT_EQ(printed(second), heading("Second", "A menu")) << "printing is over";
    EXPECT_EQ(printed(to_list), printed(list));
}

// --- visibility

TEST_F(Menus_with_links, AMenuIsVisibleByTheVisibleEntryOfItsFirstLink) {
    Link_entry link(&gain);
    setup.Set_child(&link);
    EXPECT_EQ(setup.isVisible(), 1);
    EXPECT_EQ(setup.Get_has_children(), -1) << "left unchanged";
}

TEST_F(Menus_with_links, AMenuOfAHiddenLinkCountsAsHavingChildren) {
    Link_entry link(&gain);
    static_cast<Data_entry&>(link).Set_next(nullptr);
    setup.Set_child(&link);
    gain.visibility = -1;
    EXPECT_EQ(setup.isVisible(), 1);
    EXPECT_EQ(setup.Get_has_children(), 1);
}

TEST_F(Menus_with_links, LinksBehindTheFirstChildAreNotAsked) {
    Log log;
    Housed target("Target", support::any_index(), nullptr);
    Link_entry link(&target);
    place(link, &audio, &gain);
    gain.visibility = -1;
    target.visibility = -1;
    target.log = &log;
    EXPECT_EQ(audio.isVisible(false, &device), 1);
    EXPECT_EQ(audio.Get_has_children(), 1);
    EXPECT_EQ(log, Log{});
}

TEST_F(Menus_with_links, AVisibleEntryBehindALinkEndsTheSearch) {
    Housed target("Target", support::any_index(), nullptr), last("Last");
    Link_entry link(&target);
    place(link, &audio, &gain, &last);
    gain.visibility = -1;
    audio.Set_has_children(7);
    EXPECT_EQ(audio.isVisible(false, &device), 1);
    EXPECT_EQ(audio.Get_has_children(), 7);
}

TEST_F(Menus_with_links, AMenuThatHoldsALinkToItselfIsVisible) {
    Link_entry to_setup(&setup);
    static_cast<Data_entry&>(to_setup).Set_next(nullptr);
    setup.Set_child(&to_setup);
    EXPECT_EQ(setup.isVisible(), 1);
    EXPECT_EQ(setup.isVisible(true, &device), 1);
    EXPECT_EQ(to_setup.isVisible(), 1);
    setup.Set_entry_visible(-1);
    setup.Set_invisible();
    EXPECT_EQ(setup.isVisible(), -1);
    EXPECT_EQ(to_setup.isVisible(), -1);
}

TEST_F(Menus_with_links, TwoMenusThatHoldLinksToEachOtherAreVisible) {
    Menu other("Other");
    Link_entry to_setup(&setup), to_other(&other);
    static_cast<Data_entry&>(to_setup).Set_next(nullptr);
    static_cast<Data_entry&>(to_other).Set_next(nullptr);
    setup.Set_child(&to_other);
    other.Set_child(&to_setup);
    EXPECT_EQ(setup.isVisible(true, &device), 1);
    EXPECT_EQ(other.isVisible(true, &device), 1);
}

TEST_F(Menus_with_links, ASearchIsNotEndlessAlongALinkThatLeadsBack) {
    Menu list("List");
    Housed first("First", support::any_index(), &list);
    first.visibility = -1;
    Link_entry to_first(&first);
    first.Set_next(&to_first);
    EXPECT_EQ(list.isVisible(true, &device), 1) << "the link counts";
    EXPECT_EQ(list.Get_has_children(), 1);
}

TEST_F(Menus_with_links, LinksFromMenuToMenuNeedNoStackForTheirLevels) {
    std::vector<std::unique_ptr<Menu>> menus;
    std::vector<std::unique_ptr<Link_entry>> links;
    menus.push_back(std::make_unique<Menu>("Menu"));
    for (int level = 1; level < support::DEEP; ++level) {
        Menu& above = *menus.back();
        menus.push_back(std::make_unique<Menu>("Menu"));
        links.push_back(std::make_unique<Link_entry>(menus.back().get()));
        static_cast<Data_entry&>(*links.back()).Set_next(nullptr);
        above.Set_child(links.back().get());
    }
    support::run_on_small_stack([&] {
        EXPECT_EQ(menus.front()->isVisible(true, &device), 1);
        EXPECT_EQ(links.front()->isVisible(), 1);
    });
    EXPECT_EQ(menus[support::DEEP - 2]->Get_has_children(), 1) << "a hidden link counts";
}

TEST_F(Menus_with_links, AskingDoesNotBuildAMountedMenu) {
    int calls = 0;
    const auto count = [&](MenuControl*) -> Data_entry* {
        ++calls;
        return nullptr;
    };
    Link_entry mount(&gain);
    mount.setAsMountLink(count, count);
    setup.Set_child(&mount);
    EXPECT_EQ(setup.isVisible(true, &device), 1);
    EXPECT_EQ(mount.isVisible(true, &device), 1);
    EXPECT_EQ(calls, 0);
}

TEST_F(Menus_with_links, ThePlaceholderNeedsNoChildren) {
    Link_entry to_setup(&setup);
    EXPECT_EQ(to_setup.isVisible(), -1) << "an empty menu";
    setup.Set_entry_visible(-1);
    link_dummy = &setup;
    EXPECT_EQ(to_setup.isVisible(), 1);
    link_dummy = nullptr;
}

}  // namespace
