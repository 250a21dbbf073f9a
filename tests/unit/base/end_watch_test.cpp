#include <frontpanel_base/end_watch.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include <frontpanel_base/signal_cleanup.h>

namespace frontpanel {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

bool is_told(const End_watch& watch) {
    pollfd source{watch.descriptor(), POLLIN, 0};
    return poll(&source, 1, 20000) == 1;
}

void say_good_bye() {
    if (write(STDERR_FILENO, "bye", 3) != 3) {
        _exit(1);
    }
}

// The command ends when the process does, whose end of the pipe it reads from.
[[noreturn]] void hang_in_a_command() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0 || dup2(ends[0], STDIN_FILENO) < 0) {
        _exit(2);
    }
    const Signal_cleanup act(Ending::REQUESTED, say_good_bye);
    const End_watch watch{milliseconds(1)};
    const int status = std::system("kill -INT $PPID; cat");
    _exit(status == 0 ? 0 : 1);
}

// A shell without job control starts its commands in the background with SIGINT and SIGQUIT ignored.
class End_watchDeathTest : public testing::Test {
protected:
    void SetUp() override {
        for (const int signal_number :
             {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGALRM, SIGUSR1, SIGUSR2, SIGXCPU}) {
            std::signal(signal_number, SIG_DFL);
        }
    }
};

// Each in a process of its own: signals are the whole process's.
TEST_F(End_watchDeathTest, ASignalIsNotedAndDoesNotEndTheProcess) {
    for (const int signal_number :
         {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2, SIGXCPU}) {
        EXPECT_EXIT(
            {
                const End_watch watch{hours(1)};
                const bool quiet = watch.signal_number() == 0;
                kill(getpid(), signal_number);
                const bool told = is_told(watch);
                _exit(quiet && told && watch.signal_number() == signal_number ? 0 : 1);
            },
            testing::ExitedWithCode(0), "");
    }
}

// A tool that waits for an alarm of its own would wait for ever.
TEST_F(End_watchDeathTest, AnAlarmIsNotBlockedInACommand) {
    EXPECT_EXIT(
        {
            const End_watch watch{hours(1)};
            _exit(std::system("kill -ALRM $$; exit 7") == SIGALRM ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

// The call that runs a command ignores SIGINT for its time.
TEST_F(End_watchDeathTest, ASignalDuringACommandIsNoted) {
    EXPECT_EXIT(
        {
            const End_watch watch{hours(1)};
            const int status = std::system("kill -INT $PPID");
            const bool told = is_told(watch);
            _exit(status == 0 && told && watch.signal_number() == SIGINT ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(End_watchDeathTest, ACommandThatDoesNotEndDoesNotHoldTheProcess) {
    EXPECT_EXIT(hang_in_a_command(), testing::KilledBySignal(SIGINT), "^bye$");
}

TEST_F(End_watchDeathTest, ASecondSignalEndsTheProcessAtOnce) {
    EXPECT_EXIT(
        {
            const Signal_cleanup act(Ending::REQUESTED, say_good_bye);
            const End_watch watch{hours(1)};
            kill(getpid(), SIGTERM);
            is_told(watch);
            kill(getpid(), SIGINT);
            for (;;) {
                pause();
            }
        },
        testing::KilledBySignal(SIGTERM), "^bye$");
}

TEST_F(End_watchDeathTest, AfterTheWatchASignalEndsTheProcessAsEver) {
    EXPECT_EXIT(
        {
            { const End_watch watch; }
            std::raise(SIGTERM);
            _exit(0);
        },
        testing::KilledBySignal(SIGTERM), "");
}

TEST_F(End_watchDeathTest, AnIgnoredSignalStaysIgnored) {
    EXPECT_EXIT(
        {
            std::signal(SIGHUP, SIG_IGN);
            const End_watch watch{hours(1)};
            kill(getpid(), SIGHUP);
            kill(getpid(), SIGTERM);
            is_told(watch);
            _exit(watch.signal_number() == SIGTERM ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

// A write to a closed pipe only fails while there is a watch.
TEST_F(End_watchDeathTest, AClosedPipeDoesNotEndTheProcessUnlessItIsSentTheSignal) {
    EXPECT_EXIT(
        {
            const End_watch watch{hours(1)};
            int ends[2];
            const bool has_pipe = pipe2(ends, O_CLOEXEC) == 0 && close(ends[0]) == 0;
            const bool fails = has_pipe && write(ends[1], "", 1) == -1;
            const bool quiet = watch.signal_number() == 0;
            kill(getpid(), SIGPIPE);
            _exit(fails && quiet && is_told(watch) && watch.signal_number() == SIGPIPE ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(End_watchDeathTest, AForcedEndDoesItsActBeforeTheLastActs) {
    EXPECT_EXIT(
        {
            const Signal_cleanup act(Ending::REQUESTED, say_good_bye);
            End_watch watch{milliseconds(0)};
            std::string text = "saved ";
            watch.set_forced_end([&text] {
                if (write(STDERR_FILENO, text.data(), text.size()) < 0) {
                    _exit(1);
                }
            });
            kill(getpid(), SIGTERM);
            for (;;) {
                pause();
            }
        },
        testing::KilledBySignal(SIGTERM), "^saved bye$");
}

TEST_F(End_watchDeathTest, AnActThatWasWithdrawnIsNotDone) {
    EXPECT_EXIT(
        {
            End_watch watch{milliseconds(0)};
            watch.set_forced_end([] { _exit(1); });
            watch.set_forced_end(nullptr);
            kill(getpid(), SIGTERM);
            for (;;) {
                pause();
            }
        },
        testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
}  // namespace frontpanel
