#include "curl_home.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <frontpanel_base/input_error.h>

namespace frontpanel {
namespace {

constexpr const char* VARIABLE = "CURL_HOME";
constexpr const char* SETTINGS =
    "connect-timeout = 1\n"
    "max-time = 1.5\n"
    "max-filesize = 1048576\n"
    "proto = \"=http\"\n"
    "noproxy = \"*\"\n";

// What a signal handler finds, and removes with calls that it may make.
const char* made_folder = nullptr;
const char* made_file = nullptr;

void remove_made() {
    unlink(made_file);
    rmdir(made_folder);
}

// A name for `mkdtemp`.
std::string folder_pattern() {
    std::error_code error;
    std::string name = (std::filesystem::temp_directory_path(error) / "frontpanel-XXXXXX").string();
    if (error) {
        throw Input_error("cannot create a temporary folder: " + error.message());
    }
    return name;
}

}  // namespace

// All memory is allocated before the folder is made: after an exception the folder would not be removed. The name of
// the file follows from that of the folder.
Curl_home::Curl_home() : m_folder(folder_pattern()), m_file(m_folder + "/.curlrc") {
    if (const char* const before = std::getenv(VARIABLE)) {
        m_before = before;
    }
    if (mkdtemp(m_folder.data()) == nullptr) {
        throw Input_error("cannot create a temporary folder: " + std::string(std::strerror(errno)));
    }
    m_file.replace(0, m_folder.size(), m_folder);
    made_folder = m_folder.c_str();
    made_file = m_file.c_str();
    m_last_act.emplace(Ending::REQUESTED, remove_made);
    try {
        write_settings();
    } catch (...) {
        remove_made();
        throw;
    }
}

void Curl_home::write_settings() const {
    if (!(std::ofstream(m_file) << SETTINGS << std::flush) ||
        setenv(VARIABLE, m_folder.c_str(), 1) != 0) {
        throw Input_error(m_file + ": cannot be written");
    }
}

Curl_home::~Curl_home() {
    if (m_before) {
        setenv(VARIABLE, m_before->c_str(), 1);
    } else {
        unsetenv(VARIABLE);
    }
    remove_made();
}

}  // namespace frontpanel
