// What one redraw of a range entry costs, next to printing the number alone.
#include <benchmark/benchmark.h>
#include <frontpanel_data/evaluator.h>
#include <frontpanel_data/range_entry.h>

#include <cstdio>
#include <string>
#include <utility>

namespace {

constexpr unsigned int LENGTH = 16;

class Shown_range {
public:
    Shown_range(std::string format, std::string expression)
        : m_format(std::move(format)), m_expression(std::move(expression)) {}

    void show(benchmark::State& state, int value) {
        char line[LENGTH + 1];
        for (auto _ : state) {
            benchmark::DoNotOptimize(m_entry.Get_display_string(line, LENGTH, value));
            benchmark::ClobberMemory();
        }
    }

private:
    const Index_t m_index = {1, {3}};
    std::string m_format;
    std::string m_expression;
    Range_entry m_entry{"Gain",
                        "The gain of the amplifier",
                        120,
                        &m_index,
                        0,
                        100,
                        10,
                        m_format.data(),
                        m_expression.data(),
                        nullptr,
                        Data_entry::READ_WRITE,
                        Data_entry::VISIBLE_ALL,
                        true,
                        Data_entry::SHORTCUT_NONE,
                        nullptr,
                        nullptr,
                        nullptr};
};

void print_with_snprintf(benchmark::State& state) {
    char line[LENGTH + 1];
    int value = 12345;
    for (auto _ : state) {
        benchmark::DoNotOptimize(value);
        std::snprintf(line, sizeof line, "%d", value);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(print_with_snprintf);

void show_a_plain_number(benchmark::State& state) {
    Shown_range("", "").show(state, 12345);
}
BENCHMARK(show_a_plain_number);

void show_a_text_of_a_table(benchmark::State& state) {
    Shown_range("0:Off,1:On,2:Automatic,%d", "v").show(state, 2);
}
BENCHMARK(show_a_text_of_a_table);

void show_an_expression(benchmark::State& state) {
    Shown_range("%.1f dB", "v/10").show(state, 125);
}
BENCHMARK(show_an_expression);

void show_a_number_by_a_format(benchmark::State& state) {
    Shown_range("%d", "v").show(state, 12345);
}
BENCHMARK(show_a_number_by_a_format);

// What these two cannot do without: the evaluator, and bare formatting.
void evaluate_and_print_a_number(benchmark::State& state) {
    char line[LENGTH + 1];
    for (auto _ : state) {
        char text[] = "v=12345;\nv=v;\n";
        evaluateExpression(text);
        std::snprintf(line, sizeof line, "%d", static_cast<int>(variable[0].value));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(evaluate_and_print_a_number);

void evaluate_and_print_tenths(benchmark::State& state) {
    char line[LENGTH + 1];
    for (auto _ : state) {
        char text[] = "v=125;\nv=v/10;\n";
        evaluateExpression(text);
        std::snprintf(line, sizeof line, "%.1f dB", variable[0].value);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(evaluate_and_print_tenths);

void show_a_scrolling_text(benchmark::State& state) {
    Shown_range("0:Reference locked,%d", "v").show(state, 0);
}
BENCHMARK(show_a_scrolling_text);

}  // namespace
