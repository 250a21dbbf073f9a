// The columns of a line in a list: cursor, name, a blank, and the value or the mark of a menu.
#ifndef FRONTPANEL_MENU_LIST_LINE_H
#define FRONTPANEL_MENU_LIST_LINE_H

#include <frontpanel_data/data_entry.h>

namespace frontpanel {

constexpr int CURSOR_COLUMNS = 1;
constexpr int LEAST_VALUE_COLUMNS = 8;
constexpr const char* MENU_MARK = "...";  // behind the name of an entry that opens a menu

// The columns for an entry's name on a display of `columns` columns.
int name_columns(const Data_entry& entry, int columns);

}  // namespace frontpanel

#endif
