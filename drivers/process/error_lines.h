// What an adapter prints to its standard error, for the log: whole lines with the name of the driver in front, printable,
// and no more than a log can bear.
#ifndef FRONTPANEL_DRIVER_PROCESS_ERROR_LINES_H
#define FRONTPANEL_DRIVER_PROCESS_ERROR_LINES_H

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace frontpanel {

class Error_lines {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::size_t LONGEST_LINE = 200;  // bytes; the rest is dropped
    static constexpr std::size_t MOST_LINES = 50;     // in a span
    static constexpr std::chrono::seconds SPAN{60};
    static constexpr std::chrono::seconds LAST_WORDS{
        2};  // before the end; an older line has another cause

    // `print` gets whole lines without their ends.
    Error_lines(std::string name, std::function<void(const std::string&)> print)
        : m_name(std::move(name)), m_print(std::move(print)) {}

    void take(std::string_view bytes, Time now);
    // Writes a message that is not from standard error. It does not count as the last line.
    void note(const std::string& message, Time now);
    // Takes an unfinished line as one.
    void end(Time now);
    // The reason that an adapter which ended at `end` has printed: its last line that is not empty, unless that is
    // older than LAST_WORDS; empty if there is none.
    std::string last_words(Time end) const { return end - m_last_came <= LAST_WORDS ? m_last : ""; }
    void forget_last_words() { m_last.clear(); }

private:
    void finish_line(Time now);
    void print(const std::string& line, Time now);
    void begin_span(Time now);

    const std::string m_name;
    const std::function<void(const std::string&)> m_print;
    std::string m_line;
    std::string m_last;
    Time m_last_came{};
    Time m_span_began{};
    std::size_t m_printed = 0;  // in this span
    std::size_t m_dropped = 0;
};

}  // namespace frontpanel

#endif
