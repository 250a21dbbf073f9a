#include <frontpanel_data/timer.h>

#include <algorithm>
#include <cstdio>

#include "assertion.h"

namespace {

constexpr unsigned int BYTES_A_LINE = 16;
constexpr unsigned char FIRST_PRINTABLE = ' ';
constexpr unsigned char LAST_PRINTABLE = '~';

// Not isprint: dumps of one byte sequence look alike on every device, whatever locale the panel speaks.
char shown(unsigned char byte) {
    return byte >= FIRST_PRINTABLE && byte <= LAST_PRINTABLE ? static_cast<char>(byte) : '.';
}

void print_run(const unsigned char* run, unsigned int length, unsigned int offset) {
    std::printf("  %04x:  ", offset);
    for (unsigned int i = 0; i < length; ++i) {
        std::printf("%02x ", static_cast<unsigned int>(run[i]));
    }
    std::printf("\n  %04x:  ", offset);
    for (unsigned int i = 0; i < length; ++i) {
        std::printf(" %c ", shown(run[i]));
    }
    std::printf("\n");
}

}  // namespace

void dump_hex(const unsigned char* buffer, unsigned int size) {
    FRONTPANEL_ASSERT(buffer != nullptr || size == 0, "buffer");
    unsigned int done = 0;
    while (done < size) {
        const unsigned int length = std::min(size - done, BYTES_A_LINE);
        print_run(buffer + done, length, done);
        done += length;
    }
}
