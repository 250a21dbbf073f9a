#include "composition.h"

#include <frontpanel_base/character_set.h>
#include <gtest/gtest.h>

#include "composition_table.h"

namespace frontpanel {
namespace {

using Characters = std::set<char32_t>;

TEST(Composition, ALetterAndItsMarksAreOneCharacter) {
    const struct {
        std::u32string column;
        char32_t composed;
        Characters lost;
    } CASES[] = {
        {U"e", U'e', {}},
        {U"e\u0301", U'\u00E9', {}},
        {U"E\u030C", U'\u011A', {}},
        {U"u\u0308\u0304", U'\u01D6', {}},
        {U"\u0438\u0306", U'\u0439', {}},
        {U"\u03B9\u0308\u0301", U'\u0390', {}},
        {U"=\u0338", U'\u2260', {}},
        // marks above and below in any order
        {U"a\u0302\u0323", U'\u1EAD', {}},
        {U"a\u0323\u0302", U'\u1EAD', {}},
        // what has no character of its own
        {U"x\u0301", U'x', {0x301}},
        {U"e\u0301\u0301", U'\u00E9', {0x301}},
        {U"e\u0310\u0301", U'e', {0x310, 0x301}},
        {U"q\u0323\u0301", U'q', {0x323, 0x301}},
        {U"\u4E2D\u0301", U'\u4E2D', {0x301}},
        {U"\u2764\uFE0F", U'\u2764', {0xFE0F}},
        {{DAMAGED, 0x301}, DAMAGED, {0x301}},
        {U"\u0301", U'\u0301', {}},
        {U"\u0301\u0301", U'\u0301', {0x301}},
    };
    for (const auto& expected : CASES) {
        Characters lost;
        SCOPED_TRACE(static_cast<unsigned long>(expected.composed));
        EXPECT_EQ(composed(expected.column, lost), expected.composed);
        EXPECT_EQ(lost, expected.lost);
    }
}

TEST(Composition, AThousandMarksTakeNoneOfTheirLetter) {
    Characters lost;
    EXPECT_EQ(composed(U"e" + std::u32string(1000, 0x301), lost), U'\u00E9');
    EXPECT_EQ(lost, Characters{0x301});
}

TEST(Composition, TheTableIsSortedAndOfOneColumn) {
    const Composition* before = nullptr;
    for (const Composition& row : COMPOSITIONS) {
        EXPECT_TRUE(before == nullptr || before->base < row.base ||
                    (before->base == row.base && before->mark < row.mark));
        EXPECT_TRUE(is_combining(row.mark));
        EXPECT_FALSE(is_combining(row.base));
        EXPECT_TRUE(has_one_column(row.composed)) << std::hex << unsigned{row.composed};
        before = &row;
    }
}

TEST(Composition, OnlyLettersHaveABaseLetter) {
    EXPECT_EQ(base_letter_of(0x159), U'r');
    EXPECT_EQ(base_letter_of(0x1EAD), U'\u1EA1');
    EXPECT_EQ(base_letter_of(U'r'), std::nullopt);
    EXPECT_EQ(base_letter_of(0x2260), std::nullopt) << "without its stroke it means the opposite";
    EXPECT_EQ(base_letter_of(0x219A), std::nullopt);
}

}  // namespace
}  // namespace frontpanel
