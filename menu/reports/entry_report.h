// What the reports of a menu say of one entry, in the words of menu files.
#ifndef FRONTPANEL_MENU_REPORTS_ENTRY_REPORT_H
#define FRONTPANEL_MENU_REPORTS_ENTRY_REPORT_H

#include <string>

#include <frontpanel_menu/menu.h>

namespace frontpanel {

// "range", "node"; "link" for a link to any of them.
std::string type_of(const Data_entry& entry);
// "100", "100.3.1"; empty for an entry without a parameter.
std::string parameter_of(const Data_entry& entry);
// "read-only", "write-only"; empty for an entry that is read and written.
std::string access_of(const Data_entry& entry);
// What a number or a choice allows now: "0..80, 120..240", "0 (off), 3 (auto)". Empty for other entries.
std::string allowed_of(Data_entry& entry);
// Why an entry is not shown, by itself: "hidden by its rules". Empty for an entry that is shown.
std::string hidden_because(Menu& menu, Data_entry& entry);

}  // namespace frontpanel

#endif
