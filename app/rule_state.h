// What the write rules of a menu have done, to and from the state file.
#ifndef FRONTPANEL_APP_RULE_STATE_H
#define FRONTPANEL_APP_RULE_STATE_H

#include <frontpanel_menu/menu.h>
#include <frontpanel_simulator/state_file.h>

namespace frontpanel {

// Before the menu is first shown: rules whose writes the file knows do not make them again.
void restore_rules(const State_file& file, Menu& menu);
// Whether the file did not know it yet.
bool keep_rules(const Menu& menu, State_file& file);

}  // namespace frontpanel

#endif
