// A link's own place in the menu, its escape destinations and its mounted menu.
#include <gtest/gtest.h>

#include <stdexcept>

#include "support/capture.h"
#include "support/line_gates.h"
#include "unit/entry/link_fixture.h"

namespace {

using support::capture;
using support::expect_line_gate;
using support::Gate;

class Link_navigation : public testing::Test {
protected:
    Link_navigation() {
        housed.Set_next(&housed_next);
        housed.Set_previous(&housed_previous);
        housed.Set_child(&housed_child);
    }

    Menu menu{"Input 1"};
    Housed housed_next{"Next"}, housed_previous{"Previous"}, housed_child{"Child"}, other{"Other"};
    Housed housed{"Gain", support::any_index(), &menu};
    Open_link link{&housed};
    Data_entry& base = link;
};

TEST_F(Link_navigation, FallsThroughToTheHousedEntry) {
    EXPECT_EQ(link.Get_next(), &housed_next);
    EXPECT_EQ(link.Get_previous(), &housed_previous);
    EXPECT_EQ(link.Get_parent(), &menu);
    EXPECT_EQ(link.Get_child(), &housed_child);
    housed.Set_next(&other);
    EXPECT_EQ(link.Get_next(), &other) << "asked anew";
}

TEST_F(Link_navigation, AnswersWithWhatWasSet) {
    EXPECT_EQ(base.Set_next(&other), nullptr);
    EXPECT_EQ(link.Get_next(), &other);
    EXPECT_EQ(link.Get_previous(), &housed_previous) << "each direction for itself";
    EXPECT_EQ(base.Set_previous(&other), nullptr);
    EXPECT_EQ(link.Get_previous(), &other);
    EXPECT_EQ(base.Set_parent(&other), nullptr);
    EXPECT_EQ(link.Get_parent(), &other);
    EXPECT_EQ(base.Set_child(&other), nullptr);
    EXPECT_EQ(link.Get_child(), &other);
}

TEST_F(Link_navigation, NullIsAnAnswerOnceItWasSet) {
    EXPECT_EQ(base.Set_next(nullptr), nullptr);
    EXPECT_EQ(base.Set_previous(nullptr), nullptr);
    EXPECT_EQ(base.Set_parent(nullptr), nullptr);
    EXPECT_EQ(base.Set_child(nullptr), nullptr);
    EXPECT_EQ(link.Get_next(), nullptr);
    EXPECT_EQ(link.Get_previous(), nullptr);
    EXPECT_EQ(link.Get_parent(), nullptr);
    EXPECT_EQ(link.Get_child(), nullptr);
    EXPECT_TRUE(link.valid_next_link && link.valid_previous_link && link.valid_parent_link &&
                link.valid_child_link);
}

TEST_F(Link_navigation, SettingDeliversThePreviousLinkOfItsOwn) {
    base.Set_next(&other);
    EXPECT_EQ(base.Set_next(nullptr), &other);
    base.Set_previous(&other);
    EXPECT_EQ(base.Set_previous(nullptr), &other);
    base.Set_parent(&other);
    EXPECT_EQ(base.Set_parent(nullptr), &other);
    base.Set_child(&other);
    EXPECT_EQ(base.Set_child(nullptr), &other);
}

TEST_F(Link_navigation, SettingLeavesTheBaseFieldsAndTheHousedEntry) {
    Open_link later(&housed);
    Data_entry& entry = later;
    entry.Set_next(&other);
    entry.Set_previous(&other);
    entry.Set_parent(&other);
    entry.Set_child(&other);
    EXPECT_EQ(entry.Get_next(), &housed_next);
    EXPECT_EQ(entry.Get_previous(), &housed_previous);
    EXPECT_EQ(entry.Get_parent(), &menu);
    EXPECT_EQ(entry.Get_child(), &housed_child);
    EXPECT_EQ(housed.Get_next(), &housed_next);
    EXPECT_EQ(housed.Get_parent(), &menu);
}

TEST_F(Link_navigation, TheLinkFormsKnowOnlyWhatWasSet) {
    EXPECT_EQ(link.Get_parent_link(), nullptr);
    EXPECT_EQ(link.Get_child_link(), nullptr);
    EXPECT_FALSE(link.isValidParentLink());
    base.Set_parent(&other);
    base.Set_child(&housed_next);
    EXPECT_EQ(link.Get_parent_link(), &other);
    EXPECT_EQ(link.Get_child_link(), &housed_next);
    EXPECT_TRUE(link.isValidParentLink());
}

TEST_F(Link_navigation, OfALinkToNothingLeadsNowhere) {
    Open_link nowhere(nullptr);
    Data_entry& entry = nowhere;
    EXPECT_EQ(nowhere.Get_next(), nullptr);
    entry.Set_next(&other);
    entry.Set_previous(&other);
    entry.Set_parent(&other);
    entry.Set_child(&other);
    EXPECT_EQ(nowhere.Get_next(), nullptr);
    EXPECT_EQ(nowhere.Get_previous(), nullptr);
    EXPECT_EQ(nowhere.Get_parent(), nullptr);
    EXPECT_EQ(nowhere.Get_child(), nullptr);
    EXPECT_EQ(nowhere.Get_parent_link(), &other);
    EXPECT_EQ(nowhere.Get_child_link(), &other);
}

TEST_F(Link_navigation, TellsEachNewNeighbour) {
    const struct {
        const char* function;
        const char* direction;
        Data_entry* (Data_entry::*set)(Data_entry*);
    } cases[] = {{"Set_next", "next", &Data_entry::Set_next},
                 {"Set_previous", "previous", &Data_entry::Set_previous},
                 {"Set_parent", "parent", &Data_entry::Set_parent},
                 {"Set_child", "child", &Data_entry::Set_child}};
    for (const auto& test : cases) {
        const std::string start = "[" + std::string(test.function) +
                                  "][link_navigation.cpp][#] [Input 1.Gain]'s New " +
                                  test.direction + " = ";
        EXPECT_EQ(capture(0x80000, [&] { (base.*test.set)(&other); }).out, start + "[Other]\n");
        const auto clear = [&] { (base.*test.set)(nullptr); };
        EXPECT_EQ(capture(0x80000, clear).out, start + "[NULL]\n");
        expect_line_gate(start + "[NULL]\n", 0x80001, Gate::LEAF, clear);
    }
}

// This one line has no blank at its end.
TEST_F(Link_navigation, TellsThatTheChildIsAskedFor) {
    const auto ask = [&] { link.Get_child(); };
    const char* const line = "[Get_child][link_navigation.cpp][#]\n";
    EXPECT_EQ(capture(0x80000, ask).out, line);
    expect_line_gate(line, 0x80001, Gate::LEAF, ask);
    const auto ask_others = [&] {
        link.Get_parent();
        link.Get_next();
        link.Get_previous();
        link.Get_parent_link();
        link.Get_child_link();
    };
    EXPECT_EQ(capture(0x80000, ask_others).out, "");
}

// --- escape destinations

TEST_F(Link_navigation, EveryBitSetsItsEscapeDestination) {
    for (int bits = 0; bits < 16; ++bits) {
        Open_link fresh(&housed);
        fresh.Set_escape_node(bits, &other);
        for (const int code : {1, 2, 4}) {
            EXPECT_EQ(fresh.Get_escape_node(code), (bits & code) != 0 ? &other : nullptr)
                << "bits " << bits << " code " << code;
        }
    }
}

TEST_F(Link_navigation, EscapeDestinationsAreReplacedEachForItself) {
    link.Set_escape_node(7, &other);
    link.Set_escape_node(2, nullptr);
    EXPECT_EQ(link.Get_escape_node(1), &other);
    EXPECT_EQ(link.Get_escape_node(2), nullptr);
    EXPECT_EQ(link.Get_escape_node(4), &other);
}

TEST_F(Link_navigation, AnyOtherCodeEscapesToTheLink) {
    link.Set_escape_node(5, &other);
    for (const int code : {0, 3, 5, 6, 7, 8, -1}) {
        EXPECT_EQ(link.Get_escape_node(code), &link) << code;
    }
}

// --- mounted menus

class Mount_link : public Link_navigation {
protected:
    void mount() {
        link.setAsMountLink(
            [this](MenuControl* control) {
                EXPECT_EQ(control, nullptr);
                ++built;
                return first;
            },
            [this](MenuControl* control) {
                EXPECT_EQ(control, nullptr);
                ++destroyed;
                return &other;
            });
    }

