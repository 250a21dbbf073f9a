// Keeps what the library prints off the panel's screen.
#ifndef FRONTPANEL_APP_OUTPUT_LOG_H
#define FRONTPANEL_APP_OUTPUT_LOG_H

#include <sys/types.h>

#include <cstdint>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include <frontpanel_base/descriptor.h>
#include <frontpanel_ui/log_lines.h>

namespace frontpanel {

// Where diagnostics go unless a file is named: the user's state folder, or else the folder for temporary
// files. Of panels that run at the same time each has a number of its own, from 1 to MOST_DEFAULT_LOGS.
inline constexpr int MOST_DEFAULT_LOGS = 9;
std::string default_log_file(int number = 1);

// While it lives, whatever is printed to standard output goes to a file; the panel itself prints to `out`. One
// at a time: it is the library's listener.
class Output_log {
public:
    // An empty name means the default file. Input_error when it cannot be written: also when another panel is
    // writing it, when it is a pipe without a reader, and, in a folder that another user can write, when it is a
    // link, or a file of neither this user nor the folder's owner. Nothing is emptied then.
    explicit Output_log(const std::string& file);
    ~Output_log();
    Output_log(const Output_log&) = delete;
    Output_log& operator=(const Output_log&) = delete;

    // What the file may measure before its older half is dropped. A line in its place says how much was.
    static constexpr off_t LARGEST = off_t{4} * 1024 * 1024;

    // What was standard output. Bad once something could not be written there.
    std::ostream& out() { return m_out; }
    int out_descriptor() const { return m_buffer.descriptor(); }
    // What went to the file, as far as it is one that can be read.
    Log_lines& lines() { return m_lines; }
    // Keeps the file within its bounds. Lines that the library announces do so by themselves; others do not.
    void trim();
    // Takes standard error into the log too, until it is returned or the object is gone: the terminal has no
    // place for it while the panel is on the screen.
    void take_errors();
    void return_errors();
    // Notes a line in the log, and on standard error: at once, or when it is returned. The log may have a shorter form.
    void report(const std::string& line) { report(line, line); }
    void report(const std::string& line, const std::string& logged);
    // In the log alone.
    void note(const std::string& line);

private:
    static void announce(uint32_t mask);
    void print_kept_errors();

    class Descriptor_buffer : public std::streambuf {
    public:
        explicit Descriptor_buffer(int descriptor) : m_descriptor(descriptor) {}
        int descriptor() const { return m_descriptor; }

    protected:
        int overflow(int character) override;
        std::streamsize xsputn(const char* text, std::streamsize length) override;

    private:
        int m_descriptor;
    };

    Descriptor_buffer m_buffer;
    std::ostream m_out;
    static constexpr size_t MOST_KEPT = 100;  // lines for standard error

    std::vector<std::string> m_kept_errors;
    size_t m_dropped_errors = 0;
    int m_errors = -1;  // what was standard error, once taken
    Log_lines m_lines;
    Descriptor m_lock;  // of the file, for as long as the panel writes it
};

}  // namespace frontpanel

#endif
