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

Curl_home::Curl_home() : m_folder(make_folder()), m_file(m_folder + "/.curlrc") {
    made_folder = m_folder.c_str();
    made_file = m_file.c_str();
    m_last_act.emplace(Ending::REQUESTED, remove_made);
    if (const char* const before = std::getenv(VARIABLE)) {
        m_before = before;
    }
    if (!(std::ofstream(m_file) << SETTINGS << std::flush)) {
        remove_made();
        throw Input_error(m_file + ": cannot be written");
    }
    setenv(VARIABLE, m_folder.c_str(), 1);
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
