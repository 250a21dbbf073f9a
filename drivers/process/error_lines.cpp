#include "error_lines.h"

#include <algorithm>
#include <utility>

#include <frontpanel_base/character_set.h>

namespace frontpanel {

void Error_lines::take(std::string_view bytes, Time now) {
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        m_line += bytes.substr(0, std::min(end, LONGEST_LINE - m_line.size()));
        if (end < bytes.size()) {
            finish_line(now);
        }
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
}

void Error_lines::end(Time now) {
    if (!m_line.empty()) {
        finish_line(now);
    }
}

void Error_lines::note(const std::string& message, Time now) {
    print(printable(message.substr(0, LONGEST_LINE)), now);
}

void Error_lines::finish_line(Time now) {
    const std::string line = printable(std::exchange(m_line, ""));
    if (!line.empty()) {
        m_last = line;
        m_last_came = now;
    }
    print(line, now);
}

void Error_lines::print(const std::string& line, Time now) {
    begin_span(now);
    if (line.empty()) {
        return;
    }
    if (m_printed < MOST_LINES) {
        ++m_printed;
        m_print(m_name + ": " + line);
    } else {
        ++m_dropped;
    }
}

void Error_lines::begin_span(Time now) {
    if (m_printed > 0 && now - m_span_began < SPAN) {
        return;
    }
    m_span_began = now;
    m_printed = 0;
    if (const std::size_t dropped = std::exchange(m_dropped, 0); dropped > 0) {
        m_print(m_name + ": " + std::to_string(dropped) + " more lines were dropped");
    }
}

}  // namespace frontpanel
