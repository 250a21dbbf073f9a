// The files that come with the panel: the menu it shows unless another is named, and the tour of it.
#ifndef FRONTPANEL_APP_SHIPPED_H
#define FRONTPANEL_APP_SHIPPED_H

#include <string>

namespace frontpanel {

std::string shipped_menu();
std::string shipped_tour();

// The file of the menu that the user named: a file, or else the name of a menu in `folder` that ships with the panel,
// such as "this-machine".
std::string menu_file(const std::string& given, const std::string& folder);
// The same with the folder of the menus that ship with this panel.
std::string menu_file(const std::string& given);

// The folder of these files as seen from a program's own file: an installed program has them beside it, under
// the same prefix, and so has one in the tree where it was built.
std::string shipped_folder(const std::string& program);

}  // namespace frontpanel

#endif
