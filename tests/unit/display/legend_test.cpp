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

bool lists(const Items& legend, const std::string& item) {
    return std::find(legend.begin(), legend.end(), item) != legend.end();
}

TEST(Legend, ListsWhatTheKeysOfAMenuDo) {
    EXPECT_EQ(legend_of(Panel_mode::MENU, "", 'q'),
              (Items{"Up/Down move", "Enter/Right open", "Esc/Left/Backspace back",
                     "1-9/F1-F12 shortcuts", "f favourites", "d log", "q quit"}));
}

TEST(Legend, LeavesOutABackThatDoesNothing) {
    EXPECT_EQ(legend_of(Panel_mode::HOMESCREEN, "", 'q'),
              (Items{"Up/Down cursor", "Enter/Right menu", "1-9/F1-F12 shortcuts", "f favourites",
                     "d log", "q quit"}));
    for (const std::string& item : legend_of(Panel_mode::TOP_MENU, "", 'q')) {
        EXPECT_EQ(item.find("back"), std::string::npos) << item;
    }
}

TEST(Legend, ListsTheCharactersThatAnEditorTakesAndNoOtherMeaningOfThem) {
    EXPECT_EQ(legend_of(Panel_mode::NUMBER, "0123456789-.", 'q'),
              (Items{"Up/Down change", "+/Left larger step", "Right smaller step", "Enter accept",
                     "Esc discard", "Backspace erase", "0-9 - . type", "d log", "q quit"}));
    EXPECT_EQ(
        legend_of(Panel_mode::TEXT, printable_characters(), 'q'),
        (Items{"Up/Down change", "Left/Right cursor", "Ins insert", "Del delete", "Backspace erase",
               "Enter accept", "Esc discard", "Letters, digits, signs type"}));
}

TEST(Legend, ListsTheKeysOfAQuestion) {
    EXPECT_EQ(legend_of(Panel_mode::QUESTION, "", '\0'),
              (Items{"Enter yes", "Esc/Backspace no", "d log"}));
}

TEST(Legend, ALockedPanelAsksForItsPin) {
    EXPECT_EQ(legend_of(Panel_mode::LOCKED, "", 'q'),
              (Items{"Any key asks for the PIN", "q quit"}));
    EXPECT_TRUE(lists(legend_of(Panel_mode::PIN, "", 'q'), "Up/Down digit"));
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

TEST(Legend, EveryModeFitsFortyColumns) {
    for (const Panel_mode mode : MODES) {
        for (const std::string& characters :
             {std::string(), std::string("0123456789-."), printable_characters()}) {
            const Items lines = folded(legend_of(mode, characters, 'q'), 40);
            ASSERT_FALSE(lines.empty());
            EXPECT_LE(static_cast<int>(lines.size()), most_legend_lines(40, 'q'));
            for (const std::string& line : lines) {
                EXPECT_LE(line.size(), 40U) << line;
            }
        }
    }
}

}  // namespace
}  // namespace frontpanel
