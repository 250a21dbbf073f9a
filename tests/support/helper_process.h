// A program that a test needs beside it, as a server or a pair of pseudo terminals.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_HELPER_PROCESS_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_HELPER_PROCESS_H

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <string>
#include <vector>

#include <frontpanel_base/descriptor.h>

namespace support {

// A process that runs until the object is destroyed. Its standard input is a pipe that is then closed.
class Helper_process {
public:
    // Whether standard error is read together with standard output, or goes to the null device.
    enum class Errors { READ, IGNORED };

    explicit Helper_process(std::vector<std::string> arguments, Errors errors = Errors::READ) {
        int in[2];
        int out[2];
        if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe can be made");
        }
        const frontpanel::Descriptor its_in(in[0]);
        const frontpanel::Descriptor its_out(out[1]);
        m_in = frontpanel::Descriptor(in[1]);
        m_out = frontpanel::Descriptor(out[0]);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, in[0], 0);
        posix_spawn_file_actions_adddup2(&actions, out[1], 1);
        if (errors == Errors::READ) {
            posix_spawn_file_actions_adddup2(&actions, out[1], 2);
        } else {
            posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
        }
        std::vector<char*> pointers;
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        if (posix_spawnp(&m_process, pointers[0], &actions, nullptr, pointers.data(), environ) !=
            0) {
            m_process = 0;
        }
        posix_spawn_file_actions_destroy(&actions);
    }
    ~Helper_process() { end(); }
    Helper_process(const Helper_process&) = delete;
    Helper_process& operator=(const Helper_process&) = delete;

    // 0 when the program was not found, or has ended by `end`.
    pid_t id() const { return m_process; }
    // Reads its output up to a line that holds `text`. False when it ends, or says nothing for long.
    bool wait_for(const std::string& text) {
        for (char c = 0; is_readable() && read(m_out.number(), &c, 1) == 1;) {
            m_line = m_line.empty() || m_line.back() == '\n' ? std::string(1, c) : m_line + c;
            m_all += c;
            if (c == '\n' && m_line.find(text) != std::string::npos) {
                return true;
            }
        }
        return false;
    }
    const std::string& line() const { return m_line; }  // the last one
    const std::string& output() const { return m_all; }
    void signal(int number) const {
        if (m_process > 0) {
            kill(m_process, number);
        }
    }
    // Requires: the process ends at SIGTERM, or has been killed. A stopped process does not end.
    void end() {
        m_in.reset();
        if (m_process > 0) {
            kill(m_process, SIGTERM);
            waitpid(m_process, nullptr, 0);
        }
        m_process = 0;
    }

private:
    bool is_readable() const {
        constexpr int LONG_TIME = 20000;  // milliseconds
        pollfd source{m_out.number(), POLLIN, 0};
        return poll(&source, 1, LONG_TIME) == 1;
    }

    pid_t m_process = 0;
    frontpanel::Descriptor m_in;
    frontpanel::Descriptor m_out;
    std::string m_line;
    std::string m_all;
};

}  // namespace support

#endif
