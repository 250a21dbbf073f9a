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

std::string shipped_tour() {
    return shipped("tour.script");
}

}  // namespace frontpanel
