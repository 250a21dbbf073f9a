#include "child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <optional>

namespace frontpanel {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int REPORT = STDERR_FILENO + 1;  // in the child, until it executes the program
constexpr int GO = REPORT + 1;
constexpr int FIRST_FREE = GO + 1;
constexpr int CANNOT_START = 127;  // status of a child that could not execute the program

struct Pipe {
    Descriptor reading;
    Descriptor writing;

    // Neither end gets the number of a standard stream, which this process may have closed, or REPORT or GO.
    bool open() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            return false;
        }
        const Descriptor first(ends[0]);
        const Descriptor second(ends[1]);
        reading = Descriptor(fcntl(ends[0], F_DUPFD_CLOEXEC, FIRST_FREE));
        writing = Descriptor(fcntl(ends[1], F_DUPFD_CLOEXEC, FIRST_FREE));
        return reading.is_open() && writing.is_open();
    }
};

void never_wait(const Descriptor& descriptor) {
    fcntl(descriptor.number(), F_SETFL, fcntl(descriptor.number(), F_GETFL) | O_NONBLOCK);
}

// What the child needs, ready before it is forked: afterwards it may not allocate.
struct Start {
    const char* program;
    const char* folder;  // null: stay
    std::vector<char*> arguments;
    int input;
    int output;
    int errors;
    int report;  // gets errno when the program cannot be started
    int go;      // gets a byte once the guard runs
};

void close_from(unsigned first) {
    if (close_range(first, ~0U, 0) == 0) {
        return;
    }
    constexpr rlim_t MOST = 65536;  // of a kernel that cannot close a range
    rlimit limit{MOST, MOST};
    getrlimit(RLIMIT_NOFILE, &limit);
    for (unsigned number = first; number < std::min(limit.rlim_cur, MOST); ++number) {
        close(static_cast<int>(number));
    }
}

void take_streams(const Start& start) {
    dup2(start.input, STDIN_FILENO);
    dup2(start.output, STDOUT_FILENO);
    dup2(start.errors, STDERR_FILENO);
    dup3(start.report, REPORT, O_CLOEXEC);
    dup3(start.go, GO, O_CLOEXEC);
    close_from(FIRST_FREE);
}

void take_signals() {
    for (int number = 1; number < NSIG; ++number) {
        std::signal(number, SIG_DFL);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

// While there is no guard, this process ends by itself when the panel ends: the pipe is then closed without a byte.
void wait_for_go() {
    char byte = 0;
    ssize_t size = -1;
    do {
        size = read(GO, &byte, 1);
    } while (size < 0 && errno == EINTR);
    if (size != 1) {
        _exit(CANNOT_START);
    }
}

[[noreturn]] void become(const Start& start) {
    setpgid(0, 0);
    // Closes other descriptors before it waits: two children that start at the same time would hold each other's pipes
    // open, and would not notice that the panel was killed.
    take_streams(start);
    wait_for_go();
    take_signals();
    if (start.folder == nullptr || chdir(start.folder) == 0) {
        execv(start.program, start.arguments.data());
    }
    const int error = errno;
    [[maybe_unused]] const ssize_t written = write(REPORT, &error, sizeof error);
    _exit(CANNOT_START);
}

// A process in the program's group that outlives the panel: it sends the group SIGTERM, and SIGKILL after PATIENCE. It
// blocks every signal that can be blocked. `life` becomes readable when the panel ends.
[[noreturn]] void guard(pid_t group, int life) {
    constexpr int PAUSE = 10;  // milliseconds
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, nullptr);
    setpgid(0, group);
    // Another name than the panel's, so that a search for the panel by name does not find this process.
    prctl(PR_SET_NAME, "adapter-guard");
    dup2(life, STDIN_FILENO);
    close_from(STDIN_FILENO + 1);
    pollfd source{STDIN_FILENO, POLLIN, 0};
    while (poll(&source, 1, -1) != 1) {
    }
    kill(-group, SIGTERM);
    for (milliseconds left = Child_process::PATIENCE; left.count() > 0 && kill(group, 0) == 0;
         left -= milliseconds(PAUSE)) {
        poll(nullptr, 0, PAUSE);
    }
    kill(-group, SIGKILL);
    _exit(0);
}

// What the child reports; 0 once it has become the program.
int error_of(const Descriptor& report) {
    int error = 0;
    ssize_t size = -1;
    do {
        size = read(report.number(), &error, sizeof error);
    } while (size < 0 && errno == EINTR);
    return size == sizeof error ? error : 0;
}

std::string description_of(const siginfo_t& end) {
    return end.si_code == CLD_EXITED ? "it ended with status " + std::to_string(end.si_status)
                                     : "it was ended by signal " + std::to_string(end.si_status);
}

// How a child has ended, which stays a zombie.
std::optional<siginfo_t> ended(pid_t process) {
    siginfo_t end{};
    const int result = waitid(P_PID, static_cast<id_t>(process), &end, WEXITED | WNOHANG | WNOWAIT);
    // A process that is no longer a child was reaped by other code, which waits for all children.
    return (result == 0 && end.si_pid == process) || (result != 0 && errno == ECHILD)
               ? std::optional<siginfo_t>(end)
               : std::nullopt;
}

}  // namespace

