#include "diagnostics.h"

#include <cstdarg>
#include <cstdio>

uint32_t debug = 0;
void (*debug_listener)(uint32_t mask) = nullptr;

namespace diagnostics {
namespace {

void write_prefix(Prefix prefix, const Place& place) {
    switch (prefix) {
        case Prefix::NONE:
            return;
        case Prefix::FUNCTION_ONLY:
            std::printf("[%s] ", place.function);
            return;
        case Prefix::FILE_FIRST:
            std::printf("[%s][%s][%d] ", place.file, place.function, place.line);
            return;
        case Prefix::TWO_TABS:
            std::printf("\t\t[%s][%s][%d] ", place.function, place.file, place.line);
            return;
        case Prefix::TAB:
            std::printf("\t[%s][%s][%d] ", place.function, place.file, place.line);
            return;
        case Prefix::FUNCTION_FIRST:
            std::printf("[%s][%s][%d] ", place.function, place.file, place.line);
            return;
    }
}

}  // namespace

void write(Prefix prefix, const Place& place, const char* format, ...) {
    write_prefix(prefix, place);
    va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
}

}  // namespace diagnostics
