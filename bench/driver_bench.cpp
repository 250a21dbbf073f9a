// The cache in front of drivers: what a menu costs that shows 100 of very many parameters, and a key at a panel whose driver
// hangs beside one whose driver answers.
#include <benchmark/benchmark.h>

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <frontpanel_drivers/device_cache.h>
#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_simulator/memory_device.h>
#include <frontpanel_ui/panel.h>

namespace {

using namespace frontpanel;

constexpr std::uint32_t SHOWN = 100;

// Shared with the thread of a driver.
struct Gate {
    void close() {
        const std::lock_guard<std::mutex> lock(mutex);
        is_closed = true;
    }
    void open() {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            is_closed = false;
        }
        changed.notify_all();
    }
    void wait_for_visitor() {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return waits; });
    }
    void pass() {
        std::unique_lock<std::mutex> lock(mutex);
        waits = is_closed;
        changed.notify_all();
        changed.wait(lock, [this] { return !is_closed; });
        waits = false;
    }

    std::mutex mutex;
    std::condition_variable changed;
    bool is_closed = false;
    bool waits = false;
};

class Bench_driver : public Driver {
public:
    explicit Bench_driver(std::shared_ptr<Gate> gate) : m_gate(std::move(gate)) {}

    void add(const Json_value& /*source*/, const Driver_parameter& /*parameter*/) override {}
    Driver_result connect() override { return Driver_result::done(); }
    Driver_result read(const std::vector<std::size_t>& numbers, Value_sink& sink) override {
        m_gate->pass();
        for (const std::size_t number : numbers) {
            sink.value(number, ++m_value % 100);
        }
        return Driver_result::done();
    }
    Driver_result write(std::size_t /*number*/, const Parameter_value& /*value*/) override {
        m_gate->pass();
        return Driver_result::done();
    }

private:
    std::shared_ptr<Gate> m_gate;
    std::int32_t m_value = 0;
};

void add_parameters(Device_cache& cache, const std::shared_ptr<Gate>& gate, std::uint32_t count) {
    const std::size_t driver = cache.add_driver("bench", std::make_unique<Bench_driver>(gate));
    for (std::uint32_t pid = 0; pid < count; ++pid) {
        Driver_parameter parameter;
        parameter.pid = pid;
        parameter.max = 100;
        cache.add_parameter(driver, parameter);
    }
}

// A second of a menu that shows 100 parameters: they are asked for at each tick, and read once.
void Second_of_100_shown(benchmark::State& state) {
    using Time = std::chrono::steady_clock::time_point;
    const auto now = std::make_shared<Time>();
    Device_cache_settings settings;
    settings.has_threads = false;
    settings.clock = [now] { return *now; };
    Memory_device others;
    Device_cache cache(others, settings);
    add_parameters(cache, std::make_shared<Gate>(), static_cast<std::uint32_t>(state.range(0)));
    cache.start();
    for (auto round : state) {
        for (int tick = 0; tick < 3; ++tick) {
            for (std::uint32_t pid = 0; pid < SHOWN; ++pid) {
                std::int32_t value = 0;
                benchmark::DoNotOptimize(cache.Get(pid, 0, &value, sizeof value));
            }
            cache.step();
        }
        *now += std::chrono::seconds(1);
    }
}
BENCHMARK(Second_of_100_shown)->Arg(100)->Arg(1000)->Arg(10000);

std::string menu_of(std::uint32_t count) {
    std::string parameters;
    std::string items;
    for (std::uint32_t pid = 0; pid < count; ++pid) {
        const std::string comma = pid == 0 ? "" : ",";
        const std::string number = std::to_string(pid);
        parameters += comma + R"({"pid": )" + number +
                      R"(, "type": "integer", "min": 0, "max": 100, "source": {}})";
        items +=
            comma + R"({"type": "range", "name": "Gain )" + number + R"(", "pid": )" + number + "}";
    }
    return R"({"device": {"parameters": [)" + parameters +
           R"(]}, "menu": {"name": "Main", "items": [)" + items + "]}}";
}

// A key and its frame, with a tick, in a menu of 100 items.
void Key_to_frame(benchmark::State& state) {
    const bool hangs = state.range(0) != 0;
    const auto gate = std::make_shared<Gate>();
    Memory_device others;
    Device_cache cache(others);
    add_parameters(cache, gate, SHOWN);
    const std::unique_ptr<Menu> menu = load_menu_text("menu.json", menu_of(SHOWN), cache).menu;
    cache.start();
    cache.read_all(std::chrono::seconds(10));
    Panel panel(*menu);
    if (hangs) {
        gate->close();
        const std::int32_t value = 1;
        cache.Set(0, 0, &value, sizeof value);
        gate->wait_for_visitor();
    }
    bool is_down = false;
    for (auto key : state) {
        is_down = !is_down;
        panel.press({is_down ? Key::DOWN : Key::UP});
        panel.tick();
        benchmark::DoNotOptimize(panel.frame());
    }
    gate->open();
}
BENCHMARK(Key_to_frame)->ArgName("hangs")->Arg(0)->Arg(1);

}  // namespace
