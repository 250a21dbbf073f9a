#include <frontpanel_data/evaluator.h>
#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>
#include <vector>

#include "range_fixture.h"
#include "support/capture.h"

namespace {

struct Display {
    const char* format;
    const char* value_format;
    int value;
    const char* shown;
};

void expect_displays(const std::vector<Display>& displays) {
    for (const Display& display : displays) {
        SCOPED_TRACE(testing::Message() << '"' << display.format << "\" with \""
                                        << display.value_format << "\" of " << display.value);
        Open_range entry({0, 100, 10, display.format, display.value_format});
        EXPECT_EQ(entry.shown(display.value), display.shown);
    }
}

TEST(Range_display, WithoutFormatAndExpressionTheValueIsPlain) {
    expect_displays({
        {"", "", 7, "7"},
        {"", "v*2", 7, "7"},
        {"%d dB", "", 7, "7"},
        {"0:Off,1:On,%d", "", 1, "1"},
        {"", "", 0, "0"},
        {"", "", -7, "-7"},
        {"", "", INT_MAX, "2147483647"},
        {"", "", INT_MIN, "-2147483648"},
    });
}

TEST(Range_display, WholeNumbersAreCutTowardsZero) {
    expect_displays({
        {"%d", "v", 7, "7"},
        {"%d dB", "v*2", -7, "-14 dB"},
        {"%d", "v/2", 7, "3"},
        {"%d", "v/2", -7, "-3"},
        {"<%d>", "v+0.999", 7, "<7>"},
        {"%d%%", "v", 7, "7%"},
        {"%d", "v", INT_MIN, "-2147483648"},
        {"%02X", "v", 10, "0A"},
        {"%02X", "v", -1, "FFFFFFFF"},
        {"0x%02X", "v/2", 21, "0x0A"},
        {"%02x", "v", 171, "ab"},
        {"%02x", "v", 4096, "1000"},
    });
}

TEST(Range_display, WholeNumbersStayWithinInt) {
    expect_displays({
        {"%d", "v*1e300", 7, "2147483647"},
        {"%d", "v*1e300", -7, "-2147483648"},
        {"%d", "v/=0", 1, "2147483647"},
        {"%02X", "v*1e300", 7, "7FFFFFFF"},
    });
}

TEST(Range_display, TenthsAreRoundedBeforeTheyArePrinted) {
    expect_displays({
        {"%.1f", "v/10", 25, "2.5"},
        {"%.1f", "v/100", 25, "0.3"},
        {"%.1f", "v/100", -25, "-0.3"},
        {"%.1f kHz", "v/1000", 1250, "1.3 kHz"},
    });
}

TEST(Range_display, NotANumberCountsAsZero) {
    expect_displays({
        {"%d dB", "sqrt(0-v)", 7, "0 dB"},
        {"%.1f dB", "sqrt(0-v)", 7, "0.0 dB"},
        {"%.2f dB", "sqrt(0-v)", 7, "0.00 dB"},
        {"%g", "0-sqrt(0-v)", 7, "0"},
    });
}

TEST(Range_display, OtherNumbersArePrintedAsTheyAre) {
    expect_displays({
        {"%.2f", "v/8", 1, "0.12"},
        {"%.3f", "v/8", 1, "0.125"},
        {"%g", "v/8", 1, "0.125"},
        {"% 6.2f", "v/4", 5, "  1.25"},
        {"%e", "v", 1, "1.000000e+00"},
    });
}

TEST(Range_display, AFormatWithoutConversionIsItsText) {
    expect_displays({
        {"on", "v", 7, "on"},
        {"100%%", "v", 7, "100%"},
        {"%%d", "v", 7, "%d"},
        {"a:b", "v", 7, "a:b"},
        {"a,b", "v", 7, "a,b"},
    });
}

TEST(Range_display, AFormatThatDoesNotFitShowsThePlainValue) {
    expect_displays({
        {"%s", "v*2", 7, "7"},
        {"%n", "v*2", 7, "7"},
        {"%5d", "v*2", 7, "7"},  // only "%d" makes the number whole
        {"%x", "v*2", 7, "7"},
        {"%d %d", "v*2", 7, "7"},
        {"%.1f %d", "v*2", 7, "7"},
        {"%.1f %.1f", "v*2", 7, "7"},
        {"%d %s", "v*2", 7, "7"},
        {"%ld", "v*2", 7, "7"},
        {"%*d%d", "v*2", 7, "7"},
        {"%1$d", "v*2", 7, "7"},
        {"%", "v*2", 7, "7"},
        {"%d %", "v*2", 7, "7"},
        {"%9999999.1f", "v*2", 7, "7"},
    });
}

TEST(Range_display, AFailingExpressionShowsTheRawValue) {
    expect_displays({
        {"%d dB", "v/0", 7, "7 dB"},
        {"%.1f", "(v", 7, "7.0"},
        {"%d", "v*2; 1/0", 7, "7"},
        {"%d", "nothing(v)", 7, "7"},
        {"0:Off,%d dB", "v+", 7, "7 dB"},
    });
}

// The expression is a line of its own: what its author reads of an error counts from its start, and a comment
// ends with it.
TEST(Range_display, TheExpressionIsTheSecondLineOfItsText) {
    expect_displays({{"%d", "v*2 // doubled", 7, "14"}});
    expect_displays({{"%d", "v+$", 7, "7"}});
    EXPECT_STREQ(errorRecord.message, "Unexpected '$'");
    EXPECT_EQ(errorRecord.line, 2);
    EXPECT_EQ(errorRecord.column, 5);
}

TEST(Range_display, TheResultIsTheVariableVWhateverSortsBeforeIt) {
    char others[] = "aa=1; u=2; vv=3; zz=4;";
    ASSERT_EQ(evaluateExpression(others), 0);
    expect_displays({
        {"%d", "v*2", 7, "14"},
        {"%d", "(ab=3)*v", 7, "21"},
        {"%d", "v+1; v=v*10", 7, "80"},
    });
}

TEST(Range_display, TheTablesTextStandsForItsValue) {
    const char* const table = "0:Off,1:On,%d dB";
    expect_displays({
        {table, "v*2", 0, "Off"},
        {table, "v*2", 1, "On"},
        {table, "v*2", 7, "14 dB"},
        {table, "v*2", 10, "20 dB"},
        {"-1:None,%d", "v", -1, "None"},
        {"0:,%d", "v", 0, ""},
        {"0:a:b,%d", "v", 0, "a:b"},
        {"0:Off,%.1f", "v/10", 25, "2.5"},
        {"0:Off,%.1f", "v/10", 0, "Off"},
    });
}

TEST(Range_display, TheTablesKeyIsComparedAsText) {
    expect_displays({
        {"00:Off,%d", "v", 0, "0"},
        {" 0:Off,%d", "v", 0, "0"},
        {"+1:On,%d", "v", 1, "1"},
        {"0:first,0:second,%d", "v", 0, "first"},
    });
}

TEST(Range_display, ATableTextIsNotPrinted) {
    expect_displays({
        {"0:%s%n,%d", "v", 0, "%s%n"},
        {"0:100%,%d", "v", 0, "100%"},
    });
}

TEST(Range_display, ARowWithoutColonIsPassedOver) {
    expect_displays({
        {"Low,1:On,%d", "v", 1, "On"},
        {"Low,1:On,%d", "v", 2, "2"},
        {"1,1:On,%d", "v", 1, "On"},
    });
}

// Intended: only what a comma ends is a row. Menu files end their tables with a number format.
TEST(Range_display, WhatFollowsTheLastCommaIsTheNumberFormat) {
    expect_displays({
        {"0:Off,1:On", "v", 0, "Off"},
        {"0:Off,1:On", "v", 1, "1:On"},
        {"0:Off,", "v", 1, ""},
    });
}

TEST(Range_display, ATableThatWouldNeverEndTakesTheRestAsNumberFormat) {
    expect_displays({
        {"0:Off,%d,x", "v", 7, "7,x"},
        {"0:Off,%d,x", "v", 0, "Off"},
        {"0:Off,a,b,c", "v", 7, "a,b,c"},
        {"x:y,z,", "v", 7, "z,"},
    });
}

// Intended: menu files rely on "%d" and "%02x" counting anywhere, on "%02X" in the number format alone.
TEST(Range_display, TheKindOfNumberIsSoughtWhereMenuFilesPutIt) {
    expect_displays({
        {"0:%d,%.1f", "v/10", 25, "25"},
        {"0:%02x,%.1f", "v/10", 25, "25"},
        {"0:%02X,%.1f", "v/10", 25, "2.5"},
        {"0:%.1f,%.2f", "v/8", 1, "0.12"},
        {"0:%d,%02X", "v", 25, "19"},
    });
}

TEST(Range_display, ANumberWithoutATableHasFourteenCharacters) {
    expect_displays({
        {"%d 23456789ABCDEF", "v", 1, "1 23456789ABCD"},
        {"%.12f", "v", 1, "1.000000000000"},
        {"%.13f", "v", 1, "1.000000000000"},
        {"0:Off,%d 23456789ABCDEF", "v", 1, "1 23456789ABCDEF"},
        {"0:A text of a table,%d", "v", 0, "A text of a table"},
    });
}

TEST(Range_display, WritesNothingBeyondTheTerminator) {
    Open_range entry;
    char line[] = "##########";
    EXPECT_EQ(entry.Get_display_string(line, 8, 123), 0);
    EXPECT_EQ(std::string(line, 10), std::string("123\0######", 10));
}

TEST(Range_display, AnUnboundedLineTakesAnyText) {
    Open_range entry({0, 100, 10, "0:Off,%d dB", "v"});
    char line[16] = {};
    EXPECT_EQ(entry.Get_display_string(line, UINT_MAX, 100), 0);
    EXPECT_STREQ(line, "100 dB");
}

// Formats come from menu files: whatever they hold, a display stays within its line.
TEST(Range_display, NoFormatWritesBeyondItsLine) {
    std::mt19937 random(20240607);
    const auto pick = [&](std::size_t count) {
        return static_cast<unsigned int>(random() % count);
    };
    constexpr char PARTS[] = "%%%%dxXf.1220:,, -+*slng$'";
    for (int round = 0; round < 20000; ++round) {
        std::string format;
        for (unsigned int left = pick(14); left > 0; --left) {
            format += PARTS[pick(sizeof PARTS - 1)];
        }
        Open_range entry({0, 100, 10, format, "v*1.5"});
        const unsigned int length = 2 + pick(12);
        std::string line(length + 9, '#');
        const int value = static_cast<int>(pick(5)) - 1;
        for (int call = 0; call < 4; ++call) {
            ASSERT_EQ(entry.Get_display_string(line.data(), length, value), 0) << format;
            ASSERT_NE(line.find('\0'), std::string::npos) << format;
            ASSERT_EQ(line.substr(length + 1), "########") << format;
        }
    }
}

TEST(Range_display, ALineBelowTwoCharactersIsRefused) {
    Open_range entry;
    for (const unsigned int length : {0U, 1U}) {
        char line[] = "###";
        EXPECT_EQ(entry.Get_display_string(line, length, 5), 1);
        EXPECT_EQ(entry.Get_display_string(line, length, false, 5), 1);
        EXPECT_STREQ(line, "###");
    }
}

TEST(Range_display_death, NeedsABuffer) {
    Open_range entry;
    EXPECT_DEATH(entry.Get_display_string(nullptr, 16, 5), "Assertion `buffer' failed");
    EXPECT_DEATH(entry.Get_display_string(nullptr, 0, 5), "Assertion `buffer' failed");
}

TEST(Range_display, WithoutOverrideTheEntrysValueIsShown) {
    Open_range entry({0, 100, 10, "%d dB", "v*2"});
    char line[17];
    EXPECT_EQ(entry.Get_display_string(line, 16, false, 55), 0);
    EXPECT_STREQ(line, "20 dB");
    EXPECT_EQ(entry.Get_display_string(line, 16, true, 55), 0);
    EXPECT_STREQ(line, "110 dB");
}

TEST(Range_display, AValueOutOfRangeIsNotShown) {
    Open_range entry({0, 100, 10});
    entry.put(101);
    char line[] = "####";
    EXPECT_EQ(entry.Get_display_string(line, 3, false, 0), Data_entry::OUT_OF_RANGE);
    EXPECT_STREQ(line, "####");
    EXPECT_EQ(entry.shown(101), "101") << "an override is shown whatever the bounds";
}

class Failing_value : public Open_range {
public:
    int Get_value(void*, unsigned int length) override {
        asked_for = length;
        return 5;
    }
    unsigned int asked_for = 0;
};

TEST(Range_display, TheValueIsReadThroughItsSlotAndItsErrorPassedOn) {
    Failing_value entry;
    char line[] = "####";
    EXPECT_EQ(entry.Get_display_string(line, 3, false, 0), 5);
    EXPECT_EQ(entry.asked_for, 4U);
    EXPECT_STREQ(line, "####");
}

// What one call shows on a line whose buffer held '#' everywhere.
std::string call(Open_range& entry, unsigned int length, int value) {
    std::string line(length + 1, '#');
    EXPECT_EQ(entry.Get_display_string(line.data(), length, value), 0);
    EXPECT_EQ(line[length], '\0');
    line.pop_back();
    return line;
}

std::vector<std::string> calls(Open_range& entry, unsigned int length, int value, int count) {
    std::vector<std::string> lines;
    for (int i = 0; i < count; ++i) {
        lines.push_back(call(entry, length, value));
    }
    return lines;
}

using Lines = std::vector<std::string>;

// Intended: a text that fills its line scrolls, and while it is held the last position is left to the caller.
TEST(Range_marquee, ATextThatFillsTheLineScrollsCallByCall) {
    Open_range entry({0, 100000, 10});
    EXPECT_EQ(calls(entry, 5, 12345, 16),
              (Lines{"1234#", "1234#", "12345", "2345 ", "345 1", "45 12", "5 123",  //
                     "1234#", "1234#", "12345", "2345 ", "345 1", "45 12", "5 123",  //
                     "1234#", "1234#"}));
}

TEST(Range_marquee, ALongerTextIsCutToTheLineBeforeItScrolls) {
    Open_range entry({0, 100, 10, "0:Reference,%d", "v"});
    EXPECT_EQ(calls(entry, 4, 0, 14), (Lines{"Ref#", "Ref#", "Refe", "efe ", "fe R", "e Re",  //
                                             "Ref#", "Ref#", "Refe", "efe ", "fe R", "e Re",  //
                                             "Ref#", "Ref#"}));
}

TEST(Range_marquee, AFormattedNumberScrolls) {
    Open_range entry({0, 100, 10, "%d dB", "v"});
    EXPECT_EQ(calls(entry, 3, 7, 6), (Lines{"7 #", "7 #", "7 d", " d ", "d 7", "7 #"}));
}

TEST(Range_marquee, TheShortestLineScrolls) {
    Open_range entry({0, 100, 10});
    EXPECT_EQ(calls(entry, 2, 42, 8), (Lines{"4#", "4#", "42", "2 ", "4#", "4#", "42", "2 "}));
}

TEST(Range_marquee, AShorterTextIsCopiedAndLeavesTheMarqueeAlone) {
    Open_range entry({0, 100000, 10});
    EXPECT_EQ(calls(entry, 5, 12345, 4).back(), "2345 ");
    EXPECT_EQ(entry.shown(1234, 5), "1234");
    EXPECT_EQ(call(entry, 5, 12345), "345 1");
}

TEST(Range_marquee, AnotherTextGoesOnAtTheSamePosition) {
    Open_range entry({0, 100000, 10});
    calls(entry, 5, 12345, 4);
    EXPECT_EQ(call(entry, 5, 67890), "890 6");
}

TEST(Range_marquee, APositionBeyondAShorterTextStartsAgain) {
    Open_range entry({0, 100000, 10});
    calls(entry, 5, 12345, 6);
    EXPECT_EQ(calls(entry, 3, 678, 4), (Lines{"678", "78 ", "8 6", "67#"}));
}

TEST(Range_marquee, EveryEntryHasItsOwn) {
    Open_range one({0, 100000, 10});
    Open_range other({0, 100000, 10});
    calls(one, 5, 12345, 4);
    EXPECT_EQ(call(other, 5, 12345), "1234#");
}

TEST(Range_marquee, ARefusedCallDoesNotAdvanceIt) {
    Open_range entry({0, 10, 5});
    entry.put(11);
    char line[8];
    for (int i = 0; i < 3; ++i) {
        entry.Get_display_string(line, 2, false, 0);
        entry.Get_display_string(line, 1, 11);
    }
    EXPECT_EQ(call(entry, 2, 11), "1#");
}

}  // namespace
