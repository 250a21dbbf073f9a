#include "output_log.h"

#include <fcntl.h>
#include <frontpanel_data/data_interface.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string_view>
#include <utility>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

constexpr const char* NAME = "frontpanel";
Output_log* listening_log = nullptr;  // the library's listener has no argument for it

// The panel also reads a file. Reading from a pipe or a terminal would take data from its reader.
int access_of(const std::string& file) {
    struct stat status {};
    const bool is_file = stat(file.c_str(), &status) != 0 || S_ISREG(status.st_mode);
    return is_file && (access(file.c_str(), F_OK) != 0 || access(file.c_str(), R_OK) == 0)
               ? O_RDWR
               : O_WRONLY;
}

[[noreturn]] void fail(const std::string& file, const std::string& reason) {
    throw Input_error(file + ": cannot be written: " + reason);
}

struct stat folder_status_of(const std::string& file) {
    const std::string folder = std::filesystem::path(file).parent_path().string();
    struct stat status {};
    stat(folder.empty() ? "." : folder.c_str(), &status);
    return status;
}

bool is_for_everybody(const struct stat& folder) {
    return (folder.st_mode & S_IWOTH) != 0;
}

// Whether other users may have put something of their own in the place of a file.
bool is_shared(const struct stat& folder) {
    return is_for_everybody(folder) || (folder.st_uid != 0 && folder.st_uid != geteuid());
}

// A file of the folder's owner is accepted, unless other users may write the folder.
bool is_of_another_user(const struct stat& file, const struct stat& folder) {
    return file.st_uid != geteuid() && (is_for_everybody(folder) || file.st_uid != folder.st_uid);
}

// Empties nothing yet. A pipe without a reader is an error, since opening it would wait for one.
Descriptor open_without_waiting(const std::string& file, bool follows_link) {
    const int flags = access_of(file) | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    Descriptor opened(open(file.c_str(), flags | (follows_link ? 0 : O_NOFOLLOW), 0600));
    if (!opened.is_open()) {
        fail(file, errno == ENXIO                    ? "nobody reads the pipe"
                   : errno == ELOOP && !follows_link ? "it is a link"
                                                     : std::strerror(errno));
    }
    fcntl(opened.number(), F_SETFL, fcntl(opened.number(), F_GETFL) & ~O_NONBLOCK);
    return opened;
}

struct stat status_of(const std::string& file, const Descriptor& descriptor) {
    struct stat status {};
    if (fstat(descriptor.number(), &status) != 0) {
        fail(file, std::strerror(errno));
    }
    return status;
}

struct Opened_log {
    Descriptor log;
    Descriptor lock;  // not open for what is no file
};

// Opens and empties the log, unless another panel has it. The lock is on a descriptor of its own: commands inherit
// the log, and may outlive the panel.
std::optional<Opened_log> open_if_free(const std::string& file, bool is_named) {
    // In a folder that others can write, a link may lead anywhere. The default file is never a link.
    const struct stat folder = folder_status_of(file);
    const bool follows_link = is_named && !is_shared(folder);
    Opened_log opened{open_without_waiting(file, follows_link), Descriptor()};
    const struct stat status = status_of(file, opened.log);
    if (!S_ISREG(status.st_mode)) {
        return opened;
    }
    if (is_shared(folder) && is_of_another_user(status, folder)) {
        fail(file, "it belongs to another user");
    }
    if (is_shared(folder) && status.st_nlink > 1) {
        fail(file, "it is a hard link");
    }
    opened.lock = open_without_waiting(file, follows_link);
    const struct stat locked = status_of(file, opened.lock);
    if (locked.st_dev != status.st_dev || locked.st_ino != status.st_ino ||
        flock(opened.lock.number(), LOCK_EX | LOCK_NB) != 0) {
        return std::nullopt;
    }
    if (ftruncate(opened.log.number(), 0) != 0) {
        fail(file, std::strerror(errno));
    }
    return opened;
}

Opened_log open_log(const std::string& named) {
    const int candidates = named.empty() ? MOST_DEFAULT_LOGS : 1;
    for (int number = 1; number <= candidates; ++number) {
        if (auto opened =
                open_if_free(named.empty() ? default_log_file(number) : named, !named.empty())) {
            return std::move(*opened);
        }
    }
    fail(named.empty() ? default_log_file() : named, "another panel is writing it");
}

// The newer half, from the beginning of a line on; nothing of a file that cannot be read.
std::string end_of_log(off_t size) {
    std::string text(static_cast<size_t>(Output_log::LARGEST / 2), '\0');
    const off_t start = size - static_cast<off_t>(text.size());
    size_t length = 0;
    ssize_t got = 0;
    while (length < text.size() && (got = pread(STDOUT_FILENO, &text[length], text.size() - length,
                                                start + static_cast<off_t>(length))) > 0) {
        length += static_cast<size_t>(got);
    }
    text.resize(length);
    const size_t line_end = text.find('\n');
    return line_end == std::string::npos ? "" : text.substr(line_end + 1);
}

