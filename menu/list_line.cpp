#include <frontpanel_menu/list_line.h>

#include <string_view>

#include <frontpanel_menu/entry_access.h>

namespace frontpanel {

int name_columns(const Data_entry& entry, int columns) {
    const int mark = static_cast<int>(std::string_view(MENU_MARK).size());
    return columns - CURSOR_COLUMNS - 1 - (is_menu(entry) ? mark : LEAST_VALUE_COLUMNS);
}

}  // namespace frontpanel
