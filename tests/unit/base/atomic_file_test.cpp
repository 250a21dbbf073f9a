#include <frontpanel_base/atomic_file.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <thread>
#include <vector>

#include <frontpanel_base/input_error.h>
#include "support/folder.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;
using support::Folder;

const std::string OLD_TEXT(100000, 'o');
const std::string NEW_TEXT(200000, 'n');

std::string error_of_writing(const std::string& file) {
    try {
        write_whole_file(file, "new");
    } catch (const Input_error& error) {
        return error.what();
    }
    return "";
}

// A process that writes the file, one system call at a time.
class Writer {
public:
    explicit Writer(const std::string& file) : m_process(fork()) {
        if (m_process == 0) {
            if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0) {
                std::raise(SIGSTOP);
            }
            write_whole_file(file, NEW_TEXT);
            _exit(0);
        }
        int status = 0;
        waitpid(m_process, &status, 0);
        m_is_traced = WIFSTOPPED(status) &&
                      ptrace(PTRACE_SETOPTIONS, m_process, nullptr, PTRACE_O_TRACESYSGOOD) == 0;
        m_is_running = WIFSTOPPED(status);
    }
    ~Writer() {
        if (m_is_running) {
            kill(m_process, SIGKILL);
            waitpid(m_process, nullptr, 0);
        }
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    bool is_traced() const { return m_is_traced; }
    bool is_running() const { return m_is_running; }
    // To the beginning or end of the next system call, or to the process's end. The call that begins.
    std::optional<uint64_t> step() {
        ptrace(PTRACE_SYSCALL, m_process, nullptr, nullptr);
        int status = 0;
        waitpid(m_process, &status, 0);
        m_is_running = WIFSTOPPED(status);
        __ptrace_syscall_info info = {};
        if (!m_is_running || ptrace(PTRACE_GET_SYSCALL_INFO, m_process, sizeof info, &info) <= 0 ||
            info.op != PTRACE_SYSCALL_INFO_ENTRY) {
            return std::nullopt;
        }
        return info.entry.nr;
    }

private:
    pid_t m_process;
    bool m_is_traced = false;
    bool m_is_running = false;
};

TEST(WholeFile, AWriterThatIsKilledBeforeAnyOfItsStepsLeavesTheOldOrTheNewText) {
    const Folder folder;
    const std::string file = folder.file("values");
    std::set<std::string> left;
    bool has_ended = false;
    for (int steps = 0; !has_ended; ++steps) {
        write_whole_file(file, OLD_TEXT);
        {
            Writer writer(file);
            if (!writer.is_traced()) {
                GTEST_SKIP() << "no process can be traced here";
            }
            for (int step = 0; step < steps && writer.is_running(); ++step) {
                writer.step();
            }
            has_ended = !writer.is_running();
        }
        const std::string text = read_input_file(file);
        ASSERT_TRUE(text == OLD_TEXT || text == NEW_TEXT) << "killed after step " << steps;
        left.insert(text.substr(0, 1));
        ASSERT_LT(steps, 1000);
    }
    EXPECT_EQ(left, (std::set<std::string>{"o", "n"}));
}

TEST(WholeFile, TheTextIsOnTheDiskBeforeTheNameAndTheNameBeforeTheEnd) {
    const Folder folder;
    Writer writer(folder.file("values"));
    if (!writer.is_traced()) {
        GTEST_SKIP() << "no process can be traced here";
    }
    std::string order;
    while (writer.is_running()) {
        const std::optional<uint64_t> call = writer.step();
        if (call == SYS_fsync) {
            order += "sync ";
        } else if (call == SYS_write && (order.empty() || order.back() != ' ')) {
            order += "write ";
        } else if (call == SYS_renameat2 || call == SYS_renameat
#ifdef SYS_rename
                   || call == SYS_rename
#endif
        ) {
            order += "rename ";
        }
    }
    EXPECT_EQ(order, "write sync rename sync ");
}

