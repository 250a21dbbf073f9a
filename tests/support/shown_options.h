// Hides options of an enumeration.
#ifndef FRONTPANEL_DATA_TESTS_SUPPORT_SHOWN_OPTIONS_H
#define FRONTPANEL_DATA_TESTS_SUPPORT_SHOWN_OPTIONS_H

#include <map>
#include <string>
#include <vector>

#include <frontpanel_data/enum_entry.h>

namespace support {

// Makes only these keys visible, through product options.
inline void show_only(Enum_entry& entry, const std::vector<int>& keys) {
    std::map<int, std::vector<std::string>> options;
    for (int key = 0; key < entry.Get_size_enum(); ++key) {
        options[key] = {"modem"};
    }
    for (const int key : keys) {
        options[key] = {"gps"};
    }
    entry.setProductOptions({{"gps", 1}, {"modem", 0}});
    entry.Set_control_options(options);
    entry.updateControlOptionMap();
}

}  // namespace support

#endif
