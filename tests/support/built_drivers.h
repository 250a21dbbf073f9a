// Which drivers a build has. Tests of those that it leaves out are skipped.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_BUILT_DRIVERS_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_BUILT_DRIVERS_H

#include <algorithm>
#include <string>

#include "driver_table.h"

namespace support {

inline bool has_driver(const std::string& name) {
    const frontpanel::Driver_table& table = frontpanel::driver_table();
    return std::any_of(table.begin(), table.end(), [&name](const frontpanel::Driver_row* row) {
        return row->name == name && !row->is_left_out();
    });
}

}  // namespace support

#endif
