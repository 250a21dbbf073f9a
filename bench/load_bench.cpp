// What a loaded panel costs its menu thread, and how long a key waits for its frame: a menu over a driver, the panel and
// its main loop, on a display that notes when frames come.
//
// Each case reports the share of a core that the menu thread takes (cpu_percent), and of some thousand keys that come at
// any time the longest wait for the frame but for one in a thousand: by the clock (key_ms), and by the time that the menu
// thread itself ran meanwhile (key_cpu_ms), which other work of the machine does not lengthen. idle_key_ms is the wait by
// the clock of an idle panel just before: what the machine adds to every key.
#include <benchmark/benchmark.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <frontpanel_drivers/device_cache.h>
#include <frontpanel_menu/menu_dump.h>
#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_simulator/memory_device.h>
#include <frontpanel_ui/main_loop.h>
#include <frontpanel_ui/panel.h>
#include "quick_run.h"

namespace {

using namespace frontpanel;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::uint32_t ITEMS_OF_A_MENU = 1000;
constexpr int KEYS = 2000;
constexpr std::uint32_t MODE = 1;  // a parameter that changes
constexpr std::uint32_t FIRST = 100000;

// ---- the device

struct Load {
    std::uint32_t entries;
    std::string rule;              // '#' is the number of the entry's parameter; empty for none
    milliseconds mode_interval;    // between changes of the mode; 0 for none
    std::uint32_t pushed_at_once;  // in each millisecond: values of the entries' parameters
    std::size_t refreshes_at_once = 100;  // as the application has it
};

// Parameter 0 is the mode.
class Pushing_driver : public Driver {
public:
    explicit Pushing_driver(const Load& load) : m_load(load) {}

    void add(const Json_value& /*source*/, const Driver_parameter& /*parameter*/) override {}
    Driver_result connect() override { return Driver_result::done(); }
    bool pushes(std::size_t number) const override {
        return number == 0 || m_load.pushed_at_once > 0;
    }
    Driver_result read(const std::vector<std::size_t>& numbers, Value_sink& sink) override {
        for (const std::size_t number : numbers) {
            sink.value(number, static_cast<std::int32_t>(number % 100));
        }
        return Driver_result::done();
    }
    Driver_result write(std::size_t /*number*/, const Parameter_value& /*value*/) override {
        return Driver_result::done();
    }
    Driver_result wait(milliseconds /*most*/, int /*wake*/, Value_sink& sink) override {
        std::this_thread::sleep_for(milliseconds(1));
        const auto now = steady_clock::now();
        if (now >= m_next_mode) {
            m_next_mode = m_load.mode_interval.count() > 0 ? now + m_load.mode_interval
                                                           : steady_clock::time_point::max();
            sink.value(0, ++m_value % 2);
        }
        for (std::uint32_t i = 0; i < m_load.pushed_at_once; ++i) {
            sink.value(1 + m_next++ % m_load.entries, ++m_value % 100);
        }
        return Driver_result::done();
    }

private:
    const Load& m_load;
    steady_clock::time_point m_next_mode{};
    std::uint32_t m_next = 0;
    std::int32_t m_value = 0;
};

std::string with_number(std::string text, std::uint32_t number) {
    const std::size_t mark = text.find('#');
    return mark == std::string::npos ? text : text.replace(mark, 1, std::to_string(number));
}

std::string parameter_text(std::uint32_t pid) {
    return R"({"pid": )" + std::to_string(pid) +
           R"(, "type": "integer", "min": 0, "max": 100, "source": {}})";
}

std::string menu_of(const Load& load) {
    std::string parameters = parameter_text(MODE);
    std::string items;
    for (std::uint32_t i = 0; i < load.entries; ++i) {
        const std::string number = std::to_string(FIRST + i);
        if (i % ITEMS_OF_A_MENU == 0) {
            items += (i == 0 ? "" : "]},") + std::string(R"({"type": "node", "name": "Bank )") +
                     std::to_string(i / ITEMS_OF_A_MENU) + R"(", "items": [)";
        }
        parameters += "," + parameter_text(FIRST + i);
        items +=
            (i % ITEMS_OF_A_MENU == 0 ? "" : ",") +
            std::string(R"({"type": "range", "name": "Gain )") + number + R"(", "pid": )" + number +
            (load.rule.empty() ? ""
                               : R"(, "binding": ")" + with_number(load.rule, FIRST + i) + "\"") +
            "}";
    }
    return R"({"device": {"parameters": [)" + parameters +
           R"(]}, "menu": {"name": "Main", "items": [)" + items + "]}]}}";
}

// ---- the person

double milliseconds_of(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// A display and a key pad: keys come from another thread, and it notes when their frames are there.
class Noting_front : public Front {
public:
    Noting_front() : m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~Noting_front() override { close(m_wake); }

    // On the thread of the person: a key, or the end.
    void send(Front_event event) {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_event = event;
            m_frames_before = m_frames;
        }
        const std::uint64_t one = 1;
        (void)!write(m_wake, &one, sizeof one);
    }
    bool is_shown() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_is_taken && m_frames > m_frames_before;
    }

