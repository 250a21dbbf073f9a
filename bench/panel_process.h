// The panel application on a terminal of its own, as a person has it.
#ifndef FRONTPANEL_BENCH_PANEL_PROCESS_H
#define FRONTPANEL_BENCH_PANEL_PROCESS_H

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace frontpanel {

class Panel_process {
public:
    // Starts the panel with that menu.
    explicit Panel_process(const std::string& menu)
        : m_folder(std::filesystem::temp_directory_path() / "panel_bench.XXXXXX") {
        std::string name = m_folder.string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no folder for temporary files");
        }
        m_folder = name;
        std::ofstream(m_folder / "menu.json") << menu;
        start();
    }
    ~Panel_process() {
        kill(m_process, SIGTERM);
        close(m_terminal);
        waitpid(m_process, nullptr, 0);
        std::filesystem::remove_all(m_folder);
    }
    Panel_process(const Panel_process&) = delete;
    Panel_process& operator=(const Panel_process&) = delete;

    void press(const std::string& key) {
        if (write(m_terminal, key.data(), key.size()) != static_cast<ssize_t>(key.size())) {
            throw std::runtime_error("the terminal takes no key");
        }
    }
    // Reads what the panel writes until the text is in it.
    void read_until(const std::string& text) {
        constexpr int LONG_TIME = 20000;
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(LONG_TIME);
        m_seen.clear();
        while (m_seen.find(text) == std::string::npos) {
            pollfd ready{m_terminal, POLLIN, 0};
            char bytes[4096];
            const ssize_t size =
                poll(&ready, 1, LONG_TIME) == 1 ? read(m_terminal, bytes, sizeof bytes) : 0;
            if (size <= 0 || std::chrono::steady_clock::now() > deadline) {
                throw std::runtime_error("the panel does not show \"" + text + "\" but " + m_seen);
            }
            m_seen.append(bytes, static_cast<size_t>(size));
        }
    }
    // Since the process was made.
    std::chrono::steady_clock::duration age() const {
        return std::chrono::steady_clock::now() - m_start;
    }
    // The time that all its threads have run, in nanoseconds.
    double cpu_time() const {
        double sum = 0;
        const std::string tasks = "/proc/" + std::to_string(m_process) + "/task";
        for (const auto& task : std::filesystem::directory_iterator(tasks)) {
            double time = 0;
            std::ifstream(task.path() / "schedstat") >> time;
            sum += time;
        }
        return sum;
    }

private:
    void start() {
        m_start = std::chrono::steady_clock::now();
        winsize size{};
        size.ws_row = 24;
        size.ws_col = 80;
        m_process = forkpty(&m_terminal, nullptr, nullptr, &size);
        if (m_process < 0) {
            throw std::runtime_error("no terminal");
        }
        if (m_process == 0) {
            setenv("TERM", "xterm", 1);
            const std::string menu = m_folder / "menu.json";
            const std::string log = m_folder / "log";
            execl(FRONTPANEL, FRONTPANEL, "--menu", menu.c_str(), "--log", log.c_str(), "--timeout",
                  "0", nullptr);
            _exit(127);
        }
    }

    std::filesystem::path m_folder;
    std::chrono::steady_clock::time_point m_start;
    int m_terminal = -1;
    pid_t m_process = -1;
    std::string m_seen;
};

}  // namespace frontpanel

#endif
