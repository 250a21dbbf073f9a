// The columns of a line: in a list the cursor, the name, a blank, and the value or the mark of a menu; in a title the
// name, a blank, and what stands on its right.
#ifndef FRONTPANEL_MENU_LIST_LINE_H
#define FRONTPANEL_MENU_LIST_LINE_H

#include <frontpanel_data/data_entry.h>

namespace frontpanel {

constexpr int CURSOR_COLUMNS = 1;
constexpr int LEAST_NAME_COLUMNS = 4;     // beside a text; a number leaves its name a single one
constexpr int LEAST_VALUE_COLUMNS = 8;    // of a value that goes round
constexpr const char* MENU_MARK = "...";  // behind the name of an entry that opens a menu
// Behind the name of an entry, one of them: the first that holds.
constexpr const char* WRITING_MARK = "*";    // the device does not have the value yet
constexpr const char* OLD_MARK = "?";        // the device does not confirm the value any more
constexpr const char* READ_ONLY_MARK = "=";  // the value cannot be changed
constexpr const char* UNKNOWN_VALUE = "--";  // in place of a value that is not known

struct Line_room {
    int left;
    int right;
};

// The columns for two texts with a blank between them, of `columns` in all: the right one has what it needs and the left
// one the rest, at least `least_left` of what it needs. A right one that is too wide even so goes round beside as much of
// the left one as leaves it LEAST_VALUE_COLUMNS.
Line_room room_of(int left, int right, int columns, int least_left = LEAST_NAME_COLUMNS);

// The columns that a value of the entry leaves its name at least.
int least_name_columns(const Data_entry& entry);

}  // namespace frontpanel

#endif