    Housed mounted{"Mounted"};
    Data_entry* first = &mounted;
    int built = 0;
    int destroyed = 0;
};

const char* const NO_CALLBACK =
    "ERROR. Link entry is a mountable link, but does not have a valid function pointer to create "
    "the dynamic menu.";

// The prefix of these two lines has no file, so the line number is masked here.
std::string with_masked_line(std::string text, const std::string& function) {
    const std::string start = "[" + function + "][";
    const std::size_t begin = text.find(start);
    if (begin == std::string::npos) {
        return text;
    }
    const std::size_t number = begin + start.size();
    const std::size_t end = text.find(']', number);
    EXPECT_EQ(text.find_first_not_of("0123456789", number), end);
    return text.replace(number, end - number, "#");
}

TEST_F(Mount_link, BuildsItsMenuOnEachVisit) {
    mount();
    EXPECT_TRUE(link.isMountLink());
    EXPECT_EQ(built, 0);
    EXPECT_EQ(link.Get_child(), &mounted);
    EXPECT_EQ(link.Get_child(), &mounted);
    EXPECT_EQ(built, 2) << "nobody counts";
    EXPECT_EQ(link.Get_parent(), nullptr);
    EXPECT_EQ(link.Get_parent(), nullptr);
    EXPECT_EQ(destroyed, 2);
}

TEST_F(Mount_link, EnteringLeavesTheChildLinkAlone) {
    mount();
    EXPECT_EQ(link.Get_child(), &mounted);
    EXPECT_FALSE(link.valid_child_link);
    EXPECT_EQ(link.child_link, nullptr);
    base.Set_child(&other);
    EXPECT_EQ(link.Get_child(), &mounted);
    EXPECT_EQ(link.Get_child_link(), &other);
    EXPECT_TRUE(link.valid_child_link);
}

TEST_F(Mount_link, LeavingDeliversTheLinksParentAndInvalidatesIt) {
    mount();
    base.Set_parent(&menu);
    EXPECT_TRUE(link.isValidParentLink());
    EXPECT_EQ(link.Get_parent(), &menu) << "and not what the callback returned";
    EXPECT_FALSE(link.isValidParentLink());
    EXPECT_EQ(link.Get_parent_link(), &menu) << "still stored";
    EXPECT_EQ(link.Get_parent(), &menu);
}

TEST_F(Mount_link, OtherDirectionsAreAsForEveryLink) {
    mount();
    EXPECT_EQ(link.Get_next(), &housed_next);
    EXPECT_EQ(link.Get_previous(), &housed_previous);
    EXPECT_EQ(link.Get_parent_link(), nullptr);
    EXPECT_EQ(link.Get_child_link(), nullptr);
    EXPECT_EQ(built + destroyed, 0);
}

TEST_F(Mount_link, NeedsNoHousedEntry) {
    Open_link nowhere(nullptr);
    nowhere.setAsMountLink([this](MenuControl*) { return &mounted; },
                           [](MenuControl*) -> Data_entry* { return nullptr; });
    EXPECT_EQ(nowhere.Get_child(), &mounted);
    static_cast<Data_entry&>(nowhere).Set_parent(&menu);
    EXPECT_EQ(nowhere.Get_parent(), &menu);
}

TEST_F(Mount_link, TellsWhatItDoes) {
    const auto make = [&] { mount(); };
    const char* const made =
        "[setAsMountLink][link_navigation.cpp][#] Link has become a Mount "
        "Link.\n";
    EXPECT_EQ(capture(0x80000, make).out, made);
    expect_line_gate(made, 0x80001, Gate::LEAF, make);

    const auto enter = [&] { link.Get_child(); };
    const std::string entering =
        "[Get_child][link_navigation.cpp][#] Mount link about to generate menu.\n";
    EXPECT_EQ(capture(0x80000, enter).out, "[Get_child][link_navigation.cpp][#]\n" + entering);
    expect_line_gate(entering, 0x80001, Gate::LEAF, enter);

    const auto leave = [&] { link.Get_parent(); };
    const std::string prefix = "[Get_parent][link_navigation.cpp][#] ";
    const std::string checking = prefix + "Mount link checking destroy callback...\n";
    const std::string destroying = prefix + "Mount link about to destroy menu.\n";
    const std::string without = prefix + "Warning, parent is null\n";
    EXPECT_EQ(capture(0x80000, leave).out, checking + destroying + without);
    for (const std::string& line : {checking, destroying, without}) {
        expect_line_gate(line, 0x80001, Gate::LEAF, leave);
    }
    base.Set_parent(&menu);
    const std::string with = prefix + "Returning links parent=[Input 1]\n";
    EXPECT_EQ(capture(0x80000, leave).out, checking + destroying + with);
    expect_line_gate(with, 0x80001, Gate::LEAF, leave);
}

TEST_F(Mount_link, AFailedCreationLeadsToTheLinksParent) {
    mount();
    first = nullptr;
    base.Set_parent(&menu);
    Data_entry* found = nullptr;
    const auto enter = [&] { found = link.Get_child(); };
    const char* const line =
        "[Get_child][link_navigation.cpp][#] Dynamic menu creation failed "
        "(Child entry is null). Reverting to parent link.\n";
    EXPECT_EQ(capture(0, enter).out, line) << "told whatever the mask is";
    EXPECT_EQ(found, &menu);
    EXPECT_TRUE(link.isValidParentLink());
    expect_line_gate(line, 0, Gate::ALWAYS, enter);
}

TEST_F(Mount_link, AFailedCreationWithoutAParentLeadsNowhere) {
    mount();
    first = nullptr;
    Data_entry* found = &other;
    capture(0, [&] { found = link.Get_child(); });
    EXPECT_EQ(found, nullptr);
}

TEST_F(Mount_link, ReportsAMissingCallbackWhenItIsNeeded) {
    EXPECT_EQ(capture(0, [&] { link.setAsMountLink(FunctionT1(), FunctionT1()); }).out, "");
    EXPECT_TRUE(link.isMountLink());
    base.Set_parent(&menu);
    base.Set_child(&other);
    Data_entry* found = &other;
    const auto enter = [&] { found = link.Get_child(); };
    EXPECT_EQ(with_masked_line(capture(0, enter).out, "Get_child"),
              std::string("[Get_child][#] ") + NO_CALLBACK + "\n");
    EXPECT_EQ(found, nullptr);
    expect_line_gate(std::string(NO_CALLBACK) + "\n", 0, Gate::ALWAYS, enter);

    found = &other;
    const auto leave = [&] { found = link.Get_parent(); };
    EXPECT_EQ(with_masked_line(capture(0, leave).out, "Get_parent"),
              std::string("[Get_parent][#] ") + NO_CALLBACK)
        << "the same text without an end of line";
    EXPECT_EQ(found, nullptr);
    EXPECT_TRUE(link.isValidParentLink()) << "nothing was left";
    expect_line_gate(NO_CALLBACK, 0, Gate::ALWAYS, leave);
}

TEST_F(Mount_link, EachCallbackCanBeMissing) {
    link.setAsMountLink([this](MenuControl*) { return &mounted; }, FunctionT1());
    EXPECT_EQ(link.Get_child(), &mounted);
    Data_entry* found = &other;
    capture(0, [&] { found = link.Get_parent(); });
    EXPECT_EQ(found, nullptr);
}

TEST_F(Mount_link, WhatACallbackThrowsReachesTheCaller) {
    base.Set_parent(&menu);
    link.setAsMountLink([](MenuControl*) -> Data_entry* { throw std::runtime_error("full"); },
                        [](MenuControl*) -> Data_entry* { throw std::runtime_error("busy"); });
    EXPECT_THROW(link.Get_child(), std::runtime_error);
    EXPECT_THROW(link.Get_parent(), std::runtime_error);
    EXPECT_TRUE(link.isValidParentLink()) << "the menu was not left";
}

TEST_F(Mount_link, CallbacksLiveAsLongAsTheLink) {
    const auto alive = std::make_shared<int>(0);
    {
        Link_entry short_lived(&housed);
        short_lived.setAsMountLink([alive](MenuControl*) -> Data_entry* { return nullptr; },
                                   FunctionT1());
        EXPECT_EQ(alive.use_count(), 2);
    }
    EXPECT_EQ(alive.use_count(), 1);
}

}  // namespace
