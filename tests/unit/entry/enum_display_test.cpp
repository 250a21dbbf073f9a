// How an enumerated entry shows its options on a display line.
#include "enum_fixture.h"
#include "support/capture.h"

namespace {

using support::capture;

constexpr uint32_t GENERAL = 0x1;

TEST(EnumDisplay, ShowsTheCurrentOption) {
    Open_enum entry(Enum_arguments().default_value(2));
    EXPECT_EQ(entry.shown(), "High");
    Data_entry& base = entry;
    char line[21] = {};
    EXPECT_EQ(base.Get_display_string(line, 20), 0);
    EXPECT_STREQ(line, "High");
}

TEST(EnumDisplay, ShowsTheOptionAtAVisiblePosition) {
    Open_enum entry;
    entry.show_only({0, 2});
    EXPECT_EQ(entry.shown(20, 0), "Off");
    entry.m_size = 4;
    EXPECT_EQ(entry.shown(20, 1), "High");
    EXPECT_EQ(entry.shown(20, -2), "Off") << "a position out of range shows the smallest";
    EXPECT_EQ(entry.shown(20, 99), "Off");
}

TEST(EnumDisplay, ShowsTheSmallestKeyInsteadOfOneThatIsNotAllowed) {
    Open_enum entry(Enum_arguments().min(1).default_value(1));
    entry.put(42);
    EXPECT_EQ(entry.shown(), "Low");
}

// The size counts visible options, so the key of a trailing one can be beyond it.
TEST(EnumDisplay, ShowsATrailingOptionBeyondTheVisibleCountWithoutText) {
    Open_enum entry(Enum_arguments().default_value(3));
    entry.show_only({0, 2, 3});
    EXPECT_EQ(entry.Get_size(), 3);
    EXPECT_EQ(entry.shown(20, -1, 1), "-");
    EXPECT_EQ(entry.shown(20, 2, 1), "-");
    entry.put(2);
    EXPECT_EQ(entry.shown(), "High");
}

TEST(EnumDisplay, ShowsAPositionThatNoOptionHasWithoutText) {
    Open_enum entry(Enum_arguments().default_value(0));
    entry.show_only({0, 2});
    EXPECT_EQ(entry.shown(20, 3, 1), "-");
}

TEST(EnumDisplay, ShowsAnOptionWithoutText) {
    Texts texts({"Off", "Low", "High"});
    texts.remove(1);
    Open_enum entry(Enum_arguments().texts(&texts).max(2).default_value(1));
    EXPECT_EQ(entry.shown(20, -1, 1), "-");
    EXPECT_EQ(entry.shown(20, 1, 1), "-");
    EXPECT_EQ(entry.shown(20, 2), "High");
}

TEST(EnumDisplay, WritesNothingForALineOfOneCharacter) {
    Open_enum entry;
    for (const unsigned int length : {0U, 1U}) {
        char line[] = "??";
        EXPECT_EQ(entry.Get_display_string(line, length), 1);
        EXPECT_EQ(entry.Get_display_string(line, length, 1), 1);
        EXPECT_STREQ(line, "??");
    }
}

TEST(EnumDisplay, WritesNoTextOnTheShortestLine) {
    Open_enum entry(Enum_arguments().max(4).default_value(4));
    char line[] = "???";
    EXPECT_EQ(entry.Get_display_string(line, 2), 1);
    EXPECT_EQ(std::string(line, 3), std::string("-\0?", 3));
}

using EnumDisplayDeathTest = ::testing::Test;

TEST(EnumDisplayDeathTest, NeedsABuffer) {
    Open_enum entry;
    EXPECT_DEATH(entry.Get_display_string(nullptr, 20), "Assertion `buffer' failed");
    EXPECT_DEATH(entry.Get_display_string(nullptr, 20, 1), "Assertion `buffer' failed");
}

TEST(EnumDisplay, ReportsWhyItShowsNothing) {
    Open_enum entry;
    char line[21] = {};
    EXPECT_EQ(capture(GENERAL, [&] { entry.Get_display_string(line, 1); }).out,
              "Enum_entry::Get_display_string, Warning. Length is <=1");
    entry.map_enum_to_options = {{2, 0}};
    EXPECT_EQ(capture(GENERAL, [&] { entry.Get_display_string(line, 20, 1); }).out,
              "[valueToKey][enum_entry.cpp][#] it->second=[0] value=[1] name=[Mode]\n"
              "[valueToKey][enum_entry.cpp][#] it->second=[0] value=[0] name=[Mode]\n"
              "\t[valueToKey][enum_entry.cpp][#] Returning it->second=[0]=value\n"
              "[Get_value][enum_entry.cpp][#] Error. No match for value [1] in map. Returning "
              "min=[0]->[2]\n"
              "Integer_model::Set: value[2], length[4]\n"
              "Enum_entry::Get_display_string, Get_value error");
    entry.m_size = 2;
    EXPECT_EQ(capture(GENERAL, [&] { entry.Get_display_string(line, 20); }).out,
              "Integer_model::Get: value[2], length[4] m_value[2]\n"
              "Enum_entry::Get_display_string, error");
}

// One call of the marquee on a line of four characters; '?' is a position that is not written.
TEST(EnumMarquee, TurnsAtOnceAndPausesAfterEachTurn) {
    Texts texts({"ABCDEFG"});
    Open_enum entry(Enum_arguments().texts(&texts).max(0));
    const char* const expected[] = {
        "ABCD", "BCDE", "CDEF", "DEFG", "EFG ", "FG A", "G AB",  // first turn, without a pause
        "ABC?", "ABC?",                                          // held
        "ABCD", "BCDE", "CDEF", "DEFG", "EFG ", "FG A", "G AB",  // second turn
        "ABC?", "ABC?", "ABCD",
    };
    for (std::size_t call = 0; call < std::size(expected); ++call) {
        SCOPED_TRACE(call);
        EXPECT_EQ(entry.shown(4), expected[call]);
    }
}

TEST(EnumMarquee, ScrollsATextAsLongAsTheLine) {
    Texts texts({"ABCD"});
    Open_enum entry(Enum_arguments().texts(&texts).max(0));
    for (const char* const expected : {"ABCD", "BCD ", "CD A", "D AB", "ABC?", "ABC?", "ABCD"}) {
        EXPECT_EQ(entry.shown(4), expected);
    }
    EXPECT_EQ(entry.shown(5), "ABCD") << "a longer line shows it whole";
    EXPECT_EQ(entry.m_scroll_offset, 1U) << "and leaves the marquee alone";
}

TEST(EnumMarquee, ScrollsOnTheShortestLine) {
    Texts texts({"ABC"});
    Open_enum entry(Enum_arguments().texts(&texts).max(0));
    for (const char* const expected : {"AB", "BC", "C ", "A?", "A?", "AB"}) {
        EXPECT_EQ(entry.shown(2), expected);
    }
}

TEST(EnumMarquee, GoesOnAtTheOldPlaceWithAnotherText) {
    Texts texts({"ABCDEFG", "UVWXYZ", "KLMN"});
    Open_enum entry(Enum_arguments().texts(&texts).max(2));
    for (int call = 0; call < 5; ++call) {
        entry.shown(4);
    }
    entry.put(1);
    EXPECT_EQ(entry.shown(4), "Z UV");
    entry.m_scroll_delay = 0;
    entry.m_scroll_offset = 5;
    entry.put(2);
    EXPECT_EQ(entry.shown(4), "KLMN") << "a place beyond the text is its start";
}

TEST(EnumMarquee, StaysInsideItsBuffer) {
    Texts texts({"ABCDEFG"});
    for (unsigned int length = 2; length < 9; ++length) {
        Open_enum entry(Enum_arguments().texts(&texts).max(0));
        for (int call = 0; call < 20; ++call) {
            std::string line(length + 5, '#');
            ASSERT_EQ(entry.Get_display_string(line.data(), length), 0);
            EXPECT_EQ(line.substr(length + 1), "####");
        }
    }
}

}  // namespace
