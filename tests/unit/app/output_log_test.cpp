#include "output_log.h"

#include <fcntl.h>
#include <frontpanel_data/data_interface.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <frontpanel_base/input_error.h>
#include "support/capture.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

class OutputLog : public testing::Test {
protected:
    OutputLog() {
        std::string name = (fs::temp_directory_path() / "frontpanel-test-XXXXXX").string();
        m_folder = mkdtemp(name.data());
    }
    ~OutputLog() override { fs::remove_all(m_folder); }

    std::string file(const char* name) const { return (m_folder / name).string(); }
    static std::string content(const std::string& file) {
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }

    fs::path m_folder;
};

TEST_F(OutputLog, KeepsTheLibrarysLinesAndLetsThePanelsThrough) {
    const std::string shown = support::capture(0, [this] {
                                  Output_log log(file("log"));
                                  std::printf("library\n");
                                  log.out() << "panel\n" << std::flush;
                              }).out;
    EXPECT_EQ(shown, "panel\n");
    EXPECT_EQ(content(file("log")), "library\n");
}

TEST_F(OutputLog, GivesStandardOutputBack) {
    const std::string shown = support::capture(0, [this] {
                                  { Output_log log(file("log")); }
                                  std::printf("after\n");
                              }).out;
    EXPECT_EQ(shown, "after\n");
    EXPECT_EQ(content(file("log")), "");
}

TEST_F(OutputLog, TakesStandardErrorWhenAskedAndGivesItBack) {
    const std::string errors = support::capture(0, [this] {
                                   {
                                       Output_log log(file("log"));
                                       log.take_errors();
                                       std::fprintf(stderr, "hidden\n");
                                   }
                                   std::fprintf(stderr, "seen\n");
                               }).err;
    EXPECT_EQ(errors, "seen\n");
    EXPECT_EQ(content(file("log")), "hidden\n");
}

TEST_F(OutputLog, ReturnsStandardErrorWhenAsked) {
    const std::string errors = support::capture(0, [this] {
                                   Output_log log(file("log"));
                                   log.take_errors();
                                   std::fprintf(stderr, "hidden\n");
                                   log.return_errors();
                                   std::fprintf(stderr, "seen\n");
                                   log.return_errors();
                                   log.take_errors();
                                   std::fprintf(stderr, "hidden too\n");
                               }).err;
    EXPECT_EQ(errors, "seen\n");
    EXPECT_EQ(content(file("log")), "hidden\nhidden too\n");
}

TEST_F(OutputLog, AReportedLineIsInTheLogAndOnStandardErrorAtOnce) {
    const support::Captured both = support::capture(0, [this] {
        Output_log log(file("log"));
        log.report("warning: a rule");
        log.note("a value");
        EXPECT_EQ(content(file("log")), "warning: a rule\na value\n");
    });
    EXPECT_EQ(both.err, "warning: a rule\n");
    EXPECT_EQ(both.out, "");
}

TEST_F(OutputLog, WhileItTakesStandardErrorReportedLinesWaitUntilItIsReturned) {
    const support::Captured both = support::capture(0, [this] {
        Output_log log(file("log"));
        log.take_errors();
        log.report("first");
        log.note("noted");
        log.report("second");
        EXPECT_EQ(content(file("log")), "first\nnoted\nsecond\n");
        log.return_errors();
        log.report("third");
    });
    EXPECT_EQ(both.err, "first\nsecond\nthird\n");
}

TEST_F(OutputLog, OfManyReportedLinesTheRestIsCounted) {
    const std::string errors = support::capture(0, [this] {
                                   Output_log log(file("log"));
                                   log.take_errors();
                                   for (int i = 1; i <= 103; ++i) {
                                       log.report(std::to_string(i));
                                   }
                               }).err;
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 101);
    EXPECT_NE(errors.find("\n100\nwarning: 3 more in the log\n"), std::string::npos) << errors;
    EXPECT_NE(content(file("log")).find("\n103\n"), std::string::npos);
}

TEST_F(OutputLog, ReportedAndNotedLinesShowWhateverIsPrinted) {
    std::deque<Log_line> lines;
    support::capture(0, [this, &lines] {
        Output_log log(file("log"));
        log.report("warning: a rule");
        log.note("a value");
        log.lines().read();
        lines = log.lines().lines();
    });
    ASSERT_EQ(lines.size(), 2U);
    for (const Log_line& line : lines) {
        EXPECT_EQ(line.mask, 0U) << line.text;
    }
}

