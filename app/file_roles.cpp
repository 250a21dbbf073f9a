#include "file_roles.h"

#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <frontpanel_base/atomic_file.h>
#include <frontpanel_base/input_error.h>
#include "output_log.h"
#include "shipped.h"

namespace frontpanel {
namespace {

namespace fs = std::filesystem;

struct Role {
    const char* option;
    std::string file;
    bool is_written;
    bool is_temporary;  // the file that is written first
};

// Device and inode of a file; of one that is still to be created, those of its folder, and its name.
using Identity = std::tuple<dev_t, ino_t, std::string>;

std::optional<Identity> identity_of(const std::string& file) {
    std::error_code error;
    const fs::path target = target_of(file, error);
    struct stat status = {};
    if (error) {
        return std::nullopt;
    }
    if (stat(target.c_str(), &status) == 0) {
        return S_ISREG(status.st_mode)
                   ? std::optional<Identity>(Identity(status.st_dev, status.st_ino, ""))
                   : std::nullopt;
    }
    const std::string folder = target.parent_path().string();
    if (stat(folder.empty() ? "." : folder.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return Identity(status.st_dev, status.st_ino, target.filename().string());
}

// Beside the file itself, not beside a link to it.
std::string temporary_beside(const std::string& file) {
    std::error_code error;
    return temporary_of(target_of(file, error).string());
}

std::vector<Role> roles_of(const Options& options) {
    const std::string script = options.script.empty() ? shipped_tour() : options.script;
    std::vector<Role> roles{{"--config", options.config, false, false},
                            {"--menu", options.menu, false, false},
                            {"--script", script, false, false},
                            {"--pin-file", options.pin_file, false, false}};
    if (!options.log.empty()) {
        roles.push_back({"--log", options.log, true, false});
    }
    for (int number = 1; options.log.empty() && number <= MOST_DEFAULT_LOGS; ++number) {
        roles.push_back({"the default of --log", default_log_file(number), true, false});
    }
    for (const auto& [option, file] :
         {std::pair("--state", options.state), std::pair("--screenshot", options.screenshot)}) {
        roles.push_back({option, file, true, false});
        if (!file.empty()) {
            roles.push_back({option, temporary_beside(file), true, true});
        }
    }
    return roles;
}

void check_pair(const Role& first, const Role& second) {
    if ((!first.is_written && !second.is_written) || first.file.empty() || second.file.empty() ||
        first.option == second.option) {
        return;
    }
    const auto identity = identity_of(first.file);
    if (!identity || identity != identity_of(second.file)) {
        return;
    }
    const Role& temporary = first.is_temporary ? first : second;
    const Role& other = first.is_temporary ? second : first;
    throw Input_error(temporary.is_temporary
                          ? other.file + ": " + other.option + " names a file that " +
                                temporary.option + " replaces"
                          : first.file + ": " + first.option + " and " + second.option +
                                " name the same file");
}

}  // namespace

void check_files(const Options& options) {
    const std::vector<Role> roles = roles_of(options);
    for (size_t first = 0; first < roles.size(); ++first) {
        for (size_t second = first + 1; second < roles.size(); ++second) {
            check_pair(roles[first], roles[second]);
        }
    }
}

}  // namespace frontpanel
