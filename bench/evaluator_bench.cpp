// How long one evaluation of a typical expression takes. The names state the kind of expression.
#include <benchmark/benchmark.h>

#include <string>

#include <frontpanel_data/evaluator.h>

namespace {

void evaluate(benchmark::State& state, const char* source) {
    std::string text = source;
    for (auto _ : state) {
        if (evaluateExpression(text.data()) != 0) {
            state.SkipWithError(errorRecord.message);
            break;
        }
        benchmark::DoNotOptimize(variable[0].value);
    }
}

// The text that a range entry evaluates for its display expression.
BENCHMARK_CAPTURE(evaluate, assignment_with_division, "v=1234;\nv=v/10;\n");
BENCHMARK_CAPTURE(evaluate, comparison_with_logic, "a = 3 == 3 && 2 < 5");
BENCHMARK_CAPTURE(evaluate, arithmetic, "v = (12 + 34) * 5 - 67 / 8 + 0.25 * 9");
BENCHMARK_CAPTURE(evaluate, four_function_calls, "v = sin(1) + cos(2) * sqrt(3) - atan2(4, 5)");
BENCHMARK_CAPTURE(
    evaluate, two_hundred_characters_with_ten_variables,
    "gain = 12; offset = 3; level = 45.5; limit = 60; low = 0; high = 100; step = 0.5;"
    " mute = 0; ratio = level / limit;\n"
    "v = (ratio * gain + offset) * (mute == 0) + (level > high ? high : level < low ? low"
    " : level) - step;\n");
BENCHMARK_CAPTURE(evaluate, powers, "v = 2 ** 3 ** 2");
BENCHMARK_CAPTURE(evaluate, signed_powers, "v = 2 ** 3 ** 2 + 1.5 ** -2");

}  // namespace
