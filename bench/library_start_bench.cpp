// How much longer a program takes to start because it is linked to the library: a trivial one beside one that is linked
// to the same other libraries. Times of the processor, kernel included, from the start of the process to its end.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

constexpr int PAIRS = 50;  // for each iteration

double milliseconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

// `setting` is the only variable of the program's environment.
double run(const char* program, const char* setting) {
    char* const arguments[] = {const_cast<char*>(program), nullptr};
    char* const environment[] = {const_cast<char*>(setting), nullptr};
    pid_t process = 0;
    if (posix_spawn(&process, program, nullptr, nullptr, arguments, environment) != 0) {
        std::abort();
    }
    int status = 0;
    rusage usage = {};
    if (wait4(process, &status, 0, &usage) != process || status != 0) {
        std::abort();
    }
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

// The time that a tenth of the runs stays below: other work on the machine only adds time, and the shortest run is
// rare.
double usual(std::vector<double>& times) {
    const auto tenth = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 10);
    std::nth_element(times.begin(), tenth, times.end());
    return *tenth;
}

void start_with_the_library(benchmark::State& state) {
    std::vector<double> with;
    std::vector<double> without;
    for (auto _ : state) {
        double sum = 0;
        for (int pair = 0; pair < PAIRS; ++pair) {
            without.push_back(run(START_WITHOUT_LIBRARY, "PRELOAD=" LIBRARY));
            // The dynamic linker finds an installed library by one search; that of a build by many, unless it is named.
            with.push_back(run(START_WITH_LIBRARY, "LD_PRELOAD=" LIBRARY));
            sum += with.back();
        }
        state.SetIterationTime(sum / PAIRS / 1e3);
    }
    const double usual_with = usual(with);
    const double usual_without = usual(without);
    state.counters["with_ms"] = usual_with;
    state.counters["without_ms"] = usual_without;
    state.counters["above_ms"] = usual_with - usual_without;
}
// As many pairs of runs in each repetition, however long they take.
BENCHMARK(start_with_the_library)->UseManualTime()->Iterations(6)->Unit(benchmark::kMicrosecond);

}  // namespace
