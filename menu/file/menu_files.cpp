#include <frontpanel_menu/menu_files.h>

#include <filesystem>
#include <set>

#include <frontpanel_menu/mounted_menu.h>
#include "file/item_members.h"

namespace frontpanel {
namespace {

using Kind = Json_node::Kind;

// Values are nested so deep at most that a document is read by recursion.
void add_folders(const Json_node& node, std::set<std::string>& folders) {
    const Json_node* const folder = node.is(Kind::OBJECT) ? node.member(member::FOLDER) : nullptr;
    if (folder != nullptr && folder->is(Kind::TEXT)) {
        folders.insert(Mounted_menu::folder_of(folder->place(), std::string(folder->text())));
    }
    if (node.is(Kind::OBJECT)) {
        for (const Json_member& each : node.members()) {
            add_folders(each.value, folders);
        }
    } else if (node.is(Kind::LIST)) {
        for (const Json_node& each : node.elements()) {
            add_folders(each, folders);
        }
    }
}

}  // namespace

std::vector<std::string> preset_files_of(const Menu_document& document) {
    std::set<std::string> folders;
    if (!document.may_have_member(member::FOLDER)) {
        return {};
    }
    add_folders(document.node(), folders);
    std::vector<std::string> files;
    for (const std::string& folder : folders) {
        const std::vector<std::string> presets = Mounted_menu::files_in(folder);
        files.insert(files.end(), presets.begin(), presets.end());
    }
    return files;
}

}  // namespace frontpanel
