// The panel as a person has it: the application on a terminal, with a menu of 10,000 entries, each with a rule.
//
// Key_to_frame is the time from a key on the terminal until the frame that it makes has arrived there; max_ms is
// the longest of them. "Rest" is the share of one core that an idle panel takes.
#include <benchmark/benchmark.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using std::chrono::steady_clock;

constexpr int SUBMENUS = 10;
constexpr int LEAVES = 999;  // of a submenu: with the submenus 10,000 entries
constexpr const char* DOWN = "\x1bOB";
constexpr const char* UP = "\x1bOA";

// Each follows a parameter of its own, which the panel asks for at rest.
std::string leaf(int number) {
    const std::string text = std::to_string(number);
    return R"({"type": "range", "name": "Gain )" + text + R"(", "pid": )" + text +
           R"(, "value_format": "v/10", "format": "%.1f dB", "binding": "visible if [)" +
           std::to_string(number % (SUBMENUS * LEAVES) + 1) + R"(] <= 120"})";
}

void write_menu(const std::string& file) {
    std::ofstream menu(file);
    menu << R"({"device": {"parameters": [)";
    for (int number = 1; number <= SUBMENUS * LEAVES; ++number) {
        menu << (number == 1 ? "" : ",") << R"({"pid": )" << number
             << R"(, "type": "integer", "min": -600, "max": 120, "value": 0})";
    }
    menu << R"(]}, "menu": {"name": "Main", "items": [)";
    for (int submenu = 0; submenu < SUBMENUS; ++submenu) {
        menu << (submenu == 0 ? "" : ",") << R"({"type": "node", "name": "Bank )" << submenu
             << R"(", "items": [)";
        for (int i = 1; i <= LEAVES; ++i) {
            menu << (i == 1 ? "" : ",") << leaf(submenu * LEAVES + i);
        }
        menu << "]}";
    }
    menu << "]}}";
}

class Panel_process {
public:
    Panel_process() : m_folder(std::filesystem::temp_directory_path() / "panel_bench.XXXXXX") {
        std::string name = m_folder.string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no folder for temporary files");
        }
        m_folder = name;
        write_menu(m_folder / "menu.json");
        start();
        read_until("Bank 1");
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
        const auto deadline = steady_clock::now() + std::chrono::milliseconds(LONG_TIME);
        m_seen.clear();
        while (m_seen.find(text) == std::string::npos) {
            pollfd ready{m_terminal, POLLIN, 0};
            char bytes[4096];
            const ssize_t size =
                poll(&ready, 1, LONG_TIME) == 1 ? read(m_terminal, bytes, sizeof bytes) : 0;
            if (size <= 0 || steady_clock::now() > deadline) {
                throw std::runtime_error("the panel does not show \"" + text + "\" but " + m_seen);
            }
            m_seen.append(bytes, static_cast<size_t>(size));
        }
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
    int m_terminal = -1;
    pid_t m_process = -1;
    std::string m_seen;
};

// The cursor's mark is drawn anew by every key, and by nothing else.
void Key_to_frame(benchmark::State& state) {
    Panel_process panel;
    panel.press("\r");
    panel.read_until("0.0 dB");
    double longest = 0;
    bool down = true;
    for (auto _ : state) {
        const auto start = steady_clock::now();
        panel.press(down ? DOWN : UP);
        panel.read_until(">");
        const double time = std::chrono::duration<double>(steady_clock::now() - start).count();
        down = !down;
        longest = std::max(longest, time);
        state.SetIterationTime(time);
    }
    state.counters["max_ms"] = longest * 1000;
}
BENCHMARK(Key_to_frame)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(1);

// In the top menu, and in a menu of 999 entries.
void Rest(benchmark::State& state) {
    Panel_process panel;
    if (state.range(0) == 1) {
        panel.press("\r");
        panel.read_until("0.0 dB");
    }
    double used = 0;
    double passed = 0;
    for (auto _ : state) {
        const double before = panel.cpu_time();
        const auto start = steady_clock::now();
        std::this_thread::sleep_for(std::chrono::seconds(5));
        used += panel.cpu_time() - before;
        passed += std::chrono::duration<double, std::nano>(steady_clock::now() - start).count();
    }
    state.counters["cpu_percent"] = used / passed * 100;
}
BENCHMARK(Rest)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kSecond)->UseRealTime();

}  // namespace
