// The panel when a call of the system fails: it ends in order or goes on, keeps its values and leaves nothing behind.
//
// Each call of a function fails in a run of its own. FRONTPANEL_FAULTS is the most calls of each function and tour
// that are tried, spread over the tour; "all" tries every call.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <frontpanel_simulator/memory_device.h>
#include <frontpanel_simulator/state_file.h>
#include "support/folder.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

constexpr long USUAL_CALLS = 3;
constexpr int LONGEST_RUN = 60000;      // milliseconds, for a machine that is busy otherwise
constexpr timespec LONGEST_END{30, 0};  // of a process that the panel started and told to end

const char* const TOURS[] = {
    "tour", "tour-home", "tour-cards",
#ifdef FRONTPANEL_HAS_DRIVERS
    "tour-drivers",  // its menu and files are in a folder beside this test
#endif
};

std::string content(const std::string& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::set<std::string> names_in(const std::string& folder) {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

// Processes that the panel leaves become children of this one, and their ends are signals that it waits for.
void adopt_orphans() {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGCHLD);
    sigprocmask(SIG_BLOCK, &ends, nullptr);
}

void kill_children() {
    std::ifstream children("/proc/thread-self/children");
    for (pid_t child = 0; children >> child;) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
}

// Whether all of them end in time. The others are killed.
bool await_orphans() {
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGCHLD);
    for (;;) {
        const pid_t ended = waitpid(-1, nullptr, WNOHANG);
        if (ended < 0) {
            return true;
        }
        if (ended == 0 && sigtimedwait(&ends, nullptr, &LONGEST_END) < 0) {
            kill_children();
            return false;
        }
    }
}

// A run of the panel in folders of its own, which may be followed by others.
class Panel_run {
public:
    Panel_run(const std::string& tour, const std::string& fault, const std::string& state = "") {
        fs::create_directory(m_folder.file("temporary"));
        fs::create_directory(m_folder.file("state"));
        const std::string own_files = FRONTPANEL_SOURCE_DIR "/tests/integration/faults/" + tour;
        if (fs::exists(own_files)) {
            fs::copy(own_files, own_folder());
        }
        if (!state.empty()) {
            std::ofstream(state_file()) << state;
        }
        play(tour, fault);
    }
    void play(const std::string& tour, const std::string& fault) {
        const bool has_own_menu = fs::exists(own_folder());
        const std::string menu = has_own_menu ? own_folder() + "/menu.json" : "demo";
        const std::string script = has_own_menu
                                       ? own_folder() + "/tour.script"
                                       : FRONTPANEL_SOURCE_DIR "/menus/" + tour + ".script";
        fs::remove(m_folder.file("errors"));
        fs::remove(m_folder.file("count"));
        const pid_t process = fork();
        if (process == 0) {
            become_panel(menu, script, fault);
        }
        wait_for(process);
    }

    // As `waitpid` returns it.
    int status() const { return m_status; }
    bool has_ended_in_time() const { return m_has_ended; }
    bool has_exited() const { return WIFEXITED(m_status); }
    int exit_status() const { return WEXITSTATUS(m_status); }
    std::string errors() const { return content(m_folder.file("errors")); }
    // 0 for a panel that did not come to the end of `main`.
    long calls() const { return std::atol(content(m_folder.file("count")).c_str()); }
    std::string state() const { return content(state_file()); }
    std::string state_file() const { return m_folder.file("state/values"); }
    std::set<std::string> state_names() const { return names_in(m_folder.file("state")); }
    std::set<std::string> temporary_names() const { return names_in(m_folder.file("temporary")); }
    // What the tour with drivers writes to a file.
    std::string level() const { return content(own_folder() + "/level"); }
    // Of processes that the panel started.
    bool has_left_processes() const { return m_has_left_processes; }

private:
    [[noreturn]] void become_panel(const std::string& menu, const std::string& script,
                                   const std::string& fault) const {
        setenv("TMPDIR", m_folder.file("temporary").c_str(), 1);
        setenv("XDG_STATE_HOME", m_folder.path().c_str(), 1);
        setenv("FRONTPANEL_FAULT", fault.c_str(), 1);
        setenv("FRONTPANEL_FAULT_COUNT", m_folder.file("count").c_str(), 1);
        setenv("LD_PRELOAD", FRONTPANEL_INTERPOSER, 1);
        redirect("/dev/null", O_RDONLY, STDIN_FILENO);
        redirect("/dev/null", O_WRONLY, STDOUT_FILENO);
        redirect(m_folder.file("errors"), O_WRONLY | O_CREAT, STDERR_FILENO);
        setpgid(0, 0);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        execl(FRONTPANEL_PANEL, "frontpanel", "--menu", menu.c_str(), "--script", script.c_str(),
              "--state", state_file().c_str(), nullptr);
        _exit(127);
    }
    static void redirect(const std::string& file, int flags, int number) {
        const int descriptor = open(file.c_str(), flags, 0600);
        if (descriptor < 0 || dup2(descriptor, number) < 0) {
            _exit(126);
        }
        close(descriptor);
    }
    void wait_for(pid_t process) {
        const int ended = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
        pollfd source{ended, POLLIN, 0};
        m_has_ended = poll(&source, 1, LONGEST_RUN) == 1;
        close(ended);
        if (!m_has_ended) {
            kill(-process, SIGKILL);
        }
        waitpid(process, &m_status, 0);
        m_has_left_processes = !await_orphans();
    }
    std::string own_folder() const { return m_folder.file("own"); }

