#include <frontpanel_menu/list_line.h>

#include <frontpanel_menu/entry_access.h>
#include <frontpanel_menu/entry_kind.h>

#include <algorithm>

namespace frontpanel {
namespace {

constexpr int BLANK = 1;

}  // namespace

Line_room room_of(int left, int right, int columns, int least_left) {
    if (left == 0 || right == 0) {
        return {left == 0 ? 0 : columns, right == 0 ? 0 : columns};
    }
    if (std::min(left, least_left) + BLANK + right <= columns) {
        return {std::min(left, columns - BLANK - right), right};
    }
    const int shown = std::min(left, columns - BLANK - LEAST_VALUE_COLUMNS);
    return {shown, columns - BLANK - shown};
}

int least_name_columns(const Data_entry& entry) {
    return kind_of(housed(entry)).has(Entry_kind::IS_NUMBER) ? 1 : LEAST_NAME_COLUMNS;
}

}  // namespace frontpanel
