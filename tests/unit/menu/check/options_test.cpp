#include "unit/menu/items_fixture.h"

namespace frontpanel {
namespace {

TEST(Options, WarnsOfAnOptionThatIsAPatternByAccident) {
    const std::string text = menu_text(
        LEVEL, R"({"type": "range", "name": "Level", "pid": 5, "options": ["slot2", "tone"]})",
        R"({"slotn": 4, "tone": 1, "dolby": 1})");
    EXPECT_EQ(
        simulated_text(text).warnings,
        (Lines{placed(
            text,
            "menu.json: /options/tone@: warning: the letter 'n' makes this option a pattern in which "
            "'n' stands for a number")}));
}

// The item that is wrong may be the one that uses the option as it is meant.
TEST(Options, AnOptionIsNotTakenForAnAccidentalPatternWhileItemsAreWrong) {
    const std::string wrong =
        menu_text(LEVEL, R"({"type": "range", "name": "Slot", "pid": 6, "options": ["slot1"]})",
                  R"({"slotn": 2})");
    EXPECT_EQ(complaints_of(wrong), Lines{error_of(wrong)});
}

}  // namespace
}  // namespace frontpanel
