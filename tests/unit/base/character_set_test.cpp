#include <frontpanel_base/character_set.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cwchar>

namespace frontpanel {
namespace {

using Characters = std::set<char32_t>;

struct Cells_case {
    std::string text;
    std::string cells;
    Characters lost;
};

TEST(CharacterSet, KeepsWhatTheDisplayHasAndMarksWhatItHasNot) {
    const Cells_case CASES[] = {
        {"", "", {}},
        {"Gain ~ 1", "Gain ~ 1", {}},
        {"caf\xC3\xA9 20\xC2\xB0", "caf\xE9 20\xB0", {}},
        {"\xC3\xBF\xC2\xA0", "\xFF\xA0", {}},
        {"\xE2\x82\xAC 5", "? 5", {0x20AC}},
        {"\xF0\x9F\x94\x8A\xC4\x80", "?A", {0x1F50A, 0x100}},
        {u8"e\u0301 A\u030A", "\xE9 \xC5", {}},
        {u8"r\u030C \u0159 \u1EAD", "r r a", {0x159, 0x1EAD}},
        {u8"=\u0338 \u2260", "? ?", {0x2260}},
        {u8"x\u0301y", "xy", {0x301}},
        {u8"\u0301x", "?x", {0x301}},
        {u8"x\u0301\xFF\u0301", "x?", {0x301}},
        {"a\x01\n\x7F", "a???", {0x1, 0xA, 0x7F}},
        {"\xC2\x80\xC2\x9F", "??", {0x80, 0x9F}},
        {"a\xE2\x80\x93z \xE2\x80\x9Cq\xE2\x80\x9D it\xE2\x80\x99s \xE2\x88\x92"
         "3",
         "a-z \"q\" it's -3",
         {}},
    };
    for (const Cells_case& expected : CASES) {
        Characters lost;
        EXPECT_EQ(cells_of(expected.text, lost), expected.cells) << expected.text;
        EXPECT_EQ(lost, expected.lost) << expected.text;
    }
}

// The library cuts and scrolls texts bytewise, so pieces of characters are nothing unusual.
TEST(CharacterSet, ADamagedByteIsOneMarkAndNoLostCharacter) {
    const Cells_case CASES[] = {
        {"\xA9 end", "? end", {}},        {"caf\xC3", "caf?", {}},     {"\xC3(", "?(", {}},
        {"\xE2\x82", "??", {}},           {"\xC0\xAF", "??", {}},      {"\xE0\x80\xAF", "???", {}},
        {"\xED\xA0\x80", "???", {}},      {"\xF8\x88", "??", {}},      {"\xFF\xFE", "??", {}},
        {"\xF4\x90\x80\x80", "????", {}}, {"\xF0\x9F\x94", "???", {}},
    };
    for (const Cells_case& expected : CASES) {
        Characters lost;
        EXPECT_EQ(cells_of(expected.text, lost), expected.cells) << expected.text;
        EXPECT_TRUE(lost.empty()) << expected.text;
    }
}

TEST(CharacterSet, CellsGoBackToTheirText) {
    EXPECT_EQ(text_of("caf\xE9 \xFF~"), "caf\xC3\xA9 \xC3\xBF~");
    std::string all;
    for (int byte = 0xA0; byte <= 0xFF; ++byte) {
        all += static_cast<char>(byte);
    }
    Characters lost;
    EXPECT_EQ(cells_of(text_of(all), lost), all);
    EXPECT_TRUE(lost.empty());
}

TEST(CharacterSet, AColumnIsACharacterWithItsMarks) {
    const std::pair<std::string, size_t> CASES[] = {
        {"ab", 1},
        {u8"e\u0301b", 3},
        {u8"\u00E9\u0301\u0323", 6},
        {u8"\u0301\u0301a", 4},
        {u8"e\u0301" + std::string("\xCC"), 3},
        {"\xFF" + std::string(u8"\u0301"), 3},
        {"e\xCC", 1},
        {" ", 1},
    };
    for (const auto& [text, size] : CASES) {
        EXPECT_EQ(size_of_column(text), size) << text;
    }
    std::string marks = "e";
    for (int i = 0; i < 1000; ++i) {
        marks += u8"\u0301";
    }
    EXPECT_EQ(size_of_column(marks + "z"), 2001U);
    Characters lost;
    EXPECT_EQ(columns_of(marks + "z", lost), U"\u00E9z");
    EXPECT_EQ(lost, Characters{0x301});
}

TEST(CharacterSet, CharactersAreCodePointsAndDamagedBytes) {
    EXPECT_EQ(characters_of("a\u00E9\u20AC\U0001F50A"), U"a\u00E9\u20AC\U0001F50A");
    EXPECT_EQ(characters_of("\xFFz"), (std::u32string{DAMAGED, U'z'}));
    for (const char32_t character :
         {0x1U, 0x7FU, 0x80U, 0x7FFU, 0x800U, 0xFFFFU, 0x10000U, 0x10FFFFU}) {
        EXPECT_EQ(characters_of(utf8_of(character)), std::u32string(1, character));
    }
}

// As the system counts, which decides where a terminal's next character stands. An emulator may lack the locale.
TEST(CharacterSet, WhatHasOneColumnTakesOne) {
    const bool counts = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
    size_t count = 0;
    for (char32_t character = 0; character < 0x20000; ++character) {
        const int width = counts ? wcwidth(static_cast<wchar_t>(character)) : 1;
        if (has_one_column(character)) {
            ++count;
            // -1 for a code point that stands for nothing yet
            EXPECT_TRUE(width == 1 || width == -1) << code_point_name(character);
        }
    }
    EXPECT_GE(count, 2500U);
    std::setlocale(LC_CTYPE, "C");
    for (const char32_t character :
         std::u32string(U"~ \u00E4\u00B0\u03A9\u0416\u2264\u20AC\u2713\uFF71")) {
        EXPECT_TRUE(has_one_column(character)) << code_point_name(character);
    }
    for (const char32_t character : {U'\x1B', U'\u0085', U'\u00AD', U'\u0301', U'\u05D0', U'\u200B',
                                     U'\u202E', U'\u65E5', U'\uFEFF', U'\U0001F50A', DAMAGED}) {
        EXPECT_FALSE(has_one_column(character)) << code_point_name(character);
    }
    EXPECT_EQ(text_in_columns(U"5 k\u03A9 \u65E5\u0301"), "5 k\u03A9 ??");
}

TEST(CharacterSet, NamesCodePointsAsTheyAreUsuallyWritten) {
    EXPECT_EQ(code_point_name(0xA), "U+000A");
    EXPECT_EQ(code_point_name(0x20AC), "U+20AC");
    EXPECT_EQ(code_point_name(0x1F50A), "U+1F50A");
}

TEST(CharacterSet, CellsThatAreNoCharactersNeverBecomeText) {
    EXPECT_EQ(text_of(std::string("a\0\x1b\x7f\x80\x9b\x9f\xa0", 8)), "a??????\xC2\xA0");
}

TEST(CharacterSet, APrintableTextHoldsNoControlCharacters) {
    const std::pair<std::string, std::string> CASES[] = {
        {"", ""},
        {"caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x94\x8A", "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x94\x8A"},
        {"a\tb\n\x1b[2J\x7F", "a b??[2J?"},
        {std::string("\0", 1), "?"},
        // as UTF-8
        {"\xC2\x80\xC2\x9B\x32J\xC2\x9F\xC2\xA0", "??2J?\xC2\xA0"},
        // as raw bytes, also at the end of a character that is cut
        {"\x9B\x32J\x80\x9F", "?2J??"},
        {"\xE2\x82", "\xE2?"},
        {"\xC3\xC3\x89", "\xC3\xC3\x89"},
        {"\xC0\x9B", "\xC0?"},
        {"\xA0\xFF", "\xA0\xFF"},
    };
    for (const auto& [text, expected] : CASES) {
        EXPECT_EQ(printable(text), expected);
    }
}

}  // namespace
}  // namespace frontpanel
