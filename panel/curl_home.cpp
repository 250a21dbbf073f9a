#include "curl_home.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "input_error.h"

namespace panel {
namespace {

constexpr const char* VARIABLE = "CURL_HOME";
constexpr const char* SETTINGS =
    "connect-timeout = 1\n"
    "max-time = 2\n"
    "max-filesize = 1048576\n"
    "proto = \"=http\"\n"
    "noproxy = \"*\"\n";

std::string make_folder() {
    std::error_code error;
    std::string name = (std::filesystem::temp_directory_path(error) / "frontpanel-XXXXXX").string();
    if (error || mkdtemp(name.data()) == nullptr) {
        throw Input_error("no folder for temporary files can be made: " +
                          (error ? error.message() : std::string(std::strerror(errno))));
    }
    return name;
}

}  // namespace

Curl_home::Curl_home() : m_folder(make_folder()) {
    if (const char* const before = std::getenv(VARIABLE)) {
        m_before = before;
    }
    const std::string file = m_folder + "/.curlrc";
    if (!(std::ofstream(file) << SETTINGS << std::flush)) {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
        throw Input_error(file + ": cannot be written");
    }
    setenv(VARIABLE, m_folder.c_str(), 1);
}

Curl_home::~Curl_home() {
    if (m_before) {
        setenv(VARIABLE, m_before->c_str(), 1);
    } else {
        unsetenv(VARIABLE);
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

}  // namespace panel
