// Loads whatever is taken for a menu file, and requires that it is accepted, or refused with lines that a person can read.
//
// In the input, a line "@" begins the text of the file that {"include": "part.json"} names.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <stdlib.h>

#include <frontpanel_base/problems.h>
#include "support/simulated_menu.h"

using namespace frontpanel;

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// A folder of its own for each process, which stays the working folder until its end.
class Folder {
public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "menu_fuzz.XXXXXX").string();
        require(mkdtemp(name.data()) != nullptr);
        m_path = name;
        std::filesystem::current_path(m_path);
    }
    ~Folder() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

private:
    std::filesystem::path m_path;
};

bool is_one_line(const std::string& text) {
    constexpr std::size_t LONGEST = 1100;
    return !text.empty() && text.size() < LONGEST &&
           std::none_of(text.begin(), text.end(),
                        [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static const Folder folder;
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t part = input.find("\n@\n");
    std::ofstream("part.json", std::ios::trunc)
        << (part == std::string::npos ? "" : input.substr(part + 3));
    try {
        const Simulated_menu loaded = simulated_text(input.substr(0, part));
        require(std::all_of(loaded.warnings.begin(), loaded.warnings.end(), is_one_line));
    } catch (const Input_errors& errors) {
        require(!errors.lines().empty());
        require(std::all_of(errors.lines().begin(), errors.lines().end(), is_one_line));
    }
    return 0;
}
