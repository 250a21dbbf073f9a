#include <frontpanel_base/atomic_file.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <thread>

#include <frontpanel_base/descriptor.h>
#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

constexpr mode_t NEW_MODE = 0644;
constexpr mode_t PRIVATE_MODE = 0600;  // until the mode of the old file is known to be in force
constexpr mode_t MODE_BITS = 07777;

[[noreturn]] void fail(const std::string& file, const std::string& reason) {
    throw Input_error(file + ": cannot be written: " + reason);
}

[[noreturn]] void fail(const std::string& file, int error) {
    fail(file, std::strerror(error));
}

// The file itself, if the name is that of a link, so that the link stays.
fs::path writable_target_of(const std::string& file) {
    std::error_code error;
    fs::path target = target_of(file, error);
    if (error) {
        fail(file, error.value());
    }
    if (fs::exists(target, error) && !fs::is_regular_file(target, error)) {
        fail(file, "not a regular file");
    }
    return target;
}

bool is_same_file(int descriptor, const std::string& name) {
    struct stat opened = {};
    struct stat named = {};
    return fstat(descriptor, &opened) == 0 && lstat(name.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

// The lock of a stopped process must not hold this one for good.
bool lock(int descriptor, std::chrono::steady_clock::time_point end) {
    constexpr std::chrono::milliseconds PAUSE{10};
    int result = 0;
    while ((result = flock(descriptor, LOCK_EX | LOCK_NB)) != 0 &&
           (errno == EWOULDBLOCK || errno == EINTR) && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(PAUSE);
    }
    return result == 0;
}

// Another user may have made a file of that name, so that the text would go to a file with another name as well, or to
// a file that the other user can change.
void check_ours(const std::string& file, const std::string& temporary, int descriptor,
                const struct stat* replaced) {
    struct stat status = {};
    if (fstat(descriptor, &status) != 0) {
        fail(file, errno);
    }
    if (status.st_nlink > 1) {
        fail(file, temporary + " is a hard link");
    }
    if (status.st_uid != geteuid() && (replaced == nullptr || status.st_uid != replaced->st_uid)) {
        fail(file, temporary + " belongs to another user");
    }
}

Descriptor open_without_waiting(const std::string& file, const std::string& temporary,
                                mode_t mode) {
    Descriptor descriptor(
        open(temporary.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, mode));
    const bool is_pipe_without_reader = !descriptor.is_open() && errno == ENXIO;
    if (!descriptor.is_open() && !is_pipe_without_reader) {
        fail(file, errno);
    }
    struct stat status = {};
    if (is_pipe_without_reader || fstat(descriptor.number(), &status) != 0 ||
        !S_ISREG(status.st_mode)) {
        fail(file, temporary + " is not a regular file");
    }
    return descriptor;
}

// Only the process that holds the lock on the temporary file writes it. A process that waited for the lock may
// hold it on a file that was renamed meanwhile, and begins again.
Descriptor open_temporary(const std::string& file, const std::string& temporary,
                          const struct stat* replaced, std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        Descriptor descriptor =
            open_without_waiting(file, temporary, replaced == nullptr ? NEW_MODE : PRIVATE_MODE);
        if (!lock(descriptor.number(), end)) {
            fail(file, errno == EWOULDBLOCK ? "another process is writing " + temporary
                                            : std::strerror(errno));
        }
        if (is_same_file(descriptor.number(), temporary)) {
            check_ours(file, temporary, descriptor.number(), replaced);
            return descriptor;
        }
    }
}

// A file whose group cannot be kept grants nothing to the group that it has instead.
void keep_owner_and_mode(int descriptor, const struct stat& replaced) {
    const bool is_kept = fchown(descriptor, replaced.st_uid, replaced.st_gid) == 0 ||
                         fchown(descriptor, static_cast<uid_t>(-1), replaced.st_gid) == 0;
    const mode_t mode = replaced.st_mode & MODE_BITS;
    // A file system without modes has kept none for the old file either.
    static_cast<void>(fchmod(descriptor, is_kept ? mode : mode & ~mode_t{S_IRWXG}));
}

bool write_all(int descriptor, const std::string& text) {
    size_t written = 0;
    while (written < text.size()) {
        const ssize_t result = write(descriptor, text.data() + written, text.size() - written);
        if (result < 0 && errno != EINTR) {
            return false;
        }
        written += result > 0 ? static_cast<size_t>(result) : 0;
    }
    return true;
}

// Without it a loss of power may undo the renaming. Errors are ignored: not every file system can do it.
void sync_folder(const fs::path& folder) {
    const Descriptor descriptor(
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.is_open()) {
        fsync(descriptor.number());
    }
}

// The temporary file of a file, open and locked.
class Temporary_file {
public:
    Temporary_file(const std::string& file, std::chrono::milliseconds patience)
        : m_target(writable_target_of(file)),
          m_name(temporary_of(m_target.string())),
          m_replaces(stat(m_target.c_str(), &m_replaced) == 0),
          m_descriptor(open_temporary(file, m_name, m_replaces ? &m_replaced : nullptr, patience)) {
    }

    bool replace_target(const std::string& text) const {
        const int descriptor = m_descriptor.number();
        if (m_replaces) {
            keep_owner_and_mode(descriptor, m_replaced);
        }
        return ftruncate(descriptor, 0) == 0 && write_all(descriptor, text) &&
               fsync(descriptor) == 0 && rename(m_name.c_str(), m_target.c_str()) == 0;
    }
    void remove() const { unlink(m_name.c_str()); }
    fs::path folder() const { return m_target.parent_path(); }

private:
    fs::path m_target;
    std::string m_name;
    struct stat m_replaced = {};
    bool m_replaces;
    Descriptor m_descriptor;
};

}  // namespace

void write_whole_file(const std::string& file, const std::string& text,
                      std::chrono::milliseconds patience) {
    const Temporary_file temporary(file, patience);
    if (!temporary.replace_target(text)) {
        const int error = errno;
        temporary.remove();
        fail(file, error);
    }
    sync_folder(temporary.folder());
}

void check_writable(const std::string& file, std::chrono::milliseconds patience) {
    Temporary_file(file, patience).remove();
}

fs::path target_of(const std::string& file, std::error_code& error) {
    constexpr int MOST_LINKS = 40;  // as the system follows
    fs::path target = fs::weakly_canonical(file, error);
    std::error_code no_link;
    for (int links = 0; !error && fs::is_symlink(fs::symlink_status(target, no_link)); ++links) {
        if (links == MOST_LINKS) {
            error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
            break;
        }
        const fs::path next = fs::read_symlink(target, error);
        if (!error) {
            target = fs::weakly_canonical(target.parent_path() / next, error);
        }
    }
    return target;
}

std::string temporary_of(const std::string& file) {
    return file + ".new";
}

}  // namespace frontpanel
