#include <cstdarg>
#include <cstdio>

#include "livedata_support.h"

namespace {

std::vector<std::string>& lines() {
    static std::vector<std::string> log;
    return log;
}

}  // namespace

extern "C" __attribute__((format(printf, 2, 3), visibility("default"))) void __wrap_syslog(
    int priority, const char* format, ...) {
    char text[1024];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    lines().push_back(std::to_string(priority) + " " + livedata_test::masked(text));
}

namespace livedata_test {

std::vector<std::string> take_system_log() {
    std::vector<std::string> taken;
    taken.swap(lines());
    return taken;
}

}  // namespace livedata_test
