// The lines that the library has printed lately, with the kind of each.
//
// Reads the file that keeps the output, so the output of external commands is included. Menu thread only.
#ifndef FRONTPANEL_UI_LOG_LINES_H
#define FRONTPANEL_UI_LOG_LINES_H

#include <sys/types.h>

#include <cstdint>
#include <deque>
#include <string>

namespace frontpanel {

struct Log_line {
    uint32_t mask;  // of the line, in the bits of `debug`; 0 for a line that is always printed
    std::string text;
};

// Prints a line to standard output, which the log keeps, as a line that is always printed.
void print_always(const std::string& line);

class Log_lines {
public:
    static constexpr size_t MOST_LINES = 1000;
    static constexpr size_t LONGEST_LINE = 400;  // the rest of a line is dropped

    // `descriptor` is the file that output is appended to, open for reading; -1 for none. The caller closes it.
    explicit Log_lines(int descriptor) : m_descriptor(descriptor) {}

    // Whether there is a file to read.
    bool is_kept() const;
    // Lines that follow have this mask.
    void begin(uint32_t mask);
    // Call it when this number of bytes was removed at the beginning of the file, and the rest moved there.
    void follow_cut(off_t bytes);
    // Reads what was printed since the last call; if that is very much, only its end.
    void read();
    // The lines, oldest first. A line at the end of the file without a line end is not included.
    const std::deque<Log_line>& lines() const { return m_lines; }
    // The number of lines that were dropped before the first.
    uint64_t dropped() const { return m_dropped; }

private:
    struct Mark {
        off_t place;  // in the file
        uint32_t mask;
    };

    void skip_to(off_t place);
    void take(const char* text, size_t length);
    void finish_line();
    uint32_t mask_at(off_t place);

    int m_descriptor;
    std::deque<Mark> m_marks;  // in the order of their places, not read yet but for the first
    std::deque<Log_line> m_lines;
    uint64_t m_dropped = 0;
    off_t m_place = 0;       // read up to here
    off_t m_line_place = 0;  // where the unfinished line begins
    std::string m_line;      // the unfinished line
    bool m_is_cut = false;   // of which the beginning was skipped
};

}  // namespace frontpanel

#endif
