#include <frontpanel_base/signal_cleanup.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

namespace frontpanel {
namespace {

void say(const char (&text)[7]) {
    if (write(STDERR_FILENO, text, sizeof text - 1) < 0) {
        _exit(1);
    }
}

void say_first() {
    say("first ");
}

void say_second() {
    say("second");
}

TEST(LastActDeathTest, TheYoungestComesFirstAndTheSignalEndsTheProcess) {
    for (const int signal_number : {SIGTERM, SIGXCPU}) {
        EXPECT_EXIT(
            {
                const Signal_cleanup first(Ending::REQUESTED, say_first);
                const Signal_cleanup second(Ending::REQUESTED, say_second);
                std::raise(signal_number);
            },
            testing::KilledBySignal(signal_number), "^secondfirst $");
    }
}

TEST(LastActDeathTest, ACrashIsWaitedForOnlyByAnActForAnyEnding) {
    EXPECT_EXIT(
        {
            const Signal_cleanup first(Ending::ANY, say_first);
            std::raise(SIGSEGV);
        },
        testing::KilledBySignal(SIGSEGV), "^first $");
    EXPECT_EXIT(
        {
            const Signal_cleanup first(Ending::REQUESTED, say_first);
            std::signal(SIGFPE, SIG_DFL);
            std::raise(SIGFPE);
        },
        testing::KilledBySignal(SIGFPE), "^$");
}

TEST(LastActDeathTest, AnActThatIsGoneIsNotCalled) {
    EXPECT_EXIT(
        {
            const Signal_cleanup first(Ending::REQUESTED, say_first);
            { const Signal_cleanup second(Ending::ANY, say_second); }
            std::raise(SIGHUP);
        },
        testing::KilledBySignal(SIGHUP), "^first $");
    EXPECT_EXIT(
        {
            { const Signal_cleanup first(Ending::REQUESTED, say_first); }
            std::raise(SIGHUP);
        },
        testing::KilledBySignal(SIGHUP), "^$");
}

std::atomic<bool> acts;
std::atomic<bool> is_withdrawn;

// An act that another thread has time to withdraw.
void say_whether_withdrawn() {
    acts = true;
    for (int i = 0; i < 100 && !is_withdrawn; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    is_withdrawn ? say_second() : say_first();
}

// A terminal that is given back on the menu thread is not taken from under the thread that restores it.
TEST(LastActDeathTest, AnActIsNotWithdrawnWhileAnotherThreadCallsIt) {
    EXPECT_EXIT(
        {
            std::thread ends;
            {
                const Signal_cleanup act(Ending::ANY, say_whether_withdrawn);
                ends = std::thread([] { end_by_signal(SIGTERM); });
                while (!acts) {
                }
            }
            is_withdrawn = true;
            ends.join();
        },
        testing::KilledBySignal(SIGTERM), "^first $");
}

TEST(LastActDeathTest, AnIgnoredSignalStaysIgnored) {
    EXPECT_EXIT(
        {
            std::signal(SIGHUP, SIG_IGN);
            {
                const Signal_cleanup first(Ending::ANY, say_first);
                std::raise(SIGHUP);
            }
            std::raise(SIGHUP);
            _exit(0);
        },
        testing::ExitedWithCode(0), "^$");
}

}  // namespace
}  // namespace frontpanel
