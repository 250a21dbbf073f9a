// The reachability probe without a network: what it runs, and how it reads the outcome.
#include <frontpanel_data/entry.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/capture.h"

namespace {

// What the child does in place of ping; runs in the child, after its streams were reopened.
void (*child_action)() = nullptr;
int report = -1;  // where the child writes its command line
bool fork_fails = false;
bool wait_fails = false;
int forks = 0;
std::vector<pid_t> waited;

}  // namespace

extern "C" {
pid_t __real_fork();
pid_t __real_waitpid(pid_t child, int* status, int options);

pid_t __wrap_fork() {
    ++forks;
    if (fork_fails) {
        errno = EAGAIN;
        return -1;
    }
    return __real_fork();
}

pid_t __wrap_waitpid(pid_t child, int* status, int options) {
    const pid_t ended = __real_waitpid(child, status, options);
    waited.push_back(child);
    if (wait_fails) {
        errno = ECHILD;
        return -1;
    }
    EXPECT_EQ(options, 0);
    return ended;
}

int __wrap_execl(const char* path, const char* first, ...) {
    std::string command = path;
    va_list rest;
    va_start(rest, first);
    for (const char* word = first; word != nullptr; word = va_arg(rest, const char*)) {
        command += '|';
        command += word;
    }
    va_end(rest);
    if (report >= 0 && write(report, command.c_str(), command.size()) < 0) {
        _exit(99);
    }
    child_action();
    errno = ENOENT;  // as if there were no such program
    return -1;
}
}

namespace {

class Probe : public testing::Test {
protected:
    Probe() {
        child_action = [] { _exit(0); };
        report = -1;
        fork_fails = false;
        wait_fails = false;
        forks = 0;
        waited.clear();
    }

    static bool probe(std::string address) { return Data_entry::isRemoteConnected(&address[0]); }
    static bool probe_ending_by(void (*action)()) {
        child_action = action;
        return probe("127.0.0.1");
    }
};

TEST_F(Probe, SendsOneQuietEchoRequestWithADeadlineOfOneSecond) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    report = ends[1];
    EXPECT_TRUE(probe("192.0.2.7"));
    close(ends[1]);
    char command[128] = {};
    EXPECT_GT(read(ends[0], command, sizeof command - 1), 0);
    close(ends[0]);
    EXPECT_STREQ(command, "/bin/ping|ping|-q|-c|1|-w|1|192.0.2.7");
}

TEST_F(Probe, OnlyANormalEndWithoutAnErrorIsAnAnswer) {
    EXPECT_TRUE(probe_ending_by([] { _exit(0); }));
    EXPECT_FALSE(probe_ending_by([] { _exit(1); })) << "no answer";
    EXPECT_FALSE(probe_ending_by([] { _exit(2); })) << "ping failed";
    EXPECT_FALSE(probe_ending_by([] { std::raise(SIGKILL); }));
}

TEST_F(Probe, WithoutThePingProgramThereIsNoAnswer) {
    EXPECT_FALSE(probe_ending_by([] {}));
}

TEST_F(Probe, WaitsForItsOwnChildOnly) {
    EXPECT_TRUE(probe("127.0.0.1"));
    ASSERT_EQ(waited.size(), 1u);
    EXPECT_GT(waited[0], 0);
    EXPECT_EQ(forks, 1);
}

TEST_F(Probe, AFailedForkIsNoAnswer) {
    fork_fails = true;
    EXPECT_FALSE(probe("127.0.0.1"));
    EXPECT_TRUE(waited.empty());
}

TEST_F(Probe, AFailedWaitIsNoAnswer) {
    wait_fails = true;
    EXPECT_FALSE(probe("127.0.0.1"));
    EXPECT_EQ(waited.size(), 1u) << "and is not repeated";
}

TEST_F(Probe, AddressesThatNameNoHostCostNoChild) {
    for (const char* const address : {"0.0.0.0", "10.1.1.0", "127.0.0.0", ".0", "x.0"}) {
        EXPECT_FALSE(probe(address)) << address;
    }
    EXPECT_EQ(forks, 0);
    for (const char* const address : {"10.1.1.10", "10.0.0.1", "0", ""}) {
        EXPECT_TRUE(probe(address)) << address;
    }
    EXPECT_EQ(forks, 4);
}

TEST_F(Probe, WhatTheProgramWritesIsDiscarded) {
    const auto printed = support::capture(0, [] {
        std::printf("before");
        EXPECT_TRUE(probe_ending_by([] {
            // Both succeed: a program that minds where its summary goes still ends well.
            const bool written = write(STDOUT_FILENO, "summary", 7) == 7 &&
                                 write(STDERR_FILENO, "complaint", 9) == 9;
            _exit(written ? 0 : 1);
        }));
    });
    EXPECT_EQ(printed.out, "before");
    EXPECT_EQ(printed.err, "");
}

}  // namespace