    support::Folder m_folder;
    int m_status = -1;
    bool m_has_ended = false;
    bool m_has_left_processes = false;
};

// The calls to try of so many: all of them, or some from the first to the last.
std::vector<long> calls_to_try(long count) {
    const char* const wish = std::getenv("FRONTPANEL_FAULTS");
    long most = wish == nullptr ? USUAL_CALLS : std::atol(wish);
    if (wish != nullptr && std::string(wish) == "all") {
        most = count;
    }
    most = std::min(most, count);
    std::vector<long> numbers;
    for (long i = 0; i < most; ++i) {
        numbers.push_back(most == 1 ? 1 : 1 + i * (count - 1) / (most - 1));
    }
    return numbers;
}

void expect_readable_state(const Panel_run& run) {
    Memory_device device;
    try {
        EXPECT_TRUE(State_file(run.state_file(), device).restore().empty());
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
    }
}

// A panel without its cards has nothing to keep of them.
std::string without_selections(std::string state) {
    const std::size_t start = state.find("], \"selections\": [");
    if (start != std::string::npos) {
        state.erase(start, state.find(']', start + 1) - start);
    }
    return state;
}

void expect_order(const Panel_run& run, const Panel_run& whole) {
    SCOPED_TRACE(run.errors());
    ASSERT_TRUE(run.has_ended_in_time());
    ASSERT_TRUE(run.has_exited()) << "ended by signal " << WTERMSIG(run.status());
    EXPECT_LE(run.exit_status(), 2);
    EXPECT_EQ(run.temporary_names(), std::set<std::string>());
    EXPECT_FALSE(run.has_left_processes());
    EXPECT_THAT(run.level(), testing::MatchesRegex("([0-9]\n)?"));
    if (run.exit_status() == 0) {
        const std::string state_without_fault = whole.state();
        EXPECT_EQ(run.level(), whole.level());
        const bool has_cards =
            run.errors().find("the cards cannot be started") == std::string::npos;
        EXPECT_EQ(run.state(),
                  has_cards ? state_without_fault : without_selections(state_without_fault));
    } else {
        EXPECT_NE(run.errors(), "");
    }
    if (!run.state_names().empty()) {
        EXPECT_EQ(run.state_names(), std::set<std::string>{"values"});
        expect_readable_state(run);
    }
}

std::ptrdiff_t line_count(const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
}

class Fault_sweep : public testing::TestWithParam<const char*> {
protected:
    static void SetUpTestSuite() { adopt_orphans(); }
};

TEST_P(Fault_sweep, AFailedCallEndsThePanelInOrderOrNotAtAll) {
    const std::string function = GetParam();
    long reached = 0;
    for (const std::string tour : TOURS) {
        const Panel_run whole(tour, function + ":0");
        ASSERT_TRUE(whole.has_exited() && whole.exit_status() == 0) << whole.errors();
        for (const long number : calls_to_try(whole.calls())) {
            const std::string fault = function + ":" + std::to_string(number);
            SCOPED_TRACE(tour + " with " + fault);
            const Panel_run run(tour, fault);
            expect_order(run, whole);
            reached += run.calls() == 0 || run.calls() >= number ? 1 : 0;
        }
    }
    EXPECT_GT(reached, 0) << "no call of " << function << " failed";
}

INSTANTIATE_TEST_SUITE_P(Functions, Fault_sweep,
                         testing::Values("malloc", "open", "read", "write", "fsync", "rename",
                                         "fork", "waitpid", "system", "pthread_create"),
                         [](const auto& function) { return std::string(function.param); });

class Kill_sweep : public testing::TestWithParam<const char*> {
protected:
    static void SetUpTestSuite() { adopt_orphans(); }
};

TEST_P(Kill_sweep, APanelThatIsKilledLeavesValuesOfOneMoment) {
    const std::string function = GetParam();
    const std::string old_state = Panel_run("tour", function + ":0").state();
    const Panel_run whole("tour-home", function + ":0", old_state);
    ASSERT_NE(whole.state(), old_state);
    long killed = 0;
    for (const long number : calls_to_try(whole.calls())) {
        const std::string fault = function + ":" + std::to_string(number) + ":kill";
        SCOPED_TRACE(fault);
        Panel_run run("tour-home", fault, old_state);
        ASSERT_TRUE(run.has_ended_in_time());
        killed += WIFSIGNALED(run.status()) && WTERMSIG(run.status()) == SIGKILL ? 1 : 0;
        // On a busy machine a tour lasts long enough for values of its middle, too.
        EXPECT_EQ(line_count(run.state()), line_count(old_state));
        expect_readable_state(run);
        run.play("tour-home", function + ":0");
        EXPECT_EQ(run.errors().find("damaged"), std::string::npos) << run.errors();
        EXPECT_EQ(run.state_names(), std::set<std::string>{"values"});
    }
    EXPECT_GT(killed, 0) << "no panel was killed";
}

INSTANTIATE_TEST_SUITE_P(Functions, Kill_sweep, testing::Values("open", "write", "fsync", "rename"),
                         [](const auto& function) { return std::string(function.param); });

}  // namespace
}  // namespace frontpanel
