// Keeps the panel from overwriting the files that it reads.
#ifndef FRONTPANEL_APP_FILE_ROLES_H
#define FRONTPANEL_APP_FILE_ROLES_H

#include <frontpanel_menu/menu_document.h>

#include <memory>

#include "options.h"

namespace frontpanel {

// Input_error when a file that an option has the panel write is one that another option names, whatever the names:
// a link counts as its file. So is one that the menu includes, or one of its presets. Devices and pipes may be named several
// times.
//
// Returns the menu if the check had to read it, so that it is not read again; null otherwise, and if it cannot be read.
std::unique_ptr<Menu_document> check_files(const Options& options);

}  // namespace frontpanel

#endif