// Returns how much was written before an error.
size_t write_all(int descriptor, std::string_view text) {
    size_t written = 0;
    while (written < text.size()) {
        const ssize_t result = ::write(descriptor, text.data() + written, text.size() - written);
        if (result < 0 && errno == EPIPE) {
            // When the signal of the write itself is blocked, the process must still receive it.
            kill(getpid(), SIGPIPE);
        }
        if (result < 0 && errno != EINTR) {
            break;
        }
        written += result < 0 ? 0 : static_cast<size_t>(result);
    }
    return written;
}

int duplicate(int descriptor) {
    const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (copy < 0) {
        throw Input_error(std::string("standard output cannot be used: ") + std::strerror(errno));
    }
    return copy;
}

}  // namespace

std::string default_log_file(int number) {
    const std::string suffix = number == 1 ? ".log" : "-" + std::to_string(number) + ".log";
    const char* const state = std::getenv("XDG_STATE_HOME");
    std::error_code error;
    if (state != nullptr && std::filesystem::is_directory(state, error)) {
        return std::string(state) + "/" + NAME + suffix;
    }
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    const std::string name = std::string(NAME) + "-" + std::to_string(getuid()) + suffix;
    return ((error ? std::filesystem::path("/tmp") : folder) / name).string();
}

Output_log::Output_log(const std::string& file)
    : m_buffer(duplicate(STDOUT_FILENO)), m_out(&m_buffer), m_lines(STDOUT_FILENO) {
    try {
        Opened_log opened = open_log(file);
        std::fflush(stdout);
        dup2(opened.log.number(), STDOUT_FILENO);
        m_lock = std::move(opened.lock);
    } catch (...) {
        close(m_buffer.descriptor());
        throw;
    }
    // A log that is read after a crash must be complete, and in order with what commands print. With a buffer of
    // its own the stream begins afresh: one that was written to before would keep single characters, line ends
    // among them, until its old buffer is full.
    static char buffer[BUFSIZ];
    std::setvbuf(stdout, buffer, _IOLBF, sizeof buffer);
    listening_log = this;
    debug_listener = announce;
}

Output_log::~Output_log() {
    debug_listener = nullptr;
    listening_log = nullptr;
    std::fflush(stdout);
    dup2(m_buffer.descriptor(), STDOUT_FILENO);
    close(m_buffer.descriptor());
    return_errors();
}

void Output_log::announce(uint32_t mask) {
    listening_log->trim();
    listening_log->m_lines.begin(mask);
}

void Output_log::trim() {
    std::fflush(stdout);
    struct stat status {};
    if (fstat(STDOUT_FILENO, &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size <= LARGEST) {
        return;
    }
    const std::string kept = end_of_log(status.st_size);
    const auto dropped = status.st_size - static_cast<off_t>(kept.size());
    const std::string notice = "frontpanel: the log was full: " + std::to_string(dropped) +
                               " older bytes were dropped here\n";
    if (ftruncate(STDOUT_FILENO, 0) != 0 || lseek(STDOUT_FILENO, 0, SEEK_SET) != 0) {
        return;
    }
    write_all(STDOUT_FILENO, notice + kept);
    m_lines.follow_cut(dropped - static_cast<off_t>(notice.size()));
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
        print_kept_errors();
    }
}

void Output_log::note(const std::string& line) {
    announce(0);  // to be found whatever masks are set
    std::printf("%s\n", line.c_str());
}

// The terminal that shows the panel has no room for the line, and it would be lost in the log.
void Output_log::report(const std::string& line, const std::string& logged) {
    note(logged);
    if (m_errors < 0) {
        std::cerr << line << '\n';
    } else if (m_kept_errors.size() < MOST_KEPT) {
        m_kept_errors.push_back(line);
    } else {
        ++m_dropped_errors;
    }
}

void Output_log::print_kept_errors() {
    for (const std::string& line : m_kept_errors) {
        std::cerr << line << '\n';
    }
    if (m_dropped_errors > 0) {
        std::cerr << "warning: " << m_dropped_errors << " more in the log\n";
    }
    m_kept_errors.clear();
    m_dropped_errors = 0;
}

int Output_log::Descriptor_buffer::overflow(int character) {
    const char byte = static_cast<char>(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
}

std::streamsize Output_log::Descriptor_buffer::xsputn(const char* text, std::streamsize length) {
    return static_cast<std::streamsize>(
        write_all(m_descriptor, {text, static_cast<size_t>(length)}));
}

}  // namespace frontpanel
