// What can be judged only of a menu as a whole: one pass a question, over the menu as it was built. What a pass finds
// becomes one of `problems`.
#ifndef FRONTPANEL_MENU_CHECKS_H
#define FRONTPANEL_MENU_CHECKS_H

#include <frontpanel_base/problems.h>
#include "check/built_menu.h"

namespace frontpanel {

// Warns of values and names that a line of the display has no room for at once: values without errors
// only, since an item that is wrong has none.
void check_line_widths(const Built_menu& built, const Problems& problems);
// Warns of items with one name in one menu, unless each is shown at times only.
void check_equal_names(const Built_menu& built);
// Warns of items that are never shown, whatever the device does, and of what leads to them in vain.
void check_reach(const Built_menu& built);
// Reports rules that drive each other in a circle of writes, and warns of limits that follow each other in one.
void check_circles(const Built_menu& built, Problems& problems);
// Whether there may be a circle of writes to report.
bool has_circle_of_writes(const Built_menu& built);
// Warns of conditions that bounds make always or never true, unless a copy of the same text is different.
void check_constants(const Built_menu& built, Problems& problems);

}  // namespace frontpanel

#endif
