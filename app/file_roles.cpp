#include "file_roles.h"

#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <frontpanel_base/atomic_file.h>
#include <frontpanel_base/input_error.h>
#include <frontpanel_menu/menu_files.h>
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

// The menu names its presets, so it is read here, before the panel empties a log or writes any other file.
std::unique_ptr<Menu_document> read_menu(const Options& options) {
    try {
        return std::make_unique<Menu_document>(options.menu);
    } catch (const Input_error&) {
        return nullptr;  // loading the menu reports it
    }
}

std::vector<std::pair<const char*, std::string>> files_of(const Menu_document& document) {
    std::vector<std::pair<const char*, std::string>> files;
    for (const std::string& file : document.files()) {
        files.emplace_back("the menu", file);
    }
    for (const std::string& file : preset_files_of(document)) {
        files.emplace_back("the presets", file);
    }
    return files;
}

// The menu file itself has been compared.
void check_menu_files(const Menu_document& document, const std::vector<Role>& roles) {
    std::map<Identity, const Role*> written;
    for (const Role& role : roles) {
        const auto identity = role.is_written ? identity_of(role.file) : std::nullopt;
        if (identity) {
            written.emplace(*identity, &role);
        }
    }
    for (const auto& [owner, file] : files_of(document)) {
        const auto identity = identity_of(file);
        const auto found = identity ? written.find(*identity) : written.end();
        if (found != written.end()) {
            throw Input_error(file + ": belongs to " + owner + ", and " + found->second->option +
                              " would overwrite it");
        }
    }
}

}  // namespace

std::unique_ptr<Menu_document> check_files(const Options& options) {
    const std::vector<Role> roles = roles_of(options);
    for (size_t first = 0; first < roles.size(); ++first) {
        for (size_t second = first + 1; second < roles.size(); ++second) {
            check_pair(roles[first], roles[second]);
        }
    }
    if (options.log.empty() && options.state.empty() && options.screenshot.empty()) {
        return nullptr;
    }
    std::unique_ptr<Menu_document> document = read_menu(options);
    if (document != nullptr) {
        check_menu_files(*document, roles);
    }
    return document;
}

}  // namespace frontpanel
