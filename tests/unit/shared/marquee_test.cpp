#include "marquee.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

// What a display of `length` characters shows on successive calls. The buffer starts as dots.
class Display {
public:
    Display(unsigned int length, unsigned int delay) : m_length(length), m_delay(delay) {}

    std::string show(const std::string& text) {
        char buffer[32];
        std::memset(buffer, '.', sizeof buffer);
        marquee::show(buffer, m_length, text.data(), text.size(), m_offset, m_delay);
        EXPECT_EQ(buffer[m_length], '\0');
        EXPECT_EQ(buffer[m_length + 1], '.') << "nothing is written beyond the terminator";
        return std::string(buffer, m_length);
    }
    std::vector<std::string> show(const std::string& text, int calls) {
        std::vector<std::string> shown;
        for (int call = 0; call < calls; ++call) {
            shown.push_back(show(text));
        }
        return shown;
    }

private:
    unsigned int m_length;
    unsigned int m_offset = 0;
    unsigned int m_delay;
};

using Shown = std::vector<std::string>;

// While a text is held, the last position keeps what the buffer held.
TEST(Marquee, HoldsTheStartThenScrollsWithOneBlankBetweenEndAndStart) {
    Display display(4, 2);
    EXPECT_EQ(display.show("HELLO", 10), (Shown{"HEL.", "HEL.", "HELL", "ELLO", "LLO ", "LO H",
                                                "O HE", "HEL.", "HEL.", "HELL"}));
}

TEST(Marquee, ScrollsAtOnceWithoutADelay) {
    Display display(4, 0);
    EXPECT_EQ(display.show("HELLO", 2), (Shown{"HELL", "ELLO"}));
}

TEST(Marquee, ATextAsLongAsTheDisplayScrollsToo) {
    Display display(4, 0);
    EXPECT_EQ(display.show("ABCD", 6), (Shown{"ABCD", "BCD ", "CD A", "D AB", "ABC.", "ABC."}));
}

TEST(Marquee, AShorterNewTextStartsAgainWhenItsEndIsPassed) {
    Display display(4, 0);
    display.show("ABCDEFGHIJ", 7);
    EXPECT_EQ(display.show("HELLO"), "HELL");
    EXPECT_EQ(display.show("HELLO"), "ELLO");
}

TEST(Marquee, ANewTextGoesOnAtTheOldPlace) {
    Display display(4, 0);
    display.show("HELLO", 2);
    EXPECT_EQ(display.show("ABCDEF"), "CDEF");
}

TEST(Marquee, ASingleCharacterIsHeldAfterEachCall) {
    Display display(1, 0);
    EXPECT_EQ(display.show("A", 4), (Shown{"A", ".", ".", "A"}));
}

TEST(MarqueeWindow, GoesOnAfterOneBlankAtTheStart) {
    const struct {
        unsigned int length;
        std::size_t offset;
        const char* window;
    } windows[] = {
        {4, 0, "HELL"}, {4, 1, "ELLO"},  {4, 2, "LLO "},  {4, 3, "LO H"}, {4, 4, "O HE"},
        {4, 5, " HEL"}, {5, 0, "HELLO"}, {5, 5, " HELL"}, {1, 4, "O"},    {1, 5, " "},
    };
    for (const auto& expected : windows) {
        char buffer[8];
        std::memset(buffer, '.', sizeof buffer);
        marquee::copy_window(buffer, expected.length, "HELLO", 5, expected.offset);
        EXPECT_EQ(std::string(buffer, sizeof buffer),
                  expected.window + std::string(sizeof buffer - expected.length, '.'));
    }
}

TEST(MarqueeStep, TakesAFullTurnAndThenHolds) {
    unsigned int offset = 0;
    unsigned int delay = 0;
    for (unsigned int expected = 0; expected < 5; ++expected) {
        const marquee::Step step = marquee::advance(offset, delay, 5);
        EXPECT_FALSE(step.hold);
        EXPECT_EQ(step.offset, expected);
    }
    EXPECT_EQ(offset, 0u);
    EXPECT_EQ(delay, 2u);
    EXPECT_TRUE(marquee::advance(offset, delay, 5).hold);
    EXPECT_EQ(delay, 1u);
}

TEST(MarqueeStep, AnOffsetBeyondTheTextStartsAgain) {
    for (const unsigned int beyond : {5u, 6u, 0xFFFFFFFFu}) {
        unsigned int offset = beyond;
        unsigned int delay = 0;
        const marquee::Step step = marquee::advance(offset, delay, 5);
        EXPECT_FALSE(step.hold);
        EXPECT_EQ(step.offset, 0u);
        EXPECT_EQ(offset, 1u);
    }
}

}  // namespace
