#include <frontpanel_base/input_error.h>

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

#include <frontpanel_base/character_set.h>

namespace frontpanel {
namespace {

constexpr size_t LONGEST_LINE = 1000;  // a message may quote an input of any length

std::string bytes_text(size_t bytes) {
    constexpr size_t KIB = 1024;
    return bytes % (KIB * KIB) == 0 ? std::to_string(bytes / (KIB * KIB)) + " MiB"
                                    : std::to_string(bytes / KIB) + " KiB";
}

// Of a file of a known size, so that its text is never copied while it grows.
size_t expected_size(const std::string& path, size_t largest) {
    struct stat status {};
    const bool is_known = stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    return is_known ? std::min(static_cast<size_t>(status.st_size), largest) : 0;
}

}  // namespace

std::string one_line(std::string text) {
    if (text.size() > LONGEST_LINE) {
        text.replace(LONGEST_LINE / 2, text.size() - LONGEST_LINE, " ... ");
    }
    return printable(text);
}

std::string read_input_file(const std::string& path, size_t largest) {
    if (path.empty()) {
        throw Input_error("a file without a name cannot be opened");
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw Input_error(path + ": cannot be opened: " + std::strerror(errno));
    }
    std::string text;
    text.reserve(expected_size(path, largest));
    errno = 0;
    std::array<char, size_t{16} * 1024> piece;
    do {
        file.read(piece.data(), piece.size());
        text.append(piece.data(), static_cast<size_t>(file.gcount()));
        // An endless file ends here, too.
        if (text.size() > largest) {
            throw Input_error(path + ": is larger than " + bytes_text(largest));
        }
    } while (file.gcount() > 0);
    if (file.bad() || (text.empty() && errno == EISDIR)) {
        throw Input_error(path + ": cannot be read: " + std::strerror(errno));
    }
    return text;
}

}  // namespace frontpanel
