// Folders for tests that write files.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_FOLDER_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_FOLDER_H

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

namespace support {

// A folder of the test's own, which goes with the object.
class Folder {
public:
    Folder()
        : m_path((std::filesystem::temp_directory_path() / "frontpanel-test-XXXXXX").string()) {
        if (mkdtemp(m_path.data()) == nullptr) {
            throw std::runtime_error("no folder can be made");
        }
        m_path = std::filesystem::canonical(m_path).string();
    }
    ~Folder() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

// Makes a folder read-only while it lives. The superuser, whom no folder refuses, is somebody else meanwhile.
class Read_only_folder {
public:
    explicit Read_only_folder(std::string path) : m_path(std::move(path)) {
        chmod(m_path.c_str(), 0555);
        if (geteuid() == 0 && seteuid(NOBODY) != 0) {
            throw std::runtime_error("the superuser cannot be somebody else");
        }
    }
    ~Read_only_folder() {
        if (getuid() == 0 && seteuid(0) != 0) {
            std::abort();
        }
        chmod(m_path.c_str(), 0755);
    }
    Read_only_folder(const Read_only_folder&) = delete;
    Read_only_folder& operator=(const Read_only_folder&) = delete;

private:
    static constexpr uid_t NOBODY = 65534;
    std::string m_path;
};

}  // namespace support

#endif
