// The files that a menu is made of, for an application that must not write them.
#ifndef FRONTPANEL_MENU_MENU_FILES_H
#define FRONTPANEL_MENU_MENU_FILES_H

#include <string>
#include <vector>

#include <frontpanel_menu/menu_document.h>

namespace frontpanel {

// The presets of all mounts of a menu, each file once. Ignores errors in the menu.
std::vector<std::string> preset_files_of(const Menu_document& document);

}  // namespace frontpanel

#endif
