#include "file_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include <frontpanel_base/descriptor.h>

namespace frontpanel {
namespace {

constexpr int FLAGS = O_NONBLOCK | O_CLOEXEC | O_NOCTTY;

bool is_pipe(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

// A line that was not read to its end would be another value.
File_reader::Content whole_lines(std::string text) {
    const std::size_t end = text.rfind('\n', File_reader::LARGEST - 1);
    if (end == std::string::npos) {
        return {"", "the first line is too long"};
    }
    text.resize(end + 1);
    return {std::move(text), ""};
}

File_reader::Content read_new(const std::string& path) {
    if (is_pipe(path)) {
        return {"", "it is a pipe"};  // not opened: its writer would take the panel for its reader
    }
    const Descriptor file(open(path.c_str(), O_RDONLY | FLAGS));
    if (!file.is_open()) {
        return {"", std::strerror(errno), errno == ENOENT || errno == ENOTDIR};
    }
    File_reader::Content content;
    std::array<char, 4096> piece;
    while (content.text.size() <= File_reader::LARGEST) {
        const ssize_t size = ::read(file.number(), piece.data(), piece.size());
        if (size == 0) {
            return content;
        }
        if (size > 0) {
            content.text.append(piece.data(), static_cast<std::size_t>(size));
        } else if (errno == EAGAIN) {
            return {"", "nothing to read yet"};
        } else if (errno != EINTR) {
            return {"", std::strerror(errno)};
        }
    }
    return whole_lines(std::move(content.text));
}

}  // namespace

const File_reader::Content& File_reader::read(const std::string& path) {
    const auto found = m_contents.find(path);
    return found != m_contents.end() ? found->second
                                     : m_contents.emplace(path, read_new(path)).first->second;
}

std::string write_file(const std::string& path, const std::string& text) {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_TRUNC | FLAGS));
    if (!file.is_open()) {
        return errno == ENXIO ? "nobody reads the pipe" : std::strerror(errno);
    }
    ssize_t size = 0;
    do {
        size = ::write(file.number(), text.data(), text.size());
    } while (size < 0 && errno == EINTR);
    if (size < 0) {
        return std::strerror(errno);
    }
    return static_cast<std::size_t>(size) == text.size() ? "" : "only a part was written";
}

}  // namespace frontpanel
