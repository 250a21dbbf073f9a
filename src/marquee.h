// The marquee: how a text that is longer than its display line is shown call by call.
//
// A long text is held at its start for some calls, then moves left by one character a call, with one blank
// between its end and its start, and is held again after each full turn. The string model shows the same
// window of its text. No function here writes a terminator or allocates.
#ifndef FRONTPANEL_DATA_SRC_MARQUEE_H
#define FRONTPANEL_DATA_SRC_MARQUEE_H

#include <cstddef>

namespace marquee {

// Calls for which a text is held after each full turn.
constexpr unsigned int HOLD_CALLS = 2;

// Copies `length` characters of a text from `offset` to `out`, going on after one blank at the text's start.
// Requires text_length >= length and offset <= text_length.
void copy_window(char* out, unsigned int length, const char* text, std::size_t text_length,
                 std::size_t offset);

// What one call of the marquee shows.
struct Step {
    bool hold;            // the start of the text
    unsigned int offset;  // else the window from here
};

// Decides what this call shows and advances the entry's scroll state (`m_scroll_offset`, `m_scroll_delay`).
// Requires text_length > 0.
Step advance(unsigned int& scroll_offset, unsigned int& scroll_delay, std::size_t text_length);

// Shows one call of a text of `length` characters or more, as range and enumerated entries do: while it is
// held, `length` - 1 characters are copied and the last position keeps what the buffer held (callers rely on
// seeing their own end mark there). Terminates at buffer[length], so the buffer holds `length` + 1 bytes.
void show(char* buffer, unsigned int length, const char* text, std::size_t text_length,
          unsigned int& scroll_offset, unsigned int& scroll_delay);

}  // namespace marquee

#endif
