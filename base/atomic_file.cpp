#include <frontpanel_base/atomic_file.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

constexpr mode_t MODE = 0644;

[[noreturn]] void fail(const std::string& file, int error) {
    throw Input_error(file + ": cannot be written: " + std::strerror(error));
}

// A descriptor that is closed with the object.
class Descriptor {
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() {
        if (m_number >= 0) {
            close(m_number);
        }
    }
    Descriptor(Descriptor&& other) noexcept : m_number(other.m_number) { other.m_number = -1; }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return m_number; }

private:
    int m_number;
};

// The file itself, if the name is that of a link, so that the link stays.
fs::path target_of(const std::string& file) {
    std::error_code error;
    fs::path target = fs::weakly_canonical(file, error);
    if (error) {
        fail(file, error.value());
    }
    if (fs::exists(target, error) && !fs::is_regular_file(target, error)) {
        throw Input_error(file + ": cannot be written: it is no file");
    }
    return target;
}

bool is_same_file(int descriptor, const std::string& name) {
    struct stat opened = {};
    struct stat named = {};
    return fstat(descriptor, &opened) == 0 && lstat(name.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

// The one that holds the lock on the temporary file is the only one to write it. Whoever waited for the lock may
// hold it on a file that was renamed meanwhile, and begins again.
Descriptor open_temporary(const std::string& file, const std::string& temporary) {
    for (;;) {
        Descriptor descriptor(
            open(temporary.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, MODE));
        if (descriptor.number() < 0 || flock(descriptor.number(), LOCK_EX) != 0) {
            fail(file, errno);
        }
        if (is_same_file(descriptor.number(), temporary)) {
            return descriptor;
        }
    }
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

// Without it the new name may not outlive a loss of power. A file system that cannot do it is none that keeps more.
void sync_folder(const fs::path& folder) {
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.number() >= 0) {
        fsync(descriptor.number());
    }
}

}  // namespace

void write_whole_file(const std::string& file, const std::string& text) {
    const fs::path target = target_of(file);
    const std::string temporary = target.string() + ".new";
    const Descriptor descriptor = open_temporary(file, temporary);
    const bool is_written =
        ftruncate(descriptor.number(), 0) == 0 && write_all(descriptor.number(), text) &&
        fsync(descriptor.number()) == 0 && rename(temporary.c_str(), target.c_str()) == 0;
    if (!is_written) {
        const int error = errno;
        unlink(temporary.c_str());
        fail(file, error);
    }
    sync_folder(target.parent_path());
}

void check_writable(const std::string& file) {
    const std::string temporary = target_of(file).string() + ".new";
    const Descriptor descriptor = open_temporary(file, temporary);
    unlink(temporary.c_str());
}

}  // namespace frontpanel
