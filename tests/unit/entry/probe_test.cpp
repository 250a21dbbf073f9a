// The reachability probe without a network: what it runs, and how it reads the outcome.
#include <frontpanel_data/string_entry.h>
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
#include "support/indexes.h"

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

// The address of `Get_name` is what a line of 16 characters shows, a step of its marquee included.
TEST_F(Probe, ANameProbesTheAddressAsALineShowsIt) {
    Ip_entry entry("Gateway", "", 301, support::any_index(), nullptr, Data_entry::READ_ONLY, 1,
                   true, -1, nullptr, nullptr, nullptr);
    const auto probed_by_name = [&] {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        report = ends[1];
        EXPECT_STREQ(entry.Get_name(), "[C]Gateway");
        close(ends[1]);
        char command[128] = {};
        EXPECT_GT(read(ends[0], command, sizeof command - 1), 0);
        close(ends[0]);
        const std::string text = command;
        return text.substr(text.rfind('|') + 1);
    };
    entry.Set_value("192.168.100.200", 15);
    for (int call = 0; call < 5; ++call) {
        EXPECT_EQ(probed_by_name(), "192.168.100.200");
    }
    entry.Set_value("192.168.100.2000", 16);
    for (const char* const shown : {"192.168.100.2000", "192.168.100.2000", "192.168.100.2000",
                                    "92.168.100.2000 ", "2.168.100.2000 1"}) {
        EXPECT_EQ(probed_by_name(), shown);
    }
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
