// The columns of a line: in a list the cursor, the name, a blank, and the value or the mark of a menu; in a title the
// name, a blank, and the text on its right.
#ifndef FRONTPANEL_MENU_LIST_LINE_H
#define FRONTPANEL_MENU_LIST_LINE_H

#include <frontpanel_data/data_entry.h>

namespace frontpanel {

constexpr int CURSOR_COLUMNS = 1;
constexpr int LEAST_NAME_COLUMNS = 4;     // beside a text; beside a number a single one
constexpr int LEAST_VALUE_COLUMNS = 8;    // of a value that scrolls
constexpr const char* MENU_MARK = "...";  // behind the name of an entry that opens a menu
// Marks behind the name of an entry; the first that applies is shown.
constexpr const char* WRITING_MARK = "*";    // the device does not have the value yet
constexpr const char* OLD_MARK = "?";        // the device does not confirm the value any more
constexpr const char* READ_ONLY_MARK = "=";  // the value cannot be changed
constexpr const char* UNKNOWN_VALUE = "--";  // in place of a value that is not known

struct Line_room {
    int left;
    int right;
};

// Divides `columns` between two texts with a blank between them: the right one gets what it needs and the left one the
// rest, but at least `least_left` columns, or what it needs if that is less. If the right one still does not fit, it
// scrolls, and the left one gets what leaves it LEAST_VALUE_COLUMNS.
Line_room room_of(int left, int right, int columns, int least_left = LEAST_NAME_COLUMNS);

// The smallest number of columns that a value of the entry leaves for its name.
int least_name_columns(const Data_entry& entry);

}  // namespace frontpanel

#endif
