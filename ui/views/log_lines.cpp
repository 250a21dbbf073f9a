#include <frontpanel_ui/log_lines.h>

#include <sys/stat.h>
#include <unistd.h>

#include <frontpanel_data/data_interface.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <utility>

namespace frontpanel {
namespace {

constexpr off_t MOST_READ = off_t{256} * 1024;  // at a time: a minute of a talkative library
constexpr size_t MOST_MARKS = 8192;

}  // namespace

void print_always(const std::string& line) {
    constexpr uint32_t ANY_MASK = 0;
    if (debug_listener != nullptr) {
        debug_listener(ANY_MASK);
    }
    std::printf("%s\n", line.c_str());
}

bool Log_lines::is_kept() const {
    struct stat status {};
    return m_descriptor >= 0 && fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

void Log_lines::begin(uint32_t mask) {
    std::fflush(stdout);
    const off_t place = lseek(STDOUT_FILENO, 0, SEEK_CUR);
    if (place < 0) {
        return;
    }
    if (!m_marks.empty() && m_marks.back().place == place) {
        m_marks.back().mask = mask;
        return;
    }
    m_marks.push_back({place, mask});
    if (m_marks.size() > MOST_MARKS) {
        m_marks.pop_front();
    }
}

void Log_lines::follow_cut(off_t bytes) {
    for (Mark& mark : m_marks) {
        mark.place -= bytes;
    }
    m_place -= bytes;
    m_line_place -= bytes;
    if (m_place < 0) {
        skip_to(0);
        m_is_cut = false;
    }
}

void Log_lines::read() {
    struct stat status {};
    if (!is_kept() || std::fflush(stdout) != 0 || fstat(m_descriptor, &status) != 0) {
        return;
    }
    if (status.st_size - m_place > MOST_READ) {
        skip_to(status.st_size - MOST_READ);
    }
    std::array<char, 4096> bytes{};
    ssize_t length = 0;
    while ((length = pread(m_descriptor, bytes.data(), bytes.size(), m_place)) > 0) {
        take(bytes.data(), static_cast<size_t>(length));
    }
}

void Log_lines::skip_to(off_t place) {
    m_dropped += m_lines.size();
    m_lines.clear();
    m_line.clear();
    m_place = place;
    m_line_place = m_place;
    m_is_cut = true;
}

void Log_lines::take(const char* text, size_t length) {
    for (size_t i = 0; i < length; ++i) {
        ++m_place;
        if (text[i] == '\n') {
            finish_line();
        } else if (m_line.size() < LONGEST_LINE) {
            m_line += text[i] == '\t' ? ' ' : text[i];
        }
    }
}

void Log_lines::finish_line() {
    const uint32_t mask = mask_at(std::exchange(m_line_place, m_place));
    std::string line = std::exchange(m_line, std::string());
    if (std::exchange(m_is_cut, false)) {
        return;
    }
    m_lines.push_back({mask, std::move(line)});
    if (m_lines.size() > MOST_LINES) {
        m_lines.pop_front();
        ++m_dropped;
    }
}

uint32_t Log_lines::mask_at(off_t place) {
    const auto after = std::find_if(m_marks.begin(), m_marks.end(),
                                    [place](const Mark& mark) { return mark.place > place; });
    if (after == m_marks.begin()) {
        return 0;
    }
    const uint32_t mask = std::prev(after)->mask;
    m_marks.erase(m_marks.begin(), std::prev(after));
    return mask;
}

}  // namespace frontpanel
