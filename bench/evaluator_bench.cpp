// How long one evaluation of a typical expression takes. The names state the kind of expression. If the library fparser
// is installed, its time for the same expression in its own notation is measured too, also parsed and evaluated each
// time: it is the fastest of the evaluators that were compared.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

#include <frontpanel_data/evaluator.h>

#ifdef FRONTPANEL_BENCH_FPARSER
#include <fparser.hh>
#endif

namespace {

// In both notations the expression assigns to `v`, or uses it.
struct Line {
    const char* name;
    const char* text;
    const char* with_fparser;
};

const Line LINES[] = {
    // The text that a range entry evaluates for its display expression.
    {"assignment_with_division", "v=1234;\nv=v/10;\n", "v:=1234;\nv/10\n"},
    {"comparison_with_logic", "v = 3 == 3 && 2 < 5", "3 = 3 & 2 < 5"},
    {"arithmetic", "v = (12 + 34) * 5 - 67 / 8 + 0.25 * 9", "(12 + 34) * 5 - 67 / 8 + 0.25 * 9"},
    {"four_function_calls", "v = sin(1) + cos(2) * sqrt(3) - atan2(4, 5)",
     "sin(1) + cos(2) * sqrt(3) - atan2(4, 5)"},
    {"two_hundred_characters_with_ten_variables",
     "gain = 12; offset = 3; level = 45.5; limit = 60; low = 0; high = 100; step = 0.5;"
     " mute = 0; ratio = level / limit;\n"
     "v = (ratio * gain + offset) * (mute == 0) + (level > high ? high : level < low ? low"
     " : level) - step;\n",
     "gain := 12; offset := 3; level := 45.5; limit := 60; low := 0; high := 100; step := 0.5;"
     " mute := 0; ratio := level / limit;\n"
     "(ratio * gain + offset) * (mute = 0) + if(level > high, high, if(level < low, low,"
     " level)) - step\n"},
    {"powers", "v = 2 ** 3 ** 2", "2 ^ 3 ^ 2"},
    {"signed_powers", "v = 2 ** 3 ** 2 + 1.5 ** -2", "2 ^ 3 ^ 2 + 1.5 ^ -2"},
};

bool is_evaluated(benchmark::State& state, std::string& text) {
    if (evaluateExpression(text.data()) == 0) return true;
    state.SkipWithError(errorRecord.message);
    return false;
}

void evaluate(benchmark::State& state, const Line& line) {
    std::string text = line.text;
    for (auto _ : state) {
        if (!is_evaluated(state, text)) break;
        benchmark::DoNotOptimize(variable[0].value);
    }
}

#ifdef FRONTPANEL_BENCH_FPARSER
double value_of_v() {
    pushChar('v');
    return *locateVariable(1);
}

// The parser object is kept between evaluations, which makes it faster.
void evaluate_with_fparser(benchmark::State& state, const Line& line) {
    const std::string text = line.with_fparser;
    FunctionParser parser;
    for (auto _ : state) {
        if (parser.Parse(text, "") >= 0) {
            state.SkipWithError(parser.ErrorMsg());
            return;
        }
        benchmark::DoNotOptimize(parser.Eval(nullptr));
    }
    std::string own = line.text;
    if (is_evaluated(state, own) && std::fabs(value_of_v() - parser.Eval(nullptr)) > 1e-12) {
        state.SkipWithError("the values differ");
    }
}
#endif

const bool HAS_CASES = [] {
    for (const Line& line : LINES) {
        const std::string name = line.name;
        benchmark::RegisterBenchmark(("evaluate/" + name).c_str(), evaluate, line);
#ifdef FRONTPANEL_BENCH_FPARSER
        benchmark::RegisterBenchmark(("evaluate_with_fparser/" + name).c_str(),
                                     evaluate_with_fparser, line);
#endif
    }
    return true;
}();

}  // namespace
