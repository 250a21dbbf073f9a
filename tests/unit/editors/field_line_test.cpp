#include <frontpanel_editors/field_line.h>

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

Field_line::Limits hours_and_minutes(std::size_t field) {
    return field == 0 ? Field_line::Limits{0, 23} : Field_line::Limits{0, 59};
}

Field_line clock() {
    Field_line line;
    line.set({{9, 2, ""}, {58, 2, ":"}}, "Z");
    return line;
}

TEST(FieldLine, ShowsItsFieldsWithZerosAndTheTextsBetweenThem) {
    EXPECT_EQ(clock().text(), "09:58Z");
}

TEST(FieldLine, TheLastFieldIsChosenFirstAndTheEndsHoldTheCursor) {
    Field_line line = clock();
    EXPECT_EQ(line.chosen(), 1U);
    line.step(Editor_key::FINER, {}, hours_and_minutes);
    EXPECT_EQ(line.chosen(), 1U);
    line.step(Editor_key::COARSER, {}, hours_and_minutes);
    line.step(Editor_key::COARSER, {}, hours_and_minutes);
    EXPECT_EQ(line.chosen(), 0U);
}

TEST(FieldLine, AStepStopsAtTheLimitOrWraps) {
    Field_line line = clock();
    line.step(Editor_key::UP, {5, false}, hours_and_minutes);
    EXPECT_EQ(line.value(1), 59);
    line.step(Editor_key::UP, {1, false}, hours_and_minutes);
    EXPECT_EQ(line.value(1), 59);
    line.step(Editor_key::UP, {1, true}, hours_and_minutes);
    EXPECT_EQ(line.value(1), 0);
    line.step(Editor_key::DOWN, {1, true}, hours_and_minutes);
    EXPECT_EQ(line.value(1), 59);
    EXPECT_EQ(line.value(0), 9);
}

TEST(FieldLine, OtherKeysChangeNothing) {
    Field_line line = clock();
    for (const Editor_key key : {Editor_key::INSERT, Editor_key::DELETE, Editor_key::SELECT}) {
        line.step(key, {}, hours_and_minutes);
    }
    EXPECT_EQ(line.text(), "09:58Z");
    EXPECT_EQ(line.chosen(), 1U);
}

TEST(FieldLine, EveryFieldIsPutWithinItsLimits) {
    Field_line line;
    line.set({{99, 2, ""}, {-3, 2, ":"}});
    line.keep_limits(hours_and_minutes);
    EXPECT_EQ(line.text(), "23:00");
}

TEST(FieldLine, TheCursorIsOnTheLastDigitOfTheChosenField) {
    Field_line line = clock();
    Editor_view shown;
    line.draw(16, shown);
    EXPECT_EQ(shown.text, "09:58Z");
    EXPECT_EQ(shown.cursor, 4);
    line.step(Editor_key::COARSER, {}, hours_and_minutes);
    line.draw(16, shown);
    EXPECT_EQ(shown.cursor, 1);
}

TEST(FieldLine, ARowWithoutFieldsIsItsText) {
    Field_line line;
    line.set({}, "--");
    EXPECT_EQ(line.text(), "--");
}

}  // namespace
}  // namespace frontpanel