TEST_F(OutputLog, AFileThatCannotBeWrittenIsNamed) {
    const std::string missing = file("absent/log");
    try {
        Output_log log(missing);
        FAIL();
    } catch (const Input_error& error) {
        EXPECT_EQ(error.what(), missing + ": cannot be written: No such file or directory");
    }
}

TEST_F(OutputLog, TheDefaultIsTheUsersStateFolder) {
    setenv("XDG_STATE_HOME", m_folder.c_str(), 1);
    EXPECT_EQ(default_log_file(), file("frontpanel.log"));
    unsetenv("XDG_STATE_HOME");
    setenv("TMPDIR", m_folder.c_str(), 1);
    EXPECT_EQ(default_log_file(),
              file(("frontpanel-" + std::to_string(getuid()) + ".log").c_str()));
    unsetenv("TMPDIR");
}

// What a log of that name is refused for; empty when it is opened.
std::string refusal_of(const std::string& name) {
    try {
        Output_log log(name);
    } catch (const Input_error& error) {
        return error.what();
    }
    return "";
}

TEST_F(OutputLog, APipeThatNobodyReadsIsRefusedWithoutWaiting) {
    ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(refusal_of(file("pipe")),
              file("pipe") + ": cannot be written: nobody reads the pipe");
}

TEST_F(OutputLog, APipeThatIsReadIsALog) {
    ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
    const int reader = open(file("pipe").c_str(), O_RDONLY | O_NONBLOCK);
    support::capture(0, [this] {
        Output_log log(file("pipe"));
        std::printf("library\n");
    });
    char text[20] = {};
    EXPECT_EQ(read(reader, text, sizeof text), 8);
    EXPECT_STREQ(text, "library\n");
    close(reader);
}

TEST_F(OutputLog, InASharedFolderLinksAndFilesOfOthersAreRefusedAndStay) {
    fs::permissions(m_folder, fs::perms::others_write, fs::perm_options::add);
    std::ofstream(file("victim")) << "precious";
    fs::create_hard_link(file("victim"), file("hard"));
    fs::create_symlink("victim", file("symbolic"));
    EXPECT_EQ(refusal_of(file("hard")), file("hard") + ": cannot be written: it is a hard link");
    EXPECT_EQ(refusal_of(file("symbolic")), file("symbolic") + ": cannot be written: it is a link");
    if (geteuid() == 0) {
        std::ofstream(file("foreign")) << "precious";
        ASSERT_EQ(chown(file("foreign").c_str(), 65534, 65534), 0);
        EXPECT_EQ(refusal_of(file("foreign")),
                  file("foreign") + ": cannot be written: it belongs to another user");
        EXPECT_EQ(content(file("foreign")), "precious");
    }
    EXPECT_EQ(content(file("victim")), "precious");
}

TEST_F(OutputLog, InAnotherUsersFolderOnlyThatUsersOwnFilesAreEmptied) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the superuser gives files away";
    }
    constexpr uid_t OTHER = 65534;
    std::ofstream(file("victim")) << "precious";
    fs::create_hard_link(file("victim"), file("hard"));
    fs::create_symlink("victim", file("symbolic"));
    std::ofstream(file("third")) << "precious";
    std::ofstream(file("own")) << "old";
    ASSERT_EQ(chown(file("third").c_str(), OTHER - 1, OTHER), 0);
    ASSERT_EQ(chown(file("own").c_str(), OTHER, OTHER), 0);
    ASSERT_EQ(chown(m_folder.c_str(), OTHER, OTHER), 0);
    EXPECT_EQ(refusal_of(file("hard")), file("hard") + ": cannot be written: it is a hard link");
    EXPECT_EQ(refusal_of(file("symbolic")), file("symbolic") + ": cannot be written: it is a link");
    EXPECT_EQ(refusal_of(file("third")),
              file("third") + ": cannot be written: it belongs to another user");
    EXPECT_EQ(refusal_of(file("own")), "");
    EXPECT_EQ(content(file("victim")) + content(file("third")) + content(file("own")),
              "preciousprecious");
}

TEST_F(OutputLog, InAFolderOfTheUsersALinkIsFollowed) {
    fs::create_symlink("kept", file("symbolic"));
    EXPECT_EQ(refusal_of(file("symbolic")), "");
    EXPECT_TRUE(fs::exists(file("kept")));
}

