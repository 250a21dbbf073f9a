#include <frontpanel_menu/list_line.h>

#include <algorithm>

namespace frontpanel {
namespace {

constexpr int BLANK = 1;
constexpr int LEAST_LEFT = 1;

}  // namespace

Line_room room_of(int left, int right, int columns) {
    if (left == 0 || right == 0) {
        return {left == 0 ? 0 : columns, right == 0 ? 0 : columns};
    }
    if (LEAST_LEFT + BLANK + right <= columns) {
        return {std::min(left, columns - BLANK - right), right};
    }
    const int shown = std::min(left, columns - BLANK - LEAST_VALUE_COLUMNS);
    return {shown, columns - BLANK - shown};
}

}  // namespace frontpanel
