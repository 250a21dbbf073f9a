#include <frontpanel_editors/text_editor.h>
#include <frontpanel_editors/warning_editor.h>
#include <gtest/gtest.h>

#include "editor_fixture.h"

using namespace frontpanel;

namespace {

using namespace editor_fixture;

constexpr unsigned int WARNING_PID = 65549;

struct Warning : Text_leaf<String_entry> {
    explicit Warning(const std::string& text, unsigned int pid = WARNING_PID)
        : Text_leaf(pid, READ_WRITE, 64u) {
        put(text);
    }
};

TEST(WarningEditor, StartsClosed) {
    Warning_editor editor;
    EXPECT_EQ(editor.press(Editor_key::SELECT), Editor_result::DISCARDED);
    EXPECT_EQ(editor.view(20).text, "");
}

class WarningKeys : public testing::TestWithParam<Editor_key> {};

TEST_P(WarningKeys, AnyKeyAcknowledgesAndChangesNothing) {
    Warning entry("Fan stopped");
    Warning_editor editor;
    editor.Prepare(&entry);
    EXPECT_EQ(editor.press(GetParam()), Editor_result::DISCARDED);
    EXPECT_EQ(entry.text(), "Fan stopped");
}

INSTANTIATE_TEST_SUITE_P(Keys, WarningKeys,
                         testing::Values(Editor_key::UP, Editor_key::DOWN, Editor_key::SELECT,
                                         Editor_key::ESCAPE, Editor_key::COARSER,
                                         Editor_key::FINER));

TEST(WarningEditor, ShowsItsTextWithoutCursorAndLed) {
    Warning entry("Fan stopped");
    Warning_editor editor;
    editor.Prepare(&entry);
    EXPECT_EQ(editor.view(20).text, "Fan stopped");
    EXPECT_EQ(editor.view(20).cursor, Editor_view::NO_CURSOR);
    EXPECT_EQ(editor.view(20).step, "");
    EXPECT_FALSE(editor.view(20).edit_led);
}

TEST(WarningEditor, ALongTextScrollsOnceRoundAndIsHeldAgain) {
    Warning entry("ABCDEF");
    Warning_editor editor;
    editor.Prepare(&entry);
    EXPECT_EQ(frames(editor, 4, 14),
              (std::vector<std::string>{"ABCD", "ABCD", "ABCD", "BCDE", "CDEF", "DEF ", "EF  ",
                                        "F   ", "   A", "  AB", " ABC", "ABCD", "ABCD", "ABCD"}));
}

TEST(WarningEditor, EveryOpeningStartsAtTheBeginningOfTheText) {
    Warning entry("ABCDEF");
    Warning_editor editor;
    editor.Prepare(&entry);
    frames(editor, 4, 5);
    editor.Prepare(&entry);
    EXPECT_EQ(frames(editor, 4, 4), (std::vector<std::string>{"ABCD", "ABCD", "ABCD", "BCDE"}));
}

TEST(WarningEditor, OpensForWarningTextsOnly) {
    Warning warning("Fan stopped");
    Warning text("Label", 200);
    Warning_editor editor;
    operate(text, editor, Data_entry::OPERATION_PREPARE);
    EXPECT_EQ(editor.entry(), nullptr);
    operate(warning, editor, Data_entry::OPERATION_PREPARE);
    EXPECT_EQ(editor.entry(), &warning);
    operate(warning, editor, Data_entry::OPERATION_EXIT_LEDS);
    EXPECT_EQ(editor.entry(), nullptr);
    Text_editor text_editor;
    operate(warning, text_editor, Data_entry::OPERATION_PREPARE);
    EXPECT_EQ(text_editor.entry(), nullptr);
}

}  // namespace