// Another panel, which has a log of its own as long as the test's keeps one.
TEST_F(OutputLog, TwoPanelsDoNotShareALog) {
    setenv("XDG_STATE_HOME", m_folder.c_str(), 1);
    for (const std::string& name : {std::string(), file("named")}) {
        support::capture(0, [&name] {
            Output_log log(name);
            std::printf("first\n");
            const pid_t other = fork();
            if (other == 0) {
                const std::string refused = refusal_of(name);
                const std::string expected =
                    name.empty() ? "" : name + ": cannot be written: another panel is writing it";
                _exit(refused == expected ? 0 : 1);
            }
            int status = 0;
            waitpid(other, &status, 0);
            EXPECT_EQ(status, 0);
        });
    }
    unsetenv("XDG_STATE_HOME");
    EXPECT_EQ(content(file("frontpanel.log")), "first\n");
    EXPECT_TRUE(fs::exists(file("frontpanel-2.log")));
    EXPECT_EQ(content(file("named")), "first\n");
}

TEST_F(OutputLog, ACommandThatOutlivesThePanelDoesNotKeepTheLog) {
    ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
    const int gate = open(file("pipe").c_str(), O_RDWR);
    int started[2];
    ASSERT_EQ(pipe2(started, O_CLOEXEC), 0);
    pid_t command = 0;
    support::capture(0, [this, &command, &started] {
        Output_log log(file("log"));
        command = fork();
        if (command == 0) {
            execl("/bin/sh", "sh", "-c", "read -r line <\"$0\"", file("pipe").c_str(), nullptr);
            _exit(1);
        }
        // Closed by the command's start.
        close(started[1]);
        char byte = 0;
        EXPECT_EQ(read(started[0], &byte, 1), 0);
        close(started[0]);
    });
    EXPECT_EQ(refusal_of(file("log")), "");
    EXPECT_EQ(write(gate, "\n", 1), 1);
    waitpid(command, nullptr, 0);
    close(gate);
}

TEST_F(OutputLog, ALinkInTheDefaultPlaceIsNotFollowed) {
    setenv("XDG_STATE_HOME", m_folder.c_str(), 1);
    fs::create_symlink(file("victim"), file("frontpanel.log"));
    EXPECT_THROW(Output_log(""), Input_error);
    EXPECT_FALSE(fs::exists(file("victim")));
    unsetenv("XDG_STATE_HOME");
}

// How the library prints a line of a kind.
void print_line(const std::string& text) {
    debug_listener(0x1);
    std::printf("%s\n", text.c_str());
    debug_listener(0);
}

TEST_F(OutputLog, AFullLogDropsItsOlderHalfAndSaysSo) {
    const std::string filling(80, 'x');
    std::string first;
    std::string last;
    std::deque<Log_line> shown;
    {
        Output_log log(file("log"));
        for (int i = 0; i < 120000; ++i) {
            print_line(std::to_string(i) + " " + filling);
        }
        print_line("last");
        EXPECT_LE(fs::file_size(file("log")), static_cast<uintmax_t>(Output_log::LARGEST));
        log.lines().read();
        shown = log.lines().lines();
    }
    const std::string text = content(file("log"));
    EXPECT_GT(text.size(), static_cast<size_t>(Output_log::LARGEST) / 4);
    std::istringstream lines(text);
    std::getline(lines, first);
    EXPECT_EQ(first.rfind("frontpanel: the log was full: ", 0), 0U) << first;
    int number = -1;
    for (std::string line; std::getline(lines, line) && line != "last";) {
        const int next = std::stoi(line);
        EXPECT_TRUE(number < 0 || next == number + 1) << line;
        EXPECT_EQ(line, std::to_string(next) + " " + filling);
        number = next;
    }
    EXPECT_EQ(number, 119999);
    ASSERT_FALSE(shown.empty());
    EXPECT_EQ(shown.back().text, "last");
    EXPECT_EQ(shown.back().mask, 0x1U);
}

TEST_F(OutputLog, LinesThatNobodyAnnouncesAreDroppedToo) {
    Output_log log(file("log"));
    const std::string filling(999, 'x');
    for (off_t i = 0; i <= Output_log::LARGEST / 1000; ++i) {
        std::printf("%s\n", filling.c_str());
    }
    log.trim();
    EXPECT_LE(fs::file_size(file("log")), static_cast<uintmax_t>(Output_log::LARGEST));
    std::printf("last\n");
    const std::string text = content(file("log"));
    EXPECT_EQ(text.substr(text.size() - 7), "x\nlast\n");
}

TEST_F(OutputLog, ALogWithoutLineEndsIsDroppedWhole) {
    Output_log log(file("log"));
    std::printf("%s", std::string(static_cast<size_t>(Output_log::LARGEST) + 1, 'x').c_str());
    log.trim();
    EXPECT_EQ(content(file("log")),
              "frontpanel: the log was full: " + std::to_string(Output_log::LARGEST + 1) +
                  " older bytes were dropped here\n");
}

}  // namespace
}  // namespace frontpanel
