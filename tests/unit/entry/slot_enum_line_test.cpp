// The display line of a slot, character by character.
#include "entry/slot_enum_line.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using slot_enum_line::Line;

PROD_LIST_S product(const std::string& name, const std::string& family = "Radio") {
    PROD_LIST_S record = {};
    record.prod_id = 7;
    family.copy(record.prod_family, sizeof record.prod_family);
    name.copy(record.prod_string, sizeof record.prod_string);
    return record;
}

// A line between marks that nothing may touch.
struct Guarded_line {
    char before[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
    Line line = {};
    char after[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};

    bool is_intact() const {
        return std::string(before, 8) == "########" && std::string(after, 8) == "########";
    }
};

std::string line_of(int slot, const std::string& name, const std::string& alias) {
    Guarded_line guarded;
    const std::size_t used = slot_enum_line::write_product(guarded.line, slot, product(name));
    slot_enum_line::write_alias(guarded.line, used, alias.c_str());
    slot_enum_line::finish(guarded.line);
    EXPECT_TRUE(guarded.is_intact());
    return guarded.line;
}

// The letters of an alias tell their place: A to Z, then a to n.
std::string alias_of(std::size_t length) {
    return std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmn").substr(0, length);
}

TEST(SlotLine, AProductNeedsANumberAndAFamily) {
    EXPECT_TRUE(slot_enum_line::is_fitted(product("XY")));
    EXPECT_TRUE(slot_enum_line::is_fitted(product("")));
    EXPECT_FALSE(slot_enum_line::is_fitted(product("XY", "")));
    PROD_LIST_S none = product("XY");
    none.prod_id = 0;
    EXPECT_FALSE(slot_enum_line::is_fitted(none));
}

TEST(SlotLine, AnEmptySlotShowsItsNumber) {
    Guarded_line guarded;
    slot_enum_line::write_empty(guarded.line, 5);
    EXPECT_STREQ(guarded.line, "5                             ") << "one character beyond the end";
    slot_enum_line::finish(guarded.line);
    EXPECT_STREQ(guarded.line, "5                            ");
    slot_enum_line::write_empty(guarded.line, 15);
    slot_enum_line::finish(guarded.line);
    EXPECT_STREQ(guarded.line, "15                           ");
    EXPECT_TRUE(guarded.is_intact());
}

TEST(SlotLine, AProductFollowsTheNumber) {
    Guarded_line guarded;
    EXPECT_EQ(slot_enum_line::write_product(guarded.line, 3, product("XY")), 4U);
    EXPECT_STREQ(guarded.line, "3:XY                          ");
    EXPECT_EQ(slot_enum_line::write_product(guarded.line, 3, product("")), 2U);
    EXPECT_STREQ(guarded.line, "3:                            ");
    EXPECT_TRUE(guarded.is_intact());
}

TEST(SlotLine, AProductNameMayFillItsFieldWithoutTerminator) {
    Guarded_line guarded;
    PROD_LIST_S record = product("ABCDEFGHIJKLMNOP");
    EXPECT_EQ(slot_enum_line::write_product(guarded.line, 15, record), 19U);
    EXPECT_STREQ(guarded.line, "15:ABCDEFGHIJKLMNOP           ");
}

TEST(SlotLine, AnAliasEndsAtTheLastCharacter) {
    EXPECT_EQ(line_of(3, "XY", "Main"), "3:XY                     Main");
    EXPECT_EQ(line_of(12, "RX-200", "North mast"), "12:RX-200          North mast");
}

// Every line of "3:XY" (4 characters, so room for 27) with aliases of 0 to 40 characters. From 26 characters
// on an alias covers the end of the name; from 28 on it is too long and shows only what exceeds the room,
// except its last character, which the line's end covers.
TEST(SlotLine, ShowsAnAliasOfEveryLength) {
    const char* const expected[] = {
        "3:XY                         ",  // 0
        "3:XY                        A",  // 1
        "3:XY                       AB",  // 2
        "3:XY                      ABC",  // 3
        "3:XY                     ABCD",  // 4
        "3:XY                    ABCDE",  // 5
        "3:XY                   ABCDEF",  // 6
        "3:XY                  ABCDEFG",  // 7
        "3:XY                 ABCDEFGH",  // 8
        "3:XY                ABCDEFGHI",  // 9
        "3:XY               ABCDEFGHIJ",  // 10
        "3:XY              ABCDEFGHIJK",  // 11
        "3:XY             ABCDEFGHIJKL",  // 12
        "3:XY            ABCDEFGHIJKLM",  // 13
        "3:XY           ABCDEFGHIJKLMN",  // 14
        "3:XY          ABCDEFGHIJKLMNO",  // 15
        "3:XY         ABCDEFGHIJKLMNOP",  // 16
        "3:XY        ABCDEFGHIJKLMNOPQ",  // 17
        "3:XY       ABCDEFGHIJKLMNOPQR",  // 18
        "3:XY      ABCDEFGHIJKLMNOPQRS",  // 19
        "3:XY     ABCDEFGHIJKLMNOPQRST",  // 20
        "3:XY    ABCDEFGHIJKLMNOPQRSTU",  // 21
        "3:XY   ABCDEFGHIJKLMNOPQRSTUV",  // 22
        "3:XY  ABCDEFGHIJKLMNOPQRSTUVW",  // 23
        "3:XY ABCDEFGHIJKLMNOPQRSTUVWX",  // 24
        "3:XYABCDEFGHIJKLMNOPQRSTUVWXY",  // 25
        "3:XABCDEFGHIJKLMNOPQRSTUVWXYZ",  // 26
        "3:ABCDEFGHIJKLMNOPQRSTUVWXYZa",  // 27
        "3:XY                         ",  // 28: one too many, under the line's end
        "3:XY                        Z",  // 29
        "3:XY                       YZ",  // 30
        "3:XY                      XYZ",  // 31
        "3:XY                     WXYZ",  // 32
        "3:XY                    VWXYZ",  // 33
        "3:XY                   UVWXYZ",  // 34
        "3:XY                  TUVWXYZ",  // 35
        "3:XY                 STUVWXYZ",  // 36
        "3:XY                RSTUVWXYZ",  // 37
        "3:XY               QRSTUVWXYZ",  // 38
        "3:XY              PQRSTUVWXYZ",  // 39
        "3:XY             OPQRSTUVWXYZ",  // 40
    };
    for (std::size_t length = 0; length < std::size(expected); ++length) {
        SCOPED_TRACE(length);
        EXPECT_EQ(line_of(3, "XY", alias_of(length)), expected[length]);
    }
}

// Nothing but the line is written and nothing but the alias is read, for every name and any alias.
TEST(SlotLine, NoAliasLeavesItsLine) {
    for (const int slot : {1, 15}) {
        for (std::size_t name = 0; name <= 16; ++name) {
            for (std::size_t length = 0; length < slot_enum_line::ALIAS_SIZE; ++length) {
                const std::string line =
                    line_of(slot, std::string(name, 'x'), std::string(length, 'a'));
                ASSERT_EQ(line.size(), slot_enum_line::LINE_LENGTH);
                ASSERT_EQ(line.find_first_not_of("0123456789:xa "), std::string::npos) << line;
            }
        }
    }
}

// With 19 characters of number and name there is room for 12; the copy stops where the alias starts.
TEST(SlotLine, ALongAliasBesideALongNameStopsAtItsStart) {
    EXPECT_EQ(line_of(15, "ABCDEFGHIJKLMNOP", "abcdefghijklmnopqrstuvwxyz0123456789"),
              "15:ABCDEFGHIJKLMNOabcdefghijk");
}

}  // namespace
