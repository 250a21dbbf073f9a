#include "error_lines.h"

#include <gtest/gtest.h>

#include <vector>

namespace frontpanel {
namespace {

using Lines = std::vector<std::string>;

class Error_lines_test : public testing::Test {
protected:
    Lines m_printed;
    Error_lines m_lines{"room", [this](const std::string& line) { m_printed.push_back(line); }};
    Error_lines::Time m_now = Error_lines::Time() + std::chrono::hours(1);
};

TEST_F(Error_lines_test, AreWholeAndPrintableWithTheNameInFront) {
    m_lines.take("first\nsec", m_now);
    m_lines.take("ond \x1b[2J\n\n", m_now);
    EXPECT_EQ(m_printed, (Lines{"room: first", "room: second ?[2J"}));
    EXPECT_EQ(m_lines.last_words(m_now), "second ?[2J");
}

TEST_F(Error_lines_test, AMessageStandsBesideThem) {
    m_lines.take("first\nsec", m_now);
    m_lines.note("a message\n" + std::string(1000, 'x'), m_now);
    m_lines.take("ond\n", m_now);
    EXPECT_EQ(
        m_printed,
        (Lines{"room: first", "room: a message?" + std::string(Error_lines::LONGEST_LINE - 10, 'x'),
               "room: second"}));
    EXPECT_EQ(m_lines.last_words(m_now), "second");
    for (int i = 0; i < 1000; ++i) {
        m_lines.note("again", m_now);
    }
    EXPECT_EQ(m_printed.size(), Error_lines::MOST_LINES);
}

TEST_F(Error_lines_test, AnUnfinishedOneIsTakenAtTheEnd) {
    m_lines.take("last words", m_now);
    EXPECT_EQ(m_printed, Lines{});
    m_lines.end(m_now);
    m_lines.end(m_now);
    EXPECT_EQ(m_printed, Lines{"room: last words"});
}

TEST_F(Error_lines_test, AnOldOneIsNobodysLastWords) {
    m_lines.take("listening on port 7\n", m_now);
    EXPECT_EQ(m_lines.last_words(m_now + Error_lines::LAST_WORDS), "listening on port 7");
    EXPECT_EQ(m_lines.last_words(m_now + Error_lines::LAST_WORDS + std::chrono::milliseconds(1)),
              "");
    m_lines.take("no memory left\n\n", m_now + std::chrono::hours(3));
    EXPECT_EQ(m_lines.last_words(m_now + std::chrono::hours(3)), "no memory left");
    m_lines.forget_last_words();
    EXPECT_EQ(m_lines.last_words(m_now + std::chrono::hours(3)), "");
}

TEST_F(Error_lines_test, ALongOneIsCut) {
    m_lines.take(std::string(100000, 'x') + "\n", m_now);
    EXPECT_EQ(m_printed, Lines{"room: " + std::string(Error_lines::LONGEST_LINE, 'x')});
}

TEST_F(Error_lines_test, VeryManyAreDroppedAndCounted) {
    for (int i = 0; i < 1000; ++i) {
        m_lines.take("again\n", m_now);
    }
    EXPECT_EQ(m_printed.size(), Error_lines::MOST_LINES);
    m_printed.clear();
    m_lines.take("later\n", m_now + Error_lines::SPAN);
    EXPECT_EQ(m_printed, (Lines{"room: 950 more lines were dropped", "room: later"}));
}

}  // namespace
}  // namespace frontpanel
