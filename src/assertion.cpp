#include "assertion.h"

#include <cstdio>
#include <cstdlib>

namespace assertion {

void fail(const char* text, const char* file, int line, const char* function) {
    std::fflush(stdout);
    std::fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", file, line, function, text);
    std::abort();
}

}  // namespace assertion
