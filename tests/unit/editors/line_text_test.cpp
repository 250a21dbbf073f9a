#include <frontpanel_editors/line_text.h>
#include <frontpanel_editors/value_editor.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace frontpanel {
namespace {

using Texts = std::vector<std::string>;

Texts frames(Scrolling_text& text, int columns, int count) {
    Texts shown;
    for (int i = 0; i < count; ++i) {
        shown.push_back(text.show(columns));
    }
    return shown;
}

TEST(LineText, WidthsCountCharactersAndStrayBytes) {
    EXPECT_EQ(width_of(""), 0);
    EXPECT_EQ(width_of("abc"), 3);
    EXPECT_EQ(width_of("Gr\xc3\xbcn"), 4);
    EXPECT_EQ(width_of("\xe2\x82\xac 5"), 3);
    EXPECT_EQ(width_of("\xf0\x9f\x98\x80"), 1);
    EXPECT_EQ(width_of("\xfc\xbc"), 2);      // ISO-8859-1
    EXPECT_EQ(width_of("\xc3"), 1);          // cut
    EXPECT_EQ(width_of("\xed\xa0\x80"), 3);  // a surrogate
    EXPECT_EQ(width_of("\xc0\xaf"), 2);      // longer than needed
}

TEST(LineText, CombiningCharactersTakeNoColumn) {
    EXPECT_EQ(width_of("e\xcc\x81t\xcc\x81"), 2);
    EXPECT_EQ(width_of("\xcc\x81\xcc\x81x"), 2);
    EXPECT_EQ(start_of("e\xcc\x81t", 1), "e\xcc\x81");
    std::string text = "ab";
    for (int i = 0; i < 1000; ++i) {
        text += "\xcc\x81";
    }
    EXPECT_EQ(width_of(text + "c"), 3);
    Scrolling_text scrolling;
    scrolling.set("e\xcc\x81xyz");
    EXPECT_EQ(frames(scrolling, 3, 5),
              (Texts{"e\xcc\x81xy", "e\xcc\x81xy", "e\xcc\x81xy", "xyz", "yz "}));
}

TEST(LineText, ARestBeginsWithACharacter) {
    EXPECT_EQ(rest_of("gr\xc3\xbcn", 2), "\xc3\xbcn");
    EXPECT_EQ(rest_of("e\xcc\x81t", 1), "t");
    EXPECT_EQ(rest_of("ab", 0), "ab");
    EXPECT_EQ(rest_of("ab", 3), "");
}

TEST(LineText, LinesAreBrokenAtBlanks) {
    EXPECT_EQ(wrapped("away: it was ended by signal 15", 20),
              (Texts{"away: it was ended", "by signal 15"}));
    EXPECT_EQ(wrapped("a b", 1), (Texts{"a", "b"}));
    EXPECT_EQ(wrapped("gr\xc3\xbc\xc3\xbcn", 5), Texts{"gr\xc3\xbc\xc3\xbcn"});
    EXPECT_EQ(wrapped("ab cd", 5), Texts{"ab cd"});
    EXPECT_EQ(wrapped(" a   b ", 5), Texts{"a b"});
    EXPECT_EQ(wrapped("", 5), Texts{});
}

TEST(LineText, AWordThatIsLongerThanALineHasSeveral) {
    EXPECT_EQ(wrapped("no /sys/class/rtc here", 6),
              (Texts{"no", "/sys/c", "lass/r", "tc", "here"}));
    EXPECT_EQ(wrapped("abcdef", 6), Texts{"abcdef"});
    EXPECT_EQ(wrapped("abcdefg h", 6), (Texts{"abcdef", "g h"}));
    EXPECT_EQ(wrapped("abc", 1), (Texts{"a", "b", "c"}));
}

TEST(LineText, ANumberThatIsLongerThanALineGoesOnByItsMarks) {
    EXPECT_EQ(wrapped("123456", 6), Texts{"123456"});
    EXPECT_EQ(wrapped("1234567", 6), (Texts{"12345>", "<67"}));
    EXPECT_EQ(wrapped("12345678901234 dB", 6), (Texts{"12345>", "<6789>", "<01234", "dB"}));
    EXPECT_EQ(wrapped("1234", 3), (Texts{"123", "4"}));
}

TEST(LineText, ANumberStaysWithItsGroupsOfDigits) {
    EXPECT_EQ(wrapped("limit 1 000 000", 13), (Texts{"limit", "1 000 000"}));
    EXPECT_EQ(wrapped("-12 500,75 of 3", 12), (Texts{"-12 500,75", "of 3"}));
    EXPECT_EQ(wrapped("at 12 30", 5), (Texts{"at 12", "30"}));
    EXPECT_EQ(wrapped("at 12 3000", 5), (Texts{"at 12", "3000"}));
}

TEST(LineText, ANumberWithMoreGroupsThanALineGoesOnByItsMarks) {
    EXPECT_EQ(wrapped("1 000 000", 9), Texts{"1 000 000"});
    EXPECT_EQ(wrapped("1 000 000", 8), (Texts{"1 000>", "<000"}));
    EXPECT_EQ(wrapped("is 1 000 000 000 000 W", 8),
              (Texts{"is", "1 000>", "<000>", "<000 000", "W"}));
    EXPECT_EQ(wrapped("1 000", 3), (Texts{"1", "000"}));
}

TEST(LineText, ANumberStaysWithItsUnit) {
    EXPECT_EQ(wrapped("allowed: 0 dB..80 dB", 12), (Texts{"allowed:", "0 dB..80 dB"}));
    EXPECT_EQ(wrapped("limit is -12.5 kHz", 16), (Texts{"limit is", "-12.5 kHz"}));
    EXPECT_EQ(wrapped("below 20 \xc2\xb0"
                      "C",
                      9),
              (Texts{"below",
                     "20 \xc2\xb0"
                     "C"}));
    EXPECT_EQ(wrapped("at 95 %, hot", 7), (Texts{"at", "95 %,", "hot"}));
    EXPECT_EQ(wrapped("of 12 inputs", 6), (Texts{"of 12", "inputs"}));
    EXPECT_EQ(wrapped("12345 dB", 6), (Texts{"12345", "dB"}));
}

TEST(LineText, TheCursorStandsOnACharacterWithItsMarks) {
    Editor_view shown;
    show_with_cursor("ae\xcc\x81tz", 1, 3, shown);
    EXPECT_EQ(shown.text, "ae\xcc\x81t");
    EXPECT_EQ(shown.cursor, 1);
    show_with_cursor("ae\xcc\x81tz", 4, 3, shown);
    EXPECT_EQ(shown.text, "ae\xcc\x81t");
    EXPECT_EQ(shown.cursor, 2);
}

TEST(LineText, AStartCutsNoNumberUnseen) {
    EXPECT_EQ(start_of("Gain 12", 7), "Gain 12");
    EXPECT_EQ(start_of("Gain 12", 6), "Gain >");
    EXPECT_EQ(start_of("Gain 12", 4), "Gain");
    EXPECT_EQ(start_of("Gain 12", 3), "Gai");
    EXPECT_EQ(start_of("Reference", 4), "Refe");
    EXPECT_EQ(start_of("Gr\xc3\xbcn", 3), "Gr\xc3\xbc");
    EXPECT_EQ(start_of("Gain", 0), "");
}

TEST(LineText, ATextGoesRoundWithAGapBeforeItsBeginning) {
    Scrolling_text text;
    text.set("ABCDE");
    EXPECT_EQ(frames(text, 4, 12), (Texts{"ABCD", "ABCD", "ABCD", "BCDE", "CDE ", "DE  ", "E   ",
                                          "   A", "  AB", " ABC", "ABCD", "ABCD"}));
}

TEST(LineText, ANumberThatGoesRoundIsMarkedWhereItIsCut) {
    Scrolling_text text;
    text.set("123456 Hz");
    EXPECT_EQ(frames(text, 6, 9), (Texts{"123456", "123456", "123456", "<3456 ", "<456 H", "<56 Hz",
                                         "<6 Hz ", "< Hz  ", " Hz   "}));
    text.set("1234567");
    EXPECT_EQ(frames(text, 6, 1), (Texts{"12345>"}));
}

TEST(LineText, AnotherTextStartsAtItsBeginningAndTheSameGoesOn) {
    Scrolling_text text;
    text.set("ABCDE");
    frames(text, 4, 4);
    text.update("ABCDE  ");
    EXPECT_EQ(text.show(4), "CDE ");
    text.update("FGHIJ");
    EXPECT_EQ(text.show(4), "FGHI");
}

TEST(LineText, AValueThatChangesGoesOnWhereItIs) {
    Scrolling_text text;
    text.follow("12:30:45");
    frames(text, 6, 4);
    text.follow("12:30:46");
    EXPECT_EQ(text.show(6), "<30:46");
    text.follow("1");
    EXPECT_EQ(text.show(6), "1");
    text.follow("12:30:47");
    EXPECT_EQ(text.show(6), "12:30>");
}

struct Cursor_case {
    std::string text;
    size_t cursor;  // in bytes
    int columns;
    std::string shown;
    int column;
};

TEST(LineText, TheCursorStandsOnItsCharacterAndItsWordIsWholeWhereItHasRoom) {
    for (const Cursor_case& row : {
             Cursor_case{"ABCDEF", 2, 8, "ABCDEF", 2},
             Cursor_case{"ABCDEFGHIJ", 9, 4, "GHIJ", 3},
             Cursor_case{"ABCDEFGHIJ", 4, 4, "BCDE", 3},
             Cursor_case{"Frequency 12345 Hz", 10, 12, "quency 12345", 7},
             Cursor_case{"Frequency 12345 Hz", 14, 12, "quency 12345", 11},
             Cursor_case{"Gr\xc3\xbcn 12", 7, 20, "Gr\xc3\xbcn 12", 6},
             Cursor_case{"Gr\xc3\xbcn ABC", 6, 5, "n ABC", 2},
             Cursor_case{"1234567890", 5, 6, "<3456>", 4},
             Cursor_case{"1234567890", 9, 6, "<67890", 5},
             Cursor_case{"1234567890", 0, 6, "12345>", 0},
         }) {
        SCOPED_TRACE(row.text + " " + std::to_string(row.cursor));
        Editor_view view;
        show_with_cursor(row.text, row.cursor, row.columns, view);
        EXPECT_LE(width_of(view.text), row.columns);
        EXPECT_EQ(view.cursor, row.column);
        EXPECT_EQ(view.text, row.shown);
    }
}

TEST(LineText, TheCursorIsNeverUnderAMark) {
    const std::string text = "Frequency 1234567890 and 5 or 2026-11-21";
    for (int columns = 4; columns <= 45; ++columns) {
        for (size_t cursor = 0; cursor < text.size(); ++cursor) {
            Editor_view view;
            show_with_cursor(text, cursor, columns, view);
            ASSERT_GE(view.cursor, 0);
            ASSERT_LT(view.cursor, columns);
            ASSERT_EQ(view.text[static_cast<size_t>(view.cursor)], text[cursor])
                << columns << " " << cursor << " " << view.text;
        }
    }
}

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