    std::optional<Front_event> next(Time /*now*/) override {
        std::uint64_t raised = 0;
        (void)!read(m_wake, &raised, sizeof raised);
        const std::lock_guard<std::mutex> lock(m_mutex);
        const std::optional<Front_event> event = std::exchange(m_event, std::nullopt);
        if (event) {
            m_is_taken = true;
            m_frames_before = m_frames;
        }
        return event;
    }
    void show(const Frame& /*frame*/) override {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_frames;
    }
    pollfd source() const override { return {m_wake, POLLIN, 0}; }
    Time due() const override { return Time::max(); }

    void begin_key() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_is_taken = false;
    }

private:
    int m_wake;
    std::mutex m_mutex;
    std::optional<Front_event> m_event;
    bool m_is_taken = false;
    std::uint64_t m_frames = 0;
    std::uint64_t m_frames_before = 0;
};

struct Waits {
    std::vector<double> by_clock;
    std::vector<double> by_thread;
};

double at_percentile(std::vector<double>& times, double share) {
    std::sort(times.begin(), times.end());
    return times[std::min(times.size() - 1,
                          static_cast<std::size_t>(share * static_cast<double>(times.size())))];
}

// Presses keys at any time, into a menu first, then up and down.
void use(Noting_front& front, clockid_t menu_thread, Waits& waits) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> pause(500, 4000);
    for (int i = 0, last = is_quick_run() ? KEYS / 100 : KEYS; i < last; ++i) {
        std::this_thread::sleep_for(std::chrono::microseconds(pause(random)));
        const Key::Kind kind = i == 0 ? Key::SELECT : i % 64 < 32 ? Key::DOWN : Key::UP;
        front.begin_key();
        const double ran = milliseconds_of(menu_thread);
        const double start = milliseconds_of(CLOCK_MONOTONIC);
        front.send({Front_event::KEY, {kind}, {}});
        while (!front.is_shown()) {
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        }
        waits.by_clock.push_back(milliseconds_of(CLOCK_MONOTONIC) - start);
        waits.by_thread.push_back(milliseconds_of(menu_thread) - ran);
    }
    front.send({Front_event::GONE, {Key::UP}, {}});
}

// ---- the panel

void add_parameters(Device_cache& cache, const Load& load) {
    const std::size_t driver = cache.add_driver("bench", std::make_unique<Pushing_driver>(load));
    for (std::uint32_t i = 0; i <= load.entries; ++i) {
        Driver_parameter parameter;
        parameter.pid = i == 0 ? MODE : FIRST + i - 1;
        parameter.max = 100;
        cache.add_parameter(driver, parameter);
    }
}

struct Figures {
    double cpu_percent;
    double key_ms;
    double key_cpu_ms;
};

Figures figures_of(Load load) {
    if (is_quick_run()) load.entries /= 100;
    Memory_device others;
    Device_cache cache(others);
    add_parameters(cache, load);
    const std::unique_ptr<Menu> menu = load_menu_text("menu.json", menu_of(load), cache).menu;
    const End_watch end;
    cache.start();
    cache.read_all(std::chrono::seconds(10));
    refresh_all(*menu);  // as if somebody had been in every menu
    Panel_options options;
    options.refreshes_at_once = load.refreshes_at_once;
    options.device_descriptor = cache.descriptor();
    options.before_tick = [&cache] {
        cache.take_changes();
        (void)cache.take_events();
    };
    Panel panel(*menu, options);
    Noting_front front;
    Waits waits;
    clockid_t menu_thread{};
    pthread_getcpuclockid(pthread_self(), &menu_thread);
    const double ran = milliseconds_of(menu_thread);
    const double start = milliseconds_of(CLOCK_MONOTONIC);
    std::thread person([&] { use(front, menu_thread, waits); });
    panel.run(front, end);
    person.join();
    constexpr double ALMOST_ALL = 0.999;
    return {100 * (milliseconds_of(menu_thread) - ran) / (milliseconds_of(CLOCK_MONOTONIC) - start),
            at_percentile(waits.by_clock, ALMOST_ALL), at_percentile(waits.by_thread, ALMOST_ALL)};
}

const Load IDLE{1000, "", milliseconds(0), 0};

void loaded_panel(benchmark::State& state, const Load& load) {
    for (auto round : state) {
        const Figures idle = figures_of(IDLE);
        const Figures loaded = figures_of(load);
        state.counters["cpu_percent"] = loaded.cpu_percent;
        state.counters["key_ms"] = loaded.key_ms;
        state.counters["key_cpu_ms"] = loaded.key_cpu_ms;
        state.counters["idle_key_ms"] = idle.key_ms;
    }
}

void add(const char* name, const Load& load) {
    benchmark::RegisterBenchmark(name, loaded_panel, load)
        ->Iterations(1)
        ->Unit(benchmark::kSecond)
        ->UseRealTime();
}

const bool HAS_CASES = [] {
    add("idle", IDLE);
    add("dependants_of_one/20000", {20000, "visible if [1] < 9", milliseconds(100), 0});
    add("dependants_of_one/20000/all_at_once",
        {20000, "visible if [1] < 9", milliseconds(100), 0, SIZE_MAX});
    add("rules/10000", {10000, "visible if [#] < 100; range 0..50 + [1]", milliseconds(1000), 0});
    add("rules/10000/all_at_once",
        {10000, "visible if [#] < 100; range 0..50 + [1]", milliseconds(1000), 0, SIZE_MAX});
    add("polled/10000", {10000, "visible if [#] < 100", milliseconds(0), 0});
    add("pushed/10000", {10000, "visible if [#] < 100", milliseconds(0), 10});
    return true;
}();

}  // namespace
