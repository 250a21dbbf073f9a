#include "output_log.h"

#include <fcntl.h>
#include <frontpanel_data/data_interface.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

constexpr const char* NAME = "frontpanel.log";
Log_lines* listening_lines = nullptr;  // the library's listener has no argument for them

// A file is read by the panel too. Reading a pipe or a terminal would take what is meant for somebody else.
int access_of(const std::string& file) {
    struct stat status {};
    const bool is_file = stat(file.c_str(), &status) != 0 || S_ISREG(status.st_mode);
    return is_file && (access(file.c_str(), F_OK) != 0 || access(file.c_str(), R_OK) == 0)
               ? O_RDWR
               : O_WRONLY;
}

int open_log(const std::string& named) {
    const std::string file = named.empty() ? default_log_file() : named;
    // The folder for temporary files is everybody's: a link that lies there already is not followed.
    const int flags =
        access_of(file) | O_CREAT | O_TRUNC | O_CLOEXEC | (named.empty() ? O_NOFOLLOW : 0);
    const int descriptor = open(file.c_str(), flags, 0600);
    if (descriptor < 0) {
        throw Input_error(file + ": cannot be written: " + std::strerror(errno));
    }
    return descriptor;
}

int duplicate(int descriptor) {
    const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (copy < 0) {
        throw Input_error(std::string("standard output cannot be used: ") + std::strerror(errno));
    }
    return copy;
}

}  // namespace

std::string default_log_file() {
    const char* const state = std::getenv("XDG_STATE_HOME");
    std::error_code error;
    if (state != nullptr && std::filesystem::is_directory(state, error)) {
        return std::string(state) + "/" + NAME;
    }
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    const std::string name = "frontpanel-" + std::to_string(getuid()) + ".log";
    return ((error ? std::filesystem::path("/tmp") : folder) / name).string();
}

Output_log::Output_log(const std::string& file)
    : m_buffer(duplicate(STDOUT_FILENO)), m_out(&m_buffer), m_lines(STDOUT_FILENO) {
    int log = -1;
    try {
        log = open_log(file);
    } catch (...) {
        close(m_buffer.descriptor());
        throw;
    }
    std::fflush(stdout);
    dup2(log, STDOUT_FILENO);
    close(log);
    // A log that is read after a crash must be complete, and in order with what commands print. With a buffer of
    // its own the stream begins afresh: one that was written to before would keep single characters, line ends
    // among them, until its old buffer is full.
    static char buffer[BUFSIZ];
    std::setvbuf(stdout, buffer, _IOLBF, sizeof buffer);
    listening_lines = &m_lines;
    debug_listener = [](uint32_t mask) { listening_lines->begin(mask); };
}

Output_log::~Output_log() {
    debug_listener = nullptr;
    listening_lines = nullptr;
    std::fflush(stdout);
    dup2(m_buffer.descriptor(), STDOUT_FILENO);
    close(m_buffer.descriptor());
    return_errors();
}

// Standard error may be closed: then there is nothing to take, and nothing to return.
void Output_log::take_errors() {
    m_errors = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (m_errors >= 0) {
        dup2(STDOUT_FILENO, STDERR_FILENO);
    }
}

void Output_log::return_errors() {
    if (m_errors >= 0) {
        dup2(m_errors, STDERR_FILENO);
        close(m_errors);
        m_errors = -1;
    }
}

int Output_log::Descriptor_buffer::overflow(int character) {
    const char byte = static_cast<char>(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
}

std::streamsize Output_log::Descriptor_buffer::xsputn(const char* text, std::streamsize length) {
    std::streamsize written = 0;
    while (written < length) {
        const ssize_t result =
            ::write(m_descriptor, text + written, static_cast<size_t>(length - written));
        if (result < 0 && errno != EINTR) {
            break;
        }
        written += result < 0 ? 0 : result;
    }
    return written;
}

}  // namespace frontpanel
