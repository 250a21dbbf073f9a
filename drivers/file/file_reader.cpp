#include "file_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include <frontpanel_base/descriptor.h>

namespace frontpanel {
namespace {

constexpr int FLAGS = O_NONBLOCK | O_CLOEXEC | O_NOCTTY;

File_reader::Content read_new(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | FLAGS));
    if (!file.is_open()) {
        return {"", std::strerror(errno), errno == ENOENT || errno == ENOTDIR};
    }
    File_reader::Content content;
    std::array<char, 4096> piece;
    while (content.text.size() < File_reader::LARGEST) {
        const ssize_t size = ::read(file.number(), piece.data(), piece.size());
        if (size == 0) {
            break;
        }
        if (size > 0) {
            content.text.append(piece.data(), static_cast<std::size_t>(size));
        } else if (errno == EAGAIN) {
            return {"", "nothing to read yet"};
        } else if (errno != EINTR) {
            return {"", std::strerror(errno)};
        }
    }
    return content;
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
