// What the write rules of a menu have done, to and from the state file.
#ifndef FRONTPANEL_APP_RULE_STATE_H
#define FRONTPANEL_APP_RULE_STATE_H

#include <frontpanel_menu/menu.h>
#include <frontpanel_simulator/state_file.h>

namespace frontpanel {

// Call it before the menu is first shown: rules do not repeat the writes that the file has.
void restore_rules(const State_file& file, Menu& menu);
// Gives the rules' writes to the file. Returns whether they are new to it.
bool keep_rules(const Menu& menu, State_file& file);

}  // namespace frontpanel

#endif
