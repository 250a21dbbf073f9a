#include <frontpanel_display/legend.h>

#include <gtest/gtest.h>

#include <algorithm>

#include <frontpanel_display/key_table.h>

namespace frontpanel {
namespace {

using Items = std::vector<std::string>;

constexpr Panel_mode MODES[] = {
    Panel_mode::HOMESCREEN, Panel_mode::HOME_CURSOR, Panel_mode::TOP_MENU, Panel_mode::MENU,
    Panel_mode::NUMBER,     Panel_mode::OPTIONS,     Panel_mode::FIELDS,   Panel_mode::TEXT,
    Panel_mode::VIEW,       Panel_mode::NOTICE,      Panel_mode::QUESTION, Panel_mode::LOG,
    Panel_mode::LOG_LIST,   Panel_mode::ASLEEP,      Panel_mode::LOCKED,   Panel_mode::PIN};

// Of a menu with favourites and every shortcut.
const Key_uses ALL{true, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}};
const Key_uses NONE{};

bool lists(const Items& legend, const std::string& item) {
    return std::find(legend.begin(), legend.end(), item) != legend.end();
}

TEST(Legend, ListsWhatTheKeysOfAMenuDo) {
    EXPECT_EQ(legend_of(Panel_mode::MENU, "", ALL, 'q'),
              (Items{"Up/Down move", "Enter/Right open", "Esc/Left/Backspace back",
                     "1-9/F1-F12 shortcuts", "f favourites", "d log", "q quit"}));
}

TEST(Legend, LeavesOutABackThatDoesNothing) {
    EXPECT_EQ(legend_of(Panel_mode::HOMESCREEN, "", ALL, 'q'),
              (Items{"Up/Down cursor", "Enter/Right menu", "1-9/F1-F12 shortcuts", "f favourites",
                     "d log", "q quit"}));
    for (const std::string& item : legend_of(Panel_mode::TOP_MENU, "", ALL, 'q')) {
        EXPECT_EQ(item.find("back"), std::string::npos) << item;
    }
}

TEST(Legend, ListsTheCharactersThatAnEditorTakesAndNoOtherMeaningOfThem) {
    EXPECT_EQ(legend_of(Panel_mode::NUMBER, "0123456789-.", ALL, 'q'),
              (Items{"Up/Down change", "+/Left larger step", "Right smaller step", "Enter accept",
                     "Esc discard", "Backspace erase", "0-9 - . type", "d log", "q quit"}));
    EXPECT_EQ(
        legend_of(Panel_mode::TEXT, printable_characters(), ALL, 'q'),
        (Items{"Up/Down change", "Left/Right cursor", "Ins insert", "Del delete", "Backspace erase",
               "Enter accept", "Esc discard", "Letters, digits, signs type"}));
}

TEST(Legend, ListsTheKeysOfAQuestion) {
    EXPECT_EQ(legend_of(Panel_mode::QUESTION, "", ALL, '\0'),
              (Items{"Enter yes", "Esc/Backspace no", "d log"}));
}

TEST(Legend, ALockedPanelAsksForItsPin) {
    EXPECT_EQ(legend_of(Panel_mode::LOCKED, "", NONE, 'q'),
              (Items{"Any key asks for the PIN", "q quit"}));
    EXPECT_TRUE(lists(legend_of(Panel_mode::PIN, "", NONE, 'q'), "Up/Down digit"));
    EXPECT_TRUE(lists(legend_of(Panel_mode::PIN, "0123456789", NONE, 'q'), "0-9 type"));
}

TEST(Legend, FoldsBetweenItemsOnly) {
    EXPECT_EQ(folded({"Up move", "Enter open", "q quit"}, 20),
              (Items{"Up move  Enter open", "q quit"}));
    EXPECT_EQ(folded({"Up move", "Enter open", "q quit"}, 19),
              (Items{"Up move  Enter open", "q quit"}));
    EXPECT_EQ(folded({"Up move", "Enter open", "q quit"}, 18),
              (Items{"Up move", "Enter open  q quit"}));
    EXPECT_EQ(folded({}, 18), Items{});
}

TEST(Legend, OffersFavouritesAndShortcutsThatTheMenuHas) {
    const auto items = [](const Key_uses& uses) {
        Items legend = legend_of(Panel_mode::MENU, "", uses, 'q');
        return Items(legend.begin() + 3, legend.end() - 2);
    };
    EXPECT_EQ(items({}), Items{});
    EXPECT_EQ(items({true, {}}), Items{"f favourites"});
    EXPECT_EQ(items({false, {3}}), Items{"3/F3 shortcuts"});
    EXPECT_EQ(items({false, {1, 2, 3}}), Items{"1-3/F1-F3 shortcuts"});
    EXPECT_EQ(items({false, {9, 10}}), Items{"9/F9-F10 shortcuts"});
    EXPECT_EQ(items({false, {10, 12}}), Items{"F10/F12 shortcuts"});
    EXPECT_EQ(items({false, {11, 40}}), Items{"F11 shortcuts"});
    EXPECT_EQ(items({false, {40, 99}}), Items{}) << "no key of a keyboard";
    EXPECT_EQ(items({false, {1, 2, 4, 5, 11}}), Items{"1-9/F1-F12 shortcuts"}) << "with gaps";
}

TEST(Legend, ListsTheKeysThatTurnPages) {
    Key_uses uses;
    uses.turns_pages = true;
    EXPECT_EQ(legend_of(Panel_mode::NOTICE, "", uses, 'q'),
              (Items{"Up/Down page", "Any other key acknowledges", "d log", "q quit"}));
    EXPECT_EQ(legend_of(Panel_mode::QUESTION, "", uses, 'q'),
              (Items{"Up/Down page", "Enter yes", "Esc/Backspace no", "d log", "q quit"}));
    EXPECT_EQ(legend_of(Panel_mode::NOTICE, "", NONE, 'q'),
              (Items{"Any key acknowledges", "d log", "q quit"}));
    EXPECT_EQ(legend_of(Panel_mode::MENU, "", uses, 'q'),
              legend_of(Panel_mode::MENU, "", NONE, 'q'));
    EXPECT_EQ(most_legend_lines(40, 'q'), 4);
}

TEST(Legend, IsThatOfTheFrame) {
    Frame frame{Lcd({20, 2}), Leds()};
    frame.mode = Panel_mode::HOMESCREEN;
    frame.keys.has_favourites = true;
    EXPECT_EQ(legend_of(frame, 'q'),
              (Items{"Up/Down cursor", "Enter/Right menu", "f favourites", "d log", "q quit"}));
}

TEST(Legend, EveryModeFitsFortyColumns) {
    const Key_uses paged{true, {1, 2, 4, 5, 7, 8, 10, 11}, true};
    for (const Panel_mode mode : MODES) {
        for (const std::string& characters :
             {std::string(), std::string("0123456789-."), printable_characters()}) {
            for (const Key_uses& uses : {ALL, NONE, paged}) {
                const Items lines = folded(legend_of(mode, characters, uses, 'q'), 40);
                ASSERT_FALSE(lines.empty());
                EXPECT_LE(static_cast<int>(lines.size()), most_legend_lines(40, 'q'));
                for (const std::string& line : lines) {
                    EXPECT_LE(line.size(), 40U) << line;
                }
            }
        }
    }
}

}  // namespace
}  // namespace frontpanel
