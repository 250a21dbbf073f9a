// A fortified build calls __syslog_chk where the source calls syslog. Tests that catch the one catch the other.
#include <cstdarg>
#include <cstdio>
#include <string>

extern "C" {
__attribute__((format(printf, 2, 3))) void __wrap_syslog(int priority, const char* format, ...);
__attribute__((format(printf, 3, 4))) void __wrap___syslog_chk(int priority, int flag,
                                                               const char* format, ...);
}

void __wrap___syslog_chk(int priority, int, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    __wrap_syslog(priority, "%s", text.c_str());
}
