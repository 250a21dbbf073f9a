// What a piece of code prints, taken at the level of file descriptors.
//
//     EXPECT_EQ(capture(0x21, [&] { entry.Print_suggestions(); }).out,
//               "[Print_suggestions][entry.cpp][#] [Volume]\n");
//
// Line numbers in the prefixes of diagnostic lines are masked as [#].
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_CAPTURE_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_CAPTURE_H

#include <frontpanel_data/data_interface.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>

namespace support {

// Sets `debug` for a scope.
class Debug_scope {
public:
    explicit Debug_scope(uint32_t mask) : m_before(debug) { debug = mask; }
    ~Debug_scope() { debug = m_before; }
    Debug_scope(const Debug_scope&) = delete;
    Debug_scope& operator=(const Debug_scope&) = delete;

private:
    uint32_t m_before;
};

// Turns one standard stream into a temporary file for a scope.
class Stream_scope {
public:
    explicit Stream_scope(std::FILE* stream) : m_stream(stream), m_file(std::tmpfile()) {
        flush();
        m_saved = dup(fileno(m_stream));
        if (m_file == nullptr || m_saved < 0 || dup2(fileno(m_file), fileno(m_stream)) < 0) {
            throw std::runtime_error("cannot capture a standard stream");
        }
    }
    ~Stream_scope() {
        flush();
        dup2(m_saved, fileno(m_stream));
        close(m_saved);
        std::fclose(m_file);
    }
    Stream_scope(const Stream_scope&) = delete;
    Stream_scope& operator=(const Stream_scope&) = delete;

    // What has been written so far, by this process and its children.
    std::string text() {
        flush();
        std::string all;
        char part[4096];
        for (off_t at = 0;;) {
            const ssize_t got = pread(fileno(m_file), part, sizeof part, at);
            if (got <= 0) {
                return all;
            }
            all.append(part, static_cast<std::size_t>(got));
            at += got;
        }
    }

private:
    void flush() {
        std::cout.flush();
        std::fflush(m_stream);
    }

    std::FILE* m_stream;
    std::FILE* m_file;
    int m_saved = -1;
};

// Whether the text before `end` closes with "[...]" on one line; its content goes to `content`, its start
// to `begin`.
inline bool bracket_before(const std::string& text, std::size_t end, std::size_t& begin,
                           std::string& content) {
    if (end == 0 || text[end - 1] != ']') {
        return false;
    }
    begin = text.rfind('[', end - 1);
    if (begin == std::string::npos) {
        return false;
    }
    content = text.substr(begin + 1, end - begin - 2);
    return content.find('\n') == std::string::npos;
}

inline bool names_a_source(const std::string& content) {
    return content.size() > 4 && content.compare(content.size() - 4, 4, ".cpp") == 0;
}

// "[function][file.cpp][123]" and "[file.cpp][function][123]" with [#] as line number.
inline std::string mask_line_numbers(const std::string& text) {
    std::string masked;
    std::size_t done = 0;
    for (std::size_t at = text.find("]["); at != std::string::npos; at = text.find("][", at + 1)) {
        const std::size_t number = at + 2;
        const std::size_t close = text.find_first_not_of("0123456789", number);
        std::size_t begin = 0;
        std::string nearer;
        std::string farther;
        if (close == std::string::npos || close == number || text[close] != ']' ||
            !bracket_before(text, at + 1, begin, nearer) ||
            !bracket_before(text, begin, begin, farther) ||
            names_a_source(nearer) == names_a_source(farther)) {
            continue;
        }
        masked.append(text, done, number - done).append("#");
        done = close;
    }
    return masked.append(text, done, std::string::npos);
}

struct Captured {
    std::string out;  // standard output
    std::string err;  // standard error
};

// Runs `action` with `debug` set to `mask` and returns what it printed. `debug` and the streams are as
// before afterwards, also when the action throws.
template <class Action>
Captured capture(uint32_t mask, Action&& action) {
    Stream_scope out(stdout);
    Stream_scope err(stderr);
    {
        const Debug_scope scope(mask);
        action();
    }
    return {mask_line_numbers(out.text()), mask_line_numbers(err.text())};
}

}  // namespace support

#endif
