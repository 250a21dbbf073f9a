#include "shipped.h"

#include <filesystem>
#include <system_error>

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

std::string shipped(const char* name) {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return (fs::path(shipped_folder(program.string())) / name).string();
}

}  // namespace

std::string shipped_folder(const std::string& program) {
    const fs::path beside = fs::path(program).parent_path() / FRONTPANEL_BIN_TO_MENUS;
    return beside.lexically_normal().string();
}

std::string shipped_menu() {
    return shipped("demo.json");
}

std::string menu_file(const std::string& given, const std::string& folder) {
    std::error_code error;
    if (given.empty() || given.find('/') != std::string::npos || fs::exists(given, error)) {
        return given;
    }
    const fs::path menu = fs::path(folder) / (given + ".json");
    return fs::exists(menu, error) ? menu.string() : given;
}

std::string menu_file(const std::string& given) {
    return menu_file(given, fs::path(shipped_menu()).parent_path().string());
}

std::string shipped_tour() {
    return shipped("tour.script");
}

}  // namespace frontpanel
