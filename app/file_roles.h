// Keeps the panel from overwriting the files that it reads.
#ifndef FRONTPANEL_APP_FILE_ROLES_H
#define FRONTPANEL_APP_FILE_ROLES_H

#include "options.h"

namespace frontpanel {

// Input_error when a file that an option has the panel write is one that another option names, whatever the names:
// a link counts as its file. So is one that the menu includes, or one of its presets. Devices and pipes may be named several
// times.
void check_files(const Options& options);

}  // namespace frontpanel

#endif
