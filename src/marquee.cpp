#include "marquee.h"

#include <algorithm>
#include <cstring>

namespace marquee {

void copy_window(char* out, unsigned int length, const char* text, std::size_t text_length,
                 std::size_t offset) {
    const std::size_t tail = std::min<std::size_t>(text_length - offset, length);
    std::memcpy(out, text + offset, tail);
    if (tail == length) {
        return;
    }
    out[tail] = ' ';
    std::memcpy(out + tail + 1, text, length - 1 - tail);
}

Step advance(unsigned int& scroll_offset, unsigned int& scroll_delay, std::size_t text_length) {
    if (scroll_delay > 0) {
        --scroll_delay;
        return {true, 0};
    }
    if (scroll_offset >= text_length) {
        scroll_offset = 0;
    }
    const Step step = {false, scroll_offset};
    scroll_offset = static_cast<unsigned int>((scroll_offset + 1) % text_length);
    if (scroll_offset == 0) {
        scroll_delay = HOLD_CALLS;
    }
    return step;
}

void show(char* buffer, unsigned int length, const char* text, std::size_t text_length,
          unsigned int& scroll_offset, unsigned int& scroll_delay) {
    const Step step = advance(scroll_offset, scroll_delay, text_length);
    if (step.hold) {
        std::memcpy(buffer, text, length - 1);
    } else {
        copy_window(buffer, length, text, text_length, step.offset);
    }
    buffer[length] = '\0';
}

}  // namespace marquee
