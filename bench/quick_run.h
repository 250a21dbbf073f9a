// Whether a benchmark only shows that it works, as in the tests.
#ifndef FRONTPANEL_BENCH_QUICK_RUN_H
#define FRONTPANEL_BENCH_QUICK_RUN_H

#include <cstdlib>

namespace frontpanel {

// The tests take a hundredth of the entries, and what else makes a case long.
inline bool is_quick_run() {
    return std::getenv("FRONTPANEL_BENCH_QUICK") != nullptr;
}

}  // namespace frontpanel

#endif
