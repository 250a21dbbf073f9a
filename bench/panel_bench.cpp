// The panel as a person has it: the application on a terminal, with a menu of 10,000 entries, each with a rule.
//
// Key_to_frame is the time from a key on the terminal until the frame that it makes has arrived there; max_ms is
// the longest of them. "Rest" is the share of one core that an idle panel takes.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <string>
#include <thread>

#include "panel_process.h"

namespace {

using frontpanel::Panel_process;

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

std::string menu_text() {
    std::ostringstream menu;
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
    return menu.str();
}

// The cursor's mark is drawn anew by every key, and by nothing else.
void Key_to_frame(benchmark::State& state) {
    Panel_process panel(menu_text());
    panel.read_until("Bank 1");
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
    Panel_process panel(menu_text());
    panel.read_until("Bank 1");
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