Child_process::~Child_process() {
    end();
}

std::string Child_process::start(const std::string& program,
                                 const std::vector<std::string>& arguments,
                                 const std::string& folder) {
    Pipe input;
    Pipe output;
    Pipe errors;
    Pipe report;
    Pipe go;
    if (!input.open() || !output.open() || !errors.open() || !report.open() || !go.open()) {
        return std::strerror(errno);
    }
    Start start{program.c_str(),
                folder.empty() ? nullptr : folder.c_str(),
                {},
                input.reading.number(),
                output.writing.number(),
                errors.writing.number(),
                report.writing.number(),
                go.reading.number()};
    for (const std::string& argument : arguments) {
        start.arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    start.arguments.push_back(nullptr);
    const pid_t process = fork();
    if (process == 0) {
        become(start);
    }
    if (process < 0) {
        return std::strerror(errno);
    }
    setpgid(process, process);  // whichever of both is first
    report.writing.reset();
    m_process = process;
    m_input = std::move(input.writing);
    m_output = std::move(output.reading);
    m_errors = std::move(errors.reading);
    for (const Descriptor* const descriptor : {&m_input, &m_output, &m_errors}) {
        never_wait(*descriptor);
    }
    if (const int error = let_go(go.writing, report.reading); error != 0) {
        end(PATIENCE);
        return std::strerror(error);
    }
    return "";
}

// Starts the guard, then lets the child execute the program. Returns 0 once it does so, else an error number.
int Child_process::let_go(Descriptor& go, const Descriptor& report) {
    int error = start_guard();
    if (error == 0 && write(go.number(), "", 1) != 1) {
        error = errno;
    }
    go.reset();
    const int fault = error_of(report);
    return error != 0 ? error : fault;
}

int Child_process::start_guard() {
    Pipe life;
    if (!life.open()) {
        return errno;
    }
    m_guard = fork();
    if (m_guard == 0) {
        guard(m_process, life.reading.number());
    }
    if (m_guard < 0) {
        return errno;
    }
    setpgid(m_guard, m_process);  // so that it ends with the group
    m_life = std::move(life.writing);
    return 0;
}

void Child_process::end_guard() {
    if (m_guard > 0) {
        kill(m_guard, SIGKILL);
        waitpid(m_guard, nullptr, 0);
    }
    m_guard = -1;
    m_life.reset();
}

// Without a handler for SIGCHLD, which belongs to the application, a short pause is all that is left.
bool Child_process::has_ended(milliseconds most) const {
    constexpr int PAUSE = 5;  // milliseconds
    const Clock::time_point until = Clock::now() + most;
    while (!ended(m_process)) {
        if (Clock::now() >= until) {
            return false;
        }
        poll(nullptr, 0, PAUSE);
    }
    return true;
}

// The group is killed while its leader is a zombie, so that no other process can have its number.
std::string Child_process::end(milliseconds by_itself) {
    if (!is_running()) {
        return "";
    }
    m_input.reset();
    m_output.reset();
    if (!has_ended(by_itself)) {
        kill(-m_process, SIGTERM);
        if (!has_ended(PATIENCE)) {
            kill(-m_process, SIGKILL);
            has_ended(PATIENCE);
        }
    }
    const std::optional<siginfo_t> how = ended(m_process);
    kill(-m_process, SIGKILL);
    waitpid(m_process, nullptr, how ? 0 : WNOHANG);
    end_guard();
    m_process = -1;
    return how ? description_of(*how) : "it cannot be ended";
}

}  // namespace frontpanel
