// Refreshing, drawing and stepping enumerated entries, and the lookup of product options behind them.
#include <benchmark/benchmark.h>
#include <frontpanel_data/enum_entry.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

const Index_t INDEX = {1, {3}};

// Answers every read with the same key.
class Constant_interface : public Data_interface {
public:
    int Get(unsigned int, unsigned int, void* buffer, unsigned int length) override {
        const int key = 1;
        std::memcpy(buffer, &key, length);
        return 0;
    }
    int Set(unsigned int, unsigned int, const void*, unsigned int) override { return 0; }
    int Get_prod_list(PROD_LIST_S*, bool, bool) override { return 1; }
    int Set_product_id(prod_id_t) override { return 1; }
    int Get_prod_alias_name(char*, prod_id_t) override { return 1; }
};

// An entry of `count` options, all with the same text.
class Options {
public:
    Options(std::size_t count, const std::string& text) : m_texts(count, text) {
        for (std::string& option : m_texts) {
            m_array.push_back(option.data());
        }
    }
    char** array() { return m_array.data(); }
    unsigned int size() const { return static_cast<unsigned int>(m_array.size()); }

private:
    std::vector<std::string> m_texts;
    std::vector<char*> m_array;
};

class Bench_entry : public Enum_entry {
public:
    explicit Bench_entry(Options& options)
        : Enum_entry("Mode", "An option", 120, &INDEX, 0, static_cast<int>(options.size()) - 1, 0,
                     options.array(), options.size(), nullptr, READ_WRITE, VISIBLE_ALL, true,
                     SHORTCUT_NONE, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) {}
};

// Product options of which none is a pattern.
std::map<std::string, unsigned int> product_options(int count) {
    std::map<std::string, unsigned int> options;
    for (int option = 0; option < count; ++option) {
        options["card" + std::to_string(100000 + option)] = 1;
    }
    return options;
}

void refresh(benchmark::State& state) {
    Options options(static_cast<std::size_t>(state.range(0)), "Option");
    Bench_entry entry(options);
    Constant_interface device;
    for (auto _ : state) {
        benchmark::DoNotOptimize(entry.Refresh(&device, true));
    }
}
BENCHMARK(refresh)->Arg(4)->Arg(1000);

void step_to_and_fro(benchmark::State& state) {
    Options options(static_cast<std::size_t>(state.range(0)), "Option");
    Bench_entry entry(options);
    const int last = static_cast<int>(options.size()) - 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(entry.Inc_value(last, 0));
        benchmark::DoNotOptimize(entry.Inc_value(-last, 0));
    }
}
BENCHMARK(step_to_and_fro)->Arg(4)->Arg(1000);

// All lines of a list, one after the other.
void display_each_position(benchmark::State& state) {
    Options options(static_cast<std::size_t>(state.range(0)), "Option");
    Bench_entry entry(options);
    const int last = static_cast<int>(options.size()) - 1;
    char line[21];
    int position = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(entry.Get_display_string(line, 20, position));
        position = position == last ? 0 : position + 1;
    }
}
BENCHMARK(display_each_position)->Arg(10)->Arg(100)->Arg(1000)->Arg(20000);

void display(benchmark::State& state, std::size_t text_length) {
    Options options(2, std::string(text_length, 'x'));
    Bench_entry entry(options);
    char line[17];
    for (auto _ : state) {
        benchmark::DoNotOptimize(entry.Get_display_string(line, 16));
        benchmark::DoNotOptimize(line);
    }
}
BENCHMARK_CAPTURE(display, short_text, 8U);
BENCHMARK_CAPTURE(display, marquee, 40U);
BENCHMARK_CAPTURE(display, long_marquee, 400U);

void work_out_visible_options(benchmark::State& state) {
    Options options(static_cast<std::size_t>(state.range(0)), "Option");
    Bench_entry entry(options);
    std::map<int, std::vector<std::string>> controls;
    for (int key = 0; key < state.range(0); ++key) {
        controls[key] = {"card100000"};
    }
    entry.setProductOptions(product_options(10));
    entry.Set_control_options(controls);
    for (auto _ : state) {
        benchmark::DoNotOptimize(entry.updateControlOptionMap());
    }
}
BENCHMARK(work_out_visible_options)->Arg(4)->Arg(1000);

void look_up_product_option(benchmark::State& state, const char* option, bool with_patterns) {
    Options options(1, "Option");
    Bench_entry entry(options);
    std::map<std::string, unsigned int> product = product_options(1000);
    if (with_patterns) {
        for (int pattern = 0; pattern < 1000; ++pattern) {
            product["slot" + std::to_string(100000 + pattern) + "n"] = 4;
        }
    }
    entry.setProductOptions(product);
    for (auto _ : state) {
        benchmark::DoNotOptimize(entry.isOptionStatic(option, false));
    }
}
BENCHMARK_CAPTURE(look_up_product_option, known, "card100500", false);
BENCHMARK_CAPTURE(look_up_product_option, unknown, "relay7", false);
BENCHMARK_CAPTURE(look_up_product_option, unknown_among_patterns, "relay7", true);
BENCHMARK_CAPTURE(look_up_product_option, last_pattern, "slot1009993", true);

}  // namespace
