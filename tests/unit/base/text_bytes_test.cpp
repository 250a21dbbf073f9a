#include <frontpanel_base/text_bytes.h>

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(TextBytes, EscapesControlsAndWhatIsNoUtf8) {
    EXPECT_EQ(escaped("Gr\u00FC\u00DFe 20 \u00B0C \U0001F600"),
              "Gr\u00FC\u00DFe 20 \u00B0C \U0001F600");
    EXPECT_EQ(escaped("a\n\x7f\u0085z"), "a\\x0a\\x7f\\xc2\\x85z");
    EXPECT_EQ(escaped("\xFC\xC3"), "\\xfc\\xc3");
    EXPECT_EQ(escaped(""), "");
}

TEST(TextBytes, EscapesWhatIsNotKept) {
    const auto is_not_a = [](char32_t character) { return character != U'a'; };
    EXPECT_EQ(escaped("ab\u00FC\n\xFC", is_not_a), "\\x61b\u00FC\n\\xfc");
}

TEST(TextBytes, CutBetweenCharacters) {
    EXPECT_EQ(beginning_of("abc", 3), "abc");
    EXPECT_EQ(beginning_of("abc", 2), "ab");
    EXPECT_EQ(beginning_of("a\u00FCb", 2), "a");
    EXPECT_EQ(beginning_of("a\u00FCb", 3), "a\u00FC");
    EXPECT_EQ(beginning_of("\U0001F600b", 3), "");
    EXPECT_EQ(beginning_of("\U0001F600b", 4), "\U0001F600");
    EXPECT_EQ(beginning_of("\u00FC", 0), "");
}

TEST(TextBytes, BytesThatAreNoUtf8AreCutAnywhere) {
    EXPECT_EQ(beginning_of("\x80\x80\x80\x80\x80\x80", 5), "\x80\x80\x80\x80\x80");
}

TEST(TextBytes, AQuotedBeginningShowsThatItGoesOn) {
    EXPECT_EQ(quoted_beginning("abc", 3), "\"abc\"");
    EXPECT_EQ(quoted_beginning("ab\u00FC", 3), "\"ab...\"");
}

}  // namespace
}  // namespace frontpanel
