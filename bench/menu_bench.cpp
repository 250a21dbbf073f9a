// What a menu file costs until its menu stands, by the number of entries, beside a bare parser on the same text.
#include <benchmark/benchmark.h>
#include <rapidjson/document.h>

#include <cstdint>
#include <string>

#include <frontpanel_base/json_document.h>
#include <frontpanel_menu/menu_loader.h>
#include <frontpanel_simulator/memory_device.h>

namespace {

using namespace frontpanel;

constexpr int64_t ITEMS_OF_A_MENU = 1000;

// Numbers with bounds, formats and, with rules, a condition each.
std::string menu_of(int64_t entries, bool has_rules) {
    std::string parameters;
    std::string items;
    for (int64_t i = 0; i < entries; ++i) {
        const std::string comma = i == 0 ? "" : ", ";
        const std::string number = std::to_string(10000 + i);
        parameters += comma + "\n" + R"({"name": "gain )" + number + R"(", "pid": )" + number +
                      R"(, "type": "integer", "min": -600, "max": 120})";
        if (i % ITEMS_OF_A_MENU == 0) {
            items += (i == 0 ? "" : "]},") + std::string(R"({"type": "node", "name": "Bank )") +
                     number + R"(", "items": [)";
        }
        items += (i % ITEMS_OF_A_MENU == 0 ? "" : ", ") + std::string("\n") +
                 R"({"type": "range", "name": "Gain )" + number + R"(", "parameter": "gain )" +
                 number + R"(", "value_format": "v/10", "format": "%.1f dB")" +
                 (has_rules ? R"(, "binding": "visible if [gain 10000] <= 100")" : "") + "}";
    }
    return R"({"device": {"parameters": [)" + parameters +
           R"(]}, "menu": {"name": "Main", "items": [)" + items + "]}]}}";
}

void count_entries(benchmark::State& state) {
    state.counters["per_entry"] =
        benchmark::Counter(static_cast<double>(state.iterations() * state.range(0)),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// As a panel loads it; the menu's end is not measured.
void load(benchmark::State& state, bool has_rules) {
    const std::string text = menu_of(state.range(0), has_rules);
    Memory_device device;
    Loading loading;
    loading.has_all_warnings = false;
    for (auto _ : state) {
        Loaded_menu loaded = load_menu_text("menu.json", text, device, loading);
        state.PauseTiming();
        loaded.menu.reset();
        state.ResumeTiming();
    }
    count_entries(state);
}
BENCHMARK_CAPTURE(load, plain, false)->RangeMultiplier(10)->Range(10, 10000);
BENCHMARK_CAPTURE(load, rules, true)->RangeMultiplier(10)->Range(10, 10000);

void read_json(benchmark::State& state) {
    const std::string text = menu_of(state.range(0), false);
    const Source source{"menu.json", 0};
    for (auto _ : state) {
        const Json_document document(source, text);
        benchmark::DoNotOptimize(document.value_count());
    }
    count_entries(state);
}
BENCHMARK(read_json)->RangeMultiplier(10)->Range(10, 10000);

void read_json_with_rapidjson(benchmark::State& state) {
    const std::string text = menu_of(state.range(0), false);
    for (auto _ : state) {
        std::string copy = text;
        rapidjson::Document document;
        document.ParseInsitu(copy.data());
        benchmark::DoNotOptimize(document.IsObject());
    }
    count_entries(state);
}
BENCHMARK(read_json_with_rapidjson)->RangeMultiplier(10)->Range(10, 10000);

}  // namespace
