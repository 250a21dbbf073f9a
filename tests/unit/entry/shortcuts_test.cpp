#include <frontpanel_data/entry.h>
#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <string>

#include "support/capture.h"
#include "support/leaf.h"
#include "support/line_gates.h"

namespace {

using support::capture;
using support::Gate;
using support::Leaf;

const std::string PREFIX = "[getShortcut][entry.cpp][#] Asked to get shortcut for button number ";

class Shortcuts : public testing::Test {
protected:
    struct Answer {
        Data_entry* entry;
        std::string lines;
    };
    Answer ask(int button) {
        Answer answer = {nullptr, ""};
        answer.lines = capture(0x1, [&] { answer.entry = leaf.getShortcut(button); }).out;
        return answer;
    }

    Leaf leaf{"Gain"};
    Leaf target{"Target"};
    std::map<int, ShortcutS> table = {{1, {1, &target, false}}, {2, {2, nullptr, false}}};
};

TEST_F(Shortcuts, WithoutATableThereAreNone) {
    const Answer answer = ask(1);
    EXPECT_EQ(answer.entry, nullptr);
    EXPECT_EQ(answer.lines, PREFIX + "[1], but shortcuts_map is NULL.\n");
}

TEST_F(Shortcuts, AnUnknownButtonHasNone) {
    leaf.setShortcuts(&table);
    for (const int button : {0, 3, -1, INT_MIN, INT_MAX}) {
        const Answer answer = ask(button);
        EXPECT_EQ(answer.entry, nullptr);
        EXPECT_EQ(answer.lines, PREFIX + "[" + std::to_string(button) +
                                    "], but that is not a shortcut button.\n");
    }
    EXPECT_EQ(table.size(), 2u) << "asking adds no row";
}

TEST_F(Shortcuts, AnUnassignedButtonHasNone) {
    leaf.setShortcuts(&table);
    const Answer answer = ask(2);
    EXPECT_EQ(answer.entry, nullptr);
    EXPECT_EQ(answer.lines, PREFIX + "[2], but that is not assigned.\n");
}

TEST_F(Shortcuts, AnAssignedButtonJumps) {
    leaf.setShortcuts(&table);
    const Answer answer = ask(1);
    EXPECT_EQ(answer.entry, &target);
    EXPECT_EQ(answer.lines, PREFIX + "[1], returning entry [Target].\n");
}

TEST_F(Shortcuts, TheTableIsTheApplicationsAndSeenAsItIs) {
    leaf.setShortcuts(&table);
    table[2].entry = &leaf;
    EXPECT_EQ(ask(2).entry, &leaf);
    leaf.setShortcuts(nullptr);
    EXPECT_EQ(ask(2).entry, nullptr);
}

TEST_F(Shortcuts, AnEntryOfTheDynamicTreeIsDeliveredLikeAnyOther) {
    table[1].dynamic_entry = true;
    leaf.setShortcuts(&table);
    EXPECT_EQ(ask(1).entry, &target);
}

TEST_F(Shortcuts, LinesAreInTheCategoryOfShortcuts) {
    const auto look_up = [&](int button) { return [this, button] { leaf.getShortcut(button); }; };
    support::expect_line_gate("shortcuts_map is NULL.\n", 0x200001, Gate::LEAF, look_up(1));
    leaf.setShortcuts(&table);
    support::expect_line_gate("returning entry [Target].\n", 0x200001, Gate::LEAF, look_up(1));
    support::expect_line_gate("not assigned.\n", 0x200001, Gate::LEAF, look_up(2));
    support::expect_line_gate("not a shortcut button.\n", 0x200001, Gate::LEAF, look_up(3));
}

}  // namespace
