#include <frontpanel_base/input_error.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace frontpanel {
namespace {

constexpr size_t LONGEST_LINE = 1000;  // a message may quote what somebody wrote, however long
constexpr size_t LARGEST_FILE = size_t{4} * 1024 * 1024;

}  // namespace

std::string one_line(std::string text) {
    const auto is_control = [](char byte) { return (byte >= 0 && byte < ' ') || byte == 0x7F; };
    std::replace_if(text.begin(), text.end(), is_control, '?');
    if (text.size() > LONGEST_LINE) {
        text.replace(LONGEST_LINE / 2, text.size() - LONGEST_LINE, " ... ");
    }
    return text;
}

std::string read_input_file(const std::string& path) {
    if (path.empty()) {
        throw Input_error("a file without a name cannot be opened");
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw Input_error(path + ": cannot be opened: " + std::strerror(errno));
    }
    std::string text;
    std::array<char, size_t{16} * 1024> piece;
    do {
        file.read(piece.data(), piece.size());
        text.append(piece.data(), static_cast<size_t>(file.gcount()));
        // An endless file ends here, too.
        if (text.size() > LARGEST_FILE) {
            throw Input_error(path + ": is larger than 4 MiB");
        }
    } while (file.gcount() > 0);
    if (file.bad() || (text.empty() && errno == EISDIR)) {
        throw Input_error(path + ": cannot be read: " + std::strerror(errno));
    }
    return text;
}

}  // namespace frontpanel
