#include "line_part.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

TEST(Line_part, IsAllALineOrAWord) {
    const std::string text = "  one two\nkey:  7 kB\r\n\nlast";
    const struct {
        Line_part part;
        const char* found;
        const char* failure;
    } cases[] = {
        {{}, "one two\nkey:  7 kB\r\n\nlast", ""},
        {{"", 1, 0}, "one two", ""},
        {{"", 0, 2}, "two", ""},
        {{"key:", 0, 0}, "key:  7 kB", ""},
        {{"key:", 0, 2}, "7", ""},
        {{"key:", 0, 3}, "kB", ""},
        {{"key:", 0, 4}, "", "the line has no word 4"},
        {{"", 3, 0}, "", ""},
        {{"", 3, 1}, "", "the line has no word 1"},
        {{"", 4, 1}, "last", ""},
        {{"", 5, 0}, "", "there is no line 5"},
        {{"ey:", 0, 1}, "", "no line begins with \"ey:\""},
    };
    for (const auto& [part, found, failure] : cases) {
        SCOPED_TRACE(part.beginning + " " + std::to_string(part.line) + " " +
                     std::to_string(part.word));
        EXPECT_EQ(part_of(text, part).text, found);
        EXPECT_EQ(part_of(text, part).failure, failure);
    }
}

TEST(Line_part, OfAnEmptyTextIsMissing) {
    EXPECT_EQ(part_of("", {}).text, "");
    EXPECT_EQ(part_of("", {"", 1, 0}).failure, "there is no line 1");
    EXPECT_EQ(part_of("", {"", 0, 1}).failure, "the line has no word 1");
}

}  // namespace
}  // namespace frontpanel
