#include "child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <fstream>

#include "support/folder.h"

namespace frontpanel {
namespace {

using Arguments = std::vector<std::string>;
using namespace std::chrono_literals;

// What a descriptor delivers to its end.
std::string all_of(const Descriptor& descriptor) {
    std::string text;
    char bytes[4096];
    for (;;) {
        pollfd source{descriptor.number(), POLLIN, 0};
        poll(&source, 1, 20000);
        const ssize_t size = read(descriptor.number(), bytes, sizeof bytes);
        if (size <= 0) {
            return text;
        }
        text.append(bytes, static_cast<std::size_t>(size));
    }
}

std::string line_with(const std::string& text, const std::string& start) {
    const std::size_t at = text.find(start);
    return at == std::string::npos ? "" : text.substr(at, text.find('\n', at) - at);
}

TEST(Child_process, HasThreePipesAndNoOtherDescriptor) {
    const Descriptor leaking(open("/dev/null", O_RDONLY));  // not closed when a program starts
    Child_process child;
    const char* const script =
        "n=0; while [ $n -lt 256 ]; do [ ! -e /proc/$$/fd/$n ] || echo $n; n=$((n + 1)); done; "
        "echo no >&2; cat";
    ASSERT_EQ(child.start("/bin/sh", {"sh", "-c", script}, ""), "");
    ASSERT_EQ(write(child.input().number(), "yes", 3), 3);
    child.input().reset();
    EXPECT_EQ(all_of(child.output()), "0\n1\n2\nyes");
    EXPECT_EQ(all_of(child.errors()), "no\n");
    EXPECT_EQ(child.end(20s), "it ended with status 0");
    EXPECT_EQ(child.end(), "");
}

TEST(Child_process, HasNoSignalBlockedOrIgnoredAndAGroupOfItsOwn) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const auto old = signal(SIGHUP, SIG_IGN);
    Child_process child;
    ASSERT_EQ(child.start("/bin/cat", {"cat", "/proc/self/status", "/proc/self/stat"}, ""), "");
    const pid_t process = child.process();
    const std::string status = all_of(child.output());
    signal(SIGHUP, old);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(line_with(status, "SigBlk:"), "SigBlk:\t0000000000000000");
    EXPECT_EQ(line_with(status, "SigIgn:"), "SigIgn:\t0000000000000000");
    const std::string fields = line_with(status, ") ");
    const std::string group = fields.substr(fields.find(' ', 4) + 1);
    EXPECT_EQ(group.substr(0, group.find(' ')), std::to_string(process));
}

TEST(Child_process, RunsInItsFolder) {
    const support::Folder folder;
    Child_process child;
    ASSERT_EQ(child.start("/bin/pwd", {"pwd", "-P"}, folder.path()), "");
    EXPECT_EQ(all_of(child.output()), folder.path() + "\n");
}

TEST(Child_process, ThatCannotBeStartedHasAReason) {
    const support::Folder folder;
    std::ofstream(folder.file("script")) << "echo this is a file for no shell\n";
    chmod(folder.file("script").c_str(), 0755);
    Child_process child;
    EXPECT_EQ(child.start("/no/program", {"program"}, ""), "No such file or directory");
    EXPECT_EQ(child.start("/bin/true", {"true"}, "/no/folder"), "No such file or directory");
    EXPECT_EQ(child.start(folder.file("script"), {"script"}, ""), "Exec format error");
    EXPECT_FALSE(child.is_running());
}

TEST(Child_process, IsAskedToEndAndThenKilled) {
    Child_process child;
    const char* const polite = "trap 'exit 7' TERM; echo ready; while :; do read x; done";
    ASSERT_EQ(child.start("/bin/sh", {"sh", "-c", polite}, ""), "");
    pollfd ready{child.output().number(), POLLIN, 0};
    ASSERT_EQ(poll(&ready, 1, 20000), 1);
    EXPECT_EQ(child.end(), "it ended with status 7");
    const char* const stubborn = "trap '' TERM; echo ready; while :; do sleep 600; done";
    ASSERT_EQ(child.start("/bin/sh", {"sh", "-c", stubborn}, ""), "");
    ready.fd = child.output().number();
    ASSERT_EQ(poll(&ready, 1, 20000), 1);
    const pid_t process = child.process();
    EXPECT_EQ(child.end(), "it was ended by signal 9");
    EXPECT_NE(kill(process, 0), 0);
}

// Kills a panel when its program writes "ready" to a pipe, which the program has as descriptor 3. Returns the text
// written to the pipe until every process has closed it, with "..." at the end if one keeps it open.
std::string output_of_killed_panel(const std::string& script) {
    const support::Folder folder;
    const std::string fifo = folder.file("fifo");
    mkfifo(fifo.c_str(), 0600);
    const Descriptor output(open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    const pid_t panel = fork();
    if (panel == 0) {
        Child_process child;
        child.start("/bin/sh", {"sh", "-c", "exec 3>" + fifo + "; " + script}, "");
        poll(nullptr, 0, -1);
    }
    pollfd ready{output.number(), POLLIN, 0};
    poll(&ready, 1, 20000);
    kill(panel, SIGKILL);
    waitpid(panel, nullptr, 0);
    const std::string text = all_of(output);
    char c = 0;
    return read(output.number(), &c, 1) == 0 ? text : text + "...";
}

TEST(Child_process, EndsWithAKilledPanelAndSoDoesWhatItStarted) {
    EXPECT_EQ(output_of_killed_panel(
                  "trap '' TERM; sleep 600 & echo ready >&3; while :; do sleep 600; done"),
              "ready\n");
}

TEST(Child_process, MayEndInOrderBehindAKilledPanel) {
    EXPECT_EQ(output_of_killed_panel("trap 'echo off >&3; exit' TERM; echo ready >&3; "
                                     "while :; do read x || :; done"),
              "ready\noff\n");
}

TEST(Child_process, LeavesNoProcessBehind) {
    Child_process child;
    ASSERT_EQ(child.start("/bin/cat", {"cat"}, ""), "");
    child.end();
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST(Child_process, LeavesNoDescriptorBehind) {
    const auto next = [] {
        const Descriptor free(open("/dev/null", O_RDONLY));
        return free.number();
    };
    const int before = next();
    {
        Child_process child;
        ASSERT_EQ(child.start("/bin/cat", {"cat"}, ""), "");
        Child_process none;
        EXPECT_NE(none.start("/no/program", {"program"}, ""), "");
    }
    EXPECT_EQ(next(), before);
}

}  // namespace
}  // namespace frontpanel
