#include <frontpanel_editors/line_text.h>
#include <frontpanel_editors/value_editor.h>

#include <gtest/gtest.h>

#include <string>

namespace frontpanel {
namespace {

TEST(ScrollingText, ATextThatFitsStays) {
    Scrolling_text text;
    text.set("Van  ");
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(text.show(3), "Van");
    }
}

TEST(ScrollingText, ALongTextIsHeldTwiceAndThenGoesRoundWithThreeBlanks) {
    Scrolling_text text;
    text.set("abc");
    for (const char* const shown :
         {"ab", "ab", "ab", "bc", "c ", "  ", "  ", " a", "ab", "ab", "ab", "bc"}) {
        EXPECT_EQ(text.show(2), shown);
    }
}

TEST(ScrollingText, AnUpdateWithTheSameTextGoesOn) {
    Scrolling_text text;
    text.set("abc");
    for (int i = 0; i < 4; ++i) {
        text.show(2);
    }
    text.update("abc ");
    EXPECT_EQ(text.show(2), "c ");
    text.update("abd");
    EXPECT_EQ(text.show(2), "ab");
}

TEST(ShowWithCursor, TheCursorIsAlwaysOnTheLine) {
    const struct {
        std::size_t cursor;
        const char* text;
        int column;
    } cases[] = {{0, "abcd", 0}, {3, "abcd", 3}, {4, "bcde", 3}, {5, "cdef", 3}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.cursor);
        Editor_view shown;
        show_with_cursor("abcdef", each.cursor, 4, shown);
        EXPECT_EQ(shown.text, each.text);
        EXPECT_EQ(shown.cursor, each.column);
    }
}

}  // namespace
}  // namespace frontpanel