TEST(WholeFile, WhatAKilledWriterLeftIsInNobodysWay) {
    const Folder folder;
    std::ofstream(folder.file("values.new")) << std::string(1000, 'x');
    write_whole_file(folder.file("values"), "new");
    EXPECT_EQ(read_input_file(folder.file("values")), "new");
    EXPECT_FALSE(fs::exists(folder.file("values.new")));
}

TEST(WholeFile, WritersAtATimeLeaveTheTextOfOne) {
    const Folder folder;
    const std::string file = folder.file("values");
    std::vector<std::thread> writers;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        writers.emplace_back([&file, letter] {
            for (int i = 0; i < 20; ++i) {
                write_whole_file(file, std::string(5000, letter));
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    const std::string text = read_input_file(file);
    EXPECT_EQ(text, std::string(5000, text.at(0)));
}

TEST(WholeFile, ALinkToAFileThatIsStillToBeCreatedStays) {
    const Folder folder;
    fs::create_directory(folder.file("data"));
    fs::create_symlink("data/second", folder.file("first"));
    fs::create_symlink("real", folder.file("data/second"));
    write_whole_file(folder.file("first"), "new");
    EXPECT_TRUE(fs::is_symlink(folder.file("first")));
    EXPECT_TRUE(fs::is_symlink(folder.file("data/second")));
    EXPECT_EQ(read_input_file(folder.file("data/real")), "new");
    fs::create_symlink("circle", folder.file("circle"));
    EXPECT_EQ(error_of_writing(folder.file("circle")),
              folder.file("circle") + ": cannot be written: Too many levels of symbolic links");
}

TEST(WholeFile, AFileAndItsFolderAreBroughtToTheDiskHoweverItIsNamed) {
    const Folder folder;
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    for (const std::string& name : {std::string("relative"), folder.file("absolute")}) {
        Writer writer(name);
        int syncs = 0;
        while (writer.is_running()) {
            syncs += writer.step() == SYS_fsync ? 1 : 0;
        }
        EXPECT_TRUE(!writer.is_traced() || syncs == 2) << name << ": " << syncs;
    }
    fs::current_path(before);
}

TEST(WholeFile, ALinkStaysAndItsFileIsWritten) {
    const Folder folder;
    fs::create_symlink("real", folder.file("link"));
    std::ofstream(folder.file("real")) << "old";
    write_whole_file(folder.file("link"), "new");
    EXPECT_TRUE(fs::is_symlink(folder.file("link")));
    EXPECT_EQ(read_input_file(folder.file("real")), "new");
}

TEST(WholeFile, WhatCannotBeWrittenIsOneLine) {
    const Folder folder;
    const std::string absent = folder.file("absent/values");
    EXPECT_EQ(error_of_writing(absent), absent + ": cannot be written: No such file or directory");
    EXPECT_EQ(error_of_writing(folder.path()),
              folder.path() + ": cannot be written: not a regular file");
    EXPECT_EQ(error_of_writing("/dev/null"), "/dev/null: cannot be written: not a regular file");
    EXPECT_THROW(check_writable(absent), Input_error);
}

TEST(WholeFile, AReadOnlyFolderIsToldAndItsFileStays) {
    const Folder folder;
    const std::string file = folder.file("values");
    write_whole_file(file, "old");
    const support::Read_only_folder read_only(folder.path());
    const std::string error = file + ": cannot be written: Permission denied";
    EXPECT_EQ(error_of_writing(file), error);
    try {
        check_writable(file);
        FAIL() << "the folder is read-only";
    } catch (const Input_error& refused) {
        EXPECT_EQ(refused.what(), error);
    }
    EXPECT_EQ(read_input_file(file), "old");
}

mode_t mode_of(const std::string& file) {
    struct stat status = {};
    EXPECT_EQ(stat(file.c_str(), &status), 0) << file;
    return status.st_mode & 07777U;
}

TEST(WholeFile, AFileThatIsReplacedKeepsItsMode) {
    const Folder folder;
    const std::string file = folder.file("values");
    for (const mode_t mode : {0600U, 0640U, 0664U, 0444U}) {
        write_whole_file(file, "old");
        ASSERT_EQ(chmod(file.c_str(), mode), 0);
        write_whole_file(file, "new");
        EXPECT_EQ(mode_of(file), mode);
        EXPECT_EQ(read_input_file(file), "new");
    }
}

TEST(WholeFile, ALeftTemporaryFileDoesNotSpreadItsMode) {
    const Folder folder;
    const std::string file = folder.file("values");
    write_whole_file(file, "old");
    ASSERT_EQ(chmod(file.c_str(), 0600), 0);
    std::ofstream(file + ".new") << "left by a loss of power";
    ASSERT_EQ(chmod((file + ".new").c_str(), 0666), 0);
    write_whole_file(file, "new");
    EXPECT_EQ(mode_of(file), 0600U);
}

TEST(WholeFile, TheSuperuserKeepsTheOwnerAndGroup) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can give files away";
    }
    const Folder folder;
    const std::string file = folder.file("values");
    write_whole_file(file, "old");
    ASSERT_EQ(chown(file.c_str(), 65534, 65533), 0);
    write_whole_file(file, "new");
    struct stat status = {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 65534U);
    EXPECT_EQ(status.st_gid, 65533U);
}

TEST(WholeFile, APipeInThePlaceOfTheTemporaryFileIsRefusedWithoutWaiting) {
    const Folder folder;
    const std::string file = folder.file("values");
    write_whole_file(file, "old");
    ASSERT_EQ(mkfifo((file + ".new").c_str(), 0600), 0);
    const std::string error = file + ": cannot be written: " + file + ".new is not a regular file";
    EXPECT_EQ(error_of_writing(file), error);
    EXPECT_THROW(check_writable(file), Input_error);
    const int reader = open((file + ".new").c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(error_of_writing(file), error);
    close(reader);
    EXPECT_EQ(read_input_file(file), "old");
}

TEST(WholeFile, AHardLinkInThePlaceOfTheTemporaryFileIsRefusedAndItsFileStays) {
    const Folder folder;
    const std::string file = folder.file("values");
    std::ofstream(folder.file("victim")) << "precious";
    fs::create_hard_link(folder.file("victim"), file + ".new");
    EXPECT_EQ(error_of_writing(file),
              file + ": cannot be written: " + file + ".new is a hard link");
    EXPECT_THROW(check_writable(file), Input_error);
    EXPECT_EQ(read_input_file(folder.file("victim")), "precious");
}

TEST(WholeFile, ATemporaryFileOfAnotherUserIsRefused) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only the superuser can give files away";
    }
    const Folder folder;
    const std::string file = folder.file("values");
    std::ofstream(file + ".new") << "trap";
    ASSERT_EQ(chown((file + ".new").c_str(), 65534, 65534), 0);
    EXPECT_EQ(error_of_writing(file),
              file + ": cannot be written: " + file + ".new belongs to another user");
    // The owner of the file itself may have left it.
    std::ofstream(file.c_str()) << "old";
    ASSERT_EQ(chown(file.c_str(), 65534, 65534), 0);
    EXPECT_EQ(error_of_writing(file), "");
    EXPECT_EQ(read_input_file(file), "new");
}

TEST(WholeFile, AProcessThatKeepsTheTemporaryFileIsNotWaitedForForever) {
    const Folder folder;
    const std::string file = folder.file("values");
    const int descriptor = open((file + ".new").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(descriptor, LOCK_EX), 0);
    try {
        write_whole_file(file, "new", std::chrono::milliseconds(1));
        ADD_FAILURE() << "the temporary file is locked";
    } catch (const Input_error& error) {
        EXPECT_EQ(error.what(),
                  file + ": cannot be written: another process is writing " + file + ".new");
    }
    close(descriptor);
    EXPECT_EQ(error_of_writing(file), "");
}

TEST(WholeFile, ACheckLeavesNothingBehind) {
    const Folder folder;
    check_writable(folder.file("values"));
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

}  // namespace
}  // namespace frontpanel
