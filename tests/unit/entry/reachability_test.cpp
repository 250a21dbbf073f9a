// The reachability probe with the real ping. Only addresses of this machine are asked, and an invalid
// option where ping must fail.
#include <dirent.h>
#include <frontpanel_data/data_entry.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "support/capture.h"
#include "support/indexes.h"

namespace {

bool probe(std::string address) {
    return Data_entry::isRemoteConnected(&address[0]);
}

bool ping_works() {
    return std::system("/bin/ping -q -c 1 -w 1 127.0.0.1 >/dev/null 2>&1") == 0;
}

int open_descriptors() {
    DIR* const folder = opendir("/proc/self/fd");
    int count = 0;
    while (readdir(folder) != nullptr) {
        ++count;
    }
    closedir(folder);
    return count;
}

bool has_children() {
    return waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD;
}

TEST(Reachability, AnAnsweringAddressIsConnected) {
    if (!ping_works()) {
        GTEST_SKIP() << "/bin/ping cannot reach 127.0.0.1 here";
    }
    EXPECT_TRUE(probe("127.0.0.1"));
}

TEST(Reachability, AnsweringAddressIsMarkedInTheName) {
    if (!ping_works()) {
        GTEST_SKIP() << "/bin/ping cannot reach 127.0.0.1 here";
    }
    Ip_entry entry("Gateway", "", 301, support::any_index(), nullptr, Data_entry::READ_ONLY, 1,
                   true, -1, nullptr, nullptr, nullptr);
    entry.Set_value("127.0.0.1", 9);
    EXPECT_STREQ(entry.Get_name(), "[C]Gateway");
}

TEST(Reachability, AFailingPingIsNotConnected) {
    EXPECT_FALSE(probe("-Z"));
    EXPECT_FALSE(probe(""));
}

TEST(Reachability, ProbeLeavesNoChildAndNoDescriptor) {
    const int before = open_descriptors();
    for (int call = 0; call < 5; ++call) {
        probe("-Z");
        probe("127.0.0.1");
    }
    EXPECT_FALSE(has_children());
    EXPECT_EQ(open_descriptors(), before);
}

TEST(Reachability, ProbePrintsNothingAndWritesBufferedTextOnce) {
    const auto printed = support::capture(0, [] {
        std::printf("once");
        std::fprintf(stderr, "also once");
        probe("-Z");
        probe("127.0.0.1");
    });
    EXPECT_EQ(printed.out, "once");
    EXPECT_EQ(printed.err, "also once");
}

TEST(Reachability, CallerCanStillWriteAfterAProbe) {
    EXPECT_EQ(support::capture(0,
                               [] {
                                   probe("-Z");
                                   std::printf("after");
                               })
                  .out,
              "after");
}

TEST(Reachability, AnInterruptedWaitGoesOn) {
    struct sigaction ignore_alarm = {};
    struct sigaction before = {};
    ignore_alarm.sa_handler = [](int) {};
    sigaction(SIGALRM, &ignore_alarm, &before);
    ualarm(1000, 1000);  // without SA_RESTART each one interrupts the wait
    probe("127.0.0.1");
    ualarm(0, 0);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_FALSE(has_children());
}

TEST(Reachability, WithoutChildrenToWaitForItIsNotConnected) {
    std::signal(SIGCHLD, SIG_IGN);  // the children's statuses are lost
    EXPECT_FALSE(probe("127.0.0.1"));
    std::signal(SIGCHLD, SIG_DFL);
}

}  // namespace
