// How long the panel takes from the start of its process until its first frame is on the terminal: by the clock, and by
// the time that the processor worked for it (cpu_ms).
//
// "instructions" are those until the frame is drawn, which no other work of the machine changes. They need valgrind.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>

#include "panel_process.h"
#include "quick_run.h"

namespace {

using frontpanel::Panel_process;
using std::chrono::steady_clock;

constexpr int64_t ITEMS_OF_A_MENU = 1000;

struct Kind {
    const char* parameter;
    const char* item;
};
constexpr const char* NUMBER = R"("type": "integer", "min": -600, "max": 120, "value": 0)";
constexpr const char* OPTION = R"("type": "integer", "min": 0, "max": 3, "value": 0)";
constexpr const char* GAIN = R"("type": "range", "value_format": "v/10", "format": "%.1f dB")";
constexpr const char* MODE = R"("type": "enum", "choices": ["Off", "Low", "High", "Automatic"])";
constexpr Kind KINDS[] = {
    {NUMBER, GAIN},
    {OPTION, MODE},
    {R"("type": "text", "length": 20, "value": "hello")", R"("type": "text")"},
    {NUMBER, GAIN},
    {OPTION, MODE},
    {R"("type": "text", "length": 20, "value": "12:00:00")", R"("type": "time")"},
    {R"("type": "text", "length": 15, "value": "10.0.0.1")", R"("type": "address")"},
    {NUMBER, GAIN},
};

std::string parameter_text(int64_t number) {
    return "{\"name\": \"gain " + std::to_string(number) + R"(", "pid": )" +
           std::to_string(10000 + number) + ", " +
           KINDS[static_cast<size_t>(number) % std::size(KINDS)].parameter + "}";
}

std::string item_text(int64_t number, bool has_rules) {
    const std::string text = std::to_string(number);
    const std::string rule = R"(, "binding": "visible if [gain 0] <= )" +
                             std::to_string(100 + number % ITEMS_OF_A_MENU) + "\"";
    return std::string("{") + KINDS[static_cast<size_t>(number) % std::size(KINDS)].item +
           R"(, "name": "Item )" + text + R"(", "parameter": "gain )" + text + "\"" +
           (has_rules ? rule : "") + "}";
}

std::string menu_of(int64_t entries, bool has_rules) {
    std::string parameters;
    std::string items;
    for (int64_t i = 0; i < entries; ++i) {
        const bool is_first = i % ITEMS_OF_A_MENU == 0;
        if (is_first) {
            items += (i == 0 ? "" : "]},\n") + std::string(R"({"type": "node", "name": "Bank )") +
                     std::to_string(i / ITEMS_OF_A_MENU) + R"(", "items": [)";
        }
        parameters += (i == 0 ? "\n" : ",\n") + parameter_text(i);
        items += (is_first ? "\n" : ",\n") + item_text(i, has_rules);
    }
    return R"({"device": {"parameters": [)" + parameters +
           R"(]}, "menu": {"name": "Main", "items": [)" + items + "]}]}}";
}

int64_t entries_of(const benchmark::State& state) {
    constexpr int64_t QUICK_PART = 100;
    return frontpanel::is_quick_run() ? std::max<int64_t>(state.range(0) / QUICK_PART, 1)
                                      : state.range(0);
}

void first_frame(benchmark::State& state, bool has_rules) {
    const std::string menu = menu_of(entries_of(state), has_rules);
    double least = std::numeric_limits<double>::max();
    for (auto round : state) {
        Panel_process panel(menu);
        panel.read_until("Bank 0");
        state.SetIterationTime(std::chrono::duration<double>(panel.age()).count());
        least = std::min(least, panel.cpu_time());
    }
    state.counters["cpu_ms"] = least / 1e6;
}
BENCHMARK_CAPTURE(first_frame, plain, false)
    ->Arg(10)
    ->Arg(1000)
    ->Arg(10000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(first_frame, rules, true)
    ->Arg(10)
    ->Arg(1000)
    ->Arg(10000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// Until the first frame is drawn; 0 without valgrind.
double instructions_of(const std::string& menu) {
    namespace fs = std::filesystem;
    std::string name = fs::temp_directory_path() / "startup_bench.XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        return 0;
    }
    const fs::path folder = name;
    std::ofstream(folder / "menu.json") << menu;
    std::ofstream(folder / "script") << "tick\n";
    const std::string command = "cd " + name +
                                " && valgrind --tool=callgrind --callgrind-out-file=profile "
                                "'--dump-after=frontpanel::Panel::frame()' " FRONTPANEL
                                " --menu menu.json --log log --script script >/dev/null 2>&1";
    double count = 0;
    if (std::system(command.c_str()) == 0) {
        std::ifstream profile(folder / "profile.1");
        for (std::string word; profile >> word && word != "totals:";) {
        }
        profile >> count;
    }
    fs::remove_all(folder);
    return count;
}

void instructions(benchmark::State& state, bool has_rules) {
    const std::string menu = menu_of(entries_of(state), has_rules);
    for (auto round : state) {
        state.counters["instructions"] = instructions_of(menu);
    }
}
BENCHMARK_CAPTURE(instructions, plain, false)->Arg(10000)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(instructions, rules, true)->Arg(10000)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace
