#include "views/text_pages.h"

#include <gtest/gtest.h>

namespace frontpanel {
namespace {

using Lines = std::vector<std::string>;

constexpr const char* LONG = "one two three four five six";

TEST(Text_pages, AShortTextIsOnePageWithoutANumber) {
    Text_pages text("one two");
    text.fit(16, 2);
    EXPECT_EQ(text.show(), Lines{"one two"});
    EXPECT_EQ(text.number(), "");
    EXPECT_FALSE(text.has_several());
    text.turn(1);
    EXPECT_EQ(text.show(), Lines{"one two"});
}

TEST(Text_pages, NoTextIsAPageToo) {
    Text_pages text("");
    text.fit(16, 2);
    EXPECT_EQ(text.show(), Lines{});
    EXPECT_EQ(text.number(), "");
}

TEST(Text_pages, APersonTurnsThemInBothDirectionsAndRound) {
    Text_pages text(LONG);
    text.fit(8, 2);
    EXPECT_EQ(text.show(), (Lines{"one two", "three"}));
    EXPECT_EQ(text.number(), "1/2");
    text.turn(1);
    EXPECT_EQ(text.show(), (Lines{"four", "five six"}));
    EXPECT_EQ(text.number(), "2/2");
    text.turn(1);
    EXPECT_EQ(text.number(), "1/2");
    text.turn(-1);
    EXPECT_EQ(text.number(), "2/2");
}

TEST(Text_pages, TurnByThemselvesAtThePaceOfAReader) {
    Text_pages text(LONG);
    text.fit(8, 2);
    const auto calls = [&text](const std::string& page) {
        int count = 0;
        for (; text.number() == page; ++count) {
            text.show();
        }
        return count - 1;  // the last one has shown the next page
    };
    EXPECT_EQ(calls("1/2"), 5) << "12 characters";
    EXPECT_EQ(calls("2/2"), 4) << "the first call has shown it already";
    EXPECT_EQ(text.number(), "1/2");
}

TEST(Text_pages, WaitForAPersonWhoHasTurnedOne) {
    Text_pages text(LONG);
    text.fit(8, 2);
    text.turn(1);
    for (int call = 0; call < 1000; ++call) {
        EXPECT_EQ(text.show(), (Lines{"four", "five six"}));
    }
}

TEST(Text_pages, LeaveRoomForTheNumberBesideThem) {
    Text_pages text("a bb ccc dddd eeeee ffffff");
    text.fit(10, 1, true);
    EXPECT_EQ(text.show(), Lines{"a bb"});
    EXPECT_EQ(text.number(), "1/5");
    Text_pages longer("1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20");
    longer.fit(8, 1, true);
    EXPECT_EQ(longer.show(), Lines{"1"});
    EXPECT_EQ(longer.number(), "1/20");
    Text_pages whole("0123456789");
    whole.fit(10, 1, true);
    EXPECT_EQ(whole.show(), Lines{"0123456789"});
}

TEST(Text_pages, AnotherSizeKeepsThePageWhereThereIsOne) {
    Text_pages text(LONG);
    text.fit(8, 1);
    text.turn(-1);
    EXPECT_EQ(text.number(), "4/4");
    text.fit(8, 2);
    EXPECT_EQ(text.number(), "2/2");
    text.fit(40, 2);
    EXPECT_EQ(text.show(), Lines{LONG});
}

}  // namespace
}  // namespace frontpanel
