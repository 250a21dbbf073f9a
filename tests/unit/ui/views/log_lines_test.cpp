#include <frontpanel_ui/log_lines.h>

#include <frontpanel_data/data_interface.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "output_log.h"
#include "support/folder.h"

namespace frontpanel {
namespace {

using Pairs = std::vector<std::pair<uint32_t, std::string>>;

Pairs pairs_of(const Log_lines& lines) {
    Pairs pairs;
    for (const Log_line& line : lines.lines()) {
        pairs.emplace_back(line.mask, line.text);
    }
    return pairs;
}

class LogLines : public testing::Test {
protected:
    // What the lines are after `print` has run with its output kept in a file.
    Pairs kept(const std::function<void(Log_lines&)>& print) {
        Pairs pairs;
        Output_log log(m_folder.file("log"));
        print(log.lines());
        log.lines().read();
        m_dropped = log.lines().dropped();
        return pairs_of(log.lines());
    }

    support::Folder m_folder;
    uint64_t m_dropped = 0;
};

TEST_F(LogLines, HaveTheMaskThatTheLibraryTells) {
    const Pairs lines = kept([](Log_lines&) {
        std::printf("always\n");
        debug_listener(0x3);
        std::printf("[a]");
        std::printf(" read\n");
        debug_listener(0);
        debug_listener(0x25);
        std::printf("written\n");
        debug_listener(0);
        std::printf("always\n");
    });
    EXPECT_EQ(lines, (Pairs{{0, "always"}, {0x3, "[a] read"}, {0x25, "written"}, {0, "always"}}));
}

TEST_F(LogLines, AreReadOnceAndInParts) {
    Pairs early;
    const Pairs lines = kept([&early](Log_lines& log) {
        debug_listener(0x5);
        std::printf("one\ntw");
        log.read();
        early = pairs_of(log);
        std::printf("o\n");
        debug_listener(0);
        std::printf("three\n");
    });
    EXPECT_EQ(early, (Pairs{{0x5, "one"}}));
    EXPECT_EQ(lines, (Pairs{{0x5, "one"}, {0x5, "two"}, {0, "three"}}));
}

TEST_F(LogLines, HoldWhatCommandsPrint) {
    const Pairs lines = kept([](Log_lines&) {
        std::printf("before\n");
        EXPECT_EQ(std::system("echo command"), 0);
        std::printf("after\n");
    });
    EXPECT_EQ(lines, (Pairs{{0, "before"}, {0, "command"}, {0, "after"}}));
}

TEST_F(LogLines, AreCutWhereTheyAreTooLongAndHaveNoTabs) {
    const Pairs lines = kept([](Log_lines&) {
        std::printf("\tx%s\nnext\n", std::string(2 * Log_lines::LONGEST_LINE, '-').c_str());
    });
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].second, " x" + std::string(Log_lines::LONGEST_LINE - 2, '-'));
    EXPECT_EQ(lines[1].second, "next");
}

TEST_F(LogLines, AreForgottenFromTheOldestOn) {
    const Pairs lines = kept([](Log_lines&) {
        for (size_t i = 0; i < Log_lines::MOST_LINES + 3; ++i) {
            debug_listener(i % 2 == 0 ? 0x3 : 0x5);
            std::printf("%zu\n", i);
            debug_listener(0);
        }
    });
    ASSERT_EQ(lines.size(), Log_lines::MOST_LINES);
    EXPECT_EQ(lines.front(), (Pairs::value_type{0x5, "3"}));
    EXPECT_EQ(lines.back(), (Pairs::value_type{0x3, std::to_string(Log_lines::MOST_LINES + 2)}));
    EXPECT_EQ(m_dropped, 3U);
}

// More than is read at a time, and more masks than are remembered: the end is right, whole lines only.
TEST_F(LogLines, OfATalkativeLibraryTheEndIsTaken) {
    const Pairs lines = kept([](Log_lines& log) {
        std::printf("first\n");
        log.read();
        for (int i = 0; i < 20000; ++i) {
            debug_listener(i % 2 == 0 ? 0x3 : 0x5);
            std::printf("line %06d of very many lines\n", i);
            debug_listener(0);
        }
    });
    ASSERT_EQ(lines.size(), Log_lines::MOST_LINES);
    for (size_t i = 0; i < lines.size(); ++i) {
        const size_t number = 20000 - lines.size() + i;
        char expected[40];
        std::snprintf(expected, sizeof expected, "line %06zu of very many lines", number);
        ASSERT_EQ(lines[i], (Pairs::value_type{number % 2 == 0 ? 0x3U : 0x5U, expected}));
    }
}

TEST_F(LogLines, ThereAreNoneOfWhatIsNoFile) {
    Log_lines none(-1);
    EXPECT_FALSE(none.is_kept());
    none.read();
    EXPECT_TRUE(none.lines().empty());
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    Log_lines of_a_pipe(ends[0]);
    EXPECT_FALSE(of_a_pipe.is_kept());
    of_a_pipe.read();
    EXPECT_TRUE(of_a_pipe.lines().empty());
    close(ends[0]);
    close(ends[1]);
}

TEST_F(LogLines, NobodyListensOnceTheOutputIsGivenBack) {
    kept([](Log_lines&) {});
    EXPECT_EQ(debug_listener, nullptr);
}

}  // namespace
}  // namespace frontpanel
