#include "diagnostics.h"

#include <cstdarg>
#include <cstdio>

uint32_t debug = 0;
void (*debug_listener)(uint32_t mask) = nullptr;

namespace diagnostics {
namespace {

void write_prefix(uint32_t place, const char* function, const char* file) {
    const auto line = static_cast<int>(place >> (PREFIX_BITS + MASK_BITS));
    switch (static_cast<Prefix>(place & ((1U << PREFIX_BITS) - 1))) {
        case Prefix::NONE:
            return;
        case Prefix::FUNCTION_ONLY:
            std::printf("[%s] ", function);
            return;
        case Prefix::FILE_FIRST:
            std::printf("[%s][%s][%d] ", file, function, line);
            return;
        case Prefix::TWO_TABS:
            std::printf("\t\t[%s][%s][%d] ", function, file, line);
            return;
        case Prefix::TAB:
            std::printf("\t[%s][%s][%d] ", function, file, line);
            return;
        case Prefix::FUNCTION_FIRST:
            std::printf("[%s][%s][%d] ", function, file, line);
            return;
    }
}

}  // namespace

Announcement::Announcement(uint32_t mask) : m_tells(mask != UNCONDITIONAL) {
    tell(mask);
}

Announcement::~Announcement() {
    tell(0);
}

void Announcement::tell(uint32_t mask) const {
    if (m_tells && debug_listener != nullptr) {
        debug_listener(mask);
    }
}

bool leaf_gate() {
    return (debug & (QUIET | VERBOSE)) != QUIET;
}

bool entry_gate() {
    return (debug & (QUIET | VERBOSE)) != 0;
}

void write(uint32_t place, const char* function, const char* file, const char* format, ...) {
    const Announcement announcement(mask_of(place));
    write_prefix(place, function, file);
    va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
}

void write_text(uint32_t mask, const char* format, ...) {
    const Announcement announcement(mask);
    va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
}

}  // namespace diagnostics
