#include <frontpanel_editors/time_editor.h>
#include <gtest/gtest.h>

#include "editor_fixture.h"

using namespace frontpanel;

namespace {

using namespace editor_fixture;

struct Time : Text_leaf<Time_entry> {
    explicit Time(const std::string& text, Data_access access = READ_WRITE)
        : Text_leaf(220, access, 32u) {
        put(text);
    }
};

struct Case {
    const char* start;
    const char* keys;
    const char* proposed;
};

void PrintTo(const Case& of, std::ostream* out) {
    *out << '"' << of.start << "\" " << of.keys;
}

class TimeEditing : public testing::TestWithParam<Case> {};

TEST_P(TimeEditing, GivesTheTime) {
    Time entry(GetParam().start);
    Time_editor editor;
    editor.Prepare(&entry);
    press_keys(editor, GetParam().keys);
    EXPECT_EQ(editor.proposed_time(), GetParam().proposed);
    EXPECT_EQ(entry.text(), GetParam().start);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
    EXPECT_EQ(entry.text(), GetParam().proposed);
}

INSTANTIATE_TEST_SUITE_P(TimesOfDay, TimeEditing,
                         testing::Values(Case{"09:59", "", "09:59"}, Case{"09:59", "U", "09:59"},
                                         Case{"09:59", "D", "09:58"}, Case{"09:59", "<U", "10:59"},
                                         Case{"09:59", "<99U", "23:59"},
                                         Case{"09:59", "9<99D", "00:59"},
                                         Case{"12:00:59", "U", "12:00:59"},
                                         Case{"12:00:58", "U", "12:00:59"},
                                         Case{"12:00:58", "<5D>D", "12:00:57"}));

INSTANTIATE_TEST_SUITE_P(
    Dates, TimeEditing,
    testing::Values(Case{"2024-02-28", "2U", "2024-02-29"}, Case{"2023-02-28", "2U", "2023-02-28"},
                    Case{"1900-02-28", "2U", "1900-02-28"}, Case{"2000-02-28", "2U", "2000-02-29"},
                    Case{"2024-04-30", "U", "2024-04-30"}, Case{"2024-12-31", "U", "2024-12-31"},
                    // a shorter month or year takes the day back
                    Case{"2024-01-31", "<U", "2024-02-29"}, Case{"2024-02-29", "2<U", "2025-02-28"},
                    Case{"2024-12-01", "<U", "2024-12-01"}, Case{"2024-01-01", "<D", "2024-01-01"},
                    Case{"0001-01-01", "2<D", "0001-01-01"},
                    Case{"9999-01-01", "2<U", "9999-01-01"}));

INSTANTIATE_TEST_SUITE_P(DatesWithATimeOfDay, TimeEditing,
                         testing::Values(Case{"2024-05-01 12:30", "U", "2024-05-01 12:31"},
                                         Case{"2024-05-01T12:30:00", "U", "2024-05-01T12:30:01"},
                                         Case{"2024-05-01T12:30:00Z", "3<U",
                                              "2024-05-02T12:30:00Z"},
                                         Case{"2024-05-01 12:30Z", "<U", "2024-05-01 13:30Z"}));

INSTANTIATE_TEST_SUITE_P(ClocksWithoutAPossibleTime, TimeEditing,
                         testing::Values(Case{"0000-00-00 00:00", "", "0001-01-01 00:00"},
                                         Case{"99:99", "", "23:59"},
                                         Case{"2023-02-31", "", "2023-02-28"}));

class TimeViewing : public testing::TestWithParam<const char*> {};

TEST_P(TimeViewing, AnotherFormIsOnlyViewed) {
    Time entry(GetParam());
    Time_editor editor;
    editor.Prepare(&entry);
    EXPECT_EQ(editor.entry(), &entry);
    press_locked_keys(editor);
    press_keys(editor, "<>");
    EXPECT_EQ(editor.view(20).text, GetParam());
    EXPECT_EQ(editor.view(20).cursor, Editor_view::NO_CURSOR);
    EXPECT_FALSE(editor.view(20).edit_led);
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::DISCARDED);
    EXPECT_EQ(entry.text(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Forms, TimeViewing,
                         testing::Values("", "12", "12:3", "12:30:5", "1:30", "12:30 pm",
                                         "2024/05/01", "24-05-01", "2024-05-01 12", "12:30Z",
                                         "3 days", "12.30"));

TEST(TimeEditor, StartsClosed) {
    Time_editor editor;
    EXPECT_EQ(editor.press(Editor_key::UP), Editor_result::DISCARDED);
    EXPECT_EQ(editor.view(20).text, "");
}

TEST(TimeEditor, EscapeLeavesTheTimeAsItWas) {
    Time entry("12:30");
    Time_editor editor;
    editor.Prepare(&entry);
    press_keys(editor, "U");
    EXPECT_EQ(editor.press(Editor_key::ESCAPE), Editor_result::DISCARDED);
    EXPECT_EQ(entry.text(), "12:30");
}

TEST(TimeEditor, TheCursorStandsUnderTheLastDigitOfTheField) {
    Time entry("2024-05-01 12:30");
    Time_editor editor;
    editor.Prepare(&entry);
    for (const int column : {15, 12, 9, 6, 3}) {
        EXPECT_EQ(editor.view(20).cursor, column);
        press_keys(editor, "<");
    }
}

TEST(TimeEditor, AShortLineShowsThePartAroundTheField) {
    Time entry("2024-05-01 12:30");
    Time_editor editor;
    editor.Prepare(&entry);
    EXPECT_EQ(editor.view(8).text, "<1 12:30");
    EXPECT_EQ(editor.view(8).cursor, 7);
    press_keys(editor, "9<");
    EXPECT_EQ(editor.view(8).text, "2024-05>");
    EXPECT_EQ(editor.view(8).cursor, 3);
}

TEST(TimeEditor, AReadOnlyTimeIsViewedAndScrolls) {
    Time entry("12:30:45", Data_entry::READ_ONLY);
    Time_editor editor;
    editor.Prepare(&entry);
    press_locked_keys(editor);
    EXPECT_EQ(frames(editor, 6, 4),
              (std::vector<std::string>{"12:30>", "12:30>", "12:30>", "<:30:>"}));
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::DISCARDED);
}

// The dispatcher has no step that closes a time's editor.
TEST(TimeEditor, IsOpenedThroughTheDispatcherAndClosedDirectly) {
    Time entry("12:30");
    Time_editor editor;
    operate(entry, editor, Data_entry::OPERATION_PREPARE);
    EXPECT_EQ(editor.entry(), &entry);
    operate(entry, editor, Data_entry::OPERATION_EXIT_LEDS);
    EXPECT_EQ(editor.entry(), &entry);
    editor.ExitLEDs();
    EXPECT_EQ(editor.entry(), nullptr);
}

TEST(TimeEditor, TypedDigitsFillAFieldAndLeadToTheNext) {
    struct Typed_case {
        const char* keys;
        const char* typed;
        const char* proposed;
    };
    constexpr Typed_case CASES[] = {
        {"9<", "2027-02-03 04:05:06", "2027-02-03 04:05:06"},
        {"9<", "20270203040506", "2027-02-03 04:05:06"},
        {"9<", "2027-2-3 4:5:6", "2027-02-03 04:05:06"},
        {"", "99", "2026-11-21 09:59:09"},
        // below the limit when the field is left, a day that the month lacks
        {"9<", "2027-00", "2027-01-21 09:59:30"},
        {"9<", "2026-02-30", "2026-02-03 09:59:30"},
    };
    for (const Typed_case& of : CASES) {
        SCOPED_TRACE(std::string(of.keys) + " " + of.typed);
        Time entry("2026-11-21 09:59:30");
        Time_editor editor;
        editor.Prepare(&entry);
        press_keys(editor, of.keys);
        for (const char* typed = of.typed; *typed != '\0'; ++typed) {
            EXPECT_EQ(editor.type(*typed), Editor_result::OPEN);
        }
        EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::ACCEPTED);
        EXPECT_EQ(entry.text(), of.proposed);
    }
}

}  // namespace
